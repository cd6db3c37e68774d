// Runs `itof calibration check`: prints what looks wrong in a calibration file.
#include <cstdio>
#include <memory>
#include <string>

#include "check/findings.h"
#include "commands/commands.h"
#include "commands/options.h"
#include "files/files.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

void Print(const std::string& text) { std::fputs(text.c_str(), stdout); }

void Check(const std::string& path) {
  const Findings findings = CheckCalibration(ReadFile(path));
  for (const Finding& finding : findings) {
    Print(Format("%s [%s]\n", SeverityName(finding.severity), finding.name.c_str()) + Wrap(finding.text, 2) +
          Wrap("What to do: " + finding.advice, 2) + "\n");
  }
  const std::string summary = path + ": " + CountText(findings);
  if (CountErrors(findings) > 0) throw DataError(summary);
  Print(summary + "\n");
}

}  // namespace

void AddCheckCommand(CLI::App& calibration) {
  const auto path = std::make_shared<std::string>();
  CLI::App* command =
      calibration.add_subcommand("check", "Checks a calibration file for mistakes; exit code 1 if it finds an error");
  command->add_option("FILE", *path, kCalibrationFileHelp)->required()->type_name("");
  command->callback([path] { Check(*path); });
}

}  // namespace itoftool
