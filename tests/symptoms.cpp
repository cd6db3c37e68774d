// Prints what each mistake in a calibration does to the aligned pixels, as rows of the table in docs/calibration.md.
// Usage: itof_symptoms [FILE], with a sound calibration file in place of the simulated pair's
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>

#include "check/findings.h"
#include "inspection/comparison.h"
#include "simulation/rig.h"
#include "support/mistakes.h"

using namespace itoftool;

int main(int argc, char** argv) {
  itof::CalibrationRecord sound = simulation::GentleRig().record;
  if (argc > 1 && !std::ifstream(argv[1]).read(reinterpret_cast<char*>(&sound), sizeof sound)) {
    std::fprintf(stderr, "%s: holds no calibration\n", argv[1]);
    return 1;
  }
  const RunTables soundTables(sound, 1);
  const auto pixels = TofPixels(4);
  for (const Mistake& mistake : Mistakes()) {
    itof::CalibrationRecord broken = sound;
    mistake.make(broken);
    const RunTables tables(broken, 1);
    std::printf("| %s | %s |", mistake.shape, mistake.name);
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
      if (names.find(finding.name) == std::string::npos) names += (names.empty() ? "" : ", ") + finding.name;
    }
    std::printf(" %s |\n", names.empty() ? "-" : names.c_str());
  }
}
