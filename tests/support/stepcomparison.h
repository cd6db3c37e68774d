// Runs the library's alignment steps and their plain forms on the same inputs, and compares every bit of their outputs.
#ifndef ITOF_TESTS_SUPPORT_STEPCOMPARISON_H_
#define ITOF_TESTS_SUPPORT_STEPCOMPARISON_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "alignment/alignmentcontext.h"

/// A depth frame and its maps, each with tofWidth x tofHeight entries.
struct StepFrame {
  std::vector<uint16_t> words;
  std::vector<float> farX, farY;    // far-plane maps
  std::vector<float> lensX, lensY;  // lens table
};

// Each function returns the first difference as text, or an empty string if there is none. `guard` is the number of
// sentinels before and after each output buffer. With 0, each buffer has exactly the size of the output, so that a
// memory checker finds an access outside.

/// Sets the aux matrix at the run's ratio in `context`.
std::string CompareFarPlane(itof::AlignmentContext& context, double scaleX, double scaleY, size_t guard);

/// Adds the number of table entries that the plain form writes to `written`, unless that is null.
std::string CompareDistortLUT(const itof::AlignmentContext& context, size_t guard, size_t* written = nullptr);

/// With `prepareTargets`, the lens table is the context's own and its targets are prepared.
std::string CompareAlignment(itof::AlignmentContext& context, const StepFrame& frame, bool prepareTargets,
                             size_t guard);

#endif  // ITOF_TESTS_SUPPORT_STEPCOMPARISON_H_
