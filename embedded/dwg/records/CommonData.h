// What all records begin with: type, handle, extended data, owner, reactors, extension
// dictionary; and what all entities have beside: space, layer, linetype, colour, line weight.
//
// Source: Open Design Specification for .dwg files, "Common entity data", "Common object data",
// "Extended object data".
#pragma once

#include "embedded/dwg/records/DrawingFacts.h"
#include "embedded/dwg/records/RecordCoder.h"

namespace quoin::dwg {

/// Keys of what stands in front of a record's own fields.
enum CommonKey : int {
  kExtendedDataApp = -1,  // once for each application, with its bytes
  kExtendedDataBytes = -2,
  kEntityMode = -4,  // 0: owner named, 1: paper space, 2: model space
  kOwner = -5,
  kReactorCount = -6,
  kReactor = -7,
  kNoExtensionDictionary = -8,
  kExtensionDictionary = -9,
  kHasBinaryData = -10,
  kNoLinks = -11,
  kPrevious = -12,
  kNext = -13,
  kColorCode = -14,
  kColorHandle = -15,
  kLinetypeForm = -16,
  kMaterialForm = -17,
  kPlotStyleForm = -18,
  kHasVisualStyles = -19,  // three times
  kVisualStyle = -20,
  kType = -21,
  kOwnHandle = -22,
  kTrueColorCode = -24,  // what the colour is (0xC2) and its red, green, blue
};

/// Keys of the tags that all entities share: their group code + kCommon.
inline constexpr int common(int code) {
  return code + kCommon;
}
inline constexpr int kGraphics = common(310);  // the picture of a proxy

/// How DXF spells the tags behind the marker AcDbEntity.
extern const char* const kEntityLayout;

/// Type, handle, extended data. Returns the type.
std::uint16_t codeHead(RecordCoder& coder, std::uint16_t type);
/// What an entity has in front of its kind's own fields, behind codeHead().
void codeEntity(RecordCoder& coder, const DrawingFacts& facts);
/// What an object has in front of its kind's own fields, behind codeHead().
void codeObject(RecordCoder& coder);

/// What a colour is, in the highest byte of its number.
enum ColorMethod : std::int64_t {
  kMethodByLayer = 0xC0,
  kMethodByBlock = 0xC1,
  kMethodTrue = 0xC2,  // red, green, blue
  kMethodIndexed = 0xC3,
  kMethodNone = 0xC8,
};

/// A colour of an object or a part of one (CMC) as the file has it: the index and, from R2004 on,
/// its number under `rawKey`, what names follow under `hiddenKey` and these under the two below.
void codeColor(RecordCoder& coder, int key, int rawKey, int hiddenKey);

/// The same without the picture of a proxy: what a text within an attribute has.
void codeEmbeddedEntity(RecordCoder& coder, const DrawingFacts& facts);
/// The palette's nearest index to red, green, blue.
std::int64_t nearestIndex(std::int64_t rgb);
/// The same as DXF shows it: `indexKey` has 256 by layer, 0 by block or the index, `trueKey` (0:
/// not shown) red, green and blue where the colour is one; what the file says under five hidden
/// keys from `hiddenKey` downwards.
void codeShownColor(RecordCoder& coder, int indexKey, int trueKey, int hiddenKey);
/// The same as one number: its method in the highest byte, below index or red, green and blue.
void codeRawColor(RecordCoder& coder, int key, int hiddenKey);

}  // namespace quoin::dwg
