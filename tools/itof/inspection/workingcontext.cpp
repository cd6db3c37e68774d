// The library keeps its context to itself, so this builds another one in the same way.
#include "inspection/workingcontext.h"

#include "calibration/alignmentparams.h"
#include "pixelwords.h"

namespace itoftool {

itof::AlignmentContext MakeWorkingContext(const itof::CalibrationRecord& record) {
  itof::AlignmentParams params{};
  params.tofWidth = params.auxWidth = itof::kFrameWidth;
  params.tofHeight = params.auxHeight = itof::kFrameHeight;
  itof::FillAlignmentParams(record, params);
  itof::AlignmentContext context{};
  itof::InitAlignmentContext(context, params, 1);
  return context;
}

}  // namespace itoftool
