// Compares workloads with their references. The two run alternately in short bursts, so that other load on the machine
// affects both; the result is the ratio of their medians over many rounds.
#include "targets.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "steadiness.h"
#include "support/silence.h"

namespace itofbench {
namespace {

/// A workload, its reference, and the ratio of their times that is allowed (`limit`) and aimed for (`goal`).
struct Comparison {
  const char* title;
  const char* ours;
  const char* reference;
  double limit;
  double goal;
};

constexpr Comparison kComparisons[] = {
    {"RunApproximateAlignment against cv::remap", "RunApproximateAlignment/simulated", "cv::remap", 1.8, 1.1},
    {"whole steady frame against cv::remap", "SteadyFrame/simulated", "cv::remap", 2.1, 1.3},
#ifdef ITOF_HAS_CALIB3D
    {"AlignmentFarPlane against cv::undistortPoints", "AlignmentFarPlane", "cv::undistortPoints", 1.0 / 5, 1.0 / 10},
    {"DistortLUT against cv::initUndistortRectifyMap", "DistortLUT", "cv::initUndistortRectifyMap", 1.3, 0.7},
#endif
    {"first frame of a run against its plain form", "FirstFrame", "plain::FirstFrame", 1.0 / 5, 1.0 / 9},
    {"steady frame against its plain form", "SteadyFrame/simulated", "plain::SteadyFrame/simulated", 1.0 / 4, 1.0 / 6},
};

/// Seconds per run, over a burst of a few milliseconds and at least one run.
double Burst(const Workload& workload) {
  constexpr double kLength = 0.012;
  double seconds = 0;
  int runs = 0;
  for (; seconds < kLength; ++runs) seconds += TimeOnce(workload);
  return seconds / runs;
}

double Median(std::vector<double>& values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

/// Median seconds per run of two workloads.
struct Times {
  double ours;
  double reference;
};

Times TakeTurns(const Workload& ours, const Workload& reference) {
  constexpr int kRounds = 31;
  std::vector<double> a, b;
  Burst(ours);
  Burst(reference);
  for (int round = 0; round < kRounds; ++round) {
    a.push_back(Burst(ours));
    b.push_back(Burst(reference));
  }
  return {Median(a), Median(b)};
}

std::string Text(const char* before, double value, int decimals, const char* after) {
  char text[48];
  std::snprintf(text, sizeof text, "%s%.*f%s", before, decimals, value, after);
  return text;
}

std::string Milliseconds(double seconds) { return Text("", seconds * 1e3, 3, " ms"); }
std::string Factor(double value) { return Text("", value, 2, " x"); }
std::string Fraction(double value) { return Text("1/", 1 / value, 2, ""); }
std::string PerFrame(double value) { return Text("", value, 3, ""); }
std::string KiB(double value) { return Text("", value, 0, " KiB"); }

/// Prints the row's title before its measurement, which may take long.
void PrintTitle(const char* title) {
  std::printf("%-56s", title);
  std::fflush(stdout);
}

void PrintFigures(const std::string& ours, const std::string& reference, const std::string& figure,
                  const std::string& limit, const std::string& goal, const char* verdict) {
  std::printf(" %9s %9s %9s %9s %8s  %s\n", ours.c_str(), reference.c_str(), figure.c_str(), limit.c_str(),
              goal.c_str(), verdict);
  std::fflush(stdout);
}

/// A measured figure with its limit and goal.
struct Target {
  double figure;
  double limit;
  double goal;
};

/// Ends a row and returns whether the figure is within its limit. `format` formats the three numbers of the target.
bool ReportTarget(const std::string& ours, const std::string& reference, const Target& target,
                  std::string (*format)(double)) {
  const bool within = target.figure <= target.limit;
  PrintFigures(ours, reference, format(target.figure), format(target.limit), format(target.goal),
               within ? "ok" : "EXCEEDED");
  return within;
}

}  // namespace

bool MeasureTargets(const std::vector<Workload>& workloads) {
  const Workload& firstFrame = Find(workloads, "FirstFrame");
  const Workload& steadyFrame = Find(workloads, "SteadyFrame/simulated");
  const auto silently = [](const auto& measure) {
    const itoftool::Silence silence(stdout);
    return measure();
  };
  silently([&] { return TimeOnce(firstFrame); });  // builds the run's tables for the steady frames

  PrintTitle("");
  PrintFigures("ours", "reference", "figure", "limit", "goal", "");
  bool all = true;
  for (const Comparison& c : kComparisons) {
    PrintTitle(c.title);
    const Times times = silently([&] { return TakeTurns(Find(workloads, c.ours), Find(workloads, c.reference)); });
    all &= ReportTarget(Milliseconds(times.ours), Milliseconds(times.reference),
                        {times.ours / times.reference, c.limit, c.goal}, c.limit < 0.5 ? Fraction : Factor);
  }

  PrintTitle("99th percentile over median, against that of cv::remap");
  const Tails tails = silently([&] { return MeasureTails(steadyFrame, Find(workloads, "cv::remap")); });
  const auto& [quiet, busy] = tails;
  all &= ReportTarget(Factor(quiet.ours), Factor(quiet.reference), {quiet.ours / quiet.reference, 1.3, 1.0}, Factor);
  if (busy) {
    PrintTitle("  the same with a busy second process");
    PrintFigures(Factor(busy->ours), Factor(busy->reference), Factor(busy->ours / busy->reference), "-", "-", "");
  }

  PrintTitle("page faults per steady frame, after the first three");
  const double faults = silently([&] { return PageFaultsPerFrame(firstFrame, steadyFrame); });
  all &= ReportTarget("", "", {faults, 0, 0}, PerFrame);
  PrintTitle("growth of resident memory, frame 1,000 to 100,000");
  const double growth = silently([&] { return ResidentGrowth(firstFrame, steadyFrame); });
  all &= ReportTarget("", "", {growth, 64, 0}, KiB);
  return all;
}

}  // namespace itofbench
