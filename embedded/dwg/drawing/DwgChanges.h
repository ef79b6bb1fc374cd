// What a changed record store asks of the DWG file that it was read from: which records are
// other ones, which are new or gone, and what of their owners follows from that.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "embedded/dwg/drawing/DwgDrawing.h"
#include "embedded/dxf/RecordStore.h"

namespace quoin::dwg {

class DwgChanges {
 public:
  DwgChanges(const DwgDrawing& drawing, const dxf::RecordStore& store);

  DwgChanges(const DwgChanges&) = delete;  // the codec refers to the facts beside it
  DwgChanges& operator=(const DwgChanges&) = delete;

  /// All changes of the store.
  /// Fails: throws FileError that names the record and why it cannot be written.
  FileChanges collect();

 private:
  void nameNewRecords();
  void takeRecords();
  void takeChanged(const AcDbStub& stub);
  void takeNew(const AcDbStub& stub);
  void takeErased(const AcDbStub& stub);
  void takeMeasurement(FileChanges& changes);
  void takeHeader(FileChanges& changes);

  /// The record as it will be; decoded from the file when it is first asked for.
  DecodedRecord& edited(std::uint64_t handle, const std::string& what);
  void addToOwner(const AcDbStub& stub, DecodedRecord& record);
  void removeFromOwner(const AcDbStub& stub);
  void link(std::uint64_t before, std::uint64_t after);
  void encode(FileChanges& changes);
  [[noreturn]] void refuse(const std::string& record, const std::string& cause) const;

  const DwgDrawing* m_drawing;
  const dxf::RecordStore* m_store;
  DrawingFacts m_facts;  // with the names of new layers, styles, ...
  RecordCodec m_codec;
  std::map<std::uint64_t, DecodedRecord> m_edited;
  std::map<std::uint64_t, bool> m_erased;
};

}  // namespace quoin::dwg
