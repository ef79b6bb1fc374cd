// A DWG file as its sections and object records, and the same file with some of them changed. What
// stands in a record nobody here knows; `dwg/records` does. What did not change stays as it is,
// byte for byte: sections, pages, records, and what nobody knows the use of.
//
// Read: R13, R14, R2000, R2004, R2007, R2010, R2013, R2018. Written: those but R13 and R2007,
// where nothing is damaged (whyReadOnly()).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dwg/container/Sections.h"
#include "embedded/dwg/container/Warnings.h"
#include "embedded/dxf/FileError.h"
#include "embedded/dxf/Format.h"
#include "hostapi.h"

namespace quoin::dwg {

namespace container {
class Container;
struct ContainerChanges;
struct MapEntry;
}  // namespace container

/// One object record, without its size in front and its checksum behind.
struct RecordView {
  std::uint64_t handle = 0;      // from the object map
  std::string_view data;         // from its type on
  std::uint64_t handleBits = 0;  // R2010 and later: bits of the stream of handles that data ends
                                 // with; 0 before
};

/// What becomes of one record; a handle that the file does not have is that of a new one.
struct RecordChange {
  std::uint64_t handle = 0;
  std::string data;  // as RecordView has it
  std::uint64_t handleBits = 0;
  bool isErased = false;
};

struct FileChanges {
  std::vector<RecordChange> records = {};  // in any order, one for a handle
  /// New headerVariables() and classes().
  std::optional<std::string> headerVariables = {}, classes = {};
  /// A new section(SectionName::Template) as a whole.
  std::optional<std::string> templateSection = {};

  bool isEmpty() const {
    return records.empty() && !headerVariables && !classes && !templateSection;
  }
};

class HOST_API DwgFile {
 public:
  /// Whether a file that begins with these bytes is a DWG drawing of any version.
  static bool recognises(std::string_view head);

  /// Takes the whole file over, unpacks its sections and checks every checksum.
  /// Fails: throws FileError where nothing can be read: with eUnsupportedFileFormat for an older
  /// version and an encrypted drawing, with eDwgNeedsRecovery for damage. Damage that leaves
  /// something to read gives a warning, and the file is read only.
  /// Memory: the file, its unpacked sections (none up to R2000) and 32 bytes a record.
  explicit DwgFile(std::string bytes, const std::string& fileName = {});
  ~DwgFile();
  DwgFile(DwgFile&&) noexcept;
  DwgFile& operator=(DwgFile&&) noexcept;

  dxf::Version version() const { return m_version; }
  /// The release of the version that wrote the file, as the file header tells.
  unsigned maintenance() const { return m_maintenance; }
  /// As $DWGCODEPAGE spells it ("ANSI_1252"), from the number in the file header.
  const std::string& codePage() const { return m_codePage; }
  /// The application that saved the file with its build ("NAME V.1.2"), as the file says; up to
  /// R2000, which do not, and where it does not: "".
  std::string savedBy() const;

  /// A section's unpacked bytes as a whole, frames and checksums included; empty where the file
  /// has none. SectionName::Objects is the whole file up to R2000, which have no such section.
  std::string_view section(SectionName name) const;
  std::string_view sectionNamed(std::string_view name) const;
  std::vector<std::string> sectionNames() const;

  /// What is between the sizes and the checksum of the section, from R2007 on beginning with its
  /// number of bits: the frame (a mark of 16 bytes, the size as one or two 32-bit numbers, behind
  /// the contents a checksum and another mark) is left out. Empty where the section is damaged.
  std::string_view headerVariables() const { return m_headerVariables; }
  std::string_view classes() const { return m_classes; }

  /// In order of handle, each handle once; records that cannot be are left out, with a warning.
  const std::vector<RecordView>& records() const { return m_records; }
  /// Null for a handle that the file does not have.
  const RecordView* find(std::uint64_t handle) const;

  const std::vector<Warning>& warnings() const { return m_warnings; }
  /// Why the file must not be written, as one sentence's words; "" where it may be.
  const std::string& whyReadOnly() const { return m_whyReadOnly; }

  /// The file's own bytes.
  const std::string& bytes() const;
  /// The file with these changes; without any its own bytes. A record that keeps its size keeps
  /// its place, other ones go behind the last; the old bytes stay as bytes that nothing names.
  /// The new file is opened again, which computes every checksum, every record that did not change
  /// is compared bit for bit, every other one with what was meant, and all other sections.
  /// Fails: throws FileError: eNotApplicable where the file is read only, eInvalidInput for a
  /// change that cannot be (handle 0, two for a handle, an unknown one erased, no data), and
  /// eFilerError where the new file is not what was meant, with the record's handle.
  std::string written(const FileChanges& changes) const;

 private:
  void open(std::string bytes);
  std::vector<container::MapEntry> readMap(container::Warnings& warnings) const;
  void readRecords(container::Warnings& warnings);
  void readFrames(container::Warnings& warnings);
  bool hasHandleBits() const { return m_version >= dxf::Version::R2010; }
  container::ContainerChanges containerChanges(const FileChanges& changes) const;

  std::string m_fileName;
  dxf::Version m_version = dxf::Version::Unknown;
  unsigned m_maintenance = 0;
  std::string m_codePage;
  std::unique_ptr<container::Container> m_container;
  std::vector<RecordView> m_records;
  std::string_view m_headerVariables;
  std::string_view m_classes;
  std::vector<Warning> m_warnings;
  std::string m_whyReadOnly;
};

}  // namespace quoin::dwg
