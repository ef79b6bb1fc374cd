// What a changed record store asks of the DWG file that it was read from: which records are
// other ones, which are new or gone, and what of their owners follows from that.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "embedded/dwg/drawing/DwgDrawing.h"
#include "embedded/dxf/RecordStore.h"

namespace quoin::dwg {

class DwgChanges {
 public:
  DwgChanges(const DwgDrawing& drawing, const dxf::RecordStore& store);

  DwgChanges(const DwgChanges&) = delete;  // the codec refers to the facts beside it
  DwgChanges& operator=(const DwgChanges&) = delete;

  /// All changes of the store.
  /// Fails: throws FileError that names the record and why it cannot be written, or with
  /// eFilerError the block whose entities would not be what they should be.
  FileChanges collect();

 private:
  /// What a record owns, where that changes.
  struct OwnedChange {
    std::vector<std::uint64_t> added;  // behind all others
    bool hasErased = false;
    std::uint64_t sequenceEnd = 0;      // a new one
    std::vector<std::uint64_t> wanted;  // all of it in the end, in its order
  };
  /// The neighbours of an entity in its chain; 0 for none.
  struct Links {
    std::uint64_t previous = 0;
    std::uint64_t next = 0;
  };

  void nameNewRecords();
  void noteOwners();
  void noteNew(const AcDbStub& stub);
  void noteErased(const AcDbStub& stub);
  void linkOwned();
  std::vector<std::uint64_t> ownedBefore(const DecodedRecord& owner, const std::string& what) const;
  void linkChain(const std::vector<std::uint64_t>& before, const std::vector<std::uint64_t>& after);

  void takeRecords(FileChanges& changes);
  bool isTouched(const AcDbStub& stub) const;
  DecodedRecord recordOf(const AcDbStub& stub) const;
  void decodeForEdit(const AcDbStub& stub, DecodedRecord& record) const;
  void makeNew(const AcDbStub& stub, DecodedRecord& record) const;
  /// The tags of a changed record in the place of its fields.
  void putTags(const AcDbStub& stub, DecodedRecord& record) const;
  void putOwned(const OwnedChange& owned, const DecodedRecord& whose, RecordValues& values) const;
  void encode(const AcDbStub& stub, const DecodedRecord& record, FileChanges& changes) const;
  void takeMeasurement(FileChanges& changes) const;
  void takeHeader(FileChanges& changes) const;

  void checkOwned(const FileChanges& changes) const;
  bool isGone(std::uint64_t handle) const;
  bool isInFile(const AcDbStub& stub) const;
  [[noreturn]] void refuse(const std::string& record, const std::string& cause) const;

  const DwgDrawing* m_drawing;
  const dxf::RecordStore* m_store;
  DrawingFacts m_facts;  // with the names of new layers, styles, ...
  RecordCodec m_codec;
  std::map<std::uint64_t, OwnedChange> m_owned;      // by the owner
  std::unordered_map<std::uint64_t, Links> m_links;  // of new entities and those beside them
};

}  // namespace quoin::dwg
