// Whether this machine computes the bits that every machine should. Needs nothing but the C and C++ libraries, so that
// it runs wherever a file can be copied to.
#include <cinttypes>
#include <cstdio>
#include <optional>

#include "commands/commands.h"
#include "selftest/selftest.h"
#include "support/errors.h"
#include "support/silence.h"

namespace itoftool {
namespace {

void SelfTest() {
  std::optional<Silence> silence(stdout);  // the library's line in each frame
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
  const uint64_t expected = selftest::Overall(selftest::kExpected);
  std::printf("all %016" PRIx64 "%s\n", selftest::Overall(digests), wrong == 0 ? ", as expected" : "");
  if (wrong == 0) return;
  char text[96];
  std::snprintf(text, sizeof text, "selftest: %d of %zu digests are wrong (!); all should be %016" PRIx64, wrong,
                selftest::kCases * selftest::kStages, expected);
  throw DataError(text);
}

}  // namespace

void AddSelfTestCommand(CLI::App& app) {
  app.add_subcommand("selftest", "Shows that this machine and this build give the bits that all should")
      ->callback(SelfTest);
}

}  // namespace itoftool
