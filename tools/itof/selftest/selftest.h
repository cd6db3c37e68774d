// Runs the alignment on fixed camera pairs and a fixed frame, and computes a digest of the bits of each stage and one
// of all, so that two machines can be compared by one line.
#ifndef ITOF_TOOL_SELFTEST_SELFTEST_H_
#define ITOF_TOOL_SELFTEST_SELFTEST_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "alignment/alignmentcontext.h"

namespace itoftool::selftest {

/// One implementation of the alignment: the library, or its plain form in the tests.
struct Steps {
  decltype(itof::InitAlignmentContext)* initContext;
  void (*farPlane)(itof::AlignmentContext&, float* mapX, float* mapY, double scaleX, double scaleY);
  void (*distortLut)(const itof::AlignmentContext&, float* mapX, float* mapY);
  int32_t (*align)(itof::AlignmentContext&, const uint16_t* frame, uint16_t* workingBuffer, const float* farPlaneMapX,
                   const float* farPlaneMapY, const float* distortMapX, const float* distortMapY);
  uint16_t (*alignedWord)(uint16_t workingWord);
};

/// The library's implementation.
extern const Steps kLibrary;

/// The stages of each case that have a digest: both far-plane maps, both maps of the lens table, the working buffer,
/// and the aligned frame.
inline constexpr size_t kStages = 6;
inline constexpr std::array<const char*, kStages> kStageNames{"far x",  "far y",   "lens x",
                                                              "lens y", "working", "aligned"};

/// A case: camera pair, ratio, and whether lens distortion is on.
struct CaseName {
  const char* pair;
  float ratio;
  bool distortion;
};

inline constexpr size_t kCases = 12;
extern const std::array<CaseName, kCases> kCaseNames;

/// 64-bit FNV-1a, folded to 32 bits, of the little-endian bytes of each stage's values. Every not-a-number counts as
/// 0x7FC00000.
using CaseDigests = std::array<uint32_t, kStages>;
using Digests = std::array<CaseDigests, kCases>;

/// Runs every case. Does not hide lines that `steps` print. Throws std::bad_alloc.
Digests RunCases(const Steps& steps);

/// The digests that every machine should get, made by the plain form.
extern const Digests kExpected;

/// One digest of all: 64-bit FNV-1a of the digests in order.
uint64_t Overall(const Digests& digests);

}  // namespace itoftool::selftest

#endif  // ITOF_TOOL_SELFTEST_SELFTEST_H_
