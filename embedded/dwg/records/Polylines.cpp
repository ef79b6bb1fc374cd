// Polylines of all sorts and their vertices.
//
// Source: Open Design Specification for .dwg files, chapters of these entities.
#include <algorithm>

#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

// --- lightweight ----------------------------------------------------------------------------

constexpr std::int64_t kHasExtrusion = 0x1;
constexpr std::int64_t kHasThickness = 0x2;
constexpr std::int64_t kHasWidth = 0x4;
constexpr std::int64_t kHasElevation = 0x8;
constexpr std::int64_t kHasBulges = 0x10;
constexpr std::int64_t kHasWidths = 0x20;
constexpr std::int64_t kGeneratesLinetype = 0x100;
constexpr std::int64_t kIsClosed = 0x200;
constexpr std::int64_t kHasIds = 0x400;
constexpr std::int64_t kDxfClosed = 1;
constexpr std::int64_t kDxfGeneratesLinetype = 128;

std::int64_t lightFlags(RecordCoder& coder) {
  if (coder.isReading()) {
    const std::int64_t flags = coder.BS(kHiddenFlags);
    coder.impliedInteger(70, ((flags & kIsClosed) != 0 ? kDxfClosed : 0) |
                                 ((flags & kGeneratesLinetype) != 0 ? kDxfGeneratesLinetype : 0));
    return flags;
  }
  const std::int64_t shown = coder.nextInteger(70);
  coder.impliedInteger(70, 0);
  const bool hasNormal = coder.nextDouble(210) != 0.0 || coder.nextDouble(220) != 0.0 ||
                         coder.nextDouble(230, 1.0) != 1.0;
  std::int64_t flags = ((shown & kDxfClosed) != 0 ? kIsClosed : 0) |
                       ((shown & kDxfGeneratesLinetype) != 0 ? kGeneratesLinetype : 0) |
                       (hasNormal ? kHasExtrusion : 0) |
                       (coder.nextDouble(39) != 0.0 ? kHasThickness : 0) |
                       (coder.nextDouble(43) != 0.0 ? kHasWidth : 0) |
                       (coder.nextDouble(38) != 0.0 ? kHasElevation : 0) |
                       (coder.hasOtherThanZero(42) ? kHasBulges : 0) |
                       (coder.hasOtherThanZero(40) || coder.hasOtherThanZero(41) ? kHasWidths : 0) |
                       (coder.hasOtherThanZero(91) ? kHasIds : 0);
  // What the file says although it need not stays said.
  constexpr std::int64_t kPresence =
      kHasExtrusion | kHasThickness | kHasWidth | kHasElevation | kHasBulges | kHasWidths | kHasIds;
  flags |= coder.nextInteger(kHiddenFlags) & kPresence;
  const Value* const former = coder.next(kHiddenFlags);
  coder.dataOut().bitShort(static_cast<std::uint16_t>(flags),
                           former == nullptr ? -1 : former->form);
  return flags;
}

void codeLightPolyline(RecordCoder& coder, const DrawingFacts&) {
  const std::int64_t flags = lightFlags(coder);
  if ((flags & kHasWidth) != 0) {
    coder.BD(43);
  } else if ((flags & kHasWidths) == 0) {
    coder.implied(43, 0.0);
  }
  if ((flags & kHasElevation) != 0) {
    coder.BD(38);
  }
  if ((flags & kHasThickness) != 0) {
    coder.BD(39);
  }
  if ((flags & kHasExtrusion) != 0) {
    coder.point3BD(210);
  }
  constexpr int kBulgeCount = -131;
  constexpr int kIdCount = -132;
  constexpr int kWidthCount = -133;
  const std::size_t vertices = coder.countBL(90, 10);
  const auto countIf = [&](std::int64_t flag, int key) -> std::size_t {
    if ((flags & flag) == 0) {
      return 0;
    }
    const std::size_t count = coder.countBL(key, 10);
    return std::min(count, vertices);
  };
  const std::size_t bulges = countIf(kHasBulges, kBulgeCount);
  const std::size_t ids = countIf(kHasIds, kIdCount);
  const std::size_t widths = countIf(kHasWidths, kWidthCount);
  double x = 0.0;
  double y = 0.0;
  for (std::size_t i = 0; i < vertices && !coder.hasFailed(); ++i) {
    const bool isRaw = i == 0 || !coder.since(Version::R2000);
    x = isRaw ? coder.RD(10) : coder.DD(10, x);
    y = isRaw ? coder.RD(20) : coder.DD(20, y);
  }
  for (std::size_t i = 0; i < bulges && !coder.hasFailed(); ++i) {
    coder.BD(42);
  }
  for (std::size_t i = 0; i < ids && !coder.hasFailed(); ++i) {
    coder.BL(91);
  }
  for (std::size_t i = 0; i < widths && !coder.hasFailed(); ++i) {
    coder.BD(40);
    coder.BD(41);
  }
}

/// Widths of the vertices are there for all of them or for none.
void settleWidths(RecordValues& values) {
  constexpr int kWidths[] = {40, 41};
  const Value* const flags = values.first(kHiddenFlags);
  if (flags != nullptr && (flags->integer & kHasWidths) != 0) {
    return;
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    if ((values[i].key == kWidths[0] || values[i].key == kWidths[1]) && values[i].number != 0.0) {
      return;
    }
  }
  values.removeAll(kWidths[0]);
  values.removeAll(kWidths[1]);
}

// --- with vertices of their own -------------------------------------------------------------

std::size_t ownedCount(RecordCoder& coder) {
  constexpr int kOwnedCount = -134;
  return coder.since(Version::R2004) ? coder.countBL(kOwnedCount, kOwned) : 0;
}

void codePolyline2d(RecordCoder& coder, const DrawingFacts&) {
  coder.BS(70);
  coder.BS(75);
  coder.BD(40);
  coder.BD(41);
  coder.BT(39);
  coder.implied(10, 0.0);
  coder.implied(20, 0.0);
  coder.BD(30);
  coder.BE(210);
  codeOwned(coder, ownedCount(coder));
}

void codePolyline3d(RecordCoder& coder, const DrawingFacts&) {
  constexpr std::int64_t kClosed = 1;
  constexpr std::int64_t kSplineFit = 4;
  constexpr std::int64_t kIs3d = 8;
  // Two bytes: the kind of spline (75 is 5 or 6), and whether it is closed.
  constexpr int kSplineByte = -141;
  constexpr int kClosedByte = -142;
  if (coder.isReading()) {
    const std::int64_t spline = coder.RC(kSplineByte);
    const std::int64_t closed = coder.RC(kClosedByte);
    coder.impliedInteger(70, kIs3d | (spline != 0 ? kSplineFit : 0) | (closed & kClosed));
    coder.impliedInteger(75, (spline & 1) != 0 ? 5 : (spline & 2) != 0 ? 6 : 0);
  } else {
    const std::int64_t flags = coder.nextInteger(70);
    const std::int64_t curve = coder.nextInteger(75);
    coder.dataOut().rawChar(static_cast<std::uint8_t>(curve == 5 ? 1 : curve == 6 ? 2 : 0));
    coder.dataOut().rawChar(
        static_cast<std::uint8_t>((coder.nextInteger(kClosedByte) & ~kClosed) | (flags & kClosed)));
  }
  coder.implied(10, 0.0);
  coder.implied(20, 0.0);
  coder.implied(30, 0.0);
  codeOwned(coder, ownedCount(coder));
}

void codePolyfaceMesh(RecordCoder& coder, const DrawingFacts&) {
  coder.implied(10, 0.0);
  coder.implied(20, 0.0);
  coder.implied(30, 0.0);
  coder.BS(71);
  coder.BS(72);
  codeOwned(coder, ownedCount(coder));
}

void codePolygonMesh(RecordCoder& coder, const DrawingFacts&) {
  coder.implied(10, 0.0);
  coder.implied(20, 0.0);
  coder.implied(30, 0.0);
  coder.BS(70);
  coder.BS(75);
  coder.BS(71);
  coder.BS(72);
  coder.BS(73);
  coder.BS(74);
  codeOwned(coder, ownedCount(coder));
}

void codeVertex2d(RecordCoder& coder, const DrawingFacts&) {
  coder.RC(70);
  coder.point3BD(10);
  // A negative width stands for both.
  constexpr int kStartWidth = -143;
  if (coder.isReading()) {
    const double start = coder.BD(kStartWidth);
    if (start < 0.0) {
      coder.implied(40, -start);
      coder.implied(41, -start);
    } else {
      coder.implied(40, start);
      coder.BD(41);
    }
  } else {
    const double start = coder.nextDouble(40);
    const double end = coder.nextDouble(41);
    const Value* const former = coder.next(kStartWidth);
    const bool isOne = start == end && start > 0.0 && (former == nullptr || former->number < 0.0);
    coder.implied(40, 0.0);
    coder.dataOut().bitDouble(isOne ? -start : start);
    if (isOne) {
      coder.implied(41, 0.0);
    } else {
      coder.BD(41);
    }
  }
  coder.BD(42);
  if (coder.since(Version::R2010)) {
    coder.BL(91);
  }
  coder.BD(50);
}

void codeVertex3d(RecordCoder& coder, const DrawingFacts&) {
  coder.RC(70);
  coder.point3BD(10);
}

void codeFace(RecordCoder& coder, const DrawingFacts&) {
  coder.impliedInteger(70, 128);
  coder.implied(10, 0.0);
  coder.implied(20, 0.0);
  coder.implied(30, 0.0);
  coder.BS(71);
  coder.BS(72);
  coder.BS(73);
  coder.BS(74);
}

constexpr Kind kKinds[] = {
    {77, "LWPOLYLINE", Family::Entity, codeLightPolyline,
     "@AcDbPolyline 90 70 43 38?0 39?0 ( 10q 40?!0 41?!0 42?0 91?0 ) 210p?0,0,1", false,
     settleWidths},
    {15, "POLYLINE", Family::Entity, codePolyline2d,
     "@AcDb2dPolyline 66=1 10p 39?0 70?0 40?0 41?0 75?0 210p?0,0,1"},
    {16, "POLYLINE", Family::Entity, codePolyline3d, "@AcDb3dPolyline 66=1 10p 70?0 75?0"},
    {29, "POLYLINE", Family::Entity, codePolyfaceMesh,
     "@AcDbPolyFaceMesh 66=1 10p 70=64 71?0 72?0"},
    {30, "POLYLINE", Family::Entity, codePolygonMesh,
     "@AcDbPolygonMesh 66=1 10p 70?0 71?0 72?0 73?0 74?0 75?0"},
    {10, "VERTEX", Family::Entity, codeVertex2d,
     "@AcDbVertex @AcDb2dVertex 10p 40?0 41?0 42?0 91?0 70?0 50a?0"},
    {11, "VERTEX", Family::Entity, codeVertex3d, "@AcDbVertex @AcDb3dPolylineVertex 10p 70?0"},
    {12, "VERTEX", Family::Entity, codeVertex3d, "@AcDbVertex @AcDbPolygonMeshVertex 10p 70?0"},
    {13, "VERTEX", Family::Entity, codeVertex3d, "@AcDbVertex @AcDbPolyFaceMeshVertex 10p 70?0"},
    {14, "VERTEX", Family::Entity, codeFace, "@AcDbFaceRecord 10p 70?0 71?0 72?0 73?0 74?0"},
};

}  // namespace

std::span<const Kind> polylineKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
