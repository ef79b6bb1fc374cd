#include "embedded/os/Process.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <system_error>

namespace quoin::os {

namespace {

std::atomic<bool> s_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "the flag is set in a signal handler");

void onRequest(int signalNumber) {
  if (s_interrupted.exchange(true)) {
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
  }
}

}  // namespace

std::filesystem::path programPath() {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : path;
}

void watchForInterrupt() {
  struct sigaction action = {};
  action.sa_handler = onRequest;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() {
  return s_interrupted;
}

void setInterrupted(bool interrupted) {
  s_interrupted = interrupted;
}

bool isErrorStreamTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace quoin::os
