// A DWG file as the DXF file that says the same: the records' tags under the sections, tables and
// blocks that DXF puts them in. The record store above is loaded from these tags, so that nothing
// else of the program knows DWG; DwgChanges.h is the way back.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dwg/container/DwgFile.h"
#include "embedded/dwg/drawing/Owned.h"
#include "embedded/dwg/records/ClassSection.h"
#include "embedded/dwg/records/HeaderSection.h"
#include "embedded/dwg/records/RecordCodec.h"
#include "embedded/dxf/DrawingSource.h"
#include "embedded/dxf/RecordStore.h"

namespace quoin::dwg {

class HOST_API DwgDrawing {
 public:
  /// `codePage` holds for all text before R2007, whatever the file says; empty for what it says.
  DwgDrawing(DwgFile file, const std::string& codePage);
  DwgDrawing(const DwgDrawing&) = delete;  // the codec refers to the facts beside it
  DwgDrawing& operator=(const DwgDrawing&) = delete;

  const DwgFile& file() const { return m_file; }
  const DrawingFacts& facts() const { return m_facts; }
  const RecordCodec& codec() const { return m_codec; }
  const ClassMap& classes() const { return m_classes; }
  const HeaderSection& header() const { return m_header; }

  /// The whole drawing as a DXF file in facts().format.
  /// Fails: throws FileError with eUserBreak when `progress` returns false.
  std::string tags(const dxf::Progress& progress);
  /// Kinds that tags() has left unread behind what all records share, by name.
  const std::vector<dxf::UnreadKind>& unread() const { return m_unread; }
  /// Kinds of which tags() says less than the records do.
  const std::vector<dxf::UnreadKind>& partlyRead() const { return m_partlyRead; }
  /// What tags() found odd.
  const std::vector<std::string>& problems() const { return m_problems; }

  /// A record's fields. Fails: false for a handle that the file does not have.
  bool decode(std::uint64_t handle, DecodedRecord& record) const;
  /// Whether all of a record is known.
  bool isRead(std::uint64_t handle) const;
  /// As decode. Fails also for a record whose own bits do not come back when it is written again.
  /// One that nobody reads may come back, and take other neighbours; nothing else of it changes.
  bool decodeExact(std::uint64_t handle, DecodedRecord& record) const;
  /// Whether a record may be edited: all of it is known, and its own bits come back.
  bool canEdit(std::uint64_t handle) const;

 private:
  void readSections();
  void findTables();
  void readNames();
  void readObjectFacts();
  void nameBlocks();

  void writeHeader(std::string& bytes) const;
  void writeTables(std::string& bytes);
  void writeTable(const char* name, std::uint64_t control, std::string& bytes);
  void writeBlocks(std::string& bytes);
  void writeEntities(std::string& bytes);
  void writeObjects(std::string& bytes);
  void writeBlockPart(const DecodedRecord& header, int key, std::string& bytes);
  /// An entity and what it owns.
  void writeEntity(const DecodedRecord& record, std::string& bytes);
  void writeRecord(const DecodedRecord& record, std::string& bytes);

  /// The entities of a block, or the parts of an entity, in their order.
  void visitOwned(const DecodedRecord& owner, const RecordVisitor& visit);
  std::vector<std::uint64_t> entriesOf(std::uint64_t control) const;
  void countUnread(const DecodedRecord& record);
  void step();

  DwgFile m_file;
  DrawingFacts m_facts;
  HeaderSection m_header;
  ClassSection m_classSection;
  ClassMap m_classes;
  RecordCodec m_codec;
  std::uint64_t m_controls[10] = {};  // tables, in the order of kTables
  std::int64_t m_measurement = 0;
  std::vector<std::uint64_t> m_blockHeaders;
  std::vector<bool> m_written;  // by the index of the record
  enum class Editable : std::uint8_t { Unknown, No, Yes };
  mutable std::vector<Editable> m_editable;  // by the index of the record; what canEdit() found
  std::vector<dxf::UnreadKind> m_unread;
  std::vector<dxf::UnreadKind> m_partlyRead;
  std::vector<std::string> m_problems;
  const dxf::Progress* m_progress = nullptr;
  std::size_t m_steps = 0;
};

}  // namespace quoin::dwg
