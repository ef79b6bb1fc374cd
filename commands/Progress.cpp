#include "commands/Progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>
#include <utility>

#include "commands/CommandError.h"
#include "commands/ProgressListener.h"
#include "embedded/os/Process.h"

namespace quoin::commands {

namespace {
// Work that ends sooner needs no progress; more often than this nobody can read it.
constexpr std::chrono::milliseconds kPatience{700};
constexpr std::chrono::milliseconds kInterval{100};
constexpr std::size_t kStepsPerLook = 1024;

std::function<void(double)> s_listener;

/// Back to the begin of a line that is empty: another work's line may have been longer.
constexpr const char* kNewLine = "\r\033[K";

void clearLine() {
  fmt::print(stderr, "{}", kNewLine);
  std::fflush(stderr);
}

/// Shows how long something has been running for as long as it lives. Work that runs meanwhile
/// starts no processes: they would get a copy of this one's state in the middle of a step.
class Stopwatch {
 public:
  explicit Stopwatch(const std::string& work) : m_thread([this, work] { show(work); }) {}
  ~Stopwatch() {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_isOver = true;
    }
    m_end.notify_one();
    m_thread.join();
  }
  Stopwatch(const Stopwatch&) = delete;
  Stopwatch& operator=(const Stopwatch&) = delete;

 private:
  void show(const std::string& work) {
    const auto begin = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_end.wait_for(lock, kPatience, [this] { return m_isOver; })) {
      return;
    }
    do {
      const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
      fmt::print(stderr, "{}{} {:.0f} s", kNewLine, work, passed.count());
      std::fflush(stderr);
    } while (!m_end.wait_for(lock, kInterval, [this] { return m_isOver; }));
    clearLine();
  }

  std::mutex m_mutex;
  std::condition_variable m_end;
  bool m_isOver = false;
  std::thread m_thread;  // the last, since it uses the others
};
}  // namespace

bool Progress::s_isSilent = false;

Progress::Progress(std::string work)
    : m_work(std::move(work)), m_begin(std::chrono::steady_clock::now()), m_shown(m_begin) {}

Progress::~Progress() {
  if (m_isShown) {
    clearLine();
  }
}

bool Progress::report(double fraction) {
  if (s_listener) {
    s_listener(fraction);
  }
  const auto now = std::chrono::steady_clock::now();
  if (!s_isSilent && now - m_begin > kPatience && now - m_shown > kInterval &&
      os::isErrorStreamTerminal()) {
    fmt::print(stderr, "{}{} {:3.0f} %", kNewLine, m_work, fraction * 100.0);
    std::fflush(stderr);
    m_shown = now;
    m_isShown = true;
  }
  return !os::isInterrupted();
}

bool Progress::step(std::size_t done, std::size_t all) {
  return done % kStepsPerLook != 0 ||
         report(std::min(1.0, static_cast<double>(done) / static_cast<double>(all)));
}

void Progress::during(const std::string& work, const std::function<void()>& run) {
  if (s_isSilent || !os::isErrorStreamTerminal()) {
    run();
    return;
  }
  const Stopwatch stopwatch(work);
  run();
}

void Progress::checkInterrupt() {
  if (os::isInterrupted()) {
    throw CommandError(ExitCode::Interrupted, os::interruptText());
  }
}

void Progress::silence() {
  s_isSilent = true;
}

void tellProgress(std::function<void(double)> listener) {
  s_listener = std::move(listener);
}

}  // namespace quoin::commands
