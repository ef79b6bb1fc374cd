// Image files that drawings name: where they are found, and what keeps one from being shown.
#include "commands/picture/ImageFiles.h"

#include <cairo.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

#include "support/TemporaryFolder.h"

namespace quoin::commands {
namespace {

/// Writes a PNG whose left half is red and whose right half is blue.
void putPng(const std::string& file, int width, int height) {
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
  cairo_t* const cairo = cairo_create(surface);
  cairo_set_source_rgb(cairo, 1.0, 0.0, 0.0);
  cairo_paint(cairo);
  cairo_set_source_rgb(cairo, 0.0, 0.0, 1.0);
  const int half = width / 2;
  cairo_rectangle(cairo, half, 0, width, height);
  cairo_fill(cairo);
  ASSERT_EQ(cairo_surface_write_to_png(surface, file.c_str()), CAIRO_STATUS_SUCCESS);
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

std::uint32_t pixelOf(const Raster& raster, int x, int y) {
  const unsigned char* const data = cairo_image_surface_get_data(raster.surface.get());
  const int stride = cairo_image_surface_get_stride(raster.surface.get());
  std::uint32_t pixel = 0;
  std::memcpy(&pixel, data + y * stride + 4 * x, sizeof pixel);
  return pixel & 0xFFFFFFU;
}

class ImageFilesTest : public testing::Test {
 protected:
  std::string problemOf(const std::string& path) {
    ImageFiles images(m_folder.file("plan.dxf"));
    EXPECT_EQ(images.raster(path, 100.0, 100.0), nullptr) << path;
    return images.fileOf(path).problem;
  }
  test::TemporaryFolder m_folder;
};

TEST_F(ImageFilesTest, AreFoundWhereTheyAreNamedOrBesideTheDrawing) {
  std::filesystem::create_directory(m_folder.path() / "site");
  putPng(m_folder.file("site/house.png"), 8, 4);
  putPng(m_folder.file("beside.png"), 6, 4);
  ImageFiles images(m_folder.file("plan.dxf"));
  for (const std::string& path :
       {m_folder.file("site/house.png"), std::string("site/house.png"),
        std::string("site\\house.png"), std::string(".\\site\\house.png")}) {
    const auto raster = images.raster(path, 100.0, 100.0);
    ASSERT_NE(raster, nullptr) << path;
    EXPECT_EQ(raster->width, 8) << path;
  }
  for (const std::string path : {"C:\\plans\\beside.png", "\\\\server\\plans\\beside.png",
                                 "/none/beside.png", "plans/beside.png", "beside.png"}) {
    const auto raster = images.raster(path, 100.0, 100.0);
    ASSERT_NE(raster, nullptr) << path;
    EXPECT_EQ(raster->width, 6) << path;
    EXPECT_EQ(images.fileOf(path).file, m_folder.file("beside.png"));
  }
}

TEST_F(ImageFilesTest, AreNoFinerThanNeeded) {
  putPng(m_folder.file("wide.png"), 1024, 512);
  ImageFiles images(m_folder.file("plan.dxf"));
  const auto coarse = images.raster("wide.png", 100.0, 50.0);
  ASSERT_NE(coarse, nullptr);
  EXPECT_EQ(coarse->width, 128);
  EXPECT_EQ(coarse->height, 64);
  EXPECT_EQ(pixelOf(*coarse, 4, 4), 0xFF0000U);
  EXPECT_EQ(pixelOf(*coarse, 120, 60), 0x0000FFU);
  // One decoding serves all places that need no more.
  EXPECT_EQ(images.raster("wide.png", 30.0, 20.0), coarse);
  EXPECT_EQ(images.raster("wide.png", 5000.0, 20.0)->width, 1024);
}

TEST_F(ImageFilesTest, ThatCannotBeShownAreTold) {
  putPng(m_folder.file("whole.png"), 64, 64);
  const std::string png = m_folder.get("whole.png");
  m_folder.put("half.png", std::string_view(png).substr(0, png.size() / 2));
  m_folder.put("empty.png", "");
  m_folder.put("words.png", "no image at all");
  // A vector format that some machines could read.
  m_folder.put("drawing.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
  std::filesystem::create_directory(m_folder.path() / "folder.png");
  ASSERT_EQ(mkfifo(m_folder.file("pipe.png").c_str(), 0600), 0);
  EXPECT_EQ(problemOf("none.png"), "there is no such file");
  EXPECT_EQ(problemOf(""), "there is no such file");
  EXPECT_EQ(problemOf(".."), "it is a folder");
  EXPECT_EQ(problemOf("half.png"), "it is damaged");
  EXPECT_EQ(problemOf("empty.png"), "it is neither PNG, JPEG, BMP, TIFF nor GIF");
  EXPECT_EQ(problemOf("words.png"), "it is neither PNG, JPEG, BMP, TIFF nor GIF");
  EXPECT_EQ(problemOf("drawing.svg"), "it is neither PNG, JPEG, BMP, TIFF nor GIF");
  EXPECT_EQ(problemOf("folder.png"), "it is a folder");
  EXPECT_EQ(problemOf("pipe.png"), "it is no ordinary file");
  EXPECT_EQ(problemOf("/dev/zero"), "it is no ordinary file");
}

TEST_F(ImageFilesTest, OfTooManyPixelsAreNotDecoded) {
  // 30,000 by 30,000 in a few bytes.
  std::string gif("GIF89a\x30\x75\x30\x75\x80\0\0\0\0\0\xFF\xFF\xFF", 19);
  gif += std::string(",\0\0\0\0\x30\x75\x30\x75\0\x02\x02\x44\x01\0;", 16);
  m_folder.put("bomb.gif", gif);
  std::string bmp("BM\x36\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x30\x75\0\0\x30\x75\0\0\x01\0\x18\0",
                  30);
  bmp += std::string(24, '\0') + "pixels";
  m_folder.put("bomb.bmp", bmp);
  for (const std::string name : {"bomb.gif", "bomb.bmp"}) {
    EXPECT_EQ(problemOf(name), "it has 30000 by 30000 pixels, more than 100 million") << name;
  }
}

TEST_F(ImageFilesTest, AreBoundedTogether) {
  putPng(m_folder.file("a.png"), 1000, 1000);
  ImageFiles images(m_folder.file("plan.dxf"), 2'000'000);
  EXPECT_NE(images.raster("a.png", 1000.0, 1000.0), nullptr);
  EXPECT_NE(images.raster("./a.png", 1000.0, 1000.0), nullptr);
  EXPECT_EQ(images.raster("././a.png", 1000.0, 1000.0), nullptr);
  EXPECT_EQ(images.fileOf("././a.png").problem,
            "with it, the images have more than 2 million pixels");
  // What was shown stays shown.
  EXPECT_NE(images.raster("a.png", 1000.0, 1000.0), nullptr);
}

/// Whatever stands in a file, decoding it ends.
TEST_F(ImageFilesTest, ThatAreDamagedAnywhereNeitherCrashNorHang) {
  putPng(m_folder.file("whole.png"), 16, 16);
  const std::string whole = m_folder.get("whole.png");
  for (std::size_t at = 8; at < whole.size(); ++at) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
    m_folder.put("damaged.png", damaged);
    ImageFiles images(m_folder.file("plan.dxf"));
    images.raster("damaged.png", 100.0, 100.0);
  }
  for (const std::string& head :
       {std::string("\xFF\xD8\xFF\xE0", 4), std::string("II*\0", 4), std::string("MM\0*", 4),
        std::string("GIF89a"), std::string("BM")}) {
    for (unsigned int seed = 1; seed < 40; ++seed) {
      std::string damaged = head;
      unsigned int state = seed;
      for (int i = 0; i < 400; ++i) {
        state = state * 1103515245U + 12345U;
        damaged += static_cast<char>(state >> 16);
      }
      m_folder.put("damaged", damaged);
      ImageFiles images(m_folder.file("plan.dxf"));
      images.raster("damaged", 100.0, 100.0);
    }
  }
}

}  // namespace
}  // namespace quoin::commands
