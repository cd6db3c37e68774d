// Serves the user's calibration at the path that the library reads, and shows or hides the library's lines.
#include "commands/aligner.h"

#include <orvolog/orvolog.h>
#include <zerun/hostfiles.h>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>

#include "calibration/calibrationrecord.h"
#include "itofinterface.h"
#include "support/errors.h"
#include "support/silence.h"

namespace itoftool {

Aligner::Aligner(const itof::CalibrationRecord& calibration, float ratio, bool showLines)
    : ratio_(ratio), showLines_(showLines) {
  constexpr uint64_t kLibraryLines = uint64_t{1} << 18;
  g_enableOrvxLogs = showLines ? g_enableOrvxLogs | kLibraryLines : 0;
  const std::string bytes(reinterpret_cast<const char*>(&calibration), sizeof calibration);
  const ZerunHost::ServedFile file(itof::kCalibrationPath, bytes);
  if (itof_init() != ITOF_OK) throw std::logic_error("itof_init refused a calibration that passed its check");
}

Aligner::~Aligner() { itof_deinit(); }

double Aligner::Align(std::vector<uint16_t>& words) const {
  std::optional<Silence> silence;
  if (!showLines_) silence.emplace(stdout);
  const auto start = std::chrono::steady_clock::now();
  itof_execute_algo(words.data(), ratio_);
  const auto end = std::chrono::steady_clock::now();
  return std::chrono::duration<double, std::milli>(end - start).count();
}

}  // namespace itoftool
