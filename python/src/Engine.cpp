#include "python/src/Engine.h"

#include <fmt/format.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>

#include "ProjectScale.h"
#include "commands/CommandError.h"
#include "commands/Progress.h"
#include "commands/ProgressListener.h"
#include "embedded/os/Process.h"
#include "embedded/product/HostApplication.h"

namespace quoin::python {

namespace {

/// How often a waiting thread looks for Ctrl-C and tells of progress.
constexpr std::chrono::milliseconds kLook{50};
/// Work that can be stopped ends within this time.
constexpr std::chrono::seconds kPatience{1};

struct Job {
  std::function<void()> work;
  std::exception_ptr error;
  bool isDone = false;     // the following by the engine's mutex
  bool isDropped = false;  // nobody waits for it any more
  std::atomic<double> fraction{std::numeric_limits<double>::quiet_NaN()};
};
using JobPointer = std::shared_ptr<Job>;

/// The job hears how far its work is for as long as this lives.
class Listening {
 public:
  explicit Listening(Job& job) {
    commands::tellProgress([&job](double fraction) { job.fraction = fraction; });
  }
  ~Listening() { commands::tellProgress({}); }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;
};

class Engine {
 public:
  JobPointer post(std::function<void()> work) {
    auto job = std::make_shared<Job>();
    job->work = std::move(work);
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_jobs.push_back(job);
      if (!m_thread) {
        m_thread = std::make_unique<std::thread>([this] { serve(); });
        m_thread->detach();
      }
    }
    m_wanted.notify_one();
    return job;
  }

  /// Whether it is done by then.
  bool waitFor(const JobPointer& job, std::chrono::milliseconds time) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_ended.wait_for(lock, time, [&] { return job->isDone; });
  }

  void drop(const JobPointer& job) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    job->isDropped = true;
    if (m_current == job) {
      os::setInterrupted(true);
    }
  }

  bool waitUntilIdle(std::chrono::duration<double> time) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_ended.wait_for(lock, time, [&] { return isIdle(); });
  }

  void hold() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_isHeld = true;
    m_ended.wait(lock, [&] { return !m_current; });
  }
  void goOn() {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      m_isHeld = false;
    }
    m_wanted.notify_one();
  }

 private:
  bool isIdle() const { return m_jobs.empty() && !m_current; }

  [[noreturn]] void serve() {
    // It lives as long as the process: drawings and work may end in any order.
    static HostApplication* host = nullptr;
    for (;;) {
      JobPointer job;
      {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wanted.wait(lock, [&] { return !m_jobs.empty() && !m_isHeld; });
        job = m_jobs.front();
        m_jobs.pop_front();
        m_current = job;
      }
      try {
        if (!host) {
          commands::Progress::silence();
          host = new HostApplication();
        }
        run(*job);
      } catch (...) {
        job->error = std::current_exception();
      }
      job->work = nullptr;  // what it holds is gone before anybody hears of its end
      {
        const std::lock_guard<std::mutex> lock(m_mutex);
        os::setInterrupted(false);
        m_current.reset();
        job->isDone = true;
      }
      m_ended.notify_all();
    }
  }

  void run(Job& job) {
    {
      const std::lock_guard<std::mutex> lock(m_mutex);
      if (job.isDropped) {
        return;
      }
    }
    // Drawings and algorithms look for requests to stop where one of these lives.
    const os::StopDelay delay;
    const Listening listening(job);
    job.work();
  }

  std::mutex m_mutex;
  std::condition_variable m_wanted;
  std::condition_variable m_ended;
  std::deque<JobPointer> m_jobs;
  JobPointer m_current;
  bool m_isHeld = false;
  std::unique_ptr<std::thread> m_thread;
};

/// Never deleted: its thread may outlive all else.
Engine*& engine() {
  static Engine* instance = new Engine();
  return instance;
}

/// Libraries may be taken down already while drawings end.
std::atomic<bool> s_isOver{false};

/// Tells of progress that was made since the last time.
class Listener {
 public:
  explicit Listener(const py::object& progress) : m_progress(progress) {}

  void hear(double fraction) {
    if (!m_progress.is_none() && !std::isnan(fraction) && fraction != m_told) {
      m_told = fraction;
      m_progress(fraction);
    }
  }

 private:
  const py::object& m_progress;
  double m_told = std::numeric_limits<double>::quiet_NaN();
};

}  // namespace

void runOnQuoinThread(std::function<void()> work, const py::object& progress) {
  Engine& quoin = *engine();
  const JobPointer job = quoin.post(std::move(work));
  Listener listener(progress);
  try {
    for (bool isDone = false; !isDone;) {
      {
        const py::gil_scoped_release release;
        isDone = quoin.waitFor(job, kLook);
      }
      if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
      }
      listener.hear(job->fraction);
    }
  } catch (...) {
    quoin.drop(job);
    const py::gil_scoped_release release;
    quoin.waitFor(job, kPatience);
    throw;
  }
  if (job->error) {
    std::rethrow_exception(job->error);
  }
  listener.hear(1.0);
}

void postToQuoinThread(std::function<void()> work) {
  if (!s_isOver) {
    engine()->post(std::move(work));
  }
}

void leaveUndone() {
  s_isOver = true;
}

bool waitUntilIdle(double seconds) {
  return engine()->waitUntilIdle(std::chrono::duration<double>(seconds));
}

void holdBeforeFork() {
  engine()->hold();
}

void goOnInParent() {
  engine()->goOn();
}

void beginAnewInChild() {
  // The thread is the parent's; what it left behind must not be touched.
  engine() = new Engine();
}

double setCaptureDistance(double distance) {
  const double scale = kCaptureLength / distance;
  const double captured = GetCaptureDistance(scale);
  if (!(distance > 0.0) || !std::isfinite(distance) || !std::isfinite(scale) ||
      !std::isfinite(captured) || !(captured > 0.0)) {
    throw commands::CommandError(commands::ExitCode::Usage,
                                 fmt::format("capture: {} is no distance above zero", distance));
  }
  HostApplication::current()->platform().projects().current()->setScale(scale);
  return captured;
}

}  // namespace quoin::python
