// Converts floating-point values of any size to integers. C++ leaves values outside the integer's range undefined, and
// processors differ there: x86 gives the lowest integer for all of them, Arm saturates. Kernels, which convert many
// values at once, clamp them to the neighbourhood of a grid first. That is in range and changes no result.
#ifndef ITOF_INTEGERPART_H_
#define ITOF_INTEGERPART_H_

#include <cstdint>
#include <limits>

namespace itof {

/// The integer part of `value` (toward zero). Values beyond the 32-bit range give the nearest limit; not-a-number gives
/// 0. Widening a float to call this loses nothing.
constexpr int32_t IntegerPart(double value) {
  constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
  constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
  if (value >= kHighest) return kHighest;
  if (value <= kLowest) return kLowest;
  return value == value ? static_cast<int32_t>(value) : 0;
}

}  // namespace itof

#endif  // ITOF_INTEGERPART_H_
