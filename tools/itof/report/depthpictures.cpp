// Extracts depth codes from words.
#include "report/depthpictures.h"

#include <algorithm>

#include "framesize.h"
#include "pixelwords.h"

namespace itoftool {
namespace {

template <typename Code>
cv::Mat Picture(const std::vector<uint16_t>& words, const Code& code) {
  cv::Mat picture(itof::kFrameHeight, itof::kFrameWidth, CV_16U);
  std::ranges::transform(words, picture.begin<uint16_t>(), code);
  return picture;
}

}  // namespace

cv::Mat DepthPicture(const std::vector<uint16_t>& depthWords) { return Picture(depthWords, itof::DepthCode); }

cv::Mat AlignedDepthPicture(const std::vector<uint16_t>& alignedWords) {
  return Picture(alignedWords, [](uint16_t word) { return static_cast<uint16_t>((word & 0xFF) * 16); });
}

}  // namespace itoftool
