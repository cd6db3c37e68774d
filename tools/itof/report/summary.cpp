// Prints the figures of a run. Times are those of the library's calls only, without files and pictures.
#include "report/summary.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "support/quantile.h"
#include "support/text.h"

namespace itoftool {

std::string Percent(double share) { return Format("%.1f %%", 100 * share); }

namespace {

/// Prints how many pixels of all frames have each fate, if that was counted.
void PrintFates(const std::vector<FrameReport>& frames) {
  if (!frames.front().fates) return;
  FateCounts sum;
  for (const FrameReport& frame : frames) {
    for (size_t i = 0; i < sum.byFate.size(); ++i) sum.byFate[i] += frame.fates->byFate[i];
    sum.overwrittenWithoutDepth += frame.fates->overwrittenWithoutDepth;
  }
  const size_t total = std::accumulate(sum.byFate.begin(), sum.byFate.end(), size_t{0});
  std::printf("ToF pixels                  %zu, of which\n", total);
  for (size_t i = 0; i < sum.byFate.size(); ++i) {
    const double share = static_cast<double>(sum.byFate[i]) / static_cast<double>(total);
    std::printf("  %10zu  %7s  %s", sum.byFate[i], Percent(share).c_str(), kFateNames[i].text);
    const bool overwritten = static_cast<Fate>(i) == Fate::kOverwritten;
    if (overwritten) std::printf(", %zu of them by a pixel without depth", sum.overwrittenWithoutDepth);
    std::printf("\n");
  }
}

}  // namespace

void PrintSummary(const std::vector<FrameReport>& frames, const std::filesystem::path& directory) {
  std::vector<double> milliseconds;
  double reached = 0;
  size_t aboveRange = 0;
  for (const FrameReport& frame : frames) {
    milliseconds.push_back(frame.milliseconds);
    reached += frame.reached;
    aboveRange += frame.aboveRange;
  }
  // The first frame also builds the run's tables. It would be the 99th percentile of every short run.
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
  std::printf("pixels above 8191           %zu%s\n", aboveRange, aboveRange > 0 ? ", treated as without depth:" : "");
  for (const FrameReport& frame : frames) {
    if (frame.aboveRange > 0) std::printf("  %s: %zu\n", frame.input.c_str(), frame.aboveRange);
  }
  PrintFates(frames);
  std::printf("written to                  %s: alignment.json, and for each frame\n", directory.c_str());
  std::printf("  NAME.aligned.raw  aligned words\n");
  std::printf("  NAME.aligned.png  aligned depth in codes, 16 bits; viewers show it nearly black\n");
  std::printf("  NAME.preview.png  picture to look at\n");
  if (frames.front().fates) std::printf("  NAME.fates.png    outcome of each depth pixel\n");
}

}  // namespace itoftool
