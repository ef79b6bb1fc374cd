// In which properties two records differ, by name and with both values, and whether one is the
// other one moved.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "commands/compare/SaidRecord.h"
#include "commands/compare/Signature.h"
#include "gevec3d.h"

namespace quoin::commands {

/// One property with its values as texts for people.
struct PropertyChange {
  std::string name;  // "layer", "colour", "end"
  std::string before;
  std::string after;
  bool isGeometry = false;
};

/// What became of an entity.
struct EntityChange {
  std::vector<PropertyChange> properties;  // empty where it moved alone, or not at all
  std::optional<AcGeVector3d> move;        // in world coordinates

  bool isNone() const { return properties.empty() && !move; }
};

/// Two records of one kind. Geometry that is the same but elsewhere is a move.
EntityChange changeOf(const SaidRecord& before, const SaidRecord& after, const Nearness& nearness);

}  // namespace quoin::commands
