#include "embedded/db/geometry/EntityGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include "dbents.h"
#include "embedded/db/core/EntityFields.h"
#include "embedded/db/geometry/TransformSchema.h"
#include "hostextents.h"
#include "hostextra.h"

namespace quoin::db {
namespace {

/// Moves along what extended data calls world positions, displacements, directions, distances
/// and factors.
void transformXData(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kPosition = 1011;
  constexpr int kDisplacement = 1012;
  constexpr int kDirection = 1013;
  constexpr int kDistance = 1041;
  constexpr int kFactor = 1042;
  const TagList& tags = edit.tags();
  const double scale = matrix.scale();
  for (std::size_t i = tags.xData().first; i < tags.xData().last; ++i) {
    const int code = tags[i].code;
    if (code == kDistance || code == kFactor) {
      edit.setDoubleAt(i, tags.doubleAt(i) * scale);
    }
    const bool isPoint = code == kPosition || code == kDisplacement || code == kDirection;
    if (!isPoint || i + 2 >= tags.size()) {
      continue;
    }
    const AcGePoint3d before(tags.doubleAt(i), tags.doubleAt(i + 1), tags.doubleAt(i + 2));
    AcGePoint3d after =
        code == kPosition ? matrix * before : AcGePoint3d::kOrigin + matrix * before.asVector();
    if (code == kDirection && after.asVector().length() > 0.0) {
      after = after * (before.asVector().length() / after.asVector().length());
    }
    edit.setDoubleAt(i, after.x);
    edit.setDoubleAt(i + 1, after.y);
    edit.setDoubleAt(i + 2, after.z);
  }
}

/// Takes away the stored picture of an entity, which shows it as it was.
void dropStoredPicture(RecordEdit& edit) {
  constexpr std::array kPictureCodes{92, 160, 310};  // its size, in old files and new, its bytes
  const TagList& tags = edit.tags();
  if (edit.isChanged() && tags.hasMarkers() && layout::kEntity.in(tags).first > tags.body().first) {
    for (const int code : kPictureCodes) {
      edit.remove(layout::kEntity, code);
    }
  }
}

/// The record with the edits of `edits`, which returns a status; nothing for a failure.
template <class Edits>
Acad::ErrorStatus editedBytes(const TagList& tags, const AcGeMatrix3d& matrix, std::string& bytes,
                              Edits&& edits) {
  RecordEdit edit(tags);
  const Acad::ErrorStatus status = edits(edit);
  if (status != Acad::eOk) {
    return status;
  }
  transformXData(edit, matrix);
  dropStoredPicture(edit);
  // A number that nobody can read has no image; the others alone would be half a change.
  if (!edit.isFinite() || edit.metUnreadable()) {
    return Acad::eInvalidInput;
  }
  bytes = edit.bytes();
  return Acad::eOk;
}

/// The edits of an entity's own record.
Acad::ErrorStatus transformRecord(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const RecordKind* const kind = kindOf(edit.tags());
  if (kind && kind->transform) {
    return kind->transform(edit, matrix);
  }
  return kind && kind->schema && isReadable(*kind->schema, edit.tags())
             ? transformBySchema(*kind->schema, edit, matrix)
             : Acad::eNotApplicable;
}

/// The new bytes of an entity's record.
Acad::ErrorStatus transformedBytes(const TagList& tags, const AcGeMatrix3d& matrix,
                                   std::string& bytes) {
  return editedBytes(tags, matrix, bytes,
                     [&](RecordEdit& edit) { return transformRecord(edit, matrix); });
}

/// The new bytes of one of its parts; parts of most kinds stay as they are.
Acad::ErrorStatus transformedPart(const TagList& owner, const TagList& part,
                                  const AcGeMatrix3d& matrix, std::string& bytes) {
  const RecordKind* const kind = kindOf(owner);
  if (!kind || !kind->transformPart) {
    bytes = part.bytes();
    return Acad::eOk;
  }
  return editedBytes(part, matrix, bytes,
                     [&](RecordEdit& edit) { return kind->transformPart(edit, owner, matrix); });
}

OwnBlock ownBlockOf(DatabaseImpl& database, const TagList& tags, const AcGeMatrix3d& matrix) {
  const RecordKind* const kind = kindOf(tags);
  return kind && kind->ownBlock ? kind->ownBlock(database, tags, matrix) : OwnBlock();
}

/// New records of entities in a drawing, computed before any of them changes.
class ResidentChanges {
 public:
  /// Blocks of dimensions and tables can show each other to any depth, and in rings.
  Acad::ErrorStatus add(AcDbStub& open, const AcGeMatrix3d& matrix) {
    std::set<const AcDbStub*> seen;  // beside the open one
    std::vector<std::pair<AcDbStub*, AcGeMatrix3d>> waiting{{&open, matrix}};
    Acad::ErrorStatus status = Acad::eOk;
    while (status == Acad::eOk && !waiting.empty()) {
      const auto [stub, change] = waiting.back();
      DatabaseImpl& database = DatabaseImpl::of(*stub);
      waiting.pop_back();
      OwnBlock own;
      status = addRecords(*stub, change, own);
      if (stub == &open) {
        m_own = own;
      }
      if (!own.block || database.ownBlockMoves.joins(*own.block, *stub, own.matrix)) {
        continue;
      }
      // Dimensions inside a dimension's block would be blocks within blocks: nothing makes them.
      for (AcDbStub* const entity : own.block->entities) {
        if (!entity->erased && entity != &open &&
            database.kindOf(*entity) != database.kindOf(*stub) && seen.insert(entity).second) {
          waiting.emplace_back(entity, own.matrix);
        }
      }
    }
    return status;
  }

  /// The entity that is open gets its record through itself.
  void apply(AcDbObject& open) {
    const AcDbStub* const openStub = Access::of(open).stub;
    for (Change& change : m_changes) {
      if (change.stub != openStub) {
        DatabaseImpl::of(*change.stub).replace(*change.stub, std::move(change.bytes));
      }
    }
    setBytes(open, std::move(m_changes.front().bytes));
    if (m_own.block) {
      DatabaseImpl::of(*openStub).ownBlockMoves.note(*m_own.block, *openStub, m_own.matrix);
    }
  }

 private:
  struct Change {
    AcDbStub* stub;
    std::string bytes;
  };

  /// One entity with its vertices or attributes; `own` is the block that shows it, if it has one.
  Acad::ErrorStatus addRecords(AcDbStub& stub, const AcGeMatrix3d& matrix, OwnBlock& own) {
    DatabaseImpl& database = DatabaseImpl::of(stub);
    const TagList tags = database.tagsOf(stub);
    std::string bytes;
    Acad::ErrorStatus status = transformedBytes(tags, matrix, bytes);
    m_changes.push_back({&stub, std::move(bytes)});
    forEachPartStub(stub, [&](AcDbStub& part) {
      std::string partBytes;
      if (status == Acad::eOk) {
        status = transformedPart(tags, database.tagsOf(part), matrix, partBytes);
      }
      m_changes.push_back({&part, std::move(partBytes)});
    });
    if (status == Acad::eOk) {
      own = ownBlockOf(database, tags, matrix);
    }
    return status;
  }

  std::vector<Change> m_changes;
  OwnBlock m_own;
};

Acad::ErrorStatus transformFree(AcDbObject& entity, const AcGeMatrix3d& matrix) {
  const TagList& tags = tagsOf(entity);
  std::string bytes;
  Acad::ErrorStatus status = transformedBytes(tags, matrix, bytes);
  std::vector<std::string> parts;
  for (const auto& part : Access::of(entity).own().parts) {
    std::string& partBytes = parts.emplace_back();
    if (status == Acad::eOk) {
      status = transformedPart(tags, tagsOf(*part), matrix, partBytes);
    }
  }
  if (status == Acad::eOk) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      setBytes(*Access::of(entity).own().parts[i], std::move(parts[i]));
    }
    setBytes(entity, std::move(bytes));
  }
  return status;
}

}  // namespace

bool isFinite(const AcGeMatrix3d& matrix) {
  for (const auto& row : matrix.entry) {
    for (const double value : row) {
      if (!std::isfinite(value)) {
        return false;
      }
    }
  }
  return true;
}

bool hasTransform(const DatabaseImpl& database, const AcDbStub& stub) {
  const RecordKind* const kind = entityKind(database.kindOf(stub));
  const TransformSchema* const schema = kind ? kind->schema : nullptr;
  return kind && (kind->transform || (schema && (schema->subclassesNeeded == 1 ||
                                                 isReadable(*schema, database.tagsOf(stub)))));
}

}  // namespace quoin::db

using namespace quoin::db;

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents& extents) const {
  extents = AcDbExtents();
  try {
    const ObjectImpl& impl = Access::of(*this);
    const Drawn drawn{tagsOf(*this), impl.database, impl.stub, impl.stub ? nullptr : this};
    return ExtentsWalk(impl.database).addEntity(drawn, extents);
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d& matrix) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!isFinite(matrix)) {
    return Acad::eInvalidInput;
  }
  if (matrix.isSingular()) {
    return Acad::eSingularMatrix;
  }
  try {
    // Everything is computed before the first record changes.
    const ObjectImpl& impl = Access::of(*this);
    if (impl.stub) {
      ResidentChanges changes;
      const Acad::ErrorStatus made = changes.add(*impl.stub, matrix);
      if (made == Acad::eOk) {
        changes.apply(*this);
      }
      return made;
    }
    return transformFree(*this, matrix);
  } catch (...) {
    return statusOfException();
  }
}

namespace hostx {

bool canTransform(const AcDbObjectId& id) {
  const AcDbStub* const stub = stubOf(id);
  try {
    return stub && hasTransform(DatabaseImpl::of(*stub), *stub);
  } catch (...) {
    statusOfException();
    return false;
  }
}

bool hasExtents(const AcDbObjectId& id) {
  const AcDbStub* const stub = stubOf(id);
  const RecordKind* const kind = stub ? entityKind(DatabaseImpl::of(*stub).kindOf(*stub)) : nullptr;
  return kind && kind->extents;
}

Adesk::UInt64 roughExtents(const AcDbDatabase* database) {
  return database ? Access::of(*database).extentsMemory().roughEntities : 0;
}

Adesk::UInt64 exactExtentsLimit() {
  return ExtentsMemory::kExactEntities;
}

}  // namespace hostx
