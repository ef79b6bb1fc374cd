// Records what is asked of the object factory of a platform, from when it is made until it is
// dropped.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/product/Platform.h"

namespace quoin::test {

/// One look-up of a service.
struct ServiceLookup {
  std::wstring name;
  std::wstring second;
  /// How many calls of GetObjectFactory() there had been by then: look-ups with a fresh factory
  /// each have different numbers.
  std::uint64_t factoryCall = 0;
  bool found = false;
};

class ServiceLookups final : public product::LookupObserver {
 public:
  explicit ServiceLookups(product::Platform& platform) : m_platform(platform) {
    m_platform.setLookupObserver(this);
  }
  ~ServiceLookups() { m_platform.setLookupObserver(nullptr); }
  ServiceLookups(const ServiceLookups&) = delete;
  ServiceLookups& operator=(const ServiceLookups&) = delete;

  void onFactoryCall() override { ++m_factoryCalls; }
  void onLookup(std::wstring_view name, std::wstring_view second, bool found) override {
    m_records.push_back({std::wstring(name), std::wstring(second), m_factoryCalls, found});
  }

  std::uint64_t factoryCalls() const { return m_factoryCalls; }
  const std::vector<ServiceLookup>& records() const { return m_records; }

 private:
  product::Platform& m_platform;
  std::uint64_t m_factoryCalls = 0;
  std::vector<ServiceLookup> m_records;
};

}  // namespace quoin::test
