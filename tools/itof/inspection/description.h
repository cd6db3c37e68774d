// Describes a calibration in numbers that an engineer can check against the device.
#ifndef ITOF_TOOL_INSPECTION_DESCRIPTION_H_
#define ITOF_TOOL_INSPECTION_DESCRIPTION_H_

#include <cstddef>
#include <opencv2/core.hpp>
#include <optional>
#include <string>
#include <vector>

#include "calibration/calibrationrecord.h"
#include "inspection/camerapair.h"
#include "inspection/comparison.h"

namespace itoftool {

/// An entry of the calibration file.
struct EntryDescription {
  size_t byte;  // where it starts in the file
  std::string name;
  std::optional<double> value;  // nothing for unused words
  std::string text;             // the value; the bits of an unused word
  std::string unit;
};

struct CameraDescription {
  cv::Size calibrationImage;
  cv::Matx33d matrix;         // for that image
  cv::Matx33d workingMatrix;  // for 640 x 360
  FieldOfView fieldOfView;
  double lensReachDegrees;  // off the axis, up to which the lens model is valid; 90 if everywhere
};

/// Lengths are in depth codes.
struct ExtrinsicsDescription {
  double baseline;
  cv::Vec3d auxInTofFrame;  // position of the aux camera in the ToF camera's coordinates
  double rotationDegrees;
  cv::Vec3d rotationAxis;  // of length 1; zero if there is no rotation
};

/// Where the aux camera sees a ToF pixel, in its frame of 640 x 360; not-a-number where it does not.
struct ExactPositions {
  cv::Point tofPixel;
  PerDepth<cv::Point2d> aux;
};

struct CalibrationDescription {
  std::vector<EntryDescription> entries;
  CameraDescription tof, aux;
  ExtrinsicsDescription extrinsics;
  std::vector<ExactPositions> exactPositions;  // of nine pixels
  PerDepth<Approximation> approximation;
};

/// The record must be one that itof_init accepts.
CalibrationDescription DescribeCalibration(const itof::CalibrationRecord& record);

/// The description as JSON. Numbers that do not exist, such as the position of a point that is not seen, are null.
std::string DescriptionJson(const CalibrationDescription& description);

/// The description as text for a terminal.
std::string DescriptionText(const CalibrationDescription& description);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_DESCRIPTION_H_
