// Files of R13, R14 and R2000: one row of bytes with a table of its sections at the beginning
// (Open Design Specification for .dwg files, chapter 3, "R13-R15 DWG file format organization").
#pragma once

#include <optional>
#include <vector>

#include "embedded/dwg/container/Container.h"
#include "embedded/dwg/container/SecondHeader.h"

namespace quoin::dwg::container {

class FlatFile : public Container {
 public:
  FlatFile(std::string bytes, const FileHead& head, Warnings& warnings);

  std::string_view section(SectionName name) const override;
  std::vector<std::string> sectionNames() const override;
  std::string_view sectionNamed(std::string_view name) const override;
  std::uint64_t offsetOf(SectionName name) const override;
  std::string_view objects() const override { return m_bytes; }
  /// The end of the file; where map and second header are the last of it, these make room.
  std::uint64_t appendPlace() const override;
  /// What keeps its size keeps its place. Else what is new goes to appendPlace(), then the map,
  /// then the second header; the former ones become unused bytes where they did not make room.
  std::string written(const ContainerChanges& changes) const override;

 private:
  void readLocators(Warnings& warnings);
  void readSecond(Warnings& warnings);
  const Locator* locator(SectionName name) const;
  /// Fails: throws Damage where the file has none.
  const Locator& neededLocator(SectionName name) const;
  std::string_view preview() const;
  bool fitsInPlace(const ContainerChanges& changes) const;
  void moveSection(std::string& out, SecondHeader& second, const Locator& section,
                   const std::string& bytes) const;
  void writeSection(std::string& out, SecondHeader& second, SectionName name,
                    const std::string& bytes) const;
  void writeMap(std::string& out, SecondHeader& second, const ContainerChanges& changes) const;

  std::vector<Locator> m_sections;
  std::uint32_t m_previewPlace;
  std::optional<std::size_t> m_secondPlace;
  SecondHeader m_second;
};

}  // namespace quoin::dwg::container
