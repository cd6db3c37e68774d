// Makes the inputs, runs the cases and computes the digests. The inputs are made from integers with single divisions,
// so every compiler gives the same bits.
#include "selftest/selftest.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "alignment/approximatealignment.h"
#include "alignment/distortlut.h"
#include "alignment/farplane.h"
#include "calibration/alignmentparams.h"
#include "framesize.h"
#include "pixelwords.h"
#include "selftest/digest.h"

namespace itoftool::selftest {
namespace {

/// A camera pair in integers.
struct Pair {
  const char* name;
  int32_t tofSize[2], auxSize[2];  // calibration sizes, pixels
  int64_t tofPinhole[4];           // fx, cx, fy, cy in 1/16 pixels
  int64_t auxPinhole[4];
  int32_t turn[4];                 // quaternion, of any length, of the rotation from the ToF to the aux camera
  int32_t shift[3];                // translation in 1/64 millimetres
  int32_t tofLens[8], auxLens[8];  // k1, k2, p1, p2, k3, k4, k5, k6 in 2^-20
};

// clang-format off
constexpr Pair kPairs[] = {
    {"gentle", {640, 360}, {640, 360},
     {7685, 5111, 7679, 2889}, {8453, 5139, 8447, 2855}, {1000, 3, -5, 2}, {1613, -37, 45},
     {-83886, 31457, 419, -629, -5243, 20971, -10486, 2097}, {104857, -73400, -838, 524, 12582, 8389, -4194, 1049}},
    // Large coefficients that nearly cancel, as in factory calibrations. Both cameras have to be scaled.
    {"factory", {640, 480}, {1920, 1080},
     {7809, 5107, 10401, 3871}, {23041, 15485, 23011, 8527}, {200, 7, 9, -4}, {-3841, 705, 321},
     {5557453, -3250585, 1153, -839, 943718, 5767168, -2306867, 419430},
     {-2411725, 1677722, -1573, 2097, -314573, -2202010, 1310720, 104858}},
    // Positions are differences of numbers a million times as large, so the last bits of double precision reach the
    // single-precision maps. The lenses keep the view in the frame.
    {"distant", {640, 360}, {640, 360},
     {8640499712, -4626280960, 8367435776, -4371721728}, {8639868928, -4319936512, 8367706112, -4183855104},
     {1000, 7, -9, 4}, {0, 0, 3},
     {283886, -231457, -419, 629, 415729, 241943, -180972, 402430},
     {-394372, 252429, 524, 524, 487516, -431457, 220972, 710486}},
    // Half of the view is behind the aux camera, both lenses have poles, and near points move by many frame widths.
    {"extreme", {640, 180}, {100, 3000},
     {2251, 5003, 1201, 1445}, {1177, 827, 32501, 24001}, {3, 1, -2, 1}, {87361, -43003, 99999},
     {-3145728, 2097152, 104857, -52429, -1048576, -2097152, 943718, -524288},
     {1048576, -5242880, -52429, 104857, 3145728, -3145728, 524288, 1048576}},
};
// clang-format on

float Quotient(int64_t numerator, int32_t denominator) {
  return static_cast<float>(numerator) / static_cast<float>(denominator);
}

itof::CalibrationRecord MakeRecord(const Pair& pair) {
  itof::CalibrationRecord record{};
  const auto fillMatrix = [](float(&matrix)[9], const int64_t(&pinhole)[4]) {
    constexpr size_t kPlaces[] = {0, 2, 4, 5};
    for (size_t i = 0; i < 4; ++i) matrix[kPlaces[i]] = Quotient(pinhole[i], 16);
    matrix[8] = 1;
  };
  record.tofCalibWidth = static_cast<float>(pair.tofSize[0]);
  record.tofCalibHeight = static_cast<float>(pair.tofSize[1]);
  record.auxCalibWidth = static_cast<float>(pair.auxSize[0]);
  record.auxCalibHeight = static_cast<float>(pair.auxSize[1]);
  fillMatrix(record.tofIntrinsics, pair.tofPinhole);
  fillMatrix(record.auxIntrinsics, pair.auxPinhole);
  const auto [a, b, c, d] = pair.turn;
  const int32_t square = a * a + b * b + c * c + d * d;
  const int32_t rotation[9] = {
      a * a + b * b - c * c - d * d, 2 * (b * c - a * d),           2 * (b * d + a * c),
      2 * (b * c + a * d),           a * a - b * b + c * c - d * d, 2 * (c * d - a * b),
      2 * (b * d - a * c),           2 * (c * d + a * b),           a * a - b * b - c * c + d * d};
  for (size_t i = 0; i < 9; ++i) record.rotation[i] = Quotient(rotation[i], square);
  for (size_t i = 0; i < 3; ++i) record.translation[i] = Quotient(pair.shift[i], 64);
  for (size_t i = 0; i < 8; ++i) {
    record.tofDistortion[i] = Quotient(pair.tofLens[i], 1 << 20);
    record.auxDistortion[i] = Quotient(pair.auxLens[i], 1 << 20);
  }
  return record;
}

/// Makes the depth words of a slanted wall with boxes in front of it. Some pixels have no depth, some a random depth,
/// and some a code so small that the parallax is many frame widths.
std::vector<uint16_t> MakeFrame() {
  std::vector<uint16_t> frame;
  uint32_t random = 20240229;
  for (uint32_t y = 0; y < itof::kFrameHeight; ++y) {
    for (uint32_t x = 0; x < itof::kFrameWidth; ++x) {
      random = random * 1664525 + 1013904223;
      const bool box = (x / 80 + y / 60) % 3 == 0;
      uint32_t code = (box ? 900 : 1900) + 3 * x - 2 * y + (random >> 16) % 8;
      const uint32_t choice = (random >> 19) % 16;
      if (choice == 0) code = 0;
      if (choice == 1) code = (random >> 8) % 8192;
      if (choice == 2) code = (random >> 8) % 16;
      frame.push_back(static_cast<uint16_t>(code | random >> 29 << 13));
    }
  }
  return frame;
}

template <typename T>
uint32_t DigestOf(const T* values, size_t count) {
  Digest digest;
  std::for_each_n(values, count, [&](T value) { digest.Add(value); });
  return digest.Folded();
}

CaseDigests RunCase(const Steps& steps, const CaseName& name, const std::vector<uint16_t>& frame) {
  const itof::AlignmentParams params =
      itof::WorkingParams(MakeRecord(*std::ranges::find(kPairs, name.pair, &Pair::name)));
  itof::AlignmentContext context{};
  steps.initContext(context, params, name.distortion);

  float* const farX = context.farPlaneMapX.get();
  float* const farY = context.farPlaneMapY.get();
  float* const lensX = context.distortMapX.get();
  float* const lensY = context.distortMapY.get();
  const auto ratio = static_cast<double>(name.ratio);
  std::vector<uint16_t> words(frame.size());
  steps.farPlane(context, farX, farY, ratio, ratio);
  steps.distortLut(context, lensX, lensY);
  steps.align(context, frame.data(), words.data(), farX, farY, lensX, lensY);

  CaseDigests digests;
  std::ranges::transform(std::array{farX, farY, lensX, lensY}, digests.begin(),
                         [&](const float* map) { return DigestOf(map, frame.size()); });
  digests[4] = DigestOf(words.data(), words.size());
  std::ranges::transform(words, words.begin(), steps.alignedWord);
  digests[5] = DigestOf(words.data(), words.size());
  return digests;
}

}  // namespace

const Steps kLibrary = {itof::InitAlignmentContext, itof::AlignmentFarPlane, itof::DistortLUT,
                        itof::RunApproximateAlignment, itof::AlignedWord};

// With an infinite ratio every entry of the far-plane maps is not a number. With 1e30 positions are far outside the
// range of integers, where processors convert differently.
const std::array<CaseName, kCases> kCaseNames = {{
    {"gentle", 1, true},
    {"gentle", 1, false},
    {"gentle", 2, true},
    {"gentle", 0.75, true},
    {"factory", 1, true},
    {"factory", 1.5, true},
    {"factory", 0.8125, false},
    {"distant", 1, true},
    {"distant", 1.75, true},
    {"extreme", 1, true},
    {"extreme", 1e30F, false},
    {"extreme", std::numeric_limits<float>::infinity(), true},
}};

Digests RunCases(const Steps& steps) {
  const std::vector<uint16_t> frame = MakeFrame();
  Digests digests;
  std::ranges::transform(kCaseNames, digests.begin(),
                         [&](const CaseName& name) { return RunCase(steps, name, frame); });
  return digests;
}

uint64_t Overall(const Digests& digests) {
  Digest all;
  for (const CaseDigests& stages : digests) std::ranges::for_each(stages, [&](uint32_t digest) { all.Add(digest); });
  return all.Value();
}

}  // namespace itoftool::selftest
