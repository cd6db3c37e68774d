// Defines the readings of matrices and lenses.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

#include "camera/imagepart.h"
#include "check/camerafields.h"
#include "check/readings.h"

namespace itoftool {
namespace {

using itof::CalibrationRecord;
using WhichCamera::kAux, WhichCamera::kTof;

std::string CameraName(WhichCamera which) { return which == kTof ? "ToF" : "aux"; }
ReadingPart PartOf(WhichCamera which) { return which == kTof ? ReadingPart::kTof : ReadingPart::kAux; }

void TakeImagePart(CalibrationRecord& record, WhichCamera which, const ImagePart& part) {
  CameraFields camera = ReadCamera(record, which);
  TakePart(camera.matrix, part, camera.width, camera.height);
  record = WithCamera(record, camera);
}

/// The common image height next to `height`, or `height` if none is near.
double CommonHeight(double height) {
  constexpr double kNear = 0.03;
  constexpr double kCommon[] = {240, 288, 360, 400, 424, 480,  512,  540,  576, 600,
                                640, 720, 768, 800, 960, 1080, 1200, 1440, 2160};
  const auto distance = [&](double each) { return std::abs(each / height - 1); };
  const double common = *std::ranges::min_element(kCommon, {}, distance);
  return distance(common) < kNear ? common : height;
}

/// Reads the matrix as that of an image of another size and the same shape. Takes the width from cx, as if the principal
/// point were in the middle column; rows may be cropped.
bool ResizeMatrix(CalibrationRecord& record, WhichCamera which) {
  constexpr double kSameSize = 0.1;
  const CameraFields camera = ReadCamera(record, which);
  const double size = (2 * camera.Cx() + 1) / camera.width;
  if (!(size > 0) || std::abs(size - 1) < kSameSize) return false;
  const double factor = CommonHeight(size * camera.height) / camera.height;
  TakeImagePart(record, which, {0, 0, camera.width * factor, camera.height * factor});
  return true;
}

/// Reads the matrix as that of the 4:3 image whose middle rows are the calibration image.
bool CutRows(CalibrationRecord& record, WhichCamera which) {
  const CameraFields camera = ReadCamera(record, which);
  const double rows = camera.width * 3 / 4;
  if (rows <= camera.height) return false;
  TakeImagePart(record, which, {0, (rows - camera.height) / 2, camera.width, camera.height});
  return true;
}

/// Changes one camera's matrix or lens.
template <typename Change>
auto OfCamera(WhichCamera which, const Change& change) {
  return [which, change](CalibrationRecord& record) {
    CameraFields camera = ReadCamera(record, which);
    change(camera);
    record = WithCamera(record, camera);
    return true;
  };
}

/// Moves p1 and p2 from after the first `radial` coefficients to their place in the file.
template <size_t radial>
void ReorderLens(CameraFields& camera) {
  std::rotate(camera.lens + 2, camera.lens + radial, camera.lens + radial + 2);
}

bool ExchangeMatrices(CalibrationRecord& record) {
  std::ranges::swap(record.tofIntrinsics, record.auxIntrinsics);
  return true;
}

bool ExchangeLenses(CalibrationRecord& record) {
  std::ranges::swap(record.tofDistortion, record.auxDistortion);
  return true;
}

/// Fails unless both images have the width that the library requires of the ToF image.
bool ExchangeCameras(CalibrationRecord& record) {
  if (std::trunc(record.tofCalibWidth) != std::trunc(record.auxCalibWidth)) return false;
  std::swap(record.tofCalibHeight, record.auxCalibHeight);
  return ExchangeMatrices(record) && ExchangeLenses(record);
}

}  // namespace

void AddCameraReadings(std::vector<Reading>& readings) {
  const auto add = [&](std::string name, const char* group, ReadingPart part, auto apply, bool isWeak = false) {
    readings.push_back({std::move(name), group, part, isWeak, false, std::move(apply)});
  };
  add("the camera matrices exchanged", "matrices exchanged", ReadingPart::kBothCameras, ExchangeMatrices);
  for (const WhichCamera which : {kTof, kAux}) {
    const std::string matrix = "the " + CameraName(which) + " matrix ",
                      focal = "the " + CameraName(which) + " fx and fy ";
    const ReadingPart part = PartOf(which);
    add(matrix + "for an image of another size", "matrices for another image size", part,
        [which](CalibrationRecord& record) { return ResizeMatrix(record, which); });
    for (const auto& [factor, size] : {std::pair(0.5, "half the size"), std::pair(2.0, "twice the size")}) {
      // Fields of view that differ are common among sound pairs, too.
      add(focal + "for an image of " + size, "focal lengths for another image size", part,
          OfCamera(which,
                   [factor = factor](CameraFields& camera) {
                     for (const int i : {0, 4}) camera.matrix[i] /= factor;
                   }),
          true);
    }
    add(
        matrix + "for the 4:3 image of which the frame is the middle", "matrices for a 4:3 image", part,
        [which](CalibrationRecord& record) { return CutRows(record, which); }, true);
    add("cx and cy of the " + CameraName(which) + " matrix exchanged", "cx and cy exchanged", part,
        OfCamera(which, [](CameraFields& camera) { std::swap(camera.matrix[2], camera.matrix[5]); }));
    add("fx and fy of the " + CameraName(which) + " matrix exchanged", "fx and fy exchanged", part,
        OfCamera(which, [](CameraFields& camera) { std::swap(camera.matrix[0], camera.matrix[4]); }));
  }
  struct Order {
    const char* name;
    void (*reorder)(CameraFields& camera);
  };
  for (const auto& [order, reorder] :
       {Order{"k1 k2 k3 p1 p2", ReorderLens<3>}, Order{"k1 k2 k3 k4 k5 k6 p1 p2", ReorderLens<6>}}) {
    const char* group = "coefficients in another order";
    add(std::string("both lenses in the order ") + order, group, ReadingPart::kBothCameras,
        [reorder = reorder](CalibrationRecord& record) {
          return OfCamera(kTof, reorder)(record) && OfCamera(kAux, reorder)(record);
        });
    for (const WhichCamera which : {kTof, kAux}) {
      add("the " + CameraName(which) + " lens in the order " + order, group, PartOf(which), OfCamera(which, reorder));
    }
  }
  for (const WhichCamera which : {kTof, kAux}) {
    add("p1 and p2 of the " + CameraName(which) + " lens exchanged", "p1 and p2 exchanged", PartOf(which),
        OfCamera(which, [](CameraFields& camera) { std::swap(camera.lens[2], camera.lens[3]); }));
  }
  add("the lenses exchanged", "lenses exchanged", ReadingPart::kBothCameras, ExchangeLenses);
  add("the cameras exchanged", "cameras exchanged", ReadingPart::kBothCameras, ExchangeCameras);
}

}  // namespace itoftool
