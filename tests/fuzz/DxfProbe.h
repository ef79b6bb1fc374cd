// What must hold for any bytes whatever when they are read as a drawing. The mutation test and
// the libFuzzer target share it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dxf/DrawingCodec.h"
#include "embedded/dxf/FileError.h"
#include "embedded/dxf/RecordStore.h"
#include "embedded/dxf/Tag.h"

namespace quoin::test {

/// How far a probe came, so that a test can tell that its inputs are worth something.
enum class ProbeResult { NotRecognised, Refused, Loaded };

namespace probe {

inline void require(bool holds, const char* law) {
  if (!holds) {
    throw std::logic_error(law);
  }
}

inline std::string saved(const dxf::RecordStore& store) {
  std::string bytes;
  store.save([&](std::string_view piece) { bytes += piece; });
  return bytes;
}

/// Reads every value in every way; answers how many tags there are.
inline std::size_t readEverything(dxf::RecordStore& store) {
  std::size_t tags = 0;
  for (const AcDbStub& stub : store.stubs()) {
    require(store.kindName(stub).size() <= stub.size || stub.size == 0, "a kind lies in its bytes");
    dxf::TagCursor cursor(stub.bytes(), store.format());
    dxf::TagView tag;
    for (; cursor.next(tag); ++tags) {
      dxf::doubleOf(tag, store.format());
      dxf::integerOf(tag, store.format());
      dxf::handleOf(tag, store.format());
      dxf::binaryOf(tag, store.format());
      std::string bytes;
      dxf::putText(bytes, 1, dxf::textOf(tag, store.format()), store.format());
      dxf::TagCursor written(bytes, store.format());
      dxf::TagView back;
      require(written.next(back) && written.offset() == bytes.size(), "written text is one tag");
    }
    require(cursor.offset() == stub.size, "the tags of a record fill it");
    const AcDbStub* found = store.find(stub.handle);
    require(stub.handle == 0 || (found != nullptr && found->handle == stub.handle),
            "a handle leads to a record");
    require(stub.owner == nullptr || stub.owner->store == &store, "owners are of the store");
    store.lineOf(stub);
    store.isErased(stub);
  }
  for (dxf::Block& block : store.blocks()) {
    require(block.record != nullptr, "a block has a record");
    require(store.block(block.name) != nullptr, "a block is found by its name");
    for (AcDbStub* entity : block.entities) {
      require(entity->owner == block.record, "an entity belongs to its block");
      for (const AcDbStub* sub : store.subEntities(*entity)) {
        require(sub->owner == entity, "a sub-entity belongs to its entity");
      }
    }
  }
  return tags;
}

/// Erases, changes and adds records; what is written then must be readable and hold them.
inline void editAndReload(dxf::RecordStore& store, std::size_t choice) {
  std::vector<AcDbStub*>& entities = store.modelSpace().entities;
  const std::size_t before = entities.size();
  // A vertex or attribute that stands alone joins whatever comes to stand in front of it.
  const bool hasStrays = std::any_of(entities.begin(), entities.end(), [&](const AcDbStub* entity) {
    const std::string_view kind = store.kindName(*entity);
    return kind == "VERTEX" || kind == "ATTRIB" || kind == "SEQEND";
  });
  std::size_t erased = 0;
  if (!entities.empty()) {
    store.setErased(*entities[choice % before], true);
    erased = 1;
    AcDbStub& changed = *entities[(choice / 7) % before];
    std::string bytes;
    dxf::putAscii(bytes, 0, "POINT", store.format());
    dxf::putDouble(bytes, 10, 0.5, store.format());
    store.replace(changed, bytes);
  }
  std::string line;
  dxf::putAscii(line, 0, "LINE", store.format());
  const std::uint64_t handle = store.newHandle();
  if (handle != 0) {
    dxf::putHandle(line, 5, handle, store.format());
  }
  dxf::putText(line, 8, L"\u5899", store.format());
  store.appendEntity(store.modelSpace(), line, handle);

  dxf::RecordStore again;
  try {
    again.load(saved(store), "again");
  } catch (const dxf::FileError& error) {
    throw std::logic_error("what was written cannot be read: " + error.message());
  }
  require(hasStrays || again.modelSpace().entities.size() + erased == before + 1,
          "model space has what was not erased and what was added");
}

}  // namespace probe

/// Fails: throws std::logic_error naming the law that does not hold.
inline ProbeResult probeDxf(std::string_view bytes) {
  const dxf::DrawingCodec* const codec = dxf::codecFor(bytes.substr(0, 4096));
  dxf::RecordStore store;
  try {
    if (codec == nullptr) {
      store.load(std::string(bytes), "probe");  // must not crash either
      return ProbeResult::NotRecognised;
    }
    codec->read(std::string(bytes), "probe", store, {});
  } catch (const dxf::FileError& error) {
    probe::require(store.isEmpty(), "a failed load leaves nothing");
    probe::require(!error.message().empty(), "an error says something");
    return codec == nullptr ? ProbeResult::NotRecognised : ProbeResult::Refused;
  }
  probe::require(!store.isChanged(), "a loaded store is unchanged");
  probe::require(probe::saved(store) == bytes, "an untouched store comes back byte for byte");
  probe::editAndReload(store, probe::readEverything(store));
  return ProbeResult::Loaded;
}

}  // namespace quoin::test
