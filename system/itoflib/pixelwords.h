// The 16-bit pixel layouts of the depth frame, of the working buffer and of the aligned frame:
//
//                  15..13      12           11..4              3..0
//   depth word     confidence  depth code, bits 12..0
//   working word   confidence  0            code bits 11..4    0
//
//                  15..11      10..8        7..0
//   aligned word   0           confidence   code bits 11..4
#ifndef ITOF_PIXELWORDS_H_
#define ITOF_PIXELWORDS_H_

#include <cstdint>

namespace itof {

/// Number of depth codes; they run from 0 to one below this.
inline constexpr uint32_t kDepthCodes = 8192;

/// Depth code of a depth word: 0..8191; 0 means no depth.
constexpr uint16_t DepthCode(uint16_t depthWord) { return depthWord & 0x1FFF; }

/// Confidence of a depth word: 0..7.
constexpr uint8_t Confidence(uint16_t depthWord) { return static_cast<uint8_t>(depthWord >> 13); }

/// The working word of a depth word: without bit 12 and the low four bits of the code.
constexpr uint16_t WorkingWord(uint16_t depthWord) { return depthWord & 0xEFF0; }

/// The aligned word of a working word.
constexpr uint16_t AlignedWord(uint16_t workingWord) {
  return static_cast<uint16_t>(((workingWord >> 5) & 0x0700) | ((workingWord >> 4) & 0x00FF));
}

}  // namespace itof

#endif  // ITOF_PIXELWORDS_H_
