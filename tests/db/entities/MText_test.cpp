// MTEXT: values, extents and transforms.
#include <gtest/gtest.h>

#include "dbmtext.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(Extents, OfMultilineTextGrowWithItsLines) {
  AcDbMText text;
  text.setContents(L"{\\fArial|b0;one}\\Ptwo two");
  text.setTextHeight(3.0);
  EXPECT_EQ(text.actualHeight(), 3.0 * (1.0 + 5.0 / 3.0));
  text.setAttachment(AcDbMText::kBottomLeft);
  expectBox(text, {0.0, 0.0, 0.0}, {text.actualWidth(), text.actualHeight(), 0.0});
  text.setWidth(6.0);  // the second line breaks at its blank
  EXPECT_EQ(text.actualHeight(), 3.0 * (1.0 + 10.0 / 3.0));
}

TEST(MultilineText, PlainTextIsWithoutCodes) {
  const auto plain = [](const wchar_t* contents) {
    AcDbMText text;
    text.setContents(contents);
    return taken(text.text());
  };
  EXPECT_EQ(plain(L"a\\Pb"), L"a\nb");
  EXPECT_EQ(plain(L"{\\fArial|b1|i0;bold} \\H2.5x;big"), L"bold big");
  EXPECT_EQ(plain(L"\\S1/2; \\C1;red\\L under\\l"), L"1/2 red under");
  EXPECT_EQ(plain(L"\\\\ \\{x\\} \\~"), L"\\ {x} \u00A0");
  EXPECT_EQ(plain(L"   "), L"   ");
  EXPECT_EQ(plain(L"end\\"), L"end\\");
}

TEST(MultilineText, LongContentsAreWrittenInPieces) {
  const Drawing drawing;
  std::wstring contents;
  for (int i = 0; i < 900; ++i) {
    contents += static_cast<wchar_t>(L'a' + i % 26);
  }
  auto* const text = new AcDbMText;
  EXPECT_EQ(text->setContents(contents.c_str()), Acad::eOk);
  const AcDbObjectId id = append(drawing.db(), text);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbMText> read(again.id(id.handle().asUInt64()));
  EXPECT_EQ(taken(read->contents()), contents);
}

}  // namespace
}  // namespace quoin::test
