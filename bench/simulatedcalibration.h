// A simulated camera pair's calibration where the library looks for it.
#ifndef ITOF_BENCH_SIMULATEDCALIBRATION_H_
#define ITOF_BENCH_SIMULATEDCALIBRATION_H_

#include <zerun/hostfiles.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

#include "calibration/calibrationrecord.h"
#include "simulation/rig.h"

namespace itofbench {

/// While it lives, every itof_init of this process reads `record`. Throws std::runtime_error.
struct SimulatedCalibration {
  SimulatedCalibration() {
    if (!file || std::fwrite(&record, sizeof record, 1, file.get()) != 1 || std::fflush(file.get()) != 0) {
      throw std::runtime_error("no temporary file for the calibration");
    }
    ZerunHost::RedirectPath(itof::kCalibrationPath, "/proc/self/fd/" + std::to_string(fileno(file.get())));
  }

  const itof::CalibrationRecord record = itoftool::simulation::GentleRig().record;
  // Without a name of its own, so that nothing remains of it however the program ends.
  const std::unique_ptr<FILE, int (*)(FILE*)> file{std::tmpfile(), std::fclose};
};

}  // namespace itofbench

#endif  // ITOF_BENCH_SIMULATEDCALIBRATION_H_
