// What there is to time: the library's steps and whole calls, their plain forms, and well-tuned functions of others that
// do comparable work. All of it for one simulated camera pair, at the full frame size.
#ifndef ITOF_BENCH_WORKLOADS_H_
#define ITOF_BENCH_WORKLOADS_H_

#include <functional>
#include <string>
#include <vector>

namespace itofbench {

/// Pixels that one run of any workload handles.
inline constexpr int kPixels = 640 * 360;

struct Workload {
  std::string name;
  std::function<void()> run;
  std::function<void()> prepare = [] {};  // comes before each run, and is no part of what is timed
};

/// All workloads, by these names (FRAME is "simulated", "noise", or "half_empty", the first with half of its pixels at
/// depth 0; plain:: precedes the plain forms):
///
///     RunApproximateAlignment/FRAME  AlignmentFarPlane  DistortLUT       the steps
///     FillTargetTable  FindIdealCells                                    parts of the first of them
///     SteadyFrame/FRAME  FirstFrame  itof_init                           calls of the whole library
///     cv::remap  cv::undistortPoints  cv::initUndistortRectifyMap        the yardsticks
///
/// The last two of these only where OpenCV has its calib3d module.
/// The library's lines go to standard output. SteadyFrame belongs after a frame since the last itof_init, which its own
/// first run can be. Throws std::runtime_error.
std::vector<Workload> MakeWorkloads();

/// The workload of that name, which must be there.
const Workload& Find(const std::vector<Workload>& workloads, const std::string& name);

/// Prepares and runs a workload once. Returns the seconds of the run alone.
double TimeOnce(const Workload& workload);

}  // namespace itofbench

#endif  // ITOF_BENCH_WORKLOADS_H_
