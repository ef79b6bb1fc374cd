#include "embedded/dwg/container/CodedFile.h"

#include <algorithm>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"
#include "embedded/dwg/container/CodedLz77.h"
#include "embedded/dwg/container/ReedSolomon.h"
#include "embedded/dxf/FileError.h"

namespace quoin::dwg::container {
namespace {

constexpr std::size_t kHeaderPlace = 0x80;
constexpr std::size_t kHeaderWords = 3;
constexpr std::size_t kHeaderSize = 0x110;  // unpacked
constexpr std::size_t kPagesPlace = 0x480;
constexpr std::uint64_t kLeastPage = 0x20;
constexpr std::size_t kMostSections = 256;
constexpr std::uint64_t kMostRepeats = 64;      // files have 3 to 6
constexpr std::uint64_t kMostPacking = 0x1000;  // of a page; a copy of 4 bytes gives some 65,000
constexpr std::uint64_t kEncodedPages = 4;
constexpr std::uint64_t kEncryptedSection = 1;

std::uint64_t codeWords(std::uint64_t size, std::size_t dataSize) {
  return (size + dataSize - 1) / dataSize;
}

std::uint64_t roundedUp(std::uint64_t size) {
  return (size + 7) / 8 * 8;
}

}  // namespace

CodedFile::CodedFile(std::string bytes, Warnings& warnings)
    : Container(std::move(bytes)), m_budget(m_bytes.size()) {
  const std::string header = readHeader(warnings);
  const auto field = [&](std::size_t place) { return numberAt<std::uint64_t>(header, place); };
  readSlots(readMap(field(0x38), {field(0x50), field(0x58), field(0x18)}, warnings));
  const auto found = m_slots.find(field(0xC0));
  if (found == m_slots.end()) {
    throw Damage("the section map is missing", kHeaderPlace);
  }
  readSections(readMap(found->second.place, {field(0xB0), field(0xC8), field(0xD8)}, warnings),
               warnings);
}

std::string CodedFile::readHeader(Warnings& warnings) {
  const Decoded coded = decodeReedSolomon(
      slice(m_bytes, kHeaderPlace, kHeaderWords * kCodeWordSize), kHeaderWords, kSystemDataSize);
  if (!coded.isRight) {
    warnings.addDamage("file header", kHeaderPlace, "its check bytes are wrong");
  }
  // Checksums and a key, then the size; a negative one means that nothing is packed.
  constexpr std::size_t kSizePlace = 24;
  constexpr std::size_t kDataPlace = 32;
  const auto size = numberAt<std::int32_t>(coded.data, kSizePlace);
  std::string header(kHeaderSize, '\0');
  if (size < 0) {
    header = slice(coded.data, kDataPlace, kHeaderSize);
  } else {
    unpackCodedLz77(slice(coded.data, kDataPlace, static_cast<std::uint64_t>(size)), header.data(),
                    header.size());
  }
  return header;
}

std::string CodedFile::readMap(std::uint64_t place, const MapSizes& sizes, Warnings& warnings) {
  if (place > m_bytes.size() || sizes.packed > m_bytes.size() || sizes.repeats > kMostRepeats) {
    throw Damage("a map of the file lies behind its end", kHeaderPlace);
  }
  m_budget.take(sizes.unpacked, kPagesPlace + place);
  // The packed map is repeated, so that it survives the loss of a whole sector.
  const std::uint64_t words = codeWords(roundedUp(sizes.packed) * sizes.repeats, kSystemDataSize);
  const Decoded coded =
      decodeReedSolomon(slice(m_bytes, kPagesPlace + place, words * kCodeWordSize),
                        static_cast<std::size_t>(words), kSystemDataSize);
  if (!coded.isRight) {
    warnings.addDamage("maps", kPagesPlace + place, "the check bytes of a map are wrong");
  }
  std::string map(static_cast<std::size_t>(sizes.unpacked), '\0');
  map.resize(unpackCodedLz77(slice(coded.data, 0, sizes.packed), map.data(), map.size()));
  return map;
}

void CodedFile::readSlots(std::string_view map) {
  std::uint64_t place = 0;
  ByteReader reader(map);
  while (!reader.isAtEnd()) {
    const auto size = reader.next<std::uint64_t>();
    const auto number = reader.next<std::int64_t>();
    if (size < kLeastPage || size > m_bytes.size() || place > m_bytes.size()) {
      throw Damage("the page map is damaged", kPagesPlace + place);
    }
    if (number > 0) {  // others are gaps
      m_slots[static_cast<std::uint64_t>(number)] = {place, size, false};
    }
    place += size;
  }
}

void CodedFile::readSections(std::string_view map, Warnings& warnings) {
  ByteReader reader(map);
  while (!reader.isAtEnd()) {
    Section section;
    const auto size = reader.next<std::uint64_t>();
    reader.take(8);  // the most that a page unpacks to
    const auto encryption = reader.next<std::uint64_t>();
    reader.take(8);  // a number made of the name
    const auto nameSize = reader.next<std::uint64_t>();
    reader.take(8);
    const auto encoding = reader.next<std::uint64_t>();
    const auto pages = reader.next<std::uint64_t>();
    for (const char c : reader.take(nameSize)) {  // UTF-16, and all of them ASCII
      if (c != '\0') {
        section.name.push_back(c);
      }
    }
    if (encryption == kEncryptedSection) {
      throw dxf::FileError(Acad::eUnsupportedFileFormat,
                           "the drawing is encrypted; save it without a password");
    }
    m_budget.take(size, 0);
    section.bytes.resize(static_cast<std::size_t>(size));
    for (std::uint64_t i = 0; i < pages; ++i) {
      Page page;
      page.offset = reader.next<std::uint64_t>();
      reader.take(8);  // the room that the page has in the section
      page.number = reader.next<std::uint64_t>();
      page.size = reader.next<std::uint64_t>();
      page.packedSize = reader.next<std::uint64_t>();
      page.checksum = static_cast<std::uint32_t>(reader.next<std::uint64_t>());
      reader.take(8);  // another checksum, of 64 bits
      try {
        readPage(page, encoding == kEncodedPages, section, warnings);
      } catch (const Damage& damage) {
        warnings.addDamage(section.name, damage.place, damage.what());
      }
    }
    m_sections.push_back(std::move(section));
    if (m_sections.size() > kMostSections) {
      throw Damage("the section map has more sections than make sense");
    }
  }
}

void CodedFile::readPage(const Page& page, bool isEncoded, Section& section, Warnings& warnings) {
  const auto found = m_slots.find(page.number);
  if (found == m_slots.end() || found->second.isUsed) {
    throw Damage("page " + std::to_string(page.number) +
                 (found == m_slots.end() ? " is missing" : " is used twice"));
  }
  found->second.isUsed = true;
  const std::uint64_t place = kPagesPlace + found->second.place;
  if (page.packedSize > found->second.size || page.offset > section.bytes.size() ||
      page.size > section.bytes.size() - page.offset ||
      page.size / kMostPacking > page.packedSize) {
    throw Damage("a page is larger than it can be", place);
  }
  Decoded stored;
  if (isEncoded) {
    const std::uint64_t words = codeWords(roundedUp(page.packedSize), kPageDataSize);
    stored = decodeReedSolomon(slice(m_bytes, place, words * kCodeWordSize),
                               static_cast<std::size_t>(words), kPageDataSize);
  } else {
    stored.data = slice(m_bytes, place, page.packedSize);
  }
  const std::string_view packed = slice(stored.data, 0, page.packedSize);
  char* out = section.bytes.data() + page.offset;
  if (page.packedSize == page.size) {
    std::copy(packed.begin(), packed.end(), out);
  } else {
    unpackCodedLz77(packed, out, static_cast<std::size_t>(page.size));
  }
  // The sum is that of the packed bytes; of some small pages it is that of the unpacked ones.
  const bool isSumRight =
      codedPageChecksum(packed) == page.checksum ||
      codedPageChecksum({out, static_cast<std::size_t>(page.size)}) == page.checksum;
  if (!stored.isRight || !isSumRight) {
    warnings.addDamage(section.name, place, "the checksum of a page is wrong");
  }
}

std::string_view CodedFile::sectionNamed(std::string_view name) const {
  const auto found = std::find_if(m_sections.begin(), m_sections.end(),
                                  [&](const Section& one) { return one.name == name; });
  return found == m_sections.end() ? std::string_view() : std::string_view(found->bytes);
}

std::string_view CodedFile::section(SectionName name) const {
  return sectionNamed(sectionText(name));
}

std::vector<std::string> CodedFile::sectionNames() const {
  std::vector<std::string> names;
  for (const Section& section : m_sections) {
    if (!section.name.empty()) {
      names.push_back(section.name);
    }
  }
  return names;
}

std::string CodedFile::written(const ContainerChanges& /*changes*/) const {
  throw Damage("DWG drawings of R2007 are read, and not written");
}

std::unique_ptr<Container> openCodedFile(std::string bytes, const FileHead& /*head*/,
                                         Warnings& warnings) {
  return std::make_unique<CodedFile>(std::move(bytes), warnings);
}

}  // namespace quoin::dwg::container
