// Reports a missing subcommand.
#include "commands/commands.h"

#include <string>

#include "support/errors.h"

namespace itoftool {

void RequireSubcommand(const CLI::App& app) {
  if (!app.get_subcommands().empty()) return;
  std::string names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names += " " + command->get_name();
  }
  throw UsageError(app.get_name() + " requires a command, one of:" + names);
}

}  // namespace itoftool
