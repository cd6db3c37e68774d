// Computes where the cameras of a calibration see points, exactly, as a reference for the alignment.
#ifndef ITOF_TOOL_INSPECTION_CAMERAPAIR_H_
#define ITOF_TOOL_INSPECTION_CAMERAPAIR_H_

#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "alignment/alignmentcontext.h"
#include "calibration/calibrationrecord.h"
#include "camera/lens.h"

namespace itoftool {

/// The position or ray of a point that is not seen: not-a-number.
inline const cv::Point2d kNowhere(std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN());
inline bool IsNowhere(cv::Point2d position) { return std::isnan(position.x); }

Camera MakeCamera(const itof::CameraModel& model);

/// Both cameras at 640 x 360. A point X in the ToF camera's coordinates is at rotation * X + translation in the aux
/// camera's. Lengths are in depth codes.
struct CameraPair {
  Camera tof, aux;
  cv::Matx33d rotation;
  cv::Vec3d translation;
};

CameraPair MakeCameraPair(const itof::CalibrationRecord& record);
/// The same with the record's working context, e.g. that of its RunTables. Making a context takes most of the time.
CameraPair MakeCameraPair(const itof::CalibrationRecord& record, const itof::AlignmentContext& context);

/// The middle pixel of each block of step x step pixels of the ToF frame, row by row.
std::vector<cv::Point> TofPixels(int step);

/// Three rows of three pixels of the ToF frame: a tenth of its size from the edges, and in the middle.
std::vector<cv::Point> NinePixels();

/// The rays along which a camera sees pixels, as positions on the plane z = 1 of its coordinates; kNowhere for pixels
/// for which its lens has no ray.
std::vector<cv::Point2d> Rays(const Camera& camera, std::span<const cv::Point2d> pixels);
std::vector<cv::Point2d> Rays(const Camera& camera, std::span<const cv::Point> pixels);

/// Where the aux camera sees points on rays of the ToF camera, at a depth along the ToF camera's axis. The positions
/// are in pixels of the real aux image, integers at pixel centres, from OpenCV's projectPoints; kNowhere for points
/// that are not in front of the aux camera or outside the range where its lens model is valid.
std::vector<cv::Point2d> AuxPositions(const CameraPair& pair, std::span<const cv::Point2d> tofRays, double depth);

/// True if a position of the aux image is in a cell of the aligned frame.
bool InFrame(cv::Point2d position);

/// The field of view in degrees, including the lens, from edge to edge of the frame through its middle; not-a-number if
/// the lens has no ray for an edge.
struct FieldOfView {
  double horizontal, vertical, diagonal;
};
FieldOfView MeasureFieldOfView(const Camera& camera);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_CAMERAPAIR_H_
