// Styles of multilines: elements in their order, flags, colours, and how releases have them.
#include "dbmstyle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "dbdict.h"
#include "support/Drawings.h"

namespace quoin::test {
namespace {

const double kPi = std::acos(-1.0);

AcCmColor byLayer() {
  AcCmColor color;
  color.setColorMethod(AcCmEntityColor::kByLayer);
  return color;
}

AcDbObjectId add(const Drawing& drawing, AcDbMlineStyle* style) {
  AcDbDictionary* styles = nullptr;
  EXPECT_EQ(drawing.db().getMLStyleDictionary(styles, AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(styles->setAt(style->name(), style, id), Acad::eOk);
  styles->close();
  style->close();
  return id;
}

/// "0.5 -0.5", the offsets of a style's elements.
std::string offsetsOf(const AcDbMlineStyle& style) {
  std::string text;
  for (int i = 0; i < style.numElements(); ++i) {
    double offset = 0.0;
    AcCmColor color;
    AcDbObjectId linetype;
    EXPECT_EQ(style.getElementAt(i, offset, color, linetype), Acad::eOk);
    char digits[32];
    std::snprintf(digits, sizeof digits, "%s%g", i == 0 ? "" : " ", offset);
    text += digits;
  }
  return text;
}

TEST(MlineStyles, ElementsStandFromTheGreatestOffsetDown) {
  AcDbMlineStyle style;
  int index = -1;
  EXPECT_EQ(style.addElement(index, -0.5, byLayer(), AcDbObjectId::kNull), Acad::eOk);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(style.addElement(index, 0.5, byLayer(), AcDbObjectId::kNull), Acad::eOk);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(style.addElement(index, 0.0, byLayer(), AcDbObjectId::kNull), Acad::eOk);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(style.addElement(index, -2.0, byLayer(), AcDbObjectId::kNull), Acad::eOk);
  EXPECT_EQ(index, 3);
  EXPECT_EQ(style.addElement(0.5, byLayer(), AcDbObjectId::kNull), Acad::eOk);
  EXPECT_EQ(offsetsOf(style), "0.5 0.5 0 -0.5 -2");
  EXPECT_EQ(style.removeElementAt(2), Acad::eOk);
  EXPECT_EQ(style.removeElementAt(4), Acad::eInvalidIndex);
  EXPECT_EQ(style.removeElementAt(-1), Acad::eInvalidIndex);
  EXPECT_EQ(offsetsOf(style), "0.5 0.5 -0.5 -2");
  EXPECT_EQ(style.initMlineStyle(), Acad::eOk);
  EXPECT_EQ(style.numElements(), 0);
}

TEST(MlineStyles, WrongElementsAreRefused) {
  AcDbMlineStyle style;
  int index = 7;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(style.addElement(index, nan, byLayer(), AcDbObjectId::kNull), Acad::eInvalidInput);
  EXPECT_EQ(index, -1);
  const Drawing drawing;
  EXPECT_EQ(style.addElement(0.0, byLayer(), drawing.db().layerZero()), Acad::eNotThatKindOfClass);
  for (int i = 0; i < AcDbMlineStyle::kMostElements; ++i) {
    EXPECT_EQ(style.addElement(i, byLayer(), AcDbObjectId::kNull), Acad::eOk);
  }
  EXPECT_EQ(style.addElement(99.0, byLayer(), AcDbObjectId::kNull), Acad::eInvalidInput);
  double offset = 0.0;
  AcCmColor color;
  AcDbObjectId linetype;
  EXPECT_EQ(style.getElementAt(16, offset, color, linetype), Acad::eInvalidIndex);
}

TEST(MlineStyles, FlagsAreBitsOfOneNumber) {
  struct Flag {
    bool (AcDbMlineStyle::*get)() const;
    Acad::ErrorStatus (AcDbMlineStyle::*set)(bool);
    int bit;
  };
  const Flag flags[] = {{&AcDbMlineStyle::filled, &AcDbMlineStyle::setFilled, 1},
                        {&AcDbMlineStyle::showMiters, &AcDbMlineStyle::setShowMiters, 2},
                        {&AcDbMlineStyle::startSquareCap, &AcDbMlineStyle::setStartSquareCap, 16},
                        {&AcDbMlineStyle::startInnerArcs, &AcDbMlineStyle::setStartInnerArcs, 32},
                        {&AcDbMlineStyle::startRoundCap, &AcDbMlineStyle::setStartRoundCap, 64},
                        {&AcDbMlineStyle::endSquareCap, &AcDbMlineStyle::setEndSquareCap, 256},
                        {&AcDbMlineStyle::endInnerArcs, &AcDbMlineStyle::setEndInnerArcs, 512},
                        {&AcDbMlineStyle::endRoundCap, &AcDbMlineStyle::setEndRoundCap, 1024}};
  for (const Flag& flag : flags) {
    const Drawing drawing;
    auto* const style = new AcDbMlineStyle;
    EXPECT_FALSE((style->*flag.get)());
    EXPECT_EQ((style->*flag.set)(true), Acad::eOk);
    EXPECT_TRUE((style->*flag.get)());
    style->setName(L"Brick");
    add(drawing, style);
    EXPECT_NE(drawing.saved().find(asciiDxf("2 Brick\n70 " + std::to_string(flag.bit) + "\n3\n")),
              std::string::npos)
        << flag.bit;
  }
}

TEST(MlineStyles, AnglesHaveLimits) {
  AcDbMlineStyle style;
  EXPECT_DOUBLE_EQ(style.startAngle(), kPi / 2);
  EXPECT_EQ(style.setStartAngle(kPi / 4), Acad::eOk);
  EXPECT_DOUBLE_EQ(style.startAngle(), kPi / 4);
  EXPECT_EQ(style.setEndAngle(10.0 * kPi / 180.0), Acad::eOk);
  EXPECT_EQ(style.setEndAngle(170.0 * kPi / 180.0), Acad::eOk);
  EXPECT_EQ(style.setEndAngle(9.9 * kPi / 180.0), Acad::eInvalidInput);
  EXPECT_EQ(style.setEndAngle(170.1 * kPi / 180.0), Acad::eInvalidInput);
  EXPECT_EQ(style.setEndAngle(std::nan("")), Acad::eInvalidInput);
  EXPECT_DOUBLE_EQ(style.endAngle(), 170.0 * kPi / 180.0);
}

TEST(MlineStyles, ColoursAndLinetypesComeBack) {
  const NoMisuse guard;
  const Drawing drawing;
  auto* const style = new AcDbMlineStyle;
  style->setName(L"Brick");
  style->setDescription(L"two leaves");
  AcCmColor red;
  red.setColorIndex(1);
  AcCmColor clay;
  clay.setRGB(180, 90, 60);
  EXPECT_EQ(style->setFillColor(clay), Acad::eOk);
  EXPECT_EQ(style->addElement(1.0, clay, drawing.db().continuousLinetype()), Acad::eOk);
  EXPECT_EQ(style->addElement(0.0, red, drawing.db().byBlockLinetype()), Acad::eOk);
  EXPECT_EQ(style->addElement(-1.0, byLayer(), AcDbObjectId::kNull), Acad::eOk);
  const AcDbObjectId id = add(drawing, style);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbMlineStyle> read(again.id(id.handle()), AcDb::kForWrite);
  ASSERT_EQ(read.openStatus(), Acad::eOk);
  EXPECT_STREQ(read->name(), L"Brick");
  EXPECT_STREQ(read->description(), L"two leaves");
  EXPECT_EQ(read->fillColor(), clay);
  EXPECT_EQ(read->numElements(), 3);
  double offset = 0.0;
  AcCmColor color;
  AcDbObjectId linetype;
  EXPECT_EQ(read->getElementAt(0, offset, color, linetype), Acad::eOk);
  EXPECT_EQ(offset, 1.0);
  EXPECT_EQ(color, clay);
  EXPECT_EQ(linetype, again.db().continuousLinetype());
  EXPECT_EQ(read->getElementAt(1, offset, color, linetype), Acad::eOk);
  EXPECT_EQ(color.colorIndex(), 1);
  EXPECT_EQ(linetype, again.db().byBlockLinetype());
  EXPECT_EQ(read->getElementAt(2, offset, color, linetype), Acad::eOk);
  EXPECT_TRUE(color.isByLayer());
  EXPECT_EQ(linetype, again.db().byLayerLinetype());
  // An element's colour is not the fill's.
  EXPECT_EQ(read->setFillColor(red), Acad::eOk);
  EXPECT_EQ(read->fillColor(), red);
  EXPECT_EQ(read->getElementAt(0, offset, color, linetype), Acad::eOk);
  EXPECT_EQ(color, clay);
  EXPECT_EQ(read->setName(L"Stone"), Acad::eNotApplicable);
  EXPECT_EQ(read->setName(L"Brick"), Acad::eOk);
}

TEST(MlineStyles, TrueColoursStayOutOfR2000) {
  const Drawing drawing(smallDrawing());
  auto* const style = new AcDbMlineStyle;
  style->setName(L"Brick");
  AcCmColor red;
  red.setRGB(255, 0, 0);
  style->setFillColor(red);
  style->addElement(0.5, red, AcDbObjectId::kNull);
  add(drawing, style);
  const std::string bytes = drawing.saved();
  EXPECT_EQ(bytes.find(asciiDxf("420 16711680\n")), std::string::npos);
  EXPECT_NE(bytes.find(asciiDxf("71 1\n49 0.5\n62 1\n6 BYLAYER\n")), std::string::npos);
}

TEST(MlineStyles, NamesAreThoseOfSymbols) {
  AcDbMlineStyle style;
  EXPECT_EQ(style.setName(L"a|b"), Acad::eInvalidInput);
  EXPECT_EQ(style.setName(L""), Acad::eInvalidInput);
  EXPECT_EQ(style.setName(nullptr), Acad::eInvalidInput);
  EXPECT_EQ(style.setName(L"墙 200"), Acad::eOk);
  EXPECT_STREQ(style.name(), L"墙 200");
}

TEST(MlineStyles, AStyleOfADrawingIsChangedInPlace) {
  const Drawing drawing;
  const std::string before = drawing.saved("before.dxf");
  AcDbObjectId id;
  {
    const AcDbObjectPointer<AcDbDictionary> styles(drawing.db().mLStyleDictionaryId());
    ASSERT_EQ(styles->getAt(L"Standard", id), Acad::eOk);
  }
  const AcDbObjectPointer<AcDbMlineStyle> standard(id, AcDb::kForWrite);
  EXPECT_EQ(offsetsOf(*standard), "0.5 -0.5");
  EXPECT_EQ(standard->setEndSquareCap(true), Acad::eOk);
  std::string expected = before;
  const std::string flags = asciiDxf("100 AcDbMlineStyle\n2 Standard\n70 0\n");
  expected.replace(expected.find(flags), flags.size(),
                   asciiDxf("100 AcDbMlineStyle\n2 Standard\n70 256\n"));
  EXPECT_EQ(drawing.saved(), expected);
}

}  // namespace
}  // namespace quoin::test
