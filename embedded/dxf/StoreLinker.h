// The second half of a load: what the records of a file are to one another. Tables, blocks with
// their records, layouts with their entities, owners, handles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/dxf/RecordStoreImpl.h"
#include "embedded/dxf/TagReader.h"

namespace quoin::dxf {

/// What the pass over a file has seen beside its records.
struct StoreFindings {
  /// Entities of the ENTITIES section from one stub on that name the same owner and space.
  struct LayoutRun {
    std::uint32_t first = 0;
    bool inPaperSpace = false;
    std::uint64_t owner = 0;
  };
  struct OwnerLink {
    AcDbStub* stub = nullptr;
    std::uint64_t owner = 0;
  };
  struct BlockHead {
    std::string_view name;
    std::uint64_t owner = 0;
  };

  bool hasByteOrderMark = false;  // an ASCII file
  bool hasSubclasses = false;
  bool hasLayerZero = false;
  std::size_t handles = 0;
  std::vector<LayoutRun> layoutRuns;
  // The BLOCK_RECORDs of a name in ASCII capitals, in file order; looked up by name only.
  std::unordered_map<std::string, std::vector<AcDbStub*>> blockRecords;
  std::vector<BlockHead> blockHeads;  // parallel to the store's blocks
  std::vector<OwnerLink> ownerLinks;
};

class StoreLinker {
 public:
  /// The store has its records, sections and tables.
  StoreLinker(RecordStore& store, const TagLayout& layout, const StoreFindings& found);
  void run();

 private:
  void readHeader();
  void indexHandles();
  void linkBlocks();
  AcDbStub* freeRecordNamed(std::string_view name) const;
  void linkBlockRecord(Block& block, const StoreFindings::BlockHead& head);
  void makeLayouts();
  void distributeEntities();
  void linkOwners();
  void makeLayerZero();
  std::string_view headerText(std::string_view variable) const;

  RecordStore& m_store;
  RecordStore::Impl& m_data;
  const TagLayout& m_layout;
  const StoreFindings& m_found;
};

}  // namespace quoin::dxf
