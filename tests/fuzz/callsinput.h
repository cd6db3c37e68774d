// What the bytes of an input of the calls' target are.
#ifndef ITOF_TESTS_FUZZ_CALLSINPUT_H_
#define ITOF_TESTS_FUZZ_CALLSINPUT_H_

#include <cstdint>
#include <type_traits>

enum class Action : uint8_t { kInit, kAlign, kDeinit, kFile, kDiagnostics };
inline constexpr int kActions = 5;

enum class FileChange : uint8_t { kVanish, kReplace, kResize, kSetByte, kReadsFail, kReadsSucceed };
inline constexpr int kFileChanges = 6;

/// The input is a sequence of these. Numbers beyond what they choose from are taken modulo.
struct CallInput {
  Action action;
  /// So many allocations of the call succeed; below 0: all.
  int8_t allocations = -1;
  /// Of a file: its change. Of an aligned frame: which of the two.
  uint8_t choice = 0;
  /// Of a changed byte: the byte.
  uint8_t byte = 0;
  /// Of a file: which one, its size, or the place in it.
  uint32_t number = 0;
  /// Of an aligned frame: the ratio.
  float ratio = 1.0F;
};
static_assert(std::is_trivially_copyable_v<CallInput>);

#endif  // ITOF_TESTS_FUZZ_CALLSINPUT_H_
