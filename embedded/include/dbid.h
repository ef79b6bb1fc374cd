// AcDbObjectId: names an object of a drawing database for as long as the database lives. A
// plain value; ids of the same object are equal. Object ids are how objects are opened
// (acdbOpenObject) and how they point to each other.
//
// Exported function by function: an imported class could not define kNull here.
#pragma once

#include "acarray.h"
#include "dbhandle.h"
#include "rxobject.h"

struct AcDbStub;
class AcDbDatabase;

class AcDbObjectId {
 public:
  static const AcDbObjectId kNull;

  constexpr AcDbObjectId() = default;
  constexpr AcDbObjectId(AcDbStub* stub) : m_stub(stub) {}

  constexpr bool isNull() const { return m_stub == nullptr; }
  constexpr void setNull() { m_stub = nullptr; }
  /// Whether it names an object of a database (erased ones included).
  HOST_API bool isValid() const;
  bool isResident() const { return isValid(); }
  HOST_API bool isErased() const;
  /// Whether the object, or an owner of it, is erased.
  HOST_API bool isEffectivelyErased() const;
  /// The null handle for the null id and where the file gives its objects none.
  HOST_API AcDbHandle handle() const;
  /// Null for the null id.
  HOST_API AcDbDatabase* database() const;
  AcDbDatabase* originalDatabase() const { return database(); }
  /// The class that opening the object would give; null for the null id.
  HOST_API AcRxClass* objectClass() const;

  Adesk::IntDbId asOldId() const { return reinterpret_cast<Adesk::IntDbId>(m_stub); }
  AcDbObjectId& setFromOldId(Adesk::IntDbId oldId) {
    m_stub = reinterpret_cast<AcDbStub*>(oldId);
    return *this;
  }
  constexpr operator AcDbStub*() const { return m_stub; }

  friend constexpr bool operator==(const AcDbObjectId& a, const AcDbObjectId& b) {
    return a.m_stub == b.m_stub;
  }
  friend constexpr bool operator!=(const AcDbObjectId& a, const AcDbObjectId& b) {
    return a.m_stub != b.m_stub;
  }
  /// File order within a database, new objects last; the null id comes first. Total.
  friend bool operator<(const AcDbObjectId& a, const AcDbObjectId& b) { return a.isBefore(b); }
  friend bool operator>(const AcDbObjectId& a, const AcDbObjectId& b) { return b.isBefore(a); }
  friend bool operator<=(const AcDbObjectId& a, const AcDbObjectId& b) { return !b.isBefore(a); }
  friend bool operator>=(const AcDbObjectId& a, const AcDbObjectId& b) { return !a.isBefore(b); }

 private:
  HOST_API bool isBefore(const AcDbObjectId& other) const;

  AcDbStub* m_stub = nullptr;
};

inline constexpr AcDbObjectId AcDbObjectId::kNull{};

using AcDbObjectIdArray = AcArray<AcDbObjectId>;
