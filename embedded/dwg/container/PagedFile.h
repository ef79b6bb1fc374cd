// Files of R2004 and of R2010 to R2018: sections cut into packed pages, found by two maps (Open
// Design Specification for .dwg files, chapters 4, "R2004 DWG file format organization", 6, 7, 8).
#pragma once

#include <unordered_map>
#include <vector>

#include "embedded/dwg/container/Container.h"
#include "embedded/dwg/container/PageMap.h"
#include "embedded/dwg/container/PagedHeader.h"
#include "embedded/dwg/container/SectionMap.h"
#include "embedded/dwg/container/UnpackBudget.h"
#include "hostapi.h"

namespace quoin::dwg::container {

constexpr std::uint32_t kDataPageType = 0x4163043B;
constexpr std::size_t kDataHeaderSize = 32;
constexpr std::uint32_t kUnpacked = 1;
constexpr std::uint32_t kPackedLz77 = 2;

/// The header of a data page; in the file its words are combined with a mask of the page's place.
struct DataPageHeader {
  std::uint32_t type = kDataPageType;
  std::uint32_t section = 0;  // its id
  std::uint32_t size = 0;     // of the packed data
  std::uint32_t slotSize = 0;
  std::uint64_t offset = 0;  // in the section
  std::uint32_t headerSum = 0;
  std::uint32_t dataSum = 0;
};

/// Fails: throws Damage where the file ends before.
HOST_API DataPageHeader readDataPageHeader(std::string_view file, std::uint64_t place);
/// What headerSum must be.
HOST_API std::uint32_t headerSumOf(const DataPageHeader& header);
/// The header as the file has it at this place.
HOST_API std::string dataPageHeaderBytes(const DataPageHeader& header, std::uint64_t place);

class PagedFile : public Container {
 public:
  PagedFile(std::string bytes, Warnings& warnings);

  std::string_view section(SectionName name) const override;
  std::vector<std::string> sectionNames() const override;
  std::string_view sectionNamed(std::string_view name) const override;
  std::uint64_t offsetOf(SectionName /*name*/) const override { return 0; }
  std::string_view objects() const override { return section(SectionName::Objects); }
  std::uint64_t appendPlace() const override { return objects().size(); }
  /// Pages without changes keep their bytes, numbers and places. New ones go into gaps that fit
  /// best, else to the end; what they replace becomes gaps. See PagedWriter.cpp.
  std::string written(const ContainerChanges& changes) const override;

 private:
  void readMaps(Warnings& warnings, UnpackBudget& budget);
  void checkCopy(Warnings& warnings);
  std::string unpacked(const SectionEntry& entry, Warnings& warnings, UnpackBudget& budget);
  void unpackPage(const SectionEntry& entry, const SectionPage& page, std::string& section,
                  Warnings& warnings);

  PagedHeader m_header;
  std::vector<PageSlot> m_slots;
  std::unordered_map<std::uint32_t, std::size_t> m_slotOf;  // by page number
  std::vector<bool> m_isUsed;                               // by slot
  SectionMap m_map;
  std::vector<std::string> m_sections;  // unpacked, as in the map
  std::string m_rest;                   // behind the copy of the header
};

}  // namespace quoin::dwg::container
