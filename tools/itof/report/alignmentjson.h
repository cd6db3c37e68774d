// Writes alignment.json, which describes the aligned frames for programs that read them.
#ifndef ITOF_TOOL_REPORT_ALIGNMENTJSON_H_
#define ITOF_TOOL_REPORT_ALIGNMENTJSON_H_

#include <string>
#include <vector>

#include "files/calibrationfile.h"
#include "report/framereport.h"

namespace itoftool {

/// Returns the file's text.
std::string AlignmentJson(const CalibrationFile& calibration, float ratio, const std::vector<FrameReport>& frames);

}  // namespace itoftool

#endif  // ITOF_TOOL_REPORT_ALIGNMENTJSON_H_
