// What a block, a table, a polyline or a reference to a block owns: a list in its record, or, of
// entities up to R2000, a chain from entity to entity of which the record has both ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "embedded/dwg/records/RecordCodec.h"

namespace quoin::dwg {

/// Decodes the record with a handle. Fails: false for a handle that there is not.
using RecordFinder = std::function<bool(std::uint64_t handle, DecodedRecord& record)>;
using RecordVisitor = std::function<void(const DecodedRecord& record)>;

/// Whether the entities that a record owns are a chain in drawings of this version.
inline bool areChained(dxf::Version version) {
  return version < dxf::Version::R2004;
}

/// The list in the record, in its order.
std::vector<std::uint64_t> listedIn(const DecodedRecord& owner);

/// Visits the chain's entities in their order, `most` at most: one that closes on itself ends
/// there. Fails: false for one that ends before the last of them.
bool visitChain(const DecodedRecord& owner, std::size_t most, const RecordFinder& find,
                const RecordVisitor& visit);

/// Visits what the record owns, decoded, whichever way it is kept. Fails: as visitChain; what
/// a list names and nobody finds is passed over.
bool visitOwned(const DecodedRecord& owner, dxf::Version version, std::size_t most,
                const RecordFinder& find, const RecordVisitor& visit);

}  // namespace quoin::dwg
