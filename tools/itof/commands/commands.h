// The tool's subcommands. Each registers its options and what to run when it is chosen.
#ifndef ITOF_TOOL_COMMANDS_COMMANDS_H_
#define ITOF_TOOL_COMMANDS_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace itoftool {

void AddSelfTestCommand(CLI::App& app);
// In builds for hosts only, where all that they need of OpenCV is to be had.
void AddAlignCommand(CLI::App& app);
void AddSimulateCommand(CLI::App& app);
void AddCalibrationCommands(CLI::App& app);
void AddExplainCommand(CLI::App& app);
// Of the group `calibration`.
void AddImportCommand(CLI::App& calibration);
void AddExportCommand(CLI::App& calibration);

/// Throws UsageError, which names those that there are, unless a subcommand of `app` was given.
void RequireSubcommand(const CLI::App& app);

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_COMMANDS_H_
