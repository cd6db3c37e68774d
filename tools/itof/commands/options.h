// Adds and checks the options that several commands have.
#ifndef ITOF_TOOL_COMMANDS_OPTIONS_H_
#define ITOF_TOOL_COMMANDS_OPTIONS_H_

#include <CLI/CLI.hpp>
#include <cfloat>
#include <string>
#include <vector>

#include "support/errors.h"
#include "support/text.h"

namespace itoftool {

inline constexpr char kCalibrationFileHelp[] = "Calibration file of 228 bytes";
inline constexpr char kJsonHelp[] = "Prints the same as JSON";

/// Refuses numbers that the option parser does not read as decimal: 010 would be 8, and 0x10 16.
inline std::string DecimalFault(const std::string& text) {
  const size_t first = text.starts_with('-') ? 1 : 0;
  const bool hasDigits = text.size() > first && text.find_first_not_of("0123456789", first) == std::string::npos;
  if (hasDigits && (text[first] != '0' || text.size() == first + 1)) return {};
  return "Value " + text + " is not a whole number in decimal, without leading zeros";
}

/// Refuses an empty name, e.g. of a shell variable that is not set; "" would pass as a missing option.
inline std::string EmptyFault(const std::string& text) { return text.empty() ? "Value is empty" : ""; }

inline void AddCalibrationOption(CLI::App& command, std::string& path) {
  command.add_option("--calibration", path, kCalibrationFileHelp)->required()->type_name("FILE");
}

inline void AddRatioOption(CLI::App& command, double& ratio) {
  command.add_option("--ratio", ratio, "Scale of the ideal aux image; 1 is without zoom")
      ->type_name("R")
      ->capture_default_str();
}

/// Adds the option that names what a command writes. Every command that writes has it, under the same names.
template <typename Path>
CLI::Option* AddOutputOption(CLI::App& command, Path& path, const char* form, const char* help) {
  return command.add_option("-o,--output", path, help)->check(EmptyFault)->type_name(form);
}

/// Adds an option with a few possible values. Help and completion show them as a|b|c.
inline void AddChoiceOption(CLI::App& command, const char* name, std::string& choice,
                            const std::vector<std::string>& choices, const char* help) {
  std::string form;
  for (const std::string& each : choices) form += (form.empty() ? "" : "|") + each;
  command.add_option(name, choice, help)
      ->type_name(form)
      ->check(CLI::Validator(CLI::IsMember(choices)).description(""));
}

/// Throws UsageError unless `ratio` is above 0 and finite in single precision, which the library takes.
inline void CheckRatio(double ratio) {
  if (ratio <= static_cast<double>(FLT_MAX) && static_cast<float>(ratio) > 0) return;
  throw UsageError(Format("--ratio: %g is not a finite single-precision number above 0", ratio));
}

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_OPTIONS_H_
