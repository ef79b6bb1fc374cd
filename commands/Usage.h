// What is wrong with a command line, in the program's own words.
#pragma once

#include <string>
#include <vector>

#include "commands/CommandLineNames.h"

namespace quoin::commands {

/// The command that the words reached, "style dim" of "quoin style dim"; the program itself where
/// they name none.
const CLI::App& reachedCommand(const CLI::App& program);

/// The subcommand of this name; null where there is none.
CLI::App* findCommand(CLI::App& parent, const std::string& name);
/// That there is no such command, and which is the nearest.
std::string noCommand(const std::string& word, const CLI::App& parent);
/// Where more is told: "quoin break --help lists the options".
std::string helpHint(const CLI::App& command);

/// What the parser stumbled over.
std::string usageMessage(const CLI::ParseError& error, const CLI::App& program);

/// Allows these words alone, and suggests the nearest for another.
CLI::Validator oneOf(const std::vector<std::string>& words);
/// The words that an option allows; empty for any.
std::vector<std::string> allowedWords(const CLI::Option& option);

}  // namespace quoin::commands
