// Prints the possible completions of the last word of a command line. The shell's completion script calls it, so
// completion always knows exactly the commands, options and choices of the program that is being typed.
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "commands/commands.h"

namespace itoftool {
namespace {

const CLI::Option* FindOption(const CLI::App& command, const std::string& word) {
  return word.starts_with('-') ? command.get_option_no_throw(word) : nullptr;
}

std::vector<std::string> OptionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::vector<std::string> CommandNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  return names;
}

/// Returns the choices that the option's help shows as a|b|c. Other values have none.
std::vector<std::string> Choices(const CLI::Option& option) {
  std::vector<std::string> choices;
  std::istringstream form(option.get_type_name());
  for (std::string choice; std::getline(form, choice, '|');) choices.push_back(choice);
  return choices.size() > 1 ? choices : std::vector<std::string>();
}

}  // namespace

void PrintCompletions(const CLI::App& app, std::vector<std::string> words) {
  // The shell passes --option=value as three words.
  if (!words.empty() && words.back() == "=") words.back().clear();
  std::erase(words, "=");
  if (words.empty()) return;
  const std::string last = words.back();
  words.pop_back();

  const CLI::App* command = &app;
  const CLI::Option* valued = nullptr;  // the option whose value comes next
  for (const std::string& word : words) {
    const CLI::Option* option = valued == nullptr ? FindOption(*command, word) : nullptr;
    if (valued == nullptr && option == nullptr) {
      for (const CLI::App* next : command->get_subcommands({})) {
        if (next->get_name() == word) command = next;
      }
    }
    valued = option != nullptr && option->get_items_expected_max() > 0 ? option : nullptr;
  }

  std::vector<std::string> candidates;
  if (valued != nullptr) {
    candidates = Choices(*valued);
  } else {
    candidates = last.starts_with('-') ? OptionNames(*command) : CommandNames(*command);
  }
  for (const std::string& candidate : candidates) {
    if (candidate.starts_with(last)) std::puts(candidate.c_str());
  }
}

}  // namespace itoftool
