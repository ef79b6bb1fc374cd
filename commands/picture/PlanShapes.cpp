#include "commands/picture/PlanShapes.h"

#include <algorithm>
#include <cmath>

#include "commands/Polylines.h"
#include "dbdim.h"
#include "dbelipse.h"
#include "dbmtext.h"
#include "dbobjptr.h"
#include "dbspline.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

constexpr double kPi = 3.14159265358979323846;
/// Arcs are drawn as chords of at most this angle, in radians (6 degrees).
constexpr double kChordAngle = kPi / 30.0;
constexpr int kEllipseChords = 60;
/// Chords of one span of a spline, and of a whole one.
constexpr int kChordsOfSpan = 24;
constexpr int kMostChords = 2000;
/// Deeper nesting of blocks is a block inside itself.
constexpr int kDeepestBlock = 16;

AcGePoint2d flat(const AcGePoint3d& point) {
  return {point.x, point.y};
}

class PlanPainter {
 public:
  PlanPainter(Picture& picture, Drawing& drawing, const std::set<AcDbObjectId>& except)
      : m_picture(picture), m_drawing(drawing), m_except(except) {
    for (const LayerContent& layer : drawing.layers()) {
      if (layer.isOff || layer.isFrozen) {
        m_hidden.insert(layer.name);
      }
    }
  }

  void paintBlock(const AcDbObjectId& block, const AcGeMatrix3d& toWorld, int depth) {
    m_drawing.forEachEntity(block, [&](const AcDbObjectId& id) {
      if (!m_except.count(id)) {
        paintEntity(id, toWorld, depth);
      }
    });
  }

  void paintEntity(const AcDbObjectId& id, const AcGeMatrix3d& toWorld, int depth) {
    if (m_hidden.count(hostx::layerName(id))) {
      return;
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk && entity->visibility() == AcDb::kVisible) {
      paint(*entity.object(), toWorld, depth);
    }
  }

 private:
  void paint(const AcDbEntity& entity, const AcGeMatrix3d& toWorld, int depth) {
    if (const AcDbLine* line = AcDbLine::cast(&entity)) {
      addPath({line->startPoint(), line->endPoint()}, false, toWorld);
    } else if (const AcDbArc* arc = AcDbArc::cast(&entity)) {
      paintArc(arc->center(), arc->normal(), arc->radius(), arc->startAngle(), arc->endAngle(),
               toWorld);
    } else if (const AcDbCircle* circle = AcDbCircle::cast(&entity)) {
      paintArc(circle->center(), circle->normal(), circle->radius(), 0.0, 2.0 * kPi, toWorld);
    } else if (const AcDbEllipse* ellipse = AcDbEllipse::cast(&entity)) {
      paintCurve(*ellipse, kEllipseChords, toWorld);
    } else if (const AcDbSpline* spline = AcDbSpline::cast(&entity)) {
      paintSpline(*spline, toWorld);
    } else if (const AcDbDimension* dimension = AcDbDimension::cast(&entity)) {
      paintDimension(*dimension, toWorld, depth);
    } else if (isPolyline(entity)) {
      paintPolyline(readPolyline(entity), toWorld);
    } else if (const AcDbBlockReference* reference = AcDbBlockReference::cast(&entity)) {
      paintReference(*reference, toWorld, depth);
    } else if (entity.isKindOf(AcDbAttributeDefinition::desc())) {
      return;  // shows only where it is filled in
    } else if (const AcDbText* text = AcDbText::cast(&entity)) {
      addText(*text, toWorld);
    } else if (const AcDbMText* paragraph = AcDbMText::cast(&entity)) {
      Label* const label = addLabel(takeText(paragraph->text()), paragraph->location(),
                                    paragraph->textHeight(), paragraph->rotation(), toWorld);
      if (label) {
        // Attachment points count from the top left one, row by row.
        const int place = static_cast<int>(paragraph->attachment()) - AcDbMText::kTopLeft;
        const int row = place / 3;
        label->alongShare = 0.5 * (place % 3);
        label->upShare = 1.0 - 0.5 * row;
      }
    }
  }

  void addPath(const std::vector<AcGePoint3d>& points, bool isClosed, const AcGeMatrix3d& toWorld) {
    Path path;
    path.isClosed = isClosed;
    for (const AcGePoint3d& point : points) {
      path.points.push_back(flat(toWorld * point));
    }
    m_picture.paths.push_back(std::move(path));
  }

  /// An arc counter-clockwise against its normal, angles from the X axis of its plane.
  void paintArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
                double startAngle, double endAngle, const AcGeMatrix3d& toWorld) {
    const AcGeMatrix3d plane = AcGeMatrix3d().setToPlaneToWorld(normal);
    double sweep = endAngle - startAngle;
    while (sweep <= 0.0 && std::isfinite(sweep)) {
      sweep += 2.0 * kPi;
    }
    if (!std::isfinite(sweep)) {
      return;
    }
    const int chords = std::max(2, static_cast<int>(std::ceil(std::min(sweep, 7.0) / kChordAngle)));
    std::vector<AcGePoint3d> points;
    for (int i = 0; i <= chords; ++i) {
      const double angle = startAngle + sweep * i / chords;
      points.push_back(
          center + plane * AcGeVector3d(radius * std::cos(angle), radius * std::sin(angle), 0.0));
    }
    addPath(points, false, toWorld);
  }

  /// A curve between its parameters as chords.
  template <class Curve>
  void paintCurve(const Curve& curve, int chords, const AcGeMatrix3d& toWorld) {
    double start = 0.0;
    double end = 0.0;
    if (curve.getStartParam(start) != Acad::eOk || curve.getEndParam(end) != Acad::eOk) {
      return;
    }
    std::vector<AcGePoint3d> points(static_cast<std::size_t>(chords) + 1);
    for (int i = 0; i <= chords; ++i) {
      curve.getPointAtParam(start + (end - start) * i / chords,
                            points[static_cast<std::size_t>(i)]);
    }
    addPath(points, false, toWorld);
  }

  void paintSpline(const AcDbSpline& spline, const AcGeMatrix3d& toWorld) {
    if (spline.numControlPoints() > 0) {
      const int chords = kChordsOfSpan * std::max(1, spline.numControlPoints() - spline.degree());
      paintCurve(spline, std::min(chords, kMostChords), toWorld);
      return;
    }
    // Fit points alone: the course between them is not in the drawing.
    std::vector<AcGePoint3d> points(static_cast<std::size_t>(spline.numFitPoints()));
    for (std::size_t i = 0; i < points.size(); ++i) {
      spline.getFitPointAt(static_cast<int>(i), points[i]);
    }
    if (points.size() > 1) {
      addPath(points, spline.isClosed(), toWorld);
    }
  }

  /// What the dimension's own block holds, in world coordinates but for its moving.
  void paintDimension(const AcDbDimension& dimension, const AcGeMatrix3d& toWorld, int depth) {
    const AcDbObjectId block = dimension.dimBlockId();
    if (depth < kDeepestBlock && !block.isNull()) {
      const AcGeVector3d move = dimension.dimBlockPosition() - AcGePoint3d::kOrigin;
      paintBlock(block, toWorld * AcGeMatrix3d().setToTranslation(move), depth + 1);
    }
  }

  void paintPolyline(const PolylineShape& shape, const AcGeMatrix3d& toWorld) {
    if (shape.vertices.empty()) {
      return;
    }
    Path path;
    path.points.push_back(flat(toWorld * shape.vertices.front().world));
    // Seen from below, or mirrored, arcs run the other way round.
    const double sense = (shape.normal.z < 0.0 ? -1.0 : 1.0) * (toWorld.det() < 0.0 ? -1.0 : 1.0);
    for (std::size_t i = 0; i < shape.segmentCount(); ++i) {
      appendBulge(path.points, flat(toWorld * shape.vertices[i].world),
                  flat(toWorld * shape.segmentEnd(i).world), sense * shape.vertices[i].bulge);
    }
    m_picture.paths.push_back(std::move(path));
  }

  void paintReference(const AcDbBlockReference& reference, const AcGeMatrix3d& toWorld, int depth) {
    if (depth >= kDeepestBlock || reference.blockTableRecord().isNull()) {
      return;
    }
    const AcGeMatrix3d placed = toWorld * reference.blockTransform();
    int columns = 1;
    int rows = 1;
    AcGeVector3d columnStep;
    AcGeVector3d rowStep;
    if (const AcDbMInsertBlock* array = AcDbMInsertBlock::cast(&reference)) {
      const AcGeMatrix3d plane = AcGeMatrix3d().setToPlaneToWorld(reference.normal());
      const double angle = reference.rotation();
      columns = array->columns();
      rows = array->rows();
      columnStep =
          plane * AcGeVector3d(std::cos(angle), std::sin(angle), 0.0) * array->columnSpacing();
      rowStep = plane * AcGeVector3d(-std::sin(angle), std::cos(angle), 0.0) * array->rowSpacing();
    }
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) {
        const AcGeVector3d move = toWorld * (columnStep * column + rowStep * row);
        paintBlock(reference.blockTableRecord(), AcGeMatrix3d().setToTranslation(move) * placed,
                   depth + 1);
      }
    }
    paintAttributes(reference, toWorld);
  }

  void paintAttributes(const AcDbBlockReference& reference, const AcGeMatrix3d& toWorld) {
    const std::unique_ptr<AcDbObjectIterator> iterator(reference.attributeIterator());
    for (; iterator && !iterator->done(); iterator->step()) {
      AcDbObjectPointer<AcDbAttribute> attribute(iterator->objectId(), AcDb::kForRead);
      if (attribute.openStatus() == Acad::eOk && !attribute->isInvisible()) {
        addText(*attribute, toWorld);
      }
    }
  }

  void addText(const AcDbText& text, const AcGeMatrix3d& toWorld) {
    const AcDb::TextHorzMode along = text.horizontalMode();
    const AcDb::TextVertMode up = text.verticalMode();
    // Aligned and fitted texts run between two points, so the first one is their left end.
    const bool isBetween = along == AcDb::kTextAlign || along == AcDb::kTextFit;
    const bool isByPosition = text.isDefaultAlignment() || isBetween;
    Label* const label = addLabel(withoutCodes(takeText(text.textString())),
                                  isByPosition ? text.position() : text.alignmentPoint(),
                                  text.height(), text.rotation(), toWorld);
    if (!label || isByPosition) {
      return;
    }
    const bool isMiddle = along == AcDb::kTextMid;
    label->alongShare = along == AcDb::kTextRight                ? 1.0
                        : along == AcDb::kTextCenter || isMiddle ? 0.5
                                                                 : 0.0;
    label->upShare = up == AcDb::kTextTop ? 1.0 : up == AcDb::kTextVertMid || isMiddle ? 0.5 : 0.0;
  }

  /// The label, for saying more about it; null for a text without letters.
  Label* addLabel(const std::wstring& text, const AcGePoint3d& position, double height,
                  double rotation, const AcGeMatrix3d& toWorld) {
    const std::wstring firstLine = text.substr(0, text.find_first_of(L"\r\n"));
    if (firstLine.empty()) {
      return nullptr;
    }
    const AcGeVector3d along = toWorld * AcGeVector3d(std::cos(rotation), std::sin(rotation), 0.0);
    Label label;
    label.position = flat(toWorld * position);
    label.text = os::toUtf8(firstLine);
    label.height = height * along.length();
    label.rotation = std::atan2(along.y, along.x);
    m_picture.labels.push_back(std::move(label));
    return &m_picture.labels.back();
  }

  Picture& m_picture;
  Drawing& m_drawing;
  const std::set<AcDbObjectId>& m_except;
  std::set<std::wstring> m_hidden;
};

}  // namespace

std::wstring withoutCodes(std::wstring_view text) {
  std::wstring plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCode = text[i] == L'%' && i + 2 < text.size() && text[i + 1] == L'%';
    if (!isCode) {
      plain += text[i];
      continue;
    }
    i += 2;
    switch (text[i]) {
      case L'd':
      case L'D':
        plain += L'\u00B0';  // degrees
        break;
      case L'p':
      case L'P':
        plain += L'\u00B1';  // plus or minus
        break;
      case L'c':
      case L'C':
        plain += L'\u2300';  // diameter
        break;
      case L'%':
        plain += L'%';
        break;
      case L'u':
      case L'U':
      case L'o':
      case L'O':
      case L'k':
      case L'K':
        break;  // lines under, over and through what follows
      default:
        plain += text.substr(i - 2, 3);
    }
  }
  return plain;
}

void addPlanShapes(Picture& picture, Drawing& drawing, const std::set<AcDbObjectId>& except) {
  PlanPainter(picture, drawing, except)
      .paintBlock(drawing.modelSpaceId(), AcGeMatrix3d::kIdentity, 0);
}

void addEntityShapes(Picture& picture, Drawing& drawing, const std::vector<AcDbObjectId>& entities,
                     const Color& color, double width) {
  const std::size_t firstPath = picture.paths.size();
  const std::size_t firstLabel = picture.labels.size();
  const std::set<AcDbObjectId> none;
  PlanPainter painter(picture, drawing, none);
  for (const AcDbObjectId& id : entities) {
    painter.paintEntity(id, AcGeMatrix3d::kIdentity, 0);
  }
  for (std::size_t i = firstPath; i < picture.paths.size(); ++i) {
    Path& path = picture.paths[i];
    path.color = color;
    path.width = width;
    picture.focus.insert(picture.focus.end(), path.points.begin(), path.points.end());
  }
  for (std::size_t i = firstLabel; i < picture.labels.size(); ++i) {
    picture.labels[i].color = color;
    picture.focus.push_back(picture.labels[i].position);
  }
}

void appendBulge(std::vector<AcGePoint2d>& points, const AcGePoint2d& from, const AcGePoint2d& to,
                 double bulge) {
  const AcGeVector2d chord = to - from;
  const double sweep = 4.0 * std::atan(bulge);
  if (std::fabs(sweep) > 1e-9 && chord.length() > 0.0) {
    // The centre lies on the chord's perpendicular bisector; the sagitta is bulge times half
    // the chord.
    const double offset = (1.0 - bulge * bulge) / (4.0 * bulge);
    const AcGePoint2d center = from + chord * 0.5 + chord.perpVector() * offset;
    const AcGeVector2d spoke = from - center;
    const int chords = std::max(2, static_cast<int>(std::ceil(std::fabs(sweep) / kChordAngle)));
    for (int i = 1; i < chords; ++i) {
      const double angle = sweep * i / chords;
      points.push_back(center +
                       AcGeVector2d(spoke.x * std::cos(angle) - spoke.y * std::sin(angle),
                                    spoke.x * std::sin(angle) + spoke.y * std::cos(angle)));
    }
  }
  points.push_back(to);
}

}  // namespace quoin::commands
