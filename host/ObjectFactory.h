// The CAD product's service factory: every service of its platform is found by name through
// the one object factory. ProjectModel.h declares the services whose operations are used.
#pragma once

#include "PlatformApi.h"
#include "afxwin.h"

/// Names under which the factory knows its services.
namespace ServiceName {
inline constexpr const wchar_t* kProjectManager = L"工程管理器服务";
inline constexpr const wchar_t* kEntityModelMapping = L"实体模型映射服务";
}  // namespace ServiceName

class PLATFORM_API IObjectFactory {
 public:
  /// The service of this name as an opaque pointer; the caller casts it to the interface
  /// that the name stands for. `second` is empty in all known uses.
  /// Owns:  the platform owns the service; the pointer stays good until the platform ends.
  /// Fails: null for a service that the platform does not provide.
  virtual void* GetService(const CString& name, const CString& second) = 0;

 protected:
  ~IObjectFactory() = default;
};

/// The platform's object factory, never null: without a running platform every service is
/// missing from it.
PLATFORM_API IObjectFactory* GetObjectFactory();
