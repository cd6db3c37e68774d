// Depth frames from files.
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
  size_t aboveRange = 0;  // pixels whose value is beyond the largest depth code, and that have code 0 now
};

/// Reads one frame. Millimetres become depth codes of the confidence (0..7) that the PNG `confidence` holds at the same
/// pixel, or 7 if that path is empty; in the other formats the words bring their own. Throws DataError.
DepthFrame ReadDepthFrame(const std::filesystem::path& path, FrameFormat format,
                          const std::filesystem::path& confidence);

}  // namespace itoftool

#endif  // ITOF_TOOL_FILES_FRAMES_H_
