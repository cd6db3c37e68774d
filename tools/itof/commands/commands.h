// Declares the tool's subcommands. Each function adds one, with its options and the function that runs it.
#ifndef ITOF_TOOL_COMMANDS_COMMANDS_H_
#define ITOF_TOOL_COMMANDS_COMMANDS_H_

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace itoftool {

void AddSelfTestCommand(CLI::App& app);
// Only in host builds: these need OpenCV's picture functions and the stand-ins.
void AddAlignCommand(CLI::App& app);
void AddSimulateCommand(CLI::App& app, const std::string& program);  // `program` is the tool's name as typed
void AddCalibrationCommands(CLI::App& app);
void AddExplainCommand(CLI::App& app);
// Subcommands of `calibration`.
void AddCheckCommand(CLI::App& calibration);
void AddImportCommand(CLI::App& calibration);
void AddExportCommand(CLI::App& calibration);

/// Throws UsageError, which lists the subcommands of `app`, unless one of them was given.
void RequireSubcommand(const CLI::App& app);

/// Throws UsageError for the first word on the parsed command line that no command expects. The text suggests the command
/// or option that the word resembles, if there is one.
void RefuseUnknownWords(const CLI::App& app);

/// Throws UsageError if one of `words`, which follow the tool's name, is `-output` or resembles it. The parser would take
/// it as the option -o with the rest as a file's name.
void RefuseOutputWithOneDash(const CLI::App& app, const std::vector<std::string>& words);

/// Returns how to type a command, e.g. "itof calibration check".
std::string CommandLine(const CLI::App& command);

/// Prints the possible completions of the last of `words`, one per line: names of commands or options, or an option's choices.
/// Prints nothing where a file's name or a number is expected. `words` follow the tool's name on the command line.
void PrintCompletions(const CLI::App& app, std::vector<std::string> words);

/// Prints the manual page of all commands.
void PrintManPage(const CLI::App& app, const std::string& version);

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_COMMANDS_H_
