// Solids, traces, faces and shapes.
//
// Source: Open Design Specification for .dwg files, chapters of these entities.
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

/// Four corners in the plane of the entity; DXF shows their common elevation with each.
void codeSolid(RecordCoder& coder, const DrawingFacts&) {
  coder.BT(39);
  const double elevation = coder.BD(30);
  for (int corner = 10; corner < 14; ++corner) {
    coder.point2RD(corner);
    if (corner != 10) {
      coder.implied(corner + 20, elevation);
    }
  }
  coder.BE(210);
}

void codeFace(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kHasNoFlags = -101;
  constexpr int kIsFlat = -102;
  if (!coder.since(Version::R2000)) {
    for (int corner = 10; corner < 14; ++corner) {
      coder.point3BD(corner);
    }
    coder.BS(70);
    return;
  }
  const bool hasNoFlags = coder.omits(kHasNoFlags, coder.nextInteger(70) == 0);
  const bool isFlat = coder.omits(kIsFlat, coder.nextDouble(30) == 0.0);
  double corner[3] = {coder.RD(10), coder.RD(20), 0.0};
  if (isFlat) {
    coder.implied(30, 0.0);
  } else {
    corner[2] = coder.RD(30);
  }
  for (int key = 11; key < 14; ++key) {
    const double former[3] = {corner[0], corner[1], corner[2]};
    coder.point3DD(key, former, corner);
  }
  if (hasNoFlags) {
    coder.impliedInteger(70, 0);
  } else {
    coder.BS(70);
  }
}

void codeShape(RecordCoder& coder, const DrawingFacts&) {
  // DXF has the shape's name, which stands in the shape file alone.
  constexpr int kShape = -111;
  constexpr int kShapeFile = -112;
  coder.point3BD(10);
  coder.BD(40, 1.0);
  coder.BD(50);
  coder.BD(41, 1.0);
  coder.BD(51);
  coder.BD(39);
  coder.BS(kShape);
  coder.point3BD(210);
  coder.H(kShapeFile, kHardPointer);
}

#define CORNERS "@AcDbTrace 10p 11p 12p 13p 39?0 210p?0,0,1"

constexpr Kind kKinds[] = {
    {28, "3DFACE", Family::Entity, codeFace, "@AcDbFace 10p 11p 12p 13p 70?0"},
    {31, "SOLID", Family::Entity, codeSolid, CORNERS},
    {32, "TRACE", Family::Entity, codeSolid, CORNERS},
    {33, "SHAPE", Family::Entity, codeShape, "@AcDbShape 39?0 10p 40 50a?0 41?1 51a?0 210p?0,0,1",
     true},
};

}  // namespace

std::span<const Kind> fillKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
