#include "EntityTool.h"

#include <memory>
#include <utility>

#include "AcadDbTool.h"
#include "dbents.h"
#include "dbmtext.h"
#include "dbsymtb.h"

namespace {

constexpr const ACHAR* kModelSpace = L"*Model_Space";
constexpr double kScaleFactor = 80.0;  // drawing units of a drawing at scale 1

/// Opens a block for write by its name; null where that fails.
AcDbBlockTableRecord* OpenBlockForWrite(AcDbDatabase* pDb, const ACHAR* blockName) {
  AcDbBlockTable* pTable = nullptr;
  if (!pDb || pDb->getBlockTable(pTable, AcDb::kForWrite) != Acad::eOk || !pTable) {
    return nullptr;
  }
  AcDbBlockTableRecord* pBlock = nullptr;
  const Acad::ErrorStatus status = pTable->getAt(blockName, pBlock, AcDb::kForWrite, false);
  pTable->close();
  return status == Acad::eOk ? pBlock : nullptr;
}

/// Over the entities of an open block, erased ones left out; null where the block gives none.
std::unique_ptr<AcDbBlockTableRecordIterator> EntitiesOf(const AcDbBlockTableRecord& block) {
  AcDbBlockTableRecordIterator* pIterator = nullptr;
  block.newIterator(pIterator, true, true);
  return std::unique_ptr<AcDbBlockTableRecordIterator>(pIterator);
}

/// Whether an entity's layer lets it show. One that cannot be opened does not.
bool IsLayerShown(const AcDbEntity& entity) {
  AcDbObject* pObject = nullptr;
  if (acdbOpenAcDbObject(pObject, entity.layerId(), AcDb::kForRead) != Acad::eOk) {
    return false;
  }
  const AcDbLayerTableRecord* const pLayer = AcDbLayerTableRecord::cast(pObject);
  const bool isShown = !pLayer || !(pLayer->isOff() || pLayer->isFrozen() || pLayer->isHidden());
  pObject->close();
  return isShown;
}

/// Whether a text of this size counts: one without size needs letters to count.
bool IsTextCounted(double dSize, CString strText) {
  return dSize > 0.0 || !strText.Trim().IsEmpty();
}

CString TextOf(const AcDbMText& text) {
  ACHAR* pBuffer = text.text();
  const CString strText(pBuffer);
  acutDelBuffer(pBuffer);
  return strText;
}

/// Adds a text's extents whatever its measuring returns: a failure leaves them fresh.
void AddTextExtents(const AcDbEntity& text, AcDbExtents& ext) {
  AcDbExtents extText;
  text.getGeomExtents(extText);
  ext.addExt(extText);
}

void AddExtents(const AcDbEntity& entity, AcDbExtents& ext) {
  if (const AcDbText* pText = AcDbText::cast(&entity)) {
    if (IsTextCounted(pText->height(), pText->textStringConst())) {
      AddTextExtents(entity, ext);
    }
  } else if (const AcDbMText* pMText = AcDbMText::cast(&entity)) {
    if (IsTextCounted(pMText->width(), TextOf(*pMText))) {
      AddTextExtents(entity, ext);
    }
  } else {
    AcDbExtents extEntity;
    if (entity.getGeomExtents(extEntity) == Acad::eOk) {
      ext.addExt(extEntity);
    }
  }
}

}  // namespace

CEntityTool& CEntityTool::operator=(const CEntityTool&) = default;

bool CEntityTool::GetEntExtents(AcDbDatabase* pDb, AcDbExtents& ext, bool bIncludeInvisible) {
  AcDbBlockTableRecord* const pSpace = OpenBlockForWrite(pDb, kModelSpace);
  if (!pSpace) {
    return false;
  }
  const std::unique_ptr<AcDbBlockTableRecordIterator> pIterator = EntitiesOf(*pSpace);
  pSpace->close();
  if (!pIterator) {
    return true;
  }
  for (; !pIterator->done(); pIterator->step()) {
    AcDbEntity* pEntity = nullptr;
    if (pIterator->getEntity(pEntity, AcDb::kForRead) != Acad::eOk) {
      continue;
    }
    const bool isVisible = bIncludeInvisible || pEntity->visibility() != AcDb::kInvisible;
    if (isVisible && IsLayerShown(*pEntity)) {
      AddExtents(*pEntity, ext);
    }
    pEntity->close();
  }
  return true;
}

AcGePoint3d CEntityTool::GetBasePos(AcDbDatabase* pDb, EDwgPosition pos) {
  AcDbExtents ext;
  GetEntExtents(pDb, ext, false);
  const AcGePoint3d& ptMin = ext.minPoint();
  const AcGePoint3d& ptMax = ext.maxPoint();
  switch (pos) {
    case eLeftTop:
      return AcGePoint3d(ptMin.x, ptMax.y, 0.0);
    case eLeftBottom:
      return AcGePoint3d(ptMin.x, ptMin.y, 0.0);
    case eRightTop:
      return AcGePoint3d(ptMax.x, ptMax.y, 0.0);
    case eRightBottom:
      return AcGePoint3d(ptMax.x, ptMin.y, 0.0);
    case eCenter:
      return AcGePoint3d((ptMin.x + ptMax.x) * 0.5, (ptMin.y + ptMax.y) * 0.5, 0.0);
  }
  return AcGePoint3d::kOrigin;
}

void CEntityTool::TranslationToOrigin(AcDbDatabase* pDb, EDwgPosition pos) {
  const AcGePoint3d ptBase = GetBasePos(pDb, pos);
  AcGeMatrix3d mat;
  mat.setToTranslation(AcGeVector3d(-ptBase.x, -ptBase.y, -0.0));
  TransformEntity(pDb, mat, kModelSpace);
}

// The exported signature passes the name by value.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void CEntityTool::TransformEntity(AcDbDatabase* pDb, const AcGeMatrix3d& mat, CString blockName) {
  AcDbBlockTableRecord* const pBlock = OpenBlockForWrite(pDb, blockName);
  if (!pBlock) {
    return;
  }
  const std::unique_ptr<AcDbBlockTableRecordIterator> pIterator = EntitiesOf(*pBlock);
  for (; pIterator && !pIterator->done(); pIterator->step()) {
    AcDbEntity* pEntity = nullptr;
    if (pIterator->getEntity(pEntity, AcDb::kForWrite) == Acad::eOk) {
      pEntity->transformBy(mat);
      pEntity->close();
    }
  }
  pBlock->close();
}

void CEntityTool::TransformEntityByScale(AcDbDatabase* pDb, double dScale, CString blockName) {
  AcGeMatrix3d mat;
  mat.setToScaling(dScale * kScaleFactor, AcGePoint3d::kOrigin);
  TransformEntity(pDb, mat, std::move(blockName));
}

void CEntityTool::AdjustDwgSize(std::vector<CString>& files, double dScale) {
  for (const CString& file : files) {
    AcDbDatabase database(false, true);
    database.readDwgFile(file, _SH_DENYWR, false, nullptr);
    TransformEntityByScale(&database, dScale, kModelSpace);
    CAcadDbTool::SaveDb(&database, file, true);
  }
}
