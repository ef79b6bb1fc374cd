// Hatches: their boundary paths, pattern lines and gradients. Paths and pattern lines are written
// in DXF in the order of the record.
//
// Source: Open Design Specification for .dwg files, "HATCH".
#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

/// Keys of a path's fields: their codes have other meanings outside of it.
constexpr int path(int code) {
  return code + kKeyStep;
}

void codeGradient(RecordCoder& coder) {
  constexpr int kColors = -101;
  const bool isGradient = coder.BL(450) != 0;
  // DXF shows the rest of a gradient only.
  const auto key = [isGradient](int code) { return isGradient ? code : -code; };
  coder.BL(key(451));
  coder.BD(key(460));
  coder.BD(key(461));
  coder.BL(key(452));
  coder.BD(key(462));
  const std::size_t colors = coder.countBL(key(453), key(463));
  for (std::size_t i = 0; i < colors && !coder.hasFailed(); ++i) {
    coder.BD(key(463));
    codeShownColor(coder, key(63), key(421), kColors);
  }
  coder.TV(key(470));
}

void codeSplineEdge(RecordCoder& coder) {
  coder.BL(path(94));
  const bool isRational = coder.B(path(73)) != 0;
  coder.B(path(74));
  const std::size_t knots = coder.partsBL(path(95));
  const std::size_t points = coder.partsBL(path(96));
  for (std::size_t i = 0; i < knots && !coder.hasFailed(); ++i) {
    coder.BD(path(40));
  }
  for (std::size_t i = 0; i < points && !coder.hasFailed(); ++i) {
    coder.point2RD(path(10));
    if (isRational) {
      coder.BD(path(42), 1.0);
    }
  }
  if (!coder.since(Version::R2010)) {
    return;
  }
  const std::size_t fitPoints = coder.partsBL(path(97));
  for (std::size_t i = 0; i < fitPoints && !coder.hasFailed(); ++i) {
    coder.point2RD(path(11));
  }
  if (fitPoints != 0) {
    coder.point2RD(path(12));
    coder.point2RD(path(13));
  }
}

void codeEdge(RecordCoder& coder) {
  enum Edge : std::int64_t { Line = 1, Arc = 2, Ellipse = 3, Spline = 4 };
  const std::int64_t edge = coder.RC(path(72));
  switch (edge) {
    case Line:
      coder.point2RD(path(10));
      coder.point2RD(path(11));
      return;
    case Arc:
    case Ellipse:
      coder.point2RD(path(10));
      if (edge == Ellipse) {
        coder.point2RD(path(11));
      }
      coder.BD(path(40));
      coder.BD(path(50));
      coder.BD(path(51));
      coder.B(path(73));
      return;
    case Spline:
      codeSplineEdge(coder);
      return;
    default:
      coder.fail();
  }
}

void codePolylinePath(RecordCoder& coder) {
  const bool hasBulges = coder.B(path(72)) != 0;
  coder.B(path(73));
  const std::size_t vertices = coder.partsBL(path(93));
  for (std::size_t i = 0; i < vertices && !coder.hasFailed(); ++i) {
    coder.point2RD(path(10));
    if (hasBulges) {
      coder.BD(path(42));
    }
  }
}

/// Returns whether the path was made from what a point picked encloses.
bool codePath(RecordCoder& coder) {
  constexpr std::int64_t kPolyline = 2;
  constexpr std::int64_t kDerived = 4;
  const std::int64_t flags = coder.BL(path(92));
  if ((flags & kPolyline) != 0) {
    codePolylinePath(coder);
  } else {
    const std::size_t edges = coder.partsBL(path(93));
    for (std::size_t i = 0; i < edges && !coder.hasFailed(); ++i) {
      codeEdge(coder);
    }
  }
  const std::size_t sources = coder.partsBL(path(97));
  for (std::size_t i = 0; i < sources && !coder.hasFailed(); ++i) {
    coder.H(path(330), kSoftPointer);
  }
  return (flags & kDerived) != 0;
}

void codePattern(RecordCoder& coder) {
  coder.BD(52);
  coder.BD(41, 1.0);
  coder.B(77);
  const std::size_t lines = coder.partsBS(78);
  for (std::size_t i = 0; i < lines && !coder.hasFailed(); ++i) {
    coder.BD(53);
    coder.BD(43);
    coder.BD(44);
    coder.BD(45);
    coder.BD(46);
    const std::size_t dashes = coder.partsBS(79);
    for (std::size_t j = 0; j < dashes && !coder.hasFailed(); ++j) {
      coder.BD(49);
    }
  }
}

void codeHatch(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kSeed = 10 + 2 * kKeyStep;
  if (coder.since(Version::R2004)) {
    codeGradient(coder);
  }
  coder.implied(10, 0.0);
  coder.implied(20, 0.0);
  coder.BD(30);
  coder.point3BD(210);
  coder.TV(2);
  const bool isSolid = coder.B(70) != 0;
  coder.B(71);
  const std::size_t paths = coder.partsBL(91);
  bool isDerived = false;
  for (std::size_t i = 0; i < paths && !coder.hasFailed(); ++i) {
    isDerived = codePath(coder) || isDerived;
  }
  coder.BS(75);
  coder.BS(76);
  if (!isSolid) {
    codePattern(coder);
  }
  if (isDerived) {
    coder.BD(47);
  }
  const std::size_t seeds = coder.partsBL(98);
  for (std::size_t i = 0; i < seeds && !coder.hasFailed(); ++i) {
    coder.point2RD(kSeed);
  }
}

constexpr Kind kKinds[] = {
    {78, "HATCH", Family::Entity, codeHatch,
     "@AcDbHatch 10p 210p 2 70 71 91 [ 92#1 93#1 72#1 73#1 74#1 94#1 95#1 96#1 40#1 10q#1 42#1 "
     "97#1 11q#1 12q#1 13q#1 50a#1 51a#1 330#1 ] 75 76 52a 41 77 78 [ 53a 43 44 45 46 79 49 ] "
     "47 98 ( 10q#2 ) 450?0 451 460 461 452 462 453 ( 463 63 421 ) 470"},
};

}  // namespace

std::span<const Kind> hatchKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
