// AcDbObjectPointer: opens an object and closes it when it goes out of scope.
#pragma once

#include "dbmain.h"

template <class T>
class AcDbObjectPointer {
 public:
  AcDbObjectPointer() = default;
  explicit AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                             bool openErased = false) {
    open(id, mode, openErased);
  }
  ~AcDbObjectPointer() { close(); }
  AcDbObjectPointer(const AcDbObjectPointer&) = delete;
  AcDbObjectPointer& operator=(const AcDbObjectPointer&) = delete;

  /// Closes what it held and opens this object; as acdbOpenObject.
  Acad::ErrorStatus open(AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                         bool openErased = false) {
    close();
    return m_status = acdbOpenObject(m_object, id, mode, openErased);
  }
  /// Takes over an open object.
  Acad::ErrorStatus acquire(T*& object) {
    close();
    m_object = object;
    object = nullptr;
    return m_status = m_object ? Acad::eOk : Acad::eNullObjectPointer;
  }
  /// Hands the open object to the caller, who closes it.
  Acad::ErrorStatus release(T*& object) {
    object = m_object;
    m_object = nullptr;
    m_status = Acad::eNullObjectPointer;
    return object ? Acad::eOk : Acad::eNullObjectPointer;
  }
  /// An object in no database is deleted.
  Acad::ErrorStatus close() {
    Acad::ErrorStatus status = Acad::eOk;
    if (m_object) {
      if (m_object->objectId().isNull()) {
        delete m_object;
      } else {
        status = m_object->close();
      }
      m_object = nullptr;
      m_status = Acad::eNullObjectPointer;
    }
    return status;
  }

  Acad::ErrorStatus openStatus() const { return m_status; }
  T* object() const { return m_object; }
  T* operator->() const { return m_object; }
  operator T*() const { return m_object; }

 private:
  T* m_object = nullptr;
  Acad::ErrorStatus m_status = Acad::eNullObjectPointer;
};

using AcDbEntityPointer = AcDbObjectPointer<AcDbEntity>;
