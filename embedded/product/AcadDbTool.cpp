#include "host/AcadDbTool.h"

#include "dbmain.h"

Acad::ErrorStatus CAcadDbTool::SaveDb(AcDbDatabase* pDb, const wchar_t* path, bool keepBackup) {
  if (!pDb) {
    return Acad::eNoDatabase;
  }
  if (!path || *path == 0) {
    return Acad::eInvalidInput;
  }
  return pDb->saveAs(path, keepBackup);
}
