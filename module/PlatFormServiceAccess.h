// The named services of the CAD product's platform, looked up once in a process and kept.
// Host's main thread only; the platform must be up at the first use.
#pragma once

#include "ObjectFactory.h"

class IEntityModelMappingService;

/// The services in the order of their names in ServiceName::kAll.
enum EPlatFormService {
  eProjectManagerService,
  eProjectEventService,
  eProjectCatalogueEventService,
  eProjectReportEventService,
  eDataModelEventService,
  eModelFactory,
  eProjectInfoEventService,
  eResourceLibraryAccessor,
  eEntityModelMappingService,
  eDrawingModifyRecordService,
  eLinkageManageService,
  eResourceLibraryManagerService,
  eResourceLibraryDataModelEventService,
  eDataModelAccessTool,
  eResourceLibraryNodeDataAccessService,
  ePlatFormServiceCount
};

class CPlatFormServiceAccess {
 public:
  /// The one object of the process: made, with all look-ups, on the first call and never
  /// destroyed. Null when there is no memory for it.
  static CPlatFormServiceAccess* Instance();

  virtual ~CPlatFormServiceAccess();
  CPlatFormServiceAccess(const CPlatFormServiceAccess&) = delete;
  CPlatFormServiceAccess& operator=(const CPlatFormServiceAccess&) = delete;

  /// A service as the platform returned it, null where it has none. The platform owns it.
  void* GetService(EPlatFormService service) const { return m_services[service]; }
  IEntityModelMappingService* GetEntityModelMappingService() const;

 private:
  friend struct PlatFormServiceAccessDoor;
  CPlatFormServiceAccess();

  void* m_services[ePlatFormServiceCount];
  static CPlatFormServiceAccess* s_pInstance;
};
