// Chinese texts and numbers of any size go through a DWG file as they are.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <limits>

#include "dbmtext.h"
#include "dbsymtb.h"
#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"
#include "embedded/dwg/container/DwgFile.h"
#include "support/Drawings.h"
#include "support/SharedData.h"

namespace quoin::dwg {
namespace {

constexpr std::uint16_t kGbk = 39;  // as the file header has it

class OddValues : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const std::string name = std::string("acadsharp_sample_") + GetParam() + ".dwg";
    for (const auto& path : test::sharedFiles(".dwg")) {
      if (path.filename() == name) {
        western = test::bytesOf(path);
      }
    }
    if (western.empty()) {
      GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
    }
  }

  bool isUnicode() const { return std::string_view(GetParam()) >= "AC1021"; }

  /// The drawing with texts in GBK, as far as its version has a code page.
  std::string inGbk() const {
    constexpr std::size_t kCodePage = 0x13;
    constexpr std::size_t kCount = 0x15;
    constexpr std::size_t kLocators = 0x19;
    std::string bytes = western;
    container::replaceNumber(bytes, kCodePage, kGbk);
    if (std::string_view(GetParam()) == "AC1015") {
      const std::size_t sum =
          kLocators + std::size_t{9} * container::numberAt<std::uint32_t>(bytes, kCount);
      container::replaceNumber(
          bytes, sum,
          container::crc16(container::kCrc16Seed, std::string_view(bytes).substr(0, sum)));
    }
    return bytes;
  }

  /// The first entity of this kind in model space.
  static AcDbObjectId firstOf(const test::Drawing& drawing, const wchar_t* kind) {
    for (const AcDbObjectId& id : test::entitiesOf(drawing.db())) {
      if (hostx::kindName(id) == kind) {
        return id;
      }
    }
    ADD_FAILURE() << "no such entity";
    return {};
  }

  static void addLayer(const test::Drawing& drawing, const std::wstring& name) {
    const AcDbObjectPointer<AcDbLayerTable> layers(drawing.db().layerTableId(), AcDb::kForWrite);
    AcDbLayerTableRecord* const layer = new AcDbLayerTableRecord;
    EXPECT_EQ(layer->setName(name.c_str()), Acad::eOk);
    EXPECT_EQ(layers->add(layer), Acad::eOk);
    layer->close();
  }

  /// Writes the text everywhere, and expects it there in the new file.
  std::string written(const std::string& bytes, const std::wstring& text) {
    const test::Drawing drawing(bytes, "plan.dwg");
    EXPECT_EQ(drawing.status, Acad::eOk);
    const AcDbObjectId single = firstOf(drawing, L"TEXT");
    const AcDbObjectId several = firstOf(drawing, L"MTEXT");
    addLayer(drawing, text);
    {
      const AcDbObjectPointer<AcDbText> line(single, AcDb::kForWrite);
      EXPECT_EQ(line->setTextString(text.c_str()), Acad::eOk);
      EXPECT_EQ(line->setLayer(text.c_str()), Acad::eOk);
      const AcDbObjectPointer<AcDbMText> lines(several, AcDb::kForWrite);
      EXPECT_EQ(lines->setContents((text + L"\\P" + text).c_str()), Acad::eOk);
    }
    record = static_cast<Adesk::UInt64>(single.handle());
    const std::string result = drawing.saved("written.dwg");

    const test::Drawing again(result, "again.dwg");
    EXPECT_EQ(again.status, Acad::eOk);
    const AcDbObjectPointer<AcDbText> line(again.id(record), AcDb::kForRead);
    EXPECT_EQ(test::taken(line->textString()), text);
    EXPECT_EQ(test::taken(line->layer()), text);
    const AcDbObjectPointer<AcDbMText> lines(again.id(static_cast<Adesk::UInt64>(several.handle())),
                                             AcDb::kForRead);
    EXPECT_EQ(test::taken(lines->contents()), text + L"\\P" + text);
    return result;
  }

  /// Whether these bytes stand in a record, at any bit.
  static bool stands(std::string_view wanted, std::string_view data) {
    for (std::size_t shift = 0; shift < 8; ++shift) {
      std::string shifted;
      for (std::size_t i = 0; i + 1 < data.size(); ++i) {
        const auto high = static_cast<unsigned char>(data[i]);
        const auto low = static_cast<unsigned char>(data[i + 1]);
        const unsigned pair = unsigned{high} << 8 | low;
        shifted += static_cast<char>(pair >> (8 - shift));
      }
      if (shifted.find(wanted) != std::string::npos) {
        return true;
      }
    }
    return false;
  }

  std::string western;
  std::uint64_t record = 0;
};

TEST_P(OddValues, ChineseTextsStandInTheCodePageOrUtf16) {
  const std::string bytes = written(inGbk(), L"\u5899\u4F53");
  const std::string_view inFile =
      isUnicode() ? std::string_view("\x99\x58\x53\x4F") : std::string_view("\xC7\xBD\xCC\xE5");
  EXPECT_TRUE(stands(inFile, DwgFile(bytes).find(record)->data));
}

TEST_P(OddValues, WhatTheCodePageLacksIsEscaped) {
  const std::string bytes = written(western, L"\u5899 \u00FE");
  EXPECT_EQ(stands("\\U+5899", DwgFile(bytes).find(record)->data), !isUnicode());
  // A letter that GBK has not, and one that takes a pair in UTF-16.
  written(inGbk(), L"\u5899 \u00FE \U00020BB7");
}

TEST_P(OddValues, NumbersOfAnySizeComeBackBitForBit) {
  constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
  const AcGePoint3d points[][2] = {{{1e9, -1e9, 1e-300}, {1e9 + 0.125, 0.1, -1e-300}},
                                   {{-0.0, 1e300, kSmallest}, {0.0, -1e300, -0.0}},
                                   {{-0.0, -0.0, -0.0}, {1.0, 1.0, 1.0}}};
  const auto bitsOf = [](const AcGePoint3d& point) {
    return std::array{std::bit_cast<std::uint64_t>(point.x), std::bit_cast<std::uint64_t>(point.y),
                      std::bit_cast<std::uint64_t>(point.z)};
  };
  for (const auto& [start, end] : points) {
    const test::Drawing drawing(western, "plan.dwg");
    const AcDbObjectId changed = firstOf(drawing, L"LINE");
    {
      const AcDbObjectPointer<AcDbLine> line(changed, AcDb::kForWrite);
      EXPECT_EQ(line->setStartPoint(start), Acad::eOk);
      EXPECT_EQ(line->setEndPoint(end), Acad::eOk);
    }
    const AcDbObjectId added = test::append(drawing.db(), new AcDbLine(start, end));
    const test::Drawing again(drawing.saved("saved.dwg"), "again.dwg");
    for (const AcDbObjectId& id : {changed, added}) {
      const AcDbObjectPointer<AcDbLine> line(again.id(static_cast<Adesk::UInt64>(id.handle())),
                                             AcDb::kForRead);
      ASSERT_EQ(line.openStatus(), Acad::eOk);
      EXPECT_EQ(bitsOf(line->startPoint()), bitsOf(start));
      EXPECT_EQ(bitsOf(line->endPoint()), bitsOf(end));
    }
  }
}

TEST_P(OddValues, ANumberThatIsNoneIsRefusedOrKept) {
  const double kNone[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity()};
  for (const double none : kNone) {
    const test::Drawing drawing(western, "plan.dwg");
    const AcDbObjectId id = firstOf(drawing, L"LINE");
    {
      const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
      line->setStartPoint({none, 0.0, 0.0});
    }
    const std::string file = drawing.folder.file("saved.dwg");
    if (drawing.db().saveAs(os::fromUtf8(file).c_str()) == Acad::eOk) {
      const test::Drawing again(drawing.folder.get("saved.dwg"), "again.dwg");
      EXPECT_EQ(again.status, Acad::eOk);
    } else {
      EXPECT_FALSE(drawing.folder.names().contains("saved.dwg"));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Versions, OddValues,
                         testing::Values("AC1015", "AC1018", "AC1024", "AC1027", "AC1032"),
                         [](const auto& version) { return std::string(version.param); });

}  // namespace
}  // namespace quoin::dwg
