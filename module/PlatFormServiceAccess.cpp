#include "PlatFormServiceAccess.h"

#include <new>

#include "ProjectModel.h"

static_assert(ePlatFormServiceCount == ServiceName::kCount);

CPlatFormServiceAccess* CPlatFormServiceAccess::s_pInstance = nullptr;

CPlatFormServiceAccess* CPlatFormServiceAccess::Instance() {
  if (!s_pInstance) {
    s_pInstance = new (std::nothrow) CPlatFormServiceAccess;
  }
  return s_pInstance;
}

CPlatFormServiceAccess::CPlatFormServiceAccess() {
  for (int i = 0; i < ePlatFormServiceCount; ++i) {
    const CString second;
    const CString name(ServiceName::kAll[i]);
    m_services[i] = GetObjectFactory()->GetService(name, second);
  }
}

CPlatFormServiceAccess::~CPlatFormServiceAccess() = default;

IEntityModelMappingService* CPlatFormServiceAccess::GetEntityModelMappingService() const {
  return static_cast<IEntityModelMappingService*>(GetService(eEntityModelMappingService));
}
