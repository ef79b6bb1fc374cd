#include "embedded/db/EntityGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include "dbents.h"
#include "embedded/db/Blocks.h"
#include "embedded/db/EntityFields.h"
#include "embedded/db/TransformSchema.h"

namespace quoin::db {
namespace {

constexpr std::array kKinds{
    KindGeometry{"POINT", extentsOfPoint, transformPoint},
    KindGeometry{"LINE", extentsOfLine, transformLine},
    KindGeometry{"3DFACE", extentsOfFace, transformFace},
    KindGeometry{"CIRCLE", extentsOfCircle, transformCircle},
    KindGeometry{"ARC", extentsOfArc, transformArc},
    KindGeometry{"LWPOLYLINE", extentsOfPolyline, transformPolyline},
    KindGeometry{"POLYLINE", extentsOfHeavyPolyline, transformHeavyPolyline, transformVertex},
    KindGeometry{"TEXT", extentsOfText, transformText},
    KindGeometry{"ATTRIB", extentsOfText, transformText},
    KindGeometry{"ATTDEF", extentsOfText, transformText},
    KindGeometry{"MTEXT", extentsOfMText, transformMText},
    KindGeometry{"INSERT", extentsOfReference, transformReference, transformAttribute},
    KindGeometry{"SHAPE", nullptr, transformShape},
    KindGeometry{"SOLID", extentsOfSolid},
    KindGeometry{"TRACE", extentsOfSolid},
    KindGeometry{"ELLIPSE", extentsOfEllipse, transformEllipse},
    KindGeometry{"SPLINE", extentsOfSpline},
    KindGeometry{"HELIX", extentsOfSpline},
    KindGeometry{"HATCH", extentsOfHatch, transformHatch},
    KindGeometry{"MPOLYGON", extentsOfHatch, transformHatch},
    KindGeometry{"MLINE", extentsOfMultiline},
    KindGeometry{"VIEWPORT", extentsOfViewport},
    KindGeometry{"IMAGE", extentsOfImage},
    KindGeometry{"WIPEOUT", extentsOfImage},
    KindGeometry{"PDFUNDERLAY", extentsOfUnderlay, transformUnderlay},
    KindGeometry{"DWFUNDERLAY", extentsOfUnderlay, transformUnderlay},
    KindGeometry{"DGNUNDERLAY", extentsOfUnderlay, transformUnderlay},
    KindGeometry{"OLE2FRAME", extentsOfOleFrame},
    KindGeometry{"LIGHT", extentsOfLight},
    KindGeometry{"SECTIONOBJECT", extentsOfSection},
    KindGeometry{"MESH", extentsOfMesh},
    KindGeometry{"ACAD_PROXY_ENTITY", extentsOfProxy},
    KindGeometry{"DIMENSION", extentsOfDimension},
    KindGeometry{"ARC_DIMENSION", extentsOfDimension},
    KindGeometry{"LARGE_RADIAL_DIMENSION", extentsOfDimension},
    KindGeometry{"LEADER", extentsOfLeader},
    KindGeometry{"MULTILEADER", extentsOfMultiLeader, transformMultileader},
    KindGeometry{"MLEADER", extentsOfMultiLeader, transformMultileader},
    KindGeometry{"TOLERANCE", extentsOfTolerance},
    KindGeometry{"ACAD_TABLE", extentsOfTable},
};

std::string_view kindOf(const TagList& tags) {
  return tags.size() > 0 ? dxf::trimmedValue(tags[0]) : std::string_view();
}

/// Takes away the stored picture of an entity, which shows it as it was.
void dropStoredPicture(RecordEdit& edit) {
  constexpr std::array kPictureCodes{92, 160, 310};  // its size, in old files and new, its bytes
  const TagList& tags = edit.tags();
  if (edit.isChanged() && tags.hasMarkers() && place::kEntity.in(tags).first > tags.body().first) {
    for (const int code : kPictureCodes) {
      edit.remove(place::kEntity, code);
    }
  }
}

/// The record with the edits of `edits`, which answers a status; nothing for a failure.
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
  const std::string_view kind = kindOf(edit.tags());
  const KindGeometry* const row = geometryOf(kind);
  if (row && row->transform) {
    return row->transform(edit, matrix);
  }
  const TransformSchema* const schema = schemaOf(kind);
  return schema && isReadable(*schema, edit.tags()) ? transformBySchema(*schema, edit, matrix)
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
  const KindGeometry* const row = geometryOf(kindOf(owner));
  if (!row || !row->transformPart) {
    bytes = part.bytes();
    return Acad::eOk;
  }
  return editedBytes(part, matrix, bytes,
                     [&](RecordEdit& edit) { return row->transformPart(edit, owner, matrix); });
}

/// The block that shows a dimension or table and belongs to it alone, and how it follows.
struct OwnBlock {
  const dxf::Block* block = nullptr;
  AcGeMatrix3d matrix;
};

OwnBlock ownBlockOf(DatabaseImpl& database, const TagList& tags, const AcGeMatrix3d& matrix) {
  const std::string_view kind = kindOf(tags);
  const bool isTable = kind == "ACAD_TABLE";
  const bool isDimension =
      kind == "DIMENSION" || kind == "ARC_DIMENSION" || kind == "LARGE_RADIAL_DIMENSION";
  if (!isTable && !isDimension) {
    return {};
  }
  const TagRange range = tags.subclass(isTable ? "AcDbBlockReference" : "AcDbDimension");
  const std::wstring name = tags.text(code::kName, range).value_or(L"");
  // A block that a user has named shows elsewhere too and stays.
  const bool isAnonymous = !name.empty() && name.front() == L'*';
  const dxf::Block* const block = isAnonymous ? blockNamed(database, name) : nullptr;
  if (!block) {
    return {};
  }
  // A dimension's block is in world coordinates; a table places and turns its block by itself.
  return {block,
          isTable ? AcGeMatrix3d().setToScaling(matrix.scale(), baseOf(database, *block)) : matrix};
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
  for (const auto& part : Access::of(entity).parts) {
    std::string& partBytes = parts.emplace_back();
    if (status == Acad::eOk) {
      status = transformedPart(tags, tagsOf(*part), matrix, partBytes);
    }
  }
  if (status == Acad::eOk) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
      setBytes(*Access::of(entity).parts[i], std::move(parts[i]));
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
  const std::string_view kind = database.kindOf(stub);
  const KindGeometry* const row = geometryOf(kind);
  if (row && row->transform) {
    return true;
  }
  const TransformSchema* const schema = schemaOf(kind);
  return schema && (schema->subclassesNeeded == 1 || isReadable(*schema, database.tagsOf(stub)));
}

const KindGeometry* geometryOf(std::string_view kind) {
  const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                  [&](const KindGeometry& row) { return row.kind == kind; });
  return found == kKinds.end() ? nullptr : &*found;
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
