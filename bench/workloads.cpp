// Builds the workloads and the buffers that they share.
#include "workloads.h"

#include <benchmark/benchmark.h>
#include <zerun/hostfiles.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <numeric>
#ifdef ITOF_HAS_CALIB3D
#include <opencv2/calib3d.hpp>
#endif
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <random>
#include <stdexcept>
#include <utility>

#include "alignment/alignmentcontext.h"
#include "alignment/approximatealignment.h"
#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "alignment/grid.h"
#include "alignment/idealcells.h"
#include "alignment/kernelbuild.h"
#include "alignment/targettable.h"
#include "calibration/alignmentparams.h"
#include "calibration/calibrationrecord.h"
#include "itofinterface.h"
#include "plain/plainframe.h"
#include "plain/plainsteps.h"
#include "simulation/rig.h"
#include "simulation/simulation.h"

namespace itofbench {
namespace {

using itof::AlignmentContext;
using Words = std::vector<uint16_t>;

Words NoiseWords() {
  Words words(kPixels);
  std::mt19937 random(1);
  for (uint16_t& word : words) word = static_cast<uint16_t>(random());
  return words;
}

/// Sets the depth code to 0 in half of the words, chosen at random, and keeps their confidence.
Words HalfEmpty(Words words) {
  std::vector<size_t> order(words.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::ranges::shuffle(order, std::mt19937(1));
  for (size_t i = 0; i < order.size() / 2; ++i) words[order[i]] &= 0xE000;
  return words;
}

/// The library and a separate context, both with the same camera pair and with per-run tables for a ratio of 1.
struct Stage {
  Stage();

  const itof::CalibrationRecord record = itoftool::simulation::GentleRig().record;
  const ZerunHost::ServedFile calibration{itof::kCalibrationPath,
                                          {reinterpret_cast<const char*>(&record), sizeof record}};
  AlignmentContext context{};
  Words frame = Words(kPixels);  // aligned in place, so restored before each call
  Words workingBuffer = Words(kPixels);
};

Stage::Stage() {
  if (itof_init() != ITOF_OK) throw std::runtime_error("itof_init refused the calibration");

  itof::InitAlignmentContext(context, itof::WorkingParams(record), 1);
  plain::AlignmentFarPlane(context, context.farPlaneMapX.get(), context.farPlaneMapY.get(), 1.0, 1.0);
  plain::DistortLUT(context, context.distortMapX.get(), context.distortMapY.get());
}

using StagePointer = std::shared_ptr<Stage>;  // the closures own the stage
using Frames = std::vector<std::pair<std::string, Words>>;

/// One implementation of the steps: the library's or the plain form.
struct Steps {
  std::string prefix;  // of the workloads' names
  decltype(itof::RunApproximateAlignment)* align;
  decltype(itof::AlignmentFarPlane)* farPlane;
  decltype(itof::DistortLUT)* distortLut;
};

void AddSteps(std::vector<Workload>& all, const StagePointer& stage, const Frames& frames, const Steps& steps) {
  AlignmentContext& c = stage->context;
  for (const auto& [name, words] : frames) {
    const auto align = [stage, &c, pristine = words, step = steps.align] {
      step(c, pristine.data(), stage->workingBuffer.data(), c.farPlaneMapX.get(), c.farPlaneMapY.get(),
           c.distortMapX.get(), c.distortMapY.get());
    };
    all.push_back({steps.prefix + "RunApproximateAlignment/" + name, align});
  }
  const auto farPlane = [stage, &c, step = steps.farPlane] {
    step(c, c.farPlaneMapX.get(), c.farPlaneMapY.get(), 1.0, 1.0);
  };
  all.push_back({steps.prefix + "AlignmentFarPlane", farPlane});
  const auto distortLut = [stage, &c, step = steps.distortLut] { step(c, c.distortMapX.get(), c.distortMapY.get()); };
  all.push_back({steps.prefix + "DistortLUT", distortLut});
}

/// Adds the two parts of RunApproximateAlignment that precede its scatter.
void AddParts(std::vector<Workload>& all, const StagePointer& stage, const Words& words) {
  AlignmentContext& c = stage->context;
  all.push_back({"FillTargetTable", [stage, &c] {
                   itof::RunKernel([&]() ITOF_KERNEL {
                     itof::FillTargetTable(c.params, true, c.distortMapX.get(), c.distortMapY.get(), c.targets.data());
                   });
                 }});
  const itof::Grid grid = itof::IdealGrid(c.params, true);
  const itof::Parallax parallax = itof::MakeParallax(c.auxRatioIntrinsics[0] * c.params.translation[0],
                                                     c.auxRatioIntrinsics[4] * c.params.translation[1], grid);
  static_assert(kPixels % itof::kCellBlock == 0);
  all.push_back({"FindIdealCells", [stage, &c, words, grid, parallax] {
                   itof::RunKernel([&]() ITOF_KERNEL {
                     for (int i = 0; i < kPixels; i += itof::kCellBlock) {
                       int32_t cells[itof::kCellBlock];
                       itof::FindIdealCells(parallax, grid, words.data() + i, c.farPlaneMapX.get() + i,
                                            c.farPlaneMapY.get() + i, itof::kCellBlock, cells);
                       benchmark::DoNotOptimize(cells);
                     }
                   });
                 }});
}

void AddCalls(std::vector<Workload>& all, const StagePointer& stage, const Frames& frames) {
  const auto call = [stage] { itof_execute_algo(stage->frame.data(), 1.0F); };
  const auto plainly = [stage](bool firstOfRun) {
    return [stage, firstOfRun] { plain::AlignFrame(stage->context, stage->frame.data(), firstOfRun, 1.0F); };
  };
  for (const auto& [name, words] : frames) {
    const auto restore = [stage, pristine = words] { std::ranges::copy(pristine, stage->frame.begin()); };
    all.push_back({"SteadyFrame/" + name, call, restore});
    all.push_back({"plain::SteadyFrame/" + name, plainly(false), restore});
  }
  const auto endRun = [stage, pristine = frames.front().second] {
    itof_deinit();
    std::ranges::copy(pristine, stage->frame.begin());
  };
  all.push_back({"FirstFrame", call, endRun});
  all.push_back({"plain::FirstFrame", plainly(true), endRun});
  all.push_back({"itof_init", [stage] { itof_init(); }});
}

void AddReferences(std::vector<Workload>& all, const StagePointer& stage, const Words& words) {
  const cv::Size size(ITOF_FRAME_WIDTH, ITOF_FRAME_HEIGHT);
  const cv::Mat source = cv::Mat(words).reshape(1, size.height).clone();
  const cv::Mat mapX(size, CV_32F, stage->context.distortMapX.get());
  const cv::Mat mapY(size, CV_32F, stage->context.distortMapY.get());
  all.push_back({"cv::remap", [stage, source, mapX, mapY, target = cv::Mat()]() mutable {
                   cv::remap(source, target, mapX, mapY, cv::INTER_NEAREST);
                 }});

#ifdef ITOF_HAS_CALIB3D
  const itof::AlignmentParams& params = stage->context.params;
  const cv::Matx33d tof(params.tofIntrinsics), aux(params.auxIntrinsics), rotation(params.rotation);
  const cv::Matx<double, 1, 8> tofLens(params.tofDistortion), auxLens(params.auxDistortion);
  cv::Mat_<cv::Point2d> pixels(kPixels, 1);
  for (int i = 0; i < kPixels; ++i) pixels(i) = cv::Point(i % size.width, i / size.width);
  all.push_back({"cv::undistortPoints", [=, seen = cv::Mat()]() mutable {
                   cv::undistortPoints(pixels, seen, tof, tofLens, rotation, aux,
                                       cv::TermCriteria(cv::TermCriteria::COUNT, 3, 0));
                 }});
  all.push_back({"cv::initUndistortRectifyMap", [=, x = cv::Mat(), y = cv::Mat()]() mutable {
                   cv::initUndistortRectifyMap(aux, auxLens, cv::noArray(), aux, size, CV_32FC1, x, y);
                 }});
#endif
}

}  // namespace

std::vector<Workload> MakeWorkloads() {
  cv::setNumThreads(1);
  const auto stage = std::make_shared<Stage>();
  const Words simulated =
      itoftool::simulation::DepthWords(itoftool::simulation::GentleRig(), itoftool::simulation::RoomScene(0), 1);
  const Frames frames{{"simulated", simulated}, {"noise", NoiseWords()}, {"half_empty", HalfEmpty(simulated)}};

  std::vector<Workload> all;
  AddSteps(all, stage, frames, {"", itof::RunApproximateAlignment, itof::AlignmentFarPlane, itof::DistortLUT});
  AddSteps(all, stage, frames,
           {"plain::", plain::RunApproximateAlignment, plain::AlignmentFarPlane, plain::DistortLUT});
  AddParts(all, stage, simulated);
  AddCalls(all, stage, frames);
  AddReferences(all, stage, simulated);
  return all;
}

const Workload& Find(const std::vector<Workload>& workloads, const std::string& name) {
  const auto found = std::ranges::find(workloads, name, &Workload::name);
  if (found == workloads.end()) throw std::logic_error("no workload " + name);
  return *found;
}

double TimeOnce(const Workload& workload) {
  workload.prepare();
  const auto start = std::chrono::steady_clock::now();
  workload.run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace itofbench
