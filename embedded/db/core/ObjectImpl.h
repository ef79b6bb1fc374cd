// What stands behind an AcDbObject: the record that it is a view of, and how it is open.
//
// A resident object shows the record of an AcDbStub; a free one (made with `new` or cloned)
// holds a record of its own and, for polylines and block references, its parts: vertices and
// attributes. A closed one shows nothing; it is kept in quarantine for a while, so that
// whoever still uses it gets harmless values and is counted (hostx::misuse).
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dbmain.h"
#include "embedded/db/records/RecordEdit.h"
#include "embedded/db/records/TagList.h"
#include "embedded/dxf/RecordStore.h"

namespace quoin::db {

struct DatabaseImpl;

enum class OpenState : std::uint8_t { Free, Read, Write, Closed };

/// What a class keeps decoded while the record does not change.
struct Decoded {
  virtual ~Decoded() = default;
};

struct ObjectImpl {
  OpenState state = OpenState::Free;
  bool isModified = false;
  std::uint16_t readers = 0;
  AcDbStub* stub = nullptr;
  DatabaseImpl* database = nullptr;

  std::uint64_t closedHandle = 0;  // of a closed object, for messages

  /// A line as it was made, while it has no bytes: most lines that are made for a computation are
  /// read and deleted without anybody asking for their record.
  struct MadeLine {
    AcGePoint3d start;
    AcGePoint3d end;
  };
  std::optional<MadeLine> madeLine;

  // --- decoded, until the record changes --------------------------------------------------
  std::optional<TagList> tags;
  std::unique_ptr<Decoded> decoded;

  void forgetDecoded() {
    tags.reset();
    decoded.reset();
  }

  // --- what free objects have, and few others -----------------------------------------------
  struct Own {
    std::string bytes;  // empty until first read: the class's default record
    std::shared_ptr<const dxf::Format> format;
    std::vector<std::unique_ptr<AcDbObject>> parts;
    AcDbObject* partOf = nullptr;
    /// Where the object that this is a copy of stood; decides what is kept of the copy's space.
    const AcDbStub* copiedFromOwner = nullptr;
    /// The drawing in which names are looked up while the object is in none.
    std::weak_ptr<DatabaseImpl* const> namesFrom;
    /// Texts handed out as pointers, by group code.
    std::list<std::pair<int, std::wstring>> texts;
  };
  /// An empty one where nothing of it was set.
  const Own& own() const;
  /// For changes. Fails: throws std::bad_alloc, where nothing was set before.
  Own& ownToChange();
  bool hasOwn() const { return m_own != nullptr; }

 private:
  std::unique_ptr<Own> m_own;
};

/// The door to the private parts of the API's classes.
struct Access {
  static ObjectImpl& of(const AcDbObject& object) { return *object.m_impl; }
  static DatabaseImpl& of(const AcDbDatabase& database) { return *database.m_impl; }
  static AcDbObject* newPlainEntity();
  static AcDbObject* newPlainObject();
  static AcDbObjectIterator* newPartIterator(const AcDbObject& owner);
};

/// The format of records of free objects: ASCII, UTF-8, the newest version.
const std::shared_ptr<const dxf::Format>& neutralFormat();

/// The record's tags; an empty list after a misuse (which is counted) and for a record that
/// cannot be read.
const TagList& tagsOf(const AcDbObject& object) noexcept;

/// eOk when the object may be changed; counts it as misuse otherwise.
Acad::ErrorStatus checkWritable(const AcDbObject& object) noexcept;

/// Gives an object new bytes, in the format that its tags have.
/// Fails: throws std::bad_alloc, FileError.
void setBytes(AcDbObject& object, std::string bytes);

/// Takes the current exception: the status that the API returns for it.
Acad::ErrorStatus statusOfException() noexcept;

/// Runs `edits(RecordEdit&)` on an object that must be open for write and keeps the result.
/// Fails: eNotOpenForWrite, eInvalidInput (a number that is not finite), eOutOfMemory; the
/// object stays as it is then.
template <class Edits>
Acad::ErrorStatus change(AcDbObject& object, Edits&& edits) noexcept {
  const Acad::ErrorStatus status = checkWritable(object);
  if (status != Acad::eOk) {
    return status;
  }
  try {
    RecordEdit edit(tagsOf(object));
    edits(edit);
    if (!edit.isFinite()) {
      return Acad::eInvalidInput;
    }
    if (edit.isChanged()) {
      setBytes(object, edit.bytes());
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

/// As change(), for a record whose object may be open or not: a part that goes along with
/// its owner.
template <class Edits>
void changeRecord(AcDbStub& stub, Edits&& edits);

// --- fields of typed classes ----------------------------------------------------------------

double numberOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                double otherwise = 0.0);
std::int64_t integerOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                       std::int64_t otherwise = 0);
AcGePoint3d pointOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                    const AcGePoint3d& otherwise = {});
/// The unit extrusion direction (210); +Z where the record names none or a zero one.
AcGeVector3d normalOf(const TagList& tags, TagRange range);
AcGeVector3d normalOf(const AcDbObject& object, const SubclassLayout& layout);
std::wstring textOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                    std::wstring_view otherwise = {});
/// The text in memory that lives until the object changes or closes.
const ACHAR* keptText(const AcDbObject& object, int code, std::wstring text);
/// A copy for the caller; null when memory runs out.
ACHAR* newText(std::wstring_view text);

Acad::ErrorStatus setNumber(AcDbObject& object, const SubclassLayout& layout, int code,
                            double value, std::optional<double> absent = {});
Acad::ErrorStatus setAngle(AcDbObject& object, const SubclassLayout& layout, int code,
                           double radians, std::optional<double> absentDegrees = {});
Acad::ErrorStatus setInteger(AcDbObject& object, const SubclassLayout& layout, int code,
                             std::int64_t value, std::optional<std::int64_t> absent = {});
Acad::ErrorStatus setFlag(AcDbObject& object, const SubclassLayout& layout, int code,
                          std::int64_t bit, bool on);
Acad::ErrorStatus setPoint(AcDbObject& object, const SubclassLayout& layout, int code,
                           const AcGePoint3d& point, std::optional<AcGePoint3d> absent = {});
/// Fails: eInvalidNormal (zero) too.
Acad::ErrorStatus setNormal(AcDbObject& object, const SubclassLayout& layout,
                            const AcGeVector3d& normal);
Acad::ErrorStatus setText(AcDbObject& object, const SubclassLayout& layout, int code,
                          const ACHAR* text, std::optional<std::wstring_view> absent = {});

}  // namespace quoin::db
