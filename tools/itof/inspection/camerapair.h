// The camera pair of a calibration in exact geometry, for judging what the alignment makes of it.
#ifndef ITOF_TOOL_INSPECTION_CAMERAPAIR_H_
#define ITOF_TOOL_INSPECTION_CAMERAPAIR_H_

#include <opencv2/core.hpp>
#include <span>
#include <vector>

#include "alignment/alignmentcontext.h"
#include "calibration/calibrationrecord.h"
#include "camera/lens.h"

namespace itoftool {

Camera MakeCamera(const itof::CameraModel& model);

/// Both cameras as the alignment has them at 640 x 360. A point X of the ToF camera's frame lies at rotation * X +
/// translation in the aux camera's; lengths in depth codes.
struct CameraPair {
  Camera tof, aux;
  cv::Matx33d rotation;
  cv::Vec3d translation;
};

CameraPair MakeCameraPair(const itof::CalibrationRecord& record);

/// Pixels of the ToF frame, one of each step x step block.
std::vector<cv::Point> TofPixels(int step);

/// Three rows of three: a tenth of the ToF frame in from its edges, and in its middle.
std::vector<cv::Point> NinePixels();

/// The rays, as positions on the plane z = 1 of the camera's frame, along which a camera sees pixels; not-a-number where
/// its lens has no ray for the pixel.
std::vector<cv::Point2d> Rays(const Camera& camera, std::span<const cv::Point2d> pixels);
std::vector<cv::Point2d> Rays(const Camera& camera, std::span<const cv::Point> pixels);

/// Where the aux camera sees points on rays of the ToF camera, at a depth along that camera's axis: positions in its
/// picture, integers at the centres of pixels, by OpenCV's projectPoints. Not-a-number for points that are not in front
/// of it, or so far off its axis that its lens model does not hold.
std::vector<cv::Point2d> AuxPositions(const CameraPair& pair, std::span<const cv::Point2d> tofRays, double depth);

/// Whether a position of an aux picture lies in a cell of the aligned frame.
bool InFrame(cv::Point2d position);

/// The field of view in degrees, lens included, from edge to edge of the picture through its middle; not-a-number where
/// the lens has no ray for an edge.
struct FieldOfView {
  double horizontal, vertical, diagonal;
};
FieldOfView MeasureFieldOfView(const Camera& camera);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_CAMERAPAIR_H_
