// The command line as a whole: subcommands, help, errors and exit codes.
#pragma once

namespace quoin::commands {

/// Runs a command line, the program's name first, and returns the exit code (ExitCode.h).
/// Lets no exception out: what goes wrong is told on the standard error stream.
int runCommandLine(int argc, const char* const* argv);

}  // namespace quoin::commands
