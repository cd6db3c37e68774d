// Makes each mistake as people make it: by a wrong convention, not by a wrong number.
#include "support/mistakes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {
using itof::CalibrationRecord;

void Transpose(CalibrationRecord& r) {
  for (const auto& [a, b] : {std::pair(1, 3), {2, 6}, {5, 7}}) std::swap(r.rotation[a], r.rotation[b]);
}

void Invert(CalibrationRecord& r) {
  Transpose(r);
  float t[3];
  for (int i = 0; i < 3; ++i) {
    const float* row = r.rotation + 3 * i;
    t[i] = -(row[0] * r.translation[0] + row[1] * r.translation[1] + row[2] * r.translation[2]);
  }
  std::ranges::copy(t, r.translation);
}

void ScaleTranslation(CalibrationRecord& r, float factor) {
  for (float& t : r.translation) t *= factor;
}

/// From k1 k2 p1 p2 k3 to k1 k2 k3 p1 p2.
void Reorder(float (&lens)[8]) { std::rotate(lens + 2, lens + 4, lens + 5); }

void ScaleRow(float* row, float factor) {
  for (int i = 0; i < 3; ++i) row[i] *= factor;
}

void Normalise(float (&matrix)[9], float width, float height) {
  ScaleRow(matrix, 1 / width);
  ScaleRow(matrix + 3, 1 / height);
}

void SetLens(float (&lens)[8], float k1, float k2, float k3) {
  std::ranges::fill(lens, 0.0F);
  lens[0] = k1;
  lens[1] = k2;
  lens[4] = k3;
}

constexpr Mistake kMistakes[] = {
    {"rotation transposed", Transpose, "nearly the same shift everywhere, near and far"},
    {"aux matrix of the image before 60 of 480 rows were cut at either edge",
     [](CalibrationRecord& r) { r.auxIntrinsics[5] += r.auxCalibHeight / 6; },
     "nearly the same shift everywhere, near and far"},
    {"extrinsics inverted", Invert, "a shift that stays, and one that falls with distance"},
    {"translation in metres", [](CalibrationRecord& r) { ScaleTranslation(r, 0.001F); },
     "a shift that falls with distance"},
    {"translation sign flipped", [](CalibrationRecord& r) { ScaleTranslation(r, -1); },
     "a shift that falls with distance"},
    {"coefficients in the order k1 k2 k3 p1 p2",
     [](CalibrationRecord& r) {
       Reorder(r.tofDistortion);
       Reorder(r.auxDistortion);
     },
     "one side, or one corner, is off"},
    {"aux focal lengths 1 % too large",
     [](CalibrationRecord& r) {
       r.auxIntrinsics[0] *= 1.01F;
       r.auxIntrinsics[4] *= 1.01F;
     },
     "right in the middle, off toward the edges"},
    {"ToF lens left out", [](CalibrationRecord& r) { SetLens(r.tofDistortion, 0, 0, 0); },
     "right in the middle, off toward the edges"},
    {"aux lens left out", [](CalibrationRecord& r) { SetLens(r.auxDistortion, 0, 0, 0); },
     "right in the middle, off toward the edges"},
    {"lenses exchanged", [](CalibrationRecord& r) { std::ranges::swap(r.tofDistortion, r.auxDistortion); },
     "right in the middle, off toward the edges"},
    {"aux matrix of a 480-line image",
     [](CalibrationRecord& r) {
       const float scale = 480 / r.auxCalibHeight;
       ScaleRow(r.auxIntrinsics, scale);
       ScaleRow(r.auxIntrinsics + 3, scale);
     },
     "a large shift, and another scale"},
    {"normalised matrices",
     [](CalibrationRecord& r) {
       Normalise(r.tofIntrinsics, r.tofCalibWidth, r.tofCalibHeight);
       Normalise(r.auxIntrinsics, r.auxCalibWidth, r.auxCalibHeight);
     },
     "a small picture in the wrong place"},
    {"k set (-.35, .10, -.012) on a ToF lens used to 65 degrees",
     [](CalibrationRecord& r) {
       const float focalLength = std::hypot(320.0F, 180.0F) / std::tan(65 * 3.14159265F / 180);
       const float scale = focalLength / r.tofIntrinsics[0];
       r.tofIntrinsics[0] *= scale;
       r.tofIntrinsics[4] *= scale;
       SetLens(r.tofDistortion, -0.35F, 0.10F, -0.012F);
     },
     "edges fold back into the picture"},
};

}  // namespace

std::span<const Mistake> Mistakes() { return kMistakes; }
