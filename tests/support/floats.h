// Floats, as this project compares them, and at places where a last bit decides.
#ifndef ITOF_TESTS_SUPPORT_FLOATS_H_
#define ITOF_TESTS_SUPPORT_FLOATS_H_

#include <cmath>
#include <cstdlib>
#include <cstring>

/// The same bits; or both not a number, since processors keep different payloads.
template <typename T>
bool SameBits(T a, T b) {
  return (a != a && b != b) || std::memcmp(&a, &b, sizeof a) == 0;
}

/// The float that is `steps` floats above the one nearest to `position`; below 0: below it.
inline float FloatsBeside(double position, int steps) {
  auto result = static_cast<float>(position);
  for (int i = std::abs(steps); i > 0; --i) result = std::nextafter(result, steps < 0 ? -HUGE_VALF : HUGE_VALF);
  return result;
}

#endif  // ITOF_TESTS_SUPPORT_FLOATS_H_
