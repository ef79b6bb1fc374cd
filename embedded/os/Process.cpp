#include "embedded/os/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <new>
#include <string_view>
#include <system_error>

namespace quoin::os {

namespace {

// What the signal handler reads and writes.
std::atomic<bool> s_isInterrupted{false};
std::atomic<int> s_lastRequest{0};  // its signal
std::atomic<int> s_delays{0};
std::atomic<bool> s_isWatching{false};
std::atomic<bool> s_hasWritten{false};
std::atomic<bool> s_isErrorTerminal{false};
std::atomic<pid_t> s_workingFor{0};  // the process that this one works for, if it does
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free,
              "they are used in a signal handler");

/// Of a worker that was asked to stop when it had written a file.
constexpr int kExitAfterWriting = kExitInterrupted + 1;

constexpr std::string_view kNothingWritten = "interrupted; every file is as it was";
constexpr std::string_view kWritten = "interrupted; the files that were written before stay";

/// Ends the process with the message; calls only what a signal handler may call. A worker says
/// nothing: the process that it works for does.
[[noreturn]] void endInterrupted() {
  if (s_workingFor == 0) {
    const auto say = [](std::string_view text) {
      return write(STDERR_FILENO, text.data(), text.size());
    };
    // On a terminal a line of progress may stand there.
    bool isSaid = !s_isErrorTerminal || say("\r\033[K") > 0;
    isSaid = say("quoin: ") > 0 && isSaid;
    isSaid = say(s_hasWritten ? kWritten : kNothingWritten) > 0 && isSaid;
    isSaid = say("\n") > 0 && isSaid;
    static_cast<void>(isSaid);  // nobody listens: the exit code says it too
  }
  _exit(s_workingFor != 0 && s_hasWritten ? kExitAfterWriting : kExitInterrupted);
}

void onRequest(int signalNumber, siginfo_t* info, void* /*context*/) {
  if (s_delays == 0) {
    endInterrupted();
  }
  const bool isSecond = s_isInterrupted.exchange(true) && s_lastRequest == signalNumber;
  s_lastRequest = signalNumber;
  // A worker may hear of one request twice: from the terminal and from whom it works for.
  if (isSecond && (s_workingFor == 0 || info->si_pid != s_workingFor)) {
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
  }
}

/// A piece of work that runs: its process and where its answer comes from.
struct Worker {
  std::size_t number;
  pid_t process;
  int answer;
  bool isAskedToStop = false;
};

/// How long a request to stop may wait before the workers hear of it.
constexpr int kLookMilliseconds = 100;

/// The last byte of an answer. One without it was cut short, whatever the process's exit code
/// says: a parent that ignores the ends of its children never hears that code.
constexpr char kDone = '+';
constexpr char kFailed = '-';

/// The whole text or nothing more to be done about it: a reader that is gone wants none.
void writeAll(int file, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t written = write(file, text.data() + done, text.size() - done);
    if (written > 0) {
      done += static_cast<std::size_t>(written);
    } else if (errno != EINTR) {
      return;
    }
  }
}

/// The work in the new process; never returns.
[[noreturn]] void workAndExit(int answer, std::size_t number,
                              const std::function<std::string(std::size_t)>& work) {
  // The delays belong to the process that this one is a copy of.
  s_workingFor = getppid();
  s_delays = 0;
  if (s_isInterrupted) {
    _exit(kExitInterrupted);
  }
  int code = 0;
  try {
    writeAll(answer, work(number) + kDone);
  } catch (const std::bad_alloc&) {
    writeAll(answer, std::string("there is not enough memory") + kFailed);
    code = 1;
  } catch (const std::exception& error) {
    writeAll(answer, std::string(error.what()) + kFailed);
    code = 1;
  } catch (...) {
    code = 1;
  }
  std::fflush(nullptr);
  _exit(code);  // the copied process's static objects are not its own to take down
}

/// Moves a descriptor above the standard streams, which may be closed: what the work prints must
/// not become its answer, nor an answer go into a file that is opened next.
int aboveStandardStreams(int file) {
  if (file < 0 || file > STDERR_FILENO) {
    return file;
  }
  const int moved = fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  close(file);
  return moved;
}

/// A pipe's two ends; false where the system has none.
bool makePipe(int (&ends)[2]) {
  if (pipe2(ends, O_CLOEXEC) != 0) {
    return false;
  }
  for (int& end : ends) {
    end = aboveStandardStreams(end);
  }
  if (ends[0] >= 0 && ends[1] >= 0) {
    return true;
  }
  for (const int end : ends) {
    if (end >= 0) {
      close(end);
    }
  }
  return false;
}

/// Begins a piece of work; -1 as its process where the system has no more of them.
Worker begin(std::size_t number, const std::function<std::string(std::size_t)>& work) {
  int ends[2];
  if (!makePipe(ends)) {
    return {number, -1, -1};
  }
  std::fflush(nullptr);  // or both processes would write what waits in the streams
  const pid_t process = fork();
  if (process == 0) {
    close(ends[0]);
    workAndExit(ends[1], number, work);
  }
  close(ends[1]);
  if (process < 0) {
    close(ends[0]);
    return {number, -1, -1};
  }
  return {number, process, ends[0]};
}

/// Takes what has arrived; false at the end of the answer.
bool takeAnswer(const Worker& worker, std::string& text) {
  char buffer[4096];
  const ssize_t size = read(worker.answer, buffer, sizeof buffer);
  if (size > 0) {
    text.append(buffer, static_cast<std::size_t>(size));
  }
  return size > 0 || (size < 0 && errno == EINTR);
}

/// How a process ended that left no whole answer.
std::string endText(int state) {
  if (WIFEXITED(state) && WEXITSTATUS(state) == kExitInterrupted) {
    return "interrupted";
  }
  if (WIFEXITED(state) && WEXITSTATUS(state) == kExitAfterWriting) {
    noteFileWritten();
    return "interrupted when it had written a file";
  }
  if (!WIFSIGNALED(state)) {
    return WIFEXITED(state) && WEXITSTATUS(state) != 0
               ? "the process ended with exit code " + std::to_string(WEXITSTATUS(state))
               : "the process ended without a whole answer";
  }
  const int number = WTERMSIG(state);
  const char* const name = strsignal(number);
  const std::string text =
      std::string("the process was ended: ") + (name ? name : "unknown signal");
  return number == SIGKILL ? text + " (as the system does when memory runs out)" : text;
}

/// Waits for the process and completes its result.
void finish(const Worker& worker, SideResult& result) {
  close(worker.answer);
  int state = 0;
  while (waitpid(worker.process, &state, 0) < 0 && errno == EINTR) {
  }
  const char last = result.text.empty() ? '\0' : result.text.back();
  result.isDone = last == kDone;
  if (last == kDone || last == kFailed) {
    result.text.pop_back();
  } else {
    result.text = endText(state);
  }
}

void askToStop(std::vector<Worker>& workers) {
  for (Worker& worker : workers) {
    if (!worker.isAskedToStop) {
      kill(worker.process, SIGTERM);
      worker.isAskedToStop = true;
    }
  }
}

}  // namespace

std::vector<SideResult> runSideBySide(std::size_t count, std::size_t jobs,
                                      const std::function<std::string(std::size_t)>& work,
                                      const std::function<void(std::size_t)>& onDone) {
  const StopDelay untilWorkersEnd;
  std::vector<SideResult> results(count);
  std::vector<Worker> workers;
  std::size_t next = 0;
  std::size_t done = 0;
  while (next < count || !workers.empty()) {
    while (next < count && workers.size() < std::max<std::size_t>(jobs, 1)) {
      if (isInterrupted()) {
        results[next++].text = "not begun: interrupted";
        continue;
      }
      const Worker worker = begin(next, work);
      if (worker.process < 0) {
        if (!workers.empty()) {
          break;  // try again when one of those that run has ended
        }
        results[next].text = "the system gives no process for it";
      } else {
        workers.push_back(worker);
      }
      ++next;
    }
    std::vector<pollfd> waits;
    waits.reserve(workers.size());
    for (const Worker& worker : workers) {
      waits.push_back({worker.answer, POLLIN, 0});
    }
    poll(waits.data(), waits.size(), workers.empty() ? 0 : kLookMilliseconds);
    if (isInterrupted()) {
      askToStop(workers);
    }
    for (std::size_t i = waits.size(); i-- > 0;) {
      if (waits[i].revents != 0 && !takeAnswer(workers[i], results[workers[i].number].text)) {
        finish(workers[i], results[workers[i].number]);
        workers.erase(workers.begin() + static_cast<std::ptrdiff_t>(i));
        onDone(++done);
      }
    }
  }
  return results;
}

std::string standardInputPath() {
  return "/dev/stdin";
}

std::filesystem::path programPath() {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::path() : path;
}

void reserveStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0 && errno == EBADF) {
      // The lowest free number is this one; opened so that it cannot be used as the stream.
      const int direction = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
      if (open("/dev/null", direction) < 0) {
        return;
      }
    }
  }
}

void watchForInterrupt() {
  s_isErrorTerminal = isErrorStreamTerminal();
  s_isWatching = true;
  struct sigaction action = {};
  action.sa_sigaction = onRequest;
  action.sa_flags = SA_SIGINFO;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool isInterrupted() {
  return s_isInterrupted;
}

void setInterrupted(bool interrupted) {
  s_isInterrupted = interrupted;
}

std::string interruptText() {
  return std::string(s_hasWritten ? kWritten : kNothingWritten);
}

void noteFileWritten() {
  s_hasWritten = true;
}

StopDelay::StopDelay() {
  ++s_delays;
}

StopDelay::~StopDelay() {
  // First the count: a request that comes now ends the process itself.
  if (--s_delays == 0 && s_isWatching && s_isInterrupted) {
    std::fflush(stdout);
    endInterrupted();
  }
}

bool isErrorStreamTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace quoin::os
