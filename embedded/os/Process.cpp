#include "embedded/os/Process.h"

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

/// A piece of work that runs: its process and where its answer comes from.
struct Worker {
  std::size_t number;
  pid_t process;
  int answer;
};

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

/// The work in the new process; never returns. Exit code 0 says that the answer is whole.
[[noreturn]] void workAndExit(int answer, std::size_t number,
                              const std::function<std::string(std::size_t)>& work) {
  int code = 0;
  try {
    writeAll(answer, work(number));
  } catch (const std::exception& error) {
    writeAll(answer, error.what());
    code = 1;
  } catch (...) {
    code = 1;
  }
  std::fflush(nullptr);
  _exit(code);  // the copied process's static objects are not its own to take down
}

/// Begins a piece of work; -1 as its process where the system has no more of them.
Worker begin(std::size_t number, const std::function<std::string(std::size_t)>& work) {
  int ends[2];
  if (pipe(ends) != 0) {
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

/// Waits for the process and completes its result.
void finish(const Worker& worker, SideResult& result) {
  close(worker.answer);
  int state = 0;
  while (waitpid(worker.process, &state, 0) < 0 && errno == EINTR) {
  }
  result.isDone = WIFEXITED(state) && WEXITSTATUS(state) == 0;
  if (WIFSIGNALED(state)) {
    const char* const name = strsignal(WTERMSIG(state));
    result.text = std::string("the process was ended: ") + (name ? name : "unknown signal");
  }
}

}  // namespace

std::vector<SideResult> runSideBySide(std::size_t count, std::size_t jobs,
                                      const std::function<std::string(std::size_t)>& work,
                                      const std::function<void(std::size_t)>& onDone) {
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
    poll(waits.data(), waits.size(), workers.empty() ? 0 : -1);
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
