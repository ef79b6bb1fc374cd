// SVG files: paths, a group for each layer, and texts as text; Cairo's have neither groups nor
// text.
#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <map>

#include "commands/picture/Canvas.h"

namespace quoin::commands {

namespace {

/// With decimals of a point, without needless zeros, whatever the locale.
void append(std::string& text, double number, int decimals) {
  std::array<char, 400> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                 std::chars_format::fixed, decimals)
                       .ptr;
  std::string_view written(digits.data(), static_cast<std::size_t>(end - digits.data()));
  if (written.find('.') != std::string_view::npos) {
    while (written.back() == '0') {
      written.remove_suffix(1);
    }
    if (written.back() == '.') {
      written.remove_suffix(1);
    }
  }
  text += written == "-0" ? std::string_view("0") : written;
}

std::string numberText(double number, int decimals = 4) {
  std::string text;
  append(text, number, decimals);
  return text;
}

std::string escaped(const std::string& text) {
  std::string safe;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        safe += "&amp;";
        break;
      case '<':
        safe += "&lt;";
        break;
      case '>':
        safe += "&gt;";
        break;
      case '"':
        safe += "&quot;";
        break;
      default:
        safe += letter;
    }
  }
  return safe;
}

std::string colorText(const Color& color) {
  const auto byte = [](double share) { return static_cast<int>(std::lround(share * 255.0)); };
  return fmt::format("#{:02x}{:02x}{:02x}", byte(color.red), byte(color.green), byte(color.blue));
}

cairo_status_t appendTo(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

std::string base64(std::string_view bytes) {
  gchar* const encoded =
      g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size());
  std::string text = encoded;
  g_free(encoded);
  return text;
}

class SvgCanvas : public Canvas {
 public:
  explicit SvgCanvas(const CanvasOptions& options) : m_options(options) {}

  void beginPage(const PageSize& size, const Color& paper) override {
    constexpr double kMillimetersPerPoint = 25.4 / 72.0;
    const double shown = m_options.isMillimeters ? kMillimetersPerPoint : 1.0;
    const char* const unit = m_options.isMillimeters ? "mm" : "";
    const std::string width = numberText(size.width);
    const std::string height = numberText(size.height);
    m_bytes += fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{}{}\" height=\"{}{}\" "
        "viewBox=\"0 0 {} {}\">\n"
        "<g fill=\"none\" fill-rule=\"evenodd\" stroke-linecap=\"round\" "
        "stroke-linejoin=\"round\">\n"
        "<rect width=\"{}\" height=\"{}\" fill=\"{}\"/>\n",
        numberText(size.width * shown), unit, numberText(size.height * shown), unit, width, height,
        width, height, colorText(paper));
  }
  void endPage() override {
    setGroup("");
    m_bytes += "</g>\n</svg>\n";
  }

  void setGroup(const std::string& layer) override {
    if (layer == m_layer) {
      return;
    }
    if (!m_layer.empty()) {
      m_bytes += "</g>\n";
    }
    m_layer = layer;
    if (!layer.empty()) {
      m_bytes += fmt::format("<g data-layer=\"{}\">\n", escaped(drawable(layer)));
    }
  }

  void beginClip(const Box& box) override {
    setGroup("");
    m_bytes += fmt::format(
        "<clipPath id=\"c{0}\"><rect x=\"{1}\" y=\"{2}\" width=\"{3}\" height=\"{4}\"/></clipPath>"
        "\n<g clip-path=\"url(#c{0})\">\n",
        m_clips++, numberText(box.minX), numberText(box.minY), numberText(box.width()),
        numberText(box.height()));
  }
  void endClip() override {
    setGroup("");
    m_bytes += "</g>\n";
  }

  void beginPathClip() override {
    setGroup("");
    m_bytes += fmt::format("<clipPath id=\"c{}\"><path clip-rule=\"evenodd\"", m_clips);
    endPath();
    m_bytes += fmt::format("</clipPath>\n<g clip-path=\"url(#c{})\">\n", m_clips++);
  }

  void moveTo(double x, double y) override { add('M', {x, y}); }
  void lineTo(double x, double y) override { add('L', {x, y}); }
  void curveTo(double x1, double y1, double x2, double y2, double x, double y) override {
    add('C', {x1, y1, x2, y2, x, y});
  }
  void closePath() override {
    m_path += 'Z';
    m_last = 'Z';
  }

  void stroke(const Pen& pen) override {
    if (m_path.empty()) {
      return;
    }
    m_bytes += fmt::format("<path stroke=\"{}\" stroke-width=\"{}\"", colorText(pen.color),
                           numberText(pen.width));
    if (pen.opacity < 1.0) {
      m_bytes += fmt::format(" stroke-opacity=\"{}\"", numberText(pen.opacity));
    }
    if (!pen.dashes.empty()) {
      m_bytes += " stroke-dasharray=\"";
      for (const double dash : pen.dashes) {
        append(m_bytes, dash, 4);
        m_bytes += ' ';
      }
      m_bytes.back() = '"';
      if (pen.dashStart != 0.0) {
        m_bytes += fmt::format(" stroke-dashoffset=\"{}\"", numberText(pen.dashStart));
      }
    }
    endPath();
  }
  void fill(const Color& color, double opacity) override {
    if (m_path.empty()) {
      return;
    }
    m_bytes += fmt::format("<path fill=\"{}\"", colorText(color));
    if (opacity < 1.0) {
      m_bytes += fmt::format(" fill-opacity=\"{}\"", numberText(opacity));
    }
    endPath();
  }

  void text(const SetLine& line, const SheetPlace& place, const Color& color,
            double opacity) override {
    if (m_options.hasTextOutlines) {
      addOutlines(line, place);
      fill(color, opacity);
      return;
    }
    m_bytes += "<text";
    addTransform(place);
    m_bytes += fmt::format(
        " font-family=\"'{}', 'WenQuanYi Micro Hei', sans-serif\" "
        "font-size=\"{}\"{}{} textLength=\"{}\" lengthAdjust=\"spacingAndGlyphs\" fill=\"{}\"",
        line.face.family, numberText(Lettering::kFontSize),
        line.face.isBold ? " font-weight=\"bold\"" : "",
        line.face.isItalic ? " font-style=\"italic\"" : "", numberText(line.width, 2),
        colorText(color));
    if (opacity < 1.0) {
      m_bytes += fmt::format(" fill-opacity=\"{}\"", numberText(opacity));
    }
    m_bytes += " xml:space=\"preserve\">" + escaped(line.text) + "</text>\n";
  }

  void image(const std::shared_ptr<const Raster>& raster, const SheetPlace& place, double opacity,
             bool /*isNear*/) override {
    const auto [known, isNew] = m_images.try_emplace(raster, m_images.size());
    if (isNew) {
      std::string png;
      cairo_surface_write_to_png_stream(raster->surface.get(), appendTo, &png);
      m_bytes += fmt::format(
          "<defs xmlns:xlink=\"http://www.w3.org/1999/xlink\"><image id=\"i{}\" width=\"1\" "
          "height=\"1\" preserveAspectRatio=\"none\" "
          "xlink:href=\"data:image/png;base64,{}\"/></defs>\n",
          known->second, base64(png));
    }
    m_bytes += fmt::format("<use xmlns:xlink=\"http://www.w3.org/1999/xlink\" xlink:href=\"#i{}\"",
                           known->second);
    addTransform(place);
    if (opacity < 1.0) {
      m_bytes += fmt::format(" opacity=\"{}\"", numberText(opacity));
    }
    m_bytes += "/>\n";
  }

  double dotsPerPoint() const override { return 0.0; }
  std::string bytes(const std::string& /*name*/) override { return std::move(m_bytes); }

 private:
  void addTransform(const SheetPlace& place) {
    m_bytes += " transform=\"matrix(";
    for (const double number :
         {place.alongX, place.alongY, place.downX, place.downY, place.x, place.y}) {
      append(m_bytes, number, 6);
      m_bytes += ' ';
    }
    m_bytes.back() = ')';
    m_bytes += '"';
  }

  /// A verb with its numbers; a hundredth of a point is finer than anybody prints.
  void add(char verb, std::initializer_list<double> numbers) {
    // Behind M, and behind L, a letter L need not stand.
    const bool isImplied = verb == m_last && verb != 'M';
    if (!isImplied && !(verb == 'L' && m_last == 'M')) {
      m_path += verb;
    } else {
      m_path += ' ';
    }
    for (const double number : numbers) {
      if (m_path.back() != verb && m_path.back() != ' ') {
        m_path += ' ';
      }
      append(m_path, number, 2);
    }
    m_last = verb;
  }

  void endPath() {
    m_bytes += " d=\"";
    m_bytes += m_path;
    m_bytes += "\"/>\n";
    m_path.clear();
    m_last = 0;
  }

  void addOutlines(const SetLine& line, const SheetPlace& place) {
    cairo_surface_t* const surface = cairo_recording_surface_create(CAIRO_CONTENT_ALPHA, nullptr);
    cairo_t* const cairo = cairo_create(surface);
    pango_cairo_layout_line_path(cairo, line.line);
    cairo_path_t* const path = cairo_copy_path(cairo);
    const auto x = [&](const cairo_path_data_t& data) {
      return place.x + place.alongX * data.point.x + place.downX * data.point.y;
    };
    const auto y = [&](const cairo_path_data_t& data) {
      return place.y + place.alongY * data.point.x + place.downY * data.point.y;
    };
    for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
      const cairo_path_data_t* const data = path->data + i;
      switch (data->header.type) {
        case CAIRO_PATH_MOVE_TO:
          moveTo(x(data[1]), y(data[1]));
          break;
        case CAIRO_PATH_LINE_TO:
          lineTo(x(data[1]), y(data[1]));
          break;
        case CAIRO_PATH_CURVE_TO:
          curveTo(x(data[1]), y(data[1]), x(data[2]), y(data[2]), x(data[3]), y(data[3]));
          break;
        case CAIRO_PATH_CLOSE_PATH:
          closePath();
          break;
      }
    }
    cairo_path_destroy(path);
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
  }

  CanvasOptions m_options;
  std::string m_bytes;
  std::string m_path;
  char m_last = 0;
  std::string m_layer;
  std::size_t m_clips = 0;
  /// Which images stand in the file, and are kept so that no other one takes their place.
  std::map<std::shared_ptr<const Raster>, std::size_t> m_images;
};

}  // namespace

std::unique_ptr<Canvas> makeSvgCanvas(const CanvasOptions& options) {
  return std::make_unique<SvgCanvas>(options);
}

}  // namespace quoin::commands
