#include "commands/picture/Render.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <optional>

#include "commands/picture/DrawList.h"
#include "commands/picture/ListPainter.h"
#include "commands/picture/SheetLayout.h"
#include "support/DrawPaths.h"
#include "support/TemporaryFolder.h"

namespace quoin::commands {
namespace {

using test::lineOf;

TEST(RenderPicture, WhatLiesAtTheEndsOfTheNumbersKeepsNoPictureFromBeingDrawn) {
  constexpr double kLargest = std::numeric_limits<double>::max();
  const test::TemporaryFolder folder;
  for (const double far : {1e150, 1e160, 1e308, kLargest}) {
    Picture picture;
    picture.paths.push_back({{{-far, -far}, {far, far}}, false, palette::kWall, 1.0, false});
    picture.paths.push_back({{{0.0, -far}, {5.0, far}}, false, palette::kWall, 1.0, false});
    picture.marks.push_back({{far, 0.0}, MarkShape::Dot, palette::kMark, 5.0});
    for (const char* name : {"far.png", "far.svg", "far.pdf"}) {
      renderPicture(picture, folder.file(name));
      EXPECT_FALSE(folder.get(name).empty()) << far;
    }
  }
}

TEST(RenderPicture, BytesThatAreNoUtf8KeepNoPictureFromBeingDrawn) {
  const test::TemporaryFolder folder;
  Picture picture;
  picture.title = "caf\xe9.dxf";
  picture.paths.push_back({{{0.0, 0.0}, {5.0, 5.0}}, false, palette::kWall, 1.0, false});
  Label& label = picture.labels.emplace_back();
  label.text = "\xed\xa0\x80\xff";
  label.height = 1.0;
  for (const char* name : {"bytes.png", "bytes.svg", "bytes.pdf"}) {
    renderPicture(picture, folder.file(name));
    EXPECT_FALSE(folder.get(name).empty()) << name;
  }
}

TEST(Palette, ThePlanBehindMarksStandsOutFromPaper) {
  EXPECT_NEAR(contrastOf({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), 21.0, 1e-9);
  EXPECT_GE(contrastOf(palette::kPlan, palette::kPaper), 3.0);
  // And what is worked on stands out from the plan.
  EXPECT_GE(contrastOf(palette::kWall, palette::kPlan), 3.0);
}

TEST(SheetLayout, TheFrameFitsTexts) {
  auto list = std::make_shared<DrawList>();
  list->stroke(lineOf({0, 0, 0}, {10, 10, 0}), {});
  hostx::DrawText text;
  text.text = L"a long text to the right";
  text.position = {10, 0, 0};
  text.along = {1, 0, 0};
  text.up = {0, 1, 0};
  text.width = 40.0;
  list->text(text, {});
  Picture picture;
  picture.drawn.push_back({list, std::nullopt, 1.0, true, 0});
  std::string leftOut;
  EXPECT_EQ(viewOf(picture, leftOut).maxX, 50.0);
}

TEST(SheetLayout, WhatStandsFarOffIsCutOffOnlyWhereItIsNextToNothing) {
  for (const int near : {5, 500}) {
    auto list = std::make_shared<DrawList>();
    for (int i = 0; i < near; ++i) {
      list->stroke(lineOf({0, 0, 0}, {10, 10, 0}), {});
    }
    list->stroke(lineOf({1e6, 0, 0}, {1e6, 10, 0}), {});
    Picture picture;
    picture.drawn.push_back({list, std::nullopt, 1.0, true, 0});
    picture.focus = {{0, 0}, {10, 10}};
    std::string leftOut;
    const bool isCut = viewOf(picture, leftOut).maxX < 100.0;
    EXPECT_EQ(isCut, near == 500);
    EXPECT_EQ(leftOut.empty(), !isCut);
  }
}

TEST(SheetLayout, LongSubtitlesWrap) {
  Picture picture;
  picture.subtitle = "short";
  const double height = layOut(picture, {}).page.height;
  for (int i = 0; i < 60; ++i) {
    picture.subtitle += ", layer A-WALL-" + std::to_string(i);
  }
  const SheetLayout layout = layOut(picture, {});
  EXPECT_GT(layout.page.height, height);
  for (const PlacedText& text : layout.texts) {
    EXPECT_LE(text.x + Lettering::ofProcess().width(text.text, {}, text.size), 1600.0);
  }
}

TEST(SheetLayout, LegendsWrap) {
  Picture picture;
  for (int i = 0; i < 30; ++i) {
    picture.legend.push_back({"an entry of the legend", palette::kMark});
  }
  for (const PlacedText& text : layOut(picture, {}).texts) {
    EXPECT_LE(text.x + Lettering::ofProcess().width(text.text, {}, text.size), 1600.0);
  }
}

TEST(RenderPicture, TheSamePictureGivesTheSameBytes) {
  Picture picture;
  picture.title = "plan.dxf";
  auto list = std::make_shared<DrawList>();
  list->stroke(lineOf({0, 0, 0}, {10, 10, 0}), {});
  picture.drawn.push_back({list, std::nullopt, 1.0, true, 0});
  for (const char* name : {"a.png", "a.svg", "a.pdf"}) {
    const std::string bytes = pictureBytes(picture, name);
    EXPECT_EQ(bytes, pictureBytes(picture, name));
    EXPECT_EQ(bytes.find("CreationDate"), std::string::npos);
  }
}

}  // namespace
}  // namespace quoin::commands
