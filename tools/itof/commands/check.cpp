// Runs `itof calibration check`: prints what looks wrong in calibration files, and which of many deviate from the rest.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/options.h"
#include "files/calibrationfile.h"
#include "files/files.h"
#include "fleet/json.h"
#include "fleet/table.h"
#include "fleet/text.h"
#include "support/errors.h"
#include "support/progress.h"
#include "support/text.h"

namespace itoftool {
namespace fs = std::filesystem;
namespace {

struct CheckOptions {
  std::vector<std::string> paths;
  std::string reference;  // empty if not given
  bool verbose = false, json = false, csv = false;
};

/// A file to check, or a path at which there is none.
struct Input {
  fs::path path;
  std::string failure;  // of the path; empty for a file
};

void Print(const std::string& text) { std::fputs(text.c_str(), stdout); }

/// The files and the files in the folders, each once.
std::vector<Input> FindInputs(const std::vector<std::string>& paths) {
  std::vector<Input> inputs;
  std::set<fs::path> known;
  const auto add = [&](const fs::path& file) {
    std::error_code error;
    const fs::path canonical = fs::canonical(file, error);
    if (error || known.insert(canonical).second) inputs.push_back({file, ""});
  };
  for (const std::string& path : paths) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
      add(path);
      continue;
    }
    try {
      std::ranges::for_each(CalibrationFilesIn(path), add);
    } catch (const DataError& failure) {
      inputs.push_back({path, failure.what()});
    }
  }
  return inputs;
}

using Reference = std::optional<itof::CalibrationRecord>;

CheckedUnit CheckInput(const Input& input, const Reference& reference) {
  const std::string path = input.path.string();
  if (!input.failure.empty()) throw DataError(input.failure);
  return CheckUnit(path, ReadFile(input.path), reference);
}

/// Checks all inputs. One that cannot be read becomes a unit that says why, so that the others are still checked.
std::vector<CheckedUnit> CheckInputs(const std::vector<Input>& inputs, const Reference& reference) {
  std::vector<CheckedUnit> units;
  const Progress progress(inputs.size(), "files");
  for (const Input& input : inputs) {
    try {
      units.push_back(CheckInput(input, reference));
    } catch (const DataError& failure) {
      const std::string path = input.path.string(), text = failure.what(), prefix = path + ": ";
      units.push_back(UnreadableUnit(path, text.starts_with(prefix) ? text.substr(prefix.size()) : text));
    }
    progress.Show(units.size());
  }
  return units;
}

void PrintFindings(const CheckedUnit& unit) {
  for (const Finding& finding : unit.findings) {
    Print(Format("%s [%s]\n", SeverityName(finding.severity), finding.name.c_str()) + Wrap(OneLine(finding.text), 2) +
          Wrap("What to do: " + finding.advice, 2) + "\n");
  }
}

std::string Summary(const CheckedUnit& unit) {
  const Finding* worst = WorstFinding(unit.findings);
  const bool isReadable = worst == nullptr || worst->name != kUnreadable;
  return unit.path + ": " + (isReadable ? CountText(unit.findings) : worst->text);
}

std::string Summary(const std::vector<UnitRow>& rows) {
  const auto errors = std::ranges::count_if(rows, [](const UnitRow& row) { return row.errors > 0; });
  const auto warnings =
      std::ranges::count_if(rows, [](const UnitRow& row) { return row.errors == 0 && row.warnings > 0; });
  return Format("%zu units: %td with errors, %td with warnings only", rows.size(), errors, warnings);
}

void PrintUnits(const CheckOptions& options, const std::vector<CheckedUnit>& units, const std::vector<UnitRow>& rows,
                const std::optional<Fleet>& fleet) {
  if (options.verbose) {
    for (const CheckedUnit& unit : units) {
      PrintFindings(unit);
      Print(OneLine(Summary(unit)) + "\n\n");
    }
  }
  Print(TableText(rows) + "\n");
  if (fleet) Print(FleetText(*fleet, units, options.verbose) + "\n");
}

void Check(const CheckOptions& options) {
  const std::vector<Input> inputs = FindInputs(options.paths);
  const bool isSingle = inputs.size() == 1;
  const bool isText = !options.json && !options.csv;
  Reference reference;
  if (!options.reference.empty()) {
    reference = ReadCalibrationFile(options.reference).record;
    const Findings findings = CheckGeometry(*reference);
    if (CountErrors(findings) > 0) throw DataError(options.reference + ": is not a good unit: " + CountText(findings));
  }
  const std::vector<CheckedUnit> units =
      isSingle && isText ? std::vector{CheckInput(inputs.front(), reference)} : CheckInputs(inputs, reference);
  const std::optional<Fleet> fleet = CompareFleet(units);
  const std::vector<UnitRow> rows = MakeRows(units, fleet);
  if (options.json) Print(CheckJson(units, rows, fleet));
  if (options.csv) Print(TableCsv(rows));
  if (isText && isSingle) PrintFindings(units.front());
  if (isText && !isSingle) PrintUnits(options, units, rows, fleet);

  const std::string summary = isSingle ? Summary(units.front()) : Summary(rows);
  if (std::ranges::any_of(rows, [](const UnitRow& row) { return row.errors > 0; })) throw DataError(summary);
  if (isText) Print(OneLine(summary) + "\n");
}

}  // namespace

void AddCheckCommand(CLI::App& calibration) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* command = calibration.add_subcommand(
      "check",
      "Checks calibration files for mistakes, and compares five or more with each other; exit code 1 if one has an "
      "error");
  command
      ->add_option("PATH", options->paths,
                   "Calibration files of 228 bytes, or folders, in which every file of 228 bytes or named "
                   "*.bin is checked")
      ->required()
      ->type_name("");
  command
      ->add_option(
          "--reference", options->reference,
          "Calibration file of a unit that is known to be good: prints only findings that it does not have, and how "
          "far pixels are from where it puts them")
      ->check(EmptyFault)
      ->type_name("GOOD");
  CLI::Option* verbose = command->add_flag(
      "--verbose", options->verbose, "Also prints every finding if several files are checked, and the fleet's medians");
  CLI::Option* json = command->add_flag("--json", options->json, kJsonHelp)->excludes(verbose);
  command->add_flag("--csv", options->csv, "Prints the table of files as comma-separated values")
      ->excludes(verbose)
      ->excludes(json);
  command->callback([options] { Check(*options); });
}

}  // namespace itoftool
