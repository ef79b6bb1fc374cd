// The intersection of two areas whose outlines cross clearly, without a general overlay: a walk
// from crossing to crossing, along whichever outline runs inside the other (K. Weiler and P.
// Atherton, Hidden Surface Removal Using Polygon Area Sorting, 1977). Most rooms and houses are so,
// and of two outlines that cross at few edges nearly all edges are only looked at in passing.
#pragma once

#include <optional>
#include <vector>

namespace quoin::db {

/// The corners of an outline, x and y in turn; the last corner is the first.
using RingBuffer = std::vector<double>;

/// Where the segments from `own` to own + 2 and from `other` to other + 2 cross, as x and y; false
/// for not at all.
using CrossingPoint = bool (*)(const double* own, const double* other, double* point);

/// The outlines of what two areas have in common, clockwise. Neither outline may cross or touch
/// itself. Answers nothing where that takes more care: outlines that do not cross at all, and
/// corners and crossings that lie so close to an edge or to each other that rounding might tell
/// which side they are on. `crossingPoint` is asked for segments that surely cross, with their
/// ends in the order of the buffers.
std::optional<std::vector<RingBuffer>> clearIntersection(const RingBuffer& own,
                                                         const RingBuffer& other,
                                                         CrossingPoint crossingPoint);

}  // namespace quoin::db
