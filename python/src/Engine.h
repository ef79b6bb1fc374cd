// The thread that all of Quoin's work for Python happens on. The host, the scale of its project and
// the drawings are there once in a process, so pieces of work go through it one after another: this
// is the lock of the package. Threads of Python that wait for it hold no lock of the interpreter.
#pragma once

#include <pybind11/pybind11.h>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace quoin::python {

namespace py = pybind11;

/// Runs the work on Quoin's thread and waits for its end, with the interpreter's lock held before
/// and after. `progress` is None, or is called with the share that is done, 0 to 1, where the work
/// tells it.
/// The work must own what it uses: on Ctrl-C, or when `progress` throws, it is asked to stop, and
/// where it does not within a second it goes on alone and nobody waits for it.
/// Fails: throws what the work throws, and py::error_already_set (KeyboardInterrupt, what
/// `progress` throws).
void runOnQuoinThread(std::function<void()> work, const py::object& progress);

/// The same with a result.
template <class Work>
auto onQuoinThread(Work work, const py::object& progress = py::none()) {
  using Result = decltype(work());
  const auto result = std::make_shared<std::optional<Result>>();
  runOnQuoinThread([work = std::move(work), result]() mutable { result->emplace(work()); },
                   progress);
  return std::move(**result);
}

/// Has the work done some time, in its turn; it must not throw.
void postToQuoinThread(std::function<void()> work);

/// Waits until nothing is left to do; called without the interpreter's lock. False when the time
/// is over before.
bool waitUntilIdle(double seconds);

/// From now on what is posted is left undone: the process ends, and takes drawings with it.
void leaveUndone();

/// Around a fork: no work begins from the first to the one behind it. The child begins with a
/// thread of its own.
void holdBeforeFork();
void goOnInParent();
void beginAnewInChild();

/// Sets how near lines must come to touch, for the work that is running; returns that distance as
/// the project has it.
/// Fails: throws CommandError for what is no length above zero.
double setCaptureDistance(double distance);

}  // namespace quoin::python
