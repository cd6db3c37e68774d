// Chooses the limits of a colour scale and colours depth pictures.
#include "report/colourscale.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace itoftool {
namespace {

// With few shades, sensor noise hardly changes colours, and the PNG file stays small.
constexpr int kShades = 20;

}  // namespace

ColourScale::ColourScale(const cv::Mat& codes) {
  std::vector<uint16_t> sorted;
  std::copy_if(codes.begin<uint16_t>(), codes.end<uint16_t>(), std::back_inserter(sorted),
               [](uint16_t code) { return code != 0; });
  std::ranges::sort(sorted);
  if (!sorted.empty()) {
    near_ = sorted[sorted.size() / 100];
    far_ = sorted[sorted.size() - 1 - sorted.size() / 100];
  }
  far_ = std::max(far_, near_ + 16);  // one step of the output
  cv::Mat ramp(1, kShades, CV_8U);
  for (int i = 0; i < kShades; ++i) ramp.at<uint8_t>(i) = static_cast<uint8_t>(255 - i * 255 / (kShades - 1));
  cv::applyColorMap(ramp, shades_, cv::COLORMAP_PLASMA);
}

cv::Vec3b ColourScale::operator()(int code) const {
  const int shade = (code - near_) * kShades / (far_ - near_);
  return shades_.at<cv::Vec3b>(std::clamp(shade, 0, kShades - 1));
}

cv::Mat Colourise(const cv::Mat& codes, const ColourScale& scale, const cv::Mat& background, float opacity) {
  cv::Mat picture = background.clone();
  for (int y = 0; y < codes.rows; ++y) {
    for (int x = 0; x < codes.cols; ++x) {
      const uint16_t code = codes.at<uint16_t>(y, x);
      if (code == 0) continue;
      auto& pixel = picture.at<cv::Vec3b>(y, x);
      pixel = cv::Vec3f(scale(code)) * opacity + cv::Vec3f(pixel) * (1 - opacity);
    }
  }
  return picture;
}

}  // namespace itoftool
