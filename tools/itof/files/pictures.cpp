// Reads and writes pictures. Refuses damaged files and unexpected layouts, and keeps OpenCV and its decoders from
// printing.
#include "files/pictures.h"

#include <algorithm>
#include <iterator>
#include <opencv2/core/utils/logger.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>

#include "files/files.h"
#include "framesize.h"
#include "support/errors.h"
#include "support/silence.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

constexpr char kDamaged[] = "is damaged, or not a picture in a known format";
const cv::Size kFrameSize(itof::kFrameWidth, itof::kFrameHeight);

bool StartsWith(std::span<const uint8_t> bytes, std::initializer_list<uint8_t> start) {
  return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

/// Size and layout of a picture, from the header of its file.
struct Header {
  uint32_t width, height;
  int bits, channels;
  size_t scan;  // where the compressed picture starts at the earliest
};

uint32_t BigEndian(std::span<const uint8_t> bytes, size_t at, size_t count) {
  uint32_t value = 0;
  for (const uint8_t byte : bytes.subspan(at, count)) value = value << 8 | byte;
  return value;
}

bool IsPng(std::span<const uint8_t> bytes) { return StartsWith(bytes, {0x89, 'P', 'N', 'G'}); }

std::optional<Header> PngHeader(std::span<const uint8_t> bytes) {
  constexpr size_t kHeaderEnd = 33;  // after the signature and the first chunk
  constexpr int kChannels[] = {1, 0, 3, 3, 2, 0, 4};
  if (bytes.size() < kHeaderEnd || bytes[25] >= std::size(kChannels)) return {};
  return Header{BigEndian(bytes, 16, 4), BigEndian(bytes, 20, 4), bytes[24], kChannels[bytes[25]], kHeaderEnd};
}

/// Goes from marker to marker, as decoders do, up to the first scan.
std::optional<Header> JpegHeader(std::span<const uint8_t> bytes) {
  std::optional<Header> header;
  size_t at = 2;
  while (true) {
    while (at < bytes.size() && bytes[at] != 0xFF) ++at;
    while (at < bytes.size() && bytes[at] == 0xFF) ++at;
    if (at + 3 > bytes.size()) return {};
    const uint8_t marker = bytes[at++];
    if (marker <= 0x01 || (marker >= 0xD0 && marker <= 0xD8)) continue;  // these stand alone
    if (marker == 0xD9) return {};                                       // end of the picture
    if (marker == 0xDA) {                                                // start of a scan
      if (header) header->scan = at;
      return header;
    }
    const bool isTable = marker == 0xC4 || marker == 0xC8 || marker == 0xCC;
    if (marker >= 0xC0 && marker <= 0xCF && !isTable && at + 8 <= bytes.size()) {
      header = {BigEndian(bytes, at + 5, 2), BigEndian(bytes, at + 3, 2), bytes[at + 2], bytes[at + 7], 0};
    }
    at += BigEndian(bytes, at, 2);
  }
}

/// Reads the header of a PNG or JPEG file; returns none for other formats. Fails if such a file has no header, or if it
/// is a JPEG file that ends before its picture does: the decoder would fill up the rest without an error.
std::optional<Header> ReadHeader(const fs::path& path, std::span<const uint8_t> bytes) {
  const bool isJpeg = StartsWith(bytes, {0xFF, 0xD8});
  if (!isJpeg && !IsPng(bytes)) return {};
  const std::optional<Header> header = isJpeg ? JpegHeader(bytes) : PngHeader(bytes);
  if (!header) Fail(path, kDamaged);
  // An embedded thumbnail has an end marker of its own, before the scan.
  constexpr uint8_t kEndOfImage[] = {0xFF, 0xD9};
  const auto scan = bytes.subspan(header->scan);
  const auto end = std::search(scan.begin(), scan.end(), std::begin(kEndOfImage), std::end(kEndOfImage));
  if (isJpeg && end == scan.end()) Fail(path, kDamaged);
  return header;
}

cv::Mat Decode(const fs::path& path, std::span<const uint8_t> bytes, int flags) {
  cv::utils::logging::setLogLevel(cv::utils::logging::LOG_LEVEL_SILENT);
  cv::Mat picture;
  if (!bytes.empty()) {
    const Silence silence(stderr);
    try {
      const cv::Mat file(1, static_cast<int>(bytes.size()), CV_8U, const_cast<uint8_t*>(bytes.data()));
      picture = cv::imdecode(file, flags);
    } catch (const cv::Exception&) {
      picture.release();  // refused below
    }
  }
  if (picture.empty()) Fail(path, kDamaged);
  return picture;
}

std::string SizeText(int64_t width, int64_t height) {
  return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

std::string LayoutText(int bits, int channels) {
  return std::to_string(bits) + " bits and " + std::to_string(channels) + (channels == 1 ? " channel" : " channels");
}

void CheckColourSize(const fs::path& path, int64_t width, int64_t height) {
  constexpr int64_t kMostPixels = 100'000'000;
  if (width * itof::kFrameHeight != height * itof::kFrameWidth) {
    Fail(path, "has " + SizeText(width, height) + "; expected 640 x 360 or another 16:9 size");
  }
  if (width > kMostPixels || width * height > kMostPixels)
    Fail(path, "has " + SizeText(width, height) + "; the limit is 100 megapixels");
}

}  // namespace

cv::Mat ReadGreyPng(const fs::path& path, int depth) {
  const std::vector<uint8_t> bytes = ReadFile(path);
  if (!IsPng(bytes)) Fail(path, "is not a PNG file");
  const Header header = *ReadHeader(path, bytes);
  const int bits = depth == CV_8U ? 8 : 16;
  if (header.bits != bits || header.channels != 1) {
    Fail(path, "has " + LayoutText(header.bits, header.channels) + " per pixel; expected " + LayoutText(bits, 1));
  }
  if (header.width != itof::kFrameWidth || header.height != itof::kFrameHeight) {
    Fail(path, "has " + SizeText(header.width, header.height) + "; expected 640 x 360");
  }
  cv::Mat picture = Decode(path, bytes, cv::IMREAD_UNCHANGED);
  // The decoder reads the header as well; where it understands it differently, the values cannot be trusted.
  if (picture.type() != CV_MAKETYPE(depth, 1) || picture.size() != kFrameSize) Fail(path, kDamaged);
  return picture;
}

cv::Mat ReadColourPicture(const fs::path& path) {
  const std::vector<uint8_t> bytes = ReadFile(path);
  // A small file may claim, or hold, a picture that fills the memory.
  if (const auto header = ReadHeader(path, bytes)) CheckColourSize(path, header->width, header->height);
  // The calibration is about pixels as they are stored, not as a viewer turns them.
  cv::Mat picture = Decode(path, bytes, cv::IMREAD_COLOR | cv::IMREAD_IGNORE_ORIENTATION);
  CheckColourSize(path, picture.cols, picture.rows);
  if (picture.size() != kFrameSize) cv::resize(picture, picture, kFrameSize, 0, 0, cv::INTER_AREA);
  return picture;
}

std::vector<uint8_t> EncodePng(const cv::Mat& picture) {
  std::vector<uint8_t> bytes;
  if (!cv::imencode(".png", picture, bytes, {cv::IMWRITE_PNG_COMPRESSION, 6})) {
    throw std::runtime_error("a picture cannot be encoded as PNG");
  }
  return bytes;
}

}  // namespace itoftool
