// Declares the tool's subcommands. Each function adds one, with its options and the function that runs it.
#ifndef ITOF_TOOL_COMMANDS_COMMANDS_H_
#define ITOF_TOOL_COMMANDS_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace itoftool {

void AddSelfTestCommand(CLI::App& app);
// Only in host builds: these need OpenCV's picture functions and the stand-ins.
void AddAlignCommand(CLI::App& app);
void AddSimulateCommand(CLI::App& app);
void AddCalibrationCommands(CLI::App& app);
void AddExplainCommand(CLI::App& app);
// Subcommands of `calibration`.
void AddCheckCommand(CLI::App& calibration);
void AddImportCommand(CLI::App& calibration);
void AddExportCommand(CLI::App& calibration);

/// Throws UsageError, which lists the subcommands of `app`, unless one of them was given.
void RequireSubcommand(const CLI::App& app);

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_COMMANDS_H_
