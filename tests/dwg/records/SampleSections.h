// The header variables and classes of a published drawing, and what its DXF twin says.
#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/dxf/Format.h"
#include "embedded/dxf/Tag.h"
#include "support/SharedData.h"

#if __has_include("embedded/dwg/container/DwgFile.h")
#include "embedded/dwg/container/DwgFile.h"
#endif

namespace quoin::dwg::test {

struct SampleSections {
  dxf::Version version = dxf::Version::Unknown;
  std::string codePage = "ANSI_1252";
  std::string header;  // without their frames
  std::string classes;
};

inline std::string flatSection(const std::string& file, std::uint8_t number) {
  constexpr std::size_t kLocator = 0x15;
  constexpr std::size_t kMark = 16;
  const auto longAt = [&](std::size_t at) {
    std::uint32_t value = 0;
    std::memcpy(&value, file.data() + at, sizeof value);
    return value;
  };
  for (std::size_t i = 0; i < longAt(kLocator); ++i) {
    const std::size_t row = kLocator + 4 + 9 * i;
    if (static_cast<std::uint8_t>(file[row]) == number) {
      const std::size_t begin = longAt(row + 1) + kMark;
      return file.substr(begin + 4, longAt(begin));
    }
  }
  return {};
}

/// No sections where the version's container cannot be read.
inline SampleSections sectionsOf(const std::filesystem::path& path) {
  SampleSections sections;
  const std::string file = quoin::test::bytesOf(path);
  sections.version = dxf::versionFromAcadVer(file.substr(0, 6));
  if (sections.version <= dxf::Version::R2000) {
    sections.header = flatSection(file, 0);
    sections.classes = flatSection(file, 1);
    return sections;
  }
#if __has_include("embedded/dwg/container/DwgFile.h")
  try {
    const DwgFile drawing(file);
    sections.codePage = drawing.codePage();
    sections.header = drawing.headerVariables();
    sections.classes = drawing.classes();
  } catch (const std::exception&) {
    // A version that is not read yet.
  }
#endif
  return sections;
}

struct TwinRecord {
  std::string kind;
  std::uint64_t handle = 0;
  std::wstring name;  // group 2
  std::string tags;   // behind group 0
};

/// A DXF file as the variables of its header and its records.
struct Twin {
  dxf::Format format;
  std::map<std::string, std::string> variables;  // the value's tags
  std::vector<std::string> order;                // names of variables
  std::vector<TwinRecord> records;
};

inline Twin twinOf(const std::filesystem::path& path, dxf::Version version) {
  Twin twin;
  twin.format.version = version;
  const std::string bytes = quoin::test::bytesOf(path);
  dxf::TagCursor cursor(bytes, twin.format);
  for (dxf::TagView tag; cursor.next(tag);) {
    const std::string_view value = dxf::trimmedValue(tag);
    if (tag.code == 0) {
      twin.records.push_back({std::string(value), 0, {}, {}});
    } else if (tag.code == 9 && twin.records.size() == 1) {
      twin.order.emplace_back(value);
    } else if (twin.records.size() == 1 && !twin.order.empty()) {
      twin.variables[twin.order.back()] += bytes.substr(tag.begin, tag.end - tag.begin);
    } else if (!twin.records.empty()) {
      TwinRecord& record = twin.records.back();
      record.tags += bytes.substr(tag.begin, tag.end - tag.begin);
      if (tag.code == (record.kind == "DIMSTYLE" ? 105 : 5) && record.handle == 0) {
        record.handle = dxf::handleOf(tag, twin.format);
      } else if (tag.code == 2 && record.name.empty()) {
        record.name = dxf::textOf(tag, twin.format);
      }
    }
  }
  return twin;
}

}  // namespace quoin::dwg::test
