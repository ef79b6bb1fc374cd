// The tags of one record, read once and looked up by subclass and group code. Records of
// drawings before R13 have no subclass markers; there a subclass is the whole record, which
// works because no group code of theirs has two meanings in one record.
//
// Tags inside application groups (102 "{..." to "}") and behind an embedded object (101)
// are found by no look-up by code, since they are not the record's own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dxf/Tag.h"
#include "gepnt3d.h"

namespace quoin::db {

inline constexpr int kMarkerCode = 100;
inline constexpr int kEmbeddedCode = 101;
inline constexpr int kGroupCode = 102;
inline constexpr int kFirstXDataCode = 1000;
inline constexpr int kAppNameCode = 1001;

/// A stretch [first, last) of a record's tags.
struct TagRange {
  std::size_t first = 0;
  std::size_t last = 0;
  /// Whether tags that all entities share count where they stand behind other markers too.
  bool takesStrays = false;
  bool isEmpty() const { return first >= last; }
};

class TagList {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// The bytes and the format must outlive the list.
  /// Fails: throws FileError for bytes that are no tags, and for more than 4 GB of them.
  TagList(std::string_view bytes, const dxf::Format& format);

  std::string_view bytes() const { return m_bytes; }
  const dxf::Format& format() const { return *m_format; }
  std::size_t size() const { return m_tags.size(); }
  dxf::TagView operator[](std::size_t index) const {
    const Stored& tag = m_tags[index];
    const std::size_t end = index + 1 < m_tags.size() ? m_tags[index + 1].begin : m_end;
    return {tag.code, m_bytes.substr(tag.valueBegin, tag.valueSize), tag.begin, end};
  }

  // --- stretches --------------------------------------------------------------------------
  bool hasMarkers() const { return m_hasMarkers; }
  /// Everything between the kind (group 0) and extended data or an embedded object.
  TagRange body() const { return {m_tags.empty() ? 0U : 1U, m_bodyEnd}; }
  /// What stands before the first marker: handle, application groups, owner; the whole body
  /// when there are no markers.
  TagRange head() const { return {body().first, m_headEnd}; }
  /// The tags behind a marker up to the next other marker (texts have theirs twice); the whole
  /// body when the record does not have that marker.
  TagRange subclass(std::string_view marker) const;
  /// As subclass(), but up to the end of the body: the subclass and those that derive from it.
  TagRange subclassAndBeyond(std::string_view marker) const;
  /// What all entities share: the tags behind AcDbEntity (those before the first marker where
  /// that one is missing), and strays.
  TagRange shared() const;
  /// Extended data, application names included.
  TagRange xData() const { return {m_xDataBegin, m_tags.size()}; }
  /// The data of one application (in any case), its name (1001) included; empty if it has
  /// none.
  TagRange xData(std::wstring_view appName) const;
  /// The tags of an application group, its 102 tags included; `name` with its brace:
  /// "{ACAD_XDICTIONARY". Empty if there is none.
  TagRange group(std::string_view name) const;

  // --- look-up ------------------------------------------------------------------------------
  /// The first tag of the range with this code, from `from` on; kNone if there is none. A stray
  /// is found where the range has no such tag, and from 0 on only.
  std::size_t find(int code, TagRange range, std::size_t from = 0) const;
  bool isOwn(std::size_t index) const { return !m_isForeign[index]; }
  /// Whether look-ups in the range by this tag's code consider it.
  bool isIn(std::size_t index, TagRange range) const;

  double doubleAt(std::size_t index) const { return dxf::doubleOf((*this)[index], *m_format); }
  std::int64_t integerAt(std::size_t index) const {
    return dxf::integerOf((*this)[index], *m_format);
  }
  std::uint64_t handleAt(std::size_t index) const {
    return dxf::handleOf((*this)[index], *m_format);
  }
  std::wstring textAt(std::size_t index) const { return dxf::textOf((*this)[index], *m_format); }

  double number(int code, TagRange range, double otherwise) const;
  std::int64_t integer(int code, TagRange range, std::int64_t otherwise) const;
  std::uint64_t handle(int code, TagRange range) const;
  std::optional<std::wstring> text(int code, TagRange range) const;
  /// The x, y and z of codes c, c + 10, c + 20; a missing one reads as `otherwise` has it.
  AcGePoint3d point(int code, TagRange range, const AcGePoint3d& otherwise = {}) const;

  /// Index of the record's own handle (5, or 105 in dimension styles); kNone if it has none.
  std::size_t handleTag() const;
  /// Index of the owner's tag (330); kNone if there is none.
  std::size_t ownerTag() const;

 private:
  bool isStray(std::size_t index, TagRange range) const;
  std::size_t findInHead(int code) const;

  std::string_view m_bytes;
  const dxf::Format* m_format;
  /// A tag as offsets: a polyline may have millions of them.
  struct Stored {
    std::uint32_t begin;
    std::uint32_t valueBegin;
    std::uint32_t valueSize;
    std::int32_t code;
  };
  std::vector<Stored> m_tags;
  std::vector<bool> m_isForeign;
  std::size_t m_end = 0;  // of the last tag
  std::size_t m_headEnd = 0;
  std::size_t m_bodyEnd = 0;
  std::size_t m_xDataBegin = 0;
  bool m_hasMarkers = false;
};

}  // namespace quoin::db
