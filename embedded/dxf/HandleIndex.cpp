#include "embedded/dxf/HandleIndex.h"

#include "embedded/dxf/RecordStore.h"

namespace quoin::dxf {
namespace {

constexpr std::size_t kLeastSlots = 64;

/// Spreads neighbouring handles (the usual case) and handles that differ in a few high bits.
std::uint64_t mixed(std::uint64_t handle) {
  handle ^= handle >> 33;
  handle *= 0xFF51AFD7ED558CCDULL;
  handle ^= handle >> 33;
  handle *= 0xC4CEB9FE1A85EC53ULL;
  return handle ^ (handle >> 33);
}

/// The least table that stays at most seven eighths full; a search takes eight steps there at
/// worst, on average.
std::size_t slotsFor(std::size_t handles) {
  std::size_t slots = kLeastSlots;
  while (slots / 8 * 7 < handles) {
    slots *= 2;
  }
  return slots;
}

}  // namespace

/// The first choice is the handle's own low digits: handles mostly count up in the order of the
/// file, so that one after another stands side by side and the processor has them cached. Only one
/// whose place is taken goes where its mixed bits send it, and on in steps of its own: neighbouring
/// places would all be taken by the same run. Nothing is ever taken out, so a handle that comes to
/// a free place is not here.
std::size_t HandleIndex::slotOf(std::uint64_t handle) const {
  const std::size_t mask = m_slots.size() - 1;
  const auto isFreeOrItsOwn = [&](std::size_t slot) {
    return m_slots[slot] == kNone || (*m_stubs)[m_slots[slot]].handle == handle;
  };
  std::size_t slot = static_cast<std::size_t>(handle) & mask;
  if (!isFreeOrItsOwn(slot)) {
    const std::uint64_t bits = mixed(handle);
    const auto step = static_cast<std::size_t>(bits >> 32) | 1;  // odd: it comes by every place
    slot = static_cast<std::size_t>(bits) & mask;
    while (!isFreeOrItsOwn(slot)) {
      slot = (slot + step) & mask;
    }
  }
  return slot;
}

void HandleIndex::grow(std::size_t slots) {
  std::vector<std::uint32_t> former(slots, kNone);
  former.swap(m_slots);
  for (const std::uint32_t number : former) {
    if (number != kNone) {
      m_slots[slotOf((*m_stubs)[number].handle)] = number;
    }
  }
}

void HandleIndex::reserve(std::size_t handles) {
  if (const std::size_t slots = slotsFor(handles); slots > m_slots.size()) {
    grow(slots);
  }
}

std::uint32_t HandleIndex::insert(std::uint32_t number) {
  reserve(m_count + 1);
  std::uint32_t& slot = m_slots[slotOf((*m_stubs)[number].handle)];
  if (slot == kNone) {
    slot = number;
    ++m_count;
  }
  return slot;
}

std::uint32_t HandleIndex::find(std::uint64_t handle) const {
  return m_slots.empty() || handle == 0 ? kNone : m_slots[slotOf(handle)];
}

void HandleIndex::clear() {
  m_slots.clear();
  m_slots.shrink_to_fit();
  m_count = 0;
}

}  // namespace quoin::dxf
