#include "embedded/dwg/container/FileHead.h"

#include <gtest/gtest.h>

#include "dwg/MadeDwg.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg::container {
namespace {

TEST(FileHead, EveryCodePageIsOneThatTextCanBeReadIn) {
  for (unsigned number = 0; number < 60; ++number) {
    EXPECT_TRUE(os::CodePage::isKnown(codePageText(number))) << number << codePageText(number);
  }
  EXPECT_EQ(codePageText(30), "ANSI_1252");
  EXPECT_EQ(codePageText(39), "ANSI_936");
  EXPECT_EQ(codePageText(12), "DOS850");
  EXPECT_EQ(codePageText(9999), "ANSI_1252");
}

TEST(FileHead, TellsWhatTheFirstBytesSay) {
  std::string file = test::madePagedDwg();
  file[0x0B] = 7;
  file[0x13] = 39;
  file[0x18] = kIsSigned;
  const FileHead head = readFileHead(file);
  EXPECT_EQ(head.version, dxf::Version::R2018);
  EXPECT_EQ(head.maintenance, 7U);
  EXPECT_EQ(codePageText(head.codePage), "ANSI_936");
  EXPECT_EQ(head.securityFlags, kIsSigned);
}

TEST(FileHead, VersionsThatAreNotReadHaveNoName) {
  for (const std::string_view mark : {"AC1009", "AC1.50", "AC1033", "AC1013"}) {
    std::string file = test::madeFlatDwg();
    file.replace(0, 6, mark);
    EXPECT_EQ(readFileHead(file).version, dxf::Version::Unknown) << mark;
  }
}

}  // namespace
}  // namespace quoin::dwg::container
