// Draws the fates: landed pixels in a dim colour, lost pixels in bright ones.
#include "report/fatesheet.h"

#include <algorithm>
#include <iterator>

#include "framesize.h"
#include "report/drawing.h"

namespace itoftool {
namespace {

constexpr int kLineHeight = 24;
constexpr int kSwatchWidth = 40, kSwatchHeight = 14;
constexpr int kCountWidth = 90;

/// Blue, green, red, in the order of the fates. They differ in brightness or between blue and yellow, which almost every
/// reader can tell apart.
const cv::Vec3b kColours[] = {{104, 92, 70}, {}, {50, 130, 185}, {255, 190, 80}, {255, 255, 255}, {70, 230, 240}};
static_assert(std::size(kColours) == std::size(kFateNames));

}  // namespace

cv::Mat DrawFates(const FrameFates& frame, const std::string& caption) {
  constexpr int kWidth = itof::kFrameWidth, kHeight = itof::kFrameHeight;
  constexpr int kLines = static_cast<int>(std::size(kFateNames)) + 1;
  // Pixels without depth stay hatched.
  cv::Mat view = Hatch(kWidth, kHeight);
  auto pixel = view.begin<cv::Vec3b>();
  for (const Fate fate : frame.fates) {
    if (fate != Fate::kNoDepth) *pixel = kColours[static_cast<size_t>(fate)];
    ++pixel;
  }
  const int legendTop = kTitleHeight + kHeight + kMargin;
  cv::Mat sheet(legendTop + kLines * kLineHeight + kMargin, kWidth + 2 * kMargin, CV_8UC3, kPaper);
  DrawPanel(sheet, 0, 0, "Outcome of each pixel, ToF view", view);
  for (size_t i = 0; i < std::size(kFateNames); ++i) {
    const int top = legendTop + static_cast<int>(i) * kLineHeight;
    const cv::Rect place(kMargin, top, kSwatchWidth, kSwatchHeight);
    const bool hatched = static_cast<Fate>(i) == Fate::kNoDepth;
    const cv::Mat plain(kSwatchHeight, kSwatchWidth, CV_8UC3, cv::Scalar(kColours[i]));
    (hatched ? Hatch(kSwatchWidth, kSwatchHeight) : plain).copyTo(sheet(place));
    const size_t count = frame.counts.byFate[i];
    const int middle = top + kSwatchHeight / 2;
    const std::string countText = std::to_string(count);
    DrawText(sheet, countText, place.x + kSwatchWidth + kCountWidth - TextWidth(countText), middle);
    DrawText(sheet, kFateNames[i].text, place.x + kSwatchWidth + kCountWidth + kMargin, middle);
  }
  const int captionMiddle = legendTop + (kLines - 1) * kLineHeight + kLineHeight / 2;
  DrawText(sheet, FitText(caption, kWidth), kMargin, captionMiddle);
  return sheet;
}

}  // namespace itoftool
