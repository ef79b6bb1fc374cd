#include "embedded/dwg/records/ClassSection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "dwg/records/SampleSections.h"
#include "embedded/dwg/records/BitWriter.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

using test::latin;

void putText(BitWriter& out, std::string_view text) {
  out.bitShort(static_cast<std::uint16_t>(text.size() + 1));
  for (const char byte : text) {
    out.rawChar(static_cast<std::uint8_t>(byte));
  }
  out.rawChar(0);
}

/// Two classes as R2000 has them.
std::string madeSection() {
  BitWriter out;
  for (const bool isEntity : {true, false}) {
    out.bitShort(isEntity ? 500 : 501);
    out.bitShort(isEntity ? 127 : 0);
    putText(out, "ISM");
    putText(out, isEntity ? "AcDbRasterImage" : "AcDbRasterImageDef");
    putText(out, isEntity ? "IMAGE" : "IMAGEDEF");
    out.bit(!isEntity);
    out.bitShort(isEntity ? 0x1F2 : 0x1F3);
  }
  return out.bytes();
}

TEST(ClassSection, AMadeSectionBecomesRecords) {
  ClassSection section;
  ASSERT_TRUE(section.read(madeSection(), Version::R2000, latin()));
  EXPECT_TRUE(section.isExact());
  EXPECT_EQ(section.write(), madeSection());
  dxf::Format format;
  format.version = Version::R2000;
  format.lineEnd = "\n";
  format.groupCodeColumns = 0;
  std::string bytes;
  section.writeTags(format, bytes);
  EXPECT_EQ(bytes,
            "0\nCLASS\n1\nIMAGE\n2\nAcDbRasterImage\n3\nISM\n90\n127\n280\n0\n281\n1\n"
            "0\nCLASS\n1\nIMAGEDEF\n2\nAcDbRasterImageDef\n3\nISM\n90\n0\n280\n1\n281\n0\n");
  const ClassMap classes = section.byType();
  EXPECT_EQ(classes.at(500).dxfName, "IMAGE");
  EXPECT_TRUE(classes.at(500).isEntity);
  EXPECT_FALSE(classes.at(501).isEntity);
  EXPECT_FALSE(section.setCount(500, 3));  // R2004 and later
}

TEST(ClassSection, NoClassesAreClassesToo) {
  ClassSection section;
  EXPECT_TRUE(section.read("", Version::R2000, latin()));
  EXPECT_TRUE(section.isExact());
  EXPECT_TRUE(section.classes().empty());
  EXPECT_FALSE(section.read("", Version::R2018, latin()));
  EXPECT_FALSE(section.isExact());
}

using ClassSamples = test::SampleTest;

TEST_F(ClassSamples, ComeBackBitForBit) {
  for (const auto& path : samples()) {
    const test::SampleSections sample = test::sectionsOf(path);
    SCOPED_TRACE(path.filename());
    ClassSection section;
    ASSERT_TRUE(section.read(sample.classes, sample.version, latin()));
    EXPECT_TRUE(section.isExact());
    EXPECT_EQ(section.write(), sample.classes);
    ASSERT_FALSE(section.classes().empty());
    for (std::size_t i = 0; i < section.classes().size(); ++i) {
      EXPECT_EQ(section.classes()[i].number, 500 + i);
    }
  }
}

TEST_F(ClassSamples, HaveACountThatIsReadAgain) {
  for (const auto& path : samples()) {
    const test::SampleSections sample = test::sectionsOf(path);
    if (sample.version < Version::R2004) {
      continue;
    }
    SCOPED_TRACE(path.filename());
    ClassSection section;
    ASSERT_TRUE(section.read(sample.classes, sample.version, latin()));
    EXPECT_FALSE(section.setCount(499, 1));
    EXPECT_FALSE(section.setCount(503, -1));
    EXPECT_TRUE(section.setCount(503, 70000));
    ClassSection again;
    ASSERT_TRUE(again.read(section.write(), sample.version, latin()));
    EXPECT_TRUE(again.isExact());
    EXPECT_EQ(again.classes()[3].count, 70000);
    EXPECT_TRUE(again.setCount(503, section.classes()[3].count));
    EXPECT_EQ(again.classes().size(), section.classes().size());
  }
}

// --- twins ----------------------------------------------------------------------------------

using ClassTwins = test::TwinTest;

INSTANTIATE_TEST_SUITE_P(Samples, ClassTwins, ::testing::ValuesIn(test::twins()));

/// A class as a DXF file tells of it, without how many records there are: the twins were saved one
/// after the other, and each saving made objects of its own.
using Row = std::vector<std::string>;

Row rowOf(const std::string& tags, const dxf::Format& format) {
  Row row;
  dxf::TagCursor cursor(tags, format);
  for (dxf::TagView tag; cursor.next(tag);) {
    if (tag.code != 91 && tag.code != 0) {
      row.push_back(std::to_string(tag.code) + "=" + std::string(dxf::trimmedValue(tag)));
    }
  }
  return row;
}

TEST_P(ClassTwins, SayTheSame) {
  std::set<Row> expected;
  for (const test::TwinRecord& record : twin.records) {
    // Named differently, or only there where DXF was saved.
    if (record.kind == "CLASS" && record.tags.find("DATATABLE") == std::string::npos) {
      expected.insert(rowOf(record.tags, twin.format));
    }
  }
  ClassSection section;
  ASSERT_TRUE(section.read(sample.classes, sample.version, latin()));
  dxf::Format format = twin.format;
  std::string bytes;
  section.writeTags(format, bytes);
  std::set<Row> mine;
  std::string tags;
  dxf::TagCursor cursor(bytes, format);
  const auto keep = [&] {
    if (!tags.empty() && tags.find("DATATABLE") == std::string::npos) {
      mine.insert(rowOf(tags, format));
    }
    tags.clear();
  };
  for (dxf::TagView tag; cursor.next(tag);) {
    if (tag.code == 0) {
      keep();
    }
    tags += bytes.substr(tag.begin, tag.end - tag.begin);
  }
  keep();
  EXPECT_EQ(mine, expected);
}

TEST_P(ClassTwins, ADamagedSectionDoesNoHarm) {
  std::mt19937 random(20240502);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same every time
  for (int i = 0; i < 500; ++i) {
    std::string damaged = sample.classes.substr(0, random() % (sample.classes.size() + 1));
    for (int n = 0; n < 3 && !damaged.empty(); ++n) {
      damaged[random() % damaged.size()] = static_cast<char>(random());
    }
    ClassSection section;
    if (!section.read(damaged, sample.version, latin())) {
      EXPECT_TRUE(section.classes().empty());
    } else if (section.isExact()) {
      EXPECT_EQ(section.write(), damaged);
    }
  }
}

}  // namespace
}  // namespace quoin::dwg
