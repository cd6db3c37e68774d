// Reads pictures as 640 x 360 pixels, and encodes PNG files.
#ifndef ITOF_TOOL_FILES_PICTURES_H_
#define ITOF_TOOL_FILES_PICTURES_H_

#include <cstdint>
#include <filesystem>
#include <opencv2/core.hpp>
#include <vector>

namespace itoftool {

/// Reads a PNG file of one channel and 640 x 360 pixels. `depth` is CV_8U or CV_16U; the file must have that depth.
/// Refuses others by their header, before their pixels take memory. Throws DataError.
cv::Mat ReadGreyPng(const std::filesystem::path& path, int depth);

/// Reads a picture in any format that OpenCV knows, as 640 x 360 pixels of 8-bit blue, green, red. Resizes pictures of
/// other 16:9 sizes up to 100 megapixels, and leaves the pixels in their stored order: ignores an EXIF orientation.
/// Throws DataError.
cv::Mat ReadColourPicture(const std::filesystem::path& path);

/// Returns the bytes of a PNG file with the values of `picture`.
std::vector<uint8_t> EncodePng(const cv::Mat& picture);

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_PICTURES_H_
