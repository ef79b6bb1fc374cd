// Dictionaries as records: their entries, new objects in them, and the named dictionaries
// under the drawing's root.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "embedded/db/core/DatabaseImpl.h"

namespace quoin::db {

/// One entry: the name (group 3) with the handle behind it.
struct DictionaryEntry {
  std::size_t at = 0;  // index of the name's tag; the handle's is the next
  std::wstring name;
  AcDbStub* object = nullptr;  // null for a handle that no record has
};

/// The entries of a dictionary's record, those of erased objects included.
std::vector<DictionaryEntry> entriesOf(const DatabaseImpl& database, const TagList& dictionary);

/// Puts an entry behind the last one.
void addEntry(RecordEdit& dictionary, std::wstring_view name, std::uint64_t handle);
void removeEntry(RecordEdit& dictionary, const DictionaryEntry& entry);

/// Names of the dictionaries that the root has in every drawing.
namespace dictionaries {
inline constexpr std::wstring_view kRoot = L"";
inline constexpr std::wstring_view kMlineStyles = L"ACAD_MLINESTYLE";
inline constexpr std::wstring_view kMaterials = L"ACAD_MATERIAL";
inline constexpr std::wstring_view kGroups = L"ACAD_GROUP";
inline constexpr std::wstring_view kLayouts = L"ACAD_LAYOUT";
inline constexpr std::wstring_view kPlotStyleNames = L"ACAD_PLOTSTYLENAME";
}  // namespace dictionaries

/// A dictionary of the root, or the root itself; null if the drawing does not have it.
AcDbStub* namedDictionary(const DatabaseImpl& database, std::wstring_view name);
/// As above, made where a drawing of R13 or later lacks it; null before R13.
/// Fails: throws FileError, std::bad_alloc.
AcDbStub* ensureNamedDictionary(DatabaseImpl& database, std::wstring_view name);

/// A new dictionary record that this object owns; hard owners keep their entries from being
/// purged.
/// Fails: throws FileError, std::bad_alloc.
AcDbStub* appendDictionary(DatabaseImpl& database, AcDbStub* owner, bool isHardOwner);

/// Appends a free object that a dictionary is to own; the caller makes the entry. The object
/// is a view of the new record then, open for write.
/// Fails: throws FileError (eIllegalEntityType), std::bad_alloc; nothing was appended then.
void appendFreeObject(DatabaseImpl& database, AcDbStub& dictionary, AcDbObject& object);

/// Whether files of the drawing may hold objects of this kind: the format's own kinds, and
/// those that the drawing's CLASSES declare.
bool isDeclared(const DatabaseImpl& database, std::string_view kind);

/// Whether another record points to this object as to something it needs (a multiline to its
/// style, an entity to its material).
bool isPointedTo(const DatabaseImpl& database, const AcDbStub& object);

/// Takes an object out of the dictionary that lists it, or puts it back, as erasing goes.
/// Fails: returns eDuplicateKey when the name is another object's by now; throws FileError.
Acad::ErrorStatus eraseEntry(DatabaseImpl& database, AcDbStub& object, bool erasing);

}  // namespace quoin::db
