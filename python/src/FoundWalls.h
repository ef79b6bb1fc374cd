// Walls and rooms that plan reading has found, on their way to Python.
#pragma once

#include <pybind11/pybind11.h>

#include <map>
#include <string>
#include <vector>

#include "plan/FindWalls.h"
#include "plan/Rooms.h"

namespace quoin::python {

namespace py = pybind11;

/// The options of plan reading by name: min_width, max_width, max_opening, reach, min_confidence.
using Lengths = std::map<std::string, double>;

/// Those that are given, and the defaults for a drawing of which a unit is so many millimetres.
/// Fails: throws CommandError (Usage) for widths between which nothing fits.
plan::FindWallsOptions findWallsOptions(double millimetersPerUnit, const Lengths& given);

/// Corners as an array of their own.
py::array_t<double> cornersOf(const std::vector<AcGePoint2d>& corners);
py::array_t<std::int64_t> indicesOf(const std::vector<std::size_t>& indices);

/// What all walls have: lines, widths, confidence, openings, opening_lines, columns.
py::dict dictOf(const plan::WallPlan& plan, const std::vector<plan::PlanOutline>& columns);
/// The same and faces, curved, found_widths, left_over; face_lines, those that the indices of faces
/// and left_over mean.
py::dict dictOf(const plan::FoundWalls& found, const std::vector<plan::PlanLine>& faceLines);

/// Each as a dict.
py::list roomsOf(const plan::FoundRooms& found);

}  // namespace quoin::python
