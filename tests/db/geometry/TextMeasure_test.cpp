// Text is as wide as the font that stands for its style's.
#include <gtest/gtest.h>

#include "dbmtext.h"
#include "embedded/text/FontMetrics.h"
#include "support/Drawings.h"

namespace {

using quoin::test::append;
using quoin::test::Drawing;
namespace text = quoin::text;

bool isInstalled(const wchar_t* fontFile) {
  // Without the font every letter is as wide as any other.
  const text::Font& font = text::fontFor(fontFile);
  return font.advance(L'i') != font.advance(L'W');
}

double widthOf(const Drawing& drawing, const wchar_t* contents,
               const wchar_t* style = L"Standard") {
  AcDbObjectId styleId;
  acdbSymUtil()->getTextStyleId(styleId, style, &drawing.db());
  auto* const label = new AcDbText(AcGePoint3d(), contents, styleId, 10.0);
  const AcDbObjectPointer<AcDbText> added(append(drawing.db(), label));
  AcDbExtents box;
  EXPECT_EQ(added->getGeomExtents(box), Acad::eOk);
  EXPECT_DOUBLE_EQ(box.maxPoint().y, 10.0);
  return box.maxPoint().x - box.minPoint().x;
}

void addStyle(const Drawing& drawing, const wchar_t* name, const wchar_t* fontFile) {
  const AcDbObjectPointer<AcDbTextStyleTable> styles(drawing.db().textStyleTableId(),
                                                     AcDb::kForWrite);
  auto* const style = new AcDbTextStyleTableRecord;
  style->setName(name);
  style->setFileName(fontFile);
  ASSERT_EQ(styles->add(style), Acad::eOk);
  style->close();
}

TEST(TextExtents, NarrowLettersMakeNarrowText) {
  if (!isInstalled(L"txt")) {
    GTEST_SKIP() << "no fonts here";
  }
  const Drawing drawing;
  EXPECT_LT(widthOf(drawing, L"iiii"), 0.6 * widthOf(drawing, L"WWWW"));
}

TEST(TextExtents, EveryLetterOfATypewriterIsAsWideAsTheOthers) {
  const text::Font& font = text::fontFor(L"C:\\Windows\\Fonts\\COUR.TTF");
  EXPECT_EQ(font.advance(L'i'), font.advance(L'W'));
}

TEST(TextExtents, GoByTheFontOfTheStyle) {
  if (!isInstalled(L"arial.ttf")) {
    GTEST_SKIP() << "no fonts here";
  }
  const Drawing drawing;
  addStyle(drawing, L"Sans", L"arial.ttf");
  addStyle(drawing, L"Typewriter", L"cour.ttf");
  double sans = 0.0;
  for (const wchar_t letter : std::wstring(L"will")) {
    sans += 10.0 * text::fontFor(L"Arial").advance(letter);
  }
  EXPECT_NEAR(widthOf(drawing, L"will", L"Sans"), sans, 1e-9);
  EXPECT_NE(widthOf(drawing, L"will", L"Sans"), widthOf(drawing, L"will", L"Typewriter"));
}

TEST(TextExtents, IdeographsAreAboutAsWideAsHigh) {
  EXPECT_NEAR(text::usualFont().advance(L'墙'), 1.0, 0.5);
  EXPECT_EQ(text::averageAdvance(L'墙'), 1.0);
}

TEST(TextExtents, FontsGoByTheirNamesInAnyCaseWithOrWithoutFolder) {
  EXPECT_EQ(&text::fontFor(L"ARIAL.TTF"), &text::fontFor(L"c:/fonts/Arial"));
  EXPECT_EQ(&text::fontFor(L"nobody knows this.shx"), &text::usualFont());
}

TEST(TextExtents, OfParagraphsWrapByTheFont) {
  if (!isInstalled(L"txt")) {
    GTEST_SKIP() << "no fonts here";
  }
  const auto heightOf = [](const wchar_t* contents) {
    const Drawing drawing;
    auto* const paragraph = new AcDbMText;
    paragraph->setContents(contents);
    paragraph->setTextHeight(10.0);
    paragraph->setWidth(60.0);
    const AcDbObjectPointer<AcDbMText> added(append(drawing.db(), paragraph));
    return added->actualHeight();
  };
  EXPECT_EQ(heightOf(L"iiiii iiiii"), 10.0);
  EXPECT_GT(heightOf(L"WWWWW WWWWW"), 20.0);
}

}  // namespace
