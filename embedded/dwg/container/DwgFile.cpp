#include "embedded/dwg/container/DwgFile.h"

#include <algorithm>
#include <functional>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/FileHead.h"
#include "embedded/dwg/container/ObjectMap.h"
#include "embedded/dwg/container/ProductText.h"
#include "embedded/dwg/container/RecordFrame.h"
#include "embedded/dwg/container/SectionFrame.h"

namespace quoin::dwg {

using namespace container;
using dxf::FileError;
using dxf::Version;

namespace {

void refuseVersion(std::string_view file, const FileHead& head) {
  if (head.version == Version::Unknown) {
    throw FileError(Acad::eUnsupportedFileFormat,
                    "DWG drawings of this version (" + std::string(file.substr(0, kMarkSize)) +
                        ") are not read; those from R13 to R2018 are");
  }
  if ((head.securityFlags & kIsEncrypted) != 0) {
    throw FileError(Acad::eUnsupportedFileFormat,
                    "the drawing is encrypted; save it without a password");
  }
}

void noteVersion(const FileHead& head, Warnings& warnings) {
  if (head.version < Version::R14 || head.version == Version::R2007) {
    warnings.refuseWriting("DWG drawings of " + std::string(dxf::releaseName(head.version)) +
                           " are read, and not written");
  }
  if ((head.securityFlags & kIsSigned) != 0) {
    warnings.add("file header", 0, "the drawing is signed; a signature ends with the first change");
  }
}

std::unique_ptr<Container> openContainer(std::string bytes, const FileHead& head,
                                         Warnings& warnings) {
  if (head.version <= Version::R2000) {
    return openFlatFile(std::move(bytes), head, warnings);
  }
  return head.version == Version::R2007 ? openCodedFile(std::move(bytes), head, warnings)
                                        : openPagedFile(std::move(bytes), head, warnings);
}

constexpr const char* kOverlap = "two records lie one on the other";

/// Records that share bytes: a change of one would be a change of the other.
void checkApart(const std::vector<RecordView>& records, Warnings& warnings) {
  std::vector<const RecordView*> byPlace;
  byPlace.reserve(records.size());
  for (const RecordView& record : records) {
    byPlace.push_back(&record);
  }
  std::sort(byPlace.begin(), byPlace.end(), [](const RecordView* one, const RecordView* other) {
    return std::less<>()(one->data.data(), other->data.data());
  });
  // Between two records there are at least a checksum and a size.
  constexpr std::ptrdiff_t kLeastApart = 4;
  for (std::size_t i = 1; i < byPlace.size(); ++i) {
    const std::string_view before = byPlace[i - 1]->data;
    if (byPlace[i]->data.data() - before.data() <
        static_cast<std::ptrdiff_t>(before.size()) + kLeastApart) {
      warnings.addDamage(recordText(byPlace[i]->handle), 0, kOverlap);
    }
  }
}

}  // namespace

bool DwgFile::recognises(std::string_view head) {
  return isDwg(head);
}

DwgFile::DwgFile(std::string bytes, const std::string& fileName) : m_fileName(fileName) {
  try {
    open(std::move(bytes));
  } catch (const Damage& damage) {
    FileError error(Acad::eDwgNeedsRecovery, damage.what());
    error.offset = damage.place;
    error.fileName = m_fileName;
    throw error;
  } catch (FileError& error) {
    error.fileName = m_fileName;
    throw;
  }
}

DwgFile::~DwgFile() = default;
DwgFile::DwgFile(DwgFile&&) noexcept = default;
DwgFile& DwgFile::operator=(DwgFile&&) noexcept = default;

void DwgFile::open(std::string bytes) {
  const FileHead head = readFileHead(bytes);
  refuseVersion(bytes, head);
  m_version = head.version;
  m_maintenance = head.maintenance;
  m_codePage = codePageText(head.codePage);
  Warnings warnings;
  noteVersion(head, warnings);
  m_container = openContainer(std::move(bytes), head, warnings);
  readFrames(warnings);
  readRecords(warnings);
  warnings.close();
  m_warnings = warnings.list();
  m_whyReadOnly = warnings.whyReadOnly();
}

void DwgFile::readFrames(Warnings& warnings) {
  const auto read = [&](SectionName name, FramedSection which) {
    try {
      const SectionFrame frame = readSectionFrame(section(name), which, m_version, m_maintenance);
      if (!frame.isSumRight) {
        warnings.addDamage(std::string(sectionText(name)), m_container->offsetOf(name),
                           "the checksum is wrong");
      }
      return frame.contents;
    } catch (const Damage& damage) {
      warnings.addDamage(std::string(sectionText(name)), m_container->offsetOf(name) + damage.place,
                         damage.what());
      return std::string_view();
    }
  };
  m_headerVariables = read(SectionName::Header, FramedSection::Header);
  m_classes = read(SectionName::Classes, FramedSection::Classes);
}

std::vector<MapEntry> DwgFile::readMap(Warnings& warnings) const {
  return readObjectMap(section(SectionName::Handles), m_container->offsetOf(SectionName::Handles),
                       m_container->objects().size() / kLeastRecordSize, warnings);
}

void DwgFile::readRecords(Warnings& warnings) {
  const std::string_view objects = m_container->objects();
  const std::vector<MapEntry> entries = readMap(warnings);
  m_records.reserve(entries.size());
  std::uint64_t allSizes = 0;
  for (const MapEntry& entry : entries) {
    try {
      const RecordFrame frame = readRecordFrame(objects, entry.place, hasHandleBits());
      // Records that lie one on the other could be far more to read than the file is long.
      if (frame.size > objects.size() - allSizes) {
        throw Damage(kOverlap);
      }
      allSizes += frame.size;
      if (!isRecordSumRight(objects, entry.place, frame.size)) {
        warnings.addDamage(recordText(entry.handle), entry.place, "the checksum is wrong");
      }
      m_records.push_back({entry.handle, frame.data, frame.handleBits});
    } catch (const Damage& damage) {
      warnings.addDamage(recordText(entry.handle), entry.place, damage.what());
    }
  }
  checkApart(m_records, warnings);
}

std::string DwgFile::savedBy() const {
  return productIn(section(SectionName::AppInfo));
}

std::string_view DwgFile::section(SectionName name) const {
  return name == SectionName::Objects ? m_container->objects() : m_container->section(name);
}

std::string_view DwgFile::sectionNamed(std::string_view name) const {
  return m_container->sectionNamed(name);
}

std::vector<std::string> DwgFile::sectionNames() const {
  return m_container->sectionNames();
}

const RecordView* DwgFile::find(std::uint64_t handle) const {
  const auto found = std::lower_bound(
      m_records.begin(), m_records.end(), handle,
      [](const RecordView& record, std::uint64_t wanted) { return record.handle < wanted; });
  return found == m_records.end() || found->handle != handle ? nullptr : &*found;
}

const std::string& DwgFile::bytes() const {
  return m_container->bytes();
}

}  // namespace quoin::dwg
