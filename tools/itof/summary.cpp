// Figures of a run. Times are of the library's calls alone, without files and pictures.
#include "summary.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace itoftool {
namespace {

/// The value that a share `q` of all values does not exceed.
double Quantile(const std::vector<double>& sorted, double q) {
  const double rank = std::ceil(q * static_cast<double>(sorted.size()));
  return sorted[static_cast<size_t>(std::max(rank, 1.0)) - 1];
}

}  // namespace

std::string Percent(double share) {
  char text[16];
  std::snprintf(text, sizeof text, "%.1f %%", 100 * share);
  return text;
}

Progress::Progress(size_t total, bool off) : total_(total), visible_(!off && isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (visible_) std::fputs("\r\033[K", stderr);
}

void Progress::Show(size_t done) const {
  if (!visible_) return;
  constexpr size_t kWidth = 40;
  const size_t filled = kWidth * done / total_;
  const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
  std::fprintf(stderr, "\r[%s] %zu of %zu frames", bar.c_str(), done, total_);
  std::fflush(stderr);
}

void PrintSummary(const std::vector<FrameReport>& frames, const std::filesystem::path& directory) {
  std::vector<double> milliseconds;
  double reached = 0;
  size_t aboveRange = 0;
  for (const FrameReport& frame : frames) {
    milliseconds.push_back(frame.milliseconds);
    reached += frame.reached;
    aboveRange += frame.aboveRange;
  }
  // The first frame also builds the run's tables, and would stand for the slowest percent of any short run.
  const double first = milliseconds.front();
  milliseconds.erase(milliseconds.begin());
  std::ranges::sort(milliseconds);

  std::printf("frames                      %zu\n", frames.size());
  if (!milliseconds.empty()) {
    std::printf("milliseconds per frame      %.2f median, %.2f 99th percentile\n", Quantile(milliseconds, 0.5),
                Quantile(milliseconds, 0.99));
  }
  std::printf("first frame, with tables    %.2f milliseconds\n", first);
  std::printf("aux pixels reached          %s\n", Percent(reached / static_cast<double>(frames.size())).c_str());
  std::printf("pixels above 8191           %zu%s\n", aboveRange,
              aboveRange > 0 ? ", which count as without depth:" : "");
  for (const FrameReport& frame : frames) {
    if (frame.aboveRange > 0) std::printf("  %s: %zu\n", frame.input.c_str(), frame.aboveRange);
  }
  std::printf("written to                  %s\n", directory.c_str());
}

}  // namespace itoftool
