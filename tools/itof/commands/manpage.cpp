// Prints the manual page, in troff's man macros. It consists of the help texts, with the same wording and order.
#include <cctype>
#include <cstdio>
#include <sstream>
#include <string>

#include "commands/commands.h"
#include "support/text.h"

namespace itoftool {
namespace {

/// Escapes what troff would interpret. Lines may break after a plus sign, since some keys are longer than a line.
std::string Escaped(const std::string& text) {
  std::string escaped = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
      if (c == '+') escaped += "\\:";
    }
  }
  return escaped;
}

/// Prints one entry of a list; `form` follows the name.
void PrintItem(const std::string& name, const std::string& form, const std::string& text) {
  std::printf(".TP\n\\fB%s\\fR%s\n%s\n", Escaped(name).c_str(), Escaped(form).c_str(), Escaped(text).c_str());
}

/// Prints a footer. Lines of the form "  name   text" are items; other lines of one indentation are one paragraph.
void PrintFooter(const std::string& footer) {
  std::istringstream lines(footer);
  size_t current = 0;
  bool afterItem = false;
  std::printf(".PP\n");
  for (std::string line; std::getline(lines, line);) {
    const size_t indent = line.find_first_not_of(' ');
    if (indent == std::string::npos) {
      std::printf(".PP\n");
      continue;
    }
    const size_t gap = line.find("  ", indent);
    if (gap != std::string::npos) {
      PrintItem(line.substr(indent, gap - indent), "", line.substr(line.find_first_not_of(' ', gap)));
      afterItem = true;
      continue;
    }
    if (indent != current || afterItem) {
      std::printf(indent > 0 ? ".IP \"\" %zu\n" : ".PP\n", indent);
    }
    current = indent;
    afterItem = false;
    std::printf("%s\n", Escaped(line.substr(indent)).c_str());
  }
}

void PrintOptions(const CLI::App& command) {
  const CLI::Formatter formatter;
  for (const bool positional : {true, false}) {
    for (const CLI::Option* option : command.get_options()) {
      const bool isHelp = option == command.get_help_ptr() && command.get_parent() != nullptr;  // is in every command
      if (isHelp || option->get_positional() != positional) continue;
      PrintItem(formatter.make_option_name(option, positional), formatter.make_option_opts(option),
                option->get_description());
    }
  }
}

/// Prints a section for each command below `app` that runs something.
void PrintCommands(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands({})) {
    if (!command->get_subcommands({}).empty()) {
      PrintCommands(*command);
      continue;
    }
    const std::string usage = CLI::Formatter().make_usage(command, CommandLine(*command));
    std::printf(".SS\n%s\n",
                Escaped(usage.substr(usage.find(' ') + 1, usage.find('\n') - usage.find(' ') - 1)).c_str());
    std::printf("%s.\n", Escaped(command->get_description()).c_str());
    PrintOptions(*command);
    if (!command->get_footer().empty()) PrintFooter(command->get_footer());
  }
}

}  // namespace

void PrintManPage(const CLI::App& app, const std::string& version) {
  std::string title = app.get_description();
  title[0] = static_cast<char>(std::tolower(title[0]));
  if (title.ends_with('.')) title.pop_back();
  std::printf(".TH ITOF 1 \"\" \"itof %s\" \"User Commands\"\n.nh\n.ad l\n", version.c_str());
  std::printf(".SH NAME\nitof \\- %s\n", Escaped(title).c_str());
  std::printf(".SH SYNOPSIS\n.B itof\n\\fICOMMAND\\fR [\\fIOPTIONS\\fR] ...\n");
  std::printf(".SH OPTIONS\n");
  PrintOptions(app);
  PrintFooter(app.get_footer());
  std::printf(".SH COMMANDS\n");
  PrintCommands(app);
}

}  // namespace itoftool
