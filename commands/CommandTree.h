// The commands and options as plain data, from their declarations: what help, the manual page,
// completion in shells and messages are made of.
#pragma once

#include <string>
#include <vector>

#include "commands/CommandLineNames.h"

namespace quoin::commands {

struct OptionWords {
  std::vector<std::string> names;    // "-o", "--output"; one without dashes for a word in its place
  std::string value;                 // what it takes, "GLOB"; empty for a flag
  std::vector<std::string> choices;  // the words that it allows; empty for any
  std::string description;
  bool isRequired = false;
  bool isRepeatable = false;

  bool isPositional() const { return names.front().front() != '-'; }
};

struct CommandWords {
  std::string name;  // "break", "style dim"
  std::string description;
  std::string footer;
  std::vector<OptionWords> options;  // those of groups too
  bool hasSubcommands = false;
};

/// One command.
CommandWords wordsOf(const CLI::App& command);
/// All commands in the order of their declaration, each followed by its subcommands.
std::vector<CommandWords> commandsOf(const CLI::App& program);
/// "style dim" of the command that `quoin style dim` reaches; empty for the program itself.
std::string commandName(const CLI::App& command);

}  // namespace quoin::commands
