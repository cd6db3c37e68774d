// Pictures in and out. What is read has the frame's size when it is handed on.
#ifndef ITOF_TOOL_FILES_PICTURES_H_
#define ITOF_TOOL_FILES_PICTURES_H_

#include <cstdint>
#include <filesystem>
#include <opencv2/core.hpp>
#include <vector>

namespace itoftool {

/// The values of a PNG of one channel, 640 x 360. `depth` is CV_8U or CV_16U, and the file must hold just that. Throws
/// DataError.
cv::Mat ReadGreyPng(const std::filesystem::path& path, int depth);

/// A picture of any format that OpenCV reads, as 640 x 360 pixels of 8-bit blue, green, red; other sizes of 16:9 are
/// resized. Throws DataError.
cv::Mat ReadColourPicture(const std::filesystem::path& path);

/// The bytes of a PNG file with the values of `picture`.
std::vector<uint8_t> EncodePng(const cv::Mat& picture);

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_PICTURES_H_
