// Flushes standard output. A text larger than the stream's buffer fails before the last flush, which then succeeds.
#include "support/print.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "support/errors.h"
#include "support/text.h"

namespace itoftool {

void PrintMessage(const std::string& text) { std::fprintf(stderr, "itof: %s\n", OneLine(text).c_str()); }

void FinishOutput(const char* remark) {
  const bool flushed = std::fflush(stdout) == 0;
  const char* cause = flushed ? "not everything could be printed" : std::strerror(errno);
  if (!flushed || std::ferror(stdout) != 0) throw DataError(std::string("standard output: ") + cause + remark);
}

}  // namespace itoftool
