// Indexes a whole DXF file in one pass over its tags; StoreLinker.h links what it found.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "embedded/dxf/RecordStoreImpl.h"
#include "embedded/dxf/StoreLinker.h"
#include "embedded/dxf/TagReader.h"

namespace quoin::dxf {

class StoreLoader {
 public:
  /// The store is empty but for its buffer and file name.
  StoreLoader(RecordStore& store, const Progress& progress);
  /// Fails: throws FileError with place and record.
  void run();

 private:
  /// What the record (or structure) that is being walked has shown so far.
  struct Pending {
    enum class What : std::uint8_t { Prefix, Section, Structure, Record };
    What what = What::Prefix;
    bool keepsHandle = false;  // handles count in this section
    bool handleIs105 = false;  // DIMSTYLE has another use for group 5
    bool sawSubclass = false;
    bool inPaperSpace = false;
    bool sawSpaceFlag = false;
    bool sawName = false;
    bool isInGroup = false;  // "102 {..."
    enum class Part : std::uint8_t { Head, Entity, Other, Embedded };
    Part part = Part::Head;  // of the record: in front of the markers, behind AcDbEntity, ...
    std::size_t begin = 0;
    std::string_view name;  // first group 2
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    AcDbStub* stub = nullptr;
  };
  // --- the pass -------------------------------------------------------------------------
  void scan();
  bool isWholeWithoutEof(std::size_t offset) const;
  void capture(const RawTag& tag, std::size_t offset);
  bool isOfEntity(int code) const;
  void captureHeader(const RawTag& tag, std::size_t offset);
  void begin(std::string_view kind, std::size_t offset);
  void beginSection(std::size_t offset);
  void enterSection(std::string_view name);
  void endSection(std::size_t offset);
  void endTable(std::size_t offset);
  void endBlock(std::size_t offset);
  void beginRecord(std::string_view kind, std::size_t offset);
  void beginTableRecord(AcDbStub& stub);
  void beginBlockRecord(AcDbStub& stub, std::size_t offset);
  void beginEntity(AcDbStub& stub);
  void finish(std::size_t end);
  void finishRecord(std::size_t end);

  void report(double fraction) const;
  [[noreturn]] void fail(Acad::ErrorStatus status, const std::string& cause,
                         std::size_t offset) const;
  std::string describePending() const;
  std::size_t offsetOf(const char* at) const {
    return static_cast<std::size_t>(at - m_data.buffer.data());
  }

  RecordStore& m_store;
  RecordStore::Impl& m_data;
  const Progress& m_progress;
  TagLayout m_layout;
  std::size_t m_firstTag = 0;
  Pending m_pending;
  Section m_section = Section::Other;
  bool m_inSection = false;
  bool m_ended = false;
  std::array<bool, 7> m_sectionSeen{};  // by Section
  Table* m_table = nullptr;
  Block* m_block = nullptr;
  AcDbStub* m_parent = nullptr;  // the entity that sub-entities belong to
  StoreFindings m_found;
};

}  // namespace quoin::dxf
