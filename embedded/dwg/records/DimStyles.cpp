// Dimension styles.
//
// Source: Open Design Specification for .dwg files, "DIMSTYLE"; what DXF leaves out is what the
// variables are in an empty drawing in inches.
#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

constexpr int kStyleFlag = -101;
constexpr int kFillColor = -111;  // to -115
constexpr int kColors = -121;     // of lines, to -125; of extensions and texts 5 and 10 lower

/// R13 and R14 keep most numbers in bytes.
void codeOldStyle(RecordCoder& coder) {
  for (const int key : {71, 72, 73, 74, 75, 76, 170, 172, 173, 174, 175}) {
    coder.B(key);
  }
  coder.RC(171);
  coder.RC(78);
  coder.B(281);
  coder.B(282);
  coder.RC(283);
  coder.RC(280);
  coder.RC(287);
  coder.B(288);
  for (const int key : {284, 285, 286, 77}) {
    coder.RC(key);
  }
  for (const int key : {270, 275, 271, 272, 273, 274}) {
    coder.BS(key);
  }
  for (const int key :
       {40, 41, 42, 43, 44, 45, 46, 47, 48, 140, 141, 142, 143, 144, 145, 146, 147}) {
    coder.BD(key);
  }
  coder.TV(3);
  coder.TV(4);
  coder.TV(5);
  coder.TV(6);
  coder.TV(7);
  for (const int key : {176, 177, 178}) {
    coder.BS(key);
  }
}

void codeStyle(RecordCoder& coder) {
  constexpr int kFillColorKey = 70 + kKeyStep;
  coder.TV(3);
  coder.TV(4);
  for (int key = 40; key <= 48; ++key) {
    coder.BD(key);
  }
  if (coder.since(Version::R2007)) {
    coder.BD(49);
    coder.BD(50);
    coder.BS(69);
    codeShownColor(coder, kFillColorKey, 0, kFillColor);
  }
  for (int key = 71; key <= 76; ++key) {
    coder.B(key);
  }
  coder.BS(77);
  coder.BS(78);
  coder.BS(79);
  if (coder.since(Version::R2007)) {
    coder.BS(90);
  }
  for (int key = 140; key <= 148; ++key) {
    coder.BD(key);
  }
  coder.B(170);
  coder.BS(171);
  for (int key = 172; key <= 175; ++key) {
    coder.B(key);
  }
  codeShownColor(coder, 176, 0, kColors);
  codeShownColor(coder, 177, 0, kColors - 5);
  codeShownColor(coder, 178, 0, kColors - 10);
  coder.BS(179);
  for (int key = 271; key <= 280; ++key) {
    coder.BS(key);
  }
  coder.B(281);
  coder.B(282);
  for (int key = 283; key <= 286; ++key) {
    coder.BS(key);
  }
  coder.B(288);
  coder.BS(289);
  if (coder.since(Version::R2007)) {
    coder.B(290);
  }
  if (coder.since(Version::R2010)) {
    constexpr int kSmallUnits = -151;  // factors and suffixes of small units
    coder.B(295);
    coder.BD(kSmallUnits);
    coder.TV(kSmallUnits - 1);
    coder.BD(kSmallUnits - 2);
    coder.TV(kSmallUnits - 3);
  }
  coder.BS(371);
  coder.BS(372);
}

void codeDimensionStyle(RecordCoder& coder, const DrawingFacts&) {
  coder.TV(2);
  std::int64_t flags = codeDependence(coder);
  if (coder.since(Version::R2000)) {
    codeStyle(coder);
  } else {
    codeOldStyle(coder);
  }
  flags |= codeFlagBit(coder, kStyleFlag, 1, coder.nextInteger(70));
  coder.impliedInteger(70, flags);
  coder.H(kExternalBlock, kHardPointer);
  coder.H(340, kHardPointer);
  if (coder.since(Version::R2000)) {
    for (int key = 341; key <= 344; ++key) {
      coder.H(key, kHardPointer);
    }
  }
  if (coder.since(Version::R2007)) {
    for (int key = 345; key <= 347; ++key) {
      coder.H(key, kHardPointer);
    }
  }
}

constexpr Kind kKinds[] = {
    {69, "DIMSTYLE", Family::TableRecord, codeDimensionStyle,
     "@AcDbSymbolTableRecord @AcDbDimStyleTableRecord 2 70 3? 4? 5? 6? 7? 40?1 41?0.18 42?0.0625 "
     "43?0.38 44?0.18 45?0 46?0 47?0 48?0 49?1 50a?0.78539816339744828 69?0 70#1&69! 71?0 72?0 "
     "73?1 "
     "74?1 75?0 76?0 77?0 78?0 79?0 90?0 140?0.18 141?0.09 142?0 143?25.4 144?1 145?0 146?1 "
     "147?0.09 148?0 170?0 171?2 172?0 173?0 174?0 175?0 176?0 177?0 178?0 179?0 270?2 271?4 272?4 "
     "273?2 274?2 275?0 276?0 277?2 278?46 279?0 280?0 281?0 282?0 283?1 284?0 285?0 286?0 287?3 "
     "288?0 289?3 290?0 295?0 340 341?0 342?0 343?0 344?0 345?0 346?0 347?0 371?-2 372?-2"},
};

}  // namespace

std::span<const Kind> dimensionStyleKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
