// Multiline texts by their records: MTEXT, and those that attributes of several lines embed, which
// are laid out as an MTEXT record without markers.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "dbmain.h"
#include "embedded/db/core/RecordKinds.h"

namespace quoin::db {

/// The multiline text inside an attribute, as a record of its own.
class EmbeddedMText {
 public:
  /// Null where the attribute has one line.
  static std::unique_ptr<const EmbeddedMText> of(const TagList& attribute);
  const TagList& tags() const { return m_tags; }

 private:
  EmbeddedMText(std::string bytes, const dxf::Format& format)
      : m_bytes(std::move(bytes)), m_tags(m_bytes, format) {}
  std::string m_bytes;
  TagList m_tags;
};

void addMTextExtents(const Drawn& text, const AcGeMatrix3d& toWorld, AcDbExtents& box);
void drawMTextRecord(const Drawn& text, const AcGeMatrix3d& toWorld, DrawWalk& walk);

}  // namespace quoin::db
