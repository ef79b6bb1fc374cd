// A DWG file as the DXF file that says the same: the records' tags under the sections, tables and
// blocks that DXF puts them in. The record store above is loaded from these tags, so that nothing
// else of the program knows DWG; DwgChanges.h is the way back.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dwg/container/DwgFile.h"
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
  const HeaderSection& header() const { return m_header; }

  /// The whole drawing as a DXF file in facts().format.
  /// Fails: throws FileError with eUserBreak when `progress` returns false.
  std::string tags(const dxf::Progress& progress);
  /// Kinds that tags() has left unread behind what all records share, by name.
  const std::vector<dxf::UnreadKind>& unread() const { return m_unread; }
  /// What tags() found odd.
  const std::vector<std::string>& problems() const { return m_problems; }

  /// A record's fields. Fails: false for a handle that the file does not have.
  bool decode(std::uint64_t handle, DecodedRecord& record) const;
  /// Whether all of a record is known.
  bool isRead(std::uint64_t handle) const;
  /// Whether a record may be edited: writing what was read gives its own bits.
  bool isExact(std::uint64_t handle) const;

 private:
  using Visitor = std::function<void(const DecodedRecord&)>;

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
  void visitOwned(const DecodedRecord& owner, const Visitor& visit) const;
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
  std::vector<dxf::UnreadKind> m_unread;
  std::vector<std::string> m_problems;
  const dxf::Progress* m_progress = nullptr;
  std::size_t m_steps = 0;
};

/// The neighbours of an entity in its block's chain, up to R2000; 0 for none.
std::uint64_t nextInChain(const DecodedRecord& record);
std::uint64_t previousInChain(const DecodedRecord& record);

}  // namespace quoin::dwg
