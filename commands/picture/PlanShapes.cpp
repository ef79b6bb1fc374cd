#include "commands/picture/PlanShapes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "commands/Polylines.h"
#include "commands/picture/PlanShapesInternal.h"
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
AcGePoint2d flat(const AcGePoint3d& point) {
  return {point.x, point.y};
}

/// A block that an entity shows, once or in rows and columns; painted later than the entity, from
/// a list, so that nesting does not fill the stack of the process.
struct ShownBlock {
  AcDbObjectId block;
  AcGeMatrix3d placed;  // of the first cell
  AcGeVector3d columnStep;
  AcGeVector3d rowStep;
  int columns = 1;
  int rows = 1;
  AcDbObjectId owner;
  AcGeMatrix3d toWorld;  // of the owner
};

/// Over the entities of a block that are not erased; null for what is no block.
std::unique_ptr<AcDbBlockTableRecordIterator> entitiesOf(const AcDbObjectId& block) {
  const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
  AcDbBlockTableRecordIterator* made = nullptr;
  if (record.openStatus() == Acad::eOk) {
    record->newIterator(made);
  }
  return std::unique_ptr<AcDbBlockTableRecordIterator>(made);
}

class PlanPainter {
 public:
  PlanPainter(Picture& picture, Drawing& drawing, const std::set<AcDbObjectId>& except,
              std::size_t mostBlockEntities)
      : m_picture(picture), m_drawing(drawing), m_except(except), m_most(mostBlockEntities) {
    for (const LayerContent& layer : drawing.layers()) {
      if (layer.isOff || layer.isFrozen) {
        m_hidden.insert(layer.name);
      }
    }
  }

  void paintModelSpace() {
    m_drawing.forEachEntity(m_drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
      if (!m_except.count(id)) {
        paintEntity(id);
      }
    });
  }

  /// References that show too much to be painted.
  std::size_t framedReferences() const { return m_framedReferences; }

  /// Paints an entity of model space with all that it shows.
  void paintEntity(const AcDbObjectId& id) {
    paintOne(id, AcGeMatrix3d::kIdentity);
    begin();
    while (!m_frames.empty()) {
      Frame& frame = m_frames.back();
      if (frame.entities && !frame.entities->done()) {
        AcDbObjectId inside;
        frame.entities->getEntityId(inside);
        frame.entities->step();
        ++m_blockEntities;
        if (!m_except.count(inside)) {
          paintOne(inside, frame.placed);
          begin();
        }
      } else if (!isNextCell(frame)) {
        end();
      }
    }
  }

 private:
  /// A block that is being painted, cell by cell.
  struct Frame {
    ShownBlock shown;
    int column = -1;
    int row = 0;
    AcGeMatrix3d placed;
    std::unique_ptr<AcDbBlockTableRecordIterator> entities;
  };

  void paintOne(const AcDbObjectId& id, const AcGeMatrix3d& toWorld) {
    if (m_hidden.count(hostx::layerName(id))) {
      return;
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() == Acad::eOk && entity->visibility() == AcDb::kVisible) {
      paint(*entity.object(), toWorld);
    }
  }

  /// Goes into the block that the last entity shows, if it shows one.
  void begin() {
    if (m_shown.block.isNull()) {
      return;
    }
    Frame frame;
    frame.shown = std::exchange(m_shown, {});
    // A block inside itself shows nothing more.
    if (m_path.insert(frame.shown.block).second) {
      m_frames.push_back(std::move(frame));
    } else {
      paintAttributes(frame.shown);
    }
  }

  bool isNextCell(Frame& frame) {
    const ShownBlock& shown = frame.shown;
    if (++frame.column == shown.columns) {
      frame.column = 0;
      ++frame.row;
    }
    if (frame.row == shown.rows) {
      return false;
    }
    if (m_blockEntities + m_cells >= m_most) {
      paintFrame(shown);
      return false;
    }
    ++m_cells;
    const AcGeVector3d move =
        shown.toWorld * (shown.columnStep * frame.column + shown.rowStep * frame.row);
    frame.placed = AcGeMatrix3d().setToTranslation(move) * shown.placed;
    frame.entities = entitiesOf(shown.block);
    return true;
  }

  void end() {
    const ShownBlock shown = m_frames.back().shown;
    m_frames.pop_back();
    m_path.erase(shown.block);
    paintAttributes(shown);
  }

  /// What shows too much to be painted: the frame around it.
  void paintFrame(const ShownBlock& shown) {
    ++m_framedReferences;
    const AcDbObjectPointer<AcDbEntity> owner(shown.owner, AcDb::kForRead);
    AcDbExtents box;
    if (owner.openStatus() == Acad::eOk && owner->getGeomExtents(box) == Acad::eOk) {
      const AcGePoint3d& low = box.minPoint();
      const AcGePoint3d& high = box.maxPoint();
      addPath({low, {high.x, low.y, low.z}, {high.x, high.y, low.z}, {low.x, high.y, low.z}}, true,
              shown.toWorld);
    }
  }

  void paint(const AcDbEntity& entity, const AcGeMatrix3d& toWorld) {
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
      showDimension(*dimension, toWorld);
    } else if (isPolyline(entity)) {
      paintPolyline(readPolyline(entity), toWorld);
    } else if (const AcDbBlockReference* reference = AcDbBlockReference::cast(&entity)) {
      showReference(*reference, toWorld);
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
    // Files name any angles; what counts is where on the circle they lie.
    const double start = std::fmod(startAngle, 2.0 * kPi);
    double sweep = std::fmod(endAngle - startAngle, 2.0 * kPi);
    if (!std::isfinite(start) || !std::isfinite(sweep)) {
      return;
    }
    if (sweep <= 0.0) {
      sweep += 2.0 * kPi;
    }
    const int chords = std::max(2, static_cast<int>(std::ceil(sweep / kChordAngle)));
    std::vector<AcGePoint3d> points;
    for (int i = 0; i <= chords; ++i) {
      const double angle = start + sweep * i / chords;
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
  void showDimension(const AcDbDimension& dimension, const AcGeMatrix3d& toWorld) {
    const AcGeVector3d move = dimension.dimBlockPosition() - AcGePoint3d::kOrigin;
    m_shown = {};
    m_shown.block = dimension.dimBlockId();
    m_shown.placed = toWorld * AcGeMatrix3d().setToTranslation(move);
    m_shown.owner = dimension.objectId();
    m_shown.toWorld = toWorld;
  }

  void paintPolyline(const PolylineShape& shape, const AcGeMatrix3d& toWorld) {
    if (shape.vertices.empty()) {
      return;
    }
    Path path;
    path.points.push_back(flat(toWorld * shape.vertices.front().world));
    // Seen from below, or mirrored, arcs run the other way round.
    const double orientation =
        (shape.normal.z < 0.0 ? -1.0 : 1.0) * (toWorld.det() < 0.0 ? -1.0 : 1.0);
    for (std::size_t i = 0; i < shape.segmentCount(); ++i) {
      appendBulge(path.points, flat(toWorld * shape.vertices[i].world),
                  flat(toWorld * shape.segmentEnd(i).world), orientation * shape.vertices[i].bulge);
    }
    m_picture.paths.push_back(std::move(path));
  }

  void showReference(const AcDbBlockReference& reference, const AcGeMatrix3d& toWorld) {
    m_shown = {};
    m_shown.block = reference.blockTableRecord();
    m_shown.placed = toWorld * reference.blockTransform();
    m_shown.owner = reference.objectId();
    m_shown.toWorld = toWorld;
    if (const AcDbMInsertBlock* array = AcDbMInsertBlock::cast(&reference)) {
      const AcGeMatrix3d plane = AcGeMatrix3d().setToPlaneToWorld(reference.normal());
      const double angle = reference.rotation();
      m_shown.columns = array->columns();
      m_shown.rows = array->rows();
      m_shown.columnStep =
          plane * AcGeVector3d(std::cos(angle), std::sin(angle), 0.0) * array->columnSpacing();
      m_shown.rowStep =
          plane * AcGeVector3d(-std::sin(angle), std::cos(angle), 0.0) * array->rowSpacing();
    }
  }

  void paintAttributes(const ShownBlock& shown) {
    const AcDbObjectPointer<AcDbBlockReference> reference(shown.owner, AcDb::kForRead);
    if (reference.openStatus() != Acad::eOk) {
      return;
    }
    const std::unique_ptr<AcDbObjectIterator> iterator(reference->attributeIterator());
    for (; iterator && !iterator->done(); iterator->step()) {
      AcDbObjectPointer<AcDbAttribute> attribute(iterator->objectId(), AcDb::kForRead);
      if (attribute.openStatus() == Acad::eOk && !attribute->isInvisible()) {
        addText(*attribute, shown.toWorld);
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
  const std::size_t m_most;  // entities of blocks, and cells of arrays
  std::set<std::wstring> m_hidden;
  ShownBlock m_shown;  // by the last entity
  std::vector<Frame> m_frames;
  std::set<AcDbObjectId> m_path;  // blocks of the frames
  std::size_t m_framedReferences = 0;
  std::size_t m_blockEntities = 0;
  std::size_t m_cells = 0;
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
  addPlanShapesUpTo(kMostBlockEntities, picture, drawing, except);
}

std::size_t addPlanShapesUpTo(std::size_t mostBlockEntities, Picture& picture, Drawing& drawing,
                              const std::set<AcDbObjectId>& except) {
  PlanPainter painter(picture, drawing, except, mostBlockEntities);
  painter.paintModelSpace();
  if (painter.framedReferences() > 0) {
    const std::string words =
        fmt::format("{} block references drawn as frames: blocks show more than {} entities",
                    painter.framedReferences(), mostBlockEntities);
    picture.subtitle += picture.subtitle.empty() ? words : "; " + words;
    picture.warnings.push_back(words);
  }
  return painter.framedReferences();
}

void addEntityShapes(Picture& picture, Drawing& drawing, const std::vector<AcDbObjectId>& entities,
                     const Color& color, double width) {
  const std::size_t firstPath = picture.paths.size();
  const std::size_t firstLabel = picture.labels.size();
  const std::set<AcDbObjectId> none;
  PlanPainter painter(picture, drawing, none, kMostBlockEntities);
  for (const AcDbObjectId& id : entities) {
    painter.paintEntity(id);
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
