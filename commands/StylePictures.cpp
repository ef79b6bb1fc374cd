#include "commands/StylePictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "commands/picture/PictureParts.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

constexpr double kStyleWidth = 2.4;

std::vector<double> offsetsOf(const AcDbMlineStyle& style) {
  std::vector<double> offsets;
  for (int i = 0; i < style.numElements(); ++i) {
    double offset = 0.0;
    AcCmColor color;
    AcDbObjectId linetype;
    style.getElementAt(i, offset, color, linetype);
    offsets.push_back(offset);
  }
  return offsets;
}

/// Keeps room around a sample, for texts and ends of lines.
void addMargin(Picture& picture, const AcGePoint2d& low, const AcGePoint2d& high) {
  Path path;
  path.points = {low, {high.x, low.y}, high, {low.x, high.y}};
  path.isClosed = true;
  path.color = palette::kPaper;
  picture.paths.push_back(std::move(path));
}

/// The size of a dimension's parts in drawing units.
class Dimension {
 public:
  Dimension(Picture& picture, const AcDbDimStyleTableRecord& style)
      : m_picture(picture),
        m_style(style),
        // 0 stands for the scale of a layout's window, which a sample has none of.
        m_scale(style.dimscale() > 0.0 ? style.dimscale() : 1.0),
        m_length(kTextHeights * style.dimtxt() * m_scale),
        m_height(kRise * (style.dimtxt() + style.dimexo()) * m_scale) {}

  void draw() {
    for (const double x : {0.0, m_length}) {
      addLine(m_picture, {x, m_style.dimexo() * m_scale, 0.0},
              {x, m_height + m_style.dimexe() * m_scale, 0.0}, palette::kFirst, kStyleWidth);
      addMark(m_picture, {x, 0.0, 0.0}, MarkShape::Dot, palette::kMark, 5.0);
      addArrow(x);
    }
    addLine(m_picture, {0.0, m_height, 0.0}, {m_length, m_height, 0.0}, palette::kFirst,
            kStyleWidth);
    Label text;
    const bool isAbove = m_style.dimtad() != 0;
    text.text =
        fmt::format("{:.{}f}", m_length * m_style.dimlfac(), std::clamp(m_style.dimdec(), 0, 8));
    text.height = m_style.dimtxt() * m_scale;
    text.position = {0.5 * m_length, m_height + (isAbove ? m_style.dimgap() * m_scale : 0.0)};
    text.alongShare = 0.5;
    text.upShare = isAbove ? 0.0 : 0.5;
    text.color = palette::kInk;
    m_picture.labels.push_back(std::move(text));
    // What is measured: the edge that the two points are on.
    addLine(m_picture, {-kMargin * m_length, 0.0, 0.0}, {(1.0 + kMargin) * m_length, 0.0, 0.0},
            palette::kPlan, kStyleWidth);
    const double above = (2.0 * m_style.dimtxt() + m_style.dimgap()) * m_scale;
    addMargin(m_picture, {-kMargin * m_length, -kMargin * m_height},
              {(1.0 + kMargin) * m_length, m_height + above});
  }

 private:
  static constexpr double kTextHeights = 20.0;  // of length, so that any number fits
  static constexpr double kRise = 1.5;
  static constexpr double kMargin = 0.1;

  /// A slanted tick where a block stands for the arrow, else the host's filled arrow.
  void addArrow(double x) {
    const double size = m_style.dimasz() * m_scale;
    if (!m_style.dimblk().isNull()) {
      addLine(m_picture, {x - 0.5 * size, m_height - 0.5 * size, 0.0},
              {x + 0.5 * size, m_height + 0.5 * size, 0.0}, palette::kFirst, 3.0 * kStyleWidth);
      return;
    }
    constexpr double kSlope = 1.0 / 6.0;  // of the arrow's sides
    const double inwards = x > 0.0 ? -size : size;
    Path arrow;
    arrow.points = {{x, m_height},
                    {x + inwards, m_height + kSlope * size},
                    {x + inwards, m_height - kSlope * size}};
    arrow.isClosed = true;
    arrow.isFilled = true;
    arrow.color = arrow.fill = palette::kFirst;
    m_picture.paths.push_back(std::move(arrow));
  }

  Picture& m_picture;
  const AcDbDimStyleTableRecord& m_style;
  double m_scale;
  double m_length;
  double m_height;
};

}  // namespace

Picture mlineSample(const Drawing& drawing, const AcDbMlineStyle& style) {
  const std::vector<double> offsets = offsetsOf(style);
  double widest = 0.5;
  for (const double offset : offsets) {
    widest = std::max(widest, std::fabs(offset));
  }
  // Legs much longer than wide, turning left.
  const double along = 12.0 * widest;
  const double up = 7.0 * widest;
  Picture picture =
      newPicture(drawing, fmt::format("multiline style {}", os::toUtf8(style.name())),
                 fmt::format("{} elements; drawn at scale 1 from left to top", offsets.size()));
  addLine(picture, {0.0, 0.0, 0.0}, {along, 0.0, 0.0}, palette::kMark, 1.2, true);
  addLine(picture, {along, 0.0, 0.0}, {along, up, 0.0}, palette::kMark, 1.2, true);
  for (const double offset : offsets) {
    Path path;
    path.points = {{0.0, offset}, {along - offset, offset}, {along - offset, up}};
    path.color = palette::kFirst;
    path.width = kStyleWidth;
    picture.paths.push_back(std::move(path));
  }
  if (!offsets.empty()) {
    const double left = offsets.front();
    const double right = offsets.back();
    if (style.startSquareCap()) {
      addLine(picture, {0.0, left, 0.0}, {0.0, right, 0.0}, palette::kSecond, kStyleWidth);
    }
    if (style.endSquareCap()) {
      addLine(picture, {along - left, up, 0.0}, {along - right, up, 0.0}, palette::kSecond,
              kStyleWidth);
    }
  }
  addMargin(picture, {-widest, -2.0 * widest}, {along + 2.0 * widest, up + widest});
  picture.legend = {{"element", palette::kFirst, false, MarkShape::Dot, kStyleWidth},
                    {"cap", palette::kSecond, false, MarkShape::Dot, kStyleWidth},
                    {"the line that is drawn", palette::kMark, false, MarkShape::Dot, 1.2}};
  return picture;
}

Picture dimensionSample(const Drawing& drawing, const std::string& name,
                        const AcDbDimStyleTableRecord& style) {
  Picture picture = newPicture(
      drawing, fmt::format("dimension style {}", name),
      fmt::format("lengths times {:g}, graphics times {:g}", style.dimlfac(), style.dimscale()));
  Dimension(picture, style).draw();
  picture.legend = {{"dimension", palette::kFirst, false, MarkShape::Dot, kStyleWidth},
                    {"measured point", palette::kMark, true},
                    {"what is measured", palette::kPlan, false, MarkShape::Dot, kStyleWidth}};
  return picture;
}

}  // namespace quoin::commands
