#include "embedded/dwg/records/ExtendedData.h"

#include <bit>
#include <string_view>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/TextCoding.h"
#include "embedded/dxf/Tag.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

/// Walks the bytes of one application's data and appends what they say as tags.
class ExtendedTags {
 public:
  ExtendedTags(std::string_view data, const DrawingFacts& facts, std::string& bytes)
      : m_data(data), m_facts(&facts), m_bytes(&bytes) {}

  void write() {
    while (m_at < m_data.size() && item()) {
    }
  }

 private:
  static constexpr int kFirstCode = 1000;

  bool has(std::size_t count) const { return m_data.size() - m_at >= count; }
  std::uint64_t number(std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      value |= static_cast<std::uint64_t>(static_cast<std::uint8_t>(m_data[m_at + i])) << (8 * i);
    }
    m_at += count;
    return value;
  }
  std::uint64_t bigEndian() {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i) {
      value = value << 8 | static_cast<std::uint8_t>(m_data[m_at++]);
    }
    return value;
  }

  bool text(int code) {
    std::wstring text;
    if (m_facts->format.version >= Version::R2007) {
      if (!has(2)) {
        return false;
      }
      std::u16string units;
      for (std::size_t length = number(2); length != 0 && has(2); --length) {
        units += static_cast<char16_t>(number(2));
      }
      text = textOfUnits(units);
    } else {
      constexpr std::size_t kCodePage = 2;
      if (!has(1 + kCodePage)) {
        return false;
      }
      const std::size_t length = number(1);
      m_at += kCodePage;
      if (!has(length)) {
        return false;
      }
      text = m_facts->codePage->decode(m_data.substr(m_at, length));
      m_at += length;
    }
    dxf::putText(*m_bytes, code, text, m_facts->format);
    return true;
  }

  bool doubles(int code, int count) {
    if (!has(8 * static_cast<std::size_t>(count))) {
      return false;
    }
    for (int i = 0; i < count; ++i) {
      dxf::putDouble(*m_bytes, code + 10 * i, std::bit_cast<double>(number(8)), m_facts->format);
    }
    return true;
  }

  bool item() {
    const dxf::Format& format = m_facts->format;
    const int code = kFirstCode + static_cast<int>(number(1));
    switch (code) {
      case 1000:
      case 1001:
        return text(code);
      case 1002:
        if (!has(1)) {
          return false;
        }
        dxf::putAscii(*m_bytes, code, number(1) == 0 ? "{" : "}", format);
        return true;
      case 1003:
        if (!has(8)) {
          return false;
        }
        dxf::putText(*m_bytes, code, m_facts->nameOf(bigEndian()), format);
        return true;
      case 1004: {
        const std::size_t size = has(1) ? number(1) : 1;
        if (!has(size)) {
          return false;
        }
        dxf::putBinary(*m_bytes, code, m_data.substr(m_at, size), format);
        m_at += size;
        return true;
      }
      case 1005:
        if (!has(8)) {
          return false;
        }
        dxf::putHandle(*m_bytes, code, bigEndian(), format);
        return true;
      case 1010:
      case 1011:
      case 1012:
      case 1013:
        return doubles(code, 3);
      case 1040:
      case 1041:
      case 1042:
        return doubles(code, 1);
      case 1070:
        if (!has(2)) {
          return false;
        }
        dxf::putInteger(*m_bytes, code, static_cast<std::int16_t>(number(2)), format);
        return true;
      case 1071:
        if (!has(4)) {
          return false;
        }
        dxf::putInteger(*m_bytes, code, static_cast<std::int32_t>(number(4)), format);
        return true;
      default:
        return false;  // nobody knows how long it is
    }
  }

  std::string_view m_data;
  const DrawingFacts* m_facts;
  std::string* m_bytes;
  std::size_t m_at = 0;
};

// --- from tags ------------------------------------------------------------------------------

/// Puts the tags of one application into its bytes.
class ExtendedBytes {
 public:
  explicit ExtendedBytes(const DrawingFacts& facts) : m_facts(&facts) {}

  const std::string& bytes() const { return m_bytes; }

  bool add(const dxf::TagView& tag) {
    const dxf::Format& format = m_facts->format;
    const int code = tag.code;
    // The three coordinates of a point are one item.
    const bool continuesPoint = code >= 1020 && code < 1040;
    if (!continuesPoint) {
      m_bytes += static_cast<char>(code - 1000);
    }
    switch (code) {
      case 1000:
        return text(dxf::textOf(tag, format));
      case 1002:
        m_bytes += dxf::trimmedValue(tag) == "}" ? '\1' : '\0';
        return true;
      case 1003: {
        const std::uint64_t layer = m_facts->handleOf("LAYER", dxf::textOf(tag, format));
        bigEndian(layer);
        return layer != 0;
      }
      case 1004: {
        const std::string chunk = dxf::binaryOf(tag, format);
        m_bytes += static_cast<char>(chunk.size());
        m_bytes += chunk;
        return chunk.size() < 256;
      }
      case 1005:
        bigEndian(dxf::handleOf(tag, format));
        return true;
      case 1070:
        number(static_cast<std::uint64_t>(dxf::integerOf(tag, format)), 2);
        return true;
      case 1071:
        number(static_cast<std::uint64_t>(dxf::integerOf(tag, format)), 4);
        return true;
      default:
        if (code < 1010 || code > 1042) {
          return false;
        }
        number(std::bit_cast<std::uint64_t>(dxf::doubleOf(tag, format)), 8);
        return true;
    }
  }

 private:
  void number(std::uint64_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      m_bytes += static_cast<char>(value >> (8 * i));
    }
  }
  void bigEndian(std::uint64_t value) {
    for (int shift = 56; shift >= 0; shift -= 8) {
      m_bytes += static_cast<char>(value >> shift);
    }
  }
  bool text(const std::wstring& text) {
    if (m_facts->format.version >= Version::R2007) {
      const std::u16string units = unitsOf(text);
      number(units.size(), 2);
      for (const char16_t unit : units) {
        number(unit, 2);
      }
      return units.size() <= 0xFFFF;
    }
    const std::string raw = bytesOfText(text, *m_facts->codePage);
    m_bytes += static_cast<char>(raw.size());
    number(m_facts->codePageNumber, 2);
    m_bytes += raw;
    return raw.size() <= 0xFF;
  }

  const DrawingFacts* m_facts;
  std::string m_bytes;
};

}  // namespace

bool readExtendedTags(std::string_view tags, const RecordValues& original,
                      const DrawingFacts& facts, RecordValues& values, std::string& problem) {
  std::string former;
  writeExtendedTags(original, facts, former);
  if (former == tags) {
    for (std::size_t i = 0; i < original.size(); ++i) {
      if (original[i].key == kExtendedDataApp || original[i].key == kExtendedDataBytes) {
        values.addFrom(original, original[i]);
      }
    }
    return true;
  }
  dxf::TagCursor cursor(tags, facts.format);
  dxf::TagView tag;
  std::uint64_t application = 0;
  ExtendedBytes bytes(facts);
  const auto finish = [&] {
    if (application != 0) {
      values.addHandle(kExtendedDataApp, application);
      values.addBytes(kExtendedDataBytes, bytes.bytes());
    }
    bytes = ExtendedBytes(facts);
  };
  while (cursor.next(tag)) {
    if (tag.code == 1001) {
      finish();
      application = facts.handleOf("APPID", dxf::textOf(tag, facts.format));
      if (application == 0) {
        problem = "its extended data names an application that the drawing does not have";
        return false;
      }
    } else if (application == 0 || !bytes.add(tag)) {
      problem = "its extended data (group code " + std::to_string(tag.code) +
                ") has no place in a DWG record";
      return false;
    }
  }
  finish();
  return true;
}

void writeExtendedTags(const RecordValues& values, const DrawingFacts& facts, std::string& bytes) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const Value& value = values[i];
    if (value.key == kExtendedDataApp) {
      dxf::putText(bytes, 1001, facts.nameOf(static_cast<std::uint64_t>(value.integer)),
                   facts.format);
    } else if (value.key == kExtendedDataBytes) {
      ExtendedTags(values.bytesOf(value), facts, bytes).write();
    }
  }
}

}  // namespace quoin::dwg
