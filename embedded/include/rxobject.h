// The root of the host's object classes, with run-time class identification that works
// across libraries. A class takes part with ACRX_DECLARE_MEMBERS in its body and one of the
// ACRX_..._DEFINE_MEMBERS macros in its source file:
//
//   class HOST_API AcDbLine : public AcDbCurve {
//    public:
//     ACRX_DECLARE_MEMBERS(AcDbLine);
//   ...
//   ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbLine, AcDbCurve, L"LINE", L"ObjectDBX Classes")
#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "rxdefs.h"

class AcRxClass;

class HOST_API AcRxObject {
 public:
  virtual ~AcRxObject();

  /// The object's own class.
  virtual AcRxClass* isA() const;
  /// Whether the object's class is `kind` or derives from it; false for a null kind.
  bool isKindOf(const AcRxClass* kind) const;

  static AcRxClass* desc();
  static AcRxObject* cast(const AcRxObject* object) { return const_cast<AcRxObject*>(object); }

  /// A copy of the object, owned by the caller; null for classes that have no copies.
  virtual AcRxObject* clone() const;
  /// Takes over the state of another object of the same class.
  /// Fails: eNotApplicable for classes that do not define it.
  virtual Acad::ErrorStatus copyFrom(const AcRxObject* other);
  /// Whether both are the same object, or equal where the class defines it.
  virtual bool isEqualTo(const AcRxObject* other) const;

 protected:
  AcRxObject() = default;
  AcRxObject(const AcRxObject&) = default;
  AcRxObject& operator=(const AcRxObject&) = default;
};

/// Makes an object of a class with its default constructor.
using AcRxCreator = AcRxObject* (*)();

/// What the class registry is told about a class; it keeps copies of the texts.
struct AcRxClassInfo {
  const ACHAR* name = nullptr;
  const ACHAR* dxfName = nullptr;  // null: not written to drawing files under a name
  const ACHAR* appName = nullptr;  // "ObjectDBX Classes" or the module's own text
  AcRxCreator creator = nullptr;   // null: abstract
  int proxyFlags = 0;
};

/// The descriptor of one class. The registry of the process owns it.
class HOST_API AcRxClass : public AcRxObject {
 public:
  AcRxClass* isA() const override;
  static AcRxClass* desc();
  static AcRxClass* cast(const AcRxObject* object);

  const ACHAR* name() const { return m_name.c_str(); }
  /// Null where the class was registered without.
  const ACHAR* dxfName() const { return m_dxfName ? m_dxfName->c_str() : nullptr; }
  const ACHAR* appName() const { return m_appName ? m_appName->c_str() : nullptr; }
  int proxyFlags() const { return m_proxyFlags; }
  /// The class that this one derives from; null for AcRxObject and for a class whose parent
  /// is not registered yet (see acrxBuildClassHierarchy).
  AcRxClass* myParent() const { return m_parent; }
  /// Whether this class is `ancestor` or derives from it.
  bool isDerivedFrom(const AcRxClass* ancestor) const;
  /// A new object of the class, owned by the caller; null for an abstract class.
  AcRxObject* create() const;

 private:
  friend struct AcRxClassRegistry;
  AcRxClass(const AcRxClassInfo& info, AcRxClass* parent);

  std::wstring m_name;
  std::optional<std::wstring> m_dxfName;
  std::optional<std::wstring> m_appName;
  AcRxCreator m_creator;
  int m_proxyFlags;
  AcRxClass* m_parent;
  std::wstring m_parentName;  // while m_parent is not known yet
  std::atomic<AcRxClass*>* m_slot = nullptr;
};

/// Registers a class under its parent's descriptor, unless `slot` holds its descriptor
/// already, and returns the descriptor. The macros below call it.
HOST_API AcRxClass* acrxDefineClass(std::atomic<AcRxClass*>& slot, const AcRxClassInfo& info,
                                    AcRxClass* parent);

/// Registers a class whose parent is known by name only; acrxBuildClassHierarchy links it.
/// Fails: null when a class of that name exists.
HOST_API AcRxClass* newAcRxClass(const ACHAR* className, const ACHAR* parentClassName,
                                 int proxyFlags = 0, AcRxCreator creator = nullptr,
                                 const ACHAR* dxfName = nullptr, const ACHAR* appName = nullptr);

/// Links every registered class to its parent, as far as that is registered by now.
HOST_API void acrxBuildClassHierarchy();

/// Takes a class out of the registry and deletes its descriptor. A class from which others
/// derive stays; delete those first.
HOST_API void deleteAcRxClass(AcRxClass* descriptor);

/// The registered class of this name; null if there is none.
HOST_API AcRxClass* acrxFindClass(const ACHAR* className);
/// The registered class that drawing files know under this name; null if there is none.
HOST_API AcRxClass* acrxFindClassByDxfName(const ACHAR* dxfName);

#define ACRX_DECLARE_MEMBERS(CLASS_NAME)                                   \
  AcRxClass* isA() const override;                                         \
  static std::atomic<AcRxClass*> gpDesc;                                   \
  static AcRxClass* desc();                                                \
  static void rxInit();                                                    \
  static CLASS_NAME* cast(const AcRxObject* object) {                      \
    return object && object->isKindOf(CLASS_NAME::desc())                  \
               ? static_cast<CLASS_NAME*>(const_cast<AcRxObject*>(object)) \
               : nullptr;                                                  \
  }                                                                        \
  static_assert(true, "takes the semicolon")

#define ACRX_DEFINE_MEMBERS_WITH(CLASS_NAME, PARENT_CLASS, CREATOR, DXF_NAME, APP)               \
  std::atomic<AcRxClass*> CLASS_NAME::gpDesc{nullptr};                                           \
  AcRxClass* CLASS_NAME::isA() const {                                                           \
    return CLASS_NAME::desc();                                                                   \
  }                                                                                              \
  AcRxClass* CLASS_NAME::desc() {                                                                \
    AcRxClass* const known = gpDesc.load(std::memory_order_acquire);                             \
    if (known) {                                                                                 \
      return known;                                                                              \
    }                                                                                            \
    rxInit();                                                                                    \
    return gpDesc.load(std::memory_order_acquire);                                               \
  }                                                                                              \
  void CLASS_NAME::rxInit() {                                                                    \
    acrxDefineClass(gpDesc, {L## #CLASS_NAME, DXF_NAME, APP, CREATOR, 0}, PARENT_CLASS::desc()); \
  }

/// An abstract class.
#define ACRX_NO_CONS_DEFINE_MEMBERS(CLASS_NAME, PARENT_CLASS) \
  ACRX_DEFINE_MEMBERS_WITH(CLASS_NAME, PARENT_CLASS, nullptr, nullptr, nullptr)

/// A class with a default constructor.
#define ACRX_CONS_DEFINE_MEMBERS(CLASS_NAME, PARENT_CLASS)                                        \
  ACRX_DEFINE_MEMBERS_WITH(                                                                       \
      CLASS_NAME, PARENT_CLASS, [] { return static_cast<AcRxObject*>(new CLASS_NAME); }, nullptr, \
      nullptr)

/// A class with a default constructor and a name in drawing files.
#define ACRX_DXF_CONS_DEFINE_MEMBERS(CLASS_NAME, PARENT_CLASS, DXF_NAME, APP)                      \
  ACRX_DEFINE_MEMBERS_WITH(                                                                        \
      CLASS_NAME, PARENT_CLASS, [] { return static_cast<AcRxObject*>(new CLASS_NAME); }, DXF_NAME, \
      APP)
