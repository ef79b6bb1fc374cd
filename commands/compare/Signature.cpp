#include "commands/compare/Signature.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <string_view>

#include "gemat3d.h"

namespace quoin::commands {

namespace {

/// Numbers agree to this many digits: files of 16 digits are read back to 15, and moving something
/// at coordinates of a million and back costs some of them.
constexpr double kRelative = 1e-11;
constexpr double kLeastNumber = 1e-9;

bool isOne(double a, double b, double least) {
  const double difference = std::fabs(a - b);
  return difference <= least || difference <= kRelative * std::max(std::fabs(a), std::fabs(b)) ||
         (std::isnan(a) && std::isnan(b));
}

std::uint64_t mixed(std::uint64_t hash, std::uint64_t value) {
  // Finalizer of SplitMix64 (Steele, Lea, Flood 2014).
  std::uint64_t z = hash + 0x9E3779B97F4A7C15ULL + value;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

std::uint64_t hashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325ULL;  // FNV-1a
  for (const char c : text) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
  }
  return hash;
}

/// The number of the cell of this size that a value is in; decimal numbers lie in the middle of
/// theirs where the size is a power of ten.
std::uint64_t cellOf(double value, double size) {
  const double cell = std::round(value / size);
  if (!std::isfinite(cell)) {
    return 1;
  }
  // Past 2^53 whole numbers are exact, and no integer may hold them.
  return std::hash<double>()(cell == 0.0 ? 0.0 : cell);
}

/// A power of ten that is at least `size`, give or take a millionth, so that sizes that differ by
/// rounding have the same.
double tenAbove(double size) {
  return size > 0.0 && std::isfinite(size)
             ? std::pow(10.0, std::ceil(std::log10(size * (1.0 - 1e-6))))
             : 0.0;
}

/// The cell of a number in cells that are as large as its digits allow; the size counts too, since
/// 15000 is in the same of its cells as 150000 is of larger ones.
std::uint64_t roundedCell(double value, double least) {
  const double size = std::max(tenAbove(least), tenAbove(std::fabs(value)) * kRelative);
  return mixed(cellOf(value, size), std::hash<double>()(size));
}

double extentOf(const SaidRecord& record, const Said& anchor) {
  double extent = 0.0;
  for (const Said& one : record.said) {
    if (one.type == Said::Type::Point) {
      extent = std::max({extent, std::fabs(one.x - anchor.x), std::fabs(one.y - anchor.y),
                         std::fabs(one.z - anchor.z)});
    }
  }
  return extent;
}

}  // namespace

bool Nearness::isOneLength(double a, double b) const {
  return isOne(a, b, length);
}

bool Nearness::isOneNumber(double a, double b) {
  return isOne(a, b, kLeastNumber);
}

AcGePoint3d worldPoint(const SaidRecord& record, const Said& point) {
  const AcGePoint3d place(point.x, point.y, point.z);
  if (!record.isInPlane ||
      (record.normal.x == 0.0 && record.normal.y == 0.0 && record.normal.z > 0.0)) {
    return place;
  }
  return AcGeMatrix3d().setToPlaneToWorld(record.normal) * place;
}

bool isGeometry(const SaidRecord& record, const Said& said) {
  const int code = said.code;
  switch (said.type) {
    case Said::Type::Point:
    case Said::Type::Vector:
      return true;
    case Said::Type::Text:
      return code == 0 || code == 2;  // the kind of a part; which block, pattern or shape
    case Said::Type::Number:
    case Said::Type::Length:
      break;
  }
  if (code >= 1000) {
    return code == kVertexCode;
  }
  switch (code) {
    case 45:
    case 63:
    case 90:
    case 421:
    case 441:
      return record.kind != "MTEXT";  // what is behind it
    case 48:
    case 60:
    case 62:
    case 284:
    case 370:
    case 420:
    case 440:
      return record.kind == "HATCH" && code == 60;
    default:
      return true;
  }
}

Signature signatureOf(const SaidRecord& record, const Nearness& nearness, double farthest) {
  Signature signature;
  const Said* anchor = nullptr;
  for (const Said& one : record.said) {
    if (one.type == Said::Type::Point) {
      anchor = &one;
      break;
    }
  }
  double shapeCell = tenAbove(nearness.length);
  if (anchor) {
    signature.hasAnchor = true;
    signature.anchor = worldPoint(record, *anchor);
    // What subtracting coordinates far from the origin leaves.
    constexpr double kLost = 1e-14;
    shapeCell = std::max(
        {shapeCell, tenAbove(extentOf(record, *anchor)) * kRelative, tenAbove(farthest) * kLost});
  }
  const std::uint64_t kind = hashOf(record.kind);
  signature.properties = signature.place = signature.shape = signature.words = kind;
  for (const Said& one : record.said) {
    const std::uint64_t label = mixed(static_cast<std::uint64_t>(one.code) << 32 | one.part,
                                      static_cast<std::uint64_t>(one.type));
    if (!isGeometry(record, one)) {
      signature.properties = mixed(signature.properties, label);
      signature.properties =
          mixed(signature.properties,
                one.type == Said::Type::Text ? hashOf(one.text) : roundedCell(one.x, kLeastNumber));
      continue;
    }
    signature.place = mixed(signature.place, label);
    signature.shape = mixed(signature.shape, label);
    if (one.type == Said::Type::Text || one.type == Said::Type::Point) {
      signature.words = mixed(signature.words, label);
    }
    const auto both = [&](std::uint64_t value) {
      signature.place = mixed(signature.place, value);
      signature.shape = mixed(signature.shape, value);
    };
    switch (one.type) {
      case Said::Type::Text:
        both(hashOf(one.text));
        signature.words = mixed(signature.words, hashOf(one.text));
        break;
      case Said::Type::Number:
        both(roundedCell(one.x, kLeastNumber));
        break;
      case Said::Type::Length:
        both(roundedCell(one.x, nearness.length));
        break;
      case Said::Type::Vector:
        for (const double value : {one.x, one.y, one.z}) {
          both(roundedCell(value, nearness.length));
        }
        break;
      case Said::Type::Point:
        for (const double value : {one.x, one.y, one.z}) {
          signature.place = mixed(signature.place, roundedCell(value, nearness.length));
        }
        for (const double value : {one.x - anchor->x, one.y - anchor->y, one.z - anchor->z}) {
          signature.shape = mixed(signature.shape, cellOf(value, shapeCell));
        }
        break;
    }
  }
  return signature;
}

}  // namespace quoin::commands
