// An entity's record put together bit by bit, as R2000 and R2018 have it: type, handle 2AB, no
// extended data, model space, layer 10, all else as it is by default; then what a test writes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "dwg/records/RecordTest.h"
#include "embedded/dwg/records/BitWriter.h"

namespace quoin::dwg::testing {

inline HandleReference reference(std::uint8_t code, std::uint64_t handle) {
  return {code, static_cast<std::uint8_t>(handle == 0 ? 0 : handle < 0x100 ? 1 : 2), handle};
}

class HandMadeEntity {
 public:
  HandMadeEntity(dxf::Version version, std::uint16_t type) : m_version(version) {
    const bool isNew = version == dxf::Version::R2018;
    if (isNew) {
      data.objectType(type);
    } else {
      data.bitShort(type);
      m_sizeAt = data.size();
      data.rawLong(0);
    }
    data.handle(reference(0, kEntity));
    data.bitShort(0);  // no extended data
    data.bit(false);   // no picture
    data.bits(2, 2);   // in model space
    data.bitLong(0);   // no reactors
    if (isNew) {
      data.bit(true);   // no extension dictionary
      data.bit(false);  // no binary data
    } else {
      data.bit(true);  // no neighbours in a chain
      handles.handle(reference(3, 0));
    }
    data.bitShort(256);  // colour by layer
    data.bitDouble(1.0);
    handles.handle(reference(5, 0x10));
    data.bits(0, 2);  // linetype
    if (isNew) {
      data.bits(0, 2);  // material
      data.rawChar(0);  // shadows
    }
    data.bits(0, 2);  // plot style
    if (isNew) {
      data.bits(0, 3);  // visual styles
    }
    data.bitShort(0);  // visible
    data.rawChar(29);  // line weight by layer
  }

  bool isNew() const { return m_version == dxf::Version::R2018; }
  void text(std::string_view ascii) {
    if (!isNew()) {
      data.bitShort(static_cast<std::uint16_t>(ascii.empty() ? 0 : ascii.size() + 1));
      for (const char character : ascii) {
        data.rawChar(static_cast<std::uint8_t>(character));
      }
      if (!ascii.empty()) {
        data.rawChar(0);
      }
      return;
    }
    m_hasTexts = true;
    m_texts.bitShort(static_cast<std::uint16_t>(ascii.size()));
    for (const char character : ascii) {
      m_texts.rawShort(static_cast<std::uint8_t>(character));
    }
  }
  void point(double x, double y) {
    data.rawDouble(x);
    data.rawDouble(y);
  }

  RecordBytes finish() {
    if (isNew()) {
      if (m_hasTexts) {
        const std::size_t size = m_texts.size();
        data.append(m_texts);
        data.rawShort(static_cast<std::uint16_t>(size));
      }
      data.bit(m_hasTexts);
    } else {
      data.replaceLong(m_sizeAt, static_cast<std::uint32_t>(data.size()));
    }
    const std::size_t bits = data.size();
    data.append(handles);
    return {data.bytes(), isNew() ? data.bytes().size() * 8 - bits : 0};
  }

  BitWriter data;
  BitWriter handles;

 private:
  dxf::Version m_version;
  std::size_t m_sizeAt = 0;
  BitWriter m_texts;
  bool m_hasTexts = false;
};

/// Decodes such records in a drawing with a few names.
class HandMadeRecordTest : public RecordTest {
 protected:
  HandMadeRecordTest() : RecordTest("ANSI_1252") {}

  /// "10 1.5, 20 2.0" as the tags behind those of all entities.
  static std::string entity(const std::string& kind, std::string own) {
    own = "0 " + kind + ", 5 2AB, 330 1F, 100 AcDbEntity, 8 0, " + own + ", ";
    std::string tags;
    while (!own.empty()) {
      const std::size_t end = own.find(", ");
      const std::size_t blank = own.find(' ');
      tags += own.substr(0, blank) + '\n' + own.substr(blank + 1, end - blank - 1) + '\n';
      own.erase(0, end + 2);
    }
    return tags;
  }

  /// The last decoded record with these tags in place of its own, decoded again.
  std::string edited(const std::string& tags) {
    RecordBytes bytes;
    std::string problem;
    EXPECT_TRUE(m_codec.readTags(tags, m_record, problem)) << problem;
    EXPECT_TRUE(m_codec.encode(kEntity, m_record, bytes));
    return decoded(bytes);
  }
};

}  // namespace quoin::dwg::testing
