// Converts input files to depth words.
#include "files/frames.h"

#include <bit>
#include <cstring>
#include <opencv2/core.hpp>
#include <string>

#include "files/files.h"
#include "files/pictures.h"
#include "framesize.h"
#include "pixelwords.h"
#include "support/errors.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

constexpr size_t kPixels = size_t{itof::kFrameWidth} * itof::kFrameHeight;
constexpr uint16_t kLargestCode = 8191;
constexpr uint8_t kLargestConfidence = 7;

std::vector<uint16_t> ReadRawWords(const fs::path& path) {
  static_assert(std::endian::native == std::endian::little);
  const std::vector<uint8_t> bytes = ReadFile(path);
  std::vector<uint16_t> words(kPixels);
  const size_t needed = kPixels * sizeof words[0];
  if (bytes.size() != needed) {
    throw DataError(path.string() + ": holds " + std::to_string(bytes.size()) + " bytes; a frame of depth words has " +
                    std::to_string(needed));
  }
  std::memcpy(words.data(), bytes.data(), needed);
  return words;
}

cv::Mat ReadConfidence(const fs::path& path) {
  if (path.empty()) return {itof::kFrameHeight, itof::kFrameWidth, CV_8U, cv::Scalar(kLargestConfidence)};
  cv::Mat confidence = ReadGreyPng(path, CV_8U);
  for (int row = 0; row < confidence.rows; ++row) {
    for (int column = 0; column < confidence.cols; ++column) {
      const int value = confidence.at<uint8_t>(row, column);
      if (value <= kLargestConfidence) continue;
      throw DataError(path.string() + ": pixel (" + std::to_string(column) + ", " + std::to_string(row) +
                      "): confidence " + std::to_string(value) + " is above 7");
    }
  }
  return confidence;
}

DepthFrame FrameFromMillimetres(const cv::Mat& millimetres, const cv::Mat& confidence) {
  DepthFrame frame;
  frame.words.reserve(kPixels);
  for (int row = 0; row < millimetres.rows; ++row) {
    for (int column = 0; column < millimetres.cols; ++column) {
      uint16_t code = millimetres.at<uint16_t>(row, column);
      if (code > kLargestCode) {
        code = 0;
        ++frame.aboveRange;
      }
      frame.words.push_back(static_cast<uint16_t>(confidence.at<uint8_t>(row, column) << 13 | code));
    }
  }
  return frame;
}

}  // namespace

DepthFrame ReadDepthFrame(const fs::path& path, FrameFormat format, const fs::path& confidence) {
  if (format == FrameFormat::kRawWords) return {ReadRawWords(path)};
  const cv::Mat values = ReadGreyPng(path, CV_16U);
  if (format == FrameFormat::kPngWords) return {{values.begin<uint16_t>(), values.end<uint16_t>()}};
  return FrameFromMillimetres(values, ReadConfidence(confidence));
}

}  // namespace itoftool
