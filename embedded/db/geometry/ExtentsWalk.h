// Measuring entities with the blocks that they show, however deeply these are nested, and what
// that has learnt and spent in one drawing. A drawing of a few kilobytes can show more entities
// than anybody could visit (blocks that each show the one below ten times), so that a drawing has
// one budget: within it every entity is measured exactly where it shows; beyond it, blocks count
// with their boxes, which are measured once.
#pragma once

#include <unordered_set>
#include <vector>

#include "embedded/db/core/RecordKinds.h"

namespace quoin::db {

/// One measurement. Nested blocks wait in a list of their own, not on the stack of the process.
class ExtentsWalk {
 public:
  /// `database` is null for entities in no drawing.
  explicit ExtentsWalk(DatabaseImpl* database);
  ExtentsWalk(const ExtentsWalk&) = delete;
  ExtentsWalk& operator=(const ExtentsWalk&) = delete;

  /// Adds what an entity shows.
  /// Fails: eNotApplicable (no such kind in the table), eNullExtents (it shows nothing); the
  /// box stays as it is then.
  Acad::ErrorStatus addEntity(const Drawn& entity, AcDbExtents& box);
  /// Adds every entity of a block that shows something.
  void addBlock(const dxf::Block& block, AcDbExtents& box);

  // --- for the functions that measure one kind ----------------------------------------------
  /// Says that the entity shows a block through a matrix.
  void show(const dxf::Block& block, const AcGeMatrix3d& toWorld);
  /// The same; where the block shows nothing, `otherwise` measures the entity.
  void showOr(const dxf::Block& block, const AcGeMatrix3d& toWorld, const Drawn& entity,
              ExtentsFunction otherwise);
  /// Adds a part of the entity, of a kind that shows no block.
  void addPart(const Drawn& part, const AcGeMatrix3d& toWorld, AcDbExtents& box);

 private:
  /// A block that an entity shows and that is not measured yet.
  struct Shown {
    const dxf::Block* block;
    AcGeMatrix3d toWorld;
    const AcDbStub* owner = nullptr;
    ExtentsFunction otherwise = nullptr;
  };
  /// A block that is being measured; the first one is the entity or block that was asked for.
  struct Frame {
    const dxf::Block* block = nullptr;
    AcGeMatrix3d toWorld;
    bool isForBox = false;  // measured in its own coordinates, for all that show it
    std::size_t nextEntity = 0;
    std::vector<Shown> shown;  // by the entity before `nextEntity`
    AcDbExtents box;
  };

  Acad::ErrorStatus addShape(const Drawn& entity, const AcGeMatrix3d& toWorld, AcDbExtents& box);
  void begin(const dxf::Block* block, const AcGeMatrix3d& toWorld, bool isForBox);
  void run();
  void visit(const AcDbStub& entity);
  void enter();
  void leave();
  /// Takes the last block that the frame's entity shows as measured.
  void finishShown(const AcDbExtents& box);

  DatabaseImpl* m_database;
  ExtentsMemory m_ownMemory;  // where there is no drawing
  ExtentsMemory& m_memory;
  bool m_isRough = false;
  std::vector<Shown> m_shown;  // by the entity that is being measured
  std::vector<Frame> m_frames;
  std::unordered_set<const dxf::Block*> m_path;  // blocks of the frames
};

}  // namespace quoin::db
