// Names the first word of the command line that no command expects, and suggests the command or option that it resembles.
#include <algorithm>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "support/errors.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// A name to compare with, and how to type it.
struct Name {
  std::string name, typed;
};

/// Returns how many letters must be inserted, removed, replaced or swapped with their neighbour to turn `a` into `b`.
size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector rows(a.size() + 1, std::vector<size_t>(b.size() + 1));
  for (size_t i = 0; i <= a.size(); ++i) {
    for (size_t j = 0; j <= b.size(); ++j) {
      size_t& distance = rows[i][j];
      if (i == 0 || j == 0) {
        distance = i + j;
        continue;
      }
      distance = std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        distance = std::min(distance, rows[i - 2][j - 2] + 1);
      }
    }
  }
  return rows[a.size()][b.size()];
}

/// Returns the end of a message: what the user may have meant, or else `otherwise`.
std::string Suggestion(const std::string& word, const std::vector<Name>& names, const std::string& otherwise) {
  constexpr size_t kLettersPerEdit = 3, kLongestWord = 100;
  if (word.size() > kLongestWord) return otherwise;
  const Name* nearest = nullptr;
  size_t smallest = (word.size() + 1) / kLettersPerEdit + 1;
  for (const Name& name : names) {
    size_t distance = EditDistance(word, name.name);
    if (word.size() >= kLettersPerEdit && name.name.starts_with(word)) distance = std::min(distance, size_t{1});
    if (distance >= smallest) continue;
    smallest = distance;
    nearest = &name;
  }
  if (nearest == nullptr) return otherwise;
  return smallest == 0 ? "; use " + Quoted(nearest->typed) : "; did you mean " + Quoted(nearest->typed) + "?";
}

/// Appends the commands of `app`, then those below them.
void AddCommandNames(const CLI::App& app, std::vector<Name>& names) {
  const auto commands = app.get_subcommands({});
  for (const CLI::App* command : commands) names.push_back({command->get_name(), CommandLine(*command)});
  for (const CLI::App* command : commands) AddCommandNames(*command, names);
}

std::string UnknownOption(const CLI::App& command, const std::string& word) {
  std::vector<Name> names;
  for (const CLI::Option* option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back({name, "--" + name});
  }
  const std::string typed = word.substr(0, word.find('='));
  const std::string line = CommandLine(command);
  const std::string letters = typed.substr(std::min(typed.find_first_not_of('-'), typed.size()));
  return Quoted(line) + " has no option " + Quoted(typed) +
         Suggestion(letters, names, "; see " + Quoted(line + " --help"));
}

std::string UnknownWord(const CLI::App& command, const std::string& word) {
  const std::string line = CommandLine(command);
  const std::string help = "; see " + Quoted(line + " --help");
  if (command.get_subcommands({}).empty()) return "unexpected argument " + Quoted(word) + " of " + Quoted(line) + help;
  std::vector<Name> names;
  AddCommandNames(command, names);
  const CLI::App* all = &command;
  while (all->get_parent() != nullptr) all = all->get_parent();
  AddCommandNames(*all, names);
  return "there is no command " + Quoted(line + " " + word) + Suggestion(word, names, help);
}

}  // namespace

std::string CommandLine(const CLI::App& command) {
  const CLI::App* parent = command.get_parent();
  return (parent == nullptr ? "" : CommandLine(*parent) + " ") + command.get_name();
}

void RefuseOutputWithOneDash(const CLI::App& app, const std::vector<std::string>& words) {
  const CLI::App* command = &app;
  for (const std::string& word : words) {
    if (word == "--") return;
    const std::string letters = word.substr(0, word.find('='));
    if (letters.starts_with("-o")) {
      const bool isOutput = !Suggestion(letters.substr(1), {{"output", "--output"}}, "").empty();
      if (isOutput && command->get_option_no_throw("-o") != nullptr) throw UsageError(UnknownOption(*command, word));
    } else {
      const auto below = command->get_subcommands([&](const CLI::App* each) { return each->get_name() == word; });
      if (!below.empty()) command = below.front();
    }
  }
}

void RefuseUnknownWords(const CLI::App& app) {
  for (const std::string& word : app.remaining()) {
    if (word == "--") continue;
    throw UsageError(word.starts_with('-') ? UnknownOption(app, word) : UnknownWord(app, word));
  }
  for (const CLI::App* command : app.get_subcommands()) RefuseUnknownWords(*command);
}

}  // namespace itoftool
