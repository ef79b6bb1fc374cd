#include "commands/picture/ImageFiles.h"

#include <fmt/format.h>
#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "commands/Progress.h"
#include "embedded/os/File.h"

namespace quoin::commands {

namespace {

/// Cairo takes no larger surfaces.
constexpr int kMostSide = 32'000;
/// Dots of a side beyond which a file is shown coarser than it is.
constexpr double kMostNeeded = 0.5 * kMostSide;

/// The formats that are read, by how their files begin: whatever else the library could read on
/// some machine is refused, so that pictures are the same everywhere.
struct Format {
  std::string_view beginning;
  const char* name;  // of the library
};
constexpr std::array kFormats{
    Format{"\x89PNG\r\n\x1A\n", "png"},
    Format{"\xFF\xD8\xFF", "jpeg"},
    Format{"BM", "bmp"},
    Format{std::string_view("II*\0", 4), "tiff"},
    Format{std::string_view("MM\0*", 4), "tiff"},
    Format{"GIF8", "gif"},
};
constexpr std::size_t kHeadSize = 8;

const char* formatOf(std::string_view head) {
  for (const Format& format : kFormats) {
    if (head.starts_with(format.beginning)) {
      return format.name;
    }
  }
  return nullptr;
}

/// Whether the file was cut off, which the library does not say: it shows what is there.
bool isCutOff(std::string_view format, std::string_view bytes) {
  constexpr std::size_t kTail = 1U << 16;  // other data may stand behind the end
  const std::string_view tail = bytes.substr(bytes.size() - std::min(bytes.size(), kTail));
  return format == "png"    ? tail.find("IEND") == std::string_view::npos
         : format == "jpeg" ? tail.find("\xFF\xD9") == std::string_view::npos
                            : false;
}

/// How often both sides are halved so that no more than the needed dots are left.
int halvingsFor(int width, int height, double neededWidth, double neededHeight) {
  int halvings = 0;
  for (;; ++halvings) {
    const int nextWidth = width >> (halvings + 1);
    const int nextHeight = height >> (halvings + 1);
    const bool isTooLarge = (width >> halvings) > kMostSide || (height >> halvings) > kMostSide;
    const bool isFiner = nextWidth >= neededWidth && nextHeight >= neededHeight;
    if (!isTooLarge && (!isFiner || nextWidth < 1 || nextHeight < 1)) {
      return halvings;
    }
  }
}

/// One decoding.
class Decoder {
 public:
  Decoder(const char* format, double width, double height)
      : m_loader(gdk_pixbuf_loader_new_with_type(format, nullptr)),
        m_isTiff(std::string_view(format) == "tiff"),
        m_neededWidth(width),
        m_neededHeight(height) {
    if (m_loader) {
      g_signal_connect(m_loader, "size-prepared", G_CALLBACK(onSize), this);
    }
  }
  ~Decoder() {
    if (m_loader) {
      close();
      g_object_unref(m_loader);
    }
  }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  /// What is wrong with the file; empty for nothing.
  std::string decode(std::string_view bytes) {
    if (!m_loader) {
      return "its format cannot be read here";
    }
    constexpr std::size_t kChunk = 1U << 16;
    for (std::size_t at = 0; at < bytes.size() && !m_isTooLarge; at += kChunk) {
      Progress::checkInterrupt();
      const std::string_view chunk = bytes.substr(at, kChunk);
      if (!gdk_pixbuf_loader_write(m_loader, reinterpret_cast<const guchar*>(chunk.data()),
                                   chunk.size(), nullptr)) {
        break;
      }
      m_taken = at + chunk.size();
    }
    const bool isWhole = close() && m_taken >= bytes.size();
    if (m_isTooLarge) {
      return fmt::format("it has {} by {} pixels, more than {} million", m_width, m_height,
                         ImageFiles::kMostPixels / 1'000'000);
    }
    if (isWhole && pixels()) {
      return {};
    }
    // Of the largest TIFF files the library does not say how large they are.
    return m_width > 0 || !m_isTiff ? "it is damaged" : "it is damaged or too large";
  }

  const GdkPixbuf* pixels() const { return gdk_pixbuf_loader_get_pixbuf(m_loader); }
  int halvings() const { return m_halvings; }

 private:
  static void onSize(GdkPixbufLoader* loader, int width, int height, gpointer self) {
    static_cast<Decoder*>(self)->setSize(loader, width, height);
  }
  void setSize(GdkPixbufLoader* loader, int width, int height) {
    m_width = width;
    m_height = height;
    if (width < 1 || height < 1 ||
        static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) >
            ImageFiles::kMostPixels) {
      m_isTooLarge = true;
      gdk_pixbuf_loader_set_size(loader, 0, 0);  // ends the decoding
      return;
    }
    m_halvings = halvingsFor(width, height, m_neededWidth, m_neededHeight);
    if (m_halvings > 0) {
      gdk_pixbuf_loader_set_size(loader, std::max(width >> m_halvings, 1),
                                 std::max(height >> m_halvings, 1));
    }
  }
  bool close() {
    const bool wasOpen = !m_isClosed;
    m_isClosed = true;
    return wasOpen && gdk_pixbuf_loader_close(m_loader, nullptr);
  }

  GdkPixbufLoader* m_loader;
  bool m_isTiff;
  double m_neededWidth;
  double m_neededHeight;
  int m_width = 0;
  int m_height = 0;
  int m_halvings = 0;
  std::size_t m_taken = 0;
  bool m_isTooLarge = false;
  bool m_isClosed = false;
};

/// Colours as Cairo has them: in one word, multiplied by how opaque they are.
std::shared_ptr<const Raster> rasterOf(const GdkPixbuf* pixels) {
  auto raster = std::make_shared<Raster>();
  raster->width = gdk_pixbuf_get_width(pixels);
  raster->height = gdk_pixbuf_get_height(pixels);
  const bool hasAlpha = gdk_pixbuf_get_has_alpha(pixels);
  raster->surface.reset(cairo_image_surface_create(
      hasAlpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24, raster->width, raster->height));
  unsigned char* const data = cairo_image_surface_get_data(raster->surface.get());
  const guchar* const source = gdk_pixbuf_read_pixels(pixels);
  if (!data || !source) {
    return nullptr;
  }
  const auto stride =
      static_cast<std::size_t>(cairo_image_surface_get_stride(raster->surface.get()));
  const auto sourceStride = static_cast<std::size_t>(gdk_pixbuf_get_rowstride(pixels));
  const auto channels = static_cast<std::size_t>(gdk_pixbuf_get_n_channels(pixels));
  for (std::size_t row = 0; row < static_cast<std::size_t>(raster->height); ++row) {
    const guchar* from = source + row * sourceStride;
    auto* to = reinterpret_cast<std::uint32_t*>(data + row * stride);
    for (int column = 0; column < raster->width; ++column, from += channels) {
      const std::uint32_t alpha = hasAlpha ? from[3] : 255U;
      const auto part = [&](std::uint32_t color) { return (color * alpha + 127U) / 255U; };
      *to++ = alpha << 24 | part(from[0]) << 16 | part(from[1]) << 8 | part(from[2]);
    }
  }
  cairo_surface_mark_dirty(raster->surface.get());
  return raster;
}

std::uint64_t pixelsOf(const Raster& raster) {
  return static_cast<std::uint64_t>(raster.width) * static_cast<std::uint64_t>(raster.height);
}

}  // namespace

std::shared_ptr<const Raster> ImageFiles::raster(const std::string& path, double width,
                                                 double height) {
  Entry& entry = entryOf(path);
  width = std::min(width, kMostNeeded);
  height = std::min(height, kMostNeeded);
  const bool isFineEnough =
      entry.raster &&
      (entry.halvings == 0 || (entry.raster->width >= width && entry.raster->height >= height));
  if (entry.told.problem.empty() && !isFineEnough) {
    load(entry, width, height);
  }
  return entry.raster;
}

ImageFiles::Entry& ImageFiles::entryOf(const std::string& path) {
  const auto [at, isNew] = m_entries.try_emplace(path);
  Entry& entry = at->second;
  if (isNew) {
    entry.told.path = path;
    entry.told.file = placeOf(path);
    if (entry.told.file.empty()) {
      entry.told.problem = "there is no such file";
    }
  }
  return entry;
}

std::string ImageFiles::placeOf(const std::string& path) const {
  std::string slashed = path;
  std::replace(slashed.begin(), slashed.end(), '\\', '/');
  const std::string base = slashed.substr(slashed.find_last_of('/') + 1);
  std::vector<std::filesystem::path> places;
  const bool isElsewhere = slashed.starts_with("//") || slashed.find(':') != std::string::npos;
  if (path.starts_with("/")) {
    places.emplace_back(path);
  } else if (!isElsewhere && !slashed.empty()) {
    places.push_back(m_folder / slashed);
  }
  if (!base.empty() && base != "." && base != "..") {
    places.push_back(m_folder / base);
  }
  for (const std::filesystem::path& place : places) {
    std::error_code error;
    if (std::filesystem::exists(place, error)) {
      return place.string();
    }
  }
  return {};
}

void ImageFiles::load(Entry& entry, double width, double height) {
  entry.raster = nullptr;
  std::error_code error;
  // Anything else may never end.
  if (!std::filesystem::is_regular_file(entry.told.file, error)) {
    entry.told.problem = std::filesystem::is_directory(entry.told.file, error)
                             ? "it is a folder"
                             : "it is no ordinary file";
    return;
  }
  std::string bytes;
  try {
    os::ReadRules rules;
    rules.mostBytes = kMostBytes;
    bytes = os::readFile(entry.told.file, rules);
  } catch (const os::FileFailure& failure) {
    Progress::checkInterrupt();
    entry.told.problem = failure.what();
    return;
  }
  const char* const format = formatOf(std::string_view(bytes).substr(0, kHeadSize));
  if (!format) {
    entry.told.problem = "it is neither PNG, JPEG, BMP, TIFF nor GIF";
    return;
  }
  Decoder decoder(format, width, height);
  entry.told.problem = decoder.decode(bytes);
  if (entry.told.problem.empty() && isCutOff(format, bytes)) {
    entry.told.problem = "it is damaged";
  }
  if (!entry.told.problem.empty()) {
    return;
  }
  bytes = {};
  const std::uint64_t pixels = static_cast<std::uint64_t>(gdk_pixbuf_get_width(decoder.pixels())) *
                               static_cast<std::uint64_t>(gdk_pixbuf_get_height(decoder.pixels()));
  const std::uint64_t more = pixels - std::min(pixels, entry.pixels);
  if (m_together + more > m_mostTogether) {
    entry.told.problem = fmt::format("with it, the images have more than {} million pixels",
                                     m_mostTogether / 1'000'000);
    return;
  }
  m_together += more;
  entry.pixels = std::max(pixels, entry.pixels);
  keepWithin(kMostPixels / 4);
  entry.raster = rasterOf(decoder.pixels());
  entry.halvings = decoder.halvings();
  if (!entry.raster) {
    entry.told.problem = "it takes more memory than there is";
  }
}

/// Images that were decoded are kept for the next place where they show, as long as they are few.
void ImageFiles::keepWithin(std::uint64_t pixels) {
  std::uint64_t kept = 0;
  for (const auto& [path, entry] : m_entries) {
    kept += entry.raster ? pixelsOf(*entry.raster) : 0;
  }
  if (kept > pixels) {
    for (auto& [path, entry] : m_entries) {
      entry.raster = nullptr;
    }
  }
}

}  // namespace quoin::commands
