// Draws text and panels.
#include "report/drawing.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace itoftool {
namespace {

constexpr int kTextHeight = 14;

}  // namespace

int DrawText(cv::Mat& picture, const std::string& text, int x, int middle, const cv::Scalar& colour) {
  constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;
  constexpr double kScale = kTextHeight / 22.0;
  cv::putText(picture, text, {x, middle + kTextHeight / 2}, kFont, kScale, colour, 1, cv::LINE_AA);
  return x + cv::getTextSize(text, kFont, kScale, 1, nullptr).width;
}

int TextWidth(const std::string& text) {
  cv::Mat none(1, 1, CV_8UC3);
  return DrawText(none, text, 0, 0);
}

std::string FitText(std::string text, int width) {
  std::ranges::replace_if(
      text, [](char c) { return c < ' ' || c > '~'; }, '?');
  if (TextWidth(text) <= width) return text;
  while (!text.empty() && TextWidth("..." + text) > width) text.erase(0, 1);
  return "..." + text;
}

cv::Mat Hatch(int width, int height) {
  cv::Mat hatch(height, width, CV_8UC3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      hatch.at<cv::Vec3b>(y, x) = cv::Vec3b::all((x + y) % 8 < 2 ? 88 : 56);
    }
  }
  return hatch;
}

void DrawPanel(cv::Mat& sheet, int column, int row, const std::string& title, const cv::Mat& panel) {
  const int x = kMargin + column * (panel.cols + kMargin);
  const int y = row * (panel.rows + kTitleHeight) + kTitleHeight;
  DrawText(sheet, title, x, y - kTitleHeight / 2 + 2);
  panel.copyTo(sheet(cv::Rect(x, y, panel.cols, panel.rows)));
}

}  // namespace itoftool
