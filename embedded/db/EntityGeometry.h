// What each kind of entity is in space, in one table: how far it reaches and how it is
// transformed. A kind that a function is missing for answers eNotApplicable.
#pragma once

#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/ExtentsWalk.h"
#include "embedded/text/FontMetrics.h"

namespace quoin::db {

/// An entity to be measured: a record with what belongs to it.
struct Drawn {
  const TagList& tags;
  DatabaseImpl* database = nullptr;    // null for a free entity
  const AcDbStub* stub = nullptr;      // of a resident entity
  const AcDbObject* object = nullptr;  // of a free entity
};

/// Edits the entity's record.
using TransformFunction = Acad::ErrorStatus (*)(RecordEdit& edit, const AcGeMatrix3d& matrix);
/// Edits the record of one of its parts; `owner` is the owner's record as it was.
using PartFunction = Acad::ErrorStatus (*)(RecordEdit& edit, const TagList& owner,
                                           const AcGeMatrix3d& matrix);

struct KindGeometry {
  std::string_view kind;
  ExtentsFunction extents = nullptr;
  TransformFunction transform = nullptr;
  PartFunction transformPart = nullptr;
};

/// The kind's row; null for a kind that the table does not have.
const KindGeometry* geometryOf(std::string_view kind);
/// Whether an entity can be transformed, by its kind's row or by its schema (TransformSchema.h).
/// Fails: throws FileError.
bool hasTransform(const DatabaseImpl& database, const AcDbStub& stub);

/// The font of a text whose record names its style (7); the usual one where the style is not
/// there.
const text::Font& fontOf(DatabaseImpl* database, const TagList& text, TagRange range);

// --- extents --------------------------------------------------------------------------------

// The rows' functions, by what they measure.
Acad::ErrorStatus extentsOfPoint(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfLine(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfFace(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfCircle(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfArc(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfPolyline(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfHeavyPolyline(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&,
                                         AcDbExtents&);
Acad::ErrorStatus extentsOfText(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfMText(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfReference(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfHatch(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfEllipse(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfSpline(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfSolid(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfMultiline(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfViewport(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfImage(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfUnderlay(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfOleFrame(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfLight(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfSection(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfMesh(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfProxy(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfDimension(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfLeader(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfMultiLeader(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&,
                                       AcDbExtents&);
Acad::ErrorStatus extentsOfTolerance(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);
Acad::ErrorStatus extentsOfTable(const Drawn&, const AcGeMatrix3d&, ExtentsWalk&, AcDbExtents&);

// --- transforms -----------------------------------------------------------------------------

Acad::ErrorStatus transformPoint(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformLine(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformFace(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformCircle(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformArc(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformPolyline(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformHeavyPolyline(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformVertex(RecordEdit& edit, const TagList& owner,
                                  const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformText(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformAttribute(RecordEdit& edit, const TagList& owner,
                                     const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformMText(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformReference(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformEllipse(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformHatch(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformMultileader(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformUnderlay(RecordEdit& edit, const AcGeMatrix3d& matrix);
Acad::ErrorStatus transformShape(RecordEdit& edit, const AcGeMatrix3d& matrix);

/// Whether a matrix can transform anything: no infinity, no NaN.
bool isFinite(const AcGeMatrix3d& matrix);

/// Moves along what extended data calls world positions, displacements, directions, distances
/// and factors.
void transformXData(RecordEdit& edit, const AcGeMatrix3d& matrix);

}  // namespace quoin::db
