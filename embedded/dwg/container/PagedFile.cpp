#include "embedded/dwg/container/PagedFile.h"

#include <algorithm>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"
#include "embedded/dwg/container/Lz77.h"
#include "embedded/dxf/FileError.h"

namespace quoin::dwg::container {
namespace {

constexpr std::uint32_t kPageMask = 0x4164536B;
constexpr std::size_t kMostSections = 256;  // files have some 15
constexpr std::uint32_t kIsEncryptedSection = 1;

std::string plainHeader(const DataPageHeader& header) {
  std::string bytes;
  appendNumber(bytes, header.type);
  appendNumber(bytes, header.section);
  appendNumber(bytes, header.size);
  appendNumber(bytes, header.slotSize);
  appendNumber(bytes, header.offset);
  appendNumber(bytes, header.headerSum);
  appendNumber(bytes, header.dataSum);
  return bytes;
}

/// Every word combined with the mask; twice gives the same again.
std::string masked(std::string_view bytes, std::uint64_t place) {
  const std::uint32_t mask = kPageMask ^ static_cast<std::uint32_t>(place);
  std::string result;
  for (std::size_t i = 0; i < bytes.size(); i += sizeof(mask)) {
    appendNumber(result, numberAt<std::uint32_t>(bytes, i) ^ mask);
  }
  return result;
}

}  // namespace

DataPageHeader readDataPageHeader(std::string_view file, std::uint64_t place) {
  const std::string bytes = masked(slice(file, place, kDataHeaderSize), place);
  ByteReader reader(bytes);
  DataPageHeader header;
  header.type = reader.next<std::uint32_t>();
  header.section = reader.next<std::uint32_t>();
  header.size = reader.next<std::uint32_t>();
  header.slotSize = reader.next<std::uint32_t>();
  header.offset = reader.next<std::uint64_t>();
  header.headerSum = reader.next<std::uint32_t>();
  header.dataSum = reader.next<std::uint32_t>();
  return header;
}

std::uint32_t headerSumOf(const DataPageHeader& header) {
  DataPageHeader summed = header;
  summed.headerSum = 0;
  return pageChecksum(header.dataSum, plainHeader(summed));
}

std::string dataPageHeaderBytes(const DataPageHeader& header, std::uint64_t place) {
  return masked(plainHeader(header), place);
}

PagedFile::PagedFile(std::string bytes, Warnings& warnings) : Container(std::move(bytes)) {
  m_header = readPagedHeader(m_bytes);
  if (!m_header.isSumRight) {
    warnings.addDamage("file header", kPagedHeaderPlace, "the checksum is wrong");
  }
  UnpackBudget budget(m_bytes.size());
  readMaps(warnings, budget);
  checkCopy(warnings);
  m_sections.resize(m_map.sections.size());
  for (std::size_t i = 0; i < m_sections.size(); ++i) {
    m_sections[i] = unpacked(m_map.sections[i], warnings, budget);
  }
}

void PagedFile::readMaps(Warnings& warnings, UnpackBudget& budget) {
  const auto read = [&](std::uint64_t place, std::uint32_t type) {
    SystemPage page = readSystemPage(m_bytes, place, type, budget.left());
    budget.take(page.contents.size(), place);
    if (!page.isSumRight) {
      warnings.addDamage(type == kPageMapType ? "page map" : "section map", place,
                         "the checksum is wrong");
    }
    return page.contents;
  };
  if (m_header.pageMapPlace > m_bytes.size()) {
    throw Damage("the page map lies behind the end of the file", kPagedHeaderPlace);
  }
  m_slots = readPageMap(read(m_header.pageMapPlace + kPagesBegin, kPageMapType), m_bytes.size());
  m_isUsed.resize(m_slots.size());
  for (std::size_t i = 0; i < m_slots.size(); ++i) {
    if (m_slots[i].number != 0 && !m_slotOf.emplace(m_slots[i].number, i).second) {
      warnings.addDamage("page map", m_slots[i].place, "two pages have one number");
    }
  }
  const auto found = m_slotOf.find(m_header.sectionMap);
  if (found == m_slotOf.end()) {
    throw Damage("the section map is missing", kPagedHeaderPlace);
  }
  m_map = readSectionMap(read(m_slots[found->second].place, kSectionMapType));
  if (m_map.sections.size() > kMostSections) {
    throw Damage("the section map has more sections than make sense");
  }
}

void PagedFile::checkCopy(Warnings& warnings) {
  const std::string_view file = m_bytes;
  const std::uint64_t place = m_header.copyPlace;
  if (place > file.size() || kPagedHeaderSize > file.size() - place ||
      file.substr(static_cast<std::size_t>(place), kPagedHeaderSize) !=
          file.substr(kPagedHeaderPlace, kPagedHeaderSize)) {
    warnings.addDamage("file header", place, "its copy at the end of the file is missing");
    return;
  }
  m_rest = file.substr(static_cast<std::size_t>(place) + kPagedHeaderSize);
  const bool isLast = std::all_of(m_slots.begin(), m_slots.end(), [&](const PageSlot& slot) {
    return slot.number == 0 || slot.number == m_header.pageMap || slot.place + slot.size <= place;
  });
  if (!isLast) {
    warnings.addDamage("page map", place, "pages lie behind the end of the file");
  }
}

std::string PagedFile::unpacked(const SectionEntry& entry, Warnings& warnings,
                                UnpackBudget& budget) {
  if (entry.encryption == kIsEncryptedSection) {
    throw dxf::FileError(Acad::eUnsupportedFileFormat,
                         "the drawing is encrypted; save it without a password");
  }
  budget.take(entry.size, 0);
  // The last page is unpacked beside its section.
  budget.take(entry.pages.empty() ? 0 : entry.pageSize, 0);
  std::string section(static_cast<std::size_t>(entry.size), '\0');
  for (const SectionPage& page : entry.pages) {
    try {
      unpackPage(entry, page, section, warnings);
    } catch (const Damage& damage) {
      warnings.addDamage(std::string(entry.name()), damage.place, damage.what());
    }
  }
  return section;
}

void PagedFile::unpackPage(const SectionEntry& entry, const SectionPage& page, std::string& section,
                           Warnings& warnings) {
  const auto found = m_slotOf.find(page.number);
  if (found == m_slotOf.end() || m_isUsed[found->second]) {
    throw Damage("page " + std::to_string(page.number) +
                 (found == m_slotOf.end() ? " is missing" : " is used twice"));
  }
  m_isUsed[found->second] = true;
  const PageSlot& slot = m_slots[found->second];
  const DataPageHeader header = readDataPageHeader(m_bytes, slot.place);
  if (header.type != kDataPageType || page.offset > section.size()) {
    throw Damage("page " + std::to_string(page.number) + " is not what it should be", slot.place);
  }
  const std::string_view data = slice(m_bytes, slot.place + kDataHeaderSize, header.size);
  if (header.section != entry.id || header.offset != page.offset || header.size != page.size ||
      header.size + kDataHeaderSize > slot.size || headerSumOf(header) != header.headerSum) {
    warnings.addDamage(std::string(entry.name()), slot.place, "the header of a page is wrong");
  }
  if (pageChecksum(0, data) != header.dataSum) {
    warnings.addDamage(std::string(entry.name()), slot.place, "the checksum of a page is wrong");
  }
  const auto offset = static_cast<std::size_t>(page.offset);
  const std::size_t room = section.size() - offset;
  if (entry.packing != kPackedLz77) {
    section.replace(offset, std::min(room, data.size()), data.substr(0, room));
    return;
  }
  if (entry.pageSize / kMostUnpackedPerByte > data.size()) {
    throw Damage("a page claims to unpack to more than it can", slot.place);
  }
  if (entry.pageSize <= room) {
    unpackLz77(data, section.data() + offset, entry.pageSize);
    return;
  }
  // The last page goes on behind the end of its section.
  std::string whole(entry.pageSize, '\0');
  unpackLz77(data, whole.data(), whole.size());
  section.replace(offset, room, whole, 0, room);
}

std::string_view PagedFile::sectionNamed(std::string_view name) const {
  for (std::size_t i = 0; i < m_sections.size(); ++i) {
    if (m_map.sections[i].name() == name) {
      return m_sections[i];
    }
  }
  return {};
}

std::string_view PagedFile::section(SectionName name) const {
  return sectionNamed(sectionText(name));
}

std::vector<std::string> PagedFile::sectionNames() const {
  std::vector<std::string> names;
  for (const SectionEntry& entry : m_map.sections) {
    if (!entry.name().empty()) {
      names.emplace_back(entry.name());
    }
  }
  return names;
}

std::unique_ptr<Container> openPagedFile(std::string bytes, const FileHead& /*head*/,
                                         Warnings& warnings) {
  return std::make_unique<PagedFile>(std::move(bytes), warnings);
}

}  // namespace quoin::dwg::container
