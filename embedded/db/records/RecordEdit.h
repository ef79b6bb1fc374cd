// Changes to one record as splices of its bytes: a tag that is set to the value it has stays
// as it is spelled, a changed one is written anew in its place, a missing one is inserted
// where its SubclassLayout says; every other byte stays.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "embedded/db/records/SubclassLayout.h"
#include "gevec3d.h"

namespace quoin::db {

/// Angles are degrees in files.
double toRadians(double degrees);
double toDegrees(double radians);

class RecordEdit {
 public:
  /// The list must outlive the edit.
  explicit RecordEdit(const TagList& tags) : m_tags(&tags) {}

  const TagList& tags() const { return *m_tags; }

  // Setters. `absent` is the value that a missing tag stands for: such a tag is not inserted.
  void setDouble(const SubclassLayout& layout, int code, double value,
                 std::optional<double> absent = {});
  /// An angle in radians, in degrees in the file. Radians that the tag's degrees stand for
  /// leave it as it is.
  void setAngle(const SubclassLayout& layout, int code, double radians,
                std::optional<double> absentDegrees = {});
  void setInteger(const SubclassLayout& layout, int code, std::int64_t value,
                  std::optional<std::int64_t> absent = {});
  void setText(const SubclassLayout& layout, int code, std::wstring_view value,
               std::optional<std::wstring_view> absent = {});
  /// 0 takes the tag away.
  void setHandle(const SubclassLayout& layout, int code, std::uint64_t handle);
  /// Codes c, c + 10, c + 20. Beside an x and y a missing z of 0 stays missing; where all three
  /// are missing, the point `absent` is not inserted.
  void setPoint(const SubclassLayout& layout, int code, const AcGePoint3d& point,
                std::optional<AcGePoint3d> absent = {});
  void setVector(const SubclassLayout& layout, int code, const AcGeVector3d& vector,
                 const AcGeVector3d& absent);
  /// Every tag of the place with this code.
  void remove(const SubclassLayout& layout, int code);

  /// Multiplies a number that the record has.
  void scaleDouble(const SubclassLayout& layout, int code, double factor);

  // Raw splices, for what the setters have no name for.
  void setDoubleAt(std::size_t index, double value);
  void replace(TagRange range, std::string bytes);
  void insertBefore(std::size_t index, std::string bytes);
  /// Where a missing tag of this code belongs.
  void insert(const SubclassLayout& layout, int code, std::string bytes);
  /// Numbers that a raw splice holds count for isFinite() too.
  void noteNumber(double value);

  /// Whether every number that was set is finite; nothing else may be written.
  bool isFinite() const { return m_isFinite; }
  /// Whether a number that was set, or would have been, had no readable one before it.
  bool metUnreadable() const { return m_metUnreadable; }
  bool isChanged() const { return !m_splices.empty(); }
  /// The record with all changes.
  std::string bytes() const;

 private:
  struct Splice {
    std::size_t begin;  // offsets in the old bytes
    std::size_t end;
    int rank;  // order among insertions at one offset
    std::string bytes;
  };
  /// Replaces the tag at the index, or inserts one where that is kNone.
  void put(const SubclassLayout& layout, std::size_t index, int code, std::string bytes);
  void removeTwins(const SubclassLayout& layout, int code, std::size_t of);
  void removeAll(const SubclassLayout& layout, int code, std::size_t but);
  std::size_t insertionIndex(const SubclassLayout& layout, int code) const;
  std::size_t offsetOf(std::size_t index) const;

  const TagList* m_tags;
  std::vector<Splice> m_splices;
  bool m_isFinite = true;
  bool m_metUnreadable = false;
};

}  // namespace quoin::db
