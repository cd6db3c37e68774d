// Runs `itof calibration`: shows and compares calibration files, and groups the commands for them.
#include <cstdio>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/options.h"
#include "files/calibrationfile.h"
#include "inspection/description.h"
#include "inspection/difference.h"

namespace itoftool {
namespace {

void Print(const std::string& text) { std::fputs(text.c_str(), stdout); }

void Show(const std::string& path, bool json) {
  const CalibrationDescription description = DescribeCalibration(ReadCalibrationFile(path).record);
  Print(json ? DescriptionJson(description) : DescriptionText(description));
}

void Diff(const std::string& a, const std::string& b, bool json) {
  const itof::CalibrationRecord recordA = ReadCalibrationFile(a).record;
  const CalibrationDifference difference = CompareCalibrations(recordA, ReadCalibrationFile(b).record);
  Print(json ? DifferenceJson(difference) : DifferenceText(difference));
}

struct Paths {
  std::string a, b;
  bool json = false;
};

}  // namespace

void AddCalibrationCommands(CLI::App& app) {
  CLI::App* group = app.add_subcommand("calibration", "Shows, checks, compares and converts calibration files");
  group->require_subcommand(0, 1);  // RequireSubcommand reports a missing one
  group->callback([group] { RequireSubcommand(*group); });
  const auto paths = std::make_shared<Paths>();
  const auto addFile = [](CLI::App* command, const char* name, std::string& path) {
    command->add_option(name, path, kCalibrationFileHelp)->required()->type_name("");
  };

  CLI::App* show =
      group->add_subcommand("show", "Shows the contents of a calibration file and where pixels land with it");
  addFile(show, "FILE", paths->a);
  show->add_flag("--json", paths->json, kJsonHelp);
  show->callback([paths] { Show(paths->a, paths->json); });

  CLI::App* diff =
      group->add_subcommand("diff", "Shows which fields of two calibration files differ and how far pixels move");
  addFile(diff, "A", paths->a);
  addFile(diff, "B", paths->b);
  diff->add_flag("--json", paths->json, kJsonHelp);
  diff->callback([paths] { Diff(paths->a, paths->b, paths->json); });

  AddCheckCommand(*group);
  AddImportCommand(*group);
  AddExportCommand(*group);
}

}  // namespace itoftool
