// Where model space shows certain blocks: nested references, all cells of arrays and dimensions
// included. References on frozen layers and invisible ones show nothing.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

#include "commands/BlockLines.h"
#include "commands/Drawing.h"

namespace quoin::commands {

class BlockPlaces {
 public:
  struct Place {
    AcDbObjectId block;
    AcDbObjectId reference;  // of model space
    AcGeMatrix3d toWorld;
  };

  /// Reads the references of model space and of what it shows.
  BlockPlaces(Drawing& drawing, const std::set<AcDbObjectId>& wanted);

  /// How often model space shows a block that is wanted; a block inside itself ends there.
  double count(const AcDbObjectId& block) const;
  /// Calls `visit` for every place of a block that is wanted, always in the same order; it stops
  /// the walk by returning false.
  /// Fails: throws CommandError (Interrupted).
  void walk(const std::function<bool(const Place&)>& visit) const;

 private:
  struct Content {
    AcDbObjectId block;
    std::vector<Insert> references;
    std::vector<Content*> shown;  // by each of them
    bool isWanted = false;
    bool leadsThere = false;   // it is wanted, or shows one that is
    std::size_t finished = 0;  // greater than that of all that it shows; 0 while it is read
    double count = 0.0;
  };

  Content& content(const AcDbObjectId& block);
  void read(Content& content);
  bool isShown(const AcDbEntity& entity);
  void readAll();
  void countAll();
  /// Whether the step from one to the other leads down, rather than around in a circle.
  static bool leads(const Content& from, const Content& to) {
    return to.leadsThere && to.finished < from.finished;
  }

  Drawing& m_drawing;
  const std::set<AcDbObjectId>& m_wanted;
  std::unordered_map<AcDbStub*, std::unique_ptr<Content>> m_contents;
  std::unordered_map<AcDbStub*, bool> m_isFrozen;  // layers
  std::vector<Content*> m_finished;                // in that order
};

}  // namespace quoin::commands
