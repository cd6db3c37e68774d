// Writes entries of a calibration record, pixels and matrices as text.
#ifndef ITOF_TOOL_INSPECTION_VALUETEXT_H_
#define ITOF_TOOL_INSPECTION_VALUETEXT_H_

#include <cstddef>
#include <opencv2/core.hpp>
#include <string>

#include "calibration/calibrationfields.h"
#include "calibration/calibrationrecord.h"

namespace itoftool {

/// The unit of an entry, e.g. "pixels", or the name of a lens coefficient, e.g. "k1".
std::string EntryUnit(const itof::CalibrationField& field, size_t index);

/// The value of an entry: a number, or for an unused word its bits in hexadecimal.
std::string EntryText(const itof::CalibrationRecord& record, const itof::CalibrationField& field, size_t index);

/// E.g. "(320, 180)".
std::string PixelText(cv::Point pixel);

/// E.g. "[512, 0, 320; 0, 512, 180; 0, 0, 1]".
std::string MatrixText(const cv::Matx33d& m);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_VALUETEXT_H_
