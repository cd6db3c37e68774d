// Maps depth to colours.
#ifndef ITOF_TOOL_REPORT_COLOURSCALE_H_
#define ITOF_TOOL_REPORT_COLOURSCALE_H_

#include <opencv2/core.hpp>

namespace itoftool {

/// Maps depth codes between two limits to colours from yellow (near) to dark blue (far); codes beyond a limit get its
/// colour. Brightness falls with depth, so readers who cannot tell hues apart can still read the scale.
class ColourScale {
 public:
  /// Chooses limits for `codes`, CV_16U depth codes. Leaves out 1 % of the pixels with depth at each end, so a few stray
  /// pixels do not compress the scale of the rest.
  explicit ColourScale(const cv::Mat& codes);

  int Near() const { return near_; }
  int Far() const { return far_; }
  cv::Vec3b operator()(int code) const;

 private:
  int near_ = 0;
  int far_ = 0;
  cv::Mat shades_;
};

/// Returns `background` (CV_8UC3) with the colours of `codes` (CV_16U, of the same size) blended over it with `opacity`
/// (0..1) where there is depth.
cv::Mat Colourise(const cv::Mat& codes, const ColourScale& scale, const cv::Mat& background, float opacity);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_COLOURSCALE_H_
