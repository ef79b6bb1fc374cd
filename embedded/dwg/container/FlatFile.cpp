#include "embedded/dwg/container/FlatFile.h"

#include <algorithm>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_view_literals;

constexpr const char* kFileHeader = "file header";
constexpr std::size_t kCountPlace = 0x15;
constexpr std::size_t kLocatorsPlace = 0x19;
constexpr std::size_t kLocatorSize = 9;
constexpr std::uint32_t kMostLocators = 16;  // files have 3 to 6
constexpr auto kEndMark = "\x95\xA0\x4E\x28\x99\x82\x1A\xE5\x5E\x41\xE0\x5F\x9D\x3A\x4D\x00"sv;
constexpr auto kPreviewMark = "\x1F\x25\x6D\x07\xD4\x36\x28\x28\x9D\x57\xCA\x3F\x9D\x44\x10\x2B"sv;
// Places are 32-bit numbers that programs read as signed.
constexpr std::size_t kMostBytes = 0x7FFFFFFF;

/// The numbers that the sections of these versions have instead of names.
std::optional<std::uint8_t> numberOf(SectionName name) {
  switch (name) {
    case SectionName::Header:
      return 0;
    case SectionName::Classes:
      return 1;
    case SectionName::Handles:
      return 2;
    case SectionName::ObjFreeSpace:
      return 3;
    case SectionName::Template:
      return 4;
    case SectionName::AuxHeader:
      return 5;
    default:
      return std::nullopt;
  }
}

/// The next free handle, which the second header repeats, for a largest one.
void raiseHandleSeed(SecondHeader& header, std::uint64_t largest) {
  for (SecondHeader::Handle& handle : header.handles) {
    std::uint64_t seed = 0;
    for (const char c : handle.bytes) {
      seed = seed << 8 | static_cast<unsigned char>(c);
    }
    if (handle.number == 0 && seed <= largest) {
      handle.bytes.clear();
      for (seed = largest + 1; seed != 0; seed >>= 8) {
        handle.bytes.insert(handle.bytes.begin(), static_cast<char>(seed & 0xFF));
      }
    }
  }
}

}  // namespace

FlatFile::FlatFile(std::string bytes, const FileHead& head, Warnings& warnings)
    : Container(std::move(bytes)), m_previewPlace(head.previewPlace) {
  readLocators(warnings);
  readSecond(warnings);
}

void FlatFile::readLocators(Warnings& warnings) {
  const auto count = numberAt<std::uint32_t>(m_bytes, kCountPlace);
  if (count > kMostLocators) {
    throw Damage("the table of sections is damaged", kCountPlace);
  }
  ByteReader reader(m_bytes, kLocatorsPlace);
  for (std::uint32_t i = 0; i < count; ++i) {
    Locator section;
    section.number = reader.next<std::uint8_t>();
    section.place = reader.next<std::uint32_t>();
    section.size = reader.next<std::uint32_t>();
    if (section.place > m_bytes.size() || section.size > m_bytes.size() - section.place) {
      warnings.addDamage(
          kFileHeader, reader.place() - kLocatorSize,
          "section " + std::to_string(section.number) + " lies behind the end of the file");
      section.place = section.size = 0;
    }
    m_sections.push_back(section);
  }
  const std::uint64_t sumPlace = reader.place();
  const std::string_view summed = slice(m_bytes, 0, sumPlace);
  if (reader.next<std::uint16_t>() != crc16(kCrc16Seed, summed)) {
    warnings.addDamage(kFileHeader, sumPlace, "the checksum is wrong");
  }
  if (reader.take(kEndMark.size()) != kEndMark) {
    warnings.addDamage(kFileHeader, sumPlace + 2, "the mark of its end is missing");
  }
}

void FlatFile::readSecond(Warnings& warnings) {
  m_secondPlace = findSecondHeader(m_bytes);
  if (!m_secondPlace) {
    return;
  }
  try {
    m_second = readSecondHeader(m_bytes, *m_secondPlace);
  } catch (const Damage& damage) {
    warnings.addDamage("second file header", *m_secondPlace, damage.what());
    m_secondPlace.reset();
  }
}

const Locator* FlatFile::locator(SectionName name) const {
  const std::optional<std::uint8_t> number = numberOf(name);
  const auto found = std::find_if(m_sections.begin(), m_sections.end(), [&](const Locator& one) {
    return number && one.number == *number;
  });
  return found == m_sections.end() ? nullptr : &*found;
}

const Locator& FlatFile::neededLocator(SectionName name) const {
  const Locator* found = locator(name);
  if (found == nullptr) {
    throw Damage("the file has no section " + std::string(sectionText(name)));
  }
  return *found;
}

std::string_view FlatFile::preview() const {
  const std::string_view all = m_bytes;
  if (m_previewPlace == 0 || m_previewPlace > all.size() ||
      !all.substr(m_previewPlace).starts_with(kPreviewMark)) {
    return {};
  }
  const std::size_t sizePlace = m_previewPlace + kPreviewMark.size();
  if (all.size() - sizePlace < sizeof(std::uint32_t)) {
    return {};
  }
  // The size counts what is between itself and the end mark.
  const std::uint64_t size = std::uint64_t{2} * kPreviewMark.size() + sizeof(std::uint32_t) +
                             numberAt<std::uint32_t>(all, sizePlace);
  return size > all.size() - m_previewPlace
             ? std::string_view()
             : all.substr(m_previewPlace, static_cast<std::size_t>(size));
}

std::string_view FlatFile::section(SectionName name) const {
  if (name == SectionName::Preview) {
    return preview();
  }
  const Locator* found = locator(name);
  return found == nullptr ? std::string_view()
                          : std::string_view(m_bytes).substr(found->place, found->size);
}

std::vector<std::string> FlatFile::sectionNames() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < kSectionNames.size(); ++i) {
    if (!section(static_cast<SectionName>(i)).empty()) {
      names.emplace_back(kSectionNames[i]);
    }
  }
  return names;
}

std::string_view FlatFile::sectionNamed(std::string_view name) const {
  const auto found = std::find(kSectionNames.begin(), kSectionNames.end(), name);
  return found == kSectionNames.end()
             ? std::string_view()
             : section(static_cast<SectionName>(found - kSectionNames.begin()));
}

std::uint64_t FlatFile::offsetOf(SectionName name) const {
  const Locator* found = locator(name);
  return found == nullptr ? 0 : found->place;
}

std::uint64_t FlatFile::appendPlace() const {
  const Locator* map = locator(SectionName::Handles);
  if (map == nullptr || !m_secondPlace) {
    return m_bytes.size();
  }
  const bool isLast =
      map->place + map->size == *m_secondPlace && *m_secondPlace + m_second.size == m_bytes.size();
  return isLast ? map->place : m_bytes.size();
}

bool FlatFile::fitsInPlace(const ContainerChanges& changes) const {
  const auto fits = [&](SectionName name, const std::optional<std::string>& bytes) {
    return !bytes || bytes->size() == section(name).size();
  };
  return !changes.isMapChanged && fits(SectionName::Header, changes.header) &&
         fits(SectionName::Classes, changes.classes) &&
         fits(SectionName::Template, changes.templateSection);
}

void FlatFile::moveSection(std::string& out, SecondHeader& second, const Locator& section,
                           const std::string& bytes) const {
  const auto place = static_cast<std::uint32_t>(out.size());
  const auto size = static_cast<std::uint32_t>(bytes.size());
  out += bytes;
  const auto index = static_cast<std::size_t>(&section - m_sections.data());
  replaceNumber(out, kLocatorsPlace + index * kLocatorSize + 1, place);
  replaceNumber(out, kLocatorsPlace + index * kLocatorSize + 5, size);
  for (Locator& repeated : second.sections) {
    if (repeated.number == section.number) {
      repeated.place = place;
      repeated.size = size;
    }
  }
}

/// To its place where it fits, else to the end.
void FlatFile::writeSection(std::string& out, SecondHeader& second, SectionName name,
                            const std::string& bytes) const {
  const Locator& old = neededLocator(name);
  if (bytes.size() == old.size) {
    out.replace(old.place, old.size, bytes);
  } else {
    moveSection(out, second, old, bytes);
  }
}

void FlatFile::writeMap(std::string& out, SecondHeader& second,
                        const ContainerChanges& changes) const {
  moveSection(out, second, neededLocator(SectionName::Handles), changes.objectMap);
  if (m_secondPlace) {
    raiseHandleSeed(second, changes.largestHandle);
    out += secondHeaderBytes(second, static_cast<std::uint32_t>(out.size()));
  }
  if (out.size() > kMostBytes) {
    throw Damage("the drawing would be larger than 2 GiB, which its version cannot be");
  }
  const std::size_t sumPlace = kLocatorsPlace + m_sections.size() * kLocatorSize;
  replaceNumber(out, sumPlace, crc16(kCrc16Seed, std::string_view(out).substr(0, sumPlace)));
}

std::string FlatFile::written(const ContainerChanges& changes) const {
  const bool isInPlace = fitsInPlace(changes);
  std::string out =
      m_bytes.substr(0, isInPlace ? m_bytes.size() : static_cast<std::size_t>(appendPlace()));
  for (const ContainerChanges::Patch& patch : changes.patches) {
    out.replace(static_cast<std::size_t>(patch.place), patch.bytes.size(), patch.bytes);
  }
  out += changes.appended;
  SecondHeader second = m_second;
  if (changes.header) {
    writeSection(out, second, SectionName::Header, *changes.header);
  }
  if (changes.classes) {
    writeSection(out, second, SectionName::Classes, *changes.classes);
  }
  if (changes.templateSection) {
    writeSection(out, second, SectionName::Template, *changes.templateSection);
  }
  if (isInPlace) {
    return out;
  }
  if (m_secondPlace && *m_secondPlace < appendPlace()) {
    // A search for it must not find the one that is out of date.
    out.replace(*m_secondPlace, m_second.size, m_second.size, '\0');
  }
  writeMap(out, second, changes);
  return out;
}

std::unique_ptr<Container> openFlatFile(std::string bytes, const FileHead& head,
                                        Warnings& warnings) {
  return std::make_unique<FlatFile>(std::move(bytes), head, warnings);
}

}  // namespace quoin::dwg::container
