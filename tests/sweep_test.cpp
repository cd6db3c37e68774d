// Every step against its plain form, bit for bit, over sizes around the widths of vectors and over contexts that no
// calibration would give: the library's steps may be written in any way that changes no bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "alignment/approximatealignment.h"
#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "alignment/grid.h"
#include "alignment/idealcells.h"
#include "alignment/matrixmultiply.h"
#include "camera/lens.h"
#include "plain/plainsteps.h"
#include "support/floats.h"
#include "support/kernelbuildchoice.h"

namespace {

using itof::AlignmentContext;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kExtremes[] = {0.0,      -0.0,      -1.0,         0.5,     kNan,    kInfinity, -kInfinity,
                                0x1p31,   -0x1p31,   0x1p32,       -0x1p32, 1e-40,   5e-324,    3e38,
                                -1.5e308, 1.79e-308, 2147483647.0, -1e-9,   1.0e150, 16777217.0};

enum class Kind { kGentle, kDistant, kExtreme };
// kDistant: principal points some 2^35 pixels away, so that positions are small differences of large numbers, in which a
// last bit that was lost on the way shows; a float map would hide it otherwise.

struct Random {
  double Between(double low, double high) { return std::uniform_real_distribution(low, high)(engine); }
  int32_t Integer(int32_t low, int32_t high) { return std::uniform_int_distribution(low, high)(engine); }
  bool OneIn(int32_t n) { return Integer(1, n) == 1; }
  double Extreme() { return kExtremes[Integer(0, std::size(kExtremes) - 1)]; }
  std::mt19937_64 engine{20240229};
};

// One output of a step twice, written by the library and by the plain form, each between sentinels of its own, whose
// odd number leaves it off the alignment of vectors.
template <typename T>
class Output {
 public:
  Output(int32_t width, int32_t height, T content) : size_(itof::PixelCount(width, height)) {
    for (auto* all : {&library_, &plain_}) {
      all->assign(size_ + 2 * kGuard, all == &library_ ? T{101} : T{55});
      std::fill_n(all->data() + kGuard, size_, content);
    }
  }
  T* Library() { return library_.data() + kGuard; }
  T* Plain() { return plain_.data() + kGuard; }

  void ExpectSame(const char* what) const {
    for (size_t i = 0; i < library_.size(); ++i) {
      const bool inside = i >= kGuard && i < kGuard + size_;
      const T got = library_[i];
      const T expected = inside ? plain_[i] : T{101};
      ASSERT_TRUE(SameBits(got, expected) && (inside || plain_[i] == T{55}))
          << what << ", entry " << static_cast<ptrdiff_t>(i - kGuard) << ": " << +got << " instead of " << +expected;
    }
  }

 private:
  static constexpr size_t kGuard = 17;
  size_t size_;
  std::vector<T> library_, plain_;
};

// A context without buffers, and the ratios. Each camera model is near its camera matrix but not equal to it, so that a
// step shows which of the two it reads.
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

  // Moves the aux camera's centre until the far plane's first pixel is at 0: the first round leaves the error of a
  // large float, the next ones none.
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

  // The same for the distorted image, whose centre is to be where the grid's centre goes.
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

// A few numbers become extreme ones; or every pixel has one position midway between two floats, where the last bit of the
// far plane's division shows; or every point lies in the plane of the aux camera, neither before nor behind it.
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

void CompareFarPlane(Rig& rig) {
  AlignmentContext& context = rig.context;
  Output<float> x(context.params.tofWidth, context.params.tofHeight, -7.5F);
  Output<float> y(context.params.tofWidth, context.params.tofHeight, 8.25F);
  Output<double> matrix(3, 3, 0.0);
  itof::AlignmentFarPlane(context, x.Library(), y.Library(), rig.scaleX, rig.scaleY);
  std::copy_n(context.auxRatioIntrinsics, 9, matrix.Library());
  plain::AlignmentFarPlane(context, x.Plain(), y.Plain(), rig.scaleX, rig.scaleY);
  std::copy_n(context.auxRatioIntrinsics, 9, matrix.Plain());
  matrix.ExpectSame("aux matrix at the ratio");
  x.ExpectSame("far-plane map x");
  y.ExpectSame("far-plane map y");
}

// The number of entries stored, so that the caller can tell that the sweep is not empty.
ptrdiff_t CompareDistortLUT(const Rig& rig) {
  const itof::AlignmentParams& params = rig.context.params;
  Output<float> x(params.tofWidth, params.tofHeight, -7.5F);
  Output<float> y(params.tofWidth, params.tofHeight, 8.25F);
  itof::DistortLUT(rig.context, x.Library(), y.Library());
  plain::DistortLUT(rig.context, x.Plain(), y.Plain());
  x.ExpectSame("distortion map x");
  y.ExpectSame("distortion map y");
  return std::count_if(x.Plain(), x.Plain() + itof::PixelCount(params.tofWidth, params.tofHeight),
                       [](float entry) { return entry >= 0.0F; });
}

// Its maps are random ones: positions around the frames, on halves and integers too, some of them extreme, and many far
// planes such that the ideal position is at the edge of a cell, or a few floats beside it.
void CompareApproximateAlignment(Random& random, Rig& rig, Kind kind) {
  AlignmentContext& context = rig.context;
  itof::AlignmentParams& params = context.params;
  if (kind == Kind::kDistant) std::ranges::fill(context.auxRatioIntrinsics, random.Between(-40.0, 40.0));
  if (kind != Kind::kExtreme && random.OneIn(2)) {
    // A parallax of up to the grid's width at codes of up to some thousands.
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
  std::array<std::vector<float>, 4> maps;
  std::vector<uint16_t> frame;
  for (size_t i = 0; i < itof::PixelCount(params.tofWidth, params.tofHeight); ++i) {
    const int32_t code = random.OneIn(4) ? 0 : random.Integer(1, random.OneIn(4) ? 20 : 8191);
    frame.push_back(static_cast<uint16_t>(code | random.Integer(0, 7) << 13));
    maps[0].push_back(farPlane(params.tofWidth, parallax[0], code));
    maps[1].push_back(farPlane(params.tofHeight, parallax[1], code));
    maps[2].push_back(position(params.tofWidth));
    maps[3].push_back(position(params.tofHeight));
  }

  Output<uint16_t> working(params.auxWidth, params.auxHeight, 0xABCD);
  Output<uint8_t> confidence(params.tofWidth, params.tofHeight, 0xEE);
  const auto run = [&](auto step, uint16_t* workingBuffer, uint8_t* confidences) {
    context.confidence.reset(confidences);
    step(context, frame.data(), workingBuffer, maps[0].data(), maps[1].data(), maps[2].data(), maps[3].data());
    (void)context.confidence.release();
  };
  testing::internal::CaptureStdout();
  run(itof::RunApproximateAlignment, working.Library(), confidence.Library());
  (void)testing::internal::GetCapturedStdout();
  run(plain::RunApproximateAlignment, working.Plain(), confidence.Plain());
  working.ExpectSame("working buffer");
  confidence.ExpectSame("confidence");
}

TEST(Sweep, StepsEqualTheirPlainForms) {
  std::vector<std::array<int32_t, 2>> sizes{{-1, 2}, {3, -1}, {67, 41}, {131, 7}, {257, 3}};
  for (int32_t width = 0; width <= 2 * 16 + 1; ++width) {
    for (int32_t height : {0, 1, 2, 5}) sizes.push_back({width, height});
  }
  for (const itof::KernelBuild build : KernelBuilds()) {
    g_kernelBuild = build;
    Random random;
    ptrdiff_t stored = 0;
    for (const auto& [width, height] : sizes) {
      for (Kind kind : {Kind::kGentle, Kind::kDistant, Kind::kExtreme}) {
        for (int round = 0; round < 8; ++round) {
          SCOPED_TRACE(testing::Message() << width << " x " << height << ", kind " << static_cast<int>(kind)
                                          << ", kernel build " << static_cast<int>(build));
          Rig rig = MakeRig(random, kind, width, height);
          if (kind == Kind::kExtreme) MakeExtreme(random, rig);
          CompareFarPlane(rig);
          if (kind == Kind::kExtreme && random.OneIn(4)) Spoil(random, rig.context.auxRatioIntrinsics);
          stored += CompareDistortLUT(rig);
          CompareApproximateAlignment(random, rig, kind);
          if (HasFailure()) return;
        }
      }
    }
    EXPECT_GT(stored, 10000);
  }
}

// Estimates of positions at edges, most of all of those whose parallax is about as large as the grid.
TEST(Sweep, IdealCellsAreThoseOfTheDefinition) {
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

TEST(Sweep, MatrixMultiplyEqualsItsPlainForm) {
  Random random;
  for (int i = 0; i < 4000; ++i) {
    const int32_t rows = random.Integer(-1, 4), inner = random.Integer(-1, 9), cols = random.Integer(-1, 9);
    const int32_t aRowLength = random.OneIn(2) ? inner : random.Integer(2, 12);
    std::vector<double> a(48), b(81);
    for (auto* matrix : {&a, &b}) {
      for (double& number : *matrix) number = random.OneIn(40) ? random.Extreme() : random.Between(-1e3, 1e3);
    }
    Output<double> out(cols, rows, -3.0);
    itof::MatrixMultiply(out.Library(), a.data(), b.data(), rows, aRowLength, inner, cols);
    plain::MatrixMultiply(out.Plain(), a.data(), b.data(), rows, aRowLength, inner, cols);
    out.ExpectSame("product");
  }
}

}  // namespace
