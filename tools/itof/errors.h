// Failures that a command reports to its user in one line.
#ifndef ITOF_TOOL_ERRORS_H_
#define ITOF_TOOL_ERRORS_H_

#include <stdexcept>

namespace itoftool {

/// Input or output that cannot be worked with; the text names file, field and cause. Exit code 1.
struct DataError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Arguments that contradict each other, beyond what the option parser sees. Exit code 2.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace itoftool

#endif  // ITOF_TOOL_ERRORS_H_
