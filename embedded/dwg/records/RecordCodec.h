// One DWG record to tags and back: what stands in front of its own fields, its kind's fields, and
// its extended data.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "embedded/dwg/records/DrawingFacts.h"
#include "embedded/dwg/records/Kinds.h"
#include "embedded/dwg/records/RecordValues.h"

namespace quoin::dwg {

/// A record as it stands in the file: see RecordCoder.
struct RecordSource {
  std::uint64_t handle = 0;
  std::string_view data;
  std::uint64_t handleBits = 0;
};

/// What a drawing's class section says of an object type from 500 on.
struct ClassFacts {
  std::string dxfName;
  bool isEntity = false;
};
using ClassMap = std::unordered_map<std::uint16_t, ClassFacts>;

/// A record's fields.
struct HOST_API DecodedRecord {
  std::uint16_t type = 0;
  const Kind* kind = nullptr;  // null: kept unread behind what all records share
  std::string name;            // DXF name, of unread ones too; empty where nobody knows it
  bool isEntity = false;
  /// Whether all of it was understood: it can be written again from its fields.
  bool isWhole = false;
  RecordValues values;

  std::uint64_t handleAt(int key) const;
};

class HOST_API RecordCodec {
 public:
  RecordCodec(const DrawingFacts& facts, const ClassMap& classes)
      : m_facts(&facts), m_classes(&classes) {}

  /// The record's fields. What cannot be read behind the shared ones leaves it unread.
  void decode(const RecordSource& source, DecodedRecord& record) const;
  /// What all records share, as decode() does for kinds that nobody reads. Up to R2000 the rest is
  /// kept as it stands, so that the record can take other neighbours in its chain.
  void decodeShared(const RecordSource& source, DecodedRecord& record) const;
  /// Appends the record's tags, from its kind (group 0) on.
  void writeTags(const DecodedRecord& record, std::string& bytes) const;
  /// Appends what DXF says of a table with this name in front of its records, of which there are
  /// `count`.
  void writeTableHead(std::string_view name, std::size_t count, const DecodedRecord& record,
                      std::string& bytes) const;
  /// The record's fields as bits. Fails: false for what does not fit and, from R2004 on, for an
  /// unread record.
  bool encode(std::uint64_t handle, const DecodedRecord& record, RecordBytes& bytes) const;
  /// Whether writing what was read gives the very bits again, so that it may be edited.
  bool isExact(const RecordSource& source, const DecodedRecord& record) const;
  /// Puts what the tags say in the place of the record's fields.
  /// Fails: false with the cause.
  bool readTags(std::string_view tags, DecodedRecord& record, std::string& problem) const;
  /// A new record with this DXF name and handle from its tags.
  /// Fails: false with the cause.
  bool makeRecord(std::string_view name, std::uint64_t handle, std::string_view tags,
                  DecodedRecord& record, std::string& problem) const;

 private:
  void decodeFields(const RecordSource& source, DecodedRecord& record, bool isKindWanted) const;
  /// Whether what nobody reads of a record is kept beside what is read.
  bool keepsRest() const { return m_facts->format.version < dxf::Version::R2004; }
  void writeHead(const DecodedRecord& record, std::string& bytes) const;
  /// Extension dictionary, reactors, owner.
  void writeRelations(const DecodedRecord& record, std::string& bytes) const;

  const DrawingFacts* m_facts;
  const ClassMap* m_classes;
};

}  // namespace quoin::dwg
