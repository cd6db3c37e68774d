// Writes entries of a calibration record, pixels and matrices as text.
#include "inspection/valuetext.h"

#include "calibration/calibrationfields.h"
#include "calibration/calibrationrecord.h"
#include "support/text.h"

namespace itoftool {

std::string EntryUnit(const itof::CalibrationField& field, size_t index) {
  constexpr const char* kCoefficients[] = {"k1", "k2", "p1", "p2", "k3", "k4", "k5", "k6"};
  switch (field.kind) {
    case itof::FieldKind::kTofImageWidth:
    case itof::FieldKind::kImageSize:
      return "pixels";
    case itof::FieldKind::kCameraMatrix:
      return index < 6 ? "pixels" : "";
    case itof::FieldKind::kTranslation:
      return "depth codes (mm)";
    case itof::FieldKind::kDistortion:
      return kCoefficients[index];
    case itof::FieldKind::kUnused:
      return "not used";
    case itof::FieldKind::kLogged:
      return "logged only";
    case itof::FieldKind::kRotation:
      break;
  }
  return "";
}

std::string EntryText(const itof::CalibrationRecord& record, const itof::CalibrationField& field, size_t index) {
  if (field.kind == itof::FieldKind::kUnused) return Format("%08x", EntryBits(record, field, index));
  return Format("%.9g", static_cast<double>(EntryValue(record, field, index)));
}

std::string PixelText(cv::Point pixel) { return Format("(%d, %d)", pixel.x, pixel.y); }

std::string MatrixText(const cv::Matx33d& m) {
  return Format("[%.6g, %.6g, %.6g; %.6g, %.6g, %.6g; %.6g, %.6g, %.6g]", m(0, 0), m(0, 1), m(0, 2), m(1, 0), m(1, 1),
                m(1, 2), m(2, 0), m(2, 1), m(2, 2));
}

}  // namespace itoftool
