// Builds an alignment context as itof_init does, since the library does not expose its own.
#include "inspection/workingcontext.h"

#include "calibration/alignmentparams.h"

namespace itoftool {

itof::AlignmentContext MakeWorkingContext(const itof::CalibrationRecord& record) {
  itof::AlignmentContext context{};
  itof::InitAlignmentContext(context, itof::WorkingParams(record), 1);
  return context;
}

}  // namespace itoftool
