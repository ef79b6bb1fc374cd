// How a command fails: an exit code and a message that names file, line, entity and cause.
#pragma once

#include <stdexcept>
#include <string>

namespace quoin::commands {

/// Exit codes of the program. `quoin --help` lists them.
enum class ExitCode : int {
  Ok = 0,
  Different = 1,         // all went well, and the drawings that were compared differ
  Usage = 2,             // the command line cannot be understood
  InputUnreadable = 3,   // the drawing cannot be read
  NothingToDo = 4,       // no wall lines (grid lines, ...) on the chosen layers
  OutputUnwritable = 5,  // the drawing, picture or model cannot be written
  EntityFailed = 6,      // an entity cannot be changed as asked
  NoProject = 7,         // the host has no project open
  CommandFailed = 8,     // a client module's command threw or crashed
  ModuleUnloadable = 70,
  InternalError = 71,
  Interrupted = 130
};

class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode exitCode, const std::string& message)
      : std::runtime_error(message), code(exitCode) {}

  ExitCode code;
};

}  // namespace quoin::commands
