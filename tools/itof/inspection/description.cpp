// The numbers are gathered once, as JSON, and the text for people is made from them, so that both say the same.
#include "inspection/description.h"

#include <cmath>
#include <numbers>

#include "camera/rotation.h"
#include "framesize.h"
#include "inspection/camerapair.h"
#include "inspection/comparison.h"
#include "inspection/pixeltrace.h"
#include "support/text.h"

namespace itoftool {
namespace {

using Json = nlohmann::ordered_json;

Json Number(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

/// A number with decimals, or "-" for none.
std::string NumberText(const Json& number, int decimals) {
  return number.is_null() ? "-" : Format("%.*f", decimals, number.get<double>());
}

std::string PositionText(const Json& position, int decimals) {
  if (position.is_null()) return "not seen";
  return Format("(%.*f, %.*f)", decimals, position[0].get<double>(), decimals, position[1].get<double>());
}

Json Position(cv::Point2d position) { return std::isnan(position.x) ? Json(nullptr) : Json{position.x, position.y}; }

template <typename Entry>
Json Matrix(const Entry (&matrix)[9]) {
  Json rows = Json::array();
  for (int row = 0; row < 3; ++row) {
    rows.push_back(Json::array());
    for (int column = 0; column < 3; ++column) rows.back().push_back(static_cast<double>(matrix[3 * row + column]));
  }
  return rows;
}

Json DescribeCamera(int32_t width, int32_t height, const float (&matrix)[9], const double (&workingMatrix)[9],
                    const Camera& camera) {
  const FieldOfView view = MeasureFieldOfView(camera);
  return {{"calibration_image", {width, height}},
          {"matrix", Matrix(matrix)},
          {"matrix_640x360", Matrix(workingMatrix)},
          {"field_of_view_degrees",
           {{"horizontal", Number(view.horizontal)},
            {"vertical", Number(view.vertical)},
            {"diagonal", Number(view.diagonal)}}},
          {"lens_model_holds_to_degrees", std::atan(LensReach(camera.lens)) * (180 / std::numbers::pi)}};
}

Json DescribeExtrinsics(const CameraPair& pair) {
  const cv::Matx33d& r = pair.rotation;
  const cv::Vec3d position = -(r.t() * pair.translation);
  const cv::Vec3d axis(r(2, 1) - r(1, 2), r(0, 2) - r(2, 0), r(1, 0) - r(0, 1));
  const cv::Vec3d unit = cv::norm(axis) > 0 ? axis / cv::norm(axis) : axis;
  return {{"baseline_mm", cv::norm(pair.translation)},
          {"aux_camera_in_tof_frame_mm", {position[0], position[1], position[2]}},
          {"rotation_degrees", RotationAngle(r)},
          {"rotation_axis", {unit[0], unit[1], unit[2]}}};
}

Json DescribeLandings(const CameraPair& pair) {
  const std::vector<cv::Point> pixels = NinePixels();
  const std::vector<cv::Point2d> rays = Rays(pair.tof, pixels);
  Json landings = Json::array();
  for (const cv::Point& pixel : pixels) landings.push_back({{"tof_pixel", {pixel.x, pixel.y}}, {"aux", Json::array()}});
  for (const uint16_t depth : kCompareDepths) {
    const auto positions = AuxPositions(pair, rays, depth);
    for (size_t i = 0; i < pixels.size(); ++i) {
      landings[i]["aux"].push_back({{"depth_mm", depth}, {"position", Position(positions[i])}});
    }
  }
  return landings;
}

Json DescribeApproximation(const CameraPair& pair, const RunTables& tables) {
  Json list = Json::array();
  for (const uint16_t depth : kCompareDepths) {
    const Approximation found = MeasureApproximation(pair, tables, depth);
    list.push_back({{"depth_mm", depth},
                    {"pixels_compared", found.error.count},
                    {"median", found.error.median},
                    {"percentile_95", found.error.percentile95},
                    {"maximum", found.error.maximum},
                    {"maximum_at_tof_pixel", {found.error.where.x, found.error.where.y}},
                    {"pixels_lost", found.lost}});
  }
  return list;
}

Json DescribeFields(const itof::CalibrationRecord& record) {
  Json fields = Json::array();
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    const bool isNumber = field.kind != itof::FieldKind::kUnused;
    const auto value = static_cast<double>(EntryValue(record, field, index));
    fields.push_back({{"byte", itof::EntryOffset(field, index)},
                      {"name", itof::EntryName(field, index)},
                      {"value", isNumber ? Number(value) : Json(EntryText(record, field, index))},
                      {"unit", EntryUnit(field, index)}});
  });
  return fields;
}

std::string MatrixText(const Json& matrix) {
  std::string text = "[";
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) {
      text += Format("%s%.6g", column > 0 ? ", " : row > 0 ? "; " : "", matrix[row][column].get<double>());
    }
  }
  return text + "]";
}

std::string CameraText(const char* name, const Json& camera) {
  const Json& view = camera["field_of_view_degrees"];
  const double reach = camera["lens_model_holds_to_degrees"];
  return Format("%s camera, calibrated on an image of %d x %d pixels\n", name,
                camera["calibration_image"][0].get<int>(), camera["calibration_image"][1].get<int>()) +
         "  matrix of that image      " + MatrixText(camera["matrix"]) + "\n" + "  matrix at 640 x 360       " +
         MatrixText(camera["matrix_640x360"]) + "\n" + "  field of view, degrees    " +
         NumberText(view["horizontal"], 1) + " horizontal, " + NumberText(view["vertical"], 1) + " vertical, " +
         NumberText(view["diagonal"], 1) + " diagonal\n" + "  lens model holds          " +
         (reach < 89 ? Format("up to %.1f degrees off the axis\n\n", reach) : std::string("everywhere\n\n"));
}

}  // namespace

std::string EntryUnit(const itof::CalibrationField& field, size_t index) {
  constexpr const char* kCoefficients[] = {"k1", "k2", "p1", "p2", "k3", "k4", "k5", "k6"};
  switch (field.kind) {
    case itof::FieldKind::kFrameWidth:
    case itof::FieldKind::kImageSize:
      return "pixels";
    case itof::FieldKind::kCameraMatrix:
      return index < 6 ? "pixels" : "";
    case itof::FieldKind::kTranslation:
      return "depth codes (mm)";
    case itof::FieldKind::kDistortion:
      return kCoefficients[index];
    case itof::FieldKind::kUnused:
      return "not used";
    case itof::FieldKind::kLogged:
      return "logged only";
    case itof::FieldKind::kRotation:
      break;
  }
  return "";
}

std::string EntryText(const itof::CalibrationRecord& record, const itof::CalibrationField& field, size_t index) {
  if (field.kind == itof::FieldKind::kUnused) return Format("%08x", EntryBits(record, field, index));
  return Format("%.9g", static_cast<double>(EntryValue(record, field, index)));
}

Json DescribeCalibration(const itof::CalibrationRecord& record) {
  const CameraPair pair = MakeCameraPair(record);
  const RunTables tables(record, 1);
  const itof::AlignmentParams& params = tables.Context().params;
  return {{"fields", DescribeFields(record)},
          {"tof_camera", DescribeCamera(params.tofCalibWidth, params.tofCalibHeight, record.tofIntrinsics,
                                        params.tofIntrinsics, pair.tof)},
          {"aux_camera", DescribeCamera(params.auxCalibWidth, params.auxCalibHeight, record.auxIntrinsics,
                                        params.auxIntrinsics, pair.aux)},
          {"extrinsics", DescribeExtrinsics(pair)},
          {"exact_positions", DescribeLandings(pair)},
          {"alignment_error_pixels", DescribeApproximation(pair, tables)}};
}

std::string DescriptionText(const Json& description) {
  std::string text = "byte  field               value             unit\n";
  for (const Json& field : description["fields"]) {
    const Json& value = field["value"];
    const std::string valueText = value.is_string() ? value.get<std::string>()
                                  : value.is_null() ? "not finite"
                                                    : Format("%.9g", value.get<double>());
    text += Format("%4d  %-18s  %-16s  %s\n", field["byte"].get<int>(), field["name"].get<std::string>().c_str(),
                   valueText.c_str(), field["unit"].get<std::string>().c_str());
  }
  text += "\n";
  text += CameraText("ToF", description["tof_camera"]) + CameraText("Aux", description["aux_camera"]);

  const Json& extrinsics = description["extrinsics"];
  const auto vector = [](const Json& v, int decimals) {
    return Format("(%.*f, %.*f, %.*f)", decimals, v[0].get<double>(), decimals, v[1].get<double>(), decimals,
                  v[2].get<double>());
  };
  text += "Extrinsics\n  baseline                  " + NumberText(extrinsics["baseline_mm"], 3) + " mm\n" +
          "  aux camera stands at      " + vector(extrinsics["aux_camera_in_tof_frame_mm"], 3) +
          " mm in the ToF camera's frame\n" + "  rotation                  " +
          NumberText(extrinsics["rotation_degrees"], 3) + " degrees about " + vector(extrinsics["rotation_axis"], 4) +
          "\n\n";

  text += "Where the aux camera sees ToF pixels, in a frame of 640 x 360 (integers are centres of pixels)\n";
  text += "  ToF pixel     at 0.3 m            at 1 m              at 3 m\n";
  for (const Json& landing : description["exact_positions"]) {
    std::string line = Format("  %-12s", PositionText(landing["tof_pixel"], 0).c_str());
    for (const Json& at : landing["aux"]) line += Format("  %-18s", PositionText(at["position"], 2).c_str());
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }

  text +=
      "\nHow far the alignment is from that, pixels (centre of the cell; cutting to cells alone gives a median of "
      "0.4)\n";
  text += "  depth    median   95 %   maximum, at ToF pixel         compared    lost\n";
  for (const Json& at : description["alignment_error_pixels"]) {
    text += Format("  %.1f m  %8.2f %6.2f %9.2f  %-18s %10d %7d\n", at["depth_mm"].get<double>() / 1000,
                   at["median"].get<double>(), at["percentile_95"].get<double>(), at["maximum"].get<double>(),
                   PositionText(at["maximum_at_tof_pixel"], 0).c_str(), at["pixels_compared"].get<int>(),
                   at["pixels_lost"].get<int>());
  }
  return text;
}

}  // namespace itoftool
