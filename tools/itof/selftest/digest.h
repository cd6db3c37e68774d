// Computes the 64-bit FNV-1a hash (by Fowler, Noll and Vo) of values.
#ifndef ITOF_TOOL_SELFTEST_DIGEST_H_
#define ITOF_TOOL_SELFTEST_DIGEST_H_

#include <bit>
#include <cmath>
#include <cstdint>

namespace itoftool::selftest {

class Digest {
 public:
  /// Adds the bytes of `value`, the lowest first on every machine.
  template <typename Unsigned>
  void Add(Unsigned value) {
    for (unsigned shift = 0; shift < 8 * sizeof value; shift += 8) {
      state_ = (state_ ^ ((value >> shift) & 0xFF)) * 0x100000001B3;
    }
  }
  /// Adds the bits of `value`. Processors give not-a-number different bits, so every one counts as 0x7FC00000.
  void Add(float value) { Add(std::isnan(value) ? uint32_t{0x7FC00000} : std::bit_cast<uint32_t>(value)); }

  uint64_t Value() const { return state_; }
  /// The hash folded to 32 bits.
  uint32_t Folded() const { return static_cast<uint32_t>(state_ ^ (state_ >> 32)); }

 private:
  uint64_t state_ = 0xCBF29CE484222325;
};

}  // namespace itoftool::selftest

#endif  // ITOF_TOOL_SELFTEST_DIGEST_H_
