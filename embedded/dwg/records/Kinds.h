// The kinds of records that are read into tags and written from them: one row each.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "embedded/dwg/records/DrawingFacts.h"
#include "embedded/dwg/records/RecordCoder.h"

namespace quoin::dwg {

/// Which tags stand in front of the kind's own.
enum class Family : std::uint8_t { Entity, Object, TableRecord, Table };

struct Kind {
  /// The object type; 0 where the drawing's classes number the kind.
  std::uint16_t type = 0;
  /// What DXF calls it (group 0).
  const char* name = "";
  Family family = Family::Entity;
  /// The fields behind those that all records share, in their order in a DWG record.
  void (*code)(RecordCoder& coder, const DrawingFacts& facts) = nullptr;
  /// The tags behind those that all records share (DxfLayout.h).
  const char* layout = "";
  /// Whether the tags say less than the record does.
  bool isPartial = false;
  /// Puts what DXF may spell in two ways into the one that DWG has, when tags were read.
  void (*settle)(RecordValues& values) = nullptr;
};

std::span<const Kind> curveKinds();
std::span<const Kind> polylineKinds();
std::span<const Kind> textKinds();
std::span<const Kind> blockKinds();
std::span<const Kind> fillKinds();
std::span<const Kind> dimensionKinds();
std::span<const Kind> leaderKinds();
std::span<const Kind> hatchKinds();
std::span<const Kind> multilineKinds();
std::span<const Kind> viewportKinds();
std::span<const Kind> imageKinds();
std::span<const Kind> tableKinds();
std::span<const Kind> dimensionStyleKinds();
std::span<const Kind> layoutKinds();
std::span<const Kind> freeRecordKinds();
std::span<const Kind> blockDataKinds();
std::span<const Kind> objectKinds();

/// The kind with this object type, or of a class with this DXF name; null for one that is kept
/// unread.
HOST_API const Kind* kindOfType(std::uint16_t type);
HOST_API const Kind* kindOfClass(std::string_view dxfName);

/// All rows.
HOST_API const std::vector<const Kind*>& allKinds();
/// All kinds with this DXF name: there are seven of DIMENSION.
std::vector<const Kind*> kindsNamed(std::string_view dxfName);
/// What DXF calls an object type up to 499 that has no row; empty for none.
HOST_API std::string_view nameOfType(std::uint16_t type);

/// Handles that several kinds have at their end.
enum OwnedKey : int {
  kOwned = -40,       // R2004 and later: all of them
  kFirstOwned = -41,  // up to R2000
  kLastOwned = -42,
  kSequenceEnd = -43,
  kExternalBlock = -44,
  kHiddenFlags = -45,
  // Of a block header:
  kBlockFlags = -46,  // group 70 of its BLOCK
  kBlockBegin = -47,  // BLOCK
  kBlockEnd = -48,    // ENDBLK
  kBlockPath = -49,
  kBlockDescription = -50,
  kBlockInsert = -51,  // references to it
  kBlockBase = -540,   // and -530, -520
  // Of the table of dimension styles: some of them once more.
  kListedStyle = -203,
  kBlockName = -210,  // of a nameless one its beginning ("*D")
  kIsNameless = -211,
  kHasAttributes = -212,  // ATTDEFs
};

/// First and last of what an entity owns, or all of it, and what ends them.
void codeOwned(RecordCoder& coder, std::size_t count);
/// A bit of its own for one flag of a group that `shown` has as a whole.
std::int64_t codeFlagBit(RecordCoder& coder, int key, std::int64_t mask, std::int64_t shown);
/// The bits of a table record that say how it depends on an external reference; its group 70 shows
/// bit 16.
std::int64_t codeDependence(RecordCoder& coder);
/// The colour of a layer: 62, negative where the layer is off, and 420.
void codeLayerColor(RecordCoder& coder, bool isOff, int indexKey, int trueKey, int namesKey);

}  // namespace quoin::dwg
