// The picture in which a person sees whether a frame is aligned.
#ifndef ITOF_TOOL_REPORT_PREVIEW_H_
#define ITOF_TOOL_REPORT_PREVIEW_H_

#include <opencv2/core.hpp>
#include <string>

namespace itoftool {

/// Draws depth before and after alignment side by side, in one colour scale with a legend. Both are CV_16U of 640 x 360
/// depth codes, 0 where there is no depth: `input` in the ToF camera's view, 0..8191, `aligned` in the aux camera's,
/// 0..4080. With `aux`, the aux camera's picture (CV_8UC3, 640 x 360; may be empty), it also shows that picture, alone
/// and under the aligned depth. `caption` is one line of text.
cv::Mat DrawPreview(const cv::Mat& input, const cv::Mat& aligned, const cv::Mat& aux, const std::string& caption);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_PREVIEW_H_
