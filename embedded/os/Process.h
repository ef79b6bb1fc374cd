// The running process: where its program lies, and requests to stop it. The first Ctrl-C or
// termination request only sets a flag that long work asks for, so that it can leave every
// file whole; a second one ends the process at once.
#pragma once

#include <filesystem>

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

/// Whether the standard error stream is a terminal that shows progress.
HOST_API bool isErrorStreamTerminal();

}  // namespace quoin::os
