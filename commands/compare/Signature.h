// What a record says as a few numbers, so that equal ones among many are found by sorting.
#pragma once

#include <cstdint>

#include "commands/compare/SaidRecord.h"
#include "gepnt3d.h"

namespace quoin::commands {

/// How near two numbers must be to count as one.
struct Nearness {
  /// Of coordinates and lengths, in drawing units.
  double length = 1e-9;

  /// Whether two coordinates or lengths are one: within `length`, or where both are so far from 0
  /// that as many digits as matter agree.
  bool isOneLength(double a, double b) const;
  /// The same for angles, factors and all other numbers.
  static bool isOneNumber(double a, double b);
};

/// Equal for records that say the same, but for numbers that differ by rounding alone.
struct Signature {
  std::uint64_t properties = 0;  // layer, colour, text, ...
  std::uint64_t place = 0;       // kind and geometry where it is
  std::uint64_t shape = 0;       // kind and geometry wherever it is
  std::uint64_t words = 0;       // kind and geometry but for its numbers
  AcGePoint3d anchor;            // the first point, in world coordinates
  bool hasAnchor = false;
};

/// `farthest` is how far from the origin places of either drawing are, for what rounding leaves
/// of a shape there.
Signature signatureOf(const SaidRecord& record, const Nearness& nearness, double farthest);

/// Whether what is said with this code tells where and how large something is; else it is a
/// property such as the layer.
bool isGeometry(const SaidRecord& record, const Said& said);

/// A point of the record in world coordinates.
AcGePoint3d worldPoint(const SaidRecord& record, const Said& point);

}  // namespace quoin::commands
