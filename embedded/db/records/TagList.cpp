#include "embedded/db/records/TagList.h"

#include <algorithm>
#include <limits>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/SharedTags.h"
#include "embedded/os/CaseFold.h"

namespace quoin::db {

namespace {

/// Records of fewer bytes are not worth counting their tags first.
constexpr std::size_t kLargeRecord = 1 << 16;

std::size_t tagCount(std::string_view bytes, const dxf::Format& format) {
  dxf::TagCursor cursor(bytes, format);
  dxf::TagView tag;
  std::size_t count = 0;
  while (cursor.next(tag)) {
    ++count;
  }
  return count;
}

}  // namespace

TagList::TagList(std::string_view bytes, const dxf::Format& format)
    : m_bytes(bytes), m_format(&format) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
    throw dxf::FileError(Acad::eOutOfMemory, "the record has more than 4 GB");
  }
  if (bytes.size() > kLargeRecord) {
    const std::size_t count = tagCount(bytes, format);
    m_tags.reserve(count);
    m_isForeign.reserve(count);
  }
  dxf::TagCursor cursor(bytes, format);
  dxf::TagView tag;
  std::size_t firstMarker = kNone;
  std::size_t embedded = kNone;
  std::size_t xData = kNone;
  bool isInGroup = false;
  while (cursor.next(tag)) {
    const std::size_t index = m_tags.size();
    bool isForeign = isInGroup || embedded != kNone;
    if (tag.code >= kFirstXDataCode) {
      xData = std::min(xData, index);
      isForeign = true;
    } else if (tag.code == kGroupCode) {
      isInGroup = dxf::trimmedValue(tag).starts_with('{');
      isForeign = true;
    } else if (tag.code == kEmbeddedCode) {
      embedded = std::min(embedded, index);
      isForeign = true;
    } else if (tag.code == kMarkerCode && embedded == kNone) {
      firstMarker = std::min(firstMarker, index);
      isInGroup = false;
      isForeign = true;
    }
    m_tags.push_back({static_cast<std::uint32_t>(tag.begin),
                      static_cast<std::uint32_t>(tag.value.data() - bytes.data()),
                      static_cast<std::uint32_t>(tag.value.size()), tag.code});
    m_end = tag.end;
    m_isForeign.push_back(isForeign);
  }
  m_xDataBegin = std::min(xData, m_tags.size());
  m_bodyEnd = std::min(embedded, m_xDataBegin);
  m_hasMarkers = firstMarker < m_bodyEnd;
  m_headEnd = m_hasMarkers ? firstMarker : m_bodyEnd;
}

TagRange TagList::subclassAndBeyond(std::string_view marker) const {
  if (m_hasMarkers) {
    for (std::size_t i = m_headEnd; i < m_bodyEnd; ++i) {
      if (m_tags[i].code == kMarkerCode && dxf::trimmedValue((*this)[i]) == marker) {
        return {i + 1, m_bodyEnd};
      }
    }
  }
  return body();
}

TagRange TagList::subclass(std::string_view marker) const {
  TagRange range = subclassAndBeyond(marker);
  if (range.first > body().first) {
    for (std::size_t i = range.first; i < range.last; ++i) {
      if (m_tags[i].code == kMarkerCode && dxf::trimmedValue((*this)[i]) != marker) {
        range.last = i;
        break;
      }
    }
  }
  return range;
}

TagRange TagList::shared() const {
  TagRange range = subclass("AcDbEntity");
  if (m_hasMarkers) {
    range = range.first == body().first ? head() : range;
    range.takesStrays = true;
  }
  return range;
}

TagRange TagList::xData(std::wstring_view appName) const {
  for (std::size_t i = m_xDataBegin; i < m_tags.size(); ++i) {
    if (m_tags[i].code == kAppNameCode && os::sameName(textAt(i), appName)) {
      std::size_t last = i + 1;
      while (last < m_tags.size() && m_tags[last].code != kAppNameCode) {
        ++last;
      }
      return {i, last};
    }
  }
  return {};
}

TagRange TagList::group(std::string_view name) const {
  for (std::size_t i = 0; i < m_bodyEnd; ++i) {
    if (m_tags[i].code == kGroupCode && dxf::trimmedValue((*this)[i]) == name) {
      std::size_t last = i + 1;
      while (last < m_bodyEnd && m_tags[last].code != kGroupCode) {
        ++last;
      }
      return {i, std::min(last + 1, m_bodyEnd)};
    }
  }
  return {};
}

std::size_t TagList::find(int code, TagRange range, std::size_t from) const {
  for (std::size_t i = std::max(range.first, from); i < range.last; ++i) {
    if (m_tags[i].code == code && !m_isForeign[i]) {
      return i;
    }
  }
  if (range.takesStrays && from == 0) {
    for (std::size_t i = body().first; i < m_bodyEnd; ++i) {
      if (m_tags[i].code == code && isStray(i, range)) {
        return i;
      }
    }
  }
  return kNone;
}

/// What an extension record holds (AcDbXrecord, as attributes of many lines have) is its own.
bool TagList::isStray(std::size_t index, TagRange range) const {
  const bool isInside = index >= range.first && index < range.last;
  if (isInside || index >= m_bodyEnd || m_isForeign[index] ||
      !dxf::isSharedTag(dxf::trimmedValue((*this)[0]), m_tags[index].code)) {
    return false;
  }
  std::size_t marker = index;
  while (marker > m_headEnd && m_tags[marker].code != kMarkerCode) {
    --marker;
  }
  return m_tags[marker].code != kMarkerCode || dxf::trimmedValue((*this)[marker]) != "AcDbXrecord";
}

bool TagList::isIn(std::size_t index, TagRange range) const {
  const bool isInside = index >= range.first && index < range.last;
  return isInside ? isOwn(index) : range.takesStrays && isStray(index, range);
}

double TagList::number(int code, TagRange range, double otherwise) const {
  const std::size_t index = find(code, range);
  return index == kNone ? otherwise : doubleAt(index);
}

std::int64_t TagList::integer(int code, TagRange range, std::int64_t otherwise) const {
  const std::size_t index = find(code, range);
  return index == kNone ? otherwise : integerAt(index);
}

std::uint64_t TagList::handle(int code, TagRange range) const {
  const std::size_t index = find(code, range);
  return index == kNone ? 0 : handleAt(index);
}

std::optional<std::wstring> TagList::text(int code, TagRange range) const {
  const std::size_t index = find(code, range);
  return index == kNone ? std::nullopt : std::optional(textAt(index));
}

AcGePoint3d TagList::point(int code, TagRange range, const AcGePoint3d& otherwise) const {
  constexpr int kStep = 10;  // from x to y to z
  return {number(code, range, otherwise.x), number(code + kStep, range, otherwise.y),
          number(code + 2 * kStep, range, otherwise.z)};
}

std::size_t TagList::handleTag() const {
  // Dimension styles use group code 5 for the name of an arrow block.
  constexpr int kHandleCode = 5;
  constexpr int kDimStyleHandleCode = 105;
  const bool isDimStyle = !m_tags.empty() && dxf::trimmedValue((*this)[0]) == "DIMSTYLE";
  return isDimStyle ? find(kDimStyleHandleCode, head()) : findInHead(kHandleCode);
}

std::size_t TagList::ownerTag() const {
  constexpr int kOwnerCode = 330;
  return findInHead(kOwnerCode);
}

/// A tag of the head; in entities it may have gone astray.
std::size_t TagList::findInHead(int code) const {
  const std::size_t index = find(code, head());
  return index == kNone && m_hasMarkers ? find(code, shared()) : index;
}

}  // namespace quoin::db
