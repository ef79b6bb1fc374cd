// The section map: which pages a section is made of (Open Design Specification for .dwg files,
// chapter 4.5, "Data section map").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hostapi.h"

namespace quoin::dwg::container {

struct SectionPage {
  std::uint32_t number = 0;
  std::uint32_t size = 0;    // packed, without the page's header
  std::uint64_t offset = 0;  // in the section
};

struct SectionEntry {
  std::uint64_t size = 0;
  std::uint32_t pageSize = 0;  // that a page unpacks to
  std::uint32_t unknown = 0;
  std::uint32_t packing = 0;  // 1: none, 2: LZ77
  std::uint32_t id = 0;
  std::uint32_t encryption = 0;  // 0: none, 1: encrypted, 2: unknown
  std::string nameField;         // 64 bytes
  std::vector<SectionPage> pages;

  std::string_view name() const {
    return std::string_view(nameField).substr(0, nameField.find('\0'));
  }
};

struct SectionMap {
  std::string head;  // 20 bytes: the number of sections, and numbers of no known use
  std::vector<SectionEntry> sections;
  std::string rest;  // behind the last section
};

/// Fails: throws Damage.
HOST_API SectionMap readSectionMap(std::string_view contents);
HOST_API std::string sectionMapContents(const SectionMap& map);

}  // namespace quoin::dwg::container
