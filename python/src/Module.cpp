// The extension module quoin._quoin. Its Python side (quoin/) is what people call: it checks and
// shapes arguments, so the functions here take them as they are.
#include <pybind11/pybind11.h>

#include <exception>
#include <utility>

#include "commands/CommandError.h"
#include "plan/Geos.h"
#include "python/src/Bindings.h"
#include "python/src/Engine.h"

namespace quoin::python {

namespace {

/// quoin.Error with the words of a failure and the program's exit code for it.
void setError(const char* words, commands::ExitCode code) {
  const py::object type = py::module_::import("quoin._errors").attr("Error");
  const py::object error = type(words, static_cast<int>(code));
  PyErr_SetObject(type.ptr(), error.ptr());
}

void translate(std::exception_ptr failure) {
  try {
    if (failure) {
      std::rethrow_exception(std::move(failure));
    }
  } catch (const commands::CommandError& error) {
    setError(error.what(), error.code);
  } catch (const plan::GeosError& error) {
    setError(error.what(), commands::ExitCode::InternalError);
  }
}

}  // namespace

void addEngine(py::module_& module) {
  using Released = py::call_guard<py::gil_scoped_release>;
  module.def("wait_until_idle", &waitUntilIdle, py::arg("seconds"), Released());
  module.def("leave_undone", &leaveUndone);
  module.def("hold_before_fork", &holdBeforeFork, Released());
  module.def("go_on_in_parent", &goOnInParent);
  module.def("begin_anew_in_child", &beginAnewInChild);
  module.attr("version") = QUOIN_VERSION;
}

}  // namespace quoin::python

PYBIND11_MODULE(_quoin, module) {
  module.doc() = "Quoin's functions as they are; use the package quoin.";
  quoin::python::py::register_exception_translator(&quoin::python::translate);
  quoin::python::addEngine(module);
  quoin::python::addLines(module);
  quoin::python::addWalls(module);
  quoin::python::addPlanReading(module);
  quoin::python::addDrawing(module);
}
