// Finds the readings of a calibration that have fewer flaws than the file as written.
#ifndef ITOF_TOOL_CHECK_EXPLANATIONS_H_
#define ITOF_TOOL_CHECK_EXPLANATIONS_H_

#include <bitset>
#include <string>
#include <vector>

#include "check/flaws.h"
#include "check/readings.h"

namespace itoftool {

/// A reading that clearly beats the file as written.
struct Explanation {
  const Reading* reading;
  itof::CalibrationRecord record;  // with the reading
  Flaws flaws;                     // of that record
  std::bitset<kFlawCount> removed;
  int gain;  // number of flaws removed, minus those added
};

/// Tries all readings that could remove a flaw of `written`. A reading is an explanation if it removes more flaws than
/// it adds, and makes none much worse. The largest gain comes first, then the readings with which most pixels land.
std::vector<Explanation> Explain(const itof::CalibrationRecord& written, const Flaws& flaws);

/// The groups of readings that could remove a flaw, for "tried without success".
std::string TriedReadings(Flaw flaw);

}  // namespace itoftool

#endif  // ITOF_TOOL_CHECK_EXPLANATIONS_H_
