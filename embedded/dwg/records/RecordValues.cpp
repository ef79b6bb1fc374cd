#include "embedded/dwg/records/RecordValues.h"

#include <algorithm>
#include <bit>

namespace quoin::dwg {

void RecordValues::clear() {
  m_values.clear();
  m_texts.clear();
  m_bytes.clear();
}

Value& RecordValues::add(int key, Value::Type type) {
  Value& value = m_values.emplace_back();
  value.key = key;
  value.type = type;
  return value;
}

void RecordValues::addInteger(int key, std::int64_t integer, int form) {
  Value& value = add(key, Value::Type::Integer);
  value.integer = integer;
  value.form = static_cast<std::int8_t>(form);
}

void RecordValues::addDouble(int key, double number, int form) {
  Value& value = add(key, Value::Type::Double);
  value.number = number;
  value.form = static_cast<std::int8_t>(form);
}

void RecordValues::addText(int key, std::wstring text, int form) {
  Value& value = add(key, Value::Type::Text);
  value.text = static_cast<std::uint32_t>(m_texts.size());
  value.form = static_cast<std::int8_t>(form);
  m_texts.push_back(std::move(text));
}

void RecordValues::addBytes(int key, std::string bytes) {
  Value& value = add(key, Value::Type::Bytes);
  value.text = static_cast<std::uint32_t>(m_bytes.size());
  m_bytes.push_back(std::move(bytes));
}

void RecordValues::addHandle(int key, std::uint64_t handle, const HandleReference& reference) {
  Value& value = add(key, Value::Type::Handle);
  value.integer = static_cast<std::int64_t>(handle);
  value.reference = reference;
}

void RecordValues::addFrom(const RecordValues& other, const Value& value) {
  switch (value.type) {
    case Value::Type::Text:
      addText(value.key, other.textOf(value), value.form);
      break;
    case Value::Type::Bytes:
      addBytes(value.key, other.bytesOf(value));
      break;
    default:
      m_values.push_back(value);
  }
}

void RecordValues::remove(std::size_t index) {
  m_values.erase(m_values.begin() + static_cast<std::ptrdiff_t>(index));
}

void RecordValues::rename(int key, int newKey) {
  for (Value& value : m_values) {
    if (value.key == key) {
      value.key = newKey;
    }
  }
}

std::size_t RecordValues::count(int key) const {
  return static_cast<std::size_t>(std::count_if(
      m_values.begin(), m_values.end(), [key](const Value& value) { return value.key == key; }));
}

const Value* RecordValues::first(int key) const {
  const auto found = std::find_if(m_values.begin(), m_values.end(),
                                  [key](const Value& value) { return value.key == key; });
  return found == m_values.end() ? nullptr : &*found;
}

ValueCursor::Slot& ValueCursor::slotOf(int key) {
  constexpr std::uint32_t kGolden = 2654435769U;  // spreads neighbouring keys
  constexpr std::uint32_t kHigh = 16;
  const std::size_t mask = m_slots.size() - 1;
  std::size_t at = (static_cast<std::uint32_t>(key) * kGolden >> kHigh) & mask;
  while (m_slots[at].last != kNone && m_slots[at].key != key) {
    at = (at + 1) & mask;
  }
  return m_slots[at];
}

void ValueCursor::index() {
  m_slots.resize(std::bit_ceil(2 * m_values->size() + 1));
  m_after.assign(m_values->size(), kNone);
  for (std::uint32_t i = 0; i < m_values->size(); ++i) {
    Slot& slot = slotOf((*m_values)[i].key);
    if (slot.last == kNone) {
      slot.key = (*m_values)[i].key;
      slot.next = i;
    } else {
      m_after[slot.last] = i;
    }
    slot.last = i;
  }
}

const Value* ValueCursor::peek(int key) {
  if (m_slots.empty()) {
    index();
  }
  const std::uint32_t next = slotOf(key).next;
  return next == kNone ? nullptr : &(*m_values)[next];
}

const Value* ValueCursor::take(int key) {
  const Value* const value = peek(key);
  if (value != nullptr) {
    Slot& slot = slotOf(key);
    slot.next = m_after[slot.next];
  }
  return value;
}

}  // namespace quoin::dwg
