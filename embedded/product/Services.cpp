// The object factory and the fifteen services behind it. All of them are made once in a
// process and hold nothing: what they return is the running platform's.
#include <algorithm>
#include <array>
#include <string_view>

#include "embedded/product/Platform.h"
#include "host/ObjectFactory.h"

namespace quoin::product {
namespace {

class ProjectManagerService : public IProjectManagerService {
 public:
  IProject* GetCurrentProject() override {
    Platform* const platform = Platform::current();
    return platform ? platform->projects().current() : nullptr;
  }
};

class EntityModelMappingService : public IEntityModelMappingService {
 public:
  IEntityModelMapping* GetMapping(ModelMapKey key) override {
    static EntityMapping nothing;
    Platform* const platform = Platform::current();
    return platform ? &platform->entityMappings().under(key) : &nothing;
  }
};

/// A service of which callers know nothing but the name: its address is all there is to it.
struct NamedService {
  std::wstring_view name;
};

constexpr std::wstring_view kProjectManager = ServiceName::kProjectManager;
constexpr std::wstring_view kEntityModelMapping = ServiceName::kEntityModelMapping;

struct Services {
  ProjectManagerService projectManager;
  EntityModelMappingService entityModelMapping;
  std::array<NamedService, ServiceName::kCount> others;

  static Services& instance() {
    static Services& services = *new Services;
    return services;
  }

  Services() {
    for (std::size_t i = 0; i < others.size(); ++i) {
      others[i].name = ServiceName::kAll[i];
    }
  }

  /// Pointers to the interfaces that callers cast to.
  void* find(std::wstring_view name) {
    if (name == kProjectManager) {
      return static_cast<IProjectManagerService*>(&projectManager);
    }
    if (name == kEntityModelMapping) {
      return static_cast<IEntityModelMappingService*>(&entityModelMapping);
    }
    const auto found = std::find_if(others.begin(), others.end(),
                                    [&](const NamedService& other) { return name == other.name; });
    return found == others.end() ? nullptr : &*found;
  }
};

class ObjectFactory : public IObjectFactory {
 public:
  void* GetService(const CString& name, const CString& second) override {
    Platform* const platform = Platform::current();
    if (!platform) {
      return nullptr;
    }
    const std::wstring_view wanted(name.GetString(), static_cast<std::size_t>(name.GetLength()));
    // Every service exists once, under an empty second string.
    void* const service = second.IsEmpty() && !platform->isWithdrawn(wanted)
                              ? Services::instance().find(wanted)
                              : nullptr;
    if (LookupObserver* const observer = platform->lookupObserver()) {
      const std::wstring_view secondName(second.GetString(),
                                         static_cast<std::size_t>(second.GetLength()));
      observer->onLookup(wanted, secondName, service != nullptr);
    }
    return service;
  }
};

}  // namespace

std::span<const wchar_t* const> Platform::serviceNames() {
  return ServiceName::kAll;
}

}  // namespace quoin::product

IObjectFactory* GetObjectFactory() {
  using namespace quoin::product;
  static ObjectFactory& factory = *new ObjectFactory;
  Platform* const platform = Platform::current();
  if (LookupObserver* const observer = platform ? platform->lookupObserver() : nullptr) {
    observer->onFactoryCall();
  }
  return &factory;
}
