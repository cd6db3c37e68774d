// Draws depth over the aux camera's picture.
#ifndef ITOF_TOOL_REPORT_OVERLAY_H_
#define ITOF_TOOL_REPORT_OVERLAY_H_

#include <opencv2/core.hpp>

#include "report/colourscale.h"

namespace itoftool {

/// Draws the colours of `codes` (CV_16U; 0 means no depth) over a grey `picture` (CV_8UC3, of the same size), and white
/// lines where the depth jumps. If the depth fits the picture, these lines run along the edges of the objects in it.
cv::Mat Overlay(const cv::Mat& codes, const ColourScale& scale, const cv::Mat& picture);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_OVERLAY_H_
