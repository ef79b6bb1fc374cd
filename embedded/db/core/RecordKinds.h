// What the database knows of each kind of record, one row a kind: the classes that show it, the
// first version whose files have it, how it is measured, transformed and taken out of a block. The
// rows stand beside the code of their kinds, in ../entities and ../tables; what all kinds do alike
// is here, and reads the rows. A record of a kind without a row is shown by a plain AcDbEntity or
// AcDbObject, with all its data.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "embedded/db/core/DatabaseImpl.h"
#include "gemat3d.h"

namespace quoin::db {

struct Drawn;
struct OwnBlock;
struct TransformSchema;
class DrawWalk;
class ExtentsWalk;

/// One subclass of a kind: its marker and the group codes that are its own.
struct Subclass {
  std::string_view marker;
  std::span<const int> codes;
};

/// A class whose objects are views of records of a kind.
struct ClassRow {
  AcRxClass* (*descriptor)();
  AcDbObject* (*make)();
  /// Codes and values in turn, separated by blanks: the record of a new object, in the
  /// neutral format. Values hold no blanks; "~" stands for an empty one. Empty for a class whose
  /// objects are read, copied and changed, but not made.
  std::string_view newRecord;
  /// Which subclass takes which tag of a record without markers; the one without codes takes
  /// those that none names. Empty: such a record cannot be given markers.
  std::span<const Subclass> subclasses = {};
};

template <class T>
AcDbObject* makeObject() {
  return new T;
}

template <class T>
constexpr ClassRow classRow(std::string_view newRecord, std::span<const Subclass> subclasses = {}) {
  return {&T::desc, &makeObject<T>, newRecord, subclasses};
}

/// The class of one record of a kind that several classes show; `stub` is null for a free record.
using ClassFunction = const ClassRow* (*)(const TagList& tags, const AcDbStub* stub);
/// Adds the box of what an entity shows to `box`.
using ExtentsFunction = Acad::ErrorStatus (*)(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                              ExtentsWalk& walk, AcDbExtents& box);
/// Draws what an entity shows.
using DrawFunction = void (*)(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk);
/// Edits the entity's record.
using TransformFunction = Acad::ErrorStatus (*)(RecordEdit& edit, const AcGeMatrix3d& matrix);
/// Edits the record of one of its parts; `owner` is the owner's record as it was.
using PartFunction = Acad::ErrorStatus (*)(RecordEdit& edit, const TagList& owner,
                                           const AcGeMatrix3d& matrix);
/// The block that shows an entity and belongs to it alone, and how it follows the entity.
using OwnBlockFunction = OwnBlock (*)(DatabaseImpl& database, const TagList& tags,
                                      const AcGeMatrix3d& matrix);

/// Whether records of vertices or attributes stand behind an entity's own record.
enum class Parts : std::uint8_t { None, Optional, Always };

struct RecordKind {
  std::string_view name;  // "LINE"
  /// The first version whose files know the kind.
  dxf::Version since = dxf::Version::R10;
  /// The first is that of a new record, unless `classOf` chooses.
  std::span<const ClassRow> classes = {};
  ClassFunction classOf = nullptr;

  // --- entities ---------------------------------------------------------------------------
  /// Those group codes of properties that all entities share (layer, colour, ...) which the kind
  /// uses for something of its own. Without a value the kind is not known well enough, and shared
  /// properties are read behind the marker AcDbEntity alone.
  std::optional<std::span<const int>> ownCodes = std::nullopt;
  Parts parts = Parts::None;
  /// The subclass that names a text style (7); null for kinds without one.
  const SubclassLayout* textStyle = nullptr;
  /// Whether it is whole in its own record and parts, so that a copy may stand anywhere. Others
  /// name objects that know them alone: the block of a dimension, the definition of an image.
  bool isSelfContained = false;
  ExtentsFunction extents = nullptr;
  /// Null for a kind that nobody can draw: it is counted among what was left out.
  DrawFunction draw = nullptr;
  /// How it is transformed: by a function, or by what its group codes mean.
  TransformFunction transform = nullptr;
  const TransformSchema* schema = nullptr;
  PartFunction transformPart = nullptr;
  OwnBlockFunction ownBlock = nullptr;
};

/// For kinds that use no shared group code for themselves.
inline constexpr std::span<const int> kNoOwnCodes{};

// --- the rows: each list stands in the room of its kinds ------------------------------------

/// The kinds of entities, family by family (entities/EntityKinds.cpp).
std::span<const std::span<const RecordKind>> entityFamilies();
/// The kinds of symbol table records, in the order of TableKind (tables/TableKinds.cpp).
std::span<const RecordKind> tableRecordKinds();
/// The classes of the symbol tables, in the order of TableKind.
std::span<const ClassRow> tableClasses();
/// The kinds of objects: records of the OBJECTS section.
std::span<const RecordKind> objectKinds();

// --- look-up --------------------------------------------------------------------------------

/// Null for a kind without a row.
const RecordKind* entityKind(std::string_view name);
/// The row of a record that is none of a drawing's yet: an entity, a table record or an object.
const RecordKind* kindOf(const TagList& tags);

/// The row of an object's own class; null for a plain entity or object.
const ClassRow* classOf(const AcRxClass* descriptor);
/// The row for a record (POLYLINE and VERTEX differ by their flags, INSERT by its array); null for
/// a kind that no class shows.
const ClassRow* classOf(const RecordKind& kind, const TagList& tags);
/// The row for a stub, symbol tables included; null as above.
const ClassRow* classOf(const AcDbStub& stub);

/// The row of a table's records.
const ClassRow& tableRecordClass(TableKind kind);

/// The record that a new object of the class begins with, in the neutral format.
std::string newRecordOf(const ClassRow& row);

/// A new view of the class that shows this stub, not open yet.
std::unique_ptr<AcDbObject> makeView(const AcDbStub& stub);

}  // namespace quoin::db
