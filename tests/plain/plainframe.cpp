// Aligns a frame with the plain steps: fresh storage for each frame, one word after the other.
#include "plain/plainframe.h"

#include <cstring>
#include <memory>
#include <opencv2/core.hpp>

#include "plain/plainsteps.h"

namespace plain {

void AlignFrame(itof::AlignmentContext& context, uint16_t* frame, bool firstOfRun, float ratio) {
  const int rows = 360, columns = 640;
  auto workingBuffer = std::make_unique<uint16_t[]>(rows * columns);
  float* const farX = context.farPlaneMapX.get();
  float* const farY = context.farPlaneMapY.get();
  float* const distortX = context.distortMapX.get();
  float* const distortY = context.distortMapY.get();
  if (firstOfRun) {
    const auto scale = static_cast<double>(ratio);
    AlignmentFarPlane(context, farX, farY, scale, scale);
    DistortLUT(context, distortX, distortY);
  }
  RunApproximateAlignment(context, frame, workingBuffer.get(), farX, farY, distortX, distortY);

  cv::Mat packed(rows, columns, CV_16U);
  cv::Mat staging(rows, columns, CV_16U);
  const size_t bytes = sizeof(uint16_t) * rows * columns;
  std::memcpy(staging.data, workingBuffer.get(), bytes);
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      packed.at<uint16_t>(row, column) = AlignedWord(staging.at<uint16_t>(row, column));
    }
  }
  std::memcpy(frame, packed.data, bytes);
}

}  // namespace plain
