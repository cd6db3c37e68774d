// Draws the text and panels of all sheets in one style.
#ifndef ITOF_TOOL_REPORT_DRAWING_H_
#define ITOF_TOOL_REPORT_DRAWING_H_

#include <opencv2/core.hpp>
#include <string>

namespace itoftool {

inline constexpr int kMargin = 14;
inline constexpr int kTitleHeight = 34;
inline const cv::Scalar kPaper(30, 28, 28);
inline const cv::Scalar kInk(225, 225, 225);

/// Draws `text` with its left end at `x` and its vertical middle at `middle`. Returns the x of its right end.
int DrawText(cv::Mat& picture, const std::string& text, int x, int middle, const cv::Scalar& colour = kInk);

int TextWidth(const std::string& text);

/// Shortens a caption to `width` pixels by cutting its start, which is a file name. Replaces characters that the font
/// does not have.
std::string FitText(std::string text, int width);

/// Returns the pattern for pixels without depth, CV_8UC3.
cv::Mat Hatch(int width, int height);

/// Draws `panel`, with a title above it, at a column and row of a grid of equal panels.
void DrawPanel(cv::Mat& sheet, int column, int row, const std::string& title, const cv::Mat& panel);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_DRAWING_H_
