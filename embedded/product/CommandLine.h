// The command line's way into a module: a client module that offers commands to the shell
// announces a runner while it is initialised, and the program hands it the words it was
// called with.
#pragma once

#include "hostapi.h"

namespace quoin::product {

/// Runs a command line (the program's name first) and returns the exit code. Lets no
/// exception out.
using CommandLineRunner = int (*)(int argc, const char* const* argv);

/// Announces a runner; null takes it away. The module that announced one takes it away when
/// it is unloaded.
HOST_API void setCommandLineRunner(CommandLineRunner runner);
/// The announced runner; null if no module offers commands.
HOST_API CommandLineRunner commandLineRunner();

}  // namespace quoin::product
