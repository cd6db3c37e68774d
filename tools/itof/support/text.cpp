// Formats numbers and wraps lines.
#include "support/text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <sstream>

namespace itoftool {

std::string Format(const char* format, ...) {
  va_list arguments, again;
  va_start(arguments, format);
  va_copy(again, arguments);
  std::string text(static_cast<size_t>(std::vsnprintf(nullptr, 0, format, arguments)), '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  va_end(arguments);
  return text;
}

std::string Quoted(const std::string& text) { return Format("\"%s\"", text.c_str()); }

std::string OneLine(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < ' ' || c == 127; }, ' ');
  return text;
}

std::string Wrap(const std::string& text, size_t indent, size_t width) {
  const std::string margin(indent, ' ');
  std::istringstream words(text);
  std::string wrapped, line, word;
  while (words >> word) {
    if (!line.empty() && indent + line.size() + 1 + word.size() > width) {
      wrapped += margin + line + "\n";
      line.clear();
    }
    line += (line.empty() ? "" : " ") + word;
  }
  return wrapped + margin + line + "\n";
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

}  // namespace itoftool
