// Shortcuts for symbol tables: the well-known records of a database and rules for names.
#pragma once

#include "dbsymtb.h"

namespace AcDbSymbolUtilities {

class HOST_API Services {
 public:
  const ACHAR* blockModelSpaceName() const { return ACDB_MODEL_SPACE; }
  const ACHAR* blockPaperSpaceName() const { return ACDB_PAPER_SPACE; }
  const ACHAR* layerZeroName() const { return ACRX_T("0"); }
  AcDbObjectId blockModelSpaceId(const AcDbDatabase* database) const;
  AcDbObjectId blockPaperSpaceId(const AcDbDatabase* database) const;
  AcDbObjectId layerZeroId(const AcDbDatabase* database) const;
  AcDbObjectId linetypeContinuousId(const AcDbDatabase* database) const;
  bool isBlockModelSpaceName(const ACHAR* name) const;
  bool isBlockPaperSpaceName(const ACHAR* name) const;

  /// Whether a new symbol may have this name: 1 to 255 characters, none of <>/\":;?*|,=` and
  /// no control character.
  /// Fails: eInvalidInput.
  Acad::ErrorStatus validateSymbolName(const ACHAR* name, bool allowVerticalBar = false) const;
  /// Equal without regard to case.
  bool compareSymbolName(const ACHAR* a, const ACHAR* b) const;
  /// Fails: eKeyNotFound and as for opening the table; the id is null then.
  Acad::ErrorStatus getLayerId(AcDbObjectId& id, const ACHAR* name, AcDbDatabase* database) const;
  Acad::ErrorStatus getBlockId(AcDbObjectId& id, const ACHAR* name, AcDbDatabase* database) const;
  Acad::ErrorStatus getLinetypeId(AcDbObjectId& id, const ACHAR* name,
                                  AcDbDatabase* database) const;
  Acad::ErrorStatus getTextStyleId(AcDbObjectId& id, const ACHAR* name,
                                   AcDbDatabase* database) const;
};

/// Never null.
HOST_API const Services* servicesPtr();

}  // namespace AcDbSymbolUtilities

#define acdbSymUtil AcDbSymbolUtilities::servicesPtr
