// Completion of the command line in shells, made from the declarations of the commands.
#pragma once

#include <string>
#include <vector>

#include "commands/CommandLineNames.h"

namespace quoin::commands {

/// The shells that completionScript() knows.
const std::vector<std::string>& shellsWithCompletion();
/// What a shell reads to complete the program's commands, options and values.
std::string completionScript(const CLI::App& program, const std::string& shell);

}  // namespace quoin::commands
