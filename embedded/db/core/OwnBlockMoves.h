// Blocks that show a dimension or a table, and what they were transformed by last: where several
// share one, it moves once when all of them do. A drawing keeps this from one transformBy to the
// next (docs/host-api.md, Geometry).
#pragma once

#include <map>
#include <set>

#include "gemat3d.h"

struct AcDbStub;

namespace quoin::dxf {
struct Block;
}

namespace quoin::db {

class OwnBlockMoves {
 public:
  /// Whether the block was transformed by this matrix with others that show it, and the entity
  /// only follows.
  bool joins(const dxf::Block& block, const AcDbStub& entity, const AcGeMatrix3d& matrix) const {
    const auto found = m_last.find(&block);
    return found != m_last.end() && found->second.entities.count(&entity) == 0 &&
           isSame(found->second.matrix, matrix);
  }
  void note(const dxf::Block& block, const AcDbStub& entity, const AcGeMatrix3d& matrix) {
    Move& last = m_last[&block];
    if (last.entities.count(&entity) != 0 || !isSame(last.matrix, matrix)) {
      last = {matrix, {}};
    }
    last.entities.insert(&entity);
  }

 private:
  struct Move {
    AcGeMatrix3d matrix;
    std::set<const AcDbStub*> entities;  // that show the block and were transformed so
  };
  static bool isSame(const AcGeMatrix3d& a, const AcGeMatrix3d& b) {
    for (int i = 0; i < 16; ++i) {
      if (a.entry[i / 4][i % 4] != b.entry[i / 4][i % 4]) {
        return false;
      }
    }
    return true;
  }

  std::map<const dxf::Block*, Move> m_last;
};

}  // namespace quoin::db
