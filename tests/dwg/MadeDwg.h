// DWG files that the tests make: the least that a container has, around any records. DwgMaker.h
// makes whole drawings.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"
#include "embedded/dwg/container/Lz77.h"
#include "embedded/dwg/container/ObjectMap.h"
#include "embedded/dwg/container/PagedFile.h"
#include "embedded/dwg/container/RecordFrame.h"
#include "embedded/dwg/container/SecondHeader.h"

namespace quoin::test {

using namespace dwg::container;
using namespace std::string_view_literals;

constexpr auto kHeaderMark = "\xCF\x7B\x1F\x23\xFD\xDE\x38\xA9\x5F\x7C\x68\xB8\x4E\x6D\x33\x5F"sv;
constexpr auto kClassesMark = "\x8D\xA1\xC4\xB8\xC4\xA9\xF8\xC5\xC0\xDC\xF4\x5F\xE7\xCF\xB6\x8A"sv;
constexpr auto kFileHeaderEnd =
    "\x95\xA0\x4E\x28\x99\x82\x1A\xE5\x5E\x41\xE0\x5F\x9D\x3A\x4D\x00"sv;

/// What a made drawing holds.
struct MadeContents {
  struct Record {
    std::uint64_t handle;
    std::string data;
    std::uint64_t handleBits = 8;  // R2010 and later
  };
  std::vector<Record> records{{0x10, "first record"}, {0x11, "second"}, {0x2F, "the third one"}};
  std::string header = "header variables";
  std::string classes = "classes";
  std::uint64_t templateSize = 4;  // of a section that is all zeroes, which has no pages
  std::string templateBytes;       // in its place
  std::uint16_t codePage = 30;     // ANSI_1252

  /// So many records, all different.
  static MadeContents numbered(std::uint64_t count) {
    MadeContents contents;
    contents.records.clear();
    for (std::uint64_t i = 1; i <= count; ++i) {
      contents.records.push_back({i, "record " + std::to_string(i * 2654435761U % 1000003)});
    }
    return contents;
  }
};

inline std::string made(std::string_view mark, std::string_view contents, bool hasHighSize) {
  std::string summed;
  appendNumber(summed, static_cast<std::uint32_t>(contents.size()));
  if (hasHighSize) {
    appendNumber(summed, std::uint32_t{0});
  }
  summed += contents;
  std::string section(mark);
  section += summed;
  appendNumber(section, crc16(kCrc16Seed, summed));
  for (const char c : mark) {
    section.push_back(static_cast<char>(~c));
  }
  return section;
}

/// The records in their frames from `place` on, with their map's entries.
inline std::string madeRecords(const MadeContents& contents, std::uint64_t place,
                               bool hasHandleBits, std::vector<MapEntry>& entries) {
  std::string bytes;
  for (const auto& [handle, data, handleBits] : contents.records) {
    entries.push_back({handle, place + bytes.size()});
    bytes += framedRecord(data, handleBits, hasHandleBits);
  }
  return bytes;
}

/// The first bytes of any version, up to 0x15.
inline std::string madeHead(std::string_view mark, std::uint16_t codePage) {
  std::string head(mark);
  head.append(5, '\0');
  head += "\x0F\x01"sv;
  appendNumber(head, std::uint32_t{0});  // no preview
  head += "\x21\x00"sv;
  appendNumber(head, codePage);
  return head;
}

/// A drawing of R13 to R2000; with the second header as the last of it, if any.
inline std::string madeFlatDwg(const MadeContents& contents = {}, std::string_view mark = "AC1015",
                               bool hasSecondHeader = true) {
  std::string file = madeHead(mark, contents.codePage);
  std::vector<Locator> sections;
  std::size_t place = 0x19 + 3 * 9 + 2 + kFileHeaderEnd.size();
  std::string body;
  const auto add = [&](std::uint8_t number, const std::string& bytes) {
    sections.push_back({number, static_cast<std::uint32_t>(place + body.size()),
                        static_cast<std::uint32_t>(bytes.size())});
    body += bytes;
  };
  add(0, made(kHeaderMark, contents.header, false));
  add(1, made(kClassesMark, contents.classes, false));
  std::vector<MapEntry> entries;
  body += madeRecords(contents, place + body.size(), false, entries);
  add(2, objectMapOf(entries));
  appendNumber(file, static_cast<std::uint32_t>(sections.size()));
  for (const Locator& section : sections) {
    appendNumber(file, section.number);
    appendNumber(file, section.place);
    appendNumber(file, section.size);
  }
  appendNumber(file, crc16(kCrc16Seed, file));
  file += kFileHeaderEnd;
  file += body;
  if (hasSecondHeader) {
    SecondHeader second;
    second.head = file.substr(0, 13);
    second.release = 0x21;
    second.codePage = contents.codePage;
    second.sections = sections;
    second.handles = {{0, "\x30"}, {1, "\x01"}};
    second.rest = "whatever";
    file += secondHeaderBytes(second, static_cast<std::uint32_t>(file.size()));
  }
  return file;
}

/// Puts a paged drawing together, page by page.
class PagedDwgMaker {
 public:
  static constexpr std::uint32_t kPageSize = 0x400;

  std::string file(std::string_view mark, const MadeContents& contents) {
    const bool isNew = mark >= "AC1024";
    m_file = madeHead(mark, contents.codePage);
    m_file.resize(kPagesBegin);
    addSection("", "", kPackedLz77);
    addSection("AcDb:AppInfo", appInfo(), kUnpacked);
    std::vector<MapEntry> entries;
    const std::string objects =
        std::string("\xCA\x0D\x00\x00"sv) + madeRecords(contents, 4, isNew, entries);
    addSection("AcDb:AcDbObjects", objects, kPackedLz77);
    addSection("AcDb:Template", contents.templateBytes, kPackedLz77);
    if (contents.templateBytes.empty()) {
      m_map.sections.back().size = contents.templateSize;
    }
    addSection("AcDb:Handles", objectMapOf(entries), kPackedLz77);
    addSection("AcDb:Classes", made(kClassesMark, contents.classes, isNew) + "8 bytes.",
               kPackedLz77);
    addSection("AcDb:Header", made(kHeaderMark, contents.header, isNew), kPackedLz77);
    addMaps();
    return m_file;
  }

 private:
  static std::string appInfo() {
    std::string text;
    for (const char c : "<ProductInformation name =\"Quoin\" build_version=\"1.2\"/>"sv) {
      text.push_back(c);
      text.push_back('\0');
    }
    return text;
  }

  void addSlot(std::uint32_t number, const std::string& bytes) {
    m_slots.push_back({number, m_file.size(), alignedSize(bytes.size())});
    m_file += bytes;
    m_file.append(paddingBytes(m_slots.back().size - bytes.size()));
  }

  void addSection(std::string_view name, std::string_view bytes, std::uint32_t packing) {
    SectionEntry entry;
    entry.size = bytes.size();
    entry.pageSize = kPageSize;
    entry.unknown = 1;
    entry.packing = packing;
    entry.id = static_cast<std::uint32_t>(m_map.sections.size());
    entry.nameField = name;
    entry.nameField.resize(64);
    for (std::size_t offset = 0; offset < bytes.size(); offset += kPageSize) {
      std::string page(bytes.substr(offset, kPageSize));
      page.resize(kPageSize);
      addPage(entry, offset, packing == kPackedLz77 ? packLz77(page) : page);
    }
    m_map.sections.push_back(entry);
  }

  void addPage(SectionEntry& entry, std::size_t offset, const std::string& data) {
    DataPageHeader header;
    header.section = entry.id;
    header.size = static_cast<std::uint32_t>(data.size());
    header.slotSize = static_cast<std::uint32_t>(alignedSize(kDataHeaderSize + data.size()));
    header.offset = offset;
    header.dataSum = pageChecksum(0, data);
    header.headerSum = headerSumOf(header);
    const auto number = static_cast<std::uint32_t>(m_slots.size() + 1);
    entry.pages.push_back({number, header.size, offset});
    addSlot(number, dataPageHeaderBytes(header, m_file.size()) + data);
  }

  void addMaps() {
    appendNumber(m_map.head, static_cast<std::uint32_t>(m_map.sections.size()));
    appendNumber(m_map.head, std::uint32_t{2});
    appendNumber(m_map.head, std::uint32_t{0x7400});
    appendNumber(m_map.head, std::uint32_t{0});
    appendNumber(m_map.head, static_cast<std::uint32_t>(m_map.sections.size()));
    PagedHeader header;
    header.bytes = std::string("AcFssFcAJMB") + '\0';
    header.bytes.resize(kPagedHeaderSize);
    replaceNumber(header.bytes, 0x10, std::uint32_t{kPagedHeaderSize});
    header.sectionMap = static_cast<std::uint32_t>(m_slots.size() + 1);
    addSlot(header.sectionMap, systemPageBytes(kSectionMapType, sectionMapContents(m_map)));
    header.pageMap = header.lastPage = header.largestPage = header.sectionMap + 1;
    header.pageMapPlace = m_file.size() - kPagesBegin;
    m_slots.push_back({header.pageMap, m_file.size(), 0x1000});
    m_file +=
        systemPageBytes(kPageMapType, pageMapContents(m_slots, header)) + emptyPageMapHeader();
    header.copyPlace = m_file.size();
    m_file += pagedHeaderBytes(header);
    m_file.replace(kPagedHeaderPlace, kPagedHeaderSize, pagedHeaderBytes(header));
  }

  std::string m_file;
  std::vector<PageSlot> m_slots;
  SectionMap m_map;
};

/// A drawing of R2004 or of R2010 to R2018.
inline std::string madePagedDwg(const MadeContents& contents = {},
                                std::string_view mark = "AC1032") {
  return PagedDwgMaker().file(mark, contents);
}

/// One of every version that is made here, beginning with R2000.
inline std::vector<std::string> madeDwgs(const MadeContents& contents = {}) {
  return {madeFlatDwg(contents), madePagedDwg(contents, "AC1018"), madePagedDwg(contents, "AC1024"),
          madePagedDwg(contents, "AC1027"), madePagedDwg(contents, "AC1032")};
}

}  // namespace quoin::test
