// Symbol tables and their records.
//
// Source: Open Design Specification for .dwg files, chapters of these objects.
#include <string>
#include <utility>
#include <vector>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

constexpr std::int64_t kDependsOnReference = 16;

// --- tables ---------------------------------------------------------------------------------

constexpr int kEntryCount = -201;

void codeTable(RecordCoder& coder, const DrawingFacts&) {
  const std::size_t entries = coder.countBL(kEntryCount, kOwned);
  for (std::size_t i = 0; i < entries && !coder.hasFailed(); ++i) {
    coder.H(kOwned, kSoftOwner);
  }
}

/// Two records are owned apart: the two spaces, the linetypes ByLayer and ByBlock.
void codeTableOfTwoMore(RecordCoder& coder, const DrawingFacts& facts) {
  codeTable(coder, facts);
  coder.H(kFirstOwned, kHardOwner);
  coder.H(kLastOwned, kHardOwner);
}

void codeDimStyleTable(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kListedCount = -202;
  const std::size_t entries = coder.countBL(kEntryCount, kOwned);
  const std::size_t more =
      coder.since(Version::R2000) ? coder.countRC(kListedCount, kListedStyle) : 0;
  for (std::size_t i = 0; i < entries && !coder.hasFailed(); ++i) {
    coder.H(kOwned, kSoftOwner);
  }
  for (std::size_t i = 0; i < more && !coder.hasFailed(); ++i) {
    coder.H(kListedStyle, kHardPointer);
  }
  static_cast<void>(facts);
}

// --- records --------------------------------------------------------------------------------

void codeBlockHeader(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kIsReference = -213;
  constexpr int kIsOverlay = -214;
  constexpr int kIsLoaded = -215;
  constexpr int kOwnedCount = -216;
  constexpr int kInsertMark = -218;
  constexpr int kPreviewSize = -220;
  constexpr int kNull = -222;
  coder.TV(kBlockName);
  const std::int64_t shared = codeDependence(coder);
  std::int64_t flags = shared;
  flags |= coder.B(kIsNameless) != 0 ? 1 : 0;
  flags |= coder.B(kHasAttributes) != 0 ? 2 : 0;
  const bool isReference = coder.B(kIsReference) != 0;
  const bool isOverlay = coder.B(kIsOverlay) != 0;
  flags |= (isReference ? 4 : 0) | (isOverlay ? 8 : 0);
  if (coder.since(Version::R2000)) {
    coder.B(kIsLoaded);
  }
  const bool ownsEntities = !isReference && !isOverlay;
  const std::size_t owned =
      coder.since(Version::R2004) && ownsEntities ? coder.countBL(kOwnedCount, kOwned) : 0;
  coder.point3BD(kBlockBase);
  coder.TV(kBlockPath);
  std::size_t inserts = 0;
  if (coder.since(Version::R2000)) {
    if (coder.isReading()) {
      while (coder.RC(kInsertMark) != 0 && !coder.hasFailed()) {
        ++inserts;
      }
    } else {
      inserts = coder.amount(kBlockInsert);
      for (std::size_t i = 0; i < inserts; ++i) {
        coder.RC(kInsertMark, 1);
      }
      coder.dataOut().rawChar(0);
    }
    coder.TV(kBlockDescription);
    const std::int64_t size = coder.isReading()
                                  ? coder.BL(kPreviewSize)
                                  : static_cast<std::int64_t>(coder.nextBytes(310).size());
    if (!coder.isReading()) {
      coder.dataOut().bitLong(static_cast<std::uint32_t>(size));
    }
    if (size < 0) {
      coder.fail();
      return;
    }
    if (size > 0) {
      coder.bytes(310, static_cast<std::size_t>(size));
    }
  }
  if (coder.since(Version::R2007)) {
    coder.BS(70);
    coder.B(280);
    coder.RC(281);
  }
  coder.H(kNull, kHardPointer);
  coder.H(kBlockBegin, kHardOwner);
  if (!coder.since(Version::R2004) && ownsEntities) {
    coder.H(kFirstOwned, kSoftPointer);
    coder.H(kLastOwned, kSoftPointer);
  }
  for (std::size_t i = 0; i < owned && !coder.hasFailed(); ++i) {
    coder.H(kOwned, kHardOwner);
  }
  coder.H(kBlockEnd, kHardOwner);
  if (coder.since(Version::R2000)) {
    for (std::size_t i = 0; i < inserts && !coder.hasFailed(); ++i) {
      coder.impliedHandle(331, coder.H(kBlockInsert, kSoftPointer));
    }
    if (inserts != 0) {
      coder.impliedText(102, L"{BLKREFS");
      coder.impliedText(102 + kKeyStep, L"}");
    }
    coder.H(340, kHardPointer);
  }
  if (coder.isReading() && !coder.hasFailed()) {
    const std::wstring& known = facts.nameOf(coder.own());
    const RecordValues& values = coder.values();
    coder.impliedText(2, known.empty() ? values.textOf(*values.first(kBlockName)) : known);
    coder.impliedInteger(kBlockFlags, flags);
  }
}

void codeLayer(RecordCoder& coder, const DrawingFacts&) {
  constexpr std::int64_t kOff = 0x2;
  constexpr std::int64_t kPlots = 0x10;
  constexpr int kWeightShift = 5;
  constexpr std::int64_t kWeightMask = 0x1F;
  constexpr int kIsOff = -231;
  constexpr int kColorNames = -232;
  constexpr int kColorIndex = -236;
  constexpr int kColorTrue = -237;
  constexpr int kVisualStyle = 348;
  coder.TV(2);
  const std::int64_t shared = codeDependence(coder);
  std::int64_t flags = 0;  // 1 frozen, 2 off, 4 frozen in new viewports, 8 locked
  if (!coder.since(Version::R2000)) {
    flags |= codeFlagBit(coder, -233, 1, coder.nextInteger(70));
    flags |= coder.B(kIsOff) != 0 ? kOff : 0;
    flags |= codeFlagBit(coder, -234, 2, coder.nextInteger(70)) << 1;
    flags |= codeFlagBit(coder, -235, 4, coder.nextInteger(70)) << 1;
  } else if (coder.isReading()) {
    flags = static_cast<std::uint16_t>(coder.BS(kHiddenFlags));
    coder.impliedInteger(290, (flags & kPlots) != 0 ? 1 : 0);
    coder.impliedInteger(370, flags >> kWeightShift & kWeightMask);
  } else {
    const std::int64_t shown = coder.nextInteger(70);
    const std::int64_t former = coder.nextInteger(kHiddenFlags);
    constexpr std::int64_t kRest = ~std::int64_t{0x3FF};
    flags = (former & kRest) | (shown & 1) | (coder.nextInteger(62) < 0 ? kOff : 0) |
            (shown & 2) << 1 | (shown & 4) << 1 | (coder.nextInteger(290, 1) != 0 ? kPlots : 0) |
            (coder.nextInteger(370, kWeightMask) & kWeightMask) << kWeightShift;
    coder.dataOut().bitShort(static_cast<std::uint16_t>(flags));
  }
  if (coder.isReading()) {
    coder.impliedInteger(70, shared | (flags & 1) | (flags & 4) >> 1 | (flags & 8) >> 1);
  }
  codeLayerColor(coder, (flags & kOff) != 0, kColorIndex, kColorTrue, kColorNames);
  coder.H(kExternalBlock, kHardPointer);
  if (coder.since(Version::R2000)) {
    coder.H(390, kHardPointer);
  }
  if (coder.since(Version::R2007)) {
    coder.H(347, kHardPointer);
  }
  coder.H(6, kHardPointer);
  if (coder.since(Version::R2013)) {
    coder.H(kVisualStyle, kHardPointer);
  }
}

void codeStyle(RecordCoder& coder, const DrawingFacts&) {
  coder.TV(2);
  std::int64_t flags = codeDependence(coder);
  const std::int64_t shown = coder.nextInteger(70);
  flags |= codeFlagBit(coder, -241, 1, shown);
  flags |= codeFlagBit(coder, -242, 4, shown);
  coder.impliedInteger(70, flags);
  coder.BD(40);
  coder.BD(41, 1.0);
  coder.BD(50);
  coder.RC(71);
  coder.BD(42);
  coder.TV(3);
  coder.TV(4);
  coder.H(kExternalBlock, kHardPointer);
}

constexpr std::int64_t kIsText = 2;
constexpr int kPlaceOfText = -253;
constexpr int kShapeFlags = -254;

/// The flags that a dash ends with say what it shows: they are looked at first.
std::int64_t nextShapeFlags(RecordCoder& coder) {
  if (!coder.isReading()) {
    return coder.nextInteger(74);
  }
  BitReader ahead = coder.data();
  ahead.bitShort();
  ahead.rawDouble();
  ahead.rawDouble();
  ahead.bitDouble();
  ahead.bitDouble();
  return ahead.bitShort().value;
}

/// The text or shape on a dash. Returns its flags.
std::int64_t codeDashShape(RecordCoder& coder) {
  // Up to R2007 DXF does not know the flag that a text stands upright.
  const std::int64_t known = coder.since(Version::R2010) ? 0xF : 0x7;
  const std::int64_t flags = nextShapeFlags(coder);
  if ((flags & kIsText) != 0) {
    coder.BS(kPlaceOfText);  // of the text among those of the linetype
    coder.impliedInteger(75, 0);
  } else {
    coder.BS(75);
  }
  coder.RD(44);
  coder.RD(45);
  coder.BD(46, 1.0);
  coder.BD(50);
  if (coder.isReading()) {
    coder.impliedInteger(74, coder.BS(kShapeFlags) & known);
    return flags;
  }
  coder.impliedInteger(74, 0);
  if (coder.next(kShapeFlags) != nullptr && (coder.nextInteger(kShapeFlags) & known) == flags) {
    coder.BS(kShapeFlags);
  } else {
    coder.impliedInteger(kShapeFlags, 0);
    coder.dataOut().bitShort(static_cast<std::uint16_t>(flags));
  }
  return flags;
}

/// The texts on dashes, which stand one behind the other, a zero behind each.
void showDashTexts(RecordCoder& coder, const std::vector<std::int64_t>& shapes, int areaKey) {
  RecordValues& values = coder.values();
  const std::string area = values.bytesOf(*values.first(areaKey));
  const std::size_t unit = coder.since(Version::R2007) ? 2 : 1;
  ValueCursor cursor(values);
  std::vector<std::wstring> texts;
  for (const std::int64_t flags : shapes) {
    if ((flags & kIsText) == 0) {
      texts.emplace_back();
      continue;
    }
    std::size_t at = static_cast<std::size_t>(cursor.take(kPlaceOfText)->integer) * unit;
    std::string raw;
    std::wstring text;
    for (; at < area.size() && area.size() - at >= unit; at += unit) {
      const auto low = static_cast<std::uint8_t>(area[at]);
      const auto high = unit == 2 ? static_cast<std::uint8_t>(area[at + 1]) : std::uint8_t{0};
      if (low == 0 && high == 0) {
        break;
      }
      raw += area[at];
      text += static_cast<wchar_t>(low | high << 8);
    }
    texts.push_back(unit == 2 ? text : coder.codePage().decode(raw));
  }
  for (std::wstring& text : texts) {
    coder.impliedText(9, std::move(text));
  }
}

void codeLinetype(RecordCoder& coder, const DrawingFacts&) {
  constexpr std::size_t kTextArea = 256;
  constexpr int kArea = -251;
  coder.TV(2);
  coder.impliedInteger(70, codeDependence(coder));
  coder.TV(3);
  coder.BD(40);
  coder.RC(72, 'A');
  const std::size_t dashes = coder.countRC(73, 49);
  std::vector<std::int64_t> shapes(dashes);
  bool hasText = false;
  for (std::size_t i = 0; i < dashes && !coder.hasFailed(); ++i) {
    coder.BD(49);
    shapes[i] = codeDashShape(coder);
    hasText = hasText || (shapes[i] & kIsText) != 0;
  }
  if (!coder.since(Version::R2007)) {
    coder.bytes(kArea, kTextArea);
  } else if (hasText) {
    coder.bytes(kArea, 2 * kTextArea);
  }
  if (hasText && coder.isReading() && !coder.hasFailed()) {
    showDashTexts(coder, shapes, kArea);
  }
  coder.H(kExternalBlock, kHardPointer);
  for (std::size_t i = 0; i < dashes && !coder.hasFailed(); ++i) {
    coder.H(340, kHardPointer);
  }
}

void codeAppId(RecordCoder& coder, const DrawingFacts&) {
  coder.TV(2);
  coder.impliedInteger(70, codeDependence(coder));
  coder.RC(71);
  coder.H(kExternalBlock, kHardPointer);
}

void codeUcs(RecordCoder& coder, const DrawingFacts&) {
  coder.TV(2);
  coder.impliedInteger(70, codeDependence(coder));
  coder.point3BD(10);
  coder.point3BD(11);
  coder.point3BD(12);
  if (coder.since(Version::R2000)) {
    coder.BD(146);
    coder.BS(79);
    coder.BS(-261);
  }
  coder.H(kExternalBlock, kHardPointer);
  if (coder.since(Version::R2000)) {
    coder.H(346, kHardPointer);
    coder.H(-262, kHardPointer);
  }
}

#define RECORD(CLASS) "@AcDbSymbolTableRecord @" CLASS " "

constexpr Kind kKinds[] = {
    {48, "BLOCK_CONTROL", Family::Table, codeTableOfTwoMore, ""},
    {50, "LAYER_CONTROL", Family::Table, codeTable, ""},
    {52, "STYLE_CONTROL", Family::Table, codeTable, ""},
    {56, "LTYPE_CONTROL", Family::Table, codeTableOfTwoMore, ""},
    {60, "VIEW_CONTROL", Family::Table, codeTable, ""},
    {62, "UCS_CONTROL", Family::Table, codeTable, ""},
    {64, "VPORT_CONTROL", Family::Table, codeTable, ""},
    {66, "APPID_CONTROL", Family::Table, codeTable, ""},
    {68, "DIMSTYLE_CONTROL", Family::Table, codeDimStyleTable, ""},
    {49, "BLOCK_RECORD", Family::TableRecord, codeBlockHeader,
     RECORD("AcDbBlockTableRecord") "2 340 310b 102? ( 331 ) 102#1? 70 280 281"},
    {51, "LAYER", Family::TableRecord, codeLayer,
     RECORD("AcDbLayerTableRecord") "2 70 62 420? 430? 6:LTYPE 290?1 370w 390 347 348"},
    {53, "STYLE", Family::TableRecord, codeStyle,
     RECORD("AcDbTextStyleTableRecord") "2 70 40 41 50a 71 42 3 4"},
    {57, "LTYPE", Family::TableRecord, codeLinetype,
     RECORD("AcDbLinetypeTableRecord") "2 70 3 72 73 40 ( 49 74 75&74 340&74 46&74 50a&74 44&74 "
                                       "45&74 9&74? )"},
    {63, "UCS", Family::TableRecord, codeUcs,
     RECORD("AcDbUCSTableRecord") "2 70 10p 11p 12p 79 146 346?0"},
    {67, "APPID", Family::TableRecord, codeAppId, RECORD("AcDbRegAppTableRecord") "2 70 71?0"},
};

}  // namespace

std::span<const Kind> tableKinds() {
  return kKinds;
}

std::int64_t codeFlagBit(RecordCoder& coder, int key, std::int64_t mask, std::int64_t shown) {
  if (coder.isReading()) {
    return coder.B(key) != 0 ? mask : 0;
  }
  coder.dataOut().bit((shown & mask) != 0);
  return shown & mask;
}

std::int64_t codeDependence(RecordCoder& coder) {
  constexpr int kReferenced = -271;
  constexpr int kReferenceIndex = -272;
  constexpr int kDependent = -273;
  constexpr std::int64_t kDependentIndex = 0x100;
  if (coder.since(Version::R2007)) {
    return coder.BS(kReferenceIndex) == kDependentIndex ? kDependsOnReference : 0;
  }
  coder.B(kReferenced);  // DXF does not show it
  coder.BS(kReferenceIndex);
  const bool isDependent = coder.B(kDependent) != 0;
  return isDependent ? kDependsOnReference : 0;
}

void codeLayerColor(RecordCoder& coder, bool isOff, int indexKey, int trueKey, int namesKey) {
  constexpr std::int64_t kValue = 0xFFFFFF;
  const auto shownIndex = [&] {
    const std::int64_t index = coder.nextInteger(62, 7);
    return index < 0 ? -index : index;
  };
  if (!coder.since(Version::R2004)) {
    if (coder.isReading()) {
      const std::int64_t index = coder.BS(indexKey);
      coder.impliedInteger(62, isOff ? -index : index);
    } else {
      coder.dataOut().bitShort(static_cast<std::uint16_t>(shownIndex()));
    }
    return;
  }
  coder.BS(indexKey);
  std::int64_t method = 0;
  if (coder.isReading()) {
    const std::int64_t value = coder.BL(trueKey);
    method = value >> 24 & 0xFF;
    const bool isTrue = method == kMethodTrue;
    const std::int64_t index = isTrue ? nearestIndex(value) : value & 0xFF;
    coder.impliedInteger(62, isOff ? -index : index);
    if (isTrue) {
      coder.impliedInteger(420, value & kValue);
    }
  } else {
    const Value* const trueColor = coder.next(420);
    const std::int64_t value = trueColor != nullptr && trueColor->integer != 0
                                   ? kMethodTrue << 24 | (trueColor->integer & kValue)
                                   : kMethodIndexed << 24 | (shownIndex() & 0xFF);
    coder.dataOut().bitLong(static_cast<std::uint32_t>(value));
    // Names are those of the former colour.
    if (value != (coder.nextInteger(trueKey, value) & 0xFFFFFFFF)) {
      coder.dataOut().rawChar(0);
      return;
    }
  }
  const std::int64_t names = coder.RC(namesKey);
  if ((names & 1) != 0) {
    coder.TV(namesKey - 20);
  }
  if ((names & 2) != 0) {
    coder.TV(namesKey - 21);
  }
  if (coder.isReading() && (names & 3) != 0) {
    const RecordValues& values = coder.values();
    const Value* const book = values.first(namesKey - 21);
    const Value* const name = values.first(namesKey - 20);
    coder.impliedText(430, (book == nullptr ? std::wstring() : values.textOf(*book) + L'$') +
                               (name == nullptr ? std::wstring() : values.textOf(*name)));
  }
}

}  // namespace quoin::dwg
