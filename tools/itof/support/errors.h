// Failures that a command reports to its user in one line.
#ifndef ITOF_TOOL_SUPPORT_ERRORS_H_
#define ITOF_TOOL_SUPPORT_ERRORS_H_

#include <filesystem>
#include <stdexcept>
#include <string>

namespace itoftool {

/// Input or output that cannot be worked with; the text names file, field and cause. Exit code 1.
struct DataError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Arguments that contradict each other, beyond what the option parser sees. Exit code 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Throws the DataError of a file.
[[noreturn]] inline void Fail(const std::filesystem::path& path, const std::string& cause) {
  throw DataError((path.empty() ? "\"\"" : path.string()) + ": " + cause);
}

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_ERRORS_H_
