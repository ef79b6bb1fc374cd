// Which class shows which record: one entry a class, with the record that a new object of the
// class begins with and the subclasses that its kind consists of. Kinds without an entry are
// shown by a plain AcDbEntity or AcDbObject, with all their data.
#pragma once

#include <span>
#include <string_view>

#include "embedded/db/DatabaseImpl.h"

namespace quoin::db {

/// One subclass of a kind: its marker and the group codes that are its own.
struct Subclass {
  std::string_view marker;
  std::span<const int> codes;
};

struct ClassEntry {
  AcRxClass* (*descriptor)();
  AcDbObject* (*make)();
  std::string_view kind;  // "LINE"
  /// Codes and values in turn, separated by blanks: the record of a new object, in the
  /// neutral format. Values hold no blanks; "~" stands for an empty one.
  std::string_view newRecord;
  /// The first version whose files know the kind.
  dxf::Version since = dxf::Version::R10;
  /// Which subclass takes which tag of a record without markers; the one without codes takes
  /// those that none names. Empty: such a record cannot be given markers.
  std::span<const Subclass> subclasses = {};
};

/// The entry of an object's own class; null for a plain entity or object.
const ClassEntry* entryOf(const AcRxClass* descriptor);
/// The entry for a record of this kind (POLYLINE and VERTEX differ by their flags, INSERT by
/// its array); null for a kind that no class shows.
const ClassEntry* entryOf(std::string_view kind, const TagList& tags);
/// The entry for a stub, symbol tables included; null as above.
const ClassEntry* entryOf(const AcDbStub& stub);

/// The first version whose files know a kind of entity; R10 for kinds that this list leaves
/// open.
dxf::Version firstVersionOf(std::string_view kind);

/// The record that a new object of the class begins with, in the neutral format.
std::string newRecordOf(const ClassEntry& entry);

/// A new view of the class that shows this stub, not open yet.
std::unique_ptr<AcDbObject> makeView(const AcDbStub& stub);

}  // namespace quoin::db
