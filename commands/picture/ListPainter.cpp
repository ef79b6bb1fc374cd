#include "commands/picture/ListPainter.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <vector>

#include "commands/Progress.h"
#include "commands/picture/SheetPath.h"
#include "embedded/text/FontMetrics.h"

namespace quoin::commands {

namespace {

constexpr Color kDark{0.13, 0.16, 0.19};
constexpr Color kBlack{0.0, 0.0, 0.0};
constexpr Color kWhite{1.0, 1.0, 1.0};
/// Fills behind marks: lighter than lines, so that both show on them.
constexpr Color kFaintFill{0.88, 0.89, 0.90};
/// What is filled but no thicker than this is a line to the eye.
constexpr double kLineThickness = 6.0;  // points
/// Pieces that are stroked at once. More make a file smaller, but a page of dots slower.
constexpr std::size_t kMostJoinedDots = 200;
constexpr std::size_t kMostJoined = 20'000;
/// Dashes that repeat within so little cannot be told apart.
constexpr double kLeastPeriod = 1.5;  // points
/// Capitals lower than this are drawn as a bar on a page of dots.
constexpr double kLeastLetters = 1.8;  // dots
/// And no letters are larger than this: nobody reads them, and libraries give up.
constexpr double kMostLetters = 5000.0;  // points
constexpr double kBarOpacity = 0.45;
/// Of images behind marks.
constexpr double kFaintImage = 0.35;

bool isSame(const Color& a, const Color& b) {
  return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

class Painter {
 public:
  Painter(Canvas& canvas, const DrawList& list, const ListStyle& style, const SheetView& view)
      : m_canvas(canvas),
        m_list(list),
        m_style(style),
        m_view(view),
        m_dots(canvas.dotsPerPoint()),
        m_path(canvas, view, m_dots > 0.0 ? kApartDots / m_dots : kApartPoints),
        m_shown(list.looks().size()) {
    if (m_dots > 0.0) {
      m_columns = static_cast<std::size_t>(std::ceil(view.clip.width() * m_dots)) + 1;
      m_rows = static_cast<std::size_t>(std::ceil(view.clip.height() * m_dots)) + 1;
      m_stamps.resize(m_columns * m_rows);
    }
  }

  void paint() {
    Progress progress("Painting the picture");
    std::size_t done = 0;
    for (DrawList::Reader reader(m_list); reader.next();) {
      if (!progress.step(++done, m_list.count())) {
        Progress::checkInterrupt();
      }
      switch (reader.kind()) {
        case DrawList::Kind::Stroke:
          paintStroke(reader);
          break;
        case DrawList::Kind::Fill:
          paintFill(reader);
          break;
        case DrawList::Kind::Wipe:
          paintWipe(reader);
          break;
        case DrawList::Kind::Text:
          paintText(reader);
          break;
        case DrawList::Kind::Image:
          paintImage(reader);
          break;
        case DrawList::Kind::BeginClip:
          flush();
          cover();
          drawFill(reader.path(), m_path.onSheet(DrawList::boxOf(reader.path())));
          m_canvas.beginPathClip();
          ++m_clips;
          break;
        case DrawList::Kind::EndClip:
          flush();
          cover();
          m_canvas.endClip();
          --m_clips;
          break;
      }
    }
    flush();
    if (m_style.layerName) {
      m_canvas.setGroup("");
    }
    for (; m_clips > 0; --m_clips) {
      m_canvas.endClip();
    }
  }

 private:
  static constexpr double kApartDots = 0.35;
  static constexpr double kApartPoints = 0.02;

  /// What a look is on this page.
  struct Shown {
    bool isKnown = false;
    std::uint32_t pen = 0;  // equal for looks that show alike
    Color color{};
    Color fill{};
    double opacity = 1.0;
    double width = 1.0;
    std::vector<double> dashes;
    double dashStart = 0.0;
    std::string layer;
  };

  const Shown& shown(const DrawList::Reader& reader) {
    Shown& shown = m_shown[reader.lookIndex()];
    if (!shown.isKnown) {
      shown = make(reader.look());
    }
    return shown;
  }

  Shown make(const DrawList::Look& look) {
    Shown made;
    made.isKnown = true;
    if (m_style.color) {
      made.color = made.fill = *m_style.color;
      made.width = m_style.width;
    } else if (m_style.theme == Theme::Faint) {
      made.color = palette::kPlan;
      made.fill = kFaintFill;
      // Wide lines stay wider than others, and marks are wider still.
      constexpr double kWidestFaint = 1.6;
      made.width =
          std::clamp(look.lineWeight * m_style.pointsPerMillimeter, kPlanThinnest, kWidestFaint);
    } else {
      const Color own{look.color.red / 255.0, look.color.green / 255.0, look.color.blue / 255.0};
      const Color paper = paperOf(m_style.theme);
      const Color foreground = m_style.theme == Theme::Screen ? kWhite : kBlack;
      made.fill = look.color.isForeground ? foreground : own;
      // Lines of the paper's own colour would not show; fills of it hide on purpose.
      made.color = look.color.isForeground || isSame(own, paper) ? foreground : own;
      made.opacity = look.opacity;
      made.width = std::max(look.lineWeight * m_style.pointsPerMillimeter, m_style.thinnest);
    }
    setDashes(look.dashes, made);
    if (m_style.layerName) {
      made.layer = m_style.layerName(look.layer);
    }
    made.pen =
        m_pens
            .try_emplace(std::tuple(made.color.red, made.color.green, made.color.blue, made.opacity,
                                    made.width, made.dashes, made.dashStart, made.layer),
                         static_cast<std::uint32_t>(m_pens.size()))
            .first->second;
    return made;
  }

  /// Strokes and gaps in turn, beginning with a stroke, as pages take them.
  void setDashes(const std::vector<double>& pattern, Shown& made) const {
    double period = 0.0;
    double leadingGap = 0.0;
    for (const double dash : pattern) {
      const double length = std::fabs(dash) * m_view.scale;
      const bool isGap = dash < 0.0;
      const bool isNextGap = made.dashes.size() % 2 != 0;
      period += length;
      if (made.dashes.empty() && isGap) {
        leadingGap += length;
      } else if (isGap == isNextGap) {
        made.dashes.push_back(length);
      } else {
        made.dashes.back() += length;
      }
    }
    if (leadingGap > 0.0 && !made.dashes.empty()) {
      made.dashes.size() % 2 != 0 ? made.dashes.push_back(leadingGap)
                                  : static_cast<void>(made.dashes.back() += leadingGap);
      made.dashStart = period - leadingGap;
    }
    if (made.dashes.size() % 2 != 0 && made.dashes.size() > 1) {
      // The last stroke runs on into the first.
      made.dashStart = made.dashes.back();
      made.dashes.front() += made.dashes.back();
      made.dashes.pop_back();
    }
    if (made.dashes.size() < 2 || period < kLeastPeriod || !std::isfinite(period)) {
      made.dashes.clear();
      made.dashStart = 0.0;
    }
    // Dots are as long as the line is wide, at the cost of the gaps behind them.
    for (std::size_t i = 0; i + 1 < made.dashes.size(); i += 2) {
      const double more = made.width - made.dashes[i];
      if (more > 0.0 && made.dashes[i + 1] > 2.0 * more) {
        made.dashes[i] += more;
        made.dashes[i + 1] -= more;
      }
    }
  }

  Pen penOf(const Shown& shown) const {
    return {shown.color, shown.opacity, shown.width, shown.dashes, shown.dashStart};
  }

  /// Strokes what has been put together.
  void flush() {
    if (m_joined > 0) {
      m_canvas.stroke(penOf(*m_open));
      m_joined = 0;
    }
  }
  /// Ends the strokes before something else is drawn.
  void setGroup(const Shown& shown) {
    flush();
    if (m_style.layerName) {
      m_canvas.setGroup(shown.layer);
    }
  }
  /// What was drawn is covered: dots beneath it count no more.
  void cover() { ++m_cover; }

  /// Whether a dot of this pen was drawn at this place already.
  bool isStamped(const Box& sheet, std::uint32_t pen) {
    const double x = 0.5 * (sheet.minX + sheet.maxX);
    const double y = 0.5 * (sheet.minY + sheet.maxY);
    const auto column = static_cast<std::size_t>(std::max(0.0, (x - m_view.clip.minX) * m_dots));
    const auto row = static_cast<std::size_t>(std::max(0.0, (y - m_view.clip.minY) * m_dots));
    if (column >= m_columns || row >= m_rows) {
      return true;  // outside
    }
    std::pair<std::uint32_t, std::uint32_t>& stamp = m_stamps[row * m_columns + column];
    const std::pair<std::uint32_t, std::uint32_t> own{pen + 1, m_cover};
    if (stamp == own) {
      return true;
    }
    stamp = own;
    return false;
  }

  void paintStroke(const DrawList::Reader& reader) {
    const Shown& look = shown(reader);
    const Box sheet = m_path.onSheet(DrawList::boxOf(reader.path()));
    if (!sheet.touches(m_view.clip.grownBy(look.width))) {
      return;
    }
    const bool isDot = m_dots > 0.0 && sheet.width() * m_dots < kDot &&
                       sheet.height() * m_dots < kDot && look.opacity >= 1.0;
    if (isDot && isStamped(sheet, look.pen)) {
      return;
    }
    if (!m_path.isNear(sheet)) {
      setGroup(look);
      m_path.strokeFar(reader.path(), penOf(look));
      return;
    }
    // Where strokes show through each other they must stay apart.
    const std::size_t most = look.opacity < 1.0 ? 1 : m_dots > 0.0 ? kMostJoinedDots : kMostJoined;
    if (m_joined > 0 && (m_open->pen != look.pen || m_joined >= most)) {
      flush();
    }
    if (m_joined == 0) {
      setGroup(look);
      m_open = &look;
    }
    m_joined += m_path.draw(reader.path());
  }

  /// Twice the area over the length around it: how thick what is filled is.
  double thicknessOf(const DrawList::PathView& path) const {
    double area = 0.0;
    double length = 0.0;
    AcGePoint2d start;
    AcGePoint2d at;
    const auto go = [&](double x, double y) {
      area += (at.x - start.x) * (y - start.y) - (x - start.x) * (at.y - start.y);
      length += std::hypot(x - at.x, y - at.y);
      at = {x, y};
    };
    const double* numbers = path.numbers;
    for (std::size_t i = 0; i < path.verbCount; ++i) {
      switch (path.verbs[i]) {
        case DrawList::Verb::Move:
          start = at = {numbers[0], numbers[1]};
          numbers += 2;
          break;
        case DrawList::Verb::Line:
          go(numbers[0], numbers[1]);
          numbers += 2;
          break;
        case DrawList::Verb::Arc:
          for (int part = 1; part <= kArcParts; ++part) {
            const double angle = numbers[6] + numbers[7] * part / kArcParts;
            go(numbers[0] + numbers[2] * std::cos(angle) + numbers[4] * std::sin(angle),
               numbers[1] + numbers[3] * std::cos(angle) + numbers[5] * std::sin(angle));
          }
          numbers += 8;
          break;
        case DrawList::Verb::Close:
          go(start.x, start.y);
          break;
      }
    }
    return length > 0.0 ? std::fabs(area) / length * m_view.scale : 0.0;
  }

  void drawFill(const DrawList::PathView& path, const Box& sheet) {
    m_path.isNear(sheet) ? static_cast<void>(m_path.draw(path)) : m_path.drawFarFill(path);
  }

  void paintFill(const DrawList::Reader& reader) {
    const Shown& look = shown(reader);
    const Box sheet = m_path.onSheet(DrawList::boxOf(reader.path()));
    if (!sheet.touches(m_view.clip)) {
      return;
    }
    const bool isDot = m_dots > 0.0 && sheet.width() * m_dots < kDot &&
                       sheet.height() * m_dots < kDot && look.opacity >= 1.0;
    if (isDot && isStamped(sheet, look.pen)) {
      return;
    }
    const double thickness = thicknessOf(reader.path());
    setGroup(look);
    if (!isDot) {
      cover();
    }
    drawFill(reader.path(), sheet);
    m_canvas.fill(thickness < kLineThickness ? look.color : look.fill, look.opacity);
    // What is thinner than the thinnest line would fade away.
    if (thickness < look.width && m_path.isNear(sheet)) {
      m_path.draw(reader.path());
      const double width = m_style.thinnest - thickness;
      m_canvas.stroke({look.color, look.opacity, std::max(width, 0.1), {}, 0.0});
    }
  }

  void paintWipe(const DrawList::Reader& reader) {
    const Box sheet = m_path.onSheet(DrawList::boxOf(reader.path()));
    if (sheet.touches(m_view.clip)) {
      flush();
      cover();
      drawFill(reader.path(), sheet);
      m_canvas.fill(paperOf(m_style.theme), 1.0);
    }
  }

  void paintText(const DrawList::Reader& reader) {
    const DrawList::Text& text = reader.text();
    if (!m_style.hasTexts || !m_path.onSheet(text.box()).touches(m_view.clip)) {
      return;
    }
    const Shown& look = shown(reader);
    const double capitals = text.up.length() * m_view.scale;
    if (!(capitals > 0.0) || capitals > kMostLetters) {
      return;
    }
    setGroup(look);
    if (m_dots > 0.0 && capitals * m_dots < kLeastLetters) {
      strokeAlong(text, 0.5, std::max(0.6 * capitals, 0.4 / m_dots), look, kBarOpacity);
      return;
    }
    const text::Family family = text::familyFor(m_list.fonts()[text.font]);
    const SetLine& line = Lettering::ofProcess().set(
        text.text, {family.name, family.isBold || (text.flags & DrawList::Text::kBold) != 0,
                    (text.flags & DrawList::Text::kItalic) != 0});
    const double down = capitals / line.capitals;
    double along = line.width > 0.0 ? text.width * m_view.scale / line.width : 0.0;
    if (!(along > 0.0)) {
      along = down;
    }
    const AcGePoint2d start = text.start();
    const AcGeVector2d up = text.up * (down / text.up.length());
    SheetPlace place{m_view.x(start.x),
                     m_view.y(start.y),
                     text.along.x * along,
                     -text.along.y * along,
                     -up.x,
                     up.y};
    const double area = place.alongX * place.downY - place.alongY * place.downX;
    if (!std::isfinite(area) || std::fabs(area) < kLeastArea) {
      return;
    }
    m_canvas.text(line, place, look.color, look.opacity);
    // Of the height of capitals, above the base line.
    const double stroke = 0.08 * capitals;
    if (text.flags & DrawList::Text::kUnderlined) {
      strokeAlong(text, -0.22, stroke, look, 1.0);
    }
    if (text.flags & DrawList::Text::kOverlined) {
      strokeAlong(text, 1.22, stroke, look, 1.0);
    }
    if (text.flags & DrawList::Text::kStruckThrough) {
      strokeAlong(text, 0.42, stroke, look, 1.0);
    }
  }

  /// A line along a text, at a height in those of its capitals.
  void strokeAlong(const DrawList::Text& text, double height, double width, const Shown& look,
                   double opacity) {
    const AcGePoint2d from = text.start() + text.up * height;
    const AcGePoint2d to = from + text.along * text.width;
    m_canvas.moveTo(m_view.x(from.x), m_view.y(from.y));
    m_canvas.lineTo(m_view.x(to.x), m_view.y(to.y));
    m_canvas.stroke({look.color, look.opacity * opacity, width, {}, 0.0});
  }

  /// An image in its frame; without its file, the frame with the name of it.
  void paintImage(const DrawList::Reader& reader) {
    const DrawList::Image& image = reader.image();
    const Shown& look = shown(reader);
    Box box;
    for (const AcGePoint2d& corner : image.clip) {
      box.add(corner);
    }
    const Box sheet = m_path.onSheet(box);
    if (box.isEmpty() || !sheet.touches(m_view.clip)) {
      return;
    }
    setGroup(look);
    const bool isShown = paintRaster(image, look, sheet);
    if (!m_path.isNear(sheet)) {
      return;
    }
    for (std::size_t i = 0; i < image.clip.size(); ++i) {
      const double x = m_view.x(image.clip[i].x);
      const double y = m_view.y(image.clip[i].y);
      i == 0 ? m_canvas.moveTo(x, y) : m_canvas.lineTo(x, y);
    }
    m_canvas.closePath();
    m_canvas.stroke(penOf(look));
    if (!isShown) {
      paintImageName(image, look, sheet);
    }
  }

  bool paintRaster(const DrawList::Image& image, const Shown& look, const Box& sheet) {
    if (!m_style.images) {
      return false;
    }
    const AcGePoint2d top = image.origin + image.v;
    const SheetPlace place{m_view.x(top.x),           m_view.y(top.y),
                           image.u.x * m_view.scale,  -image.u.y * m_view.scale,
                           -image.v.x * m_view.scale, image.v.y * m_view.scale};
    const double area = place.alongX * place.downY - place.alongY * place.downX;
    if (!std::isfinite(area) || std::fabs(area) < kLeastArea) {
      return false;
    }
    const double dots = m_view.scale * (m_dots > 0.0 ? m_dots : kImageDotsPerPoint);
    const std::shared_ptr<const Raster> raster =
        m_style.images->raster(image.path, image.u.length() * dots, image.v.length() * dots);
    if (!raster) {
      return false;
    }
    cover();
    if (image.isClipped) {
      drawCorners(image.clip, sheet);
      m_canvas.beginPathClip();
      if (m_style.layerName) {
        m_canvas.setGroup(look.layer);
      }
    }
    Box whole;
    for (const AcGeVector2d& corner :
         {AcGeVector2d(0.0, 0.0), image.u, image.v, image.u + image.v}) {
      whole.add(image.origin + corner);
    }
    const double faint = m_style.theme == Theme::Faint ? kFaintImage : 1.0;
    m_canvas.image(raster, place, look.opacity * faint, m_path.isNear(m_path.onSheet(whole)));
    if (image.isClipped) {
      m_canvas.endClip();
      if (m_style.layerName) {
        m_canvas.setGroup(look.layer);
      }
    }
    return true;
  }

  void drawCorners(const std::vector<AcGePoint2d>& corners, const Box& sheet) {
    std::vector<DrawList::Verb> verbs;
    std::vector<double> numbers;
    for (const AcGePoint2d& corner : corners) {
      verbs.push_back(verbs.empty() ? DrawList::Verb::Move : DrawList::Verb::Line);
      numbers.push_back(corner.x);
      numbers.push_back(corner.y);
    }
    verbs.push_back(DrawList::Verb::Close);
    drawFill({verbs.data(), verbs.size(), numbers.data()}, sheet);
  }

  void paintImageName(const DrawList::Image& image, const Shown& look, const Box& sheet) {
    const std::string name = image.path.substr(image.path.find_last_of("/\\") + 1);
    const SetLine& line = Lettering::ofProcess().set(name, {});
    constexpr double kShare = 0.7;  // of the frame
    constexpr double kMostSize = 14.0;
    const double size = std::min({kShare * sheet.width() / std::max(line.width, 1.0),
                                  kShare * sheet.height() / Lettering::kFontSize,
                                  kMostSize / Lettering::kFontSize});
    if (!m_style.hasTexts || name.empty() || !(size * line.capitals > 1.0)) {
      return;
    }
    const double x = 0.5 * (sheet.minX + sheet.maxX - line.width * size);
    const double y = 0.5 * (sheet.minY + sheet.maxY + line.capitals * size);
    m_canvas.text(line, {x, y, size, 0.0, 0.0, size}, look.color, look.opacity);
  }

  static constexpr double kPlanThinnest = 1.0;  // points
  static constexpr double kDot = 0.75;          // dots: smaller things are one
  static constexpr double kLeastArea = 1e-9;
  static constexpr int kArcParts = 16;

  Canvas& m_canvas;
  const DrawList& m_list;
  const ListStyle& m_style;
  const SheetView& m_view;
  double m_dots;
  SheetPath m_path;
  std::vector<Shown> m_shown;
  std::map<
      std::tuple<double, double, double, double, double, std::vector<double>, double, std::string>,
      std::uint32_t>
      m_pens;
  const Shown* m_open = nullptr;  // what is being put together
  std::size_t m_joined = 0;
  std::uint32_t m_cover = 0;
  int m_clips = 0;
  std::size_t m_columns = 0;
  std::size_t m_rows = 0;
  /// Which pen has a dot at which place, and how much covered it then.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> m_stamps;
};

}  // namespace

Color paperOf(Theme theme) {
  return theme == Theme::Screen ? kDark : kWhite;
}

void findImages(ImageFiles& images, const DrawList& list, double dotsPerUnit) {
  for (DrawList::Reader reader(list); reader.next();) {
    if (reader.kind() == DrawList::Kind::Image) {
      const DrawList::Image& image = reader.image();
      images.raster(image.path, image.u.length() * dotsPerUnit, image.v.length() * dotsPerUnit);
    }
  }
}

void paintList(Canvas& canvas, const DrawList& list, const ListStyle& style,
               const SheetView& view) {
  Painter(canvas, list, style, view).paint();
}

double luminanceOf(const Color& color) {
  const auto linear = [](double share) {
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrastOf(const Color& a, const Color& b) {
  const double first = luminanceOf(a);
  const double second = luminanceOf(b);
  return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

}  // namespace quoin::commands
