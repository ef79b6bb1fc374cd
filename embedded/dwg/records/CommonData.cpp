#include "embedded/dwg/records/CommonData.h"

#include <cstdint>

#include "dbcolor.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

// The flags above a colour's index.
constexpr std::int64_t kTrueColor = 0x8000;
constexpr std::int64_t kNamedColor = 0x4000;
constexpr std::int64_t kTransparency = 0x2000;
constexpr std::int64_t kIndexMask = 0x1FFF;
constexpr std::int64_t kByLayer = 256;
constexpr std::int64_t kNoTrueColor = -1;

constexpr int kMethodShift = 24;
constexpr std::int64_t kColorValue = 0xFFFFFF;

std::int64_t rawOfColor(std::int64_t rgb) {
  return kMethodTrue << kMethodShift | (rgb & kColorValue);
}

constexpr int kMostExtendedData = 0x7FFF;

void codeExtendedData(RecordCoder& coder) {
  if (coder.isReading()) {
    BitReader& data = coder.data();
    while (!coder.hasFailed()) {
      const std::uint16_t size = data.bitShort().value;
      if (size == 0) {
        return;
      }
      const HandleReference application = data.handle();
      coder.values().addHandle(kExtendedDataApp, application.resolved(coder.own()), application);
      coder.bytes(kExtendedDataBytes, size);
    }
    return;
  }
  BitWriter& out = coder.dataOut();
  for (std::size_t left = coder.amount(kExtendedDataApp); left != 0; --left) {
    const std::string bytes = coder.nextBytes(kExtendedDataBytes);
    const Value* const application = coder.next(kExtendedDataApp);
    if (bytes.size() > kMostExtendedData) {
      coder.fail();
      return;
    }
    out.bitShort(static_cast<std::uint16_t>(bytes.size()));
    out.handle(
        application->reference.code != 0
            ? application->reference
            : absoluteReference(static_cast<std::uint64_t>(application->integer), kHardPointer));
    coder.impliedHandle(kExtendedDataApp, 0);
    coder.bytes(kExtendedDataBytes, bytes.size());
  }
  out.bitShort(0);
}

void codeReactors(RecordCoder& coder) {
  const std::size_t count = coder.countBL(kReactorCount, kReactor);
  for (std::size_t i = 0; i < count && !coder.hasFailed(); ++i) {
    coder.H(kReactor, kSoftPointer);
  }
}

void codeExtensionDictionary(RecordCoder& coder) {
  const bool isMissing =
      coder.since(Version::R2004) &&
      coder.omits(kNoExtensionDictionary, coder.nextHandle(kExtensionDictionary) == 0);
  if (!isMissing) {
    coder.H(kExtensionDictionary, kHardOwner);
  }
  if (coder.since(Version::R2013)) {
    coder.B(kHasBinaryData);
  }
}

void codeGraphics(RecordCoder& coder) {
  const bool hasGraphics =
      coder.isReading() ? coder.data().bit() : !coder.nextBytes(kGraphics).empty();
  if (!coder.isReading()) {
    coder.dataOut().bit(hasGraphics);
  }
  if (!hasGraphics) {
    return;
  }
  std::uint64_t size = coder.isReading() ? 0 : coder.nextBytes(kGraphics).size();
  if (coder.since(Version::R2010)) {
    if (coder.isReading()) {
      size = coder.data().bitLongLong();
    } else {
      coder.dataOut().bitLongLong(size);
    }
  } else if (coder.isReading()) {
    size = coder.data().rawLong();
  } else {
    coder.dataOut().rawLong(static_cast<std::uint32_t>(size));
  }
  coder.impliedInteger(common(coder.since(Version::R2010) ? 160 : 92),
                       static_cast<std::int64_t>(size));
  coder.bytes(kGraphics, size);
}

/// The value of a true colour; DXF shows red, green and blue of it.
void codeTrueColor(RecordCoder& coder) {
  if (coder.isReading()) {
    coder.impliedInteger(common(420), coder.BL(kTrueColorCode) & kColorValue);
    return;
  }
  const std::int64_t shown = coder.nextInteger(common(420)) & kColorValue;
  coder.impliedInteger(common(420), 0);
  if (coder.next(kTrueColorCode) != nullptr &&
      (coder.nextInteger(kTrueColorCode) & kColorValue) == shown) {
    coder.BL(kTrueColorCode);
  } else {
    coder.impliedInteger(kTrueColorCode, 0);
    coder.dataOut().bitLong(static_cast<std::uint32_t>(rawOfColor(shown)));
  }
}

/// Whether the colour is still that of the record of a colour book.
bool isBookColor(RecordCoder& coder, const DrawingFacts& facts) {
  const std::uint64_t handle = coder.nextHandle(kColorHandle);
  const auto found = facts.bookColors.find(handle);
  return handle != 0 && (found == facts.bookColors.end() ||
                         coder.nextInteger(common(420), kNoTrueColor) == found->second.rgb);
}

/// The colour of an entity: its index with flags above it, and what these flags ask for. Returns
/// whether it is in a colour book, whose record the handle names.
bool codeEntityColor(RecordCoder& coder, const DrawingFacts& facts) {
  if (!coder.since(Version::R2004)) {
    coder.BS(common(62), kByLayer);
    return false;
  }
  std::int64_t code = 0;
  if (coder.isReading()) {
    code = static_cast<std::uint16_t>(coder.BS(kColorCode));
    coder.impliedInteger(common(62), code & kIndexMask);
  } else {
    // What the file says stays as long as it still says the same.
    const std::int64_t index = coder.nextInteger(common(62), kByLayer);
    coder.impliedInteger(common(62), 0);
    const auto former = static_cast<std::uint16_t>(coder.nextInteger(kColorCode, -1));
    const bool isBook = isBookColor(coder, facts);
    const bool isTrue = isBook ? coder.next(kColorCode) != nullptr && (former & kTrueColor) != 0
                               : coder.nextInteger(common(420), kNoTrueColor) != kNoTrueColor;
    code = (index & kIndexMask) | (isTrue ? kTrueColor : 0) | (isBook ? kNamedColor : 0) |
           (coder.nextInteger(common(440)) != 0 ? kTransparency : 0);
    const Value* const kept = coder.next(kColorCode);
    coder.dataOut().bitShort(static_cast<std::uint16_t>(code),
                             kept != nullptr && former == code ? kept->form : -1);
    coder.impliedInteger(kColorCode, 0);
  }
  const bool isNamed = (code & kNamedColor) != 0;
  if ((code & kTrueColor) != 0 && !isNamed) {
    codeTrueColor(coder);
  } else if (!isNamed) {
    coder.impliedInteger(common(420), kNoTrueColor);
  }
  if ((code & kTransparency) != 0) {
    coder.BL(common(440));
  } else {
    coder.impliedInteger(common(440), 0);
  }
  return isNamed;
}

/// A reference that two bits may stand for: 0 by layer, 1 by block, 3 a handle.
void codeFormOrHandle(RecordCoder& coder, int formKey, int key, std::uint64_t byBlock) {
  constexpr std::int64_t kByBlock = 1;
  constexpr std::int64_t kNamed = 3;
  std::int64_t form = 0;
  if (coder.isReading()) {
    form = coder.BB(formKey);
  } else {
    const bool isByBlock = byBlock != 0 && coder.nextHandle(key) == byBlock &&
                           coder.nextInteger(formKey, kNamed) != kNamed;
    const bool isNamed = coder.nextHandle(key) != 0 && !isByBlock;
    form = isNamed ? kNamed : coder.nextInteger(formKey);
    form = isByBlock ? kByBlock : !isNamed && form == kNamed ? 0 : form;
    coder.impliedInteger(formKey, 0);
    coder.dataOut().bits(static_cast<std::uint32_t>(form), 2);
  }
  if (form == kNamed) {
    coder.H(key, kHardPointer);
  } else if (form == kByBlock && byBlock != 0) {
    coder.impliedHandle(key, byBlock);
  }
}

void codeLinetype(RecordCoder& coder, const DrawingFacts& facts) {
  // What two bits say.
  constexpr std::int64_t kFormByLayer = 0;
  constexpr std::int64_t kFormByBlock = 1;
  constexpr std::int64_t kFormContinuous = 2;
  constexpr std::int64_t kFormNamed = 3;
  const int key = common(6);
  std::int64_t form = kFormNamed;
  if (coder.isReading()) {
    form = coder.BB(kLinetypeForm);
    if (form != kFormNamed) {
      coder.impliedHandle(key, form == kFormByLayer   ? facts.byLayerLinetype
                               : form == kFormByBlock ? facts.byBlockLinetype
                                                      : facts.continuousLinetype);
    }
  } else {
    const std::uint64_t linetype = coder.nextHandle(key);
    const bool wasNamed = coder.nextInteger(kLinetypeForm, 0) == kFormNamed;
    coder.impliedInteger(kLinetypeForm, 0);
    // A file may name the linetype that two bits could stand for.
    const Value* const kept = coder.next(key);
    const bool isNamed = wasNamed && kept != nullptr && kept->reference.code != 0;
    form = isNamed                                              ? kFormNamed
           : linetype == 0 || linetype == facts.byLayerLinetype ? kFormByLayer
           : linetype == facts.byBlockLinetype                  ? kFormByBlock
           : linetype == facts.continuousLinetype && !wasNamed  ? kFormContinuous
                                                                : kFormNamed;
    coder.dataOut().bits(static_cast<std::uint32_t>(form), 2);
    if (form != kFormNamed) {
      coder.impliedHandle(key, 0);
    }
  }
  if (form == kFormNamed) {
    coder.H(key, kHardPointer);
  }
}

void codeOwner(RecordCoder& coder, const DrawingFacts& facts) {
  enum Mode : std::int64_t { kNamed = 0, kInPaperSpace = 1, kInModelSpace = 2 };
  std::int64_t mode = kNamed;
  if (coder.isReading()) {
    mode = coder.BB(kEntityMode);
    if (mode != kNamed) {
      coder.impliedHandle(kOwner, mode == kInPaperSpace ? facts.paperSpace : facts.modelSpace);
    }
  } else {
    const std::uint64_t owner = coder.nextHandle(kOwner);
    const bool wasNamed = coder.nextInteger(kEntityMode, kInPaperSpace) == kNamed;
    coder.impliedInteger(kEntityMode, 0);
    mode = wasNamed                    ? kNamed
           : owner == facts.modelSpace ? kInModelSpace
           : owner == facts.paperSpace ? kInPaperSpace
                                       : kNamed;
    coder.dataOut().bits(static_cast<std::uint32_t>(mode), 2);
    if (mode != kNamed) {
      coder.impliedHandle(kOwner, 0);
    }
  }
  if (mode == kNamed) {
    coder.H(kOwner, kSoftPointer);
  }
  // DXF says of entities in a layout but the model's that they are.
  if (coder.isReading()) {
    const Value* const owner = coder.values().first(kOwner);
    const auto block = facts.blocks.find(static_cast<std::uint64_t>(owner->integer));
    coder.impliedInteger(common(67),
                         block != facts.blocks.end() && block->second.isPaperSpace ? 1 : 0);
  }
}

}  // namespace

const char* const kEntityLayout =
    "@AcDbEntity 67#9?0 8#9:LAYER 6#9:LTYPE?ByLayer 347#9?0 62#9?256 420#9?-1 430#9? 440#9? 48#9?1 "
    "60#9?0 370#9w?29 390#9?0 284#9?0 92#9 160#9 310#9b";

std::uint16_t codeHead(RecordCoder& coder, std::uint16_t type) {
  type = coder.objectType(type);
  if (coder.isReading()) {
    const HandleReference own = coder.data().handle();
    coder.values().addHandle(kOwnHandle, own.offset, own);
  } else {
    const Value* const own = coder.next(kOwnHandle);
    coder.dataOut().handle(own != nullptr && own->reference.offset == coder.own()
                               ? own->reference
                               : absoluteReference(coder.own(), 0));
  }
  codeExtendedData(coder);
  return type;
}

namespace {

/// DXF shows red, green, blue and name of a colour that DWG refers to.
void codeBookColor(RecordCoder& coder, const DrawingFacts& facts) {
  const std::uint64_t handle = coder.H(kColorHandle, kHardPointer);
  const auto found = facts.bookColors.find(handle);
  if (found == facts.bookColors.end()) {
    coder.impliedInteger(common(420), kNoTrueColor);
  } else {
    coder.impliedInteger(common(420), found->second.rgb);
    coder.impliedText(common(430), found->second.name);
  }
}

}  // namespace

void codeEntity(RecordCoder& coder, const DrawingFacts& facts) {
  codeGraphics(coder);
  codeEmbeddedEntity(coder, facts);
}

void codeEmbeddedEntity(RecordCoder& coder, const DrawingFacts& facts) {
  if (!coder.since(Version::R2000)) {
    coder.sizeInBits();
  }
  codeOwner(coder, facts);
  codeReactors(coder);
  codeExtensionDictionary(coder);
  if (!coder.since(Version::R2000)) {
    coder.H(common(8), kHardPointer);
    if (!coder.omits(kLinetypeForm, coder.nextHandle(common(6)) == facts.byLayerLinetype)) {
      coder.H(common(6), kHardPointer);
    } else {
      coder.impliedHandle(common(6), facts.byLayerLinetype);
    }
  }
  if (!coder.since(Version::R2004)) {
    if (!coder.omits(kNoLinks, coder.next(kPrevious) == nullptr)) {
      coder.H(kPrevious, kSoftPointer);
      coder.H(kNext, kSoftPointer);
    }
  }
  if (codeEntityColor(coder, facts)) {
    codeBookColor(coder, facts);
  }
  coder.BD(common(48), 1.0);
  if (!coder.since(Version::R2000)) {
    coder.BS(common(60));
    return;
  }
  coder.H(common(8), kHardPointer);
  codeLinetype(coder, facts);
  if (coder.since(Version::R2007)) {
    codeFormOrHandle(coder, kMaterialForm, common(347), facts.byBlockMaterial);
    coder.RC(common(284));
  }
  codeFormOrHandle(coder, kPlotStyleForm, common(390), 0);
  if (coder.since(Version::R2010)) {
    for (int i = 0; i < 3; ++i) {
      if (coder.B(kHasVisualStyles) != 0) {
        coder.H(kVisualStyle, kHardPointer);
      }
    }
  }
  coder.BS(common(60));
  constexpr std::int64_t kByLayerWeight = 29;
  coder.RC(common(370), kByLayerWeight);
}

void codeObject(RecordCoder& coder) {
  if (!coder.since(Version::R2000)) {
    coder.sizeInBits();
  }
  coder.H(kOwner, kSoftPointer);
  codeReactors(coder);
  codeExtensionDictionary(coder);
}

namespace {

std::int64_t methodOf(std::int64_t raw) {
  return raw >> kMethodShift & 0xFF;
}

std::int64_t rawOfIndex(std::int64_t index) {
  return index == kByLayer ? kMethodByLayer << kMethodShift
         : index == 0      ? kMethodByBlock << kMethodShift
                           : kMethodIndexed << kMethodShift | (index & 0xFF);
}

std::int64_t indexOfRaw(std::int64_t raw, std::int64_t stored) {
  switch (methodOf(raw)) {
    case kMethodByLayer:
      return kByLayer;
    case kMethodByBlock:
      return 0;
    case kMethodIndexed:
      return raw & 0xFF;
    default:
      return stored != 0 ? stored : nearestIndex(raw);
  }
}

/// Names of the colour and of its book, where the byte in front says so.
void codeColorNames(RecordCoder& coder, int hiddenKey) {
  const std::int64_t names = coder.RC(hiddenKey);
  if ((names & 1) != 0) {
    coder.TV(hiddenKey - 1);
  }
  if ((names & 2) != 0) {
    coder.TV(hiddenKey - 2);
  }
}

std::int64_t asSigned(std::int64_t raw) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(raw));
}

}  // namespace

void codeColor(RecordCoder& coder, int key, int rawKey, int hiddenKey) {
  coder.BS(key);
  if (coder.since(Version::R2004)) {
    coder.BL(rawKey);
    codeColorNames(coder, hiddenKey);
  }
}

std::int64_t nearestIndex(std::int64_t rgb) {
  return AcCmEntityColor::lookUpACI(static_cast<Adesk::UInt8>(rgb >> 16),
                                    static_cast<Adesk::UInt8>(rgb >> 8),
                                    static_cast<Adesk::UInt8>(rgb));
}

void codeShownColor(RecordCoder& coder, int indexKey, int trueKey, int hiddenKey) {
  const int rawKey = hiddenKey - 1;
  if (!coder.since(Version::R2004)) {
    coder.BS(indexKey);
    return;
  }
  if (coder.isReading()) {
    const std::int64_t stored = coder.BS(hiddenKey);
    const std::int64_t raw = coder.BL(rawKey);
    coder.impliedInteger(indexKey, indexOfRaw(raw, stored));
    if (methodOf(raw) == kMethodTrue && trueKey != 0) {
      coder.impliedInteger(trueKey, raw & kColorValue);
    }
    codeColorNames(coder, hiddenKey - 2);
    return;
  }
  const std::int64_t index = coder.nextInteger(indexKey, kByLayer);
  const Value* const trueColor = trueKey == 0 ? nullptr : coder.next(trueKey);
  const std::int64_t formerRaw = coder.nextInteger(rawKey, kMethodByLayer << kMethodShift);
  const bool wasTrue = methodOf(formerRaw) == kMethodTrue;
  const bool staysIndex = indexOfRaw(formerRaw, coder.nextInteger(hiddenKey)) == index;
  const bool staysTrue = trueKey == 0 || (trueColor != nullptr) == wasTrue;
  if (coder.next(rawKey) != nullptr && staysIndex && staysTrue) {
    coder.BS(hiddenKey);
    if (wasTrue && trueColor != nullptr && (formerRaw & kColorValue) != trueColor->integer) {
      coder.dataOut().bitLong(static_cast<std::uint32_t>(rawOfColor(trueColor->integer)));
      coder.impliedInteger(rawKey, 0);
    } else {
      coder.BL(rawKey);
    }
  } else {
    coder.impliedInteger(hiddenKey, 0);
    coder.impliedInteger(rawKey, 0);
    coder.dataOut().bitShort(0);
    coder.dataOut().bitLong(static_cast<std::uint32_t>(
        trueColor != nullptr ? rawOfColor(trueColor->integer) : rawOfIndex(index)));
  }
  coder.impliedInteger(indexKey, 0);
  if (trueColor != nullptr) {
    coder.impliedInteger(trueKey, 0);
  }
  codeColorNames(coder, hiddenKey - 2);
}

void codeRawColor(RecordCoder& coder, int key, int hiddenKey) {
  if (coder.since(Version::R2004)) {
    coder.BS(hiddenKey);
    coder.BL(key, asSigned(rawOfIndex(0)));
    codeColorNames(coder, hiddenKey - 1);
    return;
  }
  if (coder.isReading()) {
    coder.impliedInteger(key, asSigned(rawOfIndex(coder.BS(hiddenKey))));
    return;
  }
  const std::int64_t raw = coder.nextInteger(key);
  coder.impliedInteger(key, 0);
  if (coder.next(hiddenKey) != nullptr &&
      asSigned(rawOfIndex(coder.nextInteger(hiddenKey))) == raw) {
    coder.BS(hiddenKey);
    return;
  }
  coder.impliedInteger(hiddenKey, 0);
  coder.dataOut().bitShort(static_cast<std::uint16_t>(indexOfRaw(raw, 0)));
}

}  // namespace quoin::dwg
