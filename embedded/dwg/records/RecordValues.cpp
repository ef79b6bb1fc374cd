#include "embedded/dwg/records/RecordValues.h"

#include <algorithm>

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

void RecordValues::removeAll(int key) {
  std::erase_if(m_values, [key](const Value& value) { return value.key == key; });
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

std::size_t ValueCursor::nextOf(int key) {
  auto entry = std::find_if(m_next.begin(), m_next.end(),
                            [key](const auto& pair) { return pair.first == key; });
  if (entry == m_next.end()) {
    entry = m_next.insert(entry, {key, 0});
  }
  std::size_t& index = entry->second;
  while (index < m_values->size() && (*m_values)[index].key != key) {
    ++index;
  }
  return index;
}

const Value* ValueCursor::peek(int key) {
  const std::size_t index = nextOf(key);
  return index < m_values->size() ? &(*m_values)[index] : nullptr;
}

const Value* ValueCursor::take(int key) {
  const std::size_t index = nextOf(key);
  if (index >= m_values->size()) {
    return nullptr;
  }
  std::find_if(m_next.begin(), m_next.end(), [key](const auto& pair) {
    return pair.first == key;
  })->second = index + 1;
  return &(*m_values)[index];
}

}  // namespace quoin::dwg
