// Prints to the standard streams, and reports what could not be printed.
#ifndef ITOF_TOOL_SUPPORT_PRINT_H_
#define ITOF_TOOL_SUPPORT_PRINT_H_

#include <string>

namespace itoftool {

/// Prints a failure or a remark in one line on standard error, with OneLine.
void PrintMessage(const std::string& text);

/// Throws DataError if anything printed to standard output did not arrive. `remark` follows the cause.
void FinishOutput(const char* remark = "");

/// Does the same for a command that has written its files.
inline void FinishOutputAfterFiles() { FinishOutput("; the files are written"); }

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_PRINT_H_
