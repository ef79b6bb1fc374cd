// Colours, and how they are copied.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(Colours, ThePaletteHasItsKnownColours) {
  EXPECT_EQ(AcCmEntityColor::lookUpRGB(1), 0xFF0000U);
  EXPECT_EQ(AcCmEntityColor::lookUpRGB(7), 0xFFFFFFU);
  EXPECT_EQ(AcCmEntityColor::lookUpRGB(30), 0xFF7F00U);
  EXPECT_EQ(AcCmEntityColor::lookUpRGB(43), 0xA59152U);
  EXPECT_EQ(AcCmEntityColor::lookUpRGB(150), 0x007FFFU);
  EXPECT_EQ(AcCmEntityColor::lookUpRGB(255), 0xFFFFFFU);
  EXPECT_EQ(AcCmEntityColor::lookUpRGB(256), 0U);
}

TEST(Colours, EveryPaletteColourIsItsOwnNearest) {
  for (Adesk::UInt16 index = 1; index < 256; ++index) {
    AcCmEntityColor color;
    ASSERT_EQ(color.setColorIndex(index), Acad::eOk);
    const Adesk::UInt8 nearest =
        AcCmEntityColor::lookUpACI(color.red(), color.green(), color.blue());
    EXPECT_EQ(AcCmEntityColor::lookUpRGB(nearest), AcCmEntityColor::lookUpRGB(index));
    EXPECT_LE(nearest, index);
  }
}

TEST(Colours, IndicesAndMethodsGoTogether) {
  AcCmEntityColor color;
  EXPECT_TRUE(color.isByLayer());
  EXPECT_EQ(color.colorIndex(), 256);
  EXPECT_EQ(color.setColorIndex(0), Acad::eOk);
  EXPECT_TRUE(color.isByBlock());
  EXPECT_EQ(color.setColorIndex(5), Acad::eOk);
  EXPECT_EQ(color.blue(), 255);
  EXPECT_EQ(color.setColorIndex(300), Acad::eInvalidInput);
  EXPECT_EQ(color.colorIndex(), 5);
  EXPECT_EQ(color.setRGB(255, 0, 0), Acad::eOk);
  EXPECT_EQ(color.colorIndex(), 1);
  EXPECT_EQ(color.rgb(), 0xFF0000U);
}

TEST(TrueColors, AreCopiedWithTheIndexThatTheirWriterChose) {
  for (const char* color :
       {"62 30\n420 16711680\n", "420 16711680\n", "62 9\n420 1\n430 BOOK$Red\n"}) {
    const Drawing drawing(drawingOfR2007("0 LINE\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n" +
                                         std::string(color) +
                                         "100 AcDbLine\n10 1.5\n20 0.0\n11 2.0\n21 0.0\n"));
    auto* const other = new AcDbLine;
    {
      const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
      EXPECT_EQ(other->setPropertiesFrom(line.object()), Acad::eOk);
    }
    append(drawing.db(), other);
    const std::string saved = drawing.saved();
    const std::string tags = asciiDxf("8 Walls\n" + std::string(color) + "100 AcDbLine\n");
    const std::size_t first = saved.find(tags);
    ASSERT_NE(first, std::string::npos) << color;
    EXPECT_NE(saved.find(tags, first + 1), std::string::npos) << color;
  }
}

}  // namespace
}  // namespace quoin::test
