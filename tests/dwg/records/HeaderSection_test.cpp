#include "embedded/dwg/records/HeaderSection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>

#include "dwg/records/SampleSections.h"
#include "embedded/dwg/records/BitWriter.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

using test::latin;

DrawingFacts factsOf(Version version) {
  DrawingFacts facts;
  facts.format.version = version;
  facts.format.lineEnd = "\n";
  facts.format.groupCodeColumns = 0;
  facts.codePage = &latin();
  return facts;
}

/// What writeTags() says of each variable.
std::map<std::string, std::string> variablesOf(const HeaderSection& section,
                                               const DrawingFacts& facts,
                                               std::vector<std::string>* order = nullptr,
                                               const OutsideVariables& outside = {}) {
  std::string bytes;
  section.writeTags(facts, outside, bytes);
  std::map<std::string, std::string> variables;
  std::string name;
  dxf::TagCursor cursor(bytes, facts.format);
  for (dxf::TagView tag; cursor.next(tag);) {
    if (tag.code == 9) {
      name = tag.value;
      if (order != nullptr) {
        order->push_back(name);
      }
    } else {
      variables[name] += bytes.substr(tag.begin, tag.end - tag.begin);
    }
  }
  return variables;
}

/// The bits of an R2000 section: each letter a field with the next number as its value, a count in
/// front. B bit, S short, L long, D double, P point of 3, Q point of 2, T text, H handle.
std::string madeSection(std::string_view codes) {
  BitWriter out;
  unsigned next = 1;
  unsigned count = 0;
  const auto field = [&](char code) {
    switch (code) {
      case 'B':
        out.bit(next % 2 != 0);
        break;
      case 'S':
        out.bitShort(static_cast<std::uint16_t>(next));
        break;
      case 'L':
        out.bitLong(next);
        break;
      case 'D':
        out.bitDouble(next + 0.5);
        break;
      case 'P':
        for (const double part : {0.25, 1.0, 0.0}) {
          out.bitDouble(part == 0.25 ? next + part : part);
        }
        break;
      case 'Q':
        out.rawDouble(next + 0.25);
        out.rawDouble(-1.0);
        break;
      case 'T':
        out.bitShort(2);
        out.rawChar(static_cast<std::uint8_t>('A' + next % 26));
        out.rawChar(0);
        break;
      default:
        out.handle(HandleReference{5, 2, next});
    }
    ++next;
  };
  for (const char code : codes) {
    if (code >= '0' && code <= '9') {
      count = count * 10 + static_cast<unsigned>(code - '0');
      continue;
    }
    for (unsigned i = std::max(count, 1U); i != 0; --i) {
      field(code);
    }
    count = 0;
  }
  return out.bytes();
}

// The order of the fields of R2000, without names.
constexpr std::string_view kMade =
    "4D4T2LH20B27S21DT8LS6HD3P2QD3PHHSH6P3P2QD3PHHSH6P2T9D6B3S9DBS4B14S2B4SBS5H2S13H2S2T3HL2S2T5H";

TEST(HeaderSection, WhatIsNoSectionIsNotRead) {
  HeaderSection section;
  EXPECT_FALSE(section.read("", Version::R2000, latin()));
  EXPECT_FALSE(section.read(std::string(100, '\0'), Version::R2018, latin()));
  EXPECT_FALSE(section.isExact());
  EXPECT_EQ(section.write(), "");
  EXPECT_FALSE(section.set("$INSUNITS", "70\n4\n", factsOf(Version::R2018)));
  EXPECT_FALSE(section.setSeed(5));
}

TEST(HeaderSection, AMadeSectionIsReadFieldByField) {
  HeaderSection section;
  const std::string made = madeSection(kMade);
  ASSERT_TRUE(section.read(made, Version::R2000, latin()));
  EXPECT_TRUE(section.isExact());
  EXPECT_EQ(section.write(), made);
  const auto variables = variablesOf(section, factsOf(Version::R2000));
  EXPECT_EQ(variables.at("$DIMASO"), "70\n0\n");  // field 12
  EXPECT_EQ(variables.at("$DIMSHO"), "70\n1\n");  // field 13
  EXPECT_EQ(variables.at("$TREEDEPTH"), "70\n33\n");
  EXPECT_EQ(variables.at("$EXTMIN"), "10\n117.25\n20\n1.0\n30\n0.0\n");
  EXPECT_EQ(variables.at("$ACADVER"), "1\nAC1015\n");
}

using HeaderSamples = test::SampleTest;

TEST_F(HeaderSamples, ComeBackBitForBit) {
  for (const auto& path : samples()) {
    const test::SampleSections sample = test::sectionsOf(path);
    SCOPED_TRACE(path.filename());
    HeaderSection section;
    ASSERT_TRUE(section.read(sample.header, sample.version, latin()));
    EXPECT_TRUE(section.isExact());
    EXPECT_EQ(section.write(), sample.header);
    EXPECT_EQ(section.handles().modelSpace, 0x1FU);
    EXPECT_EQ(section.handles().blockControl, 1U);
    EXPECT_EQ(section.handles().namedObjects, 0xCU);
    EXPECT_NE(section.handles().seed, 0U);
  }
}

// --- twins ----------------------------------------------------------------------------------

/// Variables whose value DWG does not have, or had another one when it was saved.
bool mayDiffer(const std::string& name, const std::string& file) {
  static const std::set<std::string> kElsewhere = {
      "$ACADMAINTVER", "$LASTSAVEDBY",                 // not in this section
      "$TDCREATE",     "$TDUPDATE",                    // local times
      "$TDUUPDATE",    "$TDINDWG",     "$TDUSRTIMER",  // seconds went by
      "$HANDSEED",     "$VERSIONGUID",                 // made anew by each saving
  };
  if (kElsewhere.contains(name)) {
    return true;
  }
  // The nearest index to a true colour: there are several measures of nearness.
  if (name == "$CECOLOR") {
    return file.find("AC1015") == std::string::npos;
  }
  // Null in DWG; what saved the DXF filled them in.
  return file.find("dynamic") != std::string::npos &&
         (name == "$INTERFEREOBJVS" || name == "$INTERFEREVPVS");
}

bool isSameValue(const dxf::TagView& mine, const dxf::TagView& twin, const dxf::Format& format,
                 const dxf::Format& twinFormat) {
  if (mine.code != twin.code) {
    return false;
  }
  switch (dxf::tagType(mine.code)) {
    case dxf::TagType::Double: {
      // The twin has 16 digits, or fewer.
      const double value = dxf::doubleOf(mine, format);
      const double expected = dxf::doubleOf(twin, twinFormat);
      return std::fabs(value - expected) <= 1e-15 * std::fabs(expected);
    }
    case dxf::TagType::Text:
      return dxf::textOf(mine, format) == dxf::textOf(twin, twinFormat);
    case dxf::TagType::Handle:
      return dxf::handleOf(mine, format) == dxf::handleOf(twin, twinFormat);
    default:
      return dxf::integerOf(mine, format) == dxf::integerOf(twin, twinFormat);
  }
}

DrawingFacts factsOf(const test::Twin& twin) {
  static const std::set<std::string> kNamed = {"LAYER",    "LTYPE", "STYLE",
                                               "DIMSTYLE", "UCS",   "BLOCK_RECORD"};
  DrawingFacts facts = factsOf(twin.format.version);
  for (const test::TwinRecord& record : twin.records) {
    if (kNamed.contains(record.kind) && record.handle != 0) {
      facts.name(record.kind, record.handle, record.name);
    }
    // Multiline styles go by the names that their dictionary has for them.
    std::wstring key;
    dxf::TagCursor cursor(record.tags, twin.format);
    for (dxf::TagView tag; record.kind == "DICTIONARY" && cursor.next(tag);) {
      if (tag.code == 3) {
        key = dxf::textOf(tag, twin.format);
      } else if (tag.code == 350) {
        facts.name("MLINESTYLE", dxf::handleOf(tag, twin.format), key);
      }
    }
  }
  return facts;
}

class HeaderTwins : public test::TwinTest {
 protected:
  void SetUp() override {
    TwinTest::SetUp();
    if (!IsSkipped()) {
      facts = factsOf(twin);
      ASSERT_TRUE(section.read(sample.header, sample.version, latin()));
    }
  }

  DrawingFacts facts;
  HeaderSection section;
};

INSTANTIATE_TEST_SUITE_P(Samples, HeaderTwins, ::testing::ValuesIn(test::twins()));

TEST_P(HeaderTwins, SayTheSameInTheSameOrder) {
  std::vector<std::string> order;
  const auto mine = variablesOf(section, facts, &order);
  std::vector<std::string> expected;
  for (const std::string& name : twin.order) {
    if (mine.contains(name) || !mayDiffer(name, GetParam().first)) {
      expected.push_back(name);
    }
  }
  EXPECT_THAT(order, ::testing::ElementsAreArray(expected));
  for (const auto& [name, tags] : mine) {
    if (mayDiffer(name, GetParam().first)) {
      continue;
    }
    SCOPED_TRACE(name);
    const std::string& others = twin.variables[name];
    dxf::TagCursor left(tags, facts.format);
    dxf::TagCursor right(others, twin.format);
    dxf::TagView one;
    dxf::TagView other;
    while (left.next(one)) {
      ASSERT_TRUE(right.next(other));
      EXPECT_TRUE(isSameValue(one, other, facts.format, twin.format)) << tags << others;
    }
    EXPECT_FALSE(right.next(other));
  }
}

TEST_P(HeaderTwins, AVariableThatIsGivenItsOwnValueChangesNoBit) {
  // A true colour's nearest index is another colour, and $XCLIPFRAME has more values in DWG.
  const std::set<std::string> elsewhere = {"$ACADVER",     "$ACADMAINTVER", "$DWGCODEPAGE",
                                           "$LASTSAVEDBY", "$MEASUREMENT",  "$TDCREATE",
                                           "$TDUPDATE"};
  for (const auto& [name, tags] : variablesOf(section, facts)) {
    EXPECT_EQ(section.set(name, tags, facts), !elsewhere.contains(name)) << name;
    if (name != "$CECOLOR" && name != "$XCLIPFRAME") {
      EXPECT_EQ(section.write(), sample.header) << name;
    }
    ASSERT_TRUE(section.read(sample.header, sample.version, latin()));
  }
}

TEST_P(HeaderTwins, AChangeIsReadAgainAndNothingElseChanges) {
  const auto before = variablesOf(section, facts);
  const std::vector<std::pair<std::string, std::string>> changes = {
      {"$INSUNITS", "70\n4\n"},
      {"$LTSCALE", "40\n2.5\n"},
      {"$EXTMAX", "10\n1.0\n20\n2.0\n30\n3.0\n"},
      {"$LIMMIN", "10\n-7.0\n20\n0.0\n"},
      {"$MENU", "1\nanother menu\n"},
      {"$CELWEIGHT", "370\n25\n"},
      {"$LWDISPLAY", "290\n1\n"},
      {"$TDUSRTIMER", "40\n1.5\n"},
      {"$CECOLOR", "62\n3\n"},
      {"$DIMBLK", "1\n\n"},
      {"$CELTYPE", "6\nByBlock\n"},
      {"$ANGBASE", "50\n90.0\n"},
  };
  for (const auto& [name, tags] : changes) {
    ASSERT_TRUE(section.set(name, tags, facts)) << name;
  }
  ASSERT_TRUE(section.setSeed(0x123456));
  HeaderSection again;
  ASSERT_TRUE(again.read(section.write(), sample.version, latin()));
  EXPECT_TRUE(again.isExact());
  EXPECT_EQ(again.handles().seed, 0x123456U);
  auto expected = before;
  for (const auto& [name, tags] : changes) {
    expected[name] = tags;
  }
  expected["$HANDSEED"] = "5\n123456\n";
  EXPECT_EQ(variablesOf(again, facts), expected);
}

TEST_P(HeaderTwins, WhatDwgCannotHaveIsRefused) {
  EXPECT_FALSE(section.set("$ACADVER", "1\nAC1009\n", facts));
  EXPECT_FALSE(section.set("$MEASUREMENT", "70\n1\n", facts));
  EXPECT_FALSE(section.set("$NOSUCHNAME", "70\n1\n", facts));
  EXPECT_FALSE(section.set("$CLAYER", "8\nno such layer\n", facts));
  EXPECT_FALSE(section.set("$DIMBLK", "1\nno such block\n", facts));
  EXPECT_FALSE(section.set("$ORTHOMODE", "70\n2\n", facts));
  EXPECT_FALSE(section.set("$INSUNITS", "70\n40000\n", facts));
  EXPECT_FALSE(section.set("$INSUNITS", "", facts));
  EXPECT_FALSE(section.set("$INSUNITS", "70\n4\n70\n5\n", facts));
  EXPECT_FALSE(section.set("$LTSCALE", "40\nnan\n", facts));
  EXPECT_FALSE(section.set("$ENDCAPS", "280\n4\n", facts));
  EXPECT_FALSE(section.set("$CECOLOR", "62\n300\n", facts));
  EXPECT_EQ(section.write(), sample.header);
}

TEST_P(HeaderTwins, ADamagedSectionDoesNoHarm) {
  std::mt19937 random(20240501);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same every time
  for (std::size_t size = 0; size < sample.header.size(); size += 5) {
    HeaderSection cut;
    cut.read(std::string_view(sample.header).substr(0, size), sample.version, latin());
    variablesOf(cut, facts);
  }
  for (int i = 0; i < 500; ++i) {
    std::string damaged = sample.header;
    for (int n = 0; n < 3; ++n) {
      damaged[random() % damaged.size()] = static_cast<char>(random());
    }
    HeaderSection odd;
    if (odd.read(damaged, sample.version, latin())) {
      variablesOf(odd, facts);
    }
    if (odd.isExact()) {
      EXPECT_EQ(odd.write(), damaged);
    }
  }
}

// --- samples without a twin of their version --------------------------------------------------

using HeaderCousins = test::TwinTest;

INSTANTIATE_TEST_SUITE_P(Samples, HeaderCousins,
                         ::testing::Values(std::pair{"acadsharp_sample_AC1014.dwg",
                                                     "acadsharp_sample_AC1009_ascii.dxf"},
                                           std::pair{"acadsharp_sample_AC1024.dwg",
                                                     "acadsharp_sample_AC1027_ascii.dxf"}));

TEST_P(HeaderCousins, HaveTheSameNumbers) {
  HeaderSection section;
  ASSERT_TRUE(section.read(sample.header, sample.version, latin()));
  const DrawingFacts facts = factsOf(sample.version);
  std::size_t compared = 0;
  for (const auto& [name, tags] : variablesOf(section, facts)) {
    // How many viewports are active was changed for R14.
    if (mayDiffer(name, GetParam().first) || name == "$MAXACTVP" ||
        !twin.variables.contains(name)) {
      continue;
    }
    dxf::TagCursor left(tags, facts.format);
    dxf::TagCursor right(twin.variables[name], twin.format);
    dxf::TagView one;
    dxf::TagView other;
    while (left.next(one) && dxf::tagType(one.code) != dxf::TagType::Text) {
      ASSERT_TRUE(right.next(other));
      EXPECT_TRUE(isSameValue(one, other, facts.format, twin.format)) << name;
      ++compared;
    }
  }
  EXPECT_GT(compared, 100U);
}

}  // namespace
}  // namespace quoin::dwg
