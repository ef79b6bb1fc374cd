// Measures what a drawing's model space shows and moves or scales what is in it. Everything is
// static.
#pragma once

#include <vector>

#include "afxext.h"
#include "afxwin.h"
#include "gemat3d.h"
#include "gepnt3d.h"

class AcDbDatabase;
class AcDbExtents;

/// A base position on the extents rectangle of a drawing, in plan.
enum EDwgPosition { eLeftTop = 1, eLeftBottom, eRightTop, eRightBottom, eCenter };

class AFX_EXT_CLASS CEntityTool {
 public:
  CEntityTool& operator=(const CEntityTool& other);

  /// Widens `ext` by the extents of what model space shows: entities whose layer is on, thawed
  /// and not hidden; invisible ones only on request. A text is left out when it
  /// has no height (multiline text: no width) and no letters.
  /// Fails: false without a model space that opens for write.
  static bool GetEntExtents(AcDbDatabase* pDb, AcDbExtents& ext, bool bIncludeInvisible);

  /// The base point of the model space's visible extents, at height 0; the origin for a
  /// position that is none. Without anything visible the point is that of fresh extents.
  static AcGePoint3d GetBasePos(AcDbDatabase* pDb, EDwgPosition pos);

  /// Moves everything in model space so that the base point comes to the origin; heights stay.
  static void TranslationToOrigin(AcDbDatabase* pDb, EDwgPosition pos);

  /// Transforms every entity of a block that opens for write. An entity that rejects the
  /// matrix stays as it is.
  static void TransformEntity(AcDbDatabase* pDb, const AcGeMatrix3d& mat, CString blockName);

  /// Scales every entity of a block about the origin by 80 times `dScale`.
  static void TransformEntityByScale(AcDbDatabase* pDb, double dScale, CString blockName);

  /// Reads each drawing file, scales its model space as TransformEntityByScale() and saves it
  /// to its own path, with a backup. Goes on whatever happens to a file; nothing is reported.
  static void AdjustDwgSize(std::vector<CString>& files, double dScale);
};
