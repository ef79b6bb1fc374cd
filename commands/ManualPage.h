// The manual page of the program, made from the declarations of its commands.
#pragma once

#include <string>

#include "commands/CommandLineNames.h"

namespace quoin::commands {

/// quoin(1) in the language of man.
std::string manualPage(const CLI::App& program);

}  // namespace quoin::commands
