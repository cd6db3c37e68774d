// Any context and any frame: the library's steps against the plain ones, bit for bit, in buffers of just their size.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "alignment/approximatealignment.h"
#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "alignment/grid.h"
#include "fuzz/require.h"
#include "fuzz/stepsinput.h"
#include "plain/plainsteps.h"
#include "support/floats.h"
#include "support/kernelbuildchoice.h"

namespace {

using itof::AlignmentContext;

template <typename T>
void RequireSame(const T* a, const T* b, size_t count, const char* what) {
  for (size_t i = 0; i < count; ++i) Require(SameBits(a[i], b[i]), what);
}

void RequireSame(const itof::CameraModel& a, const itof::CameraModel& b, const char* what) {
  RequireSame(&a.k1, &b.k1, sizeof a / sizeof a.k1, what);
}

/// Brings a frame's sides into -301..301, and large frames down to about a thousand pixels.
void Limit(int32_t& width, int32_t& height) {
  width %= 302;
  height %= 302;
  if (width > 0) height = std::min(height, 1 + 1000 / width);
}

/// Two numbers for each pixel of the ToF frame.
struct Maps {
  std::vector<float> x, y;
};

/// A frame and its four maps.
struct Pixels {
  std::vector<uint16_t> words;
  Maps farPlane, distorted;
};

float FarPlane(const PixelInput& pixel, int axis, double parallax) {
  if (pixel.floatsFromEdge[axis] == 0) return pixel.farPlane[axis];
  const double code = pixel.word & 0x1FFF;
  const double edge = pixel.cell[axis] - 0.5 - (code == 0 ? 0.0 : parallax / (code / 10));
  return FloatsBeside(edge, pixel.floatsFromEdge[axis]);
}

Pixels TakePixels(const AlignmentContext& context, const std::vector<PixelInput>& inputs) {
  const itof::AlignmentParams& params = context.params;
  const double parallax[] = {context.auxRatioIntrinsics[0] * params.translation[0],
                             context.auxRatioIntrinsics[4] * params.translation[1]};
  Pixels pixels;
  for (size_t i = 0; i < itof::PixelCount(params.tofWidth, params.tofHeight); ++i) {
    const PixelInput& pixel = inputs[i % inputs.size()];
    pixels.words.push_back(pixel.word);
    pixels.farPlane.x.push_back(FarPlane(pixel, 0, parallax[0]));
    pixels.farPlane.y.push_back(FarPlane(pixel, 1, parallax[1]));
    pixels.distorted.x.push_back(pixel.distorted[0]);
    pixels.distorted.y.push_back(pixel.distorted[1]);
  }
  for (auto* map : {&pixels.farPlane.x, &pixels.farPlane.y, &pixels.distorted.x, &pixels.distorted.y})
    map->shrink_to_fit();  // what follows the last entry is nobody's
  pixels.words.shrink_to_fit();
  return pixels;
}

void CompareInit(const StepsInput& input, AlignmentContext& context) {
  AlignmentContext plain{};
  itof::InitAlignmentContext(context, input.params, input.distortionEnabled);
  plain::InitAlignmentContext(plain, input.params, input.distortionEnabled);
  RequireSame(context.params.tofIntrinsics, plain.params.tofIntrinsics, 9, "ToF matrix");
  RequireSame(context.params.auxIntrinsics, plain.params.auxIntrinsics, 9, "aux matrix");
  RequireSame(context.tofModel, plain.tofModel, "ToF model");
  RequireSame(context.auxModel, plain.auxModel, "aux model");
}

void CompareMaps(const StepsInput& input, AlignmentContext& context, const Maps& content) {
  Maps fast = content, plain = content;
  itof::AlignmentFarPlane(context, fast.x.data(), fast.y.data(), input.scaleX, input.scaleY);
  double matrix[9];
  std::ranges::copy(context.auxRatioIntrinsics, matrix);
  plain::AlignmentFarPlane(context, plain.x.data(), plain.y.data(), input.scaleX, input.scaleY);
  RequireSame(matrix, context.auxRatioIntrinsics, 9, "matrix at the ratio");
  RequireSame(fast.x.data(), plain.x.data(), fast.x.size(), "far plane x");
  RequireSame(fast.y.data(), plain.y.data(), fast.y.size(), "far plane y");

  if (input.ownNumbers != 0) std::ranges::copy(input.auxRatioIntrinsics, context.auxRatioIntrinsics);
  fast = plain = content;
  itof::DistortLUT(context, fast.x.data(), fast.y.data());
  plain::DistortLUT(context, plain.x.data(), plain.y.data());
  RequireSame(fast.x.data(), plain.x.data(), fast.x.size(), "distortion x");
  RequireSame(fast.y.data(), plain.y.data(), fast.y.size(), "distortion y");
}

void CompareAlignment(const StepsInput& input, AlignmentContext& context, const Pixels& pixels) {
  const float* mapX = pixels.distorted.x.data();
  const float* mapY = pixels.distorted.y.data();
  const size_t count = pixels.words.size();
  if (input.preparedTargets != 0) {
    std::copy_n(mapX, count, context.distortMapX.get());
    std::copy_n(mapY, count, context.distortMapY.get());
    mapX = context.distortMapX.get();
    mapY = context.distortMapY.get();
    itof::PrepareTargets(context);
  }
  const auto run = [&](auto step, std::vector<uint16_t>& working) {
    std::fill_n(context.confidence.get(), count, uint8_t{0xEE});
    step(context, pixels.words.data(), working.data(), pixels.farPlane.x.data(), pixels.farPlane.y.data(), mapX, mapY);
    return std::vector<uint8_t>(context.confidence.get(), context.confidence.get() + count);
  };
  std::vector<uint16_t> fast(itof::PixelCount(context.params.auxWidth, context.params.auxHeight), 0xABCD);
  std::vector<uint16_t> plain = fast;
  const std::vector<uint8_t> confidence = run(itof::RunApproximateAlignment, fast);
  Require(confidence == run(plain::RunApproximateAlignment, plain), "confidence");
  Require(fast == plain, "working words");
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
    CompareMaps(input, context, TakePixels(context, inputs).distorted);
    CompareAlignment(input, context, TakePixels(context, inputs));
  }
  return 0;
}
