// Computes rays, projections and fields of view exactly. Lenses are inverted by Newton's method, which shares no error
// with the library's three rounds, and each point is projected without far plane or tables.
#include "inspection/camerapair.h"

#include <cmath>
#include <numbers>
#include <opencv2/calib3d.hpp>

#include "camera/rotation.h"
#include "framesize.h"
#include "inspection/workingcontext.h"

namespace itoftool {
namespace {

cv::Vec3d Direction(cv::Point2d ray) { return {ray.x, ray.y, 1}; }

}  // namespace

Camera MakeCamera(const itof::CameraModel& model) {
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2, cx, cy, fx, fy, invFx, invFy] = model;
  return {.fx = fx, .fy = fy, .cx = cx, .cy = cy, .lens = {k1, k2, k3, k4, k5, k6, p1, p2}};
}

CameraPair MakeCameraPair(const itof::CalibrationRecord& record) {
  return MakeCameraPair(record, MakeWorkingContext(record));
}

CameraPair MakeCameraPair(const itof::CalibrationRecord& record, const itof::AlignmentContext& context) {
  const auto entry = [&](int i) { return static_cast<double>(record.translation[i]); };
  return {.tof = MakeCamera(context.tofModel),
          .aux = MakeCamera(context.auxModel),
          .rotation = cv::Matx33d(context.params.rotation),
          .translation = {entry(0), entry(1), entry(2)}};
}

std::vector<cv::Point> TofPixels(int step) {
  std::vector<cv::Point> pixels;
  for (int y = step / 2; y < itof::kFrameHeight; y += step) {
    for (int x = step / 2; x < itof::kFrameWidth; x += step) pixels.emplace_back(x, y);
  }
  return pixels;
}

std::vector<cv::Point> NinePixels() {
  constexpr int kMarginX = itof::kFrameWidth / 10, kMarginY = itof::kFrameHeight / 10;
  std::vector<cv::Point> pixels;
  for (const int y : {kMarginY, itof::kFrameHeight / 2, itof::kFrameHeight - 1 - kMarginY}) {
    for (const int x : {kMarginX, itof::kFrameWidth / 2, itof::kFrameWidth - 1 - kMarginX}) pixels.emplace_back(x, y);
  }
  return pixels;
}

std::vector<cv::Point2d> Rays(const Camera& camera, std::span<const cv::Point2d> pixels) {
  std::vector<cv::Point2d> rays;
  rays.reserve(pixels.size());
  for (const cv::Point2d& pixel : pixels) {
    const auto ray = Undistort(camera.lens, {(pixel.x - camera.cx) / camera.fx, (pixel.y - camera.cy) / camera.fy});
    rays.push_back(ray ? cv::Point2d(ray->x, ray->y) : kNowhere);
  }
  return rays;
}

std::vector<cv::Point2d> Rays(const Camera& camera, std::span<const cv::Point> pixels) {
  return Rays(camera, std::vector<cv::Point2d>(pixels.begin(), pixels.end()));
}

std::vector<cv::Point2d> AuxPositions(const CameraPair& pair, std::span<const cv::Point2d> tofRays, double depth) {
  const double reach = LensReach(pair.aux.lens);
  std::vector<cv::Point3d> points;
  std::vector<bool> isSeen;
  for (const cv::Point2d& ray : tofRays) {
    const cv::Vec3d point = pair.rotation * Direction(ray) * depth + pair.translation;
    isSeen.push_back(point[2] > 0 && std::hypot(point[0], point[1]) < reach * point[2]);
    points.emplace_back(isSeen.back() ? point : cv::Vec3d(0, 0, 1));
  }
  const auto& [fx, fy, cx, cy, lens] = pair.aux;
  const cv::Matx33d matrix(fx, 0, cx, 0, fy, cy, 0, 0, 1);
  const auto& [k1, k2, k3, k4, k5, k6, p1, p2] = lens;
  const cv::Matx<double, 1, 8> distortion(k1, k2, p1, p2, k3, k4, k5, k6);
  std::vector<cv::Point2d> positions;
  cv::projectPoints(points, cv::Vec3d(), cv::Vec3d(), matrix, distortion, positions);
  for (size_t i = 0; i < positions.size(); ++i) {
    if (!isSeen[i]) positions[i] = kNowhere;
  }
  return positions;
}

bool InFrame(cv::Point2d position) {
  return position.x >= 0 && position.x < itof::kFrameWidth && position.y >= 0 && position.y < itof::kFrameHeight;
}

FieldOfView MeasureFieldOfView(const Camera& camera) {
  constexpr double kLeft = -0.5, kRight = itof::kFrameWidth - 0.5, kTop = -0.5, kBottom = itof::kFrameHeight - 0.5;
  constexpr double kMiddleX = (kLeft + kRight) / 2, kMiddleY = (kTop + kBottom) / 2;
  const auto span = [&](cv::Point2d from, cv::Point2d to) {
    const cv::Point2d ends[] = {from, to};
    const auto rays = Rays(camera, ends);
    return Angle(Direction(rays[0]), Direction(rays[1]));
  };
  return {.horizontal = span({kLeft, kMiddleY}, {kRight, kMiddleY}),
          .vertical = span({kMiddleX, kTop}, {kMiddleX, kBottom}),
          .diagonal = span({kLeft, kTop}, {kRight, kBottom})};
}

}  // namespace itoftool
