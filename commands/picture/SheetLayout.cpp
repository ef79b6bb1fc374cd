#include "commands/picture/SheetLayout.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "commands/CommandError.h"
#include "commands/picture/DrawList.h"
#include "commands/picture/Lettering.h"

namespace quoin::commands {

namespace {

// The free sheet, in points.
constexpr double kSheetWidth = 1600.0;
constexpr double kMargin = 40.0;
constexpr double kTitleBand = 84.0;
constexpr double kTitleLine = 38.0;
constexpr double kTitleSize = 26.0;
constexpr double kSubtitleSize = 16.0;
constexpr double kSubtitleStep = 21.0;
constexpr double kMinPlanHeight = 420.0;
constexpr double kMaxPlanHeight = 1500.0;
// What stands below the plan.
constexpr double kFootBand = 78.0;
constexpr double kFootStep = 30.0;
constexpr double kNoteStep = 20.0;
constexpr double kEntrySize = 15.0;
constexpr double kNoteSize = 14.0;
constexpr double kSwatch = 36.0;
constexpr double kEntryGap = 28.0;
constexpr double kBarShare = 6.0;  // of the page's width
// Paper.
constexpr double kPointsPerMillimeter = 72.0 / 25.4;
constexpr double kPaperMargin = 10.0;  // millimetres
constexpr double kLeastUnit = 0.35;
constexpr double kMostUnit = 1.2;
/// A plan that reaches more than so many times farther than what matters is cut off, where next to
/// nothing of it stands out there.
constexpr double kFarOut = 4.0;
constexpr std::size_t kFewOf = 50;

/// Around a label as it will be set.
Box boxOf(const Label& label) {
  const SetLine& line = Lettering::ofProcess().set(label.text, {});
  const double width = line.width * label.height / line.capitals;
  const AcGeVector2d along(std::cos(label.rotation), std::sin(label.rotation));
  const AcGeVector2d up(-along.y, along.x);
  Box box;
  for (const double x : {0.0, width}) {
    for (const double y : {0.0, label.height}) {
      box.add(label.position + along * (x - label.alongShare * width) +
              up * (y - label.upShare * label.height));
    }
  }
  return box;
}

/// A single point or line needs room to stand in.
Box withRoom(Box box) {
  if (box.isEmpty()) {
    box.add(0.0, 0.0);
  }
  const double least = std::max({box.width(), box.height(), 1e-9}) * 1e-3;
  if (box.width() < least) {
    box.minX -= 0.5 * least;
    box.maxX += 0.5 * least;
  }
  if (box.height() < least) {
    box.minY -= 0.5 * least;
    box.maxY += 0.5 * least;
  }
  return box;
}

/// The words and signs below the plan, laid out in rows from y = 0.
class Foot {
 public:
  Foot(const Picture& picture, double left, double width, double unit, const std::string& title,
       const std::vector<std::string>& notes)
      : m_right(left + width) {
    Lettering& letters = Lettering::ofProcess();
    m_y = 0.5 * kFootBand * unit + 8.0 * unit;
    m_barX = left;
    m_barY = m_y;
    // The longest bar there may be, with its words.
    double x = left + width / kBarShare + 110.0 * unit;
    const auto place = [&](double needed) {
      if (x + needed > m_right && x > left) {
        x = left;
        m_y += kFootStep * unit;
      }
      const double at = x;
      x += needed + kEntryGap * unit;
      return at;
    };
    if (!title.empty()) {
      const double needed = letters.width(title, {}, kEntrySize * unit);
      const double at = place(std::min(needed, width));
      m_texts.push_back({title, at, m_y + 5.0 * unit, kEntrySize * unit, false});
    }
    for (const LegendEntry& entry : picture.legend) {
      const double at = place(kSwatch * unit + letters.width(entry.text, {}, kEntrySize * unit));
      m_legend.push_back({&entry, at, m_y});
      m_texts.push_back(
          {entry.text, at + kSwatch * unit, m_y + 5.0 * unit, kEntrySize * unit, false});
    }
    m_y += 14.0 * unit;
    for (const std::string& note : notes) {
      for (std::string& line : letters.wrapped(note, {}, kNoteSize * unit, width)) {
        m_y += kNoteStep * unit;
        m_texts.push_back({std::move(line), left, m_y, kNoteSize * unit, false});
      }
    }
    m_height = m_y + 17.0 * unit;
  }

  double height() const { return m_height; }

  void placeAt(double top, SheetLayout& layout) const {
    layout.barX = m_barX;
    layout.barY = m_barY + top;
    for (PlacedText text : m_texts) {
      text.y += top;
      layout.texts.push_back(std::move(text));
    }
    for (PlacedEntry entry : m_legend) {
      entry.y += top;
      layout.legend.push_back(entry);
    }
  }

 private:
  double m_right;
  double m_y = 0.0;
  double m_barX = 0.0;
  double m_barY = 0.0;
  double m_height = 0.0;
  std::vector<PlacedText> m_texts;
  std::vector<PlacedEntry> m_legend;
};

/// Puts a view into the middle of an area of the page.
void center(const Box& shown, double scale, const Box& area, double edge, SheetLayout& layout) {
  SheetView& view = layout.view;
  view.scale = scale;
  view.minX = shown.minX;
  view.minY = shown.minY;
  view.left = area.minX + 0.5 * (area.width() - shown.width() * scale);
  view.bottom = area.maxY - 0.5 * (area.height() - shown.height() * scale);
  view.clip = area.grownBy(edge);
}

void setBar(const Picture& picture, double width, SheetLayout& layout) {
  layout.bar = roundLength(width / kBarShare / layout.view.scale, picture.lengthKind,
                           picture.millimetersPerUnit);
}

std::vector<std::string> notesOf(const Picture& picture, const std::string& leftOut) {
  std::vector<std::string> notes = picture.warnings;
  if (!leftOut.empty()) {
    notes.push_back(leftOut);
  }
  return notes;
}

SheetLayout freeSheet(const Picture& picture, const Box& shown, const std::string& leftOut) {
  SheetLayout layout;
  layout.leftOut = leftOut;
  Lettering& letters = Lettering::ofProcess();
  const double width = kSheetWidth - 2.0 * kMargin;
  double y = kTitleLine;
  const Face bold{Face().family, true, false};
  for (std::string& line : letters.wrapped(picture.title, bold, kTitleSize, width)) {
    layout.texts.push_back({std::move(line), kMargin, y, kTitleSize, true});
    y += kTitleSize + 6.0;
  }
  // From below the last line of the title.
  y = std::max(y - 8.0, kTitleLine + 24.0);
  for (std::string& line : letters.wrapped(picture.subtitle, {}, kSubtitleSize, width)) {
    layout.texts.push_back({std::move(line), kMargin, y, kSubtitleSize, false});
    y += kSubtitleStep;
  }
  const double top = std::max(kTitleBand, y + 1.0);
  const double height =
      std::clamp(width * shown.height() / shown.width(), kMinPlanHeight, kMaxPlanHeight);
  const Foot foot(picture, kMargin, width, 1.0, "", notesOf(picture, leftOut));
  layout.page = {kSheetWidth, std::ceil(top + height + foot.height())};
  foot.placeAt(top + height, layout);
  const Box area{kMargin, top, kMargin + width, top + height};
  center(shown, std::min(width / shown.width(), height / shown.height()), area, 0.4 * kMargin,
         layout);
  // A plan's outermost lines stand on dots of a PNG rather than between them.
  layout.view.left = std::floor(layout.view.left) + 0.5;
  layout.view.bottom = std::floor(layout.view.bottom) + 0.5;
  setBar(picture, width, layout);
  return layout;
}

/// Paper in true size: the plan, and one line with its name and scale below.
class PaperSheet {
 public:
  PaperSheet(const Picture& picture, const SheetOptions& options, const Box& shown,
             const std::string& leftOut)
      : m_picture(picture), m_options(options), m_shown(shown), m_leftOut(leftOut) {
    // Where a drawing has no unit, one is a millimetre.
    m_millimeters = picture.millimetersPerUnit > 0.0 ? picture.millimetersPerUnit : 1.0;
  }

  SheetLayout layOut() const {
    if (!m_options.paper) {
      return onOwnPaper();
    }
    PaperSize paper = *m_options.paper;
    if (paper.turns) {
      PaperSize turned = paper;
      std::swap(turned.width, turned.height);
      paper = least(turned) < least(paper) ? turned : paper;
    }
    const double fitting = least(paper);
    if (m_options.scale && *m_options.scale < fitting * (1.0 - 1e-9)) {
      throw CommandError(ExitCode::Usage, unfit(paper, fitting));
    }
    return onPaper(paper, m_options.scale ? *m_options.scale : usualScaleFrom(fitting));
  }

 private:
  static double unitOf(const PaperSize& paper) {
    return std::clamp(paper.width * kPointsPerMillimeter / kSheetWidth, kLeastUnit, kMostUnit);
  }
  Foot footOf(const PaperSize& paper, double scale) const {
    const double left = kPaperMargin * kPointsPerMillimeter;
    return Foot(m_picture, left, paper.width * kPointsPerMillimeter - 2.0 * left, unitOf(paper),
                m_picture.title + "   " + scaleText(scale), notesOf(m_picture, m_leftOut));
  }
  /// The plan's place on the paper, in points.
  Box areaOf(const PaperSize& paper) const {
    const double edge = kPaperMargin * kPointsPerMillimeter;
    // The title's length hardly changes with the scale.
    return {edge, edge, paper.width * kPointsPerMillimeter - edge,
            paper.height * kPointsPerMillimeter - footOf(paper, 100.0).height()};
  }
  /// The least scale in which the plan fits.
  double least(const PaperSize& paper) const {
    const Box area = areaOf(paper);
    if (!(area.width() > 0.0 && area.height() > 0.0)) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("{} is too small for a plan with its scale", paper.name));
    }
    return m_millimeters * kPointsPerMillimeter *
           std::max(m_shown.width() / area.width(), m_shown.height() / area.height());
  }

  std::string unfit(const PaperSize& paper, double fitting) const {
    const double shown = m_millimeters / *m_options.scale;
    return fmt::format(
        "the plan does not fit {} at {}: it takes {:.0f} x {:.0f} mm there; at {} it fits, and "
        "--window takes a part of it",
        paper.name, scaleText(*m_options.scale), std::ceil(m_shown.width() * shown),
        std::ceil(m_shown.height() * shown), scaleText(usualScaleFrom(fitting)));
  }

  SheetLayout onPaper(const PaperSize& paper, double scale) const {
    SheetLayout layout;
    layout.leftOut = m_leftOut;
    layout.page = {paper.width * kPointsPerMillimeter, paper.height * kPointsPerMillimeter};
    layout.unit = unitOf(paper);
    const Box area = areaOf(paper);
    footOf(paper, scale).placeAt(area.maxY, layout);
    center(m_shown, m_millimeters * kPointsPerMillimeter / scale, area, 0.0, layout);
    setBar(m_picture, area.width(), layout);
    return layout;
  }

  /// A page as large as the plan needs in its scale.
  SheetLayout onOwnPaper() const {
    constexpr double kLeastSide = 150.0;                           // millimetres, for the words
    constexpr double kMostSide = 14'400.0 / kPointsPerMillimeter;  // what PDF viewers show
    const double scale = *m_options.scale;
    PaperSize paper;
    paper.name = "a page of its own";
    paper.width =
        std::max(kLeastSide, m_shown.width() * m_millimeters / scale + 2.0 * kPaperMargin);
    paper.height = m_shown.height() * m_millimeters / scale + kPaperMargin +
                   footOf(paper, scale).height() / kPointsPerMillimeter;
    if (!(std::max(paper.width, paper.height) <= kMostSide)) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("at {} the plan takes {:.0f} x {:.0f} mm, which is no page; "
                                     "choose a smaller scale or a --window",
                                     scaleText(scale), paper.width, paper.height));
    }
    return onPaper(paper, scale);
  }

  const Picture& m_picture;
  const SheetOptions& m_options;
  const Box& m_shown;
  const std::string& m_leftOut;
  double m_millimeters;
};

}  // namespace

Box viewOf(const Picture& picture, std::string& leftOut) {
  Box all;
  for (const Path& path : picture.paths) {
    for (const AcGePoint2d& point : path.points) {
      all.add(point);
    }
  }
  for (const Mark& mark : picture.marks) {
    all.add(mark.position);
  }
  for (const Label& label : picture.labels) {
    all.add(boxOf(label));
  }
  for (const DrawnPart& part : picture.drawn) {
    all.add(part.list->extents());
  }
  Box focus;
  for (const AcGePoint2d& point : picture.focus) {
    focus.add(point);
  }
  if (!focus.isEmpty()) {
    const double size = std::max(focus.width(), focus.height());
    if (all.isEmpty() || std::max(all.width(), all.height()) > kFarOut * size) {
      const Box kept = focus.grownBy(kFarOut * size);
      std::size_t count = 0;
      std::size_t far = 0;
      for (const DrawnPart& part : picture.drawn) {
        count += part.list->count();
        far += part.list->count() - part.list->countIn(kept);
      }
      if (far * kFewOf <= count) {
        all = focus.grownBy(0.1 * size);
        if (far > 0) {
          leftOut = far == 1 ? "one thing lies far off what is worked on, and is not in view"
                             : fmt::format(
                                   "{} things lie far off what is worked on, and are not "
                                   "in view",
                                   far);
        }
      }
    }
  }
  return withRoom(all);
}

SheetLayout layOut(const Picture& picture, const SheetOptions& options) {
  std::string leftOut;
  const Box shown = options.window ? withRoom(*options.window) : viewOf(picture, leftOut);
  return options.paper || options.scale ? PaperSheet(picture, options, shown, leftOut).layOut()
                                        : freeSheet(picture, shown, leftOut);
}

}  // namespace quoin::commands
