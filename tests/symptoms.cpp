// Prints what each mistake in a calibration does to the aligned pixels, as rows of the table in docs/calibration.md, or
// what the check makes of all mistakes.
// Usage: itof_symptoms [FILE], with a sound calibration file in place of the simulated pair's
//        itof_symptoms --named [FILE...], with files in addition to the two simulated pairs
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "check/findings.h"
#include "inspection/comparison.h"
#include "simulation/rig.h"
#include "support/mistakes.h"
#include "support/verdict.h"

using namespace itoftool;
using itof::CalibrationRecord;

namespace {

CalibrationRecord ReadRecord(const char* path) {
  CalibrationRecord record;
  if (!std::ifstream(path).read(reinterpret_cast<char*>(&record), sizeof record)) {
    std::fprintf(stderr, "%s: holds no calibration\n", path);
    std::exit(1);
  }
  return record;
}

void PrintSymptoms(const CalibrationRecord& sound) {
  const RunTables soundTables(sound, 1);
  const auto pixels = TofPixels(4);
  for (const Mistake& mistake : Mistakes()) {
    if (mistake.shape == nullptr) continue;
    CalibrationRecord broken = sound;
    mistake.make(broken);
    const RunTables tables(broken, 1);
    std::printf("| %s | %s |", mistake.shape, mistake.name.c_str());
    for (const uint16_t code : kCompareDepths) {
      const Spread spread =
          MeasureSpread(pixels, AlignedPositions(soundTables, pixels, code), AlignedPositions(tables, pixels, code));
      if (spread.count == 0) {
        std::printf(" none lands |");
      } else {
        std::printf(" %.0f / %.0f |", spread.median, spread.maximum);
      }
    }
    std::string names;
    for (const Finding& finding : CheckGeometry(broken)) {
      if (finding.severity == Severity::kNote && finding.readings.empty()) continue;
      if (names.find(finding.name) == std::string::npos) names += (names.empty() ? "" : ", ") + finding.name;
    }
    std::printf(" %s |\n", names.empty() ? "-" : names.c_str());
  }
}

/// Prints a column for each calibration.
void PrintVerdicts(const std::vector<CalibrationRecord>& sound) {
  constexpr const char* kTexts[] = {"-", "noticed", "named", "WRONG"};
  for (const Mistake& mistake : Mistakes()) {
    std::printf("| %s |", mistake.name.c_str());
    for (const CalibrationRecord& record : sound) {
      std::printf(" %s |", kTexts[static_cast<size_t>(VerdictOn(mistake, record))]);
    }
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 1 || std::string(argv[1]) != "--named") {
    PrintSymptoms(argc > 1 ? ReadRecord(argv[1]) : simulation::GentleRig().record);
    return 0;
  }
  std::vector<CalibrationRecord> sound = {simulation::GentleRig().record, simulation::StrongRig().record};
  std::transform(argv + 2, argv + argc, std::back_inserter(sound), ReadRecord);
  PrintVerdicts(sound);
}
