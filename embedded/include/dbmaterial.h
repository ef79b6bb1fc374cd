// AcDbMaterial: what surfaces are made of. A material is an object in the dictionary
// AcDbDatabase::getMaterialDictionary(); entities name it (AcDbEntity::setMaterial). Beyond
// its name and description it is kept as the file has it. Files before R2007 have none.
#pragma once

#include "dbmain.h"

class HOST_API AcDbMaterial : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMaterial);
  AcDbMaterial();

  /// Valid until the object changes or closes.
  const ACHAR* name() const;
  /// Fails: eNotOpenForWrite, eInvalidInput (empty).
  Acad::ErrorStatus setName(const ACHAR* name);
  const ACHAR* description() const;
  Acad::ErrorStatus setDescription(const ACHAR* description);
};
