// Dimension styles in the house manner, and extents of block definitions. Everything is static.
#pragma once

#include "afxext.h"
#include "dbmain.h"

class AFX_EXT_CLASS CKxAcadBlockTool {
 public:
  CKxAcadBlockTool& operator=(const CKxAcadBlockTool& other);

  /// The dimension style of this name. A missing one is made from "Standard" with the settings
  /// of architectural dimensions at `dScale`: measured lengths are divided by it, the graphics
  /// grow with it. An existing one stays as it is. The arrow block must be in the drawing:
  /// "ArchTick", else "建筑标记"; without either the style keeps the arrow of "Standard".
  /// Fails: the null id without a database and when the table cannot be opened or takes no
  ///        record of that name.
  static AcDbObjectId GetCustomDimStyle(AcDbDatabase* pDb, const CString& styleName, double dScale);
  /// Widens `ext` by what is in a block definition; anything else leaves it as it was.
  static void GetBlkRecExtent(AcDbExtents& ext, AcDbObjectId blkRecId);
};
