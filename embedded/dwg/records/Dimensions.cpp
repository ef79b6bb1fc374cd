// Dimensions of all types. Group 70 of DXF puts together what the record has as its type, a byte
// of flags in front and, in ordinate dimensions, one behind.
//
// Source: Open Design Specification for .dwg files, "Common dimension data" and the chapters of
// these entities.
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

// Flags and types of group 70.
constexpr std::int64_t kOwnBlock = 32;
constexpr std::int64_t kXType = 64;
constexpr std::int64_t kUserPosition = 128;
constexpr std::int64_t kRotated = 0;
constexpr std::int64_t kAligned = 1;
constexpr std::int64_t kAngular2Line = 2;
constexpr std::int64_t kDiametric = 3;
constexpr std::int64_t kRadial = 4;
constexpr std::int64_t kAngular3Point = 5;
constexpr std::int64_t kOrdinate = 6;

constexpr int kFlags = -101;
constexpr int kOrdinateFlags = -102;

/// The byte in front: bit 0 is the opposite of 128, bit 1 the same as 32. Returns their flags.
std::int64_t codeFlags(RecordCoder& coder) {
  constexpr std::int64_t kAutomatic = 1;
  constexpr std::int64_t kBlock = 2;
  if (coder.isReading()) {
    const std::int64_t flags = coder.RC(kFlags);
    return ((flags & kAutomatic) != 0 ? 0 : kUserPosition) |
           ((flags & kBlock) != 0 ? kOwnBlock : 0);
  }
  const std::int64_t shown = coder.nextInteger(70, kOwnBlock);
  const std::int64_t rest = coder.nextInteger(kFlags) & ~(kAutomatic | kBlock);
  coder.dataOut().rawChar(
      static_cast<std::uint8_t>(rest | ((shown & kUserPosition) != 0 ? 0 : kAutomatic) |
                                ((shown & kOwnBlock) != 0 ? kBlock : 0)));
  return shown;
}

/// What all dimensions begin with; returns the elevation of points in their plane.
double codeBegin(RecordCoder& coder, std::int64_t& flags) {
  if (coder.since(Version::R2010)) {
    coder.RC(280);
  }
  coder.point3BD(210);
  coder.point2RD(11);
  const double elevation = coder.BD(31);
  flags = codeFlags(coder);
  coder.TV(1);
  coder.BD(53);
  coder.BD(51);
  // Scales and rotation with which the block of the dimension is inserted.
  coder.BD(-111, 1.0);
  coder.BD(-112, 1.0);
  coder.BD(-113, 1.0);
  coder.BD(54);
  if (coder.since(Version::R2000)) {
    coder.BS(71, 5);
    coder.BS(72, 1);
    coder.BD(41, 1.0);
    coder.BD(42);
  }
  if (coder.since(Version::R2007)) {
    coder.B(73);
    coder.B(74);
    coder.B(75);
  }
  const double x = coder.RD(12);
  const double y = coder.RD(22);
  coder.implied(32, x == 0.0 && y == 0.0 ? 0.0 : elevation);
  return elevation;
}

void codeEnd(RecordCoder& coder, std::int64_t flagsAndType) {
  coder.H(3, kHardPointer);
  coder.H(2, kHardPointer);
  coder.impliedInteger(70, flagsAndType);
}

void codeAlignedPoints(RecordCoder& coder) {
  coder.point3BD(13);
  coder.point3BD(14);
  coder.point3BD(10);
  coder.BD(52);
}

void codeAligned(RecordCoder& coder, const DrawingFacts&) {
  std::int64_t flags = 0;
  codeBegin(coder, flags);
  codeAlignedPoints(coder);
  codeEnd(coder, flags | kAligned);
}

void codeRotated(RecordCoder& coder, const DrawingFacts&) {
  std::int64_t flags = 0;
  codeBegin(coder, flags);
  codeAlignedPoints(coder);
  coder.BD(50);
  codeEnd(coder, flags | kRotated);
}

void codeOrdinate(RecordCoder& coder, const DrawingFacts&) {
  constexpr std::int64_t kIsXType = 1;
  std::int64_t flags = 0;
  codeBegin(coder, flags);
  coder.point3BD(10);
  coder.point3BD(13);
  coder.point3BD(14);
  if (coder.isReading()) {
    flags |= (coder.RC(kOrdinateFlags) & kIsXType) != 0 ? kXType : 0;
  } else {
    const std::int64_t rest = coder.nextInteger(kOrdinateFlags) & ~kIsXType;
    coder.dataOut().rawChar(
        static_cast<std::uint8_t>(rest | ((flags & kXType) != 0 ? kIsXType : 0)));
  }
  codeEnd(coder, flags | kOrdinate);
}

void codeAngular3Point(RecordCoder& coder, const DrawingFacts&) {
  std::int64_t flags = 0;
  codeBegin(coder, flags);
  coder.point3BD(10);
  coder.point3BD(13);
  coder.point3BD(14);
  coder.point3BD(15);
  codeEnd(coder, flags | kAngular3Point);
}

void codeAngular2Line(RecordCoder& coder, const DrawingFacts&) {
  std::int64_t flags = 0;
  const double elevation = codeBegin(coder, flags);
  coder.point2RD(16);
  coder.implied(36, elevation);
  coder.point3BD(13);
  coder.point3BD(14);
  coder.point3BD(15);
  coder.point3BD(10);
  codeEnd(coder, flags | kAngular2Line);
}

void codeCircular(RecordCoder& coder, std::int64_t type) {
  std::int64_t flags = 0;
  codeBegin(coder, flags);
  // A diameter has its points the other way round.
  coder.point3BD(type == kDiametric ? 15 : 10);
  coder.point3BD(type == kDiametric ? 10 : 15);
  coder.BD(40);
  codeEnd(coder, flags | type);
}

void codeRadial(RecordCoder& coder, const DrawingFacts&) {
  codeCircular(coder, kRadial);
}

void codeDiametric(RecordCoder& coder, const DrawingFacts&) {
  codeCircular(coder, kDiametric);
}

#define DIMENSION                                                                             \
  "@AcDbDimension 280 2:BLOCK_RECORD 10p 11p 12p?0,0,0 70 1? 71 72?1 41?1 42 73 74 75 53a?0 " \
  "54a?0 51a?0 210p?0,0,1 3:DIMSTYLE "

constexpr Kind kKinds[] = {
    {20, "DIMENSION", Family::Entity, codeOrdinate, DIMENSION "@AcDbOrdinateDimension 13p 14p"},
    {21, "DIMENSION", Family::Entity, codeRotated,
     DIMENSION "@AcDbAlignedDimension 13p 14p 50a?0 52a?0 @AcDbRotatedDimension"},
    {22, "DIMENSION", Family::Entity, codeAligned, DIMENSION "@AcDbAlignedDimension 13p 14p 52a?0"},
    {23, "DIMENSION", Family::Entity, codeAngular3Point,
     DIMENSION "@AcDb3PointAngularDimension 13p 14p 15p"},
    {24, "DIMENSION", Family::Entity, codeAngular2Line,
     DIMENSION "@AcDb2LineAngularDimension 13p 14p 15p 16p"},
    {25, "DIMENSION", Family::Entity, codeRadial, DIMENSION "@AcDbRadialDimension 15p 40"},
    {26, "DIMENSION", Family::Entity, codeDiametric, DIMENSION "@AcDbDiametricDimension 15p 40"},
};

}  // namespace

std::span<const Kind> dimensionKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
