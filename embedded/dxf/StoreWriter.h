// Writes a store: the file's own bytes with sorted patches merged into them. What nobody
// changed is handed out in whole stretches, so an untouched store comes back byte for byte.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dxf/RecordStoreImpl.h"

namespace quoin::dxf {

class StoreWriter {
 public:
  explicit StoreWriter(const RecordStore& store);
  /// Fails: throws FileError with eUserBreak when `progress` returns false.
  void run(const std::function<void(std::string_view)>& write, const Progress& progress);

 private:
  /// Patches at one offset keep this order: what belongs to the record in front, what is added
  /// at the end of a list, sections that the file lacks, and last the record that stands there.
  enum class Rank : std::uint8_t { SubEntity, Appended, NewSection, Replacement };
  struct Patch {
    std::size_t offset = 0;
    std::size_t length = 0;  // bytes of the file that it stands for
    Rank rank = Rank::Appended;
    std::string_view bytes;
  };

  void collectHeader();
  void collectChanged();
  void collectNewSubEntities(const AcDbStub& parent);
  void collectTables();
  void collectBlocks();
  void collectObjects();
  void endFile();

  /// A record that the file has not, with its sub-entities.
  void insertRecord(const AcDbStub& stub, std::size_t offset, Rank rank);
  void insert(std::size_t offset, Rank rank, std::string_view bytes);
  std::string_view keep(std::string bytes);
  /// Puts what `fill` inserts at the end of a section, or into a section made for it.
  void atEndOfSection(std::string_view name, const std::function<void(std::size_t, Rank)>& fill);
  std::size_t placeForSection(std::string_view name) const;
  /// Whether the record has to be written although the file has no bytes for it.
  bool isAdded(const AcDbStub& stub) const;

  const RecordStore& m_store;
  const RecordStore::Impl& m_data;
  std::vector<Patch> m_patches;
  std::deque<std::string> m_kept;  // bytes made for this writing
};

}  // namespace quoin::dxf
