#include "embedded/dwg/container/SectionMap.h"

#include "embedded/dwg/container/Bytes.h"

namespace quoin::dwg::container {
namespace {

constexpr std::size_t kHeadSize = 20;
constexpr std::size_t kNameSize = 64;

SectionEntry readEntry(ByteReader& reader) {
  SectionEntry entry;
  entry.size = reader.next<std::uint64_t>();
  const auto pages = reader.next<std::uint32_t>();
  entry.pageSize = reader.next<std::uint32_t>();
  entry.unknown = reader.next<std::uint32_t>();
  entry.packing = reader.next<std::uint32_t>();
  entry.id = reader.next<std::uint32_t>();
  entry.encryption = reader.next<std::uint32_t>();
  entry.nameField = reader.take(kNameSize);
  for (std::uint32_t i = 0; i < pages; ++i) {
    SectionPage page;
    page.number = reader.next<std::uint32_t>();
    page.size = reader.next<std::uint32_t>();
    page.offset = reader.next<std::uint64_t>();
    entry.pages.push_back(page);
  }
  return entry;
}

}  // namespace

SectionMap readSectionMap(std::string_view contents) {
  SectionMap map;
  ByteReader reader(contents);
  map.head = reader.take(kHeadSize);
  const auto sections = numberAt<std::uint32_t>(map.head, 0);
  for (std::uint32_t i = 0; i < sections; ++i) {
    map.sections.push_back(readEntry(reader));
  }
  map.rest = contents.substr(static_cast<std::size_t>(reader.place()));
  return map;
}

std::string sectionMapContents(const SectionMap& map) {
  std::string contents = map.head;
  for (const SectionEntry& entry : map.sections) {
    appendNumber(contents, entry.size);
    appendNumber(contents, static_cast<std::uint32_t>(entry.pages.size()));
    appendNumber(contents, entry.pageSize);
    appendNumber(contents, entry.unknown);
    appendNumber(contents, entry.packing);
    appendNumber(contents, entry.id);
    appendNumber(contents, entry.encryption);
    contents += entry.nameField;
    for (const SectionPage& page : entry.pages) {
      appendNumber(contents, page.number);
      appendNumber(contents, page.size);
      appendNumber(contents, page.offset);
    }
  }
  return contents + map.rest;
}

}  // namespace quoin::dwg::container
