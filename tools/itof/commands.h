// The tool's subcommands. Each registers its options and what to run when it is chosen.
#ifndef ITOF_TOOL_COMMANDS_H_
#define ITOF_TOOL_COMMANDS_H_

#include <CLI/CLI.hpp>

namespace itoftool {

void AddSelfTestCommand(CLI::App& app);
// In builds with pictures only.
void AddAlignCommand(CLI::App& app);
void AddSimulateCommand(CLI::App& app);

}  // namespace itoftool

#endif  // ITOF_TOOL_COMMANDS_H_
