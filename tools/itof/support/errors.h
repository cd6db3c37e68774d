// Defines the failures that a command reports to its user in one line.
#ifndef ITOF_TOOL_SUPPORT_ERRORS_H_
#define ITOF_TOOL_SUPPORT_ERRORS_H_

#include <filesystem>
#include <stdexcept>
#include <string>

namespace itoftool {

/// Input or output that cannot be used. The text names the file, the field if there is one, and the cause. Exit code 1.
struct DataError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Arguments that the option parser accepts but the command cannot use. Exit code 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Throws a DataError that names a file.
[[noreturn]] inline void Fail(const std::filesystem::path& path, const std::string& cause) {
  throw DataError((path.empty() ? "\"\"" : path.string()) + ": " + cause);
}

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_ERRORS_H_
