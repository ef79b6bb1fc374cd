#include "embedded/db/EntityGeometry.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "dbents.h"
#include "embedded/db/EntityFields.h"

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
    KindGeometry{"SOLID", extentsOfSolid},
    KindGeometry{"TRACE", extentsOfSolid},
    KindGeometry{"ELLIPSE", extentsOfEllipse},
    KindGeometry{"SPLINE", extentsOfSpline},
    KindGeometry{"HELIX", extentsOfSpline},
    KindGeometry{"HATCH", extentsOfHatch},
    KindGeometry{"MPOLYGON", extentsOfHatch},
    KindGeometry{"MLINE", extentsOfMultiline},
    KindGeometry{"VIEWPORT", extentsOfViewport},
    KindGeometry{"IMAGE", extentsOfImage},
    KindGeometry{"WIPEOUT", extentsOfImage},
    KindGeometry{"PDFUNDERLAY", extentsOfUnderlay},
    KindGeometry{"DWFUNDERLAY", extentsOfUnderlay},
    KindGeometry{"DGNUNDERLAY", extentsOfUnderlay},
    KindGeometry{"OLE2FRAME", extentsOfOleFrame},
    KindGeometry{"LIGHT", extentsOfLight},
    KindGeometry{"SECTIONOBJECT", extentsOfSection},
    KindGeometry{"MESH", extentsOfMesh},
    KindGeometry{"ACAD_PROXY_ENTITY", extentsOfProxy},
    KindGeometry{"DIMENSION", extentsOfDimension},
    KindGeometry{"ARC_DIMENSION", extentsOfDimension},
    KindGeometry{"LARGE_RADIAL_DIMENSION", extentsOfDimension},
    KindGeometry{"LEADER", extentsOfLeader},
    KindGeometry{"MULTILEADER", extentsOfMultiLeader},
    KindGeometry{"MLEADER", extentsOfMultiLeader},
    KindGeometry{"TOLERANCE", extentsOfTolerance},
    KindGeometry{"ACAD_TABLE", extentsOfTable},
};

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

std::string_view kindOf(const TagList& tags) {
  return tags.size() > 0 ? dxf::trimmedValue(tags[0]) : std::string_view();
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
  if (!edit.isFinite()) {
    return Acad::eInvalidInput;
  }
  bytes = edit.bytes();
  return Acad::eOk;
}

}  // namespace

const KindGeometry* geometryOf(std::string_view kind) {
  const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                  [&](const KindGeometry& row) { return row.kind == kind; });
  return found == kKinds.end() ? nullptr : &*found;
}

// --- measuring ------------------------------------------------------------------------------

Acad::ErrorStatus ExtentsWalk::add(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                   AcDbExtents& box) {
  const KindGeometry* const row = geometryOf(kindOf(entity.tags));
  if (!row || !row->extents) {
    return Acad::eNotApplicable;
  }
  AcDbExtents own;
  const Acad::ErrorStatus status = row->extents(entity, toWorld, *this, own);
  if (status != Acad::eOk) {
    return status;
  }
  if (own.isFresh()) {
    return Acad::eNullExtents;
  }
  box.addExt(own);
  return Acad::eOk;
}

void ExtentsWalk::addBlock(DatabaseImpl& database, const dxf::Block& block,
                           const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  if (std::find(m_path.begin(), m_path.end(), &block) != m_path.end()) {
    return;  // a block that holds itself shows nothing more
  }
  if (m_visited < kExactEntities) {
    addEntities(database, block, toWorld, box);
    return;
  }
  AcDbExtents own = boxOf(database, block);
  if (!own.isFresh()) {
    own.transformBy(toWorld);
    box.addExt(own);
  }
}

const AcDbExtents& ExtentsWalk::boxOf(DatabaseImpl& database, const dxf::Block& block) {
  const auto known = m_boxes.find(&block);
  if (known != m_boxes.end()) {
    return known->second;
  }
  AcDbExtents box;
  addEntities(database, block, AcGeMatrix3d::kIdentity, box);
  return m_boxes[&block] = box;
}

void ExtentsWalk::addEntities(DatabaseImpl& database, const dxf::Block& block,
                              const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  m_path.push_back(&block);
  for (const AcDbStub* const stub : block.entities) {
    if (stub->erased) {
      continue;
    }
    ++m_visited;
    const TagList tags = database.tagsOf(*stub);
    const bool isInvisible = tags.integer(code::kVisibility, place::kEntity.in(tags), 0) != 0;
    constexpr std::int64_t kIsConstant = 2;
    const bool isPrompt =
        kindOf(tags) == "ATTDEF" && m_path.size() > 1 &&
        !(tags.integer(code::kFlags, place::kAttributeDefinition.in(tags), 0) & kIsConstant);
    if (!isInvisible && !isPrompt) {
      add({tags, &database, stub, nullptr}, toWorld, box);
    }
  }
  m_path.pop_back();
}

}  // namespace quoin::db

using namespace quoin::db;

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents& extents) const {
  extents = AcDbExtents();
  try {
    const ObjectImpl& impl = Access::of(*this);
    const Drawn drawn{tagsOf(*this), impl.database, impl.stub, impl.stub ? nullptr : this};
    return ExtentsWalk().add(drawn, AcGeMatrix3d::kIdentity, extents);
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d& matrix) {
  Acad::ErrorStatus status = checkWritable(*this);
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
    const TagList& tags = tagsOf(*this);
    const KindGeometry* const row = geometryOf(kindOf(tags));
    if (!row || !row->transform) {
      return Acad::eNotApplicable;
    }
    // Everything is computed before the first record changes.
    std::string bytes;
    status = editedBytes(tags, matrix, bytes,
                         [&](RecordEdit& edit) { return row->transform(edit, matrix); });
    std::vector<std::string> parts;
    const auto addPart = [&](const TagList& part) {
      std::string partBytes(part.bytes());
      if (status == Acad::eOk && row->transformPart) {
        status = editedBytes(part, matrix, partBytes, [&](RecordEdit& edit) {
          return row->transformPart(edit, tags, matrix);
        });
      }
      parts.push_back(std::move(partBytes));
    };
    forEachPart(*this, addPart);
    if (status != Acad::eOk) {
      return status;
    }
    ObjectImpl& impl = Access::of(*this);
    std::size_t next = 0;
    if (impl.stub) {
      forEachPartStub(*impl.stub,
                      [&](AcDbStub& part) { impl.database->replace(part, parts[next++]); });
    }
    for (const auto& part : impl.parts) {
      setBytes(*part, parts[next++]);
    }
    setBytes(*this, std::move(bytes));
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}
