#include "rxobject.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// All classes of the process by name. Never destroyed: objects with static storage, in any
/// library, may ask for their class until the very end.
struct AcRxClassRegistry {
  std::recursive_mutex mutex;
  std::map<std::wstring, std::unique_ptr<AcRxClass>, std::less<>> classes;
  // Descriptors whose name another library has taken over since. Somebody may still hold
  // one, so they stay.
  std::vector<std::unique_ptr<AcRxClass>> replaced;

  static AcRxClassRegistry& instance() {
    static AcRxClassRegistry& registry = *new AcRxClassRegistry;
    return registry;
  }

  AcRxClass* find(std::wstring_view name) const {
    const auto found = classes.find(name);
    return found == classes.end() ? nullptr : found->second.get();
  }

  AcRxClass* add(const AcRxClassInfo& info, AcRxClass* parent) {
    std::unique_ptr<AcRxClass> made(new AcRxClass(info, parent));
    std::unique_ptr<AcRxClass>& place = classes[made->m_name];
    if (place) {
      replaced.push_back(std::move(place));
    }
    place = std::move(made);
    return place.get();
  }

  AcRxClass* define(std::atomic<AcRxClass*>& slot, const AcRxClassInfo& info, AcRxClass* parent) {
    const std::lock_guard lock(mutex);
    if (AcRxClass* const known = slot.load(std::memory_order_acquire)) {
      return known;
    }
    AcRxClass* const made = add(info, parent);
    made->m_slot = &slot;
    slot.store(made, std::memory_order_release);
    return made;
  }

  AcRxClass* defineByParentName(const AcRxClassInfo& info, const ACHAR* parentName) {
    const std::lock_guard lock(mutex);
    if (!info.name || find(info.name)) {
      return nullptr;
    }
    AcRxClass* const made = add(info, nullptr);
    made->m_parentName = parentName ? parentName : L"";
    return made;
  }

  void linkParents() {
    const std::lock_guard lock(mutex);
    for (const auto& [name, entry] : classes) {
      if (!entry->m_parent && !entry->m_parentName.empty()) {
        entry->m_parent = find(entry->m_parentName);
      }
    }
  }

  void erase(AcRxClass* descriptor) {
    const std::lock_guard lock(mutex);
    if (!descriptor) {
      return;
    }
    for (const auto& [name, entry] : classes) {
      if (entry->m_parent == descriptor) {
        return;
      }
    }
    if (descriptor->m_slot) {
      descriptor->m_slot->store(nullptr, std::memory_order_release);
    }
    if (find(descriptor->m_name) == descriptor) {
      classes.erase(classes.find(descriptor->m_name));
    }
  }
};

AcRxClass::AcRxClass(const AcRxClassInfo& info, AcRxClass* parent)
    : m_name(info.name), m_creator(info.creator), m_proxyFlags(info.proxyFlags), m_parent(parent) {
  if (info.dxfName) {
    m_dxfName = info.dxfName;
  }
  if (info.appName) {
    m_appName = info.appName;
  }
}

AcRxObject::~AcRxObject() = default;

AcRxClass* AcRxObject::isA() const {
  return AcRxObject::desc();
}

bool AcRxObject::isKindOf(const AcRxClass* kind) const {
  return isA()->isDerivedFrom(kind);
}

AcRxClass* AcRxObject::desc() {
  static std::atomic<AcRxClass*> slot{nullptr};
  return acrxDefineClass(slot, {.name = L"AcRxObject"}, nullptr);
}

AcRxObject* AcRxObject::clone() const {
  return nullptr;
}

Acad::ErrorStatus AcRxObject::copyFrom(const AcRxObject*) {
  return Acad::eNotApplicable;
}

bool AcRxObject::isEqualTo(const AcRxObject* other) const {
  return this == other;
}

AcRxClass* AcRxClass::isA() const {
  return AcRxClass::desc();
}

AcRxClass* AcRxClass::desc() {
  static std::atomic<AcRxClass*> slot{nullptr};
  return acrxDefineClass(slot, {.name = L"AcRxClass"}, AcRxObject::desc());
}

AcRxClass* AcRxClass::cast(const AcRxObject* object) {
  return object && object->isKindOf(AcRxClass::desc())
             ? static_cast<AcRxClass*>(const_cast<AcRxObject*>(object))
             : nullptr;
}

bool AcRxClass::isDerivedFrom(const AcRxClass* ancestor) const {
  if (!ancestor) {
    return false;
  }
  for (const AcRxClass* kind = this; kind; kind = kind->m_parent) {
    if (kind == ancestor) {
      return true;
    }
  }
  return false;
}

AcRxObject* AcRxClass::create() const {
  return m_creator ? m_creator() : nullptr;
}

AcRxClass* acrxDefineClass(std::atomic<AcRxClass*>& slot, const AcRxClassInfo& info,
                           AcRxClass* parent) {
  AcRxClass* const known = slot.load(std::memory_order_acquire);
  return known ? known : AcRxClassRegistry::instance().define(slot, info, parent);
}

AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName, int proxyFlags,
                        AcRxCreator creator, const ACHAR* dxfName, const ACHAR* appName) {
  return AcRxClassRegistry::instance().defineByParentName(
      {className, dxfName, appName, creator, proxyFlags}, parentClassName);
}

void acrxBuildClassHierarchy() {
  AcRxClassRegistry::instance().linkParents();
}

void deleteAcRxClass(AcRxClass* descriptor) {
  AcRxClassRegistry::instance().erase(descriptor);
}

AcRxClass* acrxFindClass(const ACHAR* className) {
  AcRxClassRegistry& registry = AcRxClassRegistry::instance();
  const std::lock_guard lock(registry.mutex);
  return className ? registry.find(className) : nullptr;
}

AcRxClass* acrxFindClassByDxfName(const ACHAR* dxfName) {
  AcRxClassRegistry& registry = AcRxClassRegistry::instance();
  const std::lock_guard lock(registry.mutex);
  for (const auto& [name, entry] : registry.classes) {
    if (dxfName && entry->dxfName() && std::wstring_view(entry->dxfName()) == dxfName) {
      return entry.get();
    }
  }
  return nullptr;
}
