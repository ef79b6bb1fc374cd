// The header variables and classes of a published drawing, and what its DXF twin says.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/dwg/container/DwgFile.h"
#include "embedded/dxf/Format.h"
#include "embedded/dxf/Tag.h"
#include "embedded/os/CodePage.h"
#include "support/SharedData.h"

namespace quoin::dwg::test {

struct SampleSections {
  dxf::Version version = dxf::Version::Unknown;
  std::string codePage = "ANSI_1252";
  std::string header;  // without their frames
  std::string classes;
};

inline SampleSections sectionsOf(const std::filesystem::path& path) {
  const DwgFile drawing(quoin::test::bytesOf(path), path.filename().string());
  return {drawing.version(), drawing.codePage(), std::string(drawing.headerVariables()),
          std::string(drawing.classes())};
}

inline const os::CodePage& latin() {
  return os::CodePage::named("ANSI_1252");
}

/// Drawings and the DXF files that were saved in the same minute.
using TwinNames = std::pair<std::string, std::string>;

inline std::vector<TwinNames> twins() {
  std::vector<TwinNames> names;
  for (const char* version : {"AC1015", "AC1018", "AC1021", "AC1027", "AC1032"}) {
    const std::string sample = std::string("acadsharp_sample_") + version;
    names.emplace_back(sample + ".dwg", sample + "_ascii.dxf");
  }
  for (const char* what : {"FLIP", "VISIBILITY"}) {
    const std::string sample = std::string("acadsharp_dynamic_BLOCK") + what + "PARAMETER";
    names.emplace_back(sample + ".dwg", sample + ".dxf");
  }
  return names;
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

/// Skips itself where the published drawings are absent.
class SampleTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (quoin::test::sharedFiles(".dwg").empty()) {
      GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
    }
  }
  static std::vector<std::filesystem::path> samples() { return quoin::test::sharedFiles(".dwg"); }
};

/// The same, once for each pair of twins.
class TwinTest : public SampleTest, public ::testing::WithParamInterface<TwinNames> {
 protected:
  void SetUp() override {
    SampleTest::SetUp();
    if (!IsSkipped()) {
      const auto folder = quoin::test::sharedDataFolder();
      sample = sectionsOf(folder / GetParam().first);
      twin = twinOf(folder / GetParam().second, sample.version);
    }
  }

  SampleSections sample;
  Twin twin;
};

}  // namespace quoin::dwg::test
