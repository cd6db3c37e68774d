// The library keeps its context to itself, so this builds another one in the same way.
#include "inspection/workingcontext.h"

#include "calibration/alignmentparams.h"

namespace itoftool {

itof::AlignmentContext MakeWorkingContext(const itof::CalibrationRecord& record) {
  itof::AlignmentContext context{};
  itof::InitAlignmentContext(context, itof::WorkingParams(record), 1);
  return context;
}

}  // namespace itoftool
