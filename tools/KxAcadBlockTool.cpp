#include "KxAcadBlockTool.h"

#include "dbsymtb.h"

namespace {

constexpr const ACHAR* kArrowBlock = L"ArchTick";
constexpr const ACHAR* kOtherArrowBlock = L"建筑标记";  // what Chinese drawings call it
constexpr double kScaleFactor = 80.0;                   // graphics sizes in a drawing at scale 1

/// Takes over the settings of "Standard", where the table has it.
void CopyStandard(const AcDbDimStyleTable& table, AcDbDimStyleTableRecord& record) {
  AcDbObjectId standardId;
  if (table.getAt(L"Standard", standardId) != Acad::eOk) {
    return;
  }
  AcDbDimStyleTableRecord* pStandard = nullptr;
  if (acdbOpenObject(pStandard, standardId, AcDb::kForRead) == Acad::eOk) {
    record.copyFrom(pStandard);
    pStandard->close();
  }
}

/// The settings of architectural dimensions, in the order in which they build on each other. A
/// setting that is refused leaves what "Standard" has.
void SetArchitectural(AcDbDimStyleTableRecord& record, const CString& styleName, double dScale) {
  record.setName(styleName);
  record.setDimexe(2.5);
  record.setDimexo(8.0);
  if (record.setDimblk(kArrowBlock) != Acad::eOk) {
    record.setDimblk(kOtherArrowBlock);
  }
  record.setDimasz(2.0);
  record.setDimtxt(2.5);
  record.setDimtad(1);
  record.setDimjust(0);
  record.setDimtix(true);
  record.setDimtmove(2);
  record.setDimtofl(true);
  record.setDimunit(2);
  record.setDimdec(0);
  record.setDimrnd(0.0);
  record.setDimgap(1.5);
  record.setDimtih(false);
  record.setDimtoh(false);
  // The two go together: lengths are divided by the scale and their graphics grow with it.
  record.setDimlfac(1.0 / dScale);
  record.setDimscale(dScale * kScaleFactor);
}

}  // namespace

CKxAcadBlockTool& CKxAcadBlockTool::operator=(const CKxAcadBlockTool&) = default;

AcDbObjectId CKxAcadBlockTool::GetCustomDimStyle(AcDbDatabase* pDb, const CString& styleName,
                                                 double dScale) {
  AcDbObjectId styleId;
  if (!pDb) {
    return styleId;
  }
  AcDbDimStyleTable* pTable = nullptr;
  if (pDb->getDimStyleTable(pTable, AcDb::kForWrite) != Acad::eOk) {
    return styleId;
  }
  if (pTable->has(styleName)) {
    pTable->getAt(styleName, styleId, false);
    pTable->close();
    return styleId;
  }
  AcDbDimStyleTableRecord* const pRecord = new AcDbDimStyleTableRecord;
  CopyStandard(*pTable, *pRecord);
  SetArchitectural(*pRecord, styleName, dScale);
  pTable->add(styleId, pRecord);
  if (styleId.isNull()) {
    delete pRecord;  // the table did not take it
  } else {
    pRecord->close();
  }
  pTable->close();
  return styleId;
}

void CKxAcadBlockTool::GetBlkRecExtent(AcDbExtents& ext, AcDbObjectId blkRecId) {
  AcDbBlockTableRecord* pRecord = nullptr;
  if (acdbOpenObject(pRecord, blkRecId, AcDb::kForWrite) == Acad::eOk) {
    ext.addBlockExt(pRecord);
    pRecord->close();
  }
}
