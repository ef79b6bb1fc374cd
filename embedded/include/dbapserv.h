// The host application's services to the database: which database is being worked on.
#pragma once

#include "dbmain.h"

class HOST_API AcDbHostApplicationServices : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbHostApplicationServices);

  /// Null when none was set, or it was deleted since. Not owned.
  AcDbDatabase* workingDatabase() const;
  void setWorkingDatabase(AcDbDatabase* database);
  const ACHAR* product() const { return ACRX_T("Quoin"); }
};

/// Never null.
HOST_API AcDbHostApplicationServices* acdbHostApplicationServices();
