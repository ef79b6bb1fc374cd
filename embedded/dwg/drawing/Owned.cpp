#include "embedded/dwg/drawing/Owned.h"

#include "embedded/dwg/records/CommonData.h"

namespace quoin::dwg {
namespace {

/// A record may leave out its links: then its neighbours have the next handles.
std::uint64_t nextInChain(const DecodedRecord& record) {
  const Value* const isImplied = record.values.first(kNoLinks);
  return isImplied != nullptr && isImplied->integer != 0 ? record.handleAt(kOwnHandle) + 1
                                                         : record.handleAt(kNext);
}

}  // namespace

std::vector<std::uint64_t> listedIn(const DecodedRecord& owner) {
  std::vector<std::uint64_t> handles;
  for (std::size_t i = 0; i < owner.values.size(); ++i) {
    if (owner.values[i].key == kOwned && owner.values[i].integer != 0) {
      handles.push_back(static_cast<std::uint64_t>(owner.values[i].integer));
    }
  }
  return handles;
}

bool visitChain(const DecodedRecord& owner, std::size_t most, const RecordFinder& find,
                const RecordVisitor& visit) {
  const std::uint64_t last = owner.handleAt(kLastOwned);
  std::uint64_t own = owner.handleAt(kFirstOwned);
  DecodedRecord record;
  for (; most != 0 && own != 0 && find(own, record); --most) {
    const std::uint64_t next = nextInChain(record);
    visit(record);
    if (own == last) {
      return true;
    }
    own = next;
  }
  return own == 0 && last == 0;
}

bool visitOwned(const DecodedRecord& owner, dxf::Version version, std::size_t most,
                const RecordFinder& find, const RecordVisitor& visit) {
  if (areChained(version)) {
    return visitChain(owner, most, find, visit);
  }
  DecodedRecord record;
  for (const std::uint64_t handle : listedIn(owner)) {
    if (find(handle, record)) {
      visit(record);
    }
  }
  return true;
}

}  // namespace quoin::dwg
