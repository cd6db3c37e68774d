// Draws a picture that shows how well a frame is aligned.
#ifndef ITOF_TOOL_REPORT_PREVIEW_H_
#define ITOF_TOOL_REPORT_PREVIEW_H_

#include <opencv2/core.hpp>
#include <string>

namespace itoftool {

/// Draws depth before and after alignment side by side, in one colour scale with a legend. `input` (ToF camera's view,
/// 0..8191) and `aligned` (aux camera's view, 0..4080) are CV_16U pictures of 640 x 360 depth codes; 0 means no depth.
/// `aux` is the aux camera's picture, CV_8UC3 of 640 x 360; unless it is empty, a row above shows both depths over it.
/// `caption` is one line of text.
cv::Mat DrawPreview(const cv::Mat& input, const cv::Mat& aligned, const cv::Mat& aux, const std::string& caption);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_PREVIEW_H_
