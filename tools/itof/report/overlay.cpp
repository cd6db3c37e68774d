// Finds where depth jumps, and draws that over a picture.
#include "report/overlay.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <opencv2/imgproc.hpp>

namespace itoftool {
namespace {

/// Fills the gaps in the rows of `codes` with the farther depth of their two ends, since near objects hide far ones. Wide
/// gaps and those at the frame's border stay.
void FillRows(cv::Mat& codes) {
  constexpr int kWidest = 48, kEnd = 5;  // a single pixel at the end may lie between the near and the far surface
  cv::Mat farthest;
  cv::dilate(codes, farthest, cv::Mat::ones(1, kEnd, CV_8U));
  for (int y = 0; y < codes.rows; ++y) {
    auto* row = codes.ptr<uint16_t>(y);
    const auto* ends = farthest.ptr<uint16_t>(y);
    int last = codes.cols;  // the last pixel with depth
    for (int x = 0; x < codes.cols; ++x) {
      if (row[x] == 0) continue;
      if (last < x && x - last <= kWidest) std::fill(row + last + 1, row + x, std::max(ends[last], ends[x]));
      last = x;
    }
  }
}

/// Returns a mask of the pixels on either side of each jump in depth.
cv::Mat DepthEdges(const cv::Mat& codes) {
  constexpr double kRelativeStep = 0.08, kSmallestStep = 32;
  cv::Mat smooth;
  cv::medianBlur(codes, smooth, 5);
  for (int direction = 0; direction < 2; ++direction) {
    FillRows(smooth);
    cv::transpose(smooth, smooth);
  }
  cv::medianBlur(smooth, smooth, 5);
  cv::Mat nearest, farthest, limit;
  cv::dilate(smooth, farthest, cv::Mat());
  smooth.setTo(std::numeric_limits<uint16_t>::max(), smooth == 0);
  cv::erode(smooth, nearest, cv::Mat());
  nearest.convertTo(limit, CV_16U, 1 + kRelativeStep, kSmallestStep);
  return farthest > limit;
}

}  // namespace

cv::Mat Overlay(const cv::Mat& codes, const ColourScale& scale, const cv::Mat& picture) {
  constexpr float kOpacity = 0.4F;
  cv::Mat grey, background, rim;
  cv::cvtColor(picture, grey, cv::COLOR_BGR2GRAY);
  cv::cvtColor(grey, background, cv::COLOR_GRAY2BGR);
  cv::Mat overlay = Colourise(codes, scale, background, kOpacity);
  const cv::Mat edges = DepthEdges(codes);
  cv::dilate(edges, rim, cv::Mat());
  overlay.setTo(cv::Scalar::all(0), rim);
  overlay.setTo(cv::Scalar::all(255), edges);
  return overlay;
}

}  // namespace itoftool
