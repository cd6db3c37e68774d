// Shows how far a command is. The bar goes to standard error, so that it never mixes with results.
#include "support/progress.h"

#include <unistd.h>

#include <cstdio>
#include <string>

namespace itoftool {

Progress::Progress(size_t total, const char* what, bool off)
    : total_(total), what_(what), visible_(!off && isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (visible_) std::fputs("\r\033[K", stderr);
}

void Progress::Show(size_t done) const {
  if (!visible_) return;
  constexpr size_t kWidth = 40;
  const size_t filled = kWidth * done / total_;
  const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
  std::fprintf(stderr, "\r[%s] %zu of %zu %s", bar.c_str(), done, total_, what_);
  std::fflush(stderr);
}

}  // namespace itoftool
