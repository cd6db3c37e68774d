// Follows single pixels through the library's own tables. The library works on blocks of pixels and does not record
// what happened to each, so the steps after the tables are written here again for one pixel.
#include "inspection/pixeltrace.h"

#include <algorithm>
#include <bit>

#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "alignment/grid.h"
#include "alignment/idealcells.h"
#include "alignment/targettable.h"
#include "framesize.h"
#include "inspection/workingcontext.h"
#include "integerpart.h"
#include "pixelwords.h"

namespace itoftool {
namespace {

constexpr size_t kPixels = size_t{itof::kFrameWidth} * itof::kFrameHeight;
constexpr itof::Grid kGrid{itof::kFrameWidth, itof::kFrameHeight};

size_t IndexOf(cv::Point pixel) {
  return static_cast<size_t>(pixel.y) * size_t{itof::kFrameWidth} + static_cast<size_t>(pixel.x);
}

/// Calls `fill`, which writes some entries of two maps, and returns which. The other entries are 0 afterwards, as in a
/// new context.
template <typename Fill>
std::vector<bool> FindWritten(float* mapX, float* mapY, const Fill& fill) {
  // A not-a-number with bits that no arithmetic gives.
  constexpr uint32_t kMark = 0x7FC0A5A5;
  std::fill_n(mapX, kPixels, std::bit_cast<float>(kMark));
  std::fill_n(mapY, kPixels, 0.0F);
  fill();
  std::vector<bool> written(kPixels);
  for (size_t i = 0; i < kPixels; ++i) {
    written[i] = std::bit_cast<uint32_t>(mapX[i]) != kMark;
    if (!written[i]) mapX[i] = 0;
  }
  return written;
}

/// Writes the undistorted position of every ToF pixel to `x` and `y`. The library undistorts inside the far-plane step;
/// with an aux camera that has the place and the matrix of the ToF camera, that step gives just these positions. The
/// parameters are replaced only during the step: a second context would cost more than the step.
void FillUndistorted(itof::AlignmentContext& context, std::vector<float>& x, std::vector<float>& y) {
  const itof::AlignmentParams written = context.params;
  const double* k = written.tofIntrinsics;
  const double pinhole[9] = {k[0], 0, k[2], 0, k[4], k[5], 0, 0, 1};
  std::ranges::copy(pinhole, context.params.auxIntrinsics);
  std::ranges::copy(cv::Matx33d::eye().val, context.params.rotation);
  std::ranges::fill(context.params.translation, 0.0);
  itof::AlignmentFarPlane(context, x.data(), y.data(), 1, 1);
  context.params = written;
}

}  // namespace

RunTables::RunTables(const itof::CalibrationRecord& record, float ratio)
    : context_(MakeWorkingContext(record)), undistortedX_(kPixels), undistortedY_(kPixels) {
  FillUndistorted(context_, undistortedX_, undistortedY_);
  float* const farX = context_.farPlaneMapX.get();
  float* const farY = context_.farPlaneMapY.get();
  const auto scale = static_cast<double>(ratio);
  inFront_ = FindWritten(farX, farY, [&] { itof::AlignmentFarPlane(context_, farX, farY, scale, scale); });
  float* const lensX = context_.distortMapX.get();
  float* const lensY = context_.distortMapY.get();
  hasEntry_ = FindWritten(lensX, lensY, [&] { itof::DistortLUT(context_, lensX, lensY); });
}

void RunTables::LookUp(PixelTrace& trace) const {
  trace.cell = {itof::IntegerPart(trace.ideal.x + 0.5), itof::IntegerPart(trace.ideal.y + 0.5)};
  if (!kGrid.Holds(trace.cell.x, trace.cell.y)) {
    trace.fate = Fate::kOutsideGrid;
    return;
  }
  const size_t entry = IndexOf(trace.cell);
  trace.distorted = {static_cast<double>(context_.distortMapX[entry]),
                     static_cast<double>(context_.distortMapY[entry])};
  trace.target = {itof::IntegerPart(trace.distorted.x), itof::IntegerPart(trace.distorted.y)};
  if (!hasEntry_[entry]) {
    trace.fate = Fate::kUnwrittenEntry;
  } else {
    trace.fate = kGrid.Holds(trace.target.x, trace.target.y) ? Fate::kLanded : Fate::kOutsideFrame;
  }
}

PixelTrace RunTables::Trace(int x, int y, uint16_t word) const {
  const size_t i = IndexOf({x, y});
  const float farX = context_.farPlaneMapX[i], farY = context_.farPlaneMapY[i];
  const double* k = context_.auxRatioIntrinsics;
  const double* t = context_.params.translation;
  const itof::Parallax parallax = itof::MakeParallax(k[0] * t[0], k[4] * t[1], kGrid);
  const itof::IdealPosition ideal = itof::FindIdealPosition(parallax, word, farX, farY);

  PixelTrace trace{};
  trace.undistorted = {static_cast<double>(undistortedX_[i]), static_cast<double>(undistortedY_[i])};
  trace.inFront = inFront_[i];
  trace.farPlane = {static_cast<double>(farX), static_cast<double>(farY)};
  trace.ideal = {ideal.x, ideal.y};
  trace.parallax = trace.ideal - trace.farPlane;
  LookUp(trace);
  return trace;
}

PixelTrace RunTables::TraceStart() const {
  PixelTrace trace{};
  LookUp(trace);
  return trace;
}

FrameFates TraceFrame(const RunTables& tables, std::span<const uint16_t> words) {
  constexpr size_t kNone = kPixels;
  FrameFates frame;
  frame.fates.resize(kPixels);
  std::vector<size_t> owners(kPixels, kNone);  // per cell of the aux frame, the pixel that wrote it last
  PixelTrace carried = tables.TraceStart();
  for (size_t i = 0; i < kPixels; ++i) {
    const bool hasDepth = itof::DepthCode(words[i]) != 0;
    const int x = static_cast<int>(i) % itof::kFrameWidth, y = static_cast<int>(i) / itof::kFrameWidth;
    if (hasDepth) carried = tables.Trace(x, y, words[i]);
    frame.fates[i] = hasDepth ? carried.fate : Fate::kNoDepth;
    if (carried.fate != Fate::kLanded && carried.fate != Fate::kUnwrittenEntry) continue;
    size_t& owner = owners[IndexOf(carried.target)];
    if (owner != kNone && frame.fates[owner] == Fate::kLanded) {
      frame.fates[owner] = Fate::kOverwritten;
      if (!hasDepth) ++frame.counts.overwrittenWithoutDepth;
    }
    owner = i;
  }
  for (const Fate fate : frame.fates) ++frame.counts.byFate[static_cast<size_t>(fate)];
  return frame;
}

}  // namespace itoftool
