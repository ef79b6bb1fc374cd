// Finds stubs by handle in four to eight bytes a record: a table of stub numbers, hashed by
// handle; the handles themselves stay in the stubs. Handles are never removed, as erased
// records keep theirs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "hostapi.h"

struct AcDbStub;

namespace quoin::dxf {

class HOST_API HandleIndex {
 public:
  explicit HandleIndex(const std::deque<AcDbStub>& stubs) : m_stubs(&stubs) {}

  /// Makes room for this many handles at once.
  void reserve(std::size_t handles);
  /// Enters m_stubs[number] under its handle; returns the number of the stub that has the
  /// handle already (nothing is entered then), or `number` itself.
  std::uint32_t insert(std::uint32_t number);
  /// The number of the stub with this handle; kNone for none.
  std::uint32_t find(std::uint64_t handle) const;
  void clear();

  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

 private:
  std::size_t slotOf(std::uint64_t handle) const;
  void grow(std::size_t slots);

  const std::deque<AcDbStub>* m_stubs;
  std::vector<std::uint32_t> m_slots;  // kNone, or a stub's number; size is a power of two
  std::size_t m_count = 0;
};

}  // namespace quoin::dxf
