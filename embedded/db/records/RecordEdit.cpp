#include "embedded/db/records/RecordEdit.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace quoin::db {
namespace {

int rankOf(std::span<const int> codes, int code) {
  const auto found = std::find(codes.begin(), codes.end(), code);
  return static_cast<int>(found - codes.begin());
}

bool contains(std::span<const int> codes, int code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

bool isSameNumber(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// The first tag behind those that open a record without markers: handle, owner, application
/// groups and what all entities share.
std::size_t behindCommonTags(const TagList& tags) {
  const TagRange body = tags.body();
  std::size_t index = body.first;
  while (index < body.last &&
         (!tags.isOwn(index) || tags[index].code == code::kHandle ||
          tags[index].code == code::kOwner || contains(order::kEntity, tags[index].code))) {
    ++index;
  }
  return index;
}

}  // namespace

double toRadians(double degrees) {
  return degrees * (std::numbers::pi / 180.0);
}

double toDegrees(double radians) {
  return radians * (180.0 / std::numbers::pi);
}

std::size_t RecordEdit::offsetOf(std::size_t index) const {
  return index < m_tags->size() ? (*m_tags)[index].begin : m_tags->bytes().size();
}

std::size_t RecordEdit::insertionIndex(const SubclassLayout& layout, int code) const {
  const TagList& tags = *m_tags;
  TagRange range = layout.in(tags);
  const bool isHead = layout.isShared && range.first == tags.head().first;
  std::size_t at = isHead ? range.last : range.first;
  if (!tags.hasMarkers()) {
    // The stretch of common tags comes first, then all that is the kind's own.
    const std::size_t split = behindCommonTags(tags);
    const bool isCommon = layout.marker == layout::kEntity.marker;
    (isCommon ? range.last : range.first) = split;
    at = split;
    if (isCommon) {
      at = range.first;
      while (at < split && !contains(order::kEntity, tags[at].code)) {
        ++at;
      }
    }
  }
  const int rank = rankOf(layout.order, code);
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (tags.isOwn(i) && contains(layout.order, tags[i].code) &&
        rankOf(layout.order, tags[i].code) <= rank) {
      at = i + 1;
    }
  }
  return at;
}

void RecordEdit::insert(const SubclassLayout& layout, int code, std::string bytes) {
  const std::size_t offset = offsetOf(insertionIndex(layout, code));
  m_splices.push_back({offset, offset, rankOf(layout.order, code), std::move(bytes)});
}

void RecordEdit::replace(TagRange range, std::string bytes) {
  m_splices.push_back({offsetOf(range.first), offsetOf(range.last), -1, std::move(bytes)});
}

void RecordEdit::put(const SubclassLayout& layout, std::size_t index, int code, std::string bytes) {
  if (index == TagList::kNone) {
    insert(layout, code, std::move(bytes));
    return;
  }
  replace({index, index + 1}, std::move(bytes));
  removeTwins(layout, code, index);
}

/// What all entities share and stood there twice must not say two things.
void RecordEdit::removeTwins(const SubclassLayout& layout, int code, std::size_t of) {
  if (layout.isShared && m_tags->hasMarkers()) {
    removeAll(layout, code, of);
  }
}

void RecordEdit::removeAll(const SubclassLayout& layout, int code, std::size_t but) {
  const TagList& tags = *m_tags;
  const TagRange range = layout.in(tags);
  const TagRange where = range.takesStrays ? tags.body() : range;
  for (std::size_t i = where.first; i < where.last; ++i) {
    if (i != but && tags[i].code == code && tags.isIn(i, range)) {
      replace({i, i + 1}, {});
    }
  }
}

void RecordEdit::insertBefore(std::size_t index, std::string bytes) {
  replace({index, index}, std::move(bytes));
}

void RecordEdit::noteNumber(double value) {
  m_isFinite = m_isFinite && std::isfinite(value);
}

void RecordEdit::setDouble(const SubclassLayout& layout, int code, double value,
                           std::optional<double> absent) {
  const std::size_t index = m_tags->find(code, layout.in(*m_tags));
  if (index != TagList::kNone) {
    const bool isChange = !isSameNumber(m_tags->doubleAt(index), value);
    setDoubleAt(index, value);
    if (isChange) {
      removeTwins(layout, code, index);
    }
    return;
  }
  if (absent && isSameNumber(*absent, value)) {
    return;
  }
  noteNumber(value);
  std::string bytes;
  dxf::putDouble(bytes, code, value, m_tags->format());
  insert(layout, code, std::move(bytes));
}

void RecordEdit::setDoubleAt(std::size_t index, double value) {
  const double before = m_tags->doubleAt(index);
  // What cannot be read reads as 0 or as an infinity.
  if ((before == 0.0 || !std::isfinite(before)) &&
      dxf::isUnreadableDouble((*m_tags)[index], m_tags->format())) {
    m_metUnreadable = true;
  }
  if (isSameNumber(before, value)) {
    return;
  }
  noteNumber(value);
  std::string bytes;
  dxf::putDouble(bytes, (*m_tags)[index].code, value, m_tags->format());
  replace({index, index + 1}, std::move(bytes));
}

void RecordEdit::scaleDouble(const SubclassLayout& layout, int code, double factor) {
  const std::size_t index = m_tags->find(code, layout.in(*m_tags));
  if (index != TagList::kNone && factor != 1.0) {
    setDoubleAt(index, m_tags->doubleAt(index) * factor);
  }
}

void RecordEdit::setAngle(const SubclassLayout& layout, int code, double radians,
                          std::optional<double> absentDegrees) {
  const std::size_t index = m_tags->find(code, layout.in(*m_tags));
  if (index == TagList::kNone || !isSameNumber(toRadians(m_tags->doubleAt(index)), radians)) {
    setDouble(layout, code, toDegrees(radians), absentDegrees);
  }
}

void RecordEdit::setInteger(const SubclassLayout& layout, int code, std::int64_t value,
                            std::optional<std::int64_t> absent) {
  const std::size_t index = m_tags->find(code, layout.in(*m_tags));
  if (index == TagList::kNone ? absent == value : m_tags->integerAt(index) == value) {
    return;
  }
  std::string bytes;
  dxf::putInteger(bytes, code, value, m_tags->format());
  put(layout, index, code, std::move(bytes));
}

void RecordEdit::setText(const SubclassLayout& layout, int code, std::wstring_view value,
                         std::optional<std::wstring_view> absent) {
  const std::size_t index = m_tags->find(code, layout.in(*m_tags));
  if (index == TagList::kNone ? absent == value : m_tags->textAt(index) == value) {
    return;
  }
  std::string bytes;
  dxf::putText(bytes, code, value, m_tags->format());
  put(layout, index, code, std::move(bytes));
}

void RecordEdit::setHandle(const SubclassLayout& layout, int code, std::uint64_t handle) {
  const std::size_t index = m_tags->find(code, layout.in(*m_tags));
  if (handle == 0) {
    remove(layout, code);
    return;
  }
  if (index != TagList::kNone && m_tags->handleAt(index) == handle) {
    return;
  }
  std::string bytes;
  dxf::putHandle(bytes, code, handle, m_tags->format());
  put(layout, index, code, std::move(bytes));
}

void RecordEdit::setPoint(const SubclassLayout& layout, int code, const AcGePoint3d& point,
                          std::optional<AcGePoint3d> absent) {
  constexpr int kStep = 10;  // from x to y to z
  const TagRange range = layout.in(*m_tags);
  const bool isAbsent = m_tags->find(code, range) == TagList::kNone &&
                        m_tags->find(code + kStep, range) == TagList::kNone &&
                        m_tags->find(code + 2 * kStep, range) == TagList::kNone;
  if (isAbsent && absent && isSameNumber(absent->x, point.x) && isSameNumber(absent->y, point.y) &&
      isSameNumber(absent->z, point.z)) {
    return;
  }
  setDouble(layout, code, point.x);
  setDouble(layout, code + kStep, point.y);
  setDouble(layout, code + 2 * kStep, point.z, isAbsent ? std::nullopt : std::optional(0.0));
}

void RecordEdit::setVector(const SubclassLayout& layout, int code, const AcGeVector3d& vector,
                           const AcGeVector3d& absent) {
  setPoint(layout, code, AcGePoint3d(vector.x, vector.y, vector.z),
           AcGePoint3d(absent.x, absent.y, absent.z));
}

void RecordEdit::remove(const SubclassLayout& layout, int code) {
  removeAll(layout, code, TagList::kNone);
}

std::string RecordEdit::bytes() const {
  std::vector<const Splice*> sorted;
  sorted.reserve(m_splices.size());
  std::size_t added = 0;
  for (const Splice& splice : m_splices) {
    sorted.push_back(&splice);
    added += splice.bytes.size();
  }
  // Insertions stand before what replaces the tag at the same offset.
  std::stable_sort(sorted.begin(), sorted.end(), [](const Splice* a, const Splice* b) {
    if (a->begin != b->begin) {
      return a->begin < b->begin;
    }
    const bool aInserts = a->begin == a->end;
    const bool bInserts = b->begin == b->end;
    return aInserts != bInserts ? aInserts : aInserts && a->rank < b->rank;
  });
  const std::string_view old = m_tags->bytes();
  std::string result;
  result.reserve(old.size() + added);
  std::size_t copied = 0;
  for (const Splice* const splice : sorted) {
    result += old.substr(copied, splice->begin - copied);
    result += splice->bytes;
    copied = splice->end;
  }
  result += old.substr(copied);
  return result;
}

}  // namespace quoin::db
