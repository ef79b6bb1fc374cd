// Counts, and on request records, what callers ask of the object factory.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "hostapi.h"

namespace quoin::product {

/// One look-up of a service.
struct ServiceLookup {
  std::wstring name;
  std::wstring second;
  /// How many times the factory had been asked for by then: look-ups with a fresh factory
  /// each have different numbers.
  std::uint64_t factoryCall = 0;
  bool found = false;
};

class HOST_API ServiceLookups {
 public:
  using CountsByName = std::map<std::wstring, std::uint64_t, std::less<>>;

  void countFactoryCall() { ++m_factoryCalls; }
  /// `service` is what the look-up found, null for nothing; each name has a service of its own.
  void countLookup(std::wstring_view name, std::wstring_view second, const void* service) {
    ++m_lookups;
    if (service && service == m_lastService && !m_isRecording) {
      ++*m_lastCount;
    } else {
      countByName(name, second, service);
    }
  }

  /// GetObjectFactory() calls and look-ups since the host began (or since reset).
  std::uint64_t factoryCalls() const { return m_factoryCalls; }
  std::uint64_t lookups() const { return m_lookups; }
  /// Look-ups by service name, found or not.
  const CountsByName& byName() const { return m_byName; }

  /// From now on every look-up is recorded too, one record each.
  void startRecording();
  const std::vector<ServiceLookup>& records() const { return m_records; }
  /// Sets all counters to 0 and drops the records; recording goes on if it was on.
  void reset();

 private:
  void countByName(std::wstring_view name, std::wstring_view second, const void* service);

  std::uint64_t m_factoryCalls = 0;
  std::uint64_t m_lookups = 0;
  CountsByName m_byName;
  /// The service found last and its count: algorithms ask for one and the same, once a wall line.
  const void* m_lastService = nullptr;
  std::uint64_t* m_lastCount = nullptr;
  bool m_isRecording = false;
  std::vector<ServiceLookup> m_records;
};

}  // namespace quoin::product
