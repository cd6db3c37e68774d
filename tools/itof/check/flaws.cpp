// Measures flaws. The limits are those beyond which no camera pair of a device is expected.
#include "check/flaws.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "camera/rotation.h"
#include "check/camerafields.h"
#include "framesize.h"

namespace itoftool {
namespace {

constexpr double kDegrees = 180 / std::numbers::pi;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double PrincipalPointSize(const CameraFields& camera) {
  constexpr double kFar = 0.08;  // share of the image's side
  return std::max(std::abs(camera.RightOffset()) / camera.width, std::abs(camera.DownOffset()) / camera.height) / kFar;
}

double FocalLengthsSize(const CameraFields& camera) {
  constexpr double kTolerance = 0.02;
  return camera.FocalLengthsError() / kTolerance;
}

double FieldOfViewSize(const Camera& camera) {
  constexpr double kLeast = 20, kMost = 130;  // degrees
  const double angle = MeasureFieldOfView(camera).horizontal;
  return std::isnan(angle) ? 0 : std::max(kLeast / angle, angle / kMost);
}

double LensRangeSize(double used, double reach) {
  constexpr double kMargin = 1.1;
  return std::isnan(used) ? kInfinity : kMargin * used / reach;
}

double TangentialSize(const CameraFields& camera) {
  constexpr double kLarge = 0.02, kNearZero = 0.01;
  const double p1 = camera.lens[2], p2 = camera.lens[3], k3 = camera.lens[4];
  return std::abs(k3) >= kNearZero ? 0 : std::max(std::abs(p1), std::abs(p2)) / kLarge;
}

double BaselineSize(double baseline) {
  return baseline > 0 ? std::max(kShortestBaseline / baseline, baseline / kLongestBaseline) : 0;
}

/// The largest distance of a ToF pixel's ray from the axis, on the plane z = 1; not-a-number if a corner has no ray.
double TofRadius(const Camera& tof) {
  constexpr double kRight = itof::kFrameWidth - 1, kBottom = itof::kFrameHeight - 1;
  const cv::Point2d corners[] = {{0, 0}, {kRight, 0}, {0, kBottom}, {kRight, kBottom}};
  double radius = 0;
  for (const cv::Point2d& ray : Rays(tof, corners)) {
    if (IsNowhere(ray)) return kNaN;
    radius = std::max(radius, cv::norm(ray));
  }
  return radius;
}

/// Fills in the shares of pixels that land, and the aux camera's largest radius in use. A pixel beyond the reach of the
/// aux lens counts for the radius if the lens model puts it in the frame, but it does not land.
void MeasureLanding(const CameraPair& pair, Flaws& flaws) {
  const std::vector<cv::Point2d> rays = Rays(pair.tof, TofPixels(8));
  for (size_t i = 0; i < std::size(kCompareDepths); ++i) {
    size_t landed = 0;
    for (const cv::Point2d& ray : rays) {
      const cv::Vec3d point = pair.rotation * cv::Vec3d(ray.x, ray.y, 1) * kCompareDepths[i] + pair.translation;
      if (!(point[2] > 0)) continue;
      const Point2 ideal{point[0] / point[2], point[1] / point[2]};
      // The alignment looks positions up in a table of the frame's size.
      if (!InFrame({pair.aux.cx + pair.aux.fx * ideal.x, pair.aux.cy + pair.aux.fy * ideal.y})) continue;
      const auto [x, y] = Project(pair.aux, {ideal.x, ideal.y, 1});
      if (!InFrame({x, y})) continue;
      const double radius = std::hypot(ideal.x, ideal.y);
      flaws.auxRadius = std::max(flaws.auxRadius, radius);
      landed += radius < flaws.auxReach;
    }
    flaws.shares[i] = static_cast<double>(landed) / static_cast<double>(rays.size());
  }
}

/// Measures how the two views are turned against each other.
void MeasureDirections(const CameraPair& pair, Flaws& flaws) {
  const cv::Point2d centre[] = {{(itof::kFrameWidth - 1) / 2.0, (itof::kFrameHeight - 1) / 2.0}};
  const cv::Point2d tof = Rays(pair.tof, centre)[0], aux = Rays(pair.aux, centre)[0];
  const cv::Matx33d& r = pair.rotation;
  flaws.centresApart = Angle(r * cv::Vec3d(tof.x, tof.y, 1), {aux.x, aux.y, 1});
  // Both sums vanish for views in opposite directions, between which there is no roll.
  const double cosine = r(0, 0) + r(1, 1), sine = r(1, 0) - r(0, 1);
  flaws.roll = std::hypot(cosine, sine) > 0.5 ? std::atan2(sine, cosine) * kDegrees : 0;
}

}  // namespace

double Flaws::MeanShare() const {
  return std::accumulate(shares.begin(), shares.end(), 0.0) / static_cast<double>(shares.size());
}

Flaws MeasureFlaws(const itof::CalibrationRecord& record, const CameraPair& pair) {
  constexpr double kApart = 8, kTurned = 30, kFew = 0.5;  // degrees, degrees, share of the pixels
  const CameraFields tof = ReadCamera(record, WhichCamera::kTof), aux = ReadCamera(record, WhichCamera::kAux);
  const cv::Vec3d& t = pair.translation;
  Flaws flaws{};
  flaws.baseline = cv::norm(t);
  flaws.tofReach = LensReach(pair.tof.lens);
  flaws.auxReach = LensReach(pair.aux.lens);
  flaws.tofRadius = TofRadius(pair.tof);
  MeasureLanding(pair, flaws);
  MeasureDirections(pair, flaws);
  const auto set = [&](Flaw flaw, double size) { flaws.sizes[static_cast<size_t>(flaw)] = size; };
  set(Flaw::kTofPrincipalPoint, PrincipalPointSize(tof));
  set(Flaw::kAuxPrincipalPoint, PrincipalPointSize(aux));
  set(Flaw::kTofFocalLengths, FocalLengthsSize(tof));
  set(Flaw::kAuxFocalLengths, FocalLengthsSize(aux));
  set(Flaw::kTofFieldOfView, FieldOfViewSize(pair.tof));
  set(Flaw::kAuxFieldOfView, FieldOfViewSize(pair.aux));
  set(Flaw::kTofLensRange, LensRangeSize(flaws.tofRadius, flaws.tofReach));
  set(Flaw::kAuxLensRange, LensRangeSize(flaws.auxRadius, flaws.auxReach));
  set(Flaw::kTofTangential, TangentialSize(tof));
  set(Flaw::kAuxTangential, TangentialSize(aux));
  set(Flaw::kMirror, cv::determinant(pair.rotation) < 0 ? kInfinity : 0);
  set(Flaw::kAim, flaws.centresApart / kApart);
  set(Flaw::kRoll, std::abs(flaws.roll) / kTurned);
  set(Flaw::kOverlap, kFew / flaws.MeanShare());
  set(Flaw::kBaseline, BaselineSize(flaws.baseline));
  set(Flaw::kAxialTranslation, flaws.baseline > 0 ? std::abs(t[2]) / std::hypot(t[0], t[1]) : 0);
  return flaws;
}

bool DependsOn(Flaw flaw, ReadingPart part) {
  switch (flaw) {
    case Flaw::kTofPrincipalPoint:
    case Flaw::kTofFocalLengths:
    case Flaw::kTofFieldOfView:
    case Flaw::kTofLensRange:
    case Flaw::kTofTangential:
      return part != ReadingPart::kAux && part != ReadingPart::kExtrinsics;
    case Flaw::kAuxPrincipalPoint:
    case Flaw::kAuxFocalLengths:
    case Flaw::kAuxFieldOfView:
    case Flaw::kAuxTangential:
      return part != ReadingPart::kTof && part != ReadingPart::kExtrinsics;
    case Flaw::kMirror:
    case Flaw::kRoll:
    case Flaw::kBaseline:
    case Flaw::kAxialTranslation:
      return part == ReadingPart::kExtrinsics || part == ReadingPart::kAll;
    default:  // the aux camera's radius, the aim and the overlap depend on everything
      return true;
  }
}

}  // namespace itoftool
