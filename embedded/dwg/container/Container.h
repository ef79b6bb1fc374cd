// What the ways of keeping sections in a file have in common: R13 to R2000 keep them as they are
// (FlatFile.h), R2004 and R2010 to R2018 in packed pages (PagedFile.h), R2007 in pages of its own
// (CodedFile.h). DwgFile.h is what others use.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/dwg/container/Sections.h"
#include "embedded/dwg/container/Warnings.h"
#include "embedded/dxf/Format.h"

namespace quoin::dwg::container {

/// What all versions from R13 on have in the first bytes of the file.
struct FileHead {
  dxf::Version version = dxf::Version::Unknown;
  unsigned maintenance = 0;
  std::uint32_t previewPlace = 0;
  unsigned codePage = 0;            // its number
  std::uint32_t securityFlags = 0;  // R2004 and later
};

/// Changes as the layout of the file sees them.
struct ContainerChanges {
  /// Bytes over those that stand at a place of objects(), in order of place, apart.
  struct Patch {
    std::uint64_t place = 0;
    std::string bytes;
  };
  std::vector<Patch> patches;
  std::string appended;  // stands from appendPlace() on
  std::string objectMap;
  bool isMapChanged = true;
  std::uint64_t largestHandle = 0;
  std::optional<std::string> header, classes, templateSection;  // as a whole
};

class Container {
 public:
  explicit Container(std::string bytes) : m_bytes(std::move(bytes)) {}
  virtual ~Container() = default;
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;

  /// Empty for a section that the file does not have.
  virtual std::string_view section(SectionName name) const = 0;
  /// Names of all sections, in the file's order.
  virtual std::vector<std::string> sectionNames() const = 0;
  /// The section of this name, among those that have no SectionName too.
  virtual std::string_view sectionNamed(std::string_view name) const = 0;
  /// Where a section begins in the file, for messages; 0 where it is packed.
  virtual std::uint64_t offsetOf(SectionName name) const = 0;
  /// What the places of the object map count in.
  virtual std::string_view objects() const = 0;
  /// Where a record that has no place yet may go.
  virtual std::uint64_t appendPlace() const = 0;
  /// The file with these changes. Fails: throws Damage where the format has no room for them.
  virtual std::string written(const ContainerChanges& changes) const = 0;

  const std::string& bytes() const { return m_bytes; }
  /// Gives the file's bytes away; nothing else may be called afterwards.
  std::string takeBytes() { return std::move(m_bytes); }

 protected:
  std::string m_bytes;
};

/// Fails: throws Damage where nothing can be read at all; `warnings` gets what is odd.
std::unique_ptr<Container> openFlatFile(std::string bytes, const FileHead& head,
                                        Warnings& warnings);
std::unique_ptr<Container> openPagedFile(std::string bytes, const FileHead& head,
                                         Warnings& warnings);
std::unique_ptr<Container> openCodedFile(std::string bytes, const FileHead& head,
                                         Warnings& warnings);

}  // namespace quoin::dwg::container
