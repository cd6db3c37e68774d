// Fuzz target for the tool's readers. Each of them accepts a file or refuses it with an error of the tool.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "check/findings.h"
#include "files/calibrationfile.h"
#include "files/frames.h"
#include "files/pictures.h"
#include "fuzz/require.h"
#include "stereo/file.h"
#include "stereo/record.h"
#include "support/errors.h"

namespace {

using namespace itoftool;

/// A file in memory.
class MemoryFile {
 public:
  MemoryFile(const uint8_t* data, size_t size) : descriptor_(memfd_create("input", MFD_CLOEXEC)) {
    Require(write(descriptor_, data, size) == static_cast<ssize_t>(size), "the input can be written");
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::filesystem::path Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

/// Requires that the export of a record imports as the same record.
void RequireRoundTrip(const itof::CalibrationRecord& record) {
  for (const char* name : {"a.yml", "a.xml", "a.json"}) {
    const std::string text = StereoFileText(PairOf(record), StereoFileFormat(name));
    const MemoryFile file(reinterpret_cast<const uint8_t*>(text.data()), text.size());
    const itof::CalibrationRecord again = RecordOf(ReadStereoFiles({file.Path()}), std::nullopt);
    Require(std::memcmp(&again, &record, sizeof record) == 0, "an export imports as the same record");
  }
}

void ReadStereo(const std::filesystem::path& path) {
  const itof::CalibrationRecord record = RecordOf(ReadStereoFiles({path}), std::nullopt);
  try {
    RequireRoundTrip(record);
  } catch (const DataError& error) {
    Require(false, error.what());
  }
}

/// A frame without depth, for readers that need one in addition to their file.
std::filesystem::path NoDepth() {
  static const std::vector<uint8_t> bytes = EncodePng(cv::Mat(360, 640, CV_16U, cv::Scalar(0)));
  static const MemoryFile file(bytes.data(), bytes.size());
  return file.Path();
}

void (*const kReaders[])(const std::filesystem::path& path, std::span<const uint8_t> bytes) = {
    [](const auto& path, auto) { (void)ReadCalibrationFile(path); },
    [](const auto&, auto bytes) { (void)CheckCalibration(bytes); },
    [](const auto& path, auto) { ReadStereo(path); },
    [](const auto& path, auto) { (void)ReadDepthFrame(path, FrameFormat::kRawWords, {}); },
    [](const auto& path, auto) { (void)ReadDepthFrame(path, FrameFormat::kPngWords, {}); },
    [](const auto& path, auto) { (void)ReadDepthFrame(path, FrameFormat::kPngMillimetres, {}); },
    [](const auto& path, auto) { (void)ReadDepthFrame(NoDepth(), FrameFormat::kPngMillimetres, path); },
    [](const auto& path, auto) {
      RecordOf(ReadStereoFiles({path, path}), Window{0, 60, 640, 360});
    },
    [](const auto& path, auto) { (void)ReadColourPicture(path); },
    [](const auto& path, auto) {
      // A file per camera, without a pose.
      StereoPair pair = ReadStereoFiles({path, path}, {.format = {},
                                                       .tofSize = {},
                                                       .auxSize = {},
                                                       .rotation = {{0.5, 0.5, 0.5, 0.5}, "--rotation", {}},
                                                       .translation = {{1, 2, 3}, "--translation", {}}});
      ConvertToMillimetres(pair, "in");
      RecordOf(pair, std::nullopt, Window{0, 0, 640, 360});
    },
};

}  // namespace

/// The first byte chooses the reader, the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const MemoryFile file(data + 1, size - 1);
  try {
    kReaders[data[0] % std::size(kReaders)](file.Path(), {data + 1, size - 1});
  } catch (const DataError&) {
  } catch (const UsageError&) {
  }
  return 0;
}
