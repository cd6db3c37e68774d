// Two workloads that are compared take turns in short bursts, so that whatever the machine does besides meets both; the
// medians over many such rounds are what is compared.
#include "targets.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "steadiness.h"
#include "support/silence.h"

namespace itofbench {
namespace {

/// How the time of a workload compares with that of another, and how it should.
struct Comparison {
  const char* title;
  const char* ours;
  const char* yardstick;
  double bound;
  double aim;
};

constexpr Comparison kComparisons[] = {
    {"RunApproximateAlignment against cv::remap", "RunApproximateAlignment/simulated", "cv::remap", 1.8, 1.1},
    {"whole steady frame against cv::remap", "SteadyFrame/simulated", "cv::remap", 2.1, 1.3},
#ifdef ITOF_HAS_CALIB3D
    {"AlignmentFarPlane against cv::undistortPoints", "AlignmentFarPlane", "cv::undistortPoints", 1.0 / 5, 1.0 / 10},
    {"DistortLUT against cv::initUndistortRectifyMap", "DistortLUT", "cv::initUndistortRectifyMap", 1.3, 0.7},
#endif
    {"first frame of a run against the plain form of the same", "FirstFrame", "plain::FirstFrame", 1.0 / 5, 1.0 / 9},
    {"steady frame against the plain form of the same", "SteadyFrame/simulated", "plain::SteadyFrame/simulated",
     1.0 / 4, 1.0 / 6},
};

/// Seconds per run, over a burst of some milliseconds, one run at least.
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
  double yardstick;
};

Times TakeTurns(const Workload& ours, const Workload& yardstick) {
  constexpr int kRounds = 31;
  std::vector<double> a, b;
  Burst(ours);
  Burst(yardstick);
  for (int round = 0; round < kRounds; ++round) {
    a.push_back(Burst(ours));
    b.push_back(Burst(yardstick));
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

void PrintRow(const char* title, const std::string& ours, const std::string& yardstick, const std::string& figure,
              const std::string& bound, const std::string& aim, const char* verdict) {
  std::printf("%-56s %9s %9s %9s %9s %8s  %s\n", title, ours.c_str(), yardstick.c_str(), figure.c_str(), bound.c_str(),
              aim.c_str(), verdict);
  std::fflush(stdout);
}

/// A figure, and what it should not exceed.
struct Target {
  double figure;
  double bound;
  double aim;
};

/// Prints a row and returns whether its bound holds. `format` is for the three numbers of the target.
bool Judge(const char* title, const std::string& ours, const std::string& yardstick, const Target& target,
           std::string (*format)(double)) {
  const bool holds = target.figure <= target.bound;
  PrintRow(title, ours, yardstick, format(target.figure), format(target.bound), format(target.aim),
           holds ? "holds" : "MISSED");
  return holds;
}

}  // namespace

bool MeasureTargets(const std::vector<Workload>& workloads) {
  const Workload& firstFrame = Find(workloads, "FirstFrame");
  const Workload& steadyFrame = Find(workloads, "SteadyFrame/simulated");
  const auto silently = [](const auto& measure) {
    const itoftool::Silence silence(stdout);
    return measure();
  };
  silently([&] { return TimeOnce(firstFrame); });  // the tables of a run, for the later frames

  PrintRow("", "ours", "yardstick", "figure", "at least", "aim", "");
  bool all = true;
  for (const Comparison& c : kComparisons) {
    const Times times = silently([&] { return TakeTurns(Find(workloads, c.ours), Find(workloads, c.yardstick)); });
    all &= Judge(c.title, Milliseconds(times.ours), Milliseconds(times.yardstick),
                 {times.ours / times.yardstick, c.bound, c.aim}, c.bound < 0.5 ? Fraction : Factor);
  }

  const Tails tails = silently([&] { return MeasureTails(steadyFrame, Find(workloads, "cv::remap")); });
  const auto& [quiet, busy] = tails;
  all &= Judge("99th percentile over median, against that of cv::remap", Factor(quiet.ours), Factor(quiet.yardstick),
               {quiet.ours / quiet.yardstick, 1.3, 1.0}, Factor);
  if (busy) {
    PrintRow("  the same beside a busy process", Factor(busy->ours), Factor(busy->yardstick),
             Factor(busy->ours / busy->yardstick), "-", "-", "");
  }

  const double faults = silently([&] { return PageFaultsPerFrame(firstFrame, steadyFrame); });
  all &= Judge("page faults per steady frame, after the first three", "", "", {faults, 0, 0}, PerFrame);
  const double growth = silently([&] { return ResidentGrowth(firstFrame, steadyFrame); });
  all &= Judge("growth of resident memory, frame 1,000 to 100,000", "", "", {growth, 64, 0}, KiB);
  return all;
}

}  // namespace itofbench
