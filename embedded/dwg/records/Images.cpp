// Raster images and wipeouts, and the objects that belong to them.
//
// Source: Open Design Specification for .dwg files, chapters of these objects.
#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

constexpr int kCorner = 14;

/// Whether the points end where they begin.
bool isClosed(const RecordValues& values) {
  const Value* firsts[2] = {};
  const Value* lasts[2] = {};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const int axis = (values[i].key - kCorner) / 10;
    if (values[i].key == kCorner || values[i].key == kCorner + 10) {
      firsts[axis] = firsts[axis] == nullptr ? &values[i] : firsts[axis];
      lasts[axis] = &values[i];
    }
  }
  return firsts[1] != nullptr && firsts[0] != lasts[0] && firsts[0]->number == lasts[0]->number &&
         firsts[1]->number == lasts[1]->number;
}

/// DXF closes a polygon by its first point once more.
void showClosed(RecordCoder& coder, std::size_t points) {
  const bool isOpen = points != 0 && !isClosed(coder.values());
  coder.impliedInteger(91, static_cast<std::int64_t>(points) + (isOpen ? 1 : 0));
  if (isOpen) {
    const double x = coder.values().first(kCorner)->number;
    const double y = coder.values().first(kCorner + 10)->number;
    coder.implied(kCorner, x);
    coder.implied(kCorner + 10, y);
  }
}

std::size_t codePolygonCount(RecordCoder& coder, int key) {
  if (coder.isReading()) {
    return coder.partsBL(key);
  }
  const Value* const former = coder.next(key);
  const std::size_t shown = coder.amount(kCorner);
  const bool keepsLast = former != nullptr && static_cast<std::size_t>(former->integer) == shown;
  const std::size_t points = isClosed(coder.wanted()) && !keepsLast ? shown - 1 : shown;
  coder.dataOut().bitLong(static_cast<std::uint32_t>(points),
                          former == nullptr ? -1 : former->form);
  return points;
}

/// The outline of what is shown, in pixels: a rectangle by two corners or a polygon.
void codeOutline(RecordCoder& coder) {
  constexpr std::int64_t kRectangle = 1;
  constexpr std::int64_t kPolygon = 2;
  constexpr std::int64_t kCorners = 2;
  constexpr int kPoints = -101;
  const std::int64_t type = coder.BS(71, kRectangle);
  std::size_t points = 0;
  if (type == kRectangle) {
    points = kCorners;
    coder.impliedInteger(91, kCorners);
  } else if (type == kPolygon) {
    points = codePolygonCount(coder, kPoints);
  }
  for (std::size_t i = 0; i < points && !coder.hasFailed(); ++i) {
    coder.point2RD(14);
  }
  if (coder.isReading() && type == kPolygon && !coder.hasFailed()) {
    showClosed(coder, points);
  }
}

void codeImage(RecordCoder& coder, const DrawingFacts&) {
  coder.BL(90);
  coder.point3BD(10);
  coder.point3BD(11);
  coder.point3BD(12);
  coder.point2RD(13);
  coder.BS(70);
  coder.B(280);
  coder.RC(281);
  coder.RC(282);
  coder.RC(283);
  if (coder.since(Version::R2010)) {
    coder.B(290);
  }
  codeOutline(coder);
  coder.H(340, kHardPointer);
  coder.H(360, kHardOwner);
}

void codeImageDefinition(RecordCoder& coder, const DrawingFacts&) {
  coder.BL(90);
  coder.point2RD(10);
  coder.TV(1);
  coder.B(280);
  coder.RC(281);
  coder.point2RD(11);
}

void codeImageReactor(RecordCoder& coder, const DrawingFacts&) {
  coder.BL(90);
  if (coder.isReading() && coder.values().first(kOwner) != nullptr) {
    coder.impliedHandle(330, static_cast<std::uint64_t>(coder.values().first(kOwner)->integer));
  }
}

void codeRasterVariables(RecordCoder& coder, const DrawingFacts&) {
  coder.BL(90);
  coder.BS(70);
  coder.BS(71);
  coder.BS(72);
}

void codeWipeoutVariables(RecordCoder& coder, const DrawingFacts&) {
  coder.BS(70);
}

#define IMAGE "90 10p 11p 12p 13q 340 70 280 281 282 283 290 360 71 91 ( 14q )"

constexpr Kind kKinds[] = {
    {0, "IMAGE", Family::Entity, codeImage, "@AcDbRasterImage " IMAGE},
    {0, "WIPEOUT", Family::Entity, codeImage, "@AcDbWipeout " IMAGE},
    {0, "IMAGEDEF", Family::Object, codeImageDefinition,
     "@AcDbRasterImageDef 90 1 10q 11q 280 281"},
    {0, "IMAGEDEF_REACTOR", Family::Object, codeImageReactor, "@AcDbRasterImageDefReactor 90 330"},
    {0, "RASTERVARIABLES", Family::Object, codeRasterVariables, "@AcDbRasterVariables 90 70 71 72"},
    {0, "WIPEOUTVARIABLES", Family::Object, codeWipeoutVariables, "@AcDbWipeoutVariables 70"},
};

}  // namespace

std::span<const Kind> imageKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
