// Reads depth frames from files.
#ifndef ITOF_TOOL_FILES_FRAMES_H_
#define ITOF_TOOL_FILES_FRAMES_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace itoftool {

enum class FrameFormat { kRawWords, kPngWords, kPngMillimetres };

/// 640 x 360 depth words, row after row.
struct DepthFrame {
  std::vector<uint16_t> words;
  size_t aboveRange = 0;  // pixels with a value above the largest depth code; they have code 0
};

/// Reads one frame. In kPngMillimetres, the confidence (0..7) of each pixel comes from the PNG `confidence`, or is 7 if
/// that path is empty; the other formats contain confidences and ignore `confidence`. Throws DataError.
DepthFrame ReadDepthFrame(const std::filesystem::path& path, FrameFormat format,
                          const std::filesystem::path& confidence);

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_FRAMES_H_
