#include "commands/picture/Render.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/TemporaryFolder.h"

namespace quoin::commands {
namespace {

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

}  // namespace
}  // namespace quoin::commands
