// Small services for interactive commands: the editor's view, and multiline styles. Everything
// is static.
#pragma once

#include "acgi.h"
#include "afxext.h"
#include "dbid.h"
#include "gepnt3d.h"

class AFX_EXT_CLASS CAcadCommonTool {
 public:
  CAcadCommonTool& operator=(const CAcadCommonTool& other);

  /// Drawing units per pixel of the current view: the view's height over the screen's.
  static double GetCurScale();
  /// The current viewing direction in world coordinates.
  static AcGeVector3d GetWcsViewDir();
  /// Whether this is a standard display of a plain top view.
  static bool IsZAxisViewPort(AcGiRegenType regenType);
  /// `curPnt` turned about `basePnt` to the nearest multiple of 15 degrees in plan; half-way
  /// angles go up. The result lies at the height of `basePnt` and as far from it as `curPnt`
  /// is in space.
  static AcGePoint3d GetAngleLockPnt(const AcGePoint3d& basePnt, const AcGePoint3d& curPnt);

  /// The multiline style of this name. A missing one is made: two lines by layer, half a unit
  /// to either side, with a line across the start or the end as told. An existing one stays as
  /// it is.
  /// Fails: the null id without a database, where the drawing has no place for such styles
  ///        (R12), and for a name that no style may have.
  static AcDbObjectId GetMlineStyleId(AcDbDatabase* pDb, const CString& styleName,
                                      bool bStartSquareCap, bool bEndSquareCap);

  // For other modules to share one text style and whether it has been loaded; nothing here
  // reads them.
  static bool s_bLoadStyle;
  static AcGiTextStyle s_txtStyle;
};
