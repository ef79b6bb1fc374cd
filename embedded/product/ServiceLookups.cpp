#include "embedded/product/ServiceLookups.h"

namespace quoin::product {

void ServiceLookups::countLookup(const std::wstring& name, const std::wstring& second, bool found) {
  ++m_lookups;
  ++m_byName[name];
  if (m_isRecording) {
    m_records.push_back({name, second, m_factoryCalls, found});
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
  m_records.clear();
}

}  // namespace quoin::product
