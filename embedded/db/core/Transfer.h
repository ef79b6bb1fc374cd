// Records on the way from one place to another: a clone's record into a drawing, with its
// new handle and owner, in the drawing's own format and version.
#pragma once

#include <string>

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/records/TagList.h"

namespace quoin::db {

/// What a transferred record gets at its head.
struct Placement {
  std::uint64_t handle = 0;  // 0: none is written
  std::uint64_t owner = 0;   // 0: none is written
  /// Tags of application groups (102), in the target's format.
  std::string groups;
  enum class Space : std::uint8_t { Keep, Model, Paper };
  Space space = Space::Keep;
};

/// Whether tags of the one format are tags of the other, byte for byte.
bool isSameSpelling(const dxf::Format& a, const dxf::Format& b);

/// The record's tags in another format: without the source's handle, owner and application
/// groups, with the placement's; without what the target's version does not know; with
/// subclass markers exactly where the target has them.
/// Fails: throws FileError with eIllegalEntityType when the target's version has no such kind,
/// or needs markers that nobody knows for it.
std::string transferred(const TagList& source, const dxf::Format& target,
                        const Placement& placement);

/// As transferred(), in the source's own format with nothing in the head: a clone's record.
std::string headless(const TagList& source);

}  // namespace quoin::db
