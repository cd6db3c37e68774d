// Compares floating-point numbers bit for bit, and gives floats next to a position.
#ifndef ITOF_TESTS_SUPPORT_FLOATS_H_
#define ITOF_TESTS_SUPPORT_FLOATS_H_

#include <cmath>
#include <cstdlib>
#include <cstring>

/// Whether both have the same bits or are not-a-number, whose payload depends on the processor.
template <typename T>
bool SameBits(T a, T b) {
  return (a != a && b != b) || std::memcmp(&a, &b, sizeof a) == 0;
}

/// The float `steps` floats above the one nearest to `position`, or below it if `steps` is negative.
inline float FloatsBeside(double position, int steps) {
  auto result = static_cast<float>(position);
  for (int i = std::abs(steps); i > 0; --i) result = std::nextafter(result, steps < 0 ? -HUGE_VALF : HUGE_VALF);
  return result;
}

#endif  // ITOF_TESTS_SUPPORT_FLOATS_H_
