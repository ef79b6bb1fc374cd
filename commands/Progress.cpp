#include "commands/Progress.h"

#include <fmt/format.h>

#include <cstdio>

#include "commands/CommandError.h"
#include "embedded/os/Process.h"

namespace quoin::commands {

namespace {
// Work that ends sooner needs no progress; more often than this nobody can read it.
constexpr std::chrono::milliseconds kPatience{700};
constexpr std::chrono::milliseconds kInterval{100};
}  // namespace

bool Progress::s_isSilent = false;

Progress::Progress(std::string work)
    : m_work(std::move(work)), m_begin(std::chrono::steady_clock::now()), m_shown(m_begin) {}

Progress::~Progress() {
  if (m_isShown) {
    fmt::print(stderr, "\r\033[K");
  }
}

bool Progress::report(double fraction) {
  const auto now = std::chrono::steady_clock::now();
  if (!s_isSilent && now - m_begin > kPatience && now - m_shown > kInterval &&
      os::isErrorStreamTerminal()) {
    fmt::print(stderr, "\r{} {:3.0f} %", m_work, fraction * 100.0);
    std::fflush(stderr);
    m_shown = now;
    m_isShown = true;
  }
  return !os::isInterrupted();
}

void Progress::checkInterrupt() {
  if (os::isInterrupted()) {
    throw CommandError(ExitCode::Interrupted, os::interruptText());
  }
}

void Progress::silence() {
  s_isSilent = true;
}

}  // namespace quoin::commands
