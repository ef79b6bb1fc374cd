// The CAD product's service factory: every service of its platform is found by name through
// the one object factory. ProjectModel.h declares the services whose operations are used.
#pragma once

#include "PlatformApi.h"
#include "afxwin.h"

/// Names under which the factory knows its services.
namespace ServiceName {
inline constexpr const wchar_t* kProjectManager = L"工程管理器服务";
inline constexpr const wchar_t* kEntityModelMapping = L"实体模型映射服务";

/// All of them, in the product's own order.
inline constexpr const wchar_t* kAll[] = {
    kProjectManager,
    L"工程事件服务",      // project events
    L"工程目录事件服务",  // project catalogue events
    L"工程报表事件服务",  // project report events
    L"数据模型事件服务",  // data model events
    L"模型工厂",          // model factory
    L"工程信息事件服务",  // project information events
    L"资源库访问器对象",  // resource library accessor
    kEntityModelMapping,
    L"图形修改记录服务",        // drawing modification records
    L"联动管理服务",            // linkage management
    L"资源库管理器服务",        // resource library manager
    L"资源库数据模型事件服务",  // resource library data model events
    L"数据模型访问工具",        // data model access tool
    L"资源库节点数据访问服务",  // resource library node data access
};
inline constexpr int kCount = 15;
static_assert(sizeof kAll / sizeof *kAll == kCount);
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
