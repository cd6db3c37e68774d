// Writes the description of a calibration as text for a terminal.
#include <cmath>

#include "inspection/description.h"
#include "inspection/valuetext.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// A number with decimals, or "-" if it does not exist.
std::string NumberText(double number, int decimals) {
  return std::isfinite(number) ? Format("%.*f", decimals, number) : "-";
}

std::string PositionText(cv::Point2d position) {
  return IsNowhere(position) ? "not seen" : Format("(%.2f, %.2f)", position.x, position.y);
}

std::string VectorText(const cv::Vec3d& v, int decimals) {
  return Format("(%.*f, %.*f, %.*f)", decimals, v[0], decimals, v[1], decimals, v[2]);
}

std::string Row(const char* name, const std::string& value) { return Format("  %-26s", name) + value + "\n"; }

std::string EntriesText(const std::vector<EntryDescription>& entries) {
  std::string text = "byte  field               value             unit\n";
  for (const EntryDescription& entry : entries) {
    const bool isFinite = !entry.value || std::isfinite(*entry.value);
    text += Format("%4zu  %-18s  %-16s  %s\n", entry.byte, entry.name.c_str(),
                   isFinite ? entry.text.c_str() : "not finite", entry.unit.c_str());
  }
  return text;
}

std::string CameraText(const char* name, const CameraDescription& camera) {
  const cv::Size& image = camera.calibrationImage;
  const FieldOfView& view = camera.fieldOfView;
  return Format("%s camera, calibrated on an image of %d x %d pixels\n", name, image.width, image.height) +
         Row("matrix of that image", MatrixText(camera.matrix)) +
         Row("matrix at 640 x 360", MatrixText(camera.workingMatrix)) +
         Row("field of view, degrees", NumberText(view.horizontal, 1) + " horizontal, " + NumberText(view.vertical, 1) +
                                           " vertical, " + NumberText(view.diagonal, 1) + " diagonal") +
         Row("lens model is valid", camera.lensReachDegrees < 89
                                        ? Format("up to %.1f degrees off the axis", camera.lensReachDegrees)
                                        : "everywhere");
}

std::string ExtrinsicsText(const ExtrinsicsDescription& extrinsics) {
  return "Extrinsics\n" + Row("baseline", NumberText(extrinsics.baseline, 3) + " mm") +
         Row("aux camera is at", VectorText(extrinsics.auxInTofFrame, 3) + " mm in the ToF camera's coordinates") +
         Row("rotation",
             NumberText(extrinsics.rotationDegrees, 3) + " degrees about " + VectorText(extrinsics.rotationAxis, 4));
}

std::string PositionsText(const std::vector<ExactPositions>& exactPositions) {
  std::string text =
      "Where the aux camera sees ToF pixels, in a frame of 640 x 360 (integers are pixel centres)\n"
      "  ToF pixel     at 0.3 m            at 1 m              at 3 m\n";
  for (const ExactPositions& exact : exactPositions) {
    std::string line = Format("  %-12s", PixelText(exact.tofPixel).c_str());
    for (const cv::Point2d& position : exact.aux) line += Format("  %-18s", PositionText(position).c_str());
    text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

std::string ApproximationText(const PerDepth<Approximation>& approximation) {
  std::string text =
      "Error of the alignment, in pixels from the middle of the cell (truncation to cells alone gives a median of "
      "0.4)\n"
      "  depth    median   95 %   maximum, at ToF pixel         compared    lost\n";
  for (size_t i = 0; i < approximation.size(); ++i) {
    const auto& [error, lost, belonging] = approximation[i];
    const std::string figures =
        error.count == 0
            ? "   no pixel can be compared"
            : Format("%8.2f %6.2f %9.2f  ", error.median, error.percentile95, error.maximum) + PixelText(error.where);
    text += Format("  %.1f m  %-45s %10zu %7zu\n", kCompareDepths[i] / 1000.0, figures.c_str(), error.count, lost);
  }
  return text;
}

}  // namespace

std::string DescriptionText(const CalibrationDescription& description) {
  return EntriesText(description.entries) + "\n" + CameraText("ToF", description.tof) + "\n" +
         CameraText("Aux", description.aux) + "\n" + ExtrinsicsText(description.extrinsics) + "\n" +
         PositionsText(description.exactPositions) + "\n" + ApproximationText(description.approximation);
}

}  // namespace itoftool
