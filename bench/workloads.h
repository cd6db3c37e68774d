// Provides the workloads to time: the library's steps and whole calls, their plain form, and well-tuned OpenCV functions
// that do comparable work. All use one simulated camera pair and the full frame size.
#ifndef ITOF_BENCH_WORKLOADS_H_
#define ITOF_BENCH_WORKLOADS_H_

#include <functional>
#include <string>
#include <vector>

namespace itofbench {

/// Pixels that each workload processes.
inline constexpr int kPixels = 640 * 360;

struct Workload {
  std::string name;
  std::function<void()> run;
  std::function<void()> prepare = [] {};  // called before each run, not timed
};

/// Returns all workloads. Their names are as follows, where FRAME is "simulated", "noise" or "half_empty" (the simulated
/// frame with half of its pixels at depth code 0); "plain::" precedes the names of the plain form:
///
///     RunApproximateAlignment/FRAME  AlignmentFarPlane  DistortLUT       the steps
///     FillTargetTable  FindIdealCells                                    parts of RunApproximateAlignment
///     SteadyFrame/FRAME  FirstFrame  itof_init                           calls of the whole library
///     cv::remap  cv::undistortPoints  cv::initUndistortRectifyMap        the references
///
/// The last two exist only if OpenCV has its calib3d module. The library prints its lines to standard output. After
/// itof_init, run FirstFrame or SteadyFrame once before timing SteadyFrame: that call builds the per-run tables. Throws
/// std::runtime_error.
std::vector<Workload> MakeWorkloads();

/// Returns the workload with that name. Throws std::logic_error if there is none.
const Workload& Find(const std::vector<Workload>& workloads, const std::string& name);

/// Prepares and runs a workload once. Returns the seconds that the run took, without the preparation.
double TimeOnce(const Workload& workload);

}  // namespace itofbench

#endif  // ITOF_BENCH_WORKLOADS_H_
