// What a calibration says, in numbers that an engineer can check against the device.
#ifndef ITOF_TOOL_INSPECTION_DESCRIPTION_H_
#define ITOF_TOOL_INSPECTION_DESCRIPTION_H_

#include <nlohmann/json.hpp>
#include <string>

#include "calibration/calibrationfields.h"
#include "calibration/calibrationrecord.h"

namespace itoftool {

/// The unit of an entry, or for a coefficient its name, e.g. "pixels" or "k1".
std::string EntryUnit(const itof::CalibrationField& field, size_t index);

/// The value of an entry as text: of an unused word its bits in hexadecimal.
std::string EntryText(const itof::CalibrationRecord& record, const itof::CalibrationField& field, size_t index);

/// All fields; both cameras with their matrices at both sizes, fields of view and reach of the lens; the extrinsics;
/// where nine ToF pixels land at three depths; and how far the alignment is from the exact projection there. Numbers that
/// do not exist, such as the position of a point that is not seen, are null. The record must be usable.
nlohmann::ordered_json DescribeCalibration(const itof::CalibrationRecord& record);

/// The same as text for a terminal.
std::string DescriptionText(const nlohmann::ordered_json& description);

}  // namespace itoftool

#endif  // ITOF_TOOL_INSPECTION_DESCRIPTION_H_
