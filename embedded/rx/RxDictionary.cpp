#include <string_view>
#include <utility>

#include "rxdict.h"

ACRX_CONS_DEFINE_MEMBERS(AcRxDictionary, AcRxObject)

AcRxDictionary::AcRxDictionary() = default;

AcRxObject* AcRxDictionary::at(const ACHAR* key) const {
  const auto found = m_entries.find(std::wstring_view(key ? key : L""));
  return found == m_entries.end() ? nullptr : found->second;
}

AcRxObject* AcRxDictionary::atPut(const ACHAR* key, AcRxObject* object) {
  return std::exchange(m_entries[key ? key : L""], object);
}

AcRxObject* AcRxDictionary::remove(const ACHAR* key) {
  const auto found = m_entries.find(std::wstring_view(key ? key : L""));
  if (found == m_entries.end()) {
    return nullptr;
  }
  AcRxObject* const object = found->second;
  m_entries.erase(found);
  return object;
}
