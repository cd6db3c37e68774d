// Formats text for a terminal.
#ifndef ITOF_TOOL_SUPPORT_TEXT_H_
#define ITOF_TOOL_SUPPORT_TEXT_H_

#include <string>
#include <vector>

namespace itoftool {

/// Formats as printf does.
[[gnu::format(printf, 1, 2)]] std::string Format(const char* format, ...);

/// The text in double quotes.
std::string Quoted(const std::string& text);

/// The text with spaces in place of control characters, such as line breaks. File names and messages of other libraries
/// may contain them.
std::string OneLine(std::string text);

/// Breaks `text` at spaces into lines of at most `width` characters, each with `indent` leading spaces and a line end.
std::string Wrap(const std::string& text, size_t indent, size_t width = 100);

/// Joins the parts with ", ".
std::string Joined(const std::vector<std::string>& parts);

}  // namespace itoftool

#endif  // ITOF_TOOL_SUPPORT_TEXT_H_
