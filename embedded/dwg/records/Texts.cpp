// Texts, attributes and multiline texts.
//
// Source: Open Design Specification for .dwg files, chapters of these entities.
#include <algorithm>
#include <cmath>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

/// Which fields of a text are left out, a bit each.
constexpr std::int64_t kElevation = 0x01;
constexpr std::int64_t kAlignmentPoint = 0x02;
constexpr std::int64_t kOblique = 0x04;
constexpr std::int64_t kRotation = 0x08;
constexpr std::int64_t kWidthFactor = 0x10;
constexpr std::int64_t kGeneration = 0x20;
constexpr std::int64_t kHorizontal = 0x40;
constexpr std::int64_t kVertical = 0x80;
/// Where the alignment point is kept of a text that is aligned at its insertion point: DXF does
/// not show it then.
constexpr int kUnusedAlignment = -511;

void codeOldText(RecordCoder& coder, int verticalKey) {
  coder.BD(30);
  coder.point2RD(10);
  coder.point2RD(11);
  coder.point3BD(210);
  coder.BD(39);
  coder.BD(51);
  coder.BD(50);
  coder.BD(40);
  coder.BD(41, 1.0);
  coder.TV(1);
  coder.BS(71);
  coder.BS(72);
  coder.BS(verticalKey);
  if (coder.isReading()) {
    coder.implied(31, coder.values().first(30)->number);
  }
}

std::int64_t omittedOf(RecordCoder& coder, int verticalKey, bool isAligned) {
  const auto bit = [](bool canOmit, std::int64_t flag) -> std::int64_t {
    return canOmit ? flag : 0;
  };
  const int alignment = isAligned ? 11 : kUnusedAlignment;
  return coder.nextInteger(kHiddenFlags, 0xFF) &
         (bit(coder.nextDouble(30) == 0.0, kElevation) |
          bit(!isAligned && coder.next(alignment) == nullptr, kAlignmentPoint) |
          bit(coder.nextDouble(51) == 0.0, kOblique) | bit(coder.nextDouble(50) == 0.0, kRotation) |
          bit(coder.nextDouble(41, 1.0) == 1.0, kWidthFactor) |
          bit(coder.nextInteger(71) == 0, kGeneration) |
          bit(coder.nextInteger(72) == 0, kHorizontal) |
          bit(coder.nextInteger(verticalKey) == 0, kVertical));
}

void codeTextFields(RecordCoder& coder, int verticalKey) {
  const bool isAligned = coder.nextInteger(72) != 0 || coder.nextInteger(verticalKey) != 0;
  std::int64_t omitted = 0;
  if (coder.isReading()) {
    omitted = coder.RC(kHiddenFlags);
  } else {
    omitted = omittedOf(coder, verticalKey, isAligned);
    coder.dataOut().rawChar(static_cast<std::uint8_t>(omitted));
  }
  const auto has = [omitted](std::int64_t flag) { return (omitted & flag) == 0; };
  const double elevation = has(kElevation) ? coder.RD(30) : 0.0;
  if (!has(kElevation)) {
    coder.implied(30, 0.0);
  }
  const double x = coder.RD(10);
  const double y = coder.RD(20);
  const int alignment = coder.isReading() || isAligned ? 11 : kUnusedAlignment;
  if (has(kAlignmentPoint)) {
    coder.DD(alignment, x);
    coder.DD(alignment == 11 ? 21 : alignment - 10, y);
    coder.implied(31, elevation);
  }
  coder.BE(210);
  coder.BT(39);
  const auto raw = [&](std::int64_t flag, int key, double missing) {
    if (has(flag)) {
      coder.RD(key);
    } else {
      coder.implied(key, missing);
    }
  };
  raw(kOblique, 51, 0.0);
  raw(kRotation, 50, 0.0);
  coder.RD(40);
  raw(kWidthFactor, 41, 1.0);
  coder.TV(1);
  const auto number = [&](std::int64_t flag, int key) {
    if (has(flag)) {
      coder.BS(key);
    } else {
      coder.impliedInteger(key, 0);
    }
  };
  number(kGeneration, 71);
  number(kHorizontal, 72);
  number(kVertical, verticalKey);
}

void codeTextLike(RecordCoder& coder, int verticalKey) {
  if (coder.since(Version::R2000)) {
    codeTextFields(coder, verticalKey);
  } else {
    codeOldText(coder, verticalKey);
  }
  coder.H(7, kHardPointer);
  if (coder.isReading() && !coder.hasFailed()) {
    RecordValues& values = coder.values();
    if (values.first(72)->integer == 0 && values.first(verticalKey)->integer == 0) {
      values.rename(11, kUnusedAlignment);
      values.rename(21, kUnusedAlignment - 10);
      values.rename(31, kUnusedAlignment - 20);
    }
  }
}

void codeText(RecordCoder& coder, const DrawingFacts&) {
  codeTextLike(coder, 73 + kKeyStep);
}

// --- multiline text -------------------------------------------------------------------------

enum MTextKey : int {
  kExtentsHeight = -171,
  kExtentsWidth = -172,
  kUnknownBit = -173,
  kIsNotAnnotative = -174,
  kClassVersion = -175,
  kDefaultFlag = -176,
  kApplication = -177,
  kBackgroundColor = -192,  // to -196
};

/// Keys of what R2018 adds.
constexpr int again(int key) {
  return key + 2 * kKeyStep;
}

constexpr int hidden(int code) {
  return -again(code);
}

void hideColumns(RecordCoder& coder) {
  for (const int code : {101, 70, 10, 11, 40, 41, 42, 43, 71}) {
    coder.rename(again(code), hidden(code));
  }
  for (const int code : {10, 11}) {
    coder.rename(again(code) + 10, hidden(code) + 10);
    coder.rename(again(code) + 20, hidden(code) + 20);
  }
}

/// The height of a column; DXF has 0 for a negative one.
void codeColumnHeight(RecordCoder& coder) {
  constexpr int kHeight = -191;
  if (coder.isReading()) {
    coder.implied(again(46), std::max(coder.BD(kHeight), 0.0));
    return;
  }
  const Value* const former = coder.next(kHeight);
  const double shown = coder.nextDouble(again(46));
  coder.implied(again(46), 0.0);
  if (former != nullptr && std::max(former->number, 0.0) == shown) {
    coder.BD(kHeight);
  } else {
    coder.implied(kHeight, 0.0);
    coder.dataOut().bitDouble(shown);
  }
}

/// What R2018 adds: most fields once more, and columns.
void codeColumns(RecordCoder& coder) {
  constexpr std::int64_t kDynamic = 2;
  // DXF shows all of this only where there are columns.
  const bool isShown = coder.isReading() || coder.next(again(70)) != nullptr;
  const auto key = [isShown](int code) { return isShown ? again(code) : hidden(code); };
  if (coder.B(kIsNotAnnotative, 1) == 0) {
    return;
  }
  coder.BS(kClassVersion);
  coder.B(kDefaultFlag, 1);
  coder.H(kApplication, kHardPointer);
  coder.impliedText(key(101), L"Embedded Object");
  coder.BL(key(70), 1);
  coder.point3BD(key(10));
  coder.point3BD(key(11));
  coder.BD(key(40));
  coder.BD(key(41));
  coder.BD(key(42));
  coder.BD(key(43));
  const std::int64_t type = coder.BS(key(71));
  if (type == 0) {
    if (coder.isReading()) {
      hideColumns(coder);
    }
    return;
  }
  const std::size_t count = coder.partsBL(key(72));
  coder.BD(key(44));
  coder.BD(key(45));
  const bool isAutomatic = coder.B(key(73)) != 0;
  coder.B(key(74));
  for (std::size_t i = 0; !isAutomatic && type == kDynamic && i < count && !coder.hasFailed();
       ++i) {
    codeColumnHeight(coder);
  }
}

void codeMText(RecordCoder& coder, const DrawingFacts&) {
  constexpr std::int64_t kHasColor = 1;
  constexpr std::int64_t kHasFrame = 0x10;
  coder.point3BD(10);
  coder.point3BD(210);
  coder.point3BD(11);
  coder.BD(41);
  if (coder.since(Version::R2007)) {
    coder.BD(46);
  }
  coder.BD(40);
  coder.BS(71);
  coder.BS(72);
  coder.BD(kExtentsHeight);
  coder.BD(kExtentsWidth);
  coder.TV(1);
  coder.H(7, kHardPointer);
  if (coder.since(Version::R2000)) {
    coder.BS(73);
    coder.BD(44);
    coder.B(kUnknownBit);
  }
  if (coder.since(Version::R2004)) {
    const std::int64_t background = coder.BL(90);
    const bool hasColor = (background & kHasColor) != 0 ||
                          (coder.since(Version::R2018) && (background & kHasFrame) != 0);
    if (hasColor) {
      coder.BD(45, 1.5);
      codeShownColor(coder, 63, 421, kBackgroundColor);
      coder.BL(441);
    }
  }
  if (coder.since(Version::R2018)) {
    codeColumns(coder);
  }
}

/// DXF may tell an angle in place of the direction, which is all that DWG has.
void settleRotation(RecordValues& values) {
  constexpr int kAngle = 50;
  constexpr int kDirection = 11;
  constexpr int kNormal = 210;
  const Value* const rotation = values.first(kAngle);
  if (rotation == nullptr) {
    return;
  }
  const auto isNormal = [&](int key, double number) {
    const Value* const part = values.first(key);
    return part == nullptr || part->number == number;
  };
  if (!isNormal(kNormal, 0.0) || !isNormal(kNormal + 10, 0.0) || !isNormal(kNormal + 20, 1.0)) {
    return;  // an angle in another plane has no place
  }
  const double direction[] = {std::cos(rotation->number), std::sin(rotation->number), 0.0};
  values.removeAll(kAngle);
  for (int part = 0; part < 3; ++part) {
    values.removeAll(kDirection + 10 * part);
    values.addDouble(kDirection + 10 * part, direction[part]);
  }
}

// --- attributes ------------------------------------------------------------------------------

/// An attribute of several lines has a whole multiline text.
void codeLines(RecordCoder& coder, const DrawingFacts& facts, std::int64_t type) {
  constexpr int kWithin = -40 * kKeyStep;  // hidden, so that all of it survives an edit
  constexpr int kDataSize = -163;
  constexpr int kData = -164;
  constexpr int kApp = -165;
  constexpr int kLast = -166;
  const auto shown = [](int code) { return code + 7 * kKeyStep; };
  coder.shiftKeys(kWithin);
  codeEmbeddedEntity(coder, facts);
  codeMText(coder, facts);
  coder.shiftKeys(0);
  const std::int64_t size = coder.BS(kDataSize);
  if (size > 0) {
    coder.bytes(kData, static_cast<std::size_t>(size));
    coder.H(kApp, kHardPointer);
    coder.BS(kLast);
  }
  coder.impliedInteger(shown(71), type);
  coder.impliedInteger(shown(72), 0);
  coder.impliedText(shown(101), L"Embedded Object");
  for (int key = 11; key <= 31 && coder.isReading(); key += 10) {
    const Value* const value = coder.values().first(key);
    coder.implied(shown(key), value == nullptr ? 0.0 : value->number);
  }
}

void codeAttributeFields(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kAttributeType = -161;
  constexpr std::int64_t kSingleLine = 1;
  if (coder.since(Version::R2010)) {
    coder.RC(280);
  }
  if (coder.since(Version::R2018)) {
    const std::int64_t type = coder.RC(kAttributeType, kSingleLine);
    if (type != kSingleLine) {
      codeLines(coder, facts, type);
    }
  }
  coder.TV(2);
  coder.BS(73);
  coder.RC(70);
  if (coder.since(Version::R2007)) {
    coder.B(280 + 2 * kKeyStep);
  }
}

void codeAttribute(RecordCoder& coder, const DrawingFacts& facts) {
  codeTextLike(coder, 74);
  codeAttributeFields(coder, facts);
}

void codeAttributeDefinition(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kSecondVersion = -162;
  codeTextLike(coder, 74);
  codeAttributeFields(coder, facts);
  if (coder.since(Version::R2010)) {
    coder.RC(kSecondVersion);
  }
  coder.TV(3);
}

#define TEXT_LAYOUT \
  "@AcDbText 39?0 10p 40 1 50a?0 41?1 51a?0 7:STYLE?Standard 71?0 72?0 11p 210p?0,0,1 "

#define LINES_LAYOUT \
  "71#7 72#7 11p#7 ~ 101#7 10p#-40 40#-40 41#-40 46#-40 71#-40 72#-40 1t3#-40 73#-40 44#-40"

constexpr Kind kKinds[] = {
    {1, "TEXT", Family::Entity, codeText, TEXT_LAYOUT "@AcDbText 73#1?0"},
    {2, "ATTRIB", Family::Entity, codeAttribute,
     TEXT_LAYOUT "@AcDbAttribute 280+2010 2 70 73?0 74?0 280#2 " LINES_LAYOUT},
    {3, "ATTDEF", Family::Entity, codeAttributeDefinition,
     TEXT_LAYOUT "@AcDbAttributeDefinition 280+2010 3 2 70 73?0 74?0 280#2 " LINES_LAYOUT},
    {44, "MTEXT", Family::Entity, codeMText,
     "@AcDbMText 10p 40 41 46 71 72 1t3 7:STYLE?Standard 210p?0,0,1 11p?1,0,0 ( 50a ) 73 "
     "44 90?0 63 421 45 441 ~ 101#2 70#2 10p#2 11p#2 40#2 41#2 42#2 43#2 71#2 72#2 44#2 45#2 73#2 "
     "74#2 ( 46#2 )",
     false, settleRotation},
};

}  // namespace

std::span<const Kind> textKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
