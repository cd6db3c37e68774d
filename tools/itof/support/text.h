// Text for people on a terminal.
#ifndef ITOF_TOOL_SUPPORT_TEXT_H_
#define ITOF_TOOL_SUPPORT_TEXT_H_

#include <string>
#include <vector>

namespace itoftool {

/// As printf. The formats are the callers' own.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

/// `text` in lines of at most `width` characters, broken at blanks, each after `indent` blanks and with a line end.
std::string Wrap(const std::string& text, size_t indent, size_t width = 100);

/// The parts with ", " between them.
std::string Joined(const std::vector<std::string>& parts);

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_TEXT_H_
