// What differs between two drawings: entities of model space, of layouts and of blocks, tables and
// settings. What a drawing does not show or say (views, handles, its application's notes) is no
// difference.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/compare/PropertyChanges.h"

namespace quoin::commands {

struct CompareRules {
  Nearness nearness;
  /// Which layers count, by name; empty for all.
  std::function<bool(const std::string& layer)> isChosen;
  bool ignoresHandles = false;
};

struct ComparedEntity {
  AcDbObjectId before;  // null for one that was added
  AcDbObjectId after;   // null for one that was removed
  std::string layer;    // that of the newest state
  EntityChange change;
};

/// How many entities of a layer, or of a space, became what.
struct ChangeCounts {
  std::size_t added = 0;
  std::size_t removed = 0;
  std::size_t moved = 0;
  std::size_t changed = 0;
  std::size_t same = 0;

  bool isSame() const { return added + removed + moved + changed == 0; }
  ChangeCounts& operator+=(const ChangeCounts& other);
};

/// One space or block that both drawings have; each list in the order of the file it stands in.
struct ComparedSpace {
  enum class Kind { Model, Layout, Block };
  Kind kind = Kind::Model;
  std::string name;  // "" for model space
  AcDbObjectId before;
  AcDbObjectId after;
  std::vector<ComparedEntity> added;
  std::vector<ComparedEntity> removed;
  std::vector<ComparedEntity> moved;
  std::vector<ComparedEntity> changed;
  std::map<std::string, ChangeCounts> layers;  // by name as the drawing spells it
  bool isRenumbered = false;
  /// It stands elsewhere wherever it is shown, since its base point is another.
  bool isShifted = false;

  ChangeCounts counts() const;
  /// Whether it is a block that shows something else than it did.
  bool isChangedBlock() const;
};

struct ComparedRecord {
  std::string name;
  std::vector<PropertyChange> properties;
};

/// The records of one table by name, or the blocks and layouts as such.
struct ComparedTable {
  std::string name;  // "layers"
  std::vector<std::string> added;
  std::vector<std::string> removed;
  std::vector<ComparedRecord> changed;

  bool isSame() const { return added.empty() && removed.empty() && changed.empty(); }
};

struct DrawingDifference {
  std::vector<ComparedSpace> spaces;  // model space first
  std::vector<ComparedTable> tables;
  std::vector<PropertyChange> settings;
  /// Kinds whose geometry is not compared, since it is not read whole from one of the files.
  std::set<std::string> notCompared;
  /// How near two lengths had to be to count as one.
  double tolerance = 0.0;

  bool isSame() const;
  ChangeCounts counts() const;
};

/// Compares two drawings as they were read.
/// Fails: throws CommandError (Interrupted).
DrawingDifference differenceOf(Drawing& before, Drawing& after, const CompareRules& rules);

}  // namespace quoin::commands
