// Writes the description of a calibration as JSON, for programs.
#include "inspection/description.h"
#include "inspection/jsonvalues.h"

namespace itoftool {
namespace {

Json Vector(const cv::Vec3d& v) { return {v[0], v[1], v[2]}; }

Json Matrix(const cv::Matx33d& m) {
  return {{m(0, 0), m(0, 1), m(0, 2)}, {m(1, 0), m(1, 1), m(1, 2)}, {m(2, 0), m(2, 1), m(2, 2)}};
}

Json Entries(const std::vector<EntryDescription>& entries) {
  Json list = Json::array();
  for (const EntryDescription& entry : entries) {
    list.push_back({{"byte", entry.byte},
                    {"name", entry.name},
                    {"value", entry.value ? Number(*entry.value) : Json(entry.text)},
                    {"unit", entry.unit}});
  }
  return list;
}

Json CameraJson(const CameraDescription& camera) {
  const FieldOfView& view = camera.fieldOfView;
  return {{"calibration_image", {camera.calibrationImage.width, camera.calibrationImage.height}},
          {"matrix", Matrix(camera.matrix)},
          {"matrix_640x360", Matrix(camera.workingMatrix)},
          {"field_of_view_degrees",
           {{"horizontal", Number(view.horizontal)},
            {"vertical", Number(view.vertical)},
            {"diagonal", Number(view.diagonal)}}},
          {"lens_model_holds_to_degrees", camera.lensReachDegrees}};
}

Json ExtrinsicsJson(const ExtrinsicsDescription& extrinsics) {
  return {{"baseline_mm", extrinsics.baseline},
          {"aux_camera_in_tof_frame_mm", Vector(extrinsics.auxInTofFrame)},
          {"rotation_degrees", extrinsics.rotationDegrees},
          {"rotation_axis", Vector(extrinsics.rotationAxis)}};
}

Json PositionsJson(const std::vector<ExactPositions>& exactPositions) {
  Json list = Json::array();
  for (const ExactPositions& exact : exactPositions) {
    Json aux = Json::array();
    for (size_t i = 0; i < exact.aux.size(); ++i) {
      aux.push_back(AtDepth(kCompareDepths[i]));
      aux.back()["position"] = JsonPosition(exact.aux[i]);
    }
    list.push_back({{"tof_pixel", JsonPixel(exact.tofPixel)}, {"aux", aux}});
  }
  return list;
}

Json ApproximationJson(const PerDepth<Approximation>& approximation) {
  Json list = Json::array();
  for (size_t i = 0; i < approximation.size(); ++i) {
    const Spread& error = approximation[i].error;
    const auto measured = [&](const Json& value) { return error.count > 0 ? value : Json(nullptr); };
    Json at = AtDepth(kCompareDepths[i]);
    at["pixels_compared"] = error.count;
    at["median"] = measured(error.median);
    at["percentile_95"] = measured(error.percentile95);
    at["maximum"] = measured(error.maximum);
    at["maximum_at_tof_pixel"] = measured(JsonPixel(error.where));
    at["pixels_lost"] = approximation[i].lost;
    list.push_back(at);
  }
  return list;
}

}  // namespace

std::string DescriptionJson(const CalibrationDescription& description) {
  const Json json = {{"fields", Entries(description.entries)},
                     {"tof_camera", CameraJson(description.tof)},
                     {"aux_camera", CameraJson(description.aux)},
                     {"extrinsics", ExtrinsicsJson(description.extrinsics)},
                     {"exact_positions", PositionsJson(description.exactPositions)},
                     {"alignment_error_pixels", ApproximationJson(description.approximation)}};
  return JsonText(json);
}

}  // namespace itoftool
