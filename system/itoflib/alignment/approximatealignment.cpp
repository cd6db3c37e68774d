// Moves the pixels of a frame. Far-plane position plus parallax replaces the projection of each 3-D point. Ideal cells
// are found for many pixels at once. The scatter goes pixel by pixel, in order: the last pixel at a target wins, and a
// pixel without depth follows the one before it.
#include "alignment/approximatealignment.h"

#include <cstdio>
#include <ctime>

#include "alignment/grid.h"
#include "alignment/idealcells.h"
#include "alignment/kernelbuild.h"
#include "alignment/targettable.h"
#include "pixelwords.h"

namespace itof {
namespace {

/// Moves `count` pixels, at most kCellBlock, to the targets of their ideal cells. `carried` is the target of the last
/// pixel with depth; it is passed on from block to block.
ITOF_KERNEL inline void AlignBlock(const Parallax& parallax, Grid ideal, const uint32_t* targets,
                                   const uint16_t* __restrict words, const float* farX, const float* farY,
                                   int32_t count, uint8_t* __restrict confidence, uint16_t* workingBuffer,
                                   uint32_t& carried) {
  for (int32_t i = 0; i < count; ++i) confidence[i] = Confidence(words[i]);

  int32_t cells[kCellBlock];
  FindIdealCells(parallax, ideal, words, farX, farY, count, cells);
  // The table does not fit the first caches. Neighbouring pixels have neighbouring cells, so every eighth pixel touches
  // nearly all cache lines that the block needs.
  for (int32_t i = 0; i < count; i += 8) __builtin_prefetch(targets + cells[i]);

  uint32_t target = carried;
#pragma GCC unroll 4
  for (int32_t i = 0; i < count; ++i) {
    const uint32_t own = targets[static_cast<uint32_t>(cells[i])];
    target = DepthCode(words[i]) == 0 ? target : own;
    if (target != kDropped) workingBuffer[target] = WorkingWord(words[i]);
  }
  carried = target;
}

void FillTargets(AlignmentContext& context, const float* distortMapX, const float* distortMapY) {
  const AlignmentParams& params = context.params;
  const bool distortion = context.distortionEnabled != 0;
  context.targets.resize(IdealGrid(params, distortion).CountWithBorder());
  uint32_t* targets = context.targets.data();
  RunKernel([&]() ITOF_KERNEL { FillTargetTable(params, distortion, distortMapX, distortMapY, targets); });
}

/// Aligns a frame with the context's target table.
void AlignFrame(AlignmentContext& context, const uint16_t* frame, uint16_t* workingBuffer, const float* farPlaneMapX,
                const float* farPlaneMapY) {
  const AlignmentParams& params = context.params;
  const Grid ideal = IdealGrid(params, context.distortionEnabled != 0);
  const Parallax parallax = MakeParallax(context.auxRatioIntrinsics[0] * params.translation[0],
                                         context.auxRatioIntrinsics[4] * params.translation[1], ideal);
  const size_t pixels = PixelCount(params.tofWidth, params.tofHeight);
  const uint32_t* targets = context.targets.data();
  uint8_t* confidence = context.confidence.get();

  RunKernel([&]() ITOF_KERNEL {
    uint32_t target = targets[ideal.IndexWithBorder(0, 0)];
    const auto alignBlock = [&](size_t i, int32_t count) ITOF_KERNEL {
      AlignBlock(parallax, ideal, targets, frame + i, farPlaneMapX + i, farPlaneMapY + i, count, confidence + i,
                 workingBuffer, target);
    };
    size_t i = 0;
    for (; i + kCellBlock <= pixels; i += kCellBlock) alignBlock(i, kCellBlock);  // with a count known to the compiler
    alignBlock(i, static_cast<int32_t>(pixels - i));
  });
}

}  // namespace

void PrepareTargets(AlignmentContext& context) {
  FillTargets(context, context.distortMapX.get(), context.distortMapY.get());
  context.targetsPrepared = true;
}

int32_t RunApproximateAlignment(AlignmentContext& context, const uint16_t* frame, uint16_t* workingBuffer,
                                const float* farPlaneMapX, const float* farPlaneMapY, const float* distortMapX,
                                const float* distortMapY) {
  const std::clock_t start = std::clock();
  const bool isOwnTable = distortMapX == context.distortMapX.get() && distortMapY == context.distortMapY.get();
  if (!context.targetsPrepared || !isOwnTable) {
    context.targetsPrepared = false;
    FillTargets(context, distortMapX, distortMapY);
  }
  AlignFrame(context, frame, workingBuffer, farPlaneMapX, farPlaneMapY);
  const std::clock_t end = std::clock();
  std::printf("cost time(distort) : %lf (s)\n", static_cast<double>(end - start) / 1000000.0);
  return 1;
}

}  // namespace itof
