// Files of R2007: sections in packed pages that can be repaired, found by two maps; read, and never
// written (Open Design Specification for .dwg files, chapter 5, "R2007 DWG file format
// organization").
#pragma once

#include <unordered_map>
#include <vector>

#include "embedded/dwg/container/Container.h"
#include "embedded/dwg/container/UnpackBudget.h"

namespace quoin::dwg::container {

class CodedFile : public Container {
 public:
  CodedFile(std::string bytes, Warnings& warnings);

  std::string_view section(SectionName name) const override;
  std::vector<std::string> sectionNames() const override;
  std::string_view sectionNamed(std::string_view name) const override;
  std::uint64_t offsetOf(SectionName /*name*/) const override { return 0; }
  std::string_view objects() const override { return section(SectionName::Objects); }
  std::uint64_t appendPlace() const override { return objects().size(); }
  /// Fails: always.
  std::string written(const ContainerChanges& changes) const override;

 private:
  /// Where pages are in the file, by number.
  struct Slot {
    std::uint64_t place = 0;
    std::uint64_t size = 0;
    bool isUsed = false;
  };
  struct Section {
    std::string name;
    std::string bytes;
  };
  struct MapSizes {
    std::uint64_t packed = 0;
    std::uint64_t unpacked = 0;
    std::uint64_t repeats = 0;
  };
  struct Page {
    std::uint64_t offset = 0;  // in the section
    std::uint64_t number = 0;
    std::uint64_t size = 0;  // unpacked
    std::uint64_t packedSize = 0;
    std::uint32_t checksum = 0;
  };

  std::string readHeader(Warnings& warnings);
  std::string readMap(std::uint64_t place, const MapSizes& sizes, Warnings& warnings);
  void readSlots(std::string_view map);
  void readSections(std::string_view map, Warnings& warnings);
  void readPage(const Page& page, bool isEncoded, Section& section, Warnings& warnings);

  UnpackBudget m_budget;
  std::unordered_map<std::uint64_t, Slot> m_slots;
  std::vector<Section> m_sections;
};

}  // namespace quoin::dwg::container
