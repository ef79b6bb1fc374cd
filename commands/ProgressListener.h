// Progress of long work for who is no terminal.
#pragma once

#include <functional>

namespace quoin::commands {

/// From now on the listener hears of every fraction that a Progress is told; null for nobody. It is
/// called by the thread that works, and must neither throw nor take long.
void tellProgress(std::function<void(double)> listener);

}  // namespace quoin::commands
