// The fields of one record between their two spellings: DWG bits (RecordCoder.h) and DXF tags
// (DxfLayout.h). A field is known by its group code; fields that DXF does not show have negative
// keys, so that what a record says beside its tags survives an edit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "embedded/dwg/records/BitReader.h"
#include "hostapi.h"

namespace quoin::dwg {

/// Keys of group codes that have a second meaning in the same record, and of what all entities
/// share, are moved out of the way by multiples of this.
inline constexpr int kKeyStep = 10000;
inline constexpr int kCommon = 9 * kKeyStep;

struct Value {
  enum class Type : std::uint8_t { Integer, Double, Text, Bytes, Handle };

  int key = 0;
  Type type = Type::Integer;
  /// How the file stores it (the two bits in front, ...); kAnyForm: however it is shortest.
  std::int8_t form = kAnyForm;
  HandleReference reference;  // Handle: as the file has it; code 0: to be made
  std::int64_t integer = 0;   // Integer; Handle: the handle
  double number = 0.0;        // Double
  std::uint32_t text = 0;     // Text, Bytes: index in RecordValues

  static constexpr std::int8_t kAnyForm = -1;
};

class HOST_API RecordValues {
 public:
  void clear();
  std::size_t size() const { return m_values.size(); }
  const Value& operator[](std::size_t index) const { return m_values[index]; }
  Value& operator[](std::size_t index) { return m_values[index]; }

  Value& add(int key, Value::Type type);
  void addInteger(int key, std::int64_t integer, int form = Value::kAnyForm);
  void addDouble(int key, double number, int form = Value::kAnyForm);
  void addText(int key, std::wstring text, int form = Value::kAnyForm);
  void addBytes(int key, std::string bytes);
  void addHandle(int key, std::uint64_t handle, const HandleReference& reference = {});
  /// A field of another record, with its text.
  void addFrom(const RecordValues& other, const Value& value);

  const std::wstring& textOf(const Value& value) const { return m_texts[value.text]; }
  const std::string& bytesOf(const Value& value) const { return m_bytes[value.text]; }
  void remove(std::size_t index);
  /// All fields with this key.
  void removeAll(int key);
  /// Gives the fields with one key another.
  void rename(int key, int newKey);
  /// How many fields have this key.
  std::size_t count(int key) const;
  /// The first field with this key; null for none.
  const Value* first(int key) const;

 private:
  std::vector<Value> m_values;
  std::vector<std::wstring> m_texts;
  std::vector<std::string> m_bytes;
};

/// Hands out the fields of one key after the other, each once, in their order.
class ValueCursor {
 public:
  explicit ValueCursor(const RecordValues& values) : m_values(&values) {}
  /// The next field with this key, which is used up; null when there is none left.
  const Value* take(int key);
  /// The field that take() would return.
  const Value* peek(int key);

 private:
  std::size_t nextOf(int key);

  const RecordValues* m_values;
  std::vector<std::pair<int, std::size_t>> m_next;  // key, where its next field is looked for
};

}  // namespace quoin::dwg
