// PNG and PDF pages.
#include <cairo-pdf.h>
#include <cairo.h>
#include <fmt/format.h>

#include <cmath>

#include "commands/CommandError.h"
#include "commands/picture/Canvas.h"

namespace quoin::commands {

namespace {

struct ContextDeleter {
  void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
};

cairo_status_t appendTo(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

class CairoCanvas : public Canvas {
 public:
  CairoCanvas(const CanvasOptions& options, bool isPdf) : m_options(options), m_isPdf(isPdf) {}

  void beginPage(const PageSize& size, const Color& paper) override {
    if (!m_isPdf) {
      const double dots = m_options.dotsPerPoint;
      // A bit less than a dot more is what rounding makes of a whole number of them.
      const auto whole = [](double number) { return static_cast<int>(std::ceil(number - 1e-6)); };
      m_surface.reset(cairo_image_surface_create(CAIRO_FORMAT_RGB24, whole(size.width * dots),
                                                 whole(size.height * dots)));
      m_cairo.reset(cairo_create(m_surface.get()));
      cairo_scale(m_cairo.get(), dots, dots);
    } else if (!m_surface) {
      m_surface.reset(
          cairo_pdf_surface_create_for_stream(appendTo, &m_bytes, size.width, size.height));
      // An empty date leaves it out: the same drawing gives the same bytes.
      cairo_pdf_surface_set_metadata(m_surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
      m_cairo.reset(cairo_create(m_surface.get()));
    } else {
      cairo_pdf_surface_set_size(m_surface.get(), size.width, size.height);
    }
    cairo_set_line_cap(m_cairo.get(), CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(m_cairo.get(), CAIRO_LINE_JOIN_ROUND);
    cairo_set_fill_rule(m_cairo.get(), CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_source_rgb(m_cairo.get(), paper.red, paper.green, paper.blue);
    cairo_paint(m_cairo.get());
  }

  void endPage() override { cairo_show_page(m_cairo.get()); }

  void beginClip(const Box& box) override {
    cairo_save(m_cairo.get());
    cairo_rectangle(m_cairo.get(), box.minX, box.minY, box.width(), box.height());
    cairo_clip(m_cairo.get());
  }
  void endClip() override { cairo_restore(m_cairo.get()); }
  void beginPathClip() override {
    // Saving keeps the path for both, so the clip takes it.
    cairo_save(m_cairo.get());
    cairo_clip(m_cairo.get());
  }

  void moveTo(double x, double y) override { cairo_move_to(m_cairo.get(), x, y); }
  void lineTo(double x, double y) override { cairo_line_to(m_cairo.get(), x, y); }
  void curveTo(double x1, double y1, double x2, double y2, double x, double y) override {
    cairo_curve_to(m_cairo.get(), x1, y1, x2, y2, x, y);
  }
  void closePath() override { cairo_close_path(m_cairo.get()); }

  void stroke(const Pen& pen) override {
    setSource(pen.color, pen.opacity);
    cairo_set_line_width(m_cairo.get(), pen.width);
    cairo_set_dash(m_cairo.get(), pen.dashes.data(), static_cast<int>(pen.dashes.size()),
                   pen.dashStart);
    cairo_stroke(m_cairo.get());
  }
  void fill(const Color& color, double opacity) override {
    setSource(color, opacity);
    cairo_fill(m_cairo.get());
  }

  void text(const SetLine& line, const SheetPlace& place, const Color& color,
            double opacity) override {
    cairo_save(m_cairo.get());
    const cairo_matrix_t matrix{place.alongX, place.alongY, place.downX,
                                place.downY,  place.x,      place.y};
    cairo_transform(m_cairo.get(), &matrix);
    setSource(color, opacity);
    cairo_new_path(m_cairo.get());
    cairo_move_to(m_cairo.get(), 0.0, 0.0);
    if (m_options.hasTextOutlines) {
      cairo_set_fill_rule(m_cairo.get(), CAIRO_FILL_RULE_WINDING);
      pango_cairo_layout_line_path(m_cairo.get(), line.line);
      cairo_fill(m_cairo.get());
    } else {
      pango_cairo_show_layout_line(m_cairo.get(), line.line);
    }
    cairo_new_path(m_cairo.get());
    cairo_restore(m_cairo.get());
  }

  void image(const std::shared_ptr<const Raster>& raster, const SheetPlace& place, double opacity,
             bool isNear) override {
    cairo_save(m_cairo.get());
    const cairo_matrix_t matrix{place.alongX, place.alongY, place.downX,
                                place.downY,  place.x,      place.y};
    cairo_transform(m_cairo.get(), &matrix);
    cairo_scale(m_cairo.get(), 1.0 / raster->width, 1.0 / raster->height);
    cairo_new_path(m_cairo.get());
    if (!m_isPdf && isNear) {
      // The outermost pixels reach to the very edge instead of fading away there.
      cairo_rectangle(m_cairo.get(), 0.0, 0.0, raster->width, raster->height);
      cairo_clip(m_cairo.get());
    }
    cairo_set_source_surface(m_cairo.get(), raster->surface.get(), 0.0, 0.0);
    if (!m_isPdf && isNear) {
      cairo_pattern_set_extend(cairo_get_source(m_cairo.get()), CAIRO_EXTEND_PAD);
    }
    cairo_paint_with_alpha(m_cairo.get(), opacity);
    cairo_restore(m_cairo.get());
  }

  double dotsPerPoint() const override { return m_isPdf ? 0.0 : m_options.dotsPerPoint; }

  std::string bytes(const std::string& name) override {
    cairo_status_t status = m_cairo ? cairo_status(m_cairo.get()) : CAIRO_STATUS_NO_MEMORY;
    m_cairo.reset();
    if (!m_isPdf && status == CAIRO_STATUS_SUCCESS) {
      status = cairo_surface_write_to_png_stream(m_surface.get(), appendTo, &m_bytes);
    }
    cairo_surface_finish(m_surface.get());
    if (status == CAIRO_STATUS_SUCCESS) {
      status = m_isPdf ? cairo_surface_status(m_surface.get()) : status;
    }
    if (status != CAIRO_STATUS_SUCCESS) {
      throw CommandError(
          ExitCode::OutputUnwritable,
          fmt::format("{}: cannot write the picture: {}", name, cairo_status_to_string(status)));
    }
    return std::move(m_bytes);
  }

 private:
  void setSource(const Color& color, double opacity) {
    cairo_set_source_rgba(m_cairo.get(), color.red, color.green, color.blue, opacity);
  }

  CanvasOptions m_options;
  bool m_isPdf;
  std::string m_bytes;
  std::unique_ptr<cairo_surface_t, SurfaceDeleter> m_surface;
  std::unique_ptr<cairo_t, ContextDeleter> m_cairo;
};

}  // namespace

std::unique_ptr<Canvas> makePngCanvas(const CanvasOptions& options) {
  return std::make_unique<CairoCanvas>(options, false);
}

std::unique_ptr<Canvas> makePdfCanvas(const CanvasOptions& options) {
  return std::make_unique<CairoCanvas>(options, true);
}

}  // namespace quoin::commands
