// Makes each mistake as people make it: by a wrong convention, not by a wrong number.
#include "support/mistakes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/calib3d.hpp>
#include <opencv2/core.hpp>
#include <utility>

namespace {
using itof::CalibrationRecord;

cv::Matx33f Rotation(const CalibrationRecord& r) { return cv::Matx33f(r.rotation); }
void SetRotation(CalibrationRecord& r, const cv::Matx33f& rotation) { std::ranges::copy(rotation.val, r.rotation); }

void SetTranslation(CalibrationRecord& r, const cv::Vec3f& t) { std::ranges::copy(t.val, r.translation); }
void ScaleTranslation(CalibrationRecord& r, float factor) { SetTranslation(r, factor * cv::Vec3f(r.translation)); }

void Transpose(CalibrationRecord& r) { SetRotation(r, Rotation(r).t()); }

void Invert(CalibrationRecord& r) {
  SetTranslation(r, -(Rotation(r).t() * cv::Vec3f(r.translation)));
  Transpose(r);
}

/// Expresses the pose in other axes of the aux camera, the ToF camera, or both.
void ChangeAxes(CalibrationRecord& r, const cv::Matx33f& axes, bool ofTof, bool ofAux) {
  if (ofAux) SetTranslation(r, axes * cv::Vec3f(r.translation));
  if (ofAux) SetRotation(r, axes * Rotation(r));
  if (ofTof) SetRotation(r, Rotation(r) * axes.t());
}

cv::Matx33f Axes(float x, float y, float z) { return {x, 0, 0, 0, y, 0, 0, 0, z}; }

/// Makes a rotation from a quaternion x, y, z, w whose numbers stand in the order given by `order`.
void ReorderQuaternion(CalibrationRecord& r, std::array<int, 4> order) {
  cv::Vec3f vector;
  cv::Rodrigues(Rotation(r), vector);
  const float half = static_cast<float>(cv::norm(vector)) / 2, sine = half > 0 ? std::sin(half) / (2 * half) : 0.5F;
  const float q[] = {vector[0] * sine, vector[1] * sine, vector[2] * sine, std::cos(half)};
  const auto [x, y, z, w] = std::array{q[order[0]], q[order[1]], q[order[2]], q[order[3]]};
  SetRotation(r, {1 - 2 * (y * y + z * z), 2 * (x * y - z * w), 2 * (x * z + y * w),  //
                  2 * (x * y + z * w), 1 - 2 * (x * x + z * z), 2 * (y * z - x * w),  //
                  2 * (x * z - y * w), 2 * (y * z + x * w), 1 - 2 * (x * x + y * y)});
}

void RotateByDegreesAsRadians(CalibrationRecord& r) {
  cv::Vec3f vector;
  cv::Rodrigues(Rotation(r), vector);
  cv::Matx33f rotation;
  cv::Rodrigues(vector * (180 / static_cast<float>(CV_PI)), rotation);
  SetRotation(r, rotation);
}

struct Camera {
  float width, height;
  float (&matrix)[9];
  float (&lens)[8];
};
Camera Tof(CalibrationRecord& r) { return {r.tofCalibWidth, r.tofCalibHeight, r.tofIntrinsics, r.tofDistortion}; }
Camera Aux(CalibrationRecord& r) { return {r.auxCalibWidth, r.auxCalibHeight, r.auxIntrinsics, r.auxDistortion}; }

/// From k1 k2 p1 p2 k3 to k1 k2 k3 p1 p2.
void Reorder(float (&lens)[8]) { std::rotate(lens + 2, lens + 4, lens + 5); }
/// From k1 k2 p1 p2 k3 k4 k5 k6 to k1 k2 k3 k4 k5 k6 p1 p2.
void ReorderAll(float (&lens)[8]) { std::rotate(lens + 2, lens + 4, lens + 8); }

void ScaleRow(float* row, float factor) {
  for (int i = 0; i < 3; ++i) row[i] *= factor;
}

void ScaleMatrix(Camera camera, float x, float y) {
  ScaleRow(camera.matrix, x);
  ScaleRow(camera.matrix + 3, y);
}

void ScaleFocalLengths(Camera camera, float factor) {
  for (const int i : {0, 4}) camera.matrix[i] *= factor;
}

void SetLens(float (&lens)[8], std::initializer_list<float> coefficients) {
  std::ranges::fill(lens, 0.0F);
  std::ranges::copy(coefficients, lens);
}

constexpr char kShift[] = "nearly the same shift everywhere, near and far";
constexpr char kMixedShift[] = "a shift that stays, and one that falls with distance";
constexpr char kParallax[] = "a shift that falls with distance";
constexpr char kEdges[] = "right in the middle, off toward the edges";
constexpr char kScale[] = "a large shift, and another scale";
constexpr char kTurned[] = "the picture is turned or mirrored, or nothing lands";

std::vector<Mistake> MakeMistakes() {
  using R = CalibrationRecord;
  std::vector<Mistake> all = {
      {"rotation transposed", kShift, Transpose, "the rotation transposed", {}},
      {"aux matrix of the image before 60 of 480 rows were cut at either edge",
       kShift,
       [](R& r) { r.auxIntrinsics[5] += r.auxCalibHeight / 6; },
       "the aux matrix for the 4:3 image of which the frame is the middle",
       {"principal-point"}},
      {"extrinsics inverted", kMixedShift, Invert, "the pair inverted", {}},
      {"rotation vector in degrees", kShift, RotateByDegreesAsRadians, "the rotation vector in degrees", {}},
      {"translation in metres",
       kParallax,
       [](R& r) { ScaleTranslation(r, 0.001F); },
       "the translation in metres",
       {"baseline"}},
      {"translation in centimetres",
       kParallax,
       [](R& r) { ScaleTranslation(r, 0.1F); },
       "the translation in centimetres",
       {"baseline"}},
      {"translation sign flipped",
       kParallax,
       [](R& r) { ScaleTranslation(r, -1); },
       "the translation with the opposite sign",
       {}},
      {"coefficients in the order k1 k2 k3 p1 p2",
       "one side, or one corner, is off",
       [](R& r) {
         Reorder(r.tofDistortion);
         Reorder(r.auxDistortion);
       },
       "both lenses in the order k1 k2 k3 p1 p2",
       {"tangential"}},
      {"aux focal lengths 1 % too large", kEdges, [](R& r) { ScaleFocalLengths(Aux(r), 1.01F); }, "", {}},
      {"ToF lens left out", kEdges, [](R& r) { SetLens(r.tofDistortion, {}); }, "", {}},
      {"aux lens left out", kEdges, [](R& r) { SetLens(r.auxDistortion, {}); }, "", {}},
      {"lenses exchanged",
       kEdges,
       [](R& r) { std::ranges::swap(r.tofDistortion, r.auxDistortion); },
       "the lenses exchanged",
       {"lens-range"}},
      {"ToF focal lengths of half the resolution",
       kScale,
       [](R& r) { ScaleFocalLengths(Tof(r), 0.5F); },
       "the ToF fx and fy for an image of half the size",
       {"field-of-view", "lens-range"}},
      {"aux focal lengths of half the resolution",
       kScale,
       [](R& r) { ScaleFocalLengths(Aux(r), 0.5F); },
       "the aux fx and fy for an image of half the size",
       {"field-of-view", "lens-range"}},
      {"aux matrix of a 480-line image",
       kScale,
       [](R& r) { ScaleMatrix(Aux(r), 480 / r.auxCalibHeight, 480 / r.auxCalibHeight); },
       "the aux matrix for an image of another size",
       {"principal-point"}},
      {"normalised matrices",
       "a small picture in the wrong place",
       [](R& r) {
         for (const Camera camera : {Tof(r), Aux(r)}) ScaleMatrix(camera, 1 / camera.width, 1 / camera.height);
       },
       "",
       {"normalised"}},
      {"k set (-.35, .10, -.012) on a ToF lens used to 65 degrees",
       "edges fold back into the picture",
       [](R& r) {
         const float focalLength = std::hypot(320.0F, 180.0F) / std::tan(65 * 3.14159265F / 180);
         ScaleFocalLengths(Tof(r), focalLength / r.tofIntrinsics[0]);
         SetLens(r.tofDistortion, {-0.35F, 0.10F, 0, 0, -0.012F});
       },
       "",
       {"lens-range"}},
      {"aux camera's y and z axes flipped (y up, z backward)",
       kTurned,
       [](R& r) { ChangeAxes(r, Axes(1, -1, -1), false, true); },
       "the aux camera's y and z axes flipped",
       {}},
      {"aux picture turned by 180 degrees",
       kTurned,
       [](R& r) { ChangeAxes(r, Axes(-1, -1, 1), false, true); },
       "the aux camera's picture turned by 180 degrees",
       {}},
      {"aux picture turned by 90 degrees",
       kTurned,
       [](R& r) {
         ChangeAxes(r, {0, -1, 0, 1, 0, 0, 0, 0, 1}, false, true);
       },
       "the aux camera's picture turned by -90 degrees",
       {}},
      {"aux camera's x axis mirrored",
       kTurned,
       [](R& r) { ChangeAxes(r, Axes(-1, 1, 1), false, true); },
       "the aux camera's x axis flipped",
       {"mirror"}},
      // Not among the documented symptoms.
      {"quaternion x y z w read as w x y z",
       nullptr,
       [](R& r) {
         ReorderQuaternion(r, {1, 2, 3, 0});
       },
       "the quaternion in the order x y z w",
       {}},
      {"quaternion w x y z read as x y z w",
       nullptr,
       [](R& r) {
         ReorderQuaternion(r, {3, 0, 1, 2});
       },
       "the quaternion in the order w x y z",
       {}},
      {"ToF camera's y and z axes flipped",
       nullptr,
       [](R& r) { ChangeAxes(r, Axes(1, -1, -1), true, false); },
       "the ToF camera's y and z axes flipped",
       {}},
      {"both cameras' y and z axes flipped",
       nullptr,
       [](R& r) { ChangeAxes(r, Axes(1, -1, -1), true, true); },
       "both cameras' y and z axes flipped",
       {}},
      {"aux picture turned by -90 degrees",
       nullptr,
       [](R& r) {
         ChangeAxes(r, {0, 1, 0, -1, 0, 0, 0, 0, 1}, false, true);
       },
       "the aux camera's picture turned by 90 degrees",
       {}},
      {"ToF picture turned by 90 degrees",
       nullptr,
       [](R& r) {
         ChangeAxes(r, {0, -1, 0, 1, 0, 0, 0, 0, 1}, true, false);
       },
       "the ToF camera's picture turned by -90 degrees",
       {}},
      {"ToF picture turned by 180 degrees",
       nullptr,
       [](R& r) { ChangeAxes(r, Axes(-1, -1, 1), true, false); },
       "the ToF camera's picture turned by 180 degrees",
       {}},
      {"aux camera's y axis mirrored",
       nullptr,
       [](R& r) { ChangeAxes(r, Axes(1, -1, 1), false, true); },
       "the aux camera's y axis flipped",
       {"mirror"}},
      {"ToF camera's x axis mirrored",
       nullptr,
       [](R& r) { ChangeAxes(r, Axes(-1, 1, 1), true, false); },
       "the ToF camera's x axis flipped",
       {"mirror"}},
      {"translation in inches",
       nullptr,
       [](R& r) { ScaleTranslation(r, 1 / 25.4F); },
       "the translation in inches",
       {"baseline"}},
      {"translation in micrometres",
       nullptr,
       [](R& r) { ScaleTranslation(r, 1000); },
       "the translation in micrometres",
       {"baseline"}},
      {"position of the aux camera as translation",
       nullptr,
       [](R& r) { SetTranslation(r, -(Rotation(r).t() * cv::Vec3f(r.translation))); },
       "the translation as the position of the aux camera",
       {}},
      {"translation in the order z y x",
       nullptr,
       [](R& r) { std::swap(r.translation[0], r.translation[2]); },
       "",
       {"axial-translation"}},
      {"no extrinsics",
       nullptr,
       [](R& r) {
         SetRotation(r, cv::Matx33f::eye());
         SetTranslation(r, {});
       },
       "",
       {"no-extrinsics"}},
      {"camera matrices exchanged",
       nullptr,
       [](R& r) { std::ranges::swap(r.tofIntrinsics, r.auxIntrinsics); },
       "the camera matrices exchanged",
       {}},
      {"cx and cy of the ToF matrix exchanged",
       nullptr,
       [](R& r) { std::swap(r.tofIntrinsics[2], r.tofIntrinsics[5]); },
       "cx and cy of the ToF matrix exchanged",
       {}},
      {"cx and cy of the aux matrix exchanged",
       nullptr,
       [](R& r) { std::swap(r.auxIntrinsics[2], r.auxIntrinsics[5]); },
       "cx and cy of the aux matrix exchanged",
       {}},
      {"ToF matrix of an image of half the size",
       nullptr,
       [](R& r) { ScaleMatrix(Tof(r), 0.5F, 0.5F); },
       "the ToF matrix for an image of another size",
       {"principal-point"}},
      {"aux matrix of an image of half the size",
       nullptr,
       [](R& r) { ScaleMatrix(Aux(r), 0.5F, 0.5F); },
       "the aux matrix for an image of another size",
       {"principal-point"}},
      {"aux matrix of an image of twice the size",
       nullptr,
       [](R& r) { ScaleMatrix(Aux(r), 2, 2); },
       "the aux matrix for an image of another size",
       {"principal-point"}},
      {"coefficients in the order k1 k2 k3 k4 k5 k6 p1 p2",
       nullptr,
       [](R& r) {
         ReorderAll(r.tofDistortion);
         ReorderAll(r.auxDistortion);
       },
       "both lenses in the order k1 k2 k3 k4 k5 k6 p1 p2",
       {}},
      {"p1 and p2 of the aux lens exchanged",
       nullptr,
       [](R& r) { std::swap(r.auxDistortion[2], r.auxDistortion[3]); },
       "p1 and p2 of the aux lens exchanged",
       {}},
      {"aux lens from a fisheye calibration",
       nullptr,
       [](R& r) {
         SetLens(r.auxDistortion, {-0.013F, 0.021F, -0.034F, 0.015F});
       },
       "",
       {"tangential"}},
  };
  return all;
}

}  // namespace

const std::vector<Mistake>& Mistakes() {
  static const std::vector<Mistake> mistakes = MakeMistakes();
  return mistakes;
}
