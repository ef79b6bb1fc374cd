#include "commands/picture/Render.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "commands/CommandError.h"
#include "commands/OutputFile.h"
#include "commands/Progress.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// The text with U+FFFD in place of bytes that are no UTF-8, which file names and damaged drawings
/// may have: Cairo ends the whole picture at one.
std::string drawable(const std::string& text) {
  std::wstring wide = os::fromUtf8(text);
  const auto isByte = [](wchar_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; };
  std::replace_if(wide.begin(), wide.end(), isByte, L'\uFFFD');
  return os::toUtf8(wide);
}

constexpr double kPi = 3.14159265358979323846;

// The sheet, in points.
constexpr double kSheetWidth = 1600.0;
constexpr double kMargin = 40.0;
constexpr double kTitleBand = 84.0;
constexpr double kFootBand = 78.0;
constexpr double kMinPlanHeight = 420.0;
constexpr double kMaxPlanHeight = 1500.0;
// Texts that would come out smaller are left out.
constexpr double kLeastTextHeight = 5.0;
/// A plan that reaches more than so many times farther than what matters is cut off.
constexpr double kFarOut = 4.0;

struct Box {
  double minX = std::numeric_limits<double>::infinity();
  double minY = std::numeric_limits<double>::infinity();
  double maxX = -std::numeric_limits<double>::infinity();
  double maxY = -std::numeric_limits<double>::infinity();

  void add(const AcGePoint2d& point) {
    // Farther out the size of the box and what is worked out from it would overflow.
    constexpr double kFarthest = 1.0e150;
    if (std::fabs(point.x) <= kFarthest && std::fabs(point.y) <= kFarthest) {
      minX = std::min(minX, point.x);
      minY = std::min(minY, point.y);
      maxX = std::max(maxX, point.x);
      maxY = std::max(maxY, point.y);
    }
  }
  bool isEmpty() const { return !(minX <= maxX); }
  double width() const { return maxX - minX; }
  double height() const { return maxY - minY; }
};

/// The stretch of the drawing that is shown.
Box viewOf(const Picture& picture) {
  Box all;
  for (const Path& path : picture.paths) {
    for (const AcGePoint2d& point : path.points) {
      all.add(point);
    }
  }
  for (const Mark& mark : picture.marks) {
    all.add(mark.position);
  }
  Box focus;
  for (const AcGePoint2d& point : picture.focus) {
    focus.add(point);
  }
  if (!focus.isEmpty()) {
    const double reach = kFarOut * std::max(focus.width(), focus.height());
    if (all.isEmpty() || std::max(all.width(), all.height()) > reach) {
      const double edge = 0.1 * std::max(focus.width(), focus.height());
      all = focus;
      all.minX -= edge;
      all.minY -= edge;
      all.maxX += edge;
      all.maxY += edge;
    }
  }
  if (all.isEmpty()) {
    all.add(AcGePoint2d(0.0, 0.0));
  }
  // A single point or line needs room to stand in.
  const double least = std::max({all.width(), all.height(), 1e-9}) * 1e-3;
  if (all.width() < least) {
    all.minX -= 0.5 * least;
    all.maxX += 0.5 * least;
  }
  if (all.height() < least) {
    all.minY -= 0.5 * least;
    all.maxY += 0.5 * least;
  }
  return all;
}

bool hasChinese(const std::string& text) {
  // In UTF-8 the CJK blocks begin with the lead bytes E3 to E9 (and EF for full width).
  return std::any_of(text.begin(), text.end(), [](char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return (byte >= 0xE3 && byte <= 0xE9) || byte == 0xEF;
  });
}

class Painter {
 public:
  Painter(cairo_t* cairo, const Picture& picture, const Box& view, double planHeight)
      : m_cairo(cairo), m_picture(picture), m_view(view), m_planHeight(planHeight) {
    const double planWidth = kSheetWidth - 2.0 * kMargin;
    m_scale = std::min(planWidth / view.width(), planHeight / view.height());
    m_left = kMargin + 0.5 * (planWidth - view.width() * m_scale);
    m_bottom = kTitleBand + planHeight - 0.5 * (planHeight - view.height() * m_scale);
  }

  void paint() {
    setColor(palette::kPaper);
    cairo_paint(m_cairo);
    paintPlan();
    paintTitle();
    paintScaleBar();
    paintLegend();
  }

 private:
  double sheetX(double x) const { return m_left + (x - m_view.minX) * m_scale; }
  double sheetY(double y) const { return m_bottom - (y - m_view.minY) * m_scale; }
  double footY() const { return kTitleBand + m_planHeight + 0.5 * kFootBand + 8.0; }

  void setColor(const Color& color) {
    cairo_set_source_rgb(m_cairo, color.red, color.green, color.blue);
  }
  void setFont(const std::string& text, double size, bool isBold = false) {
    cairo_select_font_face(m_cairo, hasChinese(text) ? "WenQuanYi Micro Hei" : "DejaVu Sans",
                           CAIRO_FONT_SLANT_NORMAL,
                           isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(m_cairo, size);
  }
  void showText(const std::string& text) { cairo_show_text(m_cairo, drawable(text).c_str()); }
  double textWidth(const std::string& text) {
    cairo_text_extents_t extents;
    cairo_text_extents(m_cairo, drawable(text).c_str(), &extents);
    return extents.x_advance;
  }

  void paintPlan() {
    cairo_save(m_cairo);
    cairo_rectangle(m_cairo, 0.5 * kMargin, kTitleBand - 0.4 * kMargin, kSheetWidth - kMargin,
                    m_planHeight + 0.8 * kMargin);
    cairo_clip(m_cairo);
    cairo_set_line_cap(m_cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(m_cairo, CAIRO_LINE_JOIN_ROUND);
    Progress progress("Painting the picture");
    std::size_t done = 0;
    for (const Path& path : m_picture.paths) {
      if (!progress.step(++done, m_picture.paths.size())) {
        Progress::checkInterrupt();
      }
      paintPath(path);
    }
    for (const Label& label : m_picture.labels) {
      paintLabel(label);
    }
    for (const Mark& mark : m_picture.marks) {
      paintMark(mark.shape, sheetX(mark.position.x), sheetY(mark.position.y), mark.size,
                mark.color);
    }
    cairo_restore(m_cairo);
  }

  void paintPath(const Path& path) {
    bool isFirst = true;
    for (const AcGePoint2d& point : path.points) {
      if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
        continue;
      }
      // Coordinates far off the sheet are beyond what the library can draw.
      constexpr double kFarSheet = 1.0e5;
      const double x = std::clamp(sheetX(point.x), -kFarSheet, kFarSheet);
      const double y = std::clamp(sheetY(point.y), -kFarSheet, kFarSheet);
      isFirst ? cairo_move_to(m_cairo, x, y) : cairo_line_to(m_cairo, x, y);
      isFirst = false;
    }
    if (path.isClosed && !isFirst) {
      cairo_close_path(m_cairo);
    }
    if (path.isFilled) {
      setColor(path.fill);
      cairo_fill_preserve(m_cairo);
    }
    setColor(path.color);
    cairo_set_line_width(m_cairo, path.width);
    constexpr double kDash[] = {6.0, 5.0};
    cairo_set_dash(m_cairo, kDash, path.isDashed ? 2 : 0, 0.0);
    cairo_stroke(m_cairo);
  }

  void paintLabel(const Label& label) {
    const double size = label.height * m_scale;
    if (!(size >= kLeastTextHeight) || size > kSheetWidth) {
      return;
    }
    cairo_save(m_cairo);
    cairo_translate(m_cairo, sheetX(label.position.x), sheetY(label.position.y));
    cairo_rotate(m_cairo, -label.rotation);
    // Capitals of the common fonts are 0.72 of their size high.
    constexpr double kCapitalHeight = 0.72;
    setFont(label.text, size / kCapitalHeight);
    setColor(label.color);
    cairo_move_to(m_cairo, -label.alongShare * textWidth(label.text), label.upShare * size);
    showText(label.text);
    cairo_restore(m_cairo);
  }

  void paintMark(MarkShape shape, double x, double y, double size, const Color& color) {
    setColor(color);
    cairo_set_dash(m_cairo, nullptr, 0, 0.0);
    cairo_new_path(m_cairo);
    switch (shape) {
      case MarkShape::Dot:
        cairo_arc(m_cairo, x, y, size, 0.0, 2.0 * kPi);
        fillWithRim();
        break;
      case MarkShape::Square:
        cairo_rectangle(m_cairo, x - size, y - size, 2.0 * size, 2.0 * size);
        fillWithRim();
        break;
      case MarkShape::Triangle:
        cairo_move_to(m_cairo, x, y - 1.2 * size);
        cairo_line_to(m_cairo, x + size, y + 0.8 * size);
        cairo_line_to(m_cairo, x - size, y + 0.8 * size);
        cairo_close_path(m_cairo);
        fillWithRim();
        break;
      case MarkShape::Cross:
        cairo_set_line_width(m_cairo, 0.45 * size);
        cairo_move_to(m_cairo, x - size, y - size);
        cairo_line_to(m_cairo, x + size, y + size);
        cairo_move_to(m_cairo, x - size, y + size);
        cairo_line_to(m_cairo, x + size, y - size);
        cairo_stroke(m_cairo);
        break;
    }
  }
  /// A light rim keeps marks apart from what lies under them and from each other.
  void fillWithRim() {
    cairo_fill_preserve(m_cairo);
    setColor(palette::kPaper);
    cairo_set_line_width(m_cairo, 1.0);
    cairo_stroke(m_cairo);
  }

  void paintTitle() {
    setFont(m_picture.title, 26.0, true);
    setColor(palette::kInk);
    cairo_move_to(m_cairo, kMargin, 38.0);
    showText(m_picture.title);
    setFont(m_picture.subtitle, 16.0);
    cairo_move_to(m_cairo, kMargin, 62.0);
    showText(m_picture.subtitle);
  }

  void paintScaleBar() {
    // A round length (1, 2 or 5 times a power of ten) of about a sixth of the sheet.
    const double wanted = kSheetWidth / 6.0 / m_scale;
    const double power = std::pow(10.0, std::floor(std::log10(wanted)));
    const double mantissa = wanted / power;
    const double length = power * (mantissa >= 5.0 ? 5.0 : (mantissa >= 2.0 ? 2.0 : 1.0));
    const double width = length * m_scale;
    const double y = footY();
    for (int part = 0; part < 4; ++part) {
      setColor(part % 2 == 0 ? palette::kInk : palette::kPaper);
      cairo_rectangle(m_cairo, kMargin + 0.25 * part * width, y, 0.25 * width, 7.0);
      cairo_fill(m_cairo);
    }
    setColor(palette::kInk);
    cairo_set_line_width(m_cairo, 1.0);
    cairo_rectangle(m_cairo, kMargin, y, width, 7.0);
    cairo_stroke(m_cairo);
    const std::string text = lengthText(length);
    setFont(text, 15.0);
    cairo_move_to(m_cairo, kMargin, y - 8.0);
    cairo_show_text(m_cairo, "0");
    cairo_move_to(m_cairo, kMargin + width - 0.5 * textWidth(text), y - 8.0);
    showText(text);
    m_scaleBarEnd = kMargin + width + textWidth(text);
  }

  /// A length in metres where the drawing has units and it is that long, else in its units.
  std::string lengthText(double length) const {
    if (m_picture.millimetersPerUnit <= 0.0) {
      return fmt::format("{:g} units", length);
    }
    const double millimeters = length * m_picture.millimetersPerUnit;
    constexpr double kMeter = 1000.0;
    return millimeters >= kMeter ? fmt::format("{:.3g} m", millimeters / kMeter)
                                 : fmt::format("{:.3g} mm", millimeters);
  }

  void paintLegend() {
    double x = m_scaleBarEnd + 40.0;
    const double y = footY();
    for (const LegendEntry& entry : m_picture.legend) {
      if (entry.isMark) {
        paintMark(entry.shape, x + 14.0, y, 6.0, entry.color);
      } else {
        setColor(entry.color);
        cairo_set_line_width(m_cairo, std::max(entry.width, 2.0));
        cairo_set_dash(m_cairo, nullptr, 0, 0.0);
        cairo_move_to(m_cairo, x, y);
        cairo_line_to(m_cairo, x + 28.0, y);
        cairo_stroke(m_cairo);
      }
      setFont(entry.text, 15.0);
      setColor(palette::kInk);
      cairo_move_to(m_cairo, x + 36.0, y + 5.0);
      showText(entry.text);
      x += 36.0 + textWidth(entry.text) + 28.0;
    }
  }

  cairo_t* m_cairo;
  const Picture& m_picture;
  Box m_view;
  double m_planHeight;
  double m_scale;
  double m_left;
  double m_bottom;
  double m_scaleBarEnd = 0.0;
};

struct SurfaceDeleter {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;

cairo_status_t appendTo(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

[[noreturn]] void fail(const std::filesystem::path& file, const std::string& cause) {
  throw CommandError(ExitCode::OutputUnwritable,
                     fmt::format("{}: cannot write the picture: {}", file.string(), cause));
}

}  // namespace

bool isPictureFile(const std::filesystem::path& file) {
  const std::string extension = lowerCaseExtension(file);
  return extension == ".png" || extension == ".svg" || extension == ".pdf";
}

std::string pictureBytes(const Picture& picture, const std::filesystem::path& file) {
  const Box view = viewOf(picture);
  const double planWidth = kSheetWidth - 2.0 * kMargin;
  const double planHeight =
      std::clamp(planWidth * view.height() / view.width(), kMinPlanHeight, kMaxPlanHeight);
  const double sheetHeight = std::ceil(kTitleBand + planHeight + kFootBand);

  const std::string extension = lowerCaseExtension(file);
  std::string bytes;
  Surface surface;
  if (extension == ".svg") {
    surface.reset(cairo_svg_surface_create_for_stream(appendTo, &bytes, kSheetWidth, sheetHeight));
  } else if (extension == ".pdf") {
    surface.reset(cairo_pdf_surface_create_for_stream(appendTo, &bytes, kSheetWidth, sheetHeight));
  } else {
    surface.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(kSheetWidth),
                                             static_cast<int>(sheetHeight)));
  }
  cairo_t* const cairo = cairo_create(surface.get());
  Painter(cairo, picture, view, planHeight).paint();
  cairo_show_page(cairo);
  cairo_status_t status = cairo_status(cairo);
  cairo_destroy(cairo);
  if (extension != ".svg" && extension != ".pdf" && status == CAIRO_STATUS_SUCCESS) {
    status = cairo_surface_write_to_png_stream(surface.get(), appendTo, &bytes);
  }
  cairo_surface_finish(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) {
    fail(file, cairo_status_to_string(status));
  }
  return bytes;
}

void renderPicture(const Picture& picture, const std::filesystem::path& file) {
  writeWholeFile(pictureBytes(picture, file), file, "write the picture");
}

}  // namespace quoin::commands
