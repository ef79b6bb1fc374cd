#include "ChangeEntityProperty.h"

#include "PlatFormServiceAccess.h"
#include "ProjectModel.h"
#include "dbmain.h"

CChangeEntityProperty::CChangeEntityProperty(IModelNode* pModelNode) : m_pModelNode(pModelNode) {}

CChangeEntityProperty& CChangeEntityProperty::operator=(const CChangeEntityProperty&) = default;

void CChangeEntityProperty::operator()(AcDbEntity* pEnt) {
  SetSecEntityProperties(pEnt, m_pModelNode);
}

void CChangeEntityProperty::SetSecEntityProperties(AcDbEntity* pEnt, IModelNode* pModelNode) {
  if (!pEnt || !pModelNode) {
    return;
  }
  // A platform without this service is no platform for this module: the pointer is not tested.
  IEntityModelMappingService* const pService =
      CPlatFormServiceAccess::Instance()->GetEntityModelMappingService();
  const IEntityModelMapping* const pMapping = pService->GetMapping(pModelNode->GetMapKey());
  const AcDbObjectId sourceId = pMapping->GetEntityId(pModelNode);
  if (sourceId.isNull() || !sourceId.isValid() || sourceId.isErased()) {
    return;
  }
  AcDbEntity* pSource = nullptr;
  if (acdbOpenAcDbEntity(pSource, sourceId, AcDb::kForRead, false) != Acad::eOk) {
    return;
  }
  pEnt->setLayer(pSource->layerId(), true, false);
  pEnt->setColorIndex(pSource->colorIndex(), true);
  pEnt->setLineWeight(pSource->lineWeight(), true);
  pEnt->setLinetype(pSource->linetypeId(), true);
  pEnt->setMaterial(pSource->materialId(), true);
  pSource->close();
}
