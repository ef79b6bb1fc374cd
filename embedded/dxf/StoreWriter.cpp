#include "embedded/dxf/StoreWriter.h"

#include <algorithm>
#include <array>
#include <utility>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/Tag.h"
#include "embedded/os/Trace.h"

namespace quoin::dxf {
namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 20;  // bytes between two reports

/// The order in which a drawing has its sections.
constexpr std::array<std::string_view, 6> kSectionOrder = {"HEADER", "CLASSES",  "TABLES",
                                                           "BLOCKS", "ENTITIES", "OBJECTS"};

std::size_t orderOf(std::string_view section) {
  return static_cast<std::size_t>(std::find(kSectionOrder.begin(), kSectionOrder.end(), section) -
                                  kSectionOrder.begin());
}

}  // namespace

StoreWriter::StoreWriter(const RecordStore& store) : m_store(store), m_data(*store.m_impl) {}

void StoreWriter::run(const std::function<void(std::string_view)>& write,
                      const Progress& progress) {
  // In the order of the sections: what is inserted at one place keeps this order.
  collectHeader();
  collectTables();
  collectBlocks();
  collectObjects();
  collectChanged();
  if (m_data.lacksEof && !m_patches.empty()) {
    endFile();
  }
  std::stable_sort(m_patches.begin(), m_patches.end(), [](const Patch& left, const Patch& right) {
    return std::pair(left.offset, left.rank) < std::pair(right.offset, right.rank);
  });
  const std::string_view file = m_data.buffer;
  os::trace(os::Traced::Saver, [&] {
    return m_store.fileName() + ": " + std::to_string(file.size()) + " bytes with " +
           std::to_string(m_patches.size()) + " places changed";
  });
  const auto report = [&](std::size_t at) {
    const double fraction =
        file.empty() ? 1.0 : static_cast<double>(at) / static_cast<double>(file.size());
    if (progress && !progress(fraction)) {
      throw FileError(Acad::eUserBreak, "writing was stopped");
    }
  };
  std::size_t at = 0;
  std::size_t nextReport = 0;
  const auto copyUpTo = [&](std::size_t end) {
    while (at < end) {
      const std::size_t size = std::min(end - at, kPieceSize);
      write(file.substr(at, size));
      at += size;
      if (at >= nextReport) {
        report(at);
        nextReport = at + kPieceSize;
      }
    }
  };
  for (const Patch& patch : m_patches) {
    copyUpTo(patch.offset);
    if (!patch.bytes.empty()) {
      write(patch.bytes);
    }
    at = std::max(at, patch.offset + patch.length);
  }
  copyUpTo(file.size());
  report(file.size());
}

/// Gives a drawing that changed the end that its file lacks.
void StoreWriter::endFile() {
  const std::string_view file = m_data.buffer;
  const Format& format = m_store.format();
  const std::size_t at = m_data.eofAt;
  if (format.form == Form::Ascii && !format.lineEnd.ends_with(file[at - 1])) {
    insert(at, Rank::SubEntity, format.lineEnd);
  }
  std::string end;
  putAscii(end, 0, "EOF", format);
  m_patches.push_back({at, file.size() - at, Rank::Replacement, keep(std::move(end))});
}

void StoreWriter::insert(std::size_t offset, Rank rank, std::string_view bytes) {
  m_patches.push_back({offset, 0, rank, bytes});
}

std::string_view StoreWriter::keep(std::string bytes) {
  return m_kept.emplace_back(std::move(bytes));
}

bool StoreWriter::isAdded(const AcDbStub& stub) const {
  return stub.index >= m_data.fileStubs && stub.data != nullptr && !m_store.isErased(stub);
}

void StoreWriter::insertRecord(const AcDbStub& stub, std::size_t offset, Rank rank) {
  insert(offset, rank, stub.bytes());
  if (m_data.newSubEntities.empty() || stub.role != Role::Entity) {
    return;
  }
  for (const AcDbStub* sub : m_store.subEntities(stub)) {
    if (!sub->erased) {
      insert(offset, rank, sub->bytes());
    }
  }
}

// --- places -----------------------------------------------------------------------------------

/// Where a section that the file lacks belongs: in front of the first one that follows it in
/// the usual order, else at the end.
std::size_t StoreWriter::placeForSection(std::string_view name) const {
  const std::size_t order = orderOf(name);
  for (const SectionPlace& place : m_data.sections) {
    const std::size_t other = orderOf(place.name);
    if (other > order && other < kSectionOrder.size()) {
      return place.begin;
    }
  }
  return m_data.eofAt;
}

void StoreWriter::atEndOfSection(std::string_view name,
                                 const std::function<void(std::size_t, Rank)>& fill) {
  if (const SectionPlace* const place = m_data.section(name)) {
    fill(place->end, Rank::Appended);
    return;
  }
  const std::size_t offset = placeForSection(name);
  std::string head;
  putAscii(head, 0, "SECTION", m_store.format());
  putAscii(head, 2, name, m_store.format());
  insert(offset, Rank::NewSection, keep(std::move(head)));
  const std::size_t before = m_patches.size();
  fill(offset, Rank::NewSection);
  if (m_patches.size() == before) {
    m_patches.pop_back();  // nothing to say: no section either
    return;
  }
  std::string end;
  putAscii(end, 0, "ENDSEC", m_store.format());
  insert(offset, Rank::NewSection, keep(std::move(end)));
}

// --- patches ----------------------------------------------------------------------------------

void StoreWriter::collectHeader() {
  std::vector<HeaderChange> changes = m_data.headerChanges;
  const bool canKeepSeed = m_data.section("HEADER") != nullptr;
  if (m_data.handedOut && m_data.hasHandles && canKeepSeed && m_data.highestHandle >= m_data.seed) {
    std::string seed;
    putHandle(seed, 5, m_data.highestHandle + 1, m_store.format());
    std::erase_if(changes, [](const HeaderChange& change) { return change.name == "$HANDSEED"; });
    changes.push_back({"$HANDSEED", std::move(seed)});
  }
  std::string added;
  for (HeaderChange& change : changes) {
    const auto variable =
        std::find_if(m_data.header.begin(), m_data.header.end(),
                     [&](const HeaderVariable& entry) { return entry.name == change.name; });
    if (variable != m_data.header.end()) {
      m_patches.push_back({variable->begin, variable->end - variable->begin, Rank::Replacement,
                           keep(std::move(change.valueTags))});
      continue;
    }
    putAscii(added, 9, change.name, m_store.format());
    added += change.valueTags;
  }
  if (!added.empty()) {
    const std::string_view bytes = keep(std::move(added));
    atEndOfSection("HEADER", [&](std::size_t offset, Rank rank) { insert(offset, rank, bytes); });
  }
}

void StoreWriter::collectChanged() {
  for (std::size_t i = 0; i < m_data.fileStubs; ++i) {
    const AcDbStub& stub = m_store.m_stubs[i];
    if (m_store.isErased(stub)) {
      m_patches.push_back({m_data.fileOffset(stub), m_data.fileSize(stub), Rank::Replacement, {}});
      continue;
    }
    if (stub.changed) {
      m_patches.push_back(
          {m_data.fileOffset(stub), m_data.fileSize(stub), Rank::Replacement, stub.bytes()});
    }
    if (!m_data.newSubEntities.empty() && stub.role == Role::Entity) {
      collectNewSubEntities(stub);
    }
  }
}

void StoreWriter::collectNewSubEntities(const AcDbStub& parent) {
  if (m_data.newSubEntities.find(&parent) == m_data.newSubEntities.end()) {
    return;
  }
  // The list has the file's SEQEND behind the new records; what is new goes in front of the
  // next record of the file, or behind the last one.
  const std::vector<AcDbStub*> subs = m_store.subEntities(parent);
  std::size_t behind = m_data.fileOffset(parent) + m_data.fileSize(parent);
  std::size_t seqendAt = kNoPlace;
  for (const AcDbStub* sub : subs) {
    if (sub->isNew) {
      continue;
    }
    if (m_store.kindName(*sub) == "SEQEND") {
      seqendAt = m_data.fileOffset(*sub);
    }
    behind = std::max(behind, m_data.fileOffset(*sub) + m_data.fileSize(*sub));
  }
  for (const AcDbStub* sub : subs) {
    if (sub->isNew && !sub->erased) {
      const bool isEnd = m_store.kindName(*sub) == "SEQEND";
      insert(isEnd || seqendAt == kNoPlace ? behind : seqendAt, Rank::SubEntity, sub->bytes());
    }
  }
}

void StoreWriter::collectTables() {
  std::vector<const Table*> newTables;
  for (const Table& table : m_store.m_tables) {
    if (table.insertAt == kNoPlace) {
      if (table.head != nullptr) {
        newTables.push_back(&table);
      }
      continue;
    }
    for (const AcDbStub* record : table.records) {
      if (isAdded(*record)) {
        insert(table.insertAt, Rank::Appended, record->bytes());
      }
    }
  }
  if (newTables.empty()) {
    return;
  }
  std::string tableEnd;
  putAscii(tableEnd, 0, "ENDTAB", m_store.format());
  const std::string_view end = keep(std::move(tableEnd));
  atEndOfSection("TABLES", [&](std::size_t offset, Rank rank) {
    for (const Table* table : newTables) {
      insert(offset, rank, table->head->bytes());
      for (const AcDbStub* record : table->records) {
        if (isAdded(*record)) {
          insert(offset, rank, record->bytes());
        }
      }
      insert(offset, rank, end);
    }
  });
}

void StoreWriter::collectBlocks() {
  atEndOfSection("BLOCKS", [&](std::size_t offset, Rank rank) {
    for (const Block& block : m_store.m_blocks) {
      if (block.begin == nullptr || !isAdded(*block.begin)) {
        continue;
      }
      insert(offset, rank, block.begin->bytes());
      for (const AcDbStub* entity : block.entities) {
        if (isAdded(*entity)) {
          insertRecord(*entity, offset, rank);
        }
      }
      insert(offset, rank, block.end->bytes());
    }
  });
  const auto insertAdded = [&](const Block& block, std::size_t offset, Rank rank) {
    for (const AcDbStub* entity : block.entities) {
      if (isAdded(*entity)) {
        insertRecord(*entity, offset, rank);
      }
    }
  };
  std::vector<const Block*> homeless;
  for (const Block& block : m_store.m_blocks) {
    if (block.insertAt != kNoPlace) {
      insertAdded(block, block.insertAt, Rank::Appended);
    } else if (block.begin == nullptr || !block.begin->isNew) {
      homeless.push_back(&block);
    }
  }
  atEndOfSection("ENTITIES", [&](std::size_t offset, Rank rank) {
    for (const Block* block : homeless) {
      insertAdded(*block, offset, rank);
    }
  });
}

void StoreWriter::collectObjects() {
  atEndOfSection("OBJECTS", [&](std::size_t offset, Rank rank) {
    for (const AcDbStub* object : m_store.m_objects) {
      if (isAdded(*object)) {
        insert(offset, rank, object->bytes());
      }
    }
  });
}

}  // namespace quoin::dxf
