// Declares the layout of an input of the fuzz target `calls`.
#ifndef ITOF_TESTS_FUZZ_CALLSINPUT_H_
#define ITOF_TESTS_FUZZ_CALLSINPUT_H_

#include <cstdint>
#include <type_traits>

enum class Action : uint8_t { kInit, kAlign, kDeinit, kFile, kDiagnostics };
inline constexpr int kActions = 5;

enum class FileChange : uint8_t { kVanish, kReplace, kResize, kSetByte, kReadsFail, kReadsSucceed };
inline constexpr int kFileChanges = 6;

/// The input is a sequence of these. Choices are taken modulo the number of possibilities.
struct CallInput {
  Action action;
  int8_t allocations = -1;  // number of allocations that succeed in the call; below 0: all
  uint8_t choice = 0;       // kFile: a FileChange; kAlign: which of two frames
  uint8_t byte = 0;         // kSetByte: the new byte
  uint32_t number = 0;      // kFile: which file, its size, or a position in it
  float ratio = 1.0F;       // kAlign
};
static_assert(std::is_trivially_copyable_v<CallInput>);

#endif  // ITOF_TESTS_FUZZ_CALLSINPUT_H_
