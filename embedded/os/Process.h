// The running process: where its program lies, requests to stop it, and work side by side.
//
// Ctrl-C and termination requests end the process at once, whatever it is doing: reading,
// computing and painting hold nothing that the end could harm. Only where something stands half
// done in the world outside, a StopDelay says so. While one lives, a request is noted, long work
// asks for it and comes to an end that leaves every file whole, and the process ends with the
// delay.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "hostapi.h"

namespace quoin::os {

/// The path under which the standard input is read as a file.
HOST_API std::string standardInputPath();

/// The path of the program that runs; empty where the system does not tell.
HOST_API std::filesystem::path programPath();

/// To be called before any file is opened: a standard stream that the process was started
/// without is taken by the null device, so that no drawing's file gets its number and the words
/// that are meant for the stream. Writing to it, or reading from it, is an error as before.
HOST_API void reserveStandardStreams();

/// The exit code of a process that was asked to stop.
inline constexpr int kExitInterrupted = 130;

/// From now on an interrupt or a termination request ends the process with kExitInterrupted and
/// interruptText() on the standard error stream; where a StopDelay lives, only with its end. A
/// second request of the same kind ends it even then.
HOST_API void watchForInterrupt();
/// Whether somebody has asked to stop and a StopDelay holds that back.
HOST_API bool isInterrupted();
/// Notes a request as one from outside while a StopDelay lives, or takes it back.
HOST_API void setInterrupted(bool interrupted);
/// What a process that was asked to stop says: whether a file was written before.
HOST_API std::string interruptText();
/// Says that a file has been written or replaced by now, whole.
HOST_API void noteFileWritten();

/// While one lives, something is half done that the end of the process would leave so: a file
/// that is being written, processes that work for this one. What goes on meanwhile asks
/// isInterrupted() often enough to end within a second.
class HOST_API StopDelay {
 public:
  StopDelay();
  /// Ends the process if a request came while the last delay lived.
  ~StopDelay();
  StopDelay(const StopDelay&) = delete;
  StopDelay& operator=(const StopDelay&) = delete;
};

/// What a piece of work answered.
struct SideResult {
  bool isDone = false;  // it came to its end
  std::string text;     // what it answered; what ended it where it is not done
};

/// Runs `work` for 0 to count - 1, each in a process of its own that begins as a copy of this
/// one, at most `jobs` at a time; results by number. `onDone` hears in this process how many
/// have ended. After a request to stop no more are begun, and those that run are asked to stop
/// too.
/// A piece that dies takes nothing with it: its result is not done and says how it ended.
HOST_API std::vector<SideResult> runSideBySide(std::size_t count, std::size_t jobs,
                                               const std::function<std::string(std::size_t)>& work,
                                               const std::function<void(std::size_t)>& onDone);

/// Whether the standard error stream is a terminal that shows progress.
HOST_API bool isErrorStreamTerminal();

}  // namespace quoin::os
