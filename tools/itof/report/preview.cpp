// Draws the preview. Pixels without depth are hatched grey, a colour outside the depth scale.
#include "report/preview.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <opencv2/imgproc.hpp>

#include "report/colourscale.h"
#include "report/drawing.h"
#include "report/overlay.h"

namespace itoftool {
namespace {

constexpr int kLegendHeight = 74;
const cv::Scalar kWarning(60, 190, 255);

/// Rounds the colours to fewer levels, which is hardly visible and halves the size of the file.
cv::Mat Coarsen(const cv::Mat& picture) {
  constexpr int kLevels = 24;
  cv::Mat coarse(1, 256, CV_8U);
  for (int i = 0; i < 256; ++i) {
    coarse.at<uint8_t>(i) = static_cast<uint8_t>((i * (kLevels - 1) + 127) / 255 * 255 / (kLevels - 1));
  }
  cv::Mat result;
  cv::LUT(picture, coarse, result);
  return result;
}

/// Draws the colour scale as a bar from `left` to `right`, with round numbers under it.
void DrawColourBar(cv::Mat& sheet, const ColourScale& scale, int left, int right, int top) {
  constexpr int kBarHeight = 14;
  const int range = scale.Far() - scale.Near();
  const int width = right - left;
  for (int x = 0; x < width; ++x) {
    const cv::Vec3b colour = scale(scale.Near() + x * range / (width - 1));
    cv::line(sheet, {left + x, top}, {left + x, top + kBarHeight - 1}, cv::Scalar(colour));
  }
  const double power = std::pow(10, std::floor(std::log10(std::max(range / 8.0, 1.0))));
  int step = static_cast<int>(power);
  for (const int factor : {2, 5, 10}) {
    if (range / step > 8) step = factor * static_cast<int>(power);
  }
  for (int code = (scale.Near() + step - 1) / step * step; code <= scale.Far(); code += step) {
    const int x = left + (code - scale.Near()) * (width - 1) / range;
    const std::string text = std::to_string(code);
    cv::line(sheet, {x, top + kBarHeight}, {x, top + kBarHeight + 4}, kInk);
    DrawText(sheet, text, x - TextWidth(text) / 2, top + kBarHeight + 15);
  }
}

}  // namespace

cv::Mat DrawPreview(const cv::Mat& input, const cv::Mat& aligned, const cv::Mat& aux, const std::string& caption) {
  const ColourScale scale(input);
  const cv::Mat hatch = Hatch(input.cols, input.rows);
  const int panelRows = aux.empty() ? 1 : 2;
  const int width = 2 * input.cols + 3 * kMargin;
  const int legendTop = panelRows * (input.rows + kTitleHeight) + kMargin;
  cv::Mat sheet(legendTop + kLegendHeight, width, CV_8UC3, kPaper);

  if (!aux.empty()) {
    DrawPanel(sheet, 0, 0, "Before: input depth and its edges over the aux picture", Overlay(input, scale, aux));
    DrawPanel(sheet, 1, 0, "After: aligned depth and its edges over the aux picture", Overlay(aligned, scale, aux));
  }
  DrawPanel(sheet, 0, panelRows - 1, "Input depth, ToF view", Colourise(input, scale, hatch, 1));
  DrawPanel(sheet, 1, panelRows - 1, "Aligned depth, aux view", Colourise(aligned, scale, hatch, 1));

  constexpr int kBarTop = 2;
  const int textMiddle = legendTop + kBarTop + 7;
  int x = DrawText(sheet, "depth, codes (usually mm)", kMargin, textMiddle) + kMargin;
  const std::string noDepth = "no depth";
  const int swatchLeft = width - kMargin - TextWidth(noDepth) - 50;
  DrawColourBar(sheet, scale, x + kMargin, swatchLeft - 3 * kMargin, legendTop + kBarTop);
  Hatch(40, 14).copyTo(sheet(cv::Rect(swatchLeft, legendTop + kBarTop, 40, 14)));
  DrawText(sheet, noDepth, swatchLeft + 50, textMiddle);

  const int captionMiddle = legendTop + kLegendHeight - 18;
  std::string warning;
  double largest = 0;
  cv::minMaxLoc(input, nullptr, &largest);
  if (largest >= 4096) warning = "input exceeds 4095: aligned depth wraps at 4096";
  const int warningLeft = width - kMargin - TextWidth(warning);
  DrawText(sheet, FitText(caption, warningLeft - 3 * kMargin), kMargin, captionMiddle);
  DrawText(sheet, warning, warningLeft, captionMiddle, kWarning);
  return Coarsen(sheet);
}

}  // namespace itoftool
