// AcDbObjectId and AcDbHandle.
#include "dbid.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/RecordKinds.h"

using namespace quoin::db;

AcDbHandle::AcDbHandle(const ACHAR* hexText) {
  constexpr int kMostDigits = 16;
  int digits = 0;
  Adesk::UInt64 value = 0;
  for (const ACHAR* at = hexText; at && *at; ++at, ++digits) {
    const ACHAR c = *at;
    const int digit = c >= L'0' && c <= L'9'   ? c - L'0'
                      : c >= L'A' && c <= L'F' ? c - L'A' + 10
                      : c >= L'a' && c <= L'f' ? c - L'a' + 10
                                               : -1;
    if (digit < 0 || digits == kMostDigits) {
      return;
    }
    value = value << 4 | static_cast<Adesk::UInt64>(digit);
  }
  m_value = value;
}

bool AcDbHandle::getIntoAsciiBuffer(ACHAR* buffer, std::size_t bufferSize) const {
  std::size_t digits = 1;
  while (digits < 16 && m_value >> (4 * digits) != 0) {
    ++digits;
  }
  if (!buffer || bufferSize == 0) {
    return false;
  }
  if (bufferSize <= digits) {
    buffer[0] = L'\0';
    return false;
  }
  for (std::size_t i = 0; i < digits; ++i) {
    buffer[i] = L"0123456789ABCDEF"[m_value >> (4 * (digits - 1 - i)) & 0xF];
  }
  buffer[digits] = L'\0';
  return true;
}

bool AcDbObjectId::isValid() const {
  return m_stub && m_stub->store;
}

bool AcDbObjectId::isErased() const {
  return m_stub && m_stub->erased;
}

bool AcDbObjectId::isEffectivelyErased() const {
  return isValid() && DatabaseImpl::of(*m_stub).isErased(*m_stub);
}

AcDbHandle AcDbObjectId::handle() const {
  return AcDbHandle(m_stub ? m_stub->handle : 0);
}

AcDbDatabase* AcDbObjectId::database() const {
  return isValid() ? DatabaseImpl::of(*m_stub).self : nullptr;
}

AcRxClass* AcDbObjectId::objectClass() const {
  if (!isValid()) {
    return nullptr;
  }
  try {
    const ClassRow* const row = classOf(*m_stub);
    return row                                           ? row->descriptor()
           : DatabaseImpl::of(*m_stub).isEntity(*m_stub) ? AcDbEntity::desc()
                                                         : AcDbObject::desc();
  } catch (...) {
    statusOfException();
    return AcDbObject::desc();
  }
}

bool AcDbObjectId::isBefore(const AcDbObjectId& other) const {
  if (!m_stub || !other.m_stub) {
    return !m_stub && other.m_stub;
  }
  if (m_stub->store != other.m_stub->store) {
    return std::less<>()(m_stub->store, other.m_stub->store);
  }
  if (m_stub->index != other.m_stub->index) {
    return m_stub->index < other.m_stub->index;
  }
  return std::less<>()(m_stub, other.m_stub);  // heads of tables that the file lacks
}
