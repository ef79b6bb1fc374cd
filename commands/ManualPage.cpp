#include "commands/ManualPage.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <string_view>

#include "commands/CommandTree.h"

namespace quoin::commands {

namespace {

/// Text as it is: nothing in it is taken for a request of the formatter.
std::string plain(std::string_view text) {
  std::string page;
  bool isLineStart = true;
  for (const char letter : text) {
    if (isLineStart && (letter == '.' || letter == '\'')) {
      page += "\\&";
    }
    switch (letter) {
      case '\\':
        page += "\\e";
        break;
      case '-':
        page += "\\-";
        break;
      default:
        page += letter;
    }
    isLineStart = letter == '\n';
  }
  return page;
}

/// Lines that stay as they are broken.
std::string unfilled(const std::string& text) {
  return ".nf\n" + plain(text) + "\n.fi\n";
}

std::string optionEntry(const OptionWords& option) {
  std::string names;
  for (const std::string& name : option.names) {
    names += fmt::format("{}\\fB{}\\fR", names.empty() ? "" : ", ", plain(name));
  }
  if (!option.choices.empty()) {
    names += fmt::format(" {}", plain(fmt::format("{}", fmt::join(option.choices, "|"))));
  } else if (!option.value.empty()) {
    names += fmt::format(" \\fI{}\\fR", plain(option.value));
  }
  return fmt::format(".TP\n{}\n{}{}\n", names, plain(option.description),
                     option.isRequired && !option.isPositional() ? " (required)" : "");
}

std::string synopsis(const CommandWords& command) {
  std::string words = fmt::format("\\fBquoin {}\\fR", plain(command.name));
  for (const OptionWords& option : command.options) {
    if (option.isPositional()) {
      const std::string name =
          "\\fI" + plain(option.names.front()) + (option.isRepeatable ? "...\\fR" : "\\fR");
      words += option.isRequired ? " " + name : " [" + name + "]";
    }
  }
  return words + " [options]";
}

std::string commandSection(const CommandWords& command) {
  std::string page = fmt::format(".SS {}\n{}.\n.PP\n{}\n", plain(command.name),
                                 plain(command.description), synopsis(command));
  for (const OptionWords& option : command.options) {
    page += optionEntry(option);
  }
  if (!command.footer.empty()) {
    page += ".PP\n" + unfilled(command.footer);
  }
  return page;
}

}  // namespace

std::string manualPage(const CLI::App& program) {
  std::string page = fmt::format(
      ".TH QUOIN 1 \"\" \"quoin {}\" \"User Commands\"\n"
      ".SH NAME\nquoin \\- work on the walls of architectural plan drawings\n"
      ".SH SYNOPSIS\n\\fBquoin\\fR \\fICOMMAND\\fR [options] \\fIDRAWING\\fR...\n"
      ".SH DESCRIPTION\n",
      plain(QUOIN_VERSION));
  page += unfilled(program.get_description());
  page += ".SH COMMANDS\n";
  for (const CommandWords& command : commandsOf(program)) {
    if (!command.hasSubcommands) {
      page += commandSection(command);
    }
  }
  page += ".SH EXIT STATUS\n" + unfilled(program.get_footer());
  page +=
      ".SH ENVIRONMENT\n.TP\n\\fBQUOIN_MODULES\\fR\nThe folder with the modules that the program "
      "loads, instead of those that were installed with it.\n";
  return page;
}

}  // namespace quoin::commands
