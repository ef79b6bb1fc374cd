// The running process: where its program lies, requests to stop it, and work side by side. The
// first Ctrl-C or termination request only sets a flag that long work asks for, so that it can
// leave every file whole; a second one ends the process at once.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "hostapi.h"

namespace quoin::os {

/// The path of the program that runs; empty where the system does not tell.
HOST_API std::filesystem::path programPath();

/// From now on an interrupt or a termination request sets the flag.
HOST_API void watchForInterrupt();
/// Whether somebody has asked to stop.
HOST_API bool isInterrupted();
/// Sets the flag as a request from outside would, or takes it back.
HOST_API void setInterrupted(bool interrupted);

/// What a piece of work answered.
struct SideResult {
  bool isDone = false;  // it came to its end
  std::string text;     // what it answered; what ended it where it is not done
};

/// Runs `work` for 0 to count - 1, each in a process of its own that begins as a copy of this
/// one, at most `jobs` at a time; results by number. `onDone` hears in this process how many
/// have ended. After a request to stop no more are begun; those that run get the request from
/// the system and end by themselves.
/// A piece that dies takes nothing with it: its result is not done and says how it ended.
HOST_API std::vector<SideResult> runSideBySide(std::size_t count, std::size_t jobs,
                                               const std::function<std::string(std::size_t)>& work,
                                               const std::function<void(std::size_t)>& onDone);

/// Whether the standard error stream is a terminal that shows progress.
HOST_API bool isErrorStreamTerminal();

}  // namespace quoin::os
