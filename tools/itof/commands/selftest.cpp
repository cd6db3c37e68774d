// Runs `itof selftest`: compares what this machine computes with the bits that every machine should. It needs only the
// C and C++ libraries, so the program can be copied to a device and run there.
#include <cinttypes>
#include <cstdio>
#include <optional>

#include "commands/commands.h"
#include "selftest/selftest.h"
#include "support/errors.h"
#include "support/silence.h"
#include "support/text.h"

namespace itoftool {
namespace {

void SelfTest() {
  std::optional<Silence> silence(stdout);  // hides the line that the library prints for each frame
  const selftest::Digests digests = selftest::RunCases(selftest::kLibrary);
  silence.reset();

  std::printf("%-22s", "pair, ratio, lenses");
  for (const char* stage : selftest::kStageNames) std::printf("%-9s", stage);
  std::printf("\n");
  int wrong = 0;
  for (size_t i = 0; i < selftest::kCases; ++i) {
    const auto& [pair, ratio, distortion] = selftest::kCaseNames[i];
    std::printf("%-8s %-8g %-4s", pair, static_cast<double>(ratio), distortion ? "on" : "off");
    for (size_t stage = 0; stage < selftest::kStages; ++stage) {
      const bool right = digests[i][stage] == selftest::kExpected[i][stage];
      wrong += !right;
      std::printf("%08" PRIx32 "%c", digests[i][stage], right ? ' ' : '!');
    }
    std::printf("\n");
  }
  std::printf("all %016" PRIx64 "%s\n", selftest::Overall(digests), wrong == 0 ? ", as expected" : "");
  if (wrong == 0) return;
  throw DataError(Format("selftest: %d of %zu digests are wrong, marked with !; expected all %016" PRIx64, wrong,
                         selftest::kCases * selftest::kStages, selftest::Overall(selftest::kExpected)));
}

}  // namespace

void AddSelfTestCommand(CLI::App& app) {
  app.add_subcommand("selftest", "Checks that this machine and this build compute the expected bits")
      ->callback(SelfTest);
}

}  // namespace itoftool
