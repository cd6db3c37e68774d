// Measures everything that the description of a calibration contains.
#include "inspection/description.h"

#include <cmath>
#include <numbers>
#include <utility>

#include "calibration/calibrationfields.h"
#include "camera/rotation.h"
#include "inspection/pixeltrace.h"
#include "inspection/valuetext.h"

namespace itoftool {
namespace {

std::vector<EntryDescription> DescribeEntries(const itof::CalibrationRecord& record) {
  std::vector<EntryDescription> entries;
  itof::ForEachEntry([&](const itof::CalibrationField& field, size_t index) {
    EntryDescription entry{.byte = itof::EntryOffset(field, index),
                           .name = itof::EntryName(field, index),
                           .value = {},
                           .text = EntryText(record, field, index),
                           .unit = EntryUnit(field, index)};
    if (field.kind != itof::FieldKind::kUnused) entry.value = EntryValue(record, field, index);
    entries.push_back(std::move(entry));
  });
  return entries;
}

CameraDescription DescribeCamera(cv::Size image, const float (&matrix)[9], const double (&workingMatrix)[9],
                                 const Camera& camera) {
  return {.calibrationImage = image,
          .matrix = cv::Matx33f(matrix),
          .workingMatrix = cv::Matx33d(workingMatrix),
          .fieldOfView = MeasureFieldOfView(camera),
          .lensReachDegrees = std::atan(LensReach(camera.lens)) * (180 / std::numbers::pi)};
}

ExtrinsicsDescription DescribeExtrinsics(const CameraPair& pair) {
  const cv::Matx33d& r = pair.rotation;
  const cv::Vec3d axis(r(2, 1) - r(1, 2), r(0, 2) - r(2, 0), r(1, 0) - r(0, 1));
  return {.baseline = cv::norm(pair.translation),
          .auxInTofFrame = -(r.t() * pair.translation),
          .rotationDegrees = RotationAngle(r),
          .rotationAxis = cv::norm(axis) > 0 ? axis / cv::norm(axis) : axis};
}

std::vector<ExactPositions> DescribeExactPositions(const CameraPair& pair) {
  const std::vector<cv::Point> pixels = NinePixels();
  const std::vector<cv::Point2d> rays = Rays(pair.tof, pixels);
  std::vector<ExactPositions> list;
  list.reserve(pixels.size());
  for (const cv::Point& pixel : pixels) list.push_back({pixel, {}});
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    const auto positions = AuxPositions(pair, rays, kCompareDepths[i]);
    for (size_t pixel = 0; pixel < pixels.size(); ++pixel) list[pixel].aux[i] = positions[pixel];
  }
  return list;
}

}  // namespace

CalibrationDescription DescribeCalibration(const itof::CalibrationRecord& record) {
  const CameraPair pair = MakeCameraPair(record);
  const RunTables tables(record, 1);
  const itof::AlignmentParams& params = tables.Context().params;
  CalibrationDescription description{.entries = DescribeEntries(record),
                                     .tof = DescribeCamera({params.tofCalibWidth, params.tofCalibHeight},
                                                           record.tofIntrinsics, params.tofIntrinsics, pair.tof),
                                     .aux = DescribeCamera({params.auxCalibWidth, params.auxCalibHeight},
                                                           record.auxIntrinsics, params.auxIntrinsics, pair.aux),
                                     .extrinsics = DescribeExtrinsics(pair),
                                     .exactPositions = DescribeExactPositions(pair),
                                     .approximation = {}};
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    description.approximation[i] = MeasureApproximation(pair, tables, kCompareDepths[i]);
  }
  return description;
}

}  // namespace itoftool
