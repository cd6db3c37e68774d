// What the bytes of an input of the steps' target are.
#ifndef ITOF_TESTS_FUZZ_STEPSINPUT_H_
#define ITOF_TESTS_FUZZ_STEPSINPUT_H_

#include <cstdint>
#include <type_traits>

#include "alignment/alignmentcontext.h"

/// The input begins with this.
struct StepsInput {
  itof::AlignmentParams params;  // the four working sizes are brought into a range that can be computed
  uint8_t distortionEnabled;
  /// The context is not that of `params`, but has the numbers below.
  uint8_t ownNumbers;
  /// The targets are prepared from the context's own distortion maps.
  uint8_t preparedTargets;
  double scaleX, scaleY;
  itof::CameraModel tofModel, auxModel;
  double auxRatioIntrinsics[9];
};
static_assert(std::is_trivially_copyable_v<StepsInput>);

/// Any number of these follow. They are taken in turn for the pixels of the frame and of the maps.
struct PixelInput {
  uint16_t word;
  /// Not 0: the far-plane position is so many floats beside the edge of the cell below.
  int8_t floatsFromEdge[2];
  int16_t cell[2];
  float farPlane[2];
  float distorted[2];
};
static_assert(std::is_trivially_copyable_v<PixelInput>);

#endif  // ITOF_TESTS_FUZZ_STEPSINPUT_H_
