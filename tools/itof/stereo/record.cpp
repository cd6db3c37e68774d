// Converts between a stereo calibration and the calibration record, which has single precision, a ToF image 640 pixels
// wide, and eight coefficients per lens. Refuses calibrations that do not fit.
#include "stereo/record.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <vector>

#include "calibration/calibrationcheck.h"
#include "camera/imagepart.h"
#include "camera/lens.h"
#include "framesize.h"
#include "stereo/keys.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// The field of the record for the numbers of a quantity from number `first` on.
struct Slot {
  Quantity& quantity;
  size_t first;
  const itof::CalibrationField& field;
};

std::vector<Slot> Slots(StereoPair& pair) {
  using itof::FieldNamed;
  return {{pair.tof.size, 0, FieldNamed("tofCalibWidth")},       {pair.tof.size, 1, FieldNamed("tofCalibHeight")},
          {pair.tof.matrix, 0, FieldNamed("tofIntrinsics")},     {pair.rotation, 0, FieldNamed("rotation")},
          {pair.translation, 0, FieldNamed("translation")},      {pair.aux.size, 0, FieldNamed("auxCalibWidth")},
          {pair.aux.size, 1, FieldNamed("auxCalibHeight")},      {pair.aux.matrix, 0, FieldNamed("auxIntrinsics")},
          {pair.tof.distortion, 0, FieldNamed("tofDistortion")}, {pair.aux.distortion, 0, FieldNamed("auxDistortion")},
          {pair.auxFlRatio, 0, FieldNamed("aux_fl_ratio")}};
}

std::string Text(const Window& window) {
  return Format("%d,%d,%d,%d", window.x, window.y, window.width, window.height);
}

/// Returns the 16:9 window inside an image of `width` x `height` whose edges are nearest to those of `wanted`, by the
/// sum of squares. Its size is 0 if the image is too small for any window.
Window NearestWindow(const Window& wanted, int width, int height) {
  struct Place {
    double start, miss;
  };
  // Along one axis, places `length` pixels as near as possible to the `wantedLength` pixels from `start` on. `miss` is
  // the sum of the squared distances of the ends.
  const auto place = [](double start, double wantedLength, double length, double imageLength) -> Place {
    const double placed = std::clamp(std::floor(start + (wantedLength - length) / 2), 0.0, imageLength - length);
    return {placed, std::pow(placed - start, 2) + std::pow(placed + length - start - wantedLength, 2)};
  };
  Window nearest{};
  double least = 0;
  for (int n = 1; n <= std::min(width / 16, height / 9); ++n) {
    const auto [x, missX] = place(wanted.x, wanted.width, 16 * n, width);
    const auto [y, missY] = place(wanted.y, wanted.height, 9 * n, height);
    if (nearest.width == 0 || missX + missY < least) {
      nearest = {static_cast<int>(x), static_cast<int>(y), 16 * n, 9 * n};
      least = missX + missY;
    }
  }
  return nearest;
}

/// Returns how far positions in the camera's image move at most, in pixels, if the coefficients after the eighth are
/// left out; nothing if the lens of the first eight has no inverse anywhere in the image.
std::optional<double> TailPixels(const StereoCamera& camera) {
  constexpr int kSteps = 32;
  const std::vector<double>& k = camera.distortion.values;
  const Lens lens{.k1 = k[0], .k2 = k[1], .k3 = k[4], .k4 = k[5], .k5 = k[6], .k6 = k[7], .p1 = k[2], .p2 = k[3]};
  const std::vector<double>& m = camera.matrix.values;
  std::vector<cv::Point3d> rays;
  for (int row = 0; row <= kSteps; ++row) {
    for (int column = 0; column <= kSteps; ++column) {
      const double x = (camera.size.values[0] - 1) * column / kSteps;
      const double y = (camera.size.values[1] - 1) * row / kSteps;
      const auto ideal = Undistort(lens, {(x - m[2]) / m[0], (y - m[5]) / m[4]});
      if (ideal) rays.emplace_back(ideal->x, ideal->y, 1);
    }
  }
  if (rays.empty()) return std::nullopt;
  const cv::Mat matrix = cv::Mat(m, true).reshape(1, 3);
  const cv::Vec3d none;
  std::vector<cv::Point2d> all, first;
  cv::projectPoints(rays, none, none, matrix, k, all);
  cv::projectPoints(rays, none, none, matrix, std::vector<double>(k.begin(), k.begin() + kFileCoefficients), first);
  double largest = 0;
  for (size_t i = 0; i < rays.size(); ++i) largest = std::max(largest, cv::norm(all[i] - first[i]));
  return largest;
}

/// Drops the coefficients that the record has no field for. Throws DataError if one of them is not 0.
void CutTail(StereoCamera& camera) {
  std::vector<double>& values = camera.distortion.values;
  if (std::any_of(values.begin() + kFileCoefficients, values.end(), [](double value) { return value != 0; })) {
    const std::optional<double> most = TailPixels(camera);
    Fail(camera.distortion,
         "has " + std::to_string(values.size()) +
             " coefficients, and those after the eighth are not all 0; without them pixels would be " +
             (most ? "up to " + Format("%.3g", *most) + " pixels off" : "off by an unknown distance") +
             ". Calibrate with at most 8 coefficients");
  }
  values.resize(kFileCoefficients);
}

std::string ImageText(const StereoCamera& camera) {
  return Format("%.0f x %.0f pixels", std::trunc(camera.size.values[0]), std::trunc(camera.size.values[1]));
}

/// Returns the text of the window inside the camera's image that is nearest to `wanted`.
std::string FittingText(const StereoCamera& camera, const Window& wanted) {
  const Window nearest =
      NearestWindow(wanted, static_cast<int>(camera.size.values[0]), static_cast<int>(camera.size.values[1]));
  return nearest.width == 0 ? "none in " + ImageText(camera) : Text(nearest);
}

/// Makes the part `window` of a camera's image its whole image, at `width` x `height` pixels.
void ApplyWindow(StereoCamera& camera, const char* option, const Window& window, int width, int height) {
  const auto [x, y, w, h] = window;
  const bool isInside = w > 0 && h > 0 && x >= 0 && y >= 0 && w <= static_cast<int>(camera.size.values[0]) - x &&
                        h <= static_cast<int>(camera.size.values[1]) - y;
  if (!isInside || int64_t{w} * 9 != int64_t{h} * 16) {
    throw UsageError(std::string(option) + ": " + Text(window) +
                     (isInside ? " is not 16:9" : " is not inside " + ImageText(camera)) +
                     "; the nearest window that fits: " + FittingText(camera, window));
  }
  const ImagePart part{static_cast<double>(x), static_cast<double>(y), static_cast<double>(w), static_cast<double>(h)};
  TakePart(camera.matrix.values.data(), part, width, height);
  camera.size.values = {static_cast<double>(width), static_cast<double>(height)};
}

void ApplyTofWindow(StereoCamera& tof, const std::optional<Window>& window) {
  const int width = static_cast<int>(tof.size.values[0]), height = static_cast<int>(tof.size.values[1]);
  if (window) {
    ApplyWindow(tof, "--tof-window", *window, itof::kFrameWidth, itof::kFrameHeight);
  } else if (width != itof::kFrameWidth) {
    Fail(tof.size,
         "the ToF image has " + ImageText(tof) +
             " but must be 640 wide; select the part that becomes 640 x 360 with --tof-window. Largest possible: " +
             FittingText(tof, {0, 0, width, height}));
  }
}

constexpr struct {
  const char* name;
  double millimetres;
} kUnits[] = {{"um", 0.001}, {"mm", 1}, {"cm", 10}, {"m", 1000}, {"in", 25.4}};

}  // namespace

std::vector<std::string> UnitNames() {
  std::vector<std::string> names;
  for (const auto& unit : kUnits) names.emplace_back(unit.name);
  return names;
}

void ConvertToMillimetres(StereoPair& pair, const std::string& unit) {
  if (!pair.unit.empty() && !unit.empty() && unit != pair.unit) {
    throw UsageError("--unit: " + pair.translation.file + ": " + pair.translation.key + " is in " + pair.unit);
  }
  const std::string& name = pair.unit.empty() ? unit : pair.unit;
  for (const auto& known : kUnits) {
    if (name != known.name) continue;
    for (double& entry : pair.translation.values) entry *= known.millimetres;
  }
}

itof::CalibrationRecord RecordOf(StereoPair pair, const std::optional<Window>& tofWindow,
                                 const std::optional<Window>& auxWindow) {
  CutTail(pair.tof);
  CutTail(pair.aux);
  ApplyTofWindow(pair.tof, tofWindow);
  if (auxWindow) ApplyWindow(pair.aux, "--aux-window", *auxWindow, auxWindow->width, auxWindow->height);
  if (pair.auxFlRatio.values.empty()) pair.auxFlRatio.values = {1};
  itof::CalibrationRecord record{};
  const std::vector<Slot> slots = Slots(pair);
  for (const auto& [quantity, first, field] : slots) {
    for (size_t i = 0; i < field.count; ++i) {
      const double value = quantity.values[first + i];
      if (std::abs(value) > static_cast<double>(FLT_MAX)) {
        Fail(quantity, Format("%.9g", value) + " does not fit in single precision");
      }
      SetEntry(record, field, i, static_cast<float>(value));
    }
  }
  if (const auto fault = itof::FirstCalibrationFault(record)) {
    const auto slot = std::ranges::find(slots, fault->field, [](const Slot& candidate) { return &candidate.field; });
    Fail(slot->quantity, Format("%s: %.9g %s", itof::EntryName(*fault->field, fault->index).c_str(),
                                static_cast<double>(fault->value), fault->cause));
  }
  return record;
}

StereoPair PairOf(const itof::CalibrationRecord& record) {
  StereoPair pair;
  for (const auto& [quantity, first, field] : Slots(pair)) {
    for (size_t i = 0; i < field.count; ++i) {
      quantity.values.push_back(static_cast<double>(EntryValue(record, field, i)));
    }
  }
  if (!std::isfinite(pair.auxFlRatio.values[0])) pair.auxFlRatio.values.clear();
  return pair;
}

}  // namespace itoftool
