// Records of any tags. In DWG each tag is its group code and its value in whole bytes, by the kind
// of value that DXF has for the code.
//
// Source: Open Design Specification for .dwg files, "XRECORD".
#include <string>

#include "embedded/dwg/records/Kinds.h"
#include "embedded/dwg/records/TextCoding.h"
#include "embedded/dxf/Tag.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::TagType;
using dxf::Version;

constexpr int kAnyTag = 3 * kKeyStep;
constexpr int kHandles = -101;
constexpr int kSize = -102;

bool isPointCode(int code) {
  return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) ||
         (code >= 210 && code <= 213) || (code >= 1010 && code <= 1013);
}

/// Handles with one value a number, not a text of hexadecimal digits.
bool isReference(int code) {
  return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 || code == 481;
}

// --- reading --------------------------------------------------------------------------------

void readText(RecordCoder& coder, int key) {
  BitReader& data = coder.data();
  std::size_t length = data.rawShort();
  if (coder.since(Version::R2007)) {
    std::u16string units;
    for (; length != 0 && !data.hasFailed(); --length) {
      units += static_cast<char16_t>(data.rawShort());
    }
    coder.values().addText(key, textOfUnits(units));
    return;
  }
  const int codePage = data.rawChar();
  std::string raw;
  for (; length != 0 && !data.hasFailed(); --length) {
    raw += static_cast<char>(data.rawChar());
  }
  coder.values().addText(key, coder.codePage().decode(raw), codePage);
}

void readTag(RecordCoder& coder) {
  BitReader& data = coder.data();
  const int code = static_cast<std::int16_t>(data.rawShort());
  if (code < 0 || code >= kKeyStep) {
    coder.fail();
    return;
  }
  const int key = kAnyTag + code;
  RecordValues& values = coder.values();
  if (isPointCode(code)) {
    for (int part = 0; part < 3; ++part) {
      values.addDouble(key + 10 * part, data.rawDouble());
    }
    return;
  }
  if (isReference(code)) {
    values.addHandle(key, data.rawLongLong());
    return;
  }
  switch (dxf::tagType(code)) {
    case TagType::Text:
    case TagType::Handle:
      readText(coder, key);
      return;
    case TagType::Double:
      values.addDouble(key, data.rawDouble());
      return;
    case TagType::Int16:
      values.addInteger(key, code >= 280 && code < 290
                                 ? data.rawChar()
                                 : static_cast<std::int16_t>(data.rawShort()));
      return;
    case TagType::Int32:
      values.addInteger(key, static_cast<std::int32_t>(data.rawLong()));
      return;
    case TagType::Int64:
      values.addInteger(key, static_cast<std::int64_t>(data.rawLongLong()));
      return;
    case TagType::Bool:
      values.addInteger(key, data.rawChar());
      return;
    case TagType::Binary:
      coder.bytes(key, data.rawChar());
      return;
  }
}

void readTags(RecordCoder& coder) {
  constexpr std::size_t kByte = 8;
  BitReader& data = coder.data();
  const Coded<std::uint32_t> coded = data.bitLong();
  const std::size_t size = coded.value;
  coder.values().addInteger(kSize, coded.value, coded.form);
  if (size > (data.end() - data.position()) / kByte) {
    coder.fail();
    return;
  }
  const std::size_t end = data.position() + kByte * size;
  while (data.position() < end && !coder.hasFailed()) {
    readTag(coder);
  }
  if (data.position() != end) {
    coder.fail();
  }
}

// --- writing --------------------------------------------------------------------------------

class TagsWriter {
 public:
  TagsWriter(RecordCoder& coder, const RecordValues& values) : m_coder(&coder), m_values(&values) {}

  /// Fails: false for a tag that DWG cannot have.
  bool write() {
    for (std::size_t i = 0; i < m_values->size(); ++i) {
      const Value& value = (*m_values)[i];
      if (value.key >= kAnyTag && value.key < kAnyTag + kKeyStep && !writeTag(value, i)) {
        return false;
      }
    }
    return true;
  }
  const BitWriter& bits() const { return m_out; }

 private:
  static double numberOf(const Value& value) {
    return value.type == Value::Type::Integer ? static_cast<double>(value.integer) : value.number;
  }

  bool writeTag(const Value& value, std::size_t& index) {
    const int code = value.key - kAnyTag;
    m_out.rawShort(static_cast<std::uint16_t>(code));
    if (isPointCode(code)) {
      m_out.rawDouble(numberOf(value));
      for (int part = 1; part < 3; ++part) {
        const bool isThere =
            index + 1 < m_values->size() && (*m_values)[index + 1].key == value.key + 10 * part;
        m_out.rawDouble(isThere ? numberOf((*m_values)[++index]) : 0.0);
      }
      return true;
    }
    if (isReference(code)) {
      m_out.rawLongLong(static_cast<std::uint64_t>(value.integer));
      return true;
    }
    switch (dxf::tagType(code)) {
      case TagType::Text:
      case TagType::Handle:
        return value.type == Value::Type::Text && writeText(value);
      case TagType::Double:
        m_out.rawDouble(numberOf(value));
        return true;
      case TagType::Int16:
        if (code >= 280 && code < 290) {
          m_out.rawChar(static_cast<std::uint8_t>(value.integer));
        } else {
          m_out.rawShort(static_cast<std::uint16_t>(value.integer));
        }
        return true;
      case TagType::Int32:
        m_out.rawLong(static_cast<std::uint32_t>(value.integer));
        return true;
      case TagType::Int64:
        m_out.rawLongLong(static_cast<std::uint64_t>(value.integer));
        return true;
      case TagType::Bool:
        m_out.rawChar(static_cast<std::uint8_t>(value.integer));
        return true;
      case TagType::Binary:
        return value.type == Value::Type::Bytes && writeBytes(m_values->bytesOf(value));
    }
    return false;
  }

  bool writeText(const Value& value) {
    constexpr std::size_t kLongest = 0x7FFF;
    const std::wstring& text = m_values->textOf(value);
    if (m_coder->since(Version::R2007)) {
      const std::u16string units = unitsOf(text);
      m_out.rawShort(static_cast<std::uint16_t>(units.size()));
      for (const char16_t unit : units) {
        m_out.rawShort(unit);
      }
      return units.size() <= kLongest;
    }
    const std::string raw = bytesOfText(text, m_coder->codePage());
    constexpr int kWestern = 30;
    m_out.rawShort(static_cast<std::uint16_t>(raw.size()));
    m_out.rawChar(static_cast<std::uint8_t>(value.form < 0 ? kWestern : value.form));
    for (const char byte : raw) {
      m_out.rawChar(static_cast<std::uint8_t>(byte));
    }
    return raw.size() <= kLongest;
  }

  bool writeBytes(const std::string& bytes) {
    m_out.rawChar(static_cast<std::uint8_t>(bytes.size()));
    for (const char byte : bytes) {
      m_out.rawChar(static_cast<std::uint8_t>(byte));
    }
    return bytes.size() <= 0xFF;
  }

  RecordCoder* m_coder;
  const RecordValues* m_values;
  BitWriter m_out;
};

void codeXRecord(RecordCoder& coder, const DrawingFacts&) {
  if (coder.isReading()) {
    readTags(coder);
  } else {
    TagsWriter writer(coder, coder.wanted());
    if (!writer.write()) {
      coder.fail();
      return;
    }
    const Value* const former = coder.next(kSize);
    coder.dataOut().bitLong(static_cast<std::uint32_t>(writer.bits().bytes().size()),
                            former == nullptr ? BitWriter::kShortest : former->form);
    coder.dataOut().append(writer.bits());
  }
  if (coder.since(Version::R2000)) {
    coder.BS(280, 1);
  }
  // The objects that the tags refer to, once more.
  if (coder.isReading()) {
    while (coder.hasHandlesLeft() && !coder.hasFailed()) {
      coder.H(kHandles, kSoftPointer);
    }
  } else {
    for (std::size_t left = coder.amount(kHandles); left != 0; --left) {
      coder.H(kHandles, kSoftPointer);
    }
  }
}

constexpr Kind kKinds[] = {
    {79, "XRECORD", Family::Object, codeXRecord, "@AcDbXrecord 280+2000 [ *#3 ]"},
};

}  // namespace

std::span<const Kind> freeRecordKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
