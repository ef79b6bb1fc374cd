// Walls that plan reading has found, on their way to Python.
#pragma once

#include <pybind11/pybind11.h>

#include <map>
#include <string>

#include "plan/FindWalls.h"

namespace quoin::python {

namespace py = pybind11;

/// The options of plan reading by name: min_width, max_width, max_opening, reach, min_confidence.
using Lengths = std::map<std::string, double>;

/// Those that are given, and the defaults for a drawing of which a unit is so many millimetres.
/// Fails: throws CommandError (Usage) for widths between which nothing fits.
plan::FindWallsOptions findWallsOptions(double millimetersPerUnit, const Lengths& given);

/// lines, widths, confidence, openings, faces, columns, left_over; and face_lines, those that the
/// indices of faces and left_over mean.
py::dict dictOf(const plan::FoundWalls& found, const std::vector<plan::PlanLine>& faceLines);

}  // namespace quoin::python
