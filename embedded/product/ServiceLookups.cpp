#include "embedded/product/ServiceLookups.h"

namespace quoin::product {

void ServiceLookups::countByName(std::wstring_view name, std::wstring_view second,
                                 const void* service) {
  auto place = m_byName.find(name);
  if (place == m_byName.end()) {
    place = m_byName.emplace(name, 0).first;
  }
  m_lastService = service;
  m_lastCount = &place->second;
  ++*m_lastCount;
  if (m_isRecording) {
    m_records.push_back(
        {std::wstring(name), std::wstring(second), m_factoryCalls, service != nullptr});
  }
}

void ServiceLookups::startRecording() {
  m_isRecording = true;
  m_records.clear();
}

void ServiceLookups::reset() {
  m_factoryCalls = 0;
  m_lookups = 0;
  m_byName.clear();
  m_lastService = nullptr;
  m_records.clear();
}

}  // namespace quoin::product
