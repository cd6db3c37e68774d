// The option --ratio, which several commands have.
#ifndef ITOF_TOOL_COMMANDS_RATIO_H_
#define ITOF_TOOL_COMMANDS_RATIO_H_

#include <cfloat>

#include "support/errors.h"
#include "support/text.h"

namespace itoftool {

/// Throws UsageError unless `ratio` is above 0 and finite also in single precision, which the library takes.
inline void CheckRatio(double ratio) {
  if (ratio <= static_cast<double>(FLT_MAX) && static_cast<float>(ratio) > 0) return;
  throw UsageError(Format("--ratio: %g is no finite single-precision number above 0", ratio));
}

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_RATIO_H_
