// What the sheets that commands draw have in common.
#ifndef ITOF_TOOL_REPORT_DRAWING_H_
#define ITOF_TOOL_REPORT_DRAWING_H_

#include <opencv2/core.hpp>
#include <string>

namespace itoftool {

inline constexpr int kMargin = 14;
inline constexpr int kTitleHeight = 34;
inline const cv::Scalar kPaper(30, 28, 28);
inline const cv::Scalar kInk(225, 225, 225);

/// Draws `text` with its left end at `x` and its middle at `middle`; returns the x behind it.
int DrawText(cv::Mat& picture, const std::string& text, int x, int middle, const cv::Scalar& colour = kInk);

int TextWidth(const std::string& text);

/// The end of a caption says more than its start, a file name; what is too long loses its front. The font has ASCII
/// only.
std::string FitText(std::string text, int width);

/// The pattern that stands for no depth, CV_8UC3.
cv::Mat Hatch(int width, int height);

/// Puts `panel` with a title over it in a column and row of equal panels.
void DrawPanel(cv::Mat& sheet, int column, int row, const std::string& title, const cv::Mat& panel);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_DRAWING_H_
