#include "embedded/dwg/container/DwgFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dwg/MadeDwg.h"

namespace quoin::dwg {
namespace {

using dxf::FileError;
using dxf::Version;
using test::MadeContents;
using testing::HasSubstr;

FileChanges changeOf(std::uint64_t handle, const std::string& data) {
  FileChanges changes;
  changes.records.push_back({handle, data, 0, false});
  return changes;
}

std::string messageOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const FileError& error) {
    return error.message();
  }
  return "no error";
}

TEST(DwgFile, IsRecognisedByItsVersionMark) {
  EXPECT_TRUE(DwgFile::recognises("AC1032\0\0"));
  EXPECT_TRUE(DwgFile::recognises("AC2.10"));
  EXPECT_FALSE(DwgFile::recognises("AC1032 is a version"));
  EXPECT_FALSE(DwgFile::recognises("  0\nSECTION"));
  EXPECT_FALSE(DwgFile::recognises("AC"));
}

TEST(DwgFile, GivesTheRecordsOfEveryVersion) {
  for (const std::string& bytes : test::madeDwgs()) {
    SCOPED_TRACE(bytes.substr(0, 6));
    const DwgFile file(bytes);
    EXPECT_TRUE(file.warnings().empty());
    EXPECT_EQ(file.whyReadOnly(), "");
    EXPECT_EQ(dxf::acadVerText(file.version()), bytes.substr(0, 6));
    EXPECT_EQ(file.codePage(), "ANSI_1252");
    EXPECT_EQ(file.headerVariables(), "header variables");
    EXPECT_EQ(file.classes(), "classes");
    ASSERT_EQ(file.records().size(), 3U);
    EXPECT_EQ(file.records()[1].handle, 0x11U);
    EXPECT_EQ(file.records()[1].data, "second");
    EXPECT_EQ(file.records()[1].handleBits, file.version() >= Version::R2010 ? 8U : 0U);
    EXPECT_EQ(file.find(0x2F), &file.records()[2]);
    EXPECT_EQ(file.find(0x12), nullptr);
    EXPECT_EQ(file.savedBy(), file.version() > Version::R2000 ? "Quoin 1.2" : "");
  }
}

TEST(DwgFile, WithoutChangesIsWrittenAsItWas) {
  for (const std::string& bytes : test::madeDwgs()) {
    EXPECT_EQ(DwgFile(bytes).written({}), bytes);
  }
}

TEST(DwgFile, ARecordOfTheSameSizeStaysWhereItIs) {
  for (const std::string& bytes : test::madeDwgs()) {
    SCOPED_TRACE(bytes.substr(0, 6));
    const DwgFile file(bytes);
    const DwgFile fresh(file.written({{{0x11, "SECOND", file.records()[1].handleBits, false}}}));
    EXPECT_EQ(fresh.find(0x11)->data, "SECOND");
    EXPECT_EQ(fresh.find(0x10)->data, "first record");
    EXPECT_EQ(fresh.section(SectionName::Handles), file.section(SectionName::Handles));
  }
}

TEST(DwgFile, RecordsGrowComeAndGo) {
  for (const std::string& bytes : test::madeDwgs()) {
    SCOPED_TRACE(bytes.substr(0, 6));
    FileChanges changes;
    changes.records = {{0x1000, std::string(70000, 'n'), 0, false},
                       {0x10, "", 0, true},
                       {0x2F, "the third one, longer", 0, false},
                       {0x1, "small handle", 0, false}};
    const DwgFile fresh(DwgFile(bytes).written(changes));
    EXPECT_TRUE(fresh.warnings().empty());
    ASSERT_EQ(fresh.records().size(), 4U);
    EXPECT_EQ(fresh.records()[0].data, "small handle");
    EXPECT_EQ(fresh.find(0x10), nullptr);
    EXPECT_EQ(fresh.find(0x11)->data, "second");
    EXPECT_EQ(fresh.find(0x2F)->data, "the third one, longer");
    EXPECT_EQ(fresh.find(0x1000)->data, std::string(70000, 'n'));
    EXPECT_EQ(fresh.headerVariables(), "header variables");
  }
}

TEST(DwgFile, HeaderVariablesAndClassesAreReplaced) {
  for (const std::string& bytes : test::madeDwgs()) {
    SCOPED_TRACE(bytes.substr(0, 6));
    const DwgFile file(bytes);
    FileChanges changes;
    changes.headerVariables = "HEADER VARIABLES";  // of the same size
    changes.classes = std::string(5000, 'c');
    const DwgFile fresh(file.written(changes));
    EXPECT_EQ(fresh.headerVariables(), *changes.headerVariables);
    EXPECT_EQ(fresh.classes(), *changes.classes);
    EXPECT_EQ(fresh.records().size(), 3U);
    const DwgFile back(fresh.written({{}, "header variables", "classes"}));
    EXPECT_EQ(back.section(SectionName::Classes), file.section(SectionName::Classes));
    EXPECT_EQ(back.section(SectionName::Header), file.section(SectionName::Header));
  }
}

TEST(DwgFile, ManyChangesOneAfterTheOtherDoNotLetMapsPileUp) {
  for (const std::string& bytes : test::madeDwgs(MadeContents::numbered(4000))) {
    SCOPED_TRACE(bytes.substr(0, 6));
    std::string now = DwgFile(bytes).written(changeOf(7, "grows to a new place at first"));
    const std::size_t size = now.size();
    for (std::size_t i = 0; i < 20; ++i) {
      now = DwgFile(now).written(changeOf(7, "grows to a new place, time " + std::string(i, 'x')));
    }
    // Twenty records of some 50 bytes; twenty maps would take 200 kB.
    EXPECT_LT(now.size(), size + 3000);
    EXPECT_EQ(DwgFile(now).records().size(), 4000U);
  }
}

TEST(DwgFile, AChangeTouchesThePagesOfThatRecordAlone) {
  const std::string bytes = test::madePagedDwg(MadeContents::numbered(4000));
  const DwgFile file(bytes);
  std::string data(file.find(9)->data);
  data[7] = '?';
  const std::string fresh = file.written({{{9, data, 8, false}}});
  // All pages but one of the objects, the object map's and the maps keep bytes and place.
  std::size_t same = 0;
  for (std::size_t i = 0; i + 32 <= std::min(bytes.size(), fresh.size()); i += 32) {
    same += bytes.compare(i, 32, fresh, i, 32) == 0 ? 32 : 0;
  }
  EXPECT_GT(same, bytes.size() * 3 / 4);
}

TEST(DwgFile, ChangesThatCannotBeAreRefused) {
  for (const std::string& bytes : test::madeDwgs()) {
    const DwgFile file(bytes, "plan.dwg");
    const auto refused = [&](const FileChanges& changes) {
      return messageOf([&] { file.written(changes); });
    };
    EXPECT_EQ(refused(changeOf(0, "x")), "plan.dwg: record 0: a record needs a handle");
    EXPECT_EQ(refused({{{0x10, "x", 0, false}, {0x10, "y", 0, false}}}),
              "plan.dwg: record 10: it is changed twice");
    EXPECT_EQ(refused({{{0xAB, "", 0, true}}}),
              "plan.dwg: record AB: it is erased, and the file has none");
    EXPECT_THAT(refused(changeOf(0x10, "")), HasSubstr("no data"));
    EXPECT_THAT(refused({{{0x10, "x", 9, false}}}), HasSubstr("no data"));
  }
}

TEST(DwgFile, ADamagedRecordIsReadAndKeepsTheFileFromBeingWritten) {
  for (const std::string& bytes : {test::madeFlatDwg(), test::madeFlatDwg({}, "AC1015", false)}) {
    std::string damaged = bytes;
    damaged[bytes.find("second")] = 'S';
    const DwgFile file(damaged, "plan.dwg");
    EXPECT_EQ(file.records().size(), 3U);
    EXPECT_EQ(file.find(0x11)->data, "Second");
    ASSERT_EQ(file.warnings().size(), 1U);
    EXPECT_THAT(file.warnings()[0].message(), HasSubstr("record 11"));
    EXPECT_EQ(file.written({}), damaged);
    EXPECT_THAT(messageOf([&] { file.written(changeOf(0x10, "x")); }),
                HasSubstr("the checksum is wrong"));
  }
}

TEST(DwgFile, EveryDamagedByteOfAPagedFileIsNoticedOrStandsInPadding) {
  const std::string bytes = test::madePagedDwg();
  const DwgFile whole(bytes);
  std::size_t unnoticed = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string damaged = bytes;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x20);
    try {
      const DwgFile file(damaged);
      if (file.whyReadOnly().empty()) {
        ++unnoticed;
        ASSERT_EQ(file.headerVariables(), whole.headerVariables()) << i;
        ASSERT_EQ(file.find(0x11)->data, "second") << i;
      }
    } catch (const FileError&) {
      // Noticed.
    }
  }
  // The first 0x80 bytes, what is behind the header up to 0x100, and up to 31 behind each page.
  EXPECT_LT(unnoticed, 0x80U + 0x14 + 0x14 + 9 * 31);
}

TEST(DwgFile, ACutOffFileIsReadAsFarAsItGoesOrRefused) {
  for (const std::string& bytes : test::madeDwgs()) {
    for (std::size_t size = 6; size < bytes.size(); ++size) {
      try {
        const DwgFile file(bytes.substr(0, size));
        // Up to R2000 the second header may be missing as a whole.
        EXPECT_TRUE(!file.whyReadOnly().empty() || file.records().size() == 3) << size;
        EXPECT_TRUE(!file.whyReadOnly().empty() || file.version() == Version::R2000) << size;
      } catch (const FileError& error) {
        EXPECT_FALSE(error.message().empty());
      }
    }
  }
}

TEST(DwgFile, RecordsThatLieOneOnTheOtherAreDamage) {
  MadeContents contents;
  const std::string inner = container::framedRecord("inside", 0, false);
  contents.records = {{1, "outside" + inner}, {2, "other"}};
  std::string bytes = test::madeFlatDwg(contents, "AC1015", false);
  const std::string map(DwgFile(bytes).section(SectionName::Handles));
  const std::size_t mapPlace = bytes.find(map);
  const auto inside = static_cast<std::uint64_t>(bytes.find(inner));
  const std::string moved = container::objectMapOf({{1, inside - 9}, {2, inside}});
  ASSERT_EQ(moved.size(), map.size());
  bytes.replace(mapPlace, moved.size(), moved);
  const DwgFile file(bytes);
  EXPECT_EQ(file.records().size(), 2U);
  EXPECT_THAT(file.whyReadOnly(), HasSubstr("one on the other"));
}

TEST(DwgFile, EncryptedDrawingsAreRefusedWithThatWord) {
  std::string bytes = test::madePagedDwg();
  bytes[0x18] = 1;
  EXPECT_THAT(messageOf([&] { const DwgFile file(bytes); }), HasSubstr("encrypted"));
}

TEST(DwgFile, ASignedDrawingIsWrittenWithAWarning) {
  std::string bytes = test::madePagedDwg();
  bytes[0x18] = 0x10;
  const DwgFile file(bytes);
  ASSERT_EQ(file.warnings().size(), 1U);
  EXPECT_THAT(file.warnings()[0].message(), HasSubstr("signed"));
  EXPECT_EQ(DwgFile(file.written(changeOf(0x10, "x"))).find(0x10)->data, "x");
}

TEST(DwgFile, OtherVersionsAreRefusedWithTheirMark) {
  std::string bytes = test::madeFlatDwg();
  bytes.replace(0, 6, "AC1009");
  EXPECT_THAT(messageOf([&] { const DwgFile file(bytes); }), HasSubstr("(AC1009)"));
}

TEST(DwgFile, R13IsReadAndNotWritten) {
  const DwgFile file(test::madeFlatDwg({}, "AC1012"));
  EXPECT_EQ(file.records().size(), 3U);
  EXPECT_EQ(file.whyReadOnly(), "DWG drawings of R13 are read, and not written");
  EXPECT_THAT(messageOf([&] { file.written(changeOf(0x10, "x")); }), HasSubstr("R13"));
}

TEST(DwgFile, TheSecondHeaderNamesTheNewMapAndHandle) {
  const std::string bytes = DwgFile(test::madeFlatDwg()).written(changeOf(0x4567, "new"));
  const auto place = container::findSecondHeader(bytes);
  ASSERT_TRUE(place.has_value());
  const container::SecondHeader header = container::readSecondHeader(bytes, *place);
  const DwgFile file(bytes);
  EXPECT_EQ(bytes.substr(header.sections[2].place, header.sections[2].size),
            file.section(SectionName::Handles));
  EXPECT_EQ(header.handles[0].bytes, "\x45\x68");
  EXPECT_EQ(bytes.find(bytes.substr(*place, 16)), *place) << "there is one second header";
}

TEST(DwgFile, BytesBehindTheEndStay) {
  const std::string bytes = test::madePagedDwg() + "whatever that is";
  const std::string fresh = DwgFile(bytes).written({{{0x10, "x", 0, false}}});
  EXPECT_TRUE(fresh.ends_with("whatever that is"));
}

TEST(DwgFile, AFileThatClaimsToUnpackToFarMoreThanItsSizeIsRefused) {
  MadeContents contents;
  contents.templateSize = 100000;
  EXPECT_EQ(DwgFile(test::madePagedDwg(contents)).section(SectionName::Template).size(), 100000U);
  for (const std::uint64_t size : {std::uint64_t{1} << 31, ~std::uint64_t{0}}) {
    contents.templateSize = size;
    const std::string bytes = test::madePagedDwg(contents);
    EXPECT_THAT(messageOf([&] { const DwgFile file(bytes); }), HasSubstr("far more"));
  }
}

}  // namespace
}  // namespace quoin::dwg
