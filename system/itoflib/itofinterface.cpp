// Implements the three exported functions, their library-wide state, and the frame driver. The exported functions only
// set up the floating-point environment and call a function that is not inlined (floatenvironment.h).
#include "itofinterface.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <opencv2/core.hpp>
#include <span>
#include <utility>

#include "alignment/alignmentcontext.h"
#include "alignment/approximatealignment.h"
#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "alignment/grid.h"
#include "calibration/alignmentparams.h"
#include "calibration/calibrationcheck.h"
#include "calibration/calibrationrecord.h"
#include "floatenvironment.h"
#include "framesize.h"
#include "performancelog.h"
#include "pixelwords.h"

namespace itof {
namespace {

static_assert(kFrameWidth == ITOF_FRAME_WIDTH && kFrameHeight == ITOF_FRAME_HEIGHT);

/// Releases the library's context when the library is unloaded or the process exits.
struct LibraryContext {
  ~LibraryContext() { ReleaseAlignmentContext(context); }

  AlignmentContext context{};
};

/// Memory for the buffers of a frame, kept between frames because fresh memory costs hundreds of page faults. Every
/// frame writes each word before it reads it.
struct FrameMemory {
  uint16_t working[kFrameWidth * kFrameHeight];
  uint16_t packed[kFrameWidth * kFrameHeight];
  uint16_t staging[kFrameWidth * kFrameHeight];
};

AlignmentParams alignment_params;
LibraryContext library_context;
std::unique_ptr<FrameMemory> frame_memory;  // allocated by the first frame
bool init_done;
int32_t tof_calib_width;
float aux_fl_ratio;
bool tables_prepared;

/// Repacks the working words of one container as aligned words into the other, which has the same shape.
void PackAlignedWords(const cv::Mat& working, cv::Mat& aligned) {
  for (int row = 0; row < working.rows; ++row) {
    const auto* __restrict from = working.ptr<uint16_t>(row);
    auto* __restrict to = aligned.ptr<uint16_t>(row);
    for (int column = 0; column < working.cols; ++column) to[column] = AlignedWord(from[column]);
  }
}

[[gnu::noinline]] int32_t Init() {
  CalibrationLoad load = LoadCalibrationRecord();
  if (load.status == CalibrationLoadStatus::kUnreadable) return ITOF_CALIBRATION_UNREADABLE;
  if (load.status == CalibrationLoadStatus::kShort) return ITOF_CALIBRATION_SHORT;
  if (FirstCalibrationFault(*load.record)) return ITOF_CALIBRATION_UNUSABLE;
  const AlignmentParams params = WorkingParams(*load.record);
  const float auxFlRatio = load.record->aux_fl_ratio;
  load.record.reset();

  // Build the new context first: if this throws, the library's state is untouched.
  AlignmentContext context{};
  InitAlignmentContext(context, params, 1);

  std::swap(library_context.context, context);
  ReleaseAlignmentContext(context);
  alignment_params = params;
  tof_calib_width = params.tofCalibWidth;
  aux_fl_ratio = auxFlRatio;
  init_done = true;
  tables_prepared = false;
  return ITOF_OK;
}

[[gnu::noinline]] void AlignInPlace(uint16_t* frame, float ratio) {
  AlignmentContext& context = library_context.context;
  const ZerunTime frameStart = TimeStamp();

  const size_t sourceCount = PixelCount(alignment_params.tofWidth, alignment_params.tofHeight);
  const size_t targetCount = PixelCount(alignment_params.auxWidth, alignment_params.auxHeight);
  if (!frame_memory) frame_memory = std::make_unique_for_overwrite<FrameMemory>();
  const std::span<uint16_t> workingBuffer(frame_memory->working, targetCount);
  std::ranges::fill(workingBuffer, uint16_t{0});
  ITOF_PERFORMANCE_LOG(307, "[Velmor_Perf] WarpTest algo !,aux_fl_ratio is %f ms", static_cast<double>(aux_fl_ratio));

  if (!tables_prepared) {
    ZerunTime stepStart = TimeStamp();
    AlignmentFarPlane(context, context.farPlaneMapX.get(), context.farPlaneMapY.get(), static_cast<double>(ratio),
                      static_cast<double>(ratio));
    ZerunTime stepEnd = TimeStamp();
    ITOF_PERFORMANCE_LOG(322, "[Velmor_Perf] AlignmentFarPlane ! used time is %d ms",
                         MillisecondsBetween(stepStart, stepEnd));

    stepStart = TimeStamp();
    DistortLUT(context, context.distortMapX.get(), context.distortMapY.get());
    stepEnd = TimeStamp();
    ITOF_PERFORMANCE_LOG(328, "[Velmor_Perf] DistortLUT ! used time is %d ms", MillisecondsBetween(stepStart, stepEnd));
    PrepareTargets(context);
    tables_prepared = true;
  }

  const ZerunTime stepStart = TimeStamp();
  RunApproximateAlignment(context, frame, workingBuffer.data(), context.farPlaneMapX.get(), context.farPlaneMapY.get(),
                          context.distortMapX.get(), context.distortMapY.get());
  const ZerunTime stepEnd = TimeStamp();
  ITOF_PERFORMANCE_LOG(341, "[Velmor_Perf] RunApproximateAlignment ! used time is %d ms",
                       MillisecondsBetween(stepStart, stepEnd));

  // The containers, the working buffer and the caller's frame have the same size: itof_init refuses every calibration
  // for which they would not.
  cv::Mat packed(kFrameHeight, tof_calib_width, CV_16U, frame_memory->packed);
  cv::Mat staging(kFrameHeight, tof_calib_width, CV_16U, frame_memory->staging);
  std::memcpy(staging.data, workingBuffer.data(), staging.total() * staging.elemSize());
  PackAlignedWords(staging, packed);
  std::memcpy(frame, packed.data, sourceCount * sizeof *frame);
  const ZerunTime frameEnd = TimeStamp();
  ITOF_PERFORMANCE_LOG(364, "[Velmor_Perf] WarpTest algo !, total used time is %d ms",
                       MillisecondsBetween(frameStart, frameEnd));

  staging.release();
  packed.release();
}

}  // namespace
}  // namespace itof

int32_t itof_init() {
  const itof::DefaultFloatEnvironment environment;
  return itof::Init();
}

int32_t itof_execute_algo(uint16_t* frame, float ratio) {
  if (!itof::init_done) return 0;
  const itof::DefaultFloatEnvironment environment;
  itof::AlignInPlace(frame, ratio);
  return 0;
}

void itof_deinit() { itof::tables_prepared = false; }
