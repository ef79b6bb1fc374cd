// The parts of the extension module; each source defines one.
#pragma once

#include <pybind11/pybind11.h>

namespace quoin::python {

namespace py = pybind11;

void addEngine(py::module_& module);
void addLines(py::module_& module);
void addWalls(py::module_& module);
void addPlanReading(py::module_& module);
void addDrawing(py::module_& module);

}  // namespace quoin::python
