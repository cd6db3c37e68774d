// The alignment on camera pairs and a frame that are the same on every machine, with one number for the bits of each
// stage: what a device computes can be compared with what any other does by looking at one line.
#ifndef ITOF_TOOL_SELFTEST_SELFTEST_H_
#define ITOF_TOOL_SELFTEST_SELFTEST_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "alignment/alignmentcontext.h"

namespace itoftool::selftest {

/// The alignment as somebody wrote it: the library, or its plain form in the tests.
struct Steps {
  decltype(itof::InitAlignmentContext)* initContext;
  void (*farPlane)(itof::AlignmentContext&, float* mapX, float* mapY, double scaleX, double scaleY);
  void (*distortLut)(const itof::AlignmentContext&, float* mapX, float* mapY);
  int32_t (*align)(itof::AlignmentContext&, const uint16_t* frame, uint16_t* workingBuffer, const float* farPlaneMapX,
                   const float* farPlaneMapY, const float* distortMapX, const float* distortMapY);
  uint16_t (*alignedWord)(uint16_t workingWord);
};

/// The library's own.
extern const Steps kLibrary;

/// What is digested of each case: both maps of each table, the working buffer, the aligned frame.
inline constexpr size_t kStages = 6;
inline constexpr std::array<const char*, kStages> kStageNames{"far x",  "far y",   "lens x",
                                                              "lens y", "working", "aligned"};

/// Camera pair, ratio, and whether lens distortion is handled.
struct CaseName {
  const char* pair;
  float ratio;
  bool distortion;
};

inline constexpr size_t kCases = 12;
extern const std::array<CaseName, kCases> kCaseNames;

/// FNV-1a, 64 bits folded to 32, over the little-endian bytes of a stage's values, each not-a-number taken as
/// 0x7FC00000.
using CaseDigests = std::array<uint32_t, kStages>;
using Digests = std::array<CaseDigests, kCases>;

/// Runs every case. What `steps` print goes where they print it. Throws std::bad_alloc.
Digests RunCases(const Steps& steps);

/// What every machine should give, made by the plain form.
extern const Digests kExpected;

/// One number for all: FNV-1a, 64 bits, over the digests in order.
uint64_t Overall(const Digests& digests);

}  // namespace itoftool::selftest

#endif  // ITOF_TOOL_SELFTEST_SELFTEST_H_
