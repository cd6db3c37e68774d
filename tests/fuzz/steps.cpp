// Fuzz target for the alignment steps: compares the library with the plain form, bit for bit, on any context and any
// frame. Buffers have exactly their size, so that the address sanitizer finds accesses outside.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "alignment/grid.h"
#include "fuzz/require.h"
#include "fuzz/stepsinput.h"
#include "plain/plainsteps.h"
#include "support/floats.h"
#include "support/kernelbuildchoice.h"
#include "support/stepcomparison.h"

namespace {

using itof::AlignmentContext;

void RequireNoDifference(const std::string& difference) { Require(difference.empty(), difference.c_str()); }

void RequireSame(const double* a, const double* b, size_t count, const char* what) {
  for (size_t i = 0; i < count; ++i) Require(SameBits(a[i], b[i]), what);
}

/// Limits a frame's sides to -301..301, and large frames to about a thousand pixels.
void Limit(int32_t& width, int32_t& height) {
  width %= 302;
  height %= 302;
  if (width > 0) height = std::min(height, 1 + 1000 / width);
}

float FarPlane(const PixelInput& pixel, int axis, double parallax) {
  if (pixel.floatsFromEdge[axis] == 0) return pixel.farPlane[axis];
  const double code = pixel.word & 0x1FFF;
  const double edge = pixel.cell[axis] - 0.5 - (code == 0 ? 0.0 : parallax / (code / 10));
  return FloatsBeside(edge, pixel.floatsFromEdge[axis]);
}

StepFrame TakePixels(const AlignmentContext& context, const std::vector<PixelInput>& inputs) {
  const itof::AlignmentParams& params = context.params;
  const double parallax[] = {context.auxRatioIntrinsics[0] * params.translation[0],
                             context.auxRatioIntrinsics[4] * params.translation[1]};
  StepFrame frame;
  for (size_t i = 0; i < itof::PixelCount(params.tofWidth, params.tofHeight); ++i) {
    const PixelInput& pixel = inputs[i % inputs.size()];
    frame.words.push_back(pixel.word);
    frame.farX.push_back(FarPlane(pixel, 0, parallax[0]));
    frame.farY.push_back(FarPlane(pixel, 1, parallax[1]));
    frame.lensX.push_back(pixel.distorted[0]);
    frame.lensY.push_back(pixel.distorted[1]);
  }
  for (auto* map : {&frame.farX, &frame.farY, &frame.lensX, &frame.lensY}) map->shrink_to_fit();
  frame.words.shrink_to_fit();
  return frame;
}

void CompareInit(const StepsInput& input, AlignmentContext& context) {
  AlignmentContext plain{};
  itof::InitAlignmentContext(context, input.params, input.distortionEnabled);
  plain::InitAlignmentContext(plain, input.params, input.distortionEnabled);
  RequireSame(context.params.tofIntrinsics, plain.params.tofIntrinsics, 9, "ToF matrix");
  RequireSame(context.params.auxIntrinsics, plain.params.auxIntrinsics, 9, "aux matrix");
  constexpr size_t kNumbers = sizeof(itof::CameraModel) / sizeof(double);
  RequireSame(&context.tofModel.k1, &plain.tofModel.k1, kNumbers, "ToF model");
  RequireSame(&context.auxModel.k1, &plain.auxModel.k1, kNumbers, "aux model");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  StepsInput input{};
  if (size < sizeof input) return 0;
  std::memcpy(&input, data, sizeof input);
  Limit(input.params.tofWidth, input.params.tofHeight);
  Limit(input.params.auxWidth, input.params.auxHeight);
  std::vector<PixelInput> inputs((size - sizeof input) / sizeof(PixelInput));
  if (inputs.empty())
    inputs.push_back({});
  else
    std::memcpy(inputs.data(), data + sizeof input, inputs.size() * sizeof inputs[0]);

  for (const itof::KernelBuild build : KernelBuilds()) {
    g_kernelBuild = build;
    AlignmentContext context{};
    CompareInit(input, context);
    if (input.ownNumbers != 0) {
      std::ranges::copy(input.params.tofIntrinsics, context.params.tofIntrinsics);
      std::ranges::copy(input.params.auxIntrinsics, context.params.auxIntrinsics);
      context.tofModel = input.tofModel;
      context.auxModel = input.auxModel;
    }
    RequireNoDifference(CompareFarPlane(context, input.scaleX, input.scaleY, 0));
    if (input.ownNumbers != 0) std::ranges::copy(input.auxRatioIntrinsics, context.auxRatioIntrinsics);
    RequireNoDifference(CompareDistortLUT(context, 0));
    RequireNoDifference(CompareAlignment(context, TakePixels(context, inputs), input.preparedTargets != 0, 0));
  }
  return 0;
}
