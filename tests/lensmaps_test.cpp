// Compares the far-plane maps and the lens table with OpenCV's lens functions, which share no code with them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <opencv2/calib3d.hpp>
#include <vector>

#include "alignment/distortlut.h"
#include "alignment/farplane.h"

namespace itof {
namespace {

constexpr int32_t kWidth = 64;
constexpr int32_t kHeight = 48;
constexpr float kUntouched = -12345.0F;

/// Two different cameras, turned by a few degrees. Every lens coefficient moves the corners by more than the rounding of a
/// float.
AlignmentParams MakeRig() {
  // clang-format off
  return {.tofCalibWidth = 64, .tofCalibHeight = 48, .auxCalibWidth = 64, .auxCalibHeight = 48,
          .tofWidth = 64, .tofHeight = 48, .auxWidth = 64, .auxHeight = 48,
          .tofIntrinsics = {48.5, 0.0, 30.75, 0.0, 49.25, 24.5, 0.0, 0.0, 1.0},
          .auxIntrinsics = {57.0, 0.0, 32.5, 0.0, 56.5, 22.25, 0.0, 0.0, 1.0},
          .rotation = {0.9988, -0.0262, 0.0415, 0.0251, 0.9993, 0.0279, -0.0422, -0.0268, 0.9987},
          .translation = {2.5, -0.4, 0.3},
          .tofDistortion = {0.31, -0.12, 0.004, -0.006, 0.05, 0.42, -0.07, 0.03},
          .auxDistortion = {-0.21, 0.09, -0.005, 0.003, 0.02, 0.06, -0.03, 0.04}};
  // clang-format on
}

struct Maps {
  std::vector<float> x = std::vector<float>(kWidth * kHeight, kUntouched);
  std::vector<float> y = x;
};

void ExpectNear(const Maps& maps, const std::vector<cv::Point2d>& expected, double tolerance) {
  for (size_t i = 0; i < expected.size(); ++i) {
    ASSERT_NEAR(static_cast<double>(maps.x[i]), expected[i].x, tolerance) << "entry " << i;
    ASSERT_NEAR(static_cast<double>(maps.y[i]), expected[i].y, tolerance) << "entry " << i;
  }
}

/// A camera matrix for a grid resized by the ratios. The outer edge of the first pixel, at -1/2, stays in place.
cv::Matx33d AtRatio(const double (&k)[9], double x, double y) {
  return {k[0] * x, 0, (k[2] + 0.5) * x - 0.5, 0, k[4] * y, (k[5] + 0.5) * y - 0.5, 0, 0, 1};
}

/// The far-plane positions after three rounds of undistortion, for the aux matrix `aux`.
std::vector<cv::Point2d> OpenCvFarPlane(const AlignmentParams& params, bool distortion, const cv::Matx33d& aux) {
  std::vector<cv::Point2d> pixels, seen;
  for (int i = 0; i < kWidth * kHeight; ++i) pixels.emplace_back(i % kWidth, i / kWidth);
  const auto lens = distortion ? cv::Matx<double, 1, 8>(params.tofDistortion) : cv::Matx<double, 1, 8>::zeros();
  cv::undistortPoints(pixels, seen, cv::Matx33d(params.tofIntrinsics), lens, cv::Matx33d(params.rotation), aux,
                      cv::TermCriteria(cv::TermCriteria::COUNT, 3, 0));
  return seen;
}

TEST(FarPlane, EqualsOpenCvsPositions) {
  const AlignmentParams params = MakeRig();
  // Half the step of a float below 256 pixels, and less than 1e-6 for the translation, which OpenCV's points at infinity
  // ignore: 2 * 57 pixels times 2.5 over the far plane's depth.
  constexpr double kTolerance = 0x1p-17 + 1e-6;
  const double ratios[][2] = {{1.0, 1.0}, {2.0, 2.0}, {0.75, 1.5}};
  for (const bool distortion : {false, true}) {
    for (const auto& [scaleX, scaleY] : ratios) {
      SCOPED_TRACE(testing::Message() << "distortion " << distortion << ", ratio " << scaleX << ", " << scaleY);
      AlignmentContext context{};
      InitAlignmentContext(context, params, distortion);
      Maps maps;
      AlignmentFarPlane(context, maps.x.data(), maps.y.data(), scaleX, scaleY);
      ExpectNear(maps, OpenCvFarPlane(params, distortion, AtRatio(params.auxIntrinsics, scaleX, scaleY)), kTolerance);
    }
  }
}

/// The lens table at a ratio, with (cx, cy) as the principal point of the distorted image.
Maps Table(const AlignmentParams& params, double ratio, double cx, double cy) {
  AlignmentContext context{};
  InitAlignmentContext(context, params, 0);
  std::ranges::copy(AtRatio(params.auxIntrinsics, ratio, ratio).val, context.auxRatioIntrinsics);
  context.auxModel.cx = cx;
  context.auxModel.cy = cy;
  Maps maps;
  DistortLUT(context, maps.x.data(), maps.y.data());
  return maps;
}

TEST(DistortLUT, EqualsOpenCvsPositionsWithoutTheRatio) {
  const AlignmentParams params = MakeRig();
  for (const double ratio : {1.0, 2.0, 0.5}) {
    const Maps table = Table(params, ratio, params.auxIntrinsics[2], params.auxIntrinsics[5]);
    const cv::Matx33d k = AtRatio(params.auxIntrinsics, ratio, ratio);
    std::vector<cv::Point3d> ideal;
    for (int i = 0; i < kWidth * kHeight; ++i) {
      ideal.emplace_back((i % kWidth - k(0, 2)) / k(0, 0), (i / kWidth - k(1, 2)) / k(1, 1), 1.0);
    }
    std::vector<cv::Point2d> expected;
    cv::projectPoints(ideal, cv::Vec3d(), cv::Vec3d(), cv::Matx33d(params.auxIntrinsics),
                      cv::Matx<double, 1, 8>(params.auxDistortion), expected);
    for (cv::Point2d& p : expected) {
      if (!(p.x >= 0 && p.x < kWidth && p.y >= 0 && p.y < kHeight))
        p = cv::Point2d(cv::Point2f(kUntouched, kUntouched));
    }
    ExpectNear(table, expected,
               0x1p-19 + 1e-12);  // half the step of a float below 64 pixels, and the last bits of doubles
  }
}

TEST(DistortLUT, StoresFromZeroToJustBelowTheSize) {
  // A pinhole camera with exact steps: (x, y) goes to (x + cx - 32, y + cy - 16).
  AlignmentParams params = MakeRig();
  const double camera[9] = {64, 0, 32, 0, 128, 16, 0, 0, 1};
  std::ranges::copy(camera, params.auxIntrinsics);
  std::ranges::fill(params.auxDistortion, 0.0);
  const struct {
    double cx, cy;
    size_t column, row;  // of the ideal cell
    float x, y;
  } cases[] = {
      {31, 15, 1, 1, 0.0F, 0.0F},
      {32 - 0x1p-40, 16, 0, 0, kUntouched, kUntouched},
      {32, 16 - 0x1p-40, 0, 0, kUntouched, kUntouched},
      {33, 16, 63, 0, kUntouched, kUntouched},
      {32, 17, 0, 47, kUntouched, kUntouched},
      {std::nextafter(64.0, 0.0), std::nextafter(48.0, 0.0), 32, 16, 64.0F,
       48.0F},  // inside, but rounded to the outside
      {32, std::nan(""), 32, 16, kUntouched, kUntouched},
  };
  for (const auto& c : cases) {
    const Maps table = Table(params, 1.0, c.cx, c.cy);
    EXPECT_EQ(table.x[c.row * kWidth + c.column], c.x) << c.cx << ", " << c.cy;
    EXPECT_EQ(table.y[c.row * kWidth + c.column], c.y) << c.cx << ", " << c.cy;
  }
}

}  // namespace
}  // namespace itof
