// Reads and writes pictures. Refuses damaged files and unexpected layouts, and keeps OpenCV and its decoders from
// printing.
#include "files/pictures.h"

#include <algorithm>
#include <iterator>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <span>
#include <string>

#include "files/files.h"
#include "framesize.h"
#include "support/errors.h"
#include "support/silence.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

bool StartsWith(std::span<const uint8_t> bytes, std::initializer_list<uint8_t> start) {
  return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

/// Returns whether a JPEG file ends before its picture does; the decoder would fill up the rest without an error. Looks
/// for the end-of-image marker only after the first scan starts, since an embedded thumbnail has its own marker.
bool IsTruncatedJpeg(std::span<const uint8_t> bytes) {
  if (!StartsWith(bytes, {0xFF, 0xD8})) return false;
  size_t at = 2;
  constexpr uint8_t kStartOfScan = 0xDA;
  while (at + 4 <= bytes.size() && bytes[at] == 0xFF && bytes[at + 1] != kStartOfScan) {
    // Any number of FF bytes may precede a marker.
    at += bytes[at + 1] == 0xFF ? 1 : size_t{2} + bytes[at + 2] * size_t{256} + bytes[at + 3];
  }
  constexpr uint8_t kEndOfImage[] = {0xFF, 0xD9};
  const auto rest = bytes.subspan(std::min(at, bytes.size()));
  return std::search(rest.begin(), rest.end(), std::begin(kEndOfImage), std::end(kEndOfImage)) == rest.end();
}

cv::Mat Decode(const fs::path& path, std::span<const uint8_t> bytes, int flags) {
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  cv::Mat picture;
  if (!bytes.empty() && !IsTruncatedJpeg(bytes)) {
    const Silence silence(stderr);
    try {
      const cv::Mat header(1, static_cast<int>(bytes.size()), CV_8U, const_cast<uint8_t*>(bytes.data()));
      picture = cv::imdecode(header, flags);
    } catch (const cv::Exception&) {
      picture.release();  // refused below
    }
  }
  if (picture.empty()) Fail(path, "is damaged, or not a picture in a known format");
  return picture;
}

std::string SizeText(const cv::Mat& picture) {
  return std::to_string(picture.cols) + " x " + std::to_string(picture.rows) + " pixels";
}

std::string LayoutText(int bits, int channels) {
  return std::to_string(bits) + " bits and " + std::to_string(channels) + (channels == 1 ? " channel" : " channels");
}

}  // namespace

cv::Mat ReadGreyPng(const fs::path& path, int depth) {
  const std::vector<uint8_t> bytes = ReadFile(path);
  if (!StartsWith(bytes, {0x89, 'P', 'N', 'G'})) Fail(path, "is not a PNG file");
  cv::Mat picture = Decode(path, bytes, cv::IMREAD_UNCHANGED);
  if (picture.type() != CV_MAKETYPE(depth, 1)) {
    Fail(path, "has " + LayoutText(static_cast<int>(picture.elemSize1()) * 8, picture.channels()) +
                   " per pixel; expected " + LayoutText(depth == CV_8U ? 8 : 16, 1));
  }
  if (picture.cols != itof::kFrameWidth || picture.rows != itof::kFrameHeight) {
    Fail(path, "has " + SizeText(picture) + "; expected 640 x 360");
  }
  return picture;
}

cv::Mat ReadColourPicture(const fs::path& path) {
  cv::Mat picture = Decode(path, ReadFile(path), cv::IMREAD_COLOR);
  if (int64_t{picture.cols} * itof::kFrameHeight != int64_t{picture.rows} * itof::kFrameWidth) {
    Fail(path, "has " + SizeText(picture) + "; expected 640 x 360 or another 16:9 size");
  }
  const cv::Size size(itof::kFrameWidth, itof::kFrameHeight);
  if (picture.size() != size) cv::resize(picture, picture, size, 0, 0, cv::INTER_AREA);
  return picture;
}

std::vector<uint8_t> EncodePng(const cv::Mat& picture) {
  std::vector<uint8_t> bytes;
  cv::imencode(".png", picture, bytes, {cv::IMWRITE_PNG_COMPRESSION, 6});
  return bytes;
}

}  // namespace itoftool
