// Turns frames of words into pictures of depth codes.
#ifndef ITOF_TOOL_REPORT_DEPTHPICTURES_H_
#define ITOF_TOOL_REPORT_DEPTHPICTURES_H_

#include <cstdint>
#include <opencv2/core.hpp>
#include <vector>

namespace itoftool {

// Both take 640 x 360 words, row after row, and return CV_16U. Pixels without depth are 0.

/// Returns the depth codes of depth words, 0..8191.
cv::Mat DepthPicture(const std::vector<uint16_t>& depthWords);

/// Returns the depth codes of aligned words, 0..4080 in steps of 16.
cv::Mat AlignedDepthPicture(const std::vector<uint16_t>& alignedWords);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_DEPTHPICTURES_H_
