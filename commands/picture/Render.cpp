#include "commands/picture/Render.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <unordered_map>

#include "commands/OutputFile.h"
#include "commands/picture/Canvas.h"
#include "commands/picture/DrawList.h"
#include "commands/picture/Lettering.h"
#include "commands/picture/SheetLayout.h"

namespace quoin::commands {

namespace {

/// Dots an inch where nobody says.
constexpr double kUsualDpi = 150.0;
constexpr double kPointsPerInch = 72.0;
/// Texts that would come out smaller are left out.
constexpr double kLeastTextHeight = 5.0;
/// No path of a picture's own is drawn farther outside of the page than this.
constexpr double kFarSheet = 1.0e5;
/// A circle as four cubic curves: how long their handles are.
constexpr double kHandle = 0.5522847498307936;

/// How large marks may be without hiding each other and what they mark: their distance to the
/// nearest one, in points, counts.
class MarkSizes {
 public:
  MarkSizes(const std::vector<Mark>& marks, const SheetView& view) {
    for (std::size_t i = 0; i < marks.size(); ++i) {
      m_points.push_back({view.x(marks[i].position.x), view.y(marks[i].position.y)});
      m_cells[cellOf(m_points[i].x, m_points[i].y)].push_back(i);
    }
  }

  double sizeOf(std::size_t mark, double wanted) const {
    constexpr double kShare = 0.38;  // of the distance
    constexpr double kLeast = 1.4;
    const AcGePoint2d& at = m_points[mark];
    double nearest = kCell;
    for (const double dx : {-kCell, 0.0, kCell}) {
      for (const double dy : {-kCell, 0.0, kCell}) {
        const auto cell = m_cells.find(cellOf(at.x + dx, at.y + dy));
        if (cell == m_cells.end()) {
          continue;
        }
        std::size_t looked = 0;
        for (const std::size_t other : cell->second) {
          const double distance = at.distanceTo(m_points[other]);
          // Marks at one place are one mark.
          nearest = distance > kSamePlace ? std::min(nearest, distance) : nearest;
          if (++looked == kMostLooked) {
            return std::min(wanted, kLeast);
          }
        }
      }
    }
    return std::min(wanted, std::max(kLeast, kShare * nearest));
  }

 private:
  static constexpr double kCell = 16.0;  // points
  static constexpr double kSamePlace = 0.2;
  static constexpr std::size_t kMostLooked = 64;

  static std::size_t cellOf(double x, double y) {
    const auto index = [](double at) {
      constexpr double kMost = 1e9;
      return static_cast<std::size_t>(
          static_cast<long long>(std::floor(std::clamp(at, -kMost, kMost) / kCell)));
    };
    return index(x) * 1'000'003U + index(y);
  }

  std::vector<AcGePoint2d> m_points;
  std::unordered_map<std::size_t, std::vector<std::size_t>> m_cells;
};

class SheetPainter {
 public:
  SheetPainter(Canvas& canvas, const Picture& picture, const SheetLayout& layout,
               const SheetOptions& options, bool hasGroups)
      : m_canvas(canvas),
        m_picture(picture),
        m_layout(layout),
        m_options(options),
        m_hasGroups(hasGroups),
        m_unit(layout.unit) {}

  void paint() {
    const Color paper = paperOf(m_options.theme);
    m_ink = m_options.theme == Theme::Screen ? Color{0.90, 0.91, 0.92} : palette::kInk;
    m_canvas.beginPage(m_layout.page, paper);
    m_canvas.beginClip(m_layout.view.clip);
    paintPlan();
    m_canvas.endClip();
    paintBar();
    for (const PlacedEntry& placed : m_layout.legend) {
      paintEntry(placed);
    }
    for (const PlacedText& text : m_layout.texts) {
      paintWords(text.text, {text.x, text.y}, text.size, text.isBold);
    }
    m_canvas.endPage();
  }

 private:
  double sheetX(double x) const { return m_layout.view.x(x); }
  double sheetY(double y) const { return m_layout.view.y(y); }

  void paintPlan() {
    std::size_t next = 0;
    const auto paintParts = [&](std::size_t pathsDone) {
      while (next < m_picture.drawn.size() && m_picture.drawn[next].pathsBefore <= pathsDone) {
        paintPart(m_picture.drawn[next++]);
      }
    };
    for (std::size_t i = 0; i < m_picture.paths.size(); ++i) {
      paintParts(i);
      paintPath(m_picture.paths[i]);
    }
    paintParts(m_picture.paths.size());
    for (const Label& label : m_picture.labels) {
      paintLabel(label);
    }
    const MarkSizes sizes(m_picture.marks, m_layout.view);
    for (std::size_t i = 0; i < m_picture.marks.size(); ++i) {
      const Mark& mark = m_picture.marks[i];
      const double x = sheetX(mark.position.x);
      const double y = sheetY(mark.position.y);
      if (m_layout.view.clip.grownBy(mark.size * m_unit).contains(x, y)) {
        paintMark(mark.shape, x, y, sizes.sizeOf(i, mark.size * m_unit), mark.color);
      }
    }
  }

  void paintPart(const DrawnPart& part) {
    ListStyle style;
    style.theme = m_options.theme;
    style.color = part.color;
    style.width = part.width * m_unit;
    style.hasTexts = part.hasTexts;
    if (m_options.paper || m_options.scale) {
      constexpr double kThinnest = 0.13;  // millimetres
      style.pointsPerMillimeter = kPointsPerInch / 25.4;
      style.thinnest = kThinnest * style.pointsPerMillimeter;
    }
    style.images = m_options.images.get();
    if (m_hasGroups) {
      style.layerName = m_picture.layerName;
    }
    paintList(m_canvas, *part.list, style, m_layout.view);
  }

  void paintPath(const Path& path) {
    const auto draw = [&] {
      bool isFirst = true;
      for (const AcGePoint2d& point : path.points) {
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
          continue;
        }
        const double x = std::clamp(sheetX(point.x), -kFarSheet, kFarSheet);
        const double y = std::clamp(sheetY(point.y), -kFarSheet, kFarSheet);
        isFirst ? m_canvas.moveTo(x, y) : m_canvas.lineTo(x, y);
        isFirst = false;
      }
      if (path.isClosed && !isFirst) {
        m_canvas.closePath();
      }
    };
    if (path.isFilled) {
      draw();
      m_canvas.fill(path.fill, 1.0);
    }
    const std::array dashes{6.0 * m_unit, 5.0 * m_unit};
    draw();
    m_canvas.stroke({path.color, 1.0, path.width * m_unit,
                     path.isDashed ? std::span<const double>(dashes) : std::span<const double>(),
                     0.0});
  }

  void paintLabel(const Label& label) {
    const double size = label.height * m_layout.view.scale;
    if (!(size >= kLeastTextHeight * m_unit) || size > m_layout.page.width) {
      return;
    }
    const SetLine& line = Lettering::ofProcess().set(label.text, {});
    const double share = size / line.capitals;
    const double cosine = std::cos(label.rotation);
    const double sine = std::sin(label.rotation);
    const double back = -label.alongShare * line.width * share;
    const double down = label.upShare * size;
    // On the page angles run the other way round.
    const SheetPlace place{sheetX(label.position.x) + cosine * back + sine * down,
                           sheetY(label.position.y) - sine * back + cosine * down,
                           cosine * share,
                           -sine * share,
                           sine * share,
                           cosine * share};
    m_canvas.text(line, place, label.color, 1.0);
  }

  void paintWords(const std::string& text, const AcGePoint2d& at, double size,
                  bool isBold = false) {
    const SetLine& line = Lettering::ofProcess().set(text, {Face().family, isBold, false});
    const double share = size / Lettering::kFontSize;
    m_canvas.text(line, {at.x, at.y, share, 0.0, 0.0, share}, m_ink, 1.0);
  }

  void drawBox(double x, double y, double width, double height) {
    m_canvas.moveTo(x, y);
    m_canvas.lineTo(x + width, y);
    m_canvas.lineTo(x + width, y + height);
    m_canvas.lineTo(x, y + height);
    m_canvas.closePath();
  }

  void drawDot(double x, double y, double size) {
    const double reach = kHandle * size;
    m_canvas.moveTo(x + size, y);
    m_canvas.curveTo(x + size, y + reach, x + reach, y + size, x, y + size);
    m_canvas.curveTo(x - reach, y + size, x - size, y + reach, x - size, y);
    m_canvas.curveTo(x - size, y - reach, x - reach, y - size, x, y - size);
    m_canvas.curveTo(x + reach, y - size, x + size, y - reach, x + size, y);
    m_canvas.closePath();
  }

  void paintMark(MarkShape shape, double x, double y, double size, const Color& color) {
    const auto draw = [&] {
      switch (shape) {
        case MarkShape::Dot:
          drawDot(x, y, size);
          break;
        case MarkShape::Square:
          drawBox(x - size, y - size, 2.0 * size, 2.0 * size);
          break;
        case MarkShape::Triangle:
          m_canvas.moveTo(x, y - 1.2 * size);
          m_canvas.lineTo(x + size, y + 0.8 * size);
          m_canvas.lineTo(x - size, y + 0.8 * size);
          m_canvas.closePath();
          break;
        case MarkShape::Cross:
          m_canvas.moveTo(x - size, y - size);
          m_canvas.lineTo(x + size, y + size);
          m_canvas.moveTo(x - size, y + size);
          m_canvas.lineTo(x + size, y - size);
          break;
      }
    };
    draw();
    if (shape == MarkShape::Cross) {
      m_canvas.stroke({color, 1.0, 0.45 * size, {}, 0.0});
      return;
    }
    m_canvas.fill(color, 1.0);
    // A light rim keeps marks apart from what lies under them and from each other; of the smallest
    // it would leave nothing.
    constexpr double kLeastRimmed = 2.5;
    if (size >= kLeastRimmed * m_unit) {
      draw();
      m_canvas.stroke({palette::kPaper, 1.0, m_unit, {}, 0.0});
    }
  }

  void paintBar() {
    const double x = m_layout.barX;
    const double y = m_layout.barY;
    const double width = m_layout.bar.units * m_layout.view.scale;
    const double height = 7.0 * m_unit;
    for (int part = 0; part < 4; ++part) {
      drawBox(x + 0.25 * part * width, y, 0.25 * width, height);
      m_canvas.fill(part % 2 == 0 ? m_ink : paperOf(m_options.theme), 1.0);
    }
    drawBox(x, y, width, height);
    m_canvas.stroke({m_ink, 1.0, m_unit, {}, 0.0});
    const double size = 15.0 * m_unit;
    paintWords("0", {x, y - 8.0 * m_unit}, size);
    const double half = 0.5 * Lettering::ofProcess().width(m_layout.bar.text, {}, size);
    paintWords(m_layout.bar.text, {x + std::max(width, half + size) - half, y - 8.0 * m_unit},
               size);
  }

  void paintEntry(const PlacedEntry& placed) {
    const LegendEntry& entry = *placed.entry;
    if (entry.isMark) {
      paintMark(entry.shape, placed.x + 14.0 * m_unit, placed.y, 6.0 * m_unit, entry.color);
      return;
    }
    m_canvas.moveTo(placed.x, placed.y);
    m_canvas.lineTo(placed.x + 28.0 * m_unit, placed.y);
    m_canvas.stroke({entry.color, 1.0, std::max(entry.width, 2.0) * m_unit, {}, 0.0});
  }

  Canvas& m_canvas;
  const Picture& m_picture;
  const SheetLayout& m_layout;
  const SheetOptions& m_options;
  bool m_hasGroups;
  double m_unit;
  Color m_ink = palette::kInk;
};

}  // namespace

bool isPictureFile(const std::filesystem::path& file) {
  const std::string extension = lowerCaseExtension(file);
  return extension == ".png" || extension == ".svg" || extension == ".pdf";
}

bool isPagesFile(const std::filesystem::path& file) {
  return lowerCaseExtension(file) == ".pdf";
}

std::string pictureBytes(const std::vector<Picture>& pages, const SheetOptions& options,
                         const std::filesystem::path& file) {
  const bool isPaper = options.paper || options.scale;
  CanvasOptions canvasOptions;
  const double dpi = options.dpi > 0.0 ? options.dpi : isPaper ? kUsualDpi : kPointsPerInch;
  canvasOptions.dotsPerPoint = dpi / kPointsPerInch;
  canvasOptions.hasTextOutlines = options.hasTextOutlines;
  canvasOptions.isMillimeters = isPaper;
  const std::string extension = lowerCaseExtension(file);
  const std::unique_ptr<Canvas> canvas = extension == ".svg"   ? makeSvgCanvas(canvasOptions)
                                         : extension == ".pdf" ? makePdfCanvas(canvasOptions)
                                                               : makePngCanvas(canvasOptions);
  for (const Picture& page : pages) {
    const SheetLayout layout = layOut(page, options);
    SheetPainter(*canvas, page, layout, options, extension == ".svg").paint();
  }
  return canvas->bytes(file.string());
}

std::string pictureBytes(const Picture& picture, const std::filesystem::path& file) {
  return pictureBytes(std::vector<Picture>{picture}, {}, file);
}

void renderPicture(const Picture& picture, const std::filesystem::path& file) {
  writeWholeFile(pictureBytes(picture, file), file, "write the picture");
}

}  // namespace quoin::commands
