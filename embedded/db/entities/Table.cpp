// ACAD_TABLE: a table, shown by a block of its own.
#include "embedded/db/core/Blocks.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;

Acad::ErrorStatus extentsOfTable(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                 ExtentsWalk& walk, AcDbExtents&) {
  const TagList& tags = entity.tags;
  const TagRange place = tags.subclass("AcDbBlockReference");
  const TagRange range = tags.subclass("AcDbTable");
  const dxf::Block* const block = blockOf(entity, code::kName, place);
  if (!block) {
    return Acad::eOk;
  }
  const AcGePoint3d base = baseOf(*entity.database, *block);
  const AcGeMatrix3d frame =
      frameAt(tags.point(kPoint, place),
              tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector(), normalOf(tags, range));
  const AcGeMatrix3d toBase = AcGeMatrix3d().setToTranslation(AcGePoint3d::kOrigin - base);
  walk.show(*block, toWorld * frame * toBase);
  return Acad::eOk;
}

/// A table places and turns its block by itself.
OwnBlock ownBlockOf(DatabaseImpl& database, const TagList& tags, const AcGeMatrix3d& matrix) {
  const dxf::Block* const block =
      anonymousBlock(database, tags, tags.subclass("AcDbBlockReference"));
  return {block, block ? AcGeMatrix3d().setToScaling(matrix.scale(), baseOf(database, *block))
                       : AcGeMatrix3d()};
}

constexpr std::array kRules{Rule{"AcDbBlockReference", 10, Point},
                            Rule{"AcDbBlockReference", 210, Normal, &AcGeVector3d::kZAxis},
                            Rule{"AcDbTable", 11, Direction},
                            Rule{"AcDbTable", 140, Length},
                            Rule{"AcDbTable", 141, Length},
                            Rule{"AcDbTable", 142, Length}};
constexpr TransformSchema kSchema{.rules = kRules, .subclassesNeeded = 2};

constexpr std::array kKinds{
    // Its cells use shared codes (62, 60, 284 and more) for borders and texts.
    RecordKind{.name = "ACAD_TABLE",
               .since = Version::R2004,
               .extents = extentsOfTable,
               .schema = &kSchema,
               .ownBlock = ownBlockOf},
};

}  // namespace

const std::span<const RecordKind> kTableRows{kKinds};

}  // namespace quoin::db
