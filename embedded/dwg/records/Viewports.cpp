// What shows a part of the drawing: viewports of layouts and of the model, and named views.
//
// Source: Open Design Specification for .dwg files, chapters of these objects.
#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

constexpr int kAmbientColor = -121;  // to -125

void codeLights(RecordCoder& coder) {
  coder.B(292);
  coder.RC(282);
  coder.BD(141);
  coder.BD(142);
  codeShownColor(coder, 63, 421, kAmbientColor);
}

void codeCoordinateSystem(RecordCoder& coder) {
  coder.point3BD(110);
  coder.point3BD(111);
  coder.point3BD(112);
  coder.BD(146);
  coder.BS(79);
}

// --- in a layout ----------------------------------------------------------------------------

void codeViewport(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kFrozenCount = -101;
  constexpr int kHeader = -102;
  constexpr std::int64_t kIsOff = 0x20000;
  coder.point3BD(10);
  coder.BD(40);
  coder.BD(41);
  if (!coder.since(Version::R2000)) {
    coder.H(kHeader, kHardPointer);  // the view stands in the extended data
    return;
  }
  coder.point3BD(17);
  coder.point3BD(16);
  coder.BD(51);
  coder.BD(45);
  coder.BD(42, 50.0);
  coder.BD(43);
  coder.BD(44);
  coder.BD(50);
  coder.point2RD(12);
  coder.point2RD(13);
  coder.point2RD(14);
  coder.point2RD(15);
  coder.BS(72);
  if (coder.since(Version::R2007)) {
    coder.BS(61);
  }
  const bool isSoft = coder.since(Version::R2004);
  const int frozenKey = isSoft ? 331 : 341;
  const std::size_t frozen = coder.countBL(kFrozenCount, frozenKey);
  const std::int64_t status = coder.BL(90);
  coder.TV(1);
  coder.RC(281);
  coder.B(74);
  coder.B(71);
  codeCoordinateSystem(coder);
  if (coder.since(Version::R2004)) {
    coder.BS(170);
  }
  if (coder.since(Version::R2007)) {
    codeLights(coder);
  }
  for (std::size_t i = 0; i < frozen && !coder.hasFailed(); ++i) {
    coder.H(frozenKey, isSoft ? kSoftPointer : kHardPointer);
  }
  coder.H(340, kSoftPointer);
  if (!coder.since(Version::R2004)) {
    coder.H(kHeader, kHardPointer);
  }
  coder.H(345, kHardPointer);
  coder.H(346, kHardPointer);
  if (coder.since(Version::R2007)) {
    coder.H(332, kSoftPointer);
    coder.H(348, kHardPointer);
    coder.H(333, kSoftPointer);
    coder.H(361, kHardOwner);
  }
  if (const auto found = facts.viewportNumbers.find(coder.own());
      coder.isReading() && found != facts.viewportNumbers.end()) {
    coder.impliedInteger(68, (status & kIsOff) != 0 ? 0 : found->second);
    coder.impliedInteger(69, found->second);
  }
}

void codeViewportHeader(RecordCoder& coder, const DrawingFacts&) {
  coder.TV(2);
  coder.impliedInteger(70,
                       codeDependence(coder) | codeFlagBit(coder, -111, 1, coder.nextInteger(70)));
  coder.H(kExternalBlock, kHardPointer);
  coder.H(340, kSoftPointer);
  coder.H(-112, kHardPointer);  // the header of the next viewport
}

void codeViewportTable(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kCount = -113;
  const std::size_t entries = coder.countBL(kCount, kOwned);
  for (std::size_t i = 0; i < entries && !coder.hasFailed(); ++i) {
    coder.H(kOwned, kSoftOwner);
  }
}

// --- in the model ---------------------------------------------------------------------------

constexpr int kPerspective = -131;  // to -134
constexpr int kFollows = -135;

/// The mode of a view in bits of group 71; the last is the opposite of its own.
std::int64_t codeViewMode(RecordCoder& coder) {
  constexpr std::int64_t kClipsNotAtEye = 16;
  const std::int64_t shown = coder.nextInteger(71) ^ kClipsNotAtEye;
  std::int64_t mode = 0;
  for (const int bit : {1, 2, 4, 16}) {
    mode |= codeFlagBit(coder, kPerspective - (bit == 16 ? 3 : bit / 2), bit, shown);
  }
  return mode ^ kClipsNotAtEye;
}

void codeModelViewport(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kWidth = -141;
  constexpr int kUnknown = -142;
  constexpr int kIcon = -143;  // and -144
  constexpr std::int64_t kFollow = 8;
  coder.TV(2);
  coder.impliedInteger(70, codeDependence(coder));
  const double height = coder.BD(40);
  // The record has the width of the view, DXF width by height.
  if (coder.isReading()) {
    const double width = coder.BD(kWidth);
    coder.implied(41, height == 0.0 ? 1.0 : width / height);
  } else {
    const double ratio = coder.nextDouble(41, 1.0);
    const Value* const former = coder.next(kWidth);
    if (former != nullptr && height != 0.0 && former->number / height == ratio) {
      coder.BD(kWidth);
    } else {
      coder.dataOut().bitDouble(ratio * height);
    }
  }
  coder.point2RD(12);
  coder.point3BD(17);
  coder.point3BD(16);
  coder.BD(51);
  coder.BD(42, 50.0);
  coder.BD(43);
  coder.BD(44);
  std::int64_t mode = codeViewMode(coder);
  if (coder.since(Version::R2000)) {
    coder.RC(281);
  }
  if (coder.since(Version::R2007)) {
    codeLights(coder);
  }
  coder.point2RD(10);
  coder.point2RD(11);
  mode |= codeFlagBit(coder, kFollows, kFollow, coder.nextInteger(71));
  coder.impliedInteger(71, mode);
  coder.BS(72);
  coder.B(73);
  const std::int64_t icon = coder.nextInteger(74);
  coder.impliedInteger(74,
                       codeFlagBit(coder, kIcon, 1, icon) | codeFlagBit(coder, kIcon - 1, 2, icon));
  coder.B(76);
  coder.point2RD(15);
  coder.B(75);
  coder.B(77);
  coder.BS(78);
  coder.BD(50);
  coder.point2RD(13);
  coder.point2RD(14);
  if (coder.since(Version::R2000)) {
    coder.B(kUnknown);
    coder.B(65);
    codeCoordinateSystem(coder);
  }
  if (coder.since(Version::R2007)) {
    coder.BS(60);
    coder.BS(61);
  }
  coder.H(kExternalBlock, kHardPointer);
  if (coder.since(Version::R2007)) {
    coder.H(332, kSoftPointer);
    coder.H(348, kHardPointer);
    coder.H(361, kHardOwner);
  }
  if (coder.since(Version::R2000)) {
    coder.H(345, kHardPointer);
    coder.H(346, kHardPointer);
  }
}

void codeView(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kIsPaperSpace = -151;
  constexpr int kLights = -161;  // to -165, and the colour
  coder.TV(2);
  std::int64_t flags = codeDependence(coder);
  coder.BD(40);
  coder.BD(41);
  coder.point2RD(10);
  coder.point3BD(12);
  coder.point3BD(11);
  coder.BD(50);
  coder.BD(42, 50.0);
  coder.BD(43);
  coder.BD(44);
  coder.impliedInteger(71, codeViewMode(coder));
  if (coder.since(Version::R2000)) {
    coder.RC(281);
  }
  if (coder.since(Version::R2007)) {
    coder.B(kLights, 1);
    coder.RC(kLights - 1, 1);
    coder.BD(kLights - 2);
    coder.BD(kLights - 3);
    codeShownColor(coder, kLights - 4, 0, kAmbientColor);
  }
  flags |= codeFlagBit(coder, kIsPaperSpace, 1, coder.nextInteger(70));
  coder.impliedInteger(70, flags);
  bool hasSystem = false;
  if (coder.since(Version::R2000)) {
    hasSystem = coder.B(72) != 0;
    if (hasSystem) {
      codeCoordinateSystem(coder);
    }
  }
  coder.H(kExternalBlock, kHardPointer);
  if (coder.since(Version::R2007)) {
    coder.B(73);
    coder.H(332, kSoftPointer);
    coder.H(348, kHardPointer);
    coder.H(361, kHardOwner);
  }
  if (hasSystem) {
    coder.H(346, kHardPointer);
    coder.H(345, kHardPointer);
  }
  if (coder.since(Version::R2007)) {
    coder.H(334, kSoftPointer);
  }
}

#define SYSTEM "110p 111p 112p 345?0 346?0 79 146 "
#define LIGHTS "292 282 141 142 63 421"

constexpr Kind kKinds[] = {
    {34, "VIEWPORT", Family::Entity, codeViewport,
     "@AcDbViewport 10p 40 41 68 69 12q 13q 14q 15q 16p 17p 42 43 44 45 50a 51a 72 ( 331 ) ( 341 ) "
     "90 340?0 1 281 71 74 " SYSTEM "170 61 332?0 333?0 348?0 361?0 " LIGHTS},
    {70, "VP_ENT_HDR_CONTROL", Family::Table, codeViewportTable, ""},
    {71, "VP_ENT_HDR", Family::TableRecord, codeViewportHeader,
     "@AcDbSymbolTableRecord @AcDbViewportEntityHeader 2 70 340"},
    {65, "VPORT", Family::TableRecord, codeModelViewport,
     "@AcDbSymbolTableRecord @AcDbViewportTableRecord 2 70 10q 11q 12q 13q 14q 15q 16p 17p 40 41 "
     "42 43 44 50a 51a 71 72 73 74 75 76 77 78 281 65 " SYSTEM "332?0 348?0 361?0 60 61 " LIGHTS},
    {61, "VIEW", Family::TableRecord, codeView,
     "@AcDbSymbolTableRecord @AcDbViewTableRecord 2 70 40 10q 41 11p 12p 42 43 44 50a 71 281 72 "
     "110p 111p 112p 79 146 345?0 346?0 73 332?0 334?0 348?0 361?0"},
};

}  // namespace

std::span<const Kind> viewportKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
