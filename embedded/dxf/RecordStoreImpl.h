// The inside of a record store, shared by the loader, the store and the writer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/dxf/HandleIndex.h"
#include "embedded/dxf/RecordStore.h"

namespace quoin::dxf {

/// One section as the file has it: from its "0 SECTION" to its "0 ENDSEC".
struct SectionPlace {
  std::string name;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// One variable of the HEADER section: its name and where its value tags stand.
struct HeaderVariable {
  std::string_view name;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// What a changed or new record consists of, and where the file had the old bytes.
struct OwnBytes {
  std::string bytes;
  std::size_t fileOffset = kNoPlace;  // kNoPlace: not in the file
  std::uint32_t fileSize = 0;
};

struct HeaderChange {
  std::string name;
  std::string valueTags;
};

struct RecordStore::Impl {
  explicit Impl(const std::deque<AcDbStub>& stubs) : handles(stubs) {}

  std::string buffer;
  std::vector<SectionPlace> sections;
  std::vector<HeaderVariable> header;
  std::size_t eofAt = 0;
  bool lacksEof = false;  // what stands at eofAt is no EOF
  HandleIndex handles;
  std::unordered_map<std::string_view, std::uint16_t> kindNumbers;
  // Looked up by address only; nothing is ever written in the order of these.
  std::unordered_map<const AcDbStub*, OwnBytes> own;
  std::unordered_map<const AcDbStub*, std::vector<AcDbStub*>> newSubEntities;
  std::unordered_map<const AcDbStub*, Block*> blockByRecord;
  std::unordered_map<std::wstring, Block*> blockByName;  // folded names; the first of equals
  std::vector<HeaderChange> headerChanges;
  Block* modelSpace = nullptr;
  Block* paperSpace = nullptr;
  std::size_t fileStubs = 0;  // stubs that the file has; placeholders and new ones follow
  std::uint64_t highestHandle = 0;
  std::uint64_t seed = 0;  // $HANDSEED of the file
  bool hasHandles = false;
  bool handedOut = false;
  /// Line ends before each stretch of kLineStretch bytes; made when first asked for.
  mutable std::vector<std::uint64_t> linesBefore;

  const SectionPlace* section(std::string_view name) const;
  /// The value tags of a variable as the file has them; empty for none.
  std::string_view headerInFile(std::string_view name) const;
  /// Where the file has the record; kNoPlace for one that it has not.
  std::size_t fileOffset(const AcDbStub& stub) const;
  std::uint32_t fileSize(const AcDbStub& stub) const;
  /// 1-based line of an offset in an ASCII file.
  std::uint64_t lineAt(std::size_t offset, char terminator) const;
};

}  // namespace quoin::dxf
