// Far plane plus parallax stands in for a projection of each 3-D point: two divisions a pixel instead of a matrix
// product and a lens model.
#include "alignment/approximatealignment.h"

#include <cstdio>
#include <ctime>

#include "integerpart.h"
#include "pixelwords.h"

namespace itof {
namespace {

constexpr bool Inside(int32_t u, int32_t v, int32_t width, int32_t height) {
  return u >= 0 && u < width && v >= 0 && v < height;
}

constexpr size_t Index(int32_t u, int32_t v, int32_t width) {
  return static_cast<size_t>(v) * static_cast<size_t>(width) + static_cast<size_t>(u);
}

}  // namespace

int32_t RunApproximateAlignment(AlignmentContext& context, const uint16_t* frame, uint16_t* workingBuffer,
                                const float* farPlaneMapX, const float* farPlaneMapY, const float* distortMapX,
                                const float* distortMapY) {
  const std::clock_t start = std::clock();
  const AlignmentParams& params = context.params;
  // Parallax in pixels at a depth of 1.
  const double parallaxX = context.auxRatioIntrinsics[0] * params.translation[0];
  const double parallaxY = context.auxRatioIntrinsics[4] * params.translation[1];

  // Carried over pixels without depth, across the ends of rows.
  double idealX = 0.0;
  double idealY = 0.0;
  const size_t tofPixels = PixelCount(params.tofWidth, params.tofHeight);
  for (size_t i = 0; i < tofPixels; ++i) {
    const uint16_t word = frame[i];
    context.confidence[i] = Confidence(word);
    const double depth = DepthCode(word) / 10.0;
    if (depth != 0) {
      idealX = parallaxX / depth + static_cast<double>(farPlaneMapX[i]);
      idealY = parallaxY / depth + static_cast<double>(farPlaneMapY[i]);
    }
    int32_t u = IntegerPart(idealX + 0.5);
    int32_t v = IntegerPart(idealY + 0.5);
    if (context.distortionEnabled != 0 && Inside(u, v, params.tofWidth, params.tofHeight)) {
      const size_t cell = Index(u, v, params.tofWidth);
      u = IntegerPart(static_cast<double>(distortMapX[cell]));
      v = IntegerPart(static_cast<double>(distortMapY[cell]));
    }
    if (Inside(u, v, params.auxWidth, params.auxHeight)) {
      workingBuffer[Index(u, v, params.auxWidth)] = WorkingWord(word, context.confidence[i]);
    }
  }

  const std::clock_t end = std::clock();
  std::printf("cost time(distort) : %lf (s)\n", static_cast<double>(end - start) / 1000000.0);
  return 1;
}

}  // namespace itof
