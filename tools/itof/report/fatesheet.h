// Draws a picture that shows where depth pixels get lost.
#ifndef ITOF_TOOL_REPORT_FATESHEET_H_
#define ITOF_TOOL_REPORT_FATESHEET_H_

#include <opencv2/core.hpp>
#include <string>

#include "inspection/pixeltrace.h"

namespace itoftool {

/// Draws the ToF view with a colour for each pixel's fate, and a legend with the counts. `caption` is one line of text.
cv::Mat DrawFates(const FrameFates& frame, const std::string& caption);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_FATESHEET_H_
