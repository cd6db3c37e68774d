// Declares the layout of an input of the fuzz target `steps`.
#ifndef ITOF_TESTS_FUZZ_STEPSINPUT_H_
#define ITOF_TESTS_FUZZ_STEPSINPUT_H_

#include <cstdint>
#include <type_traits>

#include "alignment/alignmentcontext.h"

/// The start of the input.
struct StepsInput {
  itof::AlignmentParams params;  // the target limits the four working sizes
  uint8_t distortionEnabled;
  uint8_t ownNumbers;       // if not 0, the context has the numbers below instead of those from `params`
  uint8_t preparedTargets;  // if not 0, the targets are prepared
  double scaleX, scaleY;
  itof::CameraModel tofModel, auxModel;
  double auxRatioIntrinsics[9];
};
static_assert(std::is_trivially_copyable_v<StepsInput>);

/// Any number of these follow. The pixels of the frame and the maps use them in turn.
struct PixelInput {
  uint16_t word;
  /// If not 0, the far-plane position is not `farPlane`, but puts the ideal position this number of floats from the edge
  /// of `cell`.
  int8_t floatsFromEdge[2];
  int16_t cell[2];
  float farPlane[2];
  float distorted[2];
};
static_assert(std::is_trivially_copyable_v<PixelInput>);

#endif  // ITOF_TESTS_FUZZ_STEPSINPUT_H_
