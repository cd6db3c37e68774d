// Compares every alignment step with its plain form, bit for bit, at sizes around the widths of vectors and with contexts
// that no calibration gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "alignment/grid.h"
#include "alignment/idealcells.h"
#include "camera/lens.h"
#include "plain/plainsteps.h"
#include "support/floats.h"
#include "support/kernelbuildchoice.h"
#include "support/stepcomparison.h"

namespace {

using itof::AlignmentContext;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kExtremes[] = {0.0,      -0.0,      -1.0,         0.5,     kNan,    kInfinity, -kInfinity,
                                0x1p31,   -0x1p31,   0x1p32,       -0x1p32, 1e-40,   5e-324,    3e38,
                                -1.5e308, 1.79e-308, 2147483647.0, -1e-9,   1.0e150, 16777217.0};

// kDistant has principal points about 2^35 pixels away. Positions are then small differences of large numbers, and a lost
// last bit shows in the float maps.
enum class Kind { kGentle, kDistant, kExtreme };

struct Random {
  double Between(double low, double high) { return std::uniform_real_distribution(low, high)(engine); }
  int32_t Integer(int32_t low, int32_t high) { return std::uniform_int_distribution(low, high)(engine); }
  bool OneIn(int32_t n) { return Integer(1, n) == 1; }
  double Extreme() { return kExtremes[Integer(0, std::size(kExtremes) - 1)]; }
  std::mt19937_64 engine{20240229};
};

// A context without buffers, and the ratios. Each camera model differs slightly from its camera matrix, so that the result
// depends on which of the two a step reads.
struct Rig {
  AlignmentContext context{};
  double scaleX, scaleY;
};

Rig MakeRig(Random& random, Kind kind, int32_t width, int32_t height) {
  const bool distant = kind == Kind::kDistant;
  const auto focal = [&] {
    return distant ? random.Between(0x1p36, 0x1.8p36) : random.Between(0.8, 2.0) * (width + 4);
  };
  const auto centre = [&](int32_t side) { return distant ? -random.Between(0x1p34, 0x1p35) : 0.5 * side; };
  Rig rig;
  rig.scaleX = random.OneIn(2) ? 1.0 : random.Between(0.8, 2.0);
  rig.scaleY = random.OneIn(2) ? rig.scaleX : random.Between(0.8, 2.0);
  AlignmentContext& context = rig.context;
  context.distortionEnabled = static_cast<uint8_t>(random.OneIn(2) ? random.Integer(1, 255) : 0);

  itof::AlignmentParams& params = context.params;
  for (double* k : {params.tofIntrinsics, params.auxIntrinsics}) {
    const double matrix[9] = {focal(), 0.01, centre(width), 0.0, focal(), centre(height), 0.0, 0.0, 1.0};
    std::copy_n(matrix, 9, k);
  }
  for (int i = 0; i < 9; ++i) params.rotation[i] = (i % 4 == 0 ? 1.0 : 0.0) + random.Between(-0.02, 0.02);
  for (double& t : params.translation) t = random.Between(-0.1, 0.1);

  itof::CameraModel& tof = context.tofModel;
  itof::CameraModel& aux = context.auxModel;
  for (itof::CameraModel* m : {&tof, &aux}) {
    for (double* k : {&m->k1, &m->k2, &m->k3, &m->k4, &m->k5, &m->k6, &m->p1, &m->p2}) *k = random.Between(-0.05, 0.05);
  }
  const double* k = params.tofIntrinsics;
  tof.fx = k[0] * 1.25, tof.fy = k[4] * 1.25, tof.cx = k[2] + 0.3, tof.cy = k[5] - 0.3;
  tof.invFx = 1.0 / tof.fx + 0x1p-80, tof.invFy = 1.0 / tof.fy - 0x1p-80;

  // Move the aux camera's centre until the far plane's first pixel is at 0. The first round leaves the error of a large
  // float, the next ones none.
  params.tofWidth = params.tofHeight = 1;
  for (int round = 0; round < 3; ++round) {
    float x = 0.0F, y = 0.0F;
    plain::AlignmentFarPlane(context, &x, &y, rig.scaleX, rig.scaleY);
    params.auxIntrinsics[2] -= static_cast<double>(x) / rig.scaleX;
    params.auxIntrinsics[5] -= static_cast<double>(y) / rig.scaleY;
  }
  params.tofWidth = width;
  params.tofHeight = height;
  params.auxWidth = random.Integer(-1, 2 * width + 3);
  params.auxHeight = random.Integer(-1, 2 * height + 3);

  // Put the distorted image's centre where the grid's centre goes.
  const double* ratio = context.auxRatioIntrinsics;
  aux.fx = ratio[0] * random.Between(0.7, 1.3);
  aux.fy = ratio[4] * random.Between(0.7, 1.3);
  const auto distorted = itoftool::Distort({aux.k1, aux.k2, aux.k3, aux.k4, aux.k5, aux.k6, aux.p1, aux.p2},
                                           {(0.5 * width - ratio[2]) / ratio[0], (0.5 * height - ratio[5]) / ratio[4]});
  aux.cx = 0.5 * width - aux.fx * distorted.x;
  aux.cy = 0.5 * height - aux.fy * distorted.y;
  return rig;
}

// Puts an extreme number into one of the doubles that fill `object` from `offset` on.
template <typename T>
void Spoil(Random& random, T& object, size_t offset = 0) {
  const double extreme = random.Extreme();
  const auto last = static_cast<int32_t>((sizeof object - offset) / sizeof extreme) - 1;
  const size_t at = offset + sizeof extreme * static_cast<size_t>(random.Integer(0, last));
  std::memcpy(reinterpret_cast<char*>(&object) + at, &extreme, sizeof extreme);
}

// Makes a few numbers extreme; or gives every pixel one position midway between two floats, where the last bit of the far
// plane's division shows; or puts every point into the plane of the aux camera, neither in front of it nor behind it.
void MakeExtreme(Random& random, Rig& rig) {
  AlignmentContext& context = rig.context;
  if (random.OneIn(4)) {
    rig.scaleX = rig.scaleY = 1.0;
    const double aux[9] = {0, 0, 16 + 0x1p-20, 0, 0, 16 - 0x1p-21, 0, 0, 1};
    std::copy_n(aux, 9, context.params.auxIntrinsics);
    return;
  }
  if (random.OneIn(8)) {
    std::fill_n(context.params.rotation + 6, 3, 0.0);
    context.params.translation[2] = 0.0;
    return;
  }
  if (random.OneIn(2)) Spoil(random, context.params, offsetof(itof::AlignmentParams, tofIntrinsics));
  if (random.OneIn(3)) Spoil(random, context.tofModel);
  if (random.OneIn(3)) Spoil(random, context.auxModel);
  if (random.OneIn(4)) Spoil(random, random.OneIn(2) ? rig.scaleX : rig.scaleY);
}

// Makes a frame with random maps: positions around the frames, also on halves and integers, some of them extreme, and many
// far-plane positions whose ideal position lies on the edge of a cell or a few floats from it. Changes the parallax.
StepFrame MakeFrame(Random& random, AlignmentContext& context, Kind kind) {
  itof::AlignmentParams& params = context.params;
  if (kind == Kind::kDistant) std::ranges::fill(context.auxRatioIntrinsics, random.Between(-40.0, 40.0));
  if (kind != Kind::kExtreme && random.OneIn(2)) {
    // A parallax of up to the grid's width at codes up to some thousands.
    for (double& t : params.translation) t *= random.Between(0.0, 4000.0);
  }
  const double parallax[2] = {context.auxRatioIntrinsics[0] * params.translation[0],
                              context.auxRatioIntrinsics[4] * params.translation[1]};
  const auto position = [&](int32_t side) {
    if (kind == Kind::kExtreme && random.OneIn(8)) return static_cast<float>(random.Extreme());
    const double any = random.Between(-2.0, 1.2 * side + 2.0);
    return static_cast<float>(random.OneIn(4) ? std::floor(2.0 * any) / 2.0 : any);
  };
  const auto farPlane = [&](int32_t side, double p, int32_t code) {
    if (code == 0 || random.OneIn(2)) return position(side);
    return FloatsBeside(random.Integer(-1, side + 1) - 0.5 - p / (code / 10.0), random.Integer(-6, 6));
  };
  StepFrame frame;
  for (size_t i = 0; i < itof::PixelCount(params.tofWidth, params.tofHeight); ++i) {
    const int32_t code = random.OneIn(4) ? 0 : random.Integer(1, random.OneIn(4) ? 20 : 8191);
    frame.words.push_back(static_cast<uint16_t>(code | random.Integer(0, 7) << 13));
    frame.farX.push_back(farPlane(params.tofWidth, parallax[0], code));
    frame.farY.push_back(farPlane(params.tofHeight, parallax[1], code));
    frame.lensX.push_back(position(params.tofWidth));
    frame.lensY.push_back(position(params.tofHeight));
  }
  return frame;
}

// Returns the first difference between the steps and their plain forms in one random context.
std::string CompareSteps(Random& random, Kind kind, int32_t width, int32_t height, size_t& written) {
  constexpr size_t kGuard = 17;  // odd, so that the outputs are not aligned as vectors are
  Rig rig = MakeRig(random, kind, width, height);
  if (kind == Kind::kExtreme) MakeExtreme(random, rig);
  std::string difference = CompareFarPlane(rig.context, rig.scaleX, rig.scaleY, kGuard);
  if (kind == Kind::kExtreme && random.OneIn(4)) Spoil(random, rig.context.auxRatioIntrinsics);
  if (difference.empty()) difference = CompareDistortLUT(rig.context, kGuard, &written);
  if (!difference.empty()) return difference;
  const StepFrame frame = MakeFrame(random, rig.context, kind);
  return CompareAlignment(rig.context, frame, random.OneIn(2), kGuard);
}

TEST(Sweep, StepsEqualTheirPlainForms) {
  std::vector<std::array<int32_t, 2>> sizes{{-1, 2}, {3, -1}, {67, 41}, {131, 7}, {257, 3}};
  for (int32_t width = 0; width <= 2 * 16 + 1; ++width) {
    for (int32_t height : {0, 1, 2, 5}) sizes.push_back({width, height});
  }
  for (const itof::KernelBuild build : KernelBuilds()) {
    g_kernelBuild = build;
    Random random;
    size_t written = 0;
    for (const auto& [width, height] : sizes) {
      for (const Kind kind : {Kind::kGentle, Kind::kDistant, Kind::kExtreme}) {
        for (int round = 0; round < 8; ++round) {
          testing::internal::CaptureStdout();
          const std::string difference = CompareSteps(random, kind, width, height, written);
          (void)testing::internal::GetCapturedStdout();
          ASSERT_EQ(difference, "") << width << " x " << height << ", kind " << static_cast<int>(kind)
                                    << ", kernel build " << static_cast<int>(build);
        }
      }
    }
    EXPECT_GT(written, 10000U);
  }
}

// Positions at the edges of cells, mostly with a parallax about as large as the grid.
TEST(Sweep, EstimatedIdealCellsEqualTheExactOnes) {
  Random random;
  const itof::Grid grid{640, 360};
  for (int block = 0; block < 10000; ++block) {
    const itof::Parallax parallax = itof::MakeParallax(random.Between(-4e5, 4e5), random.Between(-4e3, 4e3), grid);
    const auto largest = static_cast<int32_t>(std::fabs(parallax.x) / 64);  // code whose parallax is the grid's width
    uint16_t words[itof::kCellBlock];
    float farX[itof::kCellBlock], farY[itof::kCellBlock];
    for (int i = 0; i < itof::kCellBlock; ++i) {
      const int32_t code = random.Integer(largest / 4, std::min(2 * largest, 8190)) + 1;
      words[i] = static_cast<uint16_t>(code);
      farX[i] = FloatsBeside(random.Integer(1, 639) - 0.5 - parallax.x / (code / 10.0), random.Integer(-8, 8));
      farY[i] = FloatsBeside(random.Integer(1, 359) - 0.5 - parallax.y / (code / 10.0), random.Integer(-8, 8));
    }
    int32_t cells[itof::kCellBlock];
    FindIdealCells(parallax, grid, words, farX, farY, itof::kCellBlock, cells);
    for (int i = 0; i < itof::kCellBlock; ++i) {
      ASSERT_EQ(cells[i], IdealCell(parallax, grid, words[i], farX[i], farY[i])) << "code " << words[i];
    }
  }
}

}  // namespace
