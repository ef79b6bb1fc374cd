#include "embedded/db/entities/Multiline.h"

#include <algorithm>
#include <array>
#include <span>

#include "dbmstyle.h"
#include "dbobjptr.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/TransformSchema.h"
#include "embedded/db/records/TagList.h"
#include "embedded/os/CaseFold.h"

namespace quoin::db {

namespace {

// Group codes of MLINE, as the DXF reference has them.
constexpr int kFlags = 71;
constexpr int kClosed = 2;
constexpr int kNoStartCap = 4;
constexpr int kNoEndCap = 8;
constexpr int kStyle = 340;
constexpr int kVertex = 11;
constexpr int kDirection = 12;
constexpr int kMiter = 13;
constexpr int kParameterCount = 74;
constexpr int kParameter = 41;

/// One vertex: the segment that begins there, and each element's parameters. The first is how far
/// along the miter the element lies; the others where along the segment it begins and pauses, in
/// turns.
struct Vertex {
  AcGePoint3d point;
  AcGeVector3d direction;
  AcGeVector3d miter;
  std::vector<std::vector<double>> elements;

  bool has(std::size_t element) const {
    return element < elements.size() && !elements[element].empty();
  }
  /// Where the elements cross the miter, counted along it.
  std::vector<double> offsets() const {
    std::vector<double> places;
    for (const std::vector<double>& parameters : elements) {
      if (!parameters.empty()) {
        places.push_back(parameters.front());
      }
    }
    return places;
  }
  AcGePoint3d startOf(std::size_t element) const {
    return point + miter * elements[element].front();
  }
};

std::vector<Vertex> verticesOf(const TagList& tags, const TagRange& range) {
  std::vector<Vertex> vertices;
  const auto vectorAt = [&](std::size_t index, int code) {
    return tags.point(code, {index, range.last});
  };
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (!tags.isOwn(i)) {
      continue;
    }
    const int code = tags[i].code;
    if (code == kVertex) {
      vertices.push_back({vectorAt(i, code), {}, {}, {}});
    } else if (vertices.empty()) {
      continue;
    } else if (code == kDirection) {
      vertices.back().direction = vectorAt(i, code).asVector();
    } else if (code == kMiter) {
      vertices.back().miter = vectorAt(i, code).asVector();
    } else if (code == kParameterCount) {
      vertices.back().elements.emplace_back();
    } else if (code == kParameter && !vertices.back().elements.empty()) {
      vertices.back().elements.back().push_back(tags.doubleAt(i));
    }
  }
  return vertices;
}

/// A multiline as its record has it.
struct Shape {
  std::vector<Vertex> vertices;
  std::int64_t flags = 0;

  bool isClosed() const { return (flags & kClosed) != 0; }
  std::size_t segments() const {
    return vertices.size() < 2 ? 0 : vertices.size() - (isClosed() ? 0U : 1U);
  }
};

struct ElementLine {
  AcGePoint3d start;
  AcGePoint3d end;
  std::size_t element;
};

bool isMultiline(const AcDbStub* stub) {
  return stub && DatabaseImpl::of(*stub).kindOf(*stub) == "MLINE";
}

Shape shapeOf(const TagList& tags) {
  const TagRange range = tags.subclass("AcDbMline");
  return {verticesOf(tags, range), tags.integer(kFlags, range, 0)};
}

/// Segment by segment, element by element.
std::vector<ElementLine> linesOf(const Shape& shape) {
  std::vector<ElementLine> lines;
  for (std::size_t i = 0; i < shape.segments(); ++i) {
    const Vertex& from = shape.vertices[i];
    const Vertex& to = shape.vertices[(i + 1) % shape.vertices.size()];
    for (std::size_t element = 0; element < from.elements.size(); ++element) {
      if (!from.has(element) || !to.has(element)) {
        continue;
      }
      const std::vector<double>& parameters = from.elements[element];
      const AcGePoint3d start = from.startOf(element);
      const AcGePoint3d end = to.startOf(element);
      if (parameters.size() <= 2) {
        lines.push_back({start, end, element});
        continue;
      }
      for (std::size_t on = 1; on < parameters.size(); on += 2) {
        const bool isLast = on + 1 >= parameters.size();
        lines.push_back({start + from.direction * parameters[on],
                         isLast ? end : start + from.direction * parameters[on + 1], element});
      }
    }
  }
  return lines;
}

/// The lines across a vertex: two halves, each with the look of the element at its end.
void addAcross(const Vertex& vertex, std::vector<ElementLine>& lines) {
  std::vector<std::size_t> elements;
  for (std::size_t i = 0; i < vertex.elements.size(); ++i) {
    if (vertex.has(i)) {
      elements.push_back(i);
    }
  }
  const auto isLower = [&](std::size_t a, std::size_t b) {
    return vertex.elements[a].front() < vertex.elements[b].front();
  };
  const auto [low, high] = std::minmax_element(elements.begin(), elements.end(), isLower);
  if (low == elements.end() || *low == *high) {
    return;
  }
  const AcGePoint3d first = vertex.startOf(*low);
  const AcGePoint3d last = vertex.startOf(*high);
  const AcGePoint3d middle = first + (last - first) * 0.5;
  lines.push_back({first, middle, *low});
  lines.push_back({middle, last, *high});
}

/// The lines across ends and joints. Nothing with the cause where there is more than lines.
std::vector<ElementLine> linesAcross(const Shape& shape, const AcDbMlineStyle& style,
                                     std::string& cause) {
  std::vector<ElementLine> lines;
  const bool hasStart = !shape.isClosed() && (shape.flags & kNoStartCap) == 0;
  const bool hasEnd = !shape.isClosed() && (shape.flags & kNoEndCap) == 0;
  if (style.filled()) {
    cause = "has a fill";
  } else if ((hasStart && (style.startRoundCap() || style.startInnerArcs())) ||
             (hasEnd && (style.endRoundCap() || style.endInnerArcs()))) {
    cause = "has round ends";
  }
  if (!cause.empty() || shape.vertices.empty()) {
    return lines;
  }
  if (hasStart && style.startSquareCap()) {
    addAcross(shape.vertices.front(), lines);
  }
  if (hasEnd && style.endSquareCap()) {
    addAcross(shape.vertices.back(), lines);
  }
  if (style.showMiters()) {
    const std::size_t ends = shape.isClosed() ? 0 : 1;
    for (std::size_t i = ends; i + ends < shape.vertices.size(); ++i) {
      addAcross(shape.vertices[i], lines);
    }
  }
  return lines;
}

/// A line with what the multiline has and what the style says of the element.
std::unique_ptr<AcDbLine> newLine(const ElementLine& line, const AcDbEntity& multiline,
                                  const AcDbMlineStyle& style) {
  auto made = std::make_unique<AcDbLine>(line.start, line.end);
  made->setPropertiesFrom(&multiline);
  double offset = 0.0;
  AcCmColor color;
  AcDbObjectId linetype;
  if (style.getElementAt(static_cast<int>(line.element), offset, color, linetype) != Acad::eOk) {
    return nullptr;
  }
  if (!color.isByBlock()) {
    made->setColor(color);
  }
  const AcDbStub* const record = linetype;
  const std::wstring name =
      record ? DatabaseImpl::of(*record).recordName(*record) : std::wstring(L"ByLayer");
  if (!os::sameName(name, std::wstring_view(L"ByBlock"))) {
    made->setLinetype(name.c_str());
  }
  return made;
}

}  // namespace

std::vector<std::pair<AcGePoint3d, AcGePoint3d>> multilineElements(const AcDbObjectId& id) {
  std::vector<std::pair<AcGePoint3d, AcGePoint3d>> lines;
  try {
    const AcDbStub* const stub = stubOf(id);
    if (isMultiline(stub)) {
      for (const ElementLine& line : linesOf(shapeOf(DatabaseImpl::of(*stub).tagsOf(*stub)))) {
        lines.emplace_back(line.start, line.end);
      }
    }
  } catch (...) {
    statusOfException();
    lines.clear();
  }
  return lines;
}

std::vector<std::unique_ptr<AcDbLine>> multilineAsLines(const AcDbObjectId& id,
                                                        std::string& cause) {
  const AcDbObjectPointer<AcDbEntity> multiline(id, AcDb::kForRead);
  const AcDbStub* const stub = id;
  if (multiline.openStatus() != Acad::eOk || !isMultiline(stub)) {
    cause = "cannot be opened";
    return {};
  }
  const DatabaseImpl& database = DatabaseImpl::of(*stub);
  const TagList tags = database.tagsOf(*stub);
  const AcDbObjectPointer<AcDbMlineStyle> style(
      AcDbObjectId(database.byHandle(tags.handle(kStyle, tags.subclass("AcDbMline")))),
      AcDb::kForRead);
  if (style.openStatus() != Acad::eOk) {
    cause = "has a style that is not in the drawing";
    return {};
  }
  const Shape shape = shapeOf(tags);
  std::vector<ElementLine> shown = linesOf(shape);
  for (const ElementLine& across : linesAcross(shape, *style.object(), cause)) {
    shown.push_back(across);
  }
  std::vector<std::unique_ptr<AcDbLine>> lines;
  for (const ElementLine& line : shown) {
    if (cause.empty() && !(line.start == line.end)) {
      lines.push_back(newLine(line, *multiline.object(), *style.object()));
      cause = lines.back() ? "" : "has more elements than its style";
    }
  }
  if (!cause.empty()) {
    lines.clear();
  }
  return lines;
}

}  // namespace quoin::db

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

/// The half circle from an element to another one, outwards.
ArcImage capBetween(const Vertex& vertex, double low, double high, const AcGeVector3d& outwards,
                    const AcGeMatrix3d& toWorld) {
  const AcGePoint3d center = vertex.point + vertex.miter * (0.5 * (low + high));
  const AcGeVector3d across = vertex.miter * (0.5 * (high - low));
  ArcImage arc{toWorld * center, toWorld * across, toWorld * (outwards * across.length())};
  arc.sweep = 0.5 * kFullTurn;
  return arc;
}

/// From the outermost element to the other.
void addRoundCap(const Vertex& vertex, const AcGeVector3d& outwards, const AcGeMatrix3d& toWorld,
                 AcDbExtents& box) {
  const std::vector<double> offsets = vertex.offsets();
  const auto [low, high] = std::minmax_element(offsets.begin(), offsets.end());
  if (low == offsets.end() || !(*high > *low)) {
    return;
  }
  addArc(capBetween(vertex, *low, *high, outwards, toWorld), box);
}

Acad::ErrorStatus extentsOfMultiline(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                     AcDbExtents& box) {
  constexpr std::int64_t kRoundStart = 64;
  constexpr std::int64_t kRoundEnd = 1024;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbMline");
  const std::vector<Vertex> vertices = verticesOf(tags, range);
  for (const Vertex& vertex : vertices) {
    const std::vector<double> offsets = vertex.offsets();
    if (offsets.empty()) {
      box.addPoint(toWorld * vertex.point);
    }
    for (const double offset : offsets) {
      box.addPoint(toWorld * (vertex.point + vertex.miter * offset));
    }
  }
  const std::int64_t flags = tags.integer(kFlags, range, 0);
  const AcDbStub* const style =
      entity.database ? entity.database->byHandle(tags.handle(kStyle, range)) : nullptr;
  if (style && !vertices.empty() && !(flags & kClosed)) {
    const TagList styleTags = entity.database->tagsOf(*style);
    const std::int64_t caps =
        styleTags.integer(code::kFlags, styleTags.subclass("AcDbMlineStyle"), 0);
    if ((caps & kRoundStart) && !(flags & kNoStartCap)) {
      addRoundCap(vertices.front(), -vertices.front().direction, toWorld, box);
    }
    if ((caps & kRoundEnd) && !(flags & kNoEndCap)) {
      addRoundCap(vertices.back(), vertices.back().direction, toWorld, box);
    }
  }
  return Acad::eOk;
}

/// Draws a multiline; without its style every element looks as the entity does.
class MultilineDrawing {
 public:
  MultilineDrawing(const Shape& shape, const AcDbMlineStyle* style, const AcGeMatrix3d& toWorld,
                   DrawWalk& walk)
      : m_shape(shape), m_style(style), m_toWorld(toWorld), m_walk(walk) {
    const int count = style ? style->numElements() : 0;
    for (int i = 0; i < count; ++i) {
      double offset = 0.0;
      AcCmColor color;
      AcDbObjectId linetype;
      style->getElementAt(i, offset, color, linetype);
      hostx::DrawLook look = walk.lookOf(color);
      const AcDbStub* const record = stubOf(linetype);
      walk.setDashes(look, record
                               ? walk.looks().dashesOf(
                                     DatabaseImpl::of(*record).recordName(*record), walk.resolved())
                               : walk.resolved().dashes);
      m_looks.push_back(std::move(look));
    }
  }

  void draw() {
    if (m_shape.vertices.empty()) {
      return;
    }
    if (m_style && m_style->filled() && m_walk.isFilled()) {
      fill();
    }
    for (const ElementLine& line : linesOf(m_shape)) {
      stroke(line);
    }
    if (m_style) {
      drawAcross();
    }
  }

 private:
  const hostx::DrawLook& lookOf(std::size_t element) {
    return element < m_looks.size() ? m_looks[element] : m_walk.look();
  }
  void stroke(const ElementLine& line) {
    m_walk.stroke(linePath(m_toWorld * line.start, m_toWorld * line.end), lookOf(line.element));
  }

  void fill() {
    const hostx::DrawLook look = m_walk.lookOf(m_style->fillColor());
    for (std::size_t i = 0; i < m_shape.segments(); ++i) {
      const Vertex& from = m_shape.vertices[i];
      const Vertex& to = m_shape.vertices[(i + 1) % m_shape.vertices.size()];
      const std::vector<double> fromOffsets = from.offsets();
      const std::vector<double> toOffsets = to.offsets();
      if (fromOffsets.empty() || toOffsets.empty()) {
        continue;
      }
      const auto [low, high] = std::minmax_element(fromOffsets.begin(), fromOffsets.end());
      const auto [toLow, toHigh] = std::minmax_element(toOffsets.begin(), toOffsets.end());
      const std::array corners{m_toWorld * (from.point + from.miter * *low),
                               m_toWorld * (to.point + to.miter * *toLow),
                               m_toWorld * (to.point + to.miter * *toHigh),
                               m_toWorld * (from.point + from.miter * *high)};
      const DrawPath area = polygonPath(corners, true);
      m_walk.fill(std::span(&area, 1), look);
    }
    const Vertex& first = m_shape.vertices.front();
    const Vertex& last = m_shape.vertices.back();
    if (!m_shape.isClosed() && !(m_shape.flags & kNoStartCap) && m_style->startRoundCap()) {
      fillCap(first, -first.direction, look);
    }
    if (!m_shape.isClosed() && !(m_shape.flags & kNoEndCap) && m_style->endRoundCap()) {
      fillCap(last, last.direction, look);
    }
  }

  void fillCap(const Vertex& vertex, const AcGeVector3d& outwards, const hostx::DrawLook& look) {
    const std::vector<double> offsets = vertex.offsets();
    const auto [low, high] = std::minmax_element(offsets.begin(), offsets.end());
    if (low != offsets.end() && *high > *low) {
      const DrawPath cap = arcPath(capBetween(vertex, *low, *high, outwards, m_toWorld));
      m_walk.fill(std::span(&cap, 1), look);
    }
  }

  void drawAcross() {
    const bool hasStart = !m_shape.isClosed() && (m_shape.flags & kNoStartCap) == 0;
    const bool hasEnd = !m_shape.isClosed() && (m_shape.flags & kNoEndCap) == 0;
    const Vertex& first = m_shape.vertices.front();
    const Vertex& last = m_shape.vertices.back();
    std::vector<ElementLine> lines;
    if (hasStart && m_style->startSquareCap()) {
      addAcross(first, lines);
    }
    if (hasEnd && m_style->endSquareCap()) {
      addAcross(last, lines);
    }
    const std::size_t ends = m_shape.isClosed() ? 0 : 1;
    for (std::size_t i = ends; m_style->showMiters() && i + ends < m_shape.vertices.size(); ++i) {
      addAcross(m_shape.vertices[i], lines);
    }
    for (const ElementLine& line : lines) {
      stroke(line);
    }
    if (hasStart) {
      drawRound(first, -first.direction, m_style->startRoundCap(), m_style->startInnerArcs());
    }
    if (hasEnd) {
      drawRound(last, last.direction, m_style->endRoundCap(), m_style->endInnerArcs());
    }
  }

  /// Arcs between pairs of elements, from the outermost pair inwards.
  void drawRound(const Vertex& vertex, const AcGeVector3d& outwards, bool hasOuter, bool hasInner) {
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < vertex.elements.size(); ++i) {
      if (vertex.has(i)) {
        order.push_back(i);
      }
    }
    const auto offset = [&](std::size_t element) { return vertex.elements[element].front(); };
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return offset(a) < offset(b); });
    for (std::size_t i = 0; 2 * i + 1 < order.size(); ++i) {
      const std::size_t low = order[i];
      const std::size_t high = order[order.size() - 1 - i];
      if ((i == 0 ? hasOuter : hasInner) && offset(high) > offset(low)) {
        m_walk.stroke(arcPath(capBetween(vertex, offset(low), offset(high), outwards, m_toWorld)),
                      lookOf(high));
      }
    }
  }

  const Shape& m_shape;
  const AcDbMlineStyle* m_style;
  const AcGeMatrix3d& m_toWorld;
  DrawWalk& m_walk;
  std::vector<hostx::DrawLook> m_looks;  // by element
};

void drawMultiline(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const std::uint64_t handle = entity.tags.handle(kStyle, entity.tags.subclass("AcDbMline"));
  const AcDbObjectPointer<AcDbMlineStyle> style(
      AcDbObjectId(entity.database ? entity.database->byHandle(handle) : nullptr), AcDb::kForRead);
  const Shape shape = shapeOf(entity.tags);
  MultilineDrawing(shape, style.openStatus() == Acad::eOk ? style.object() : nullptr, toWorld, walk)
      .draw();
}

// The elements' parameters (41, 42) lie along the miters.
constexpr std::array kRules{Rule{"AcDbMline", 40, Length},    Rule{"AcDbMline", 10, Point},
                            Rule{"AcDbMline", 11, Point},     Rule{"AcDbMline", 12, Direction},
                            Rule{"AcDbMline", 13, Direction}, Rule{"AcDbMline", 41, Length},
                            Rule{"AcDbMline", 42, Length}};
constexpr TransformSchema kSchema{.normalMarker = "AcDbMline", .rules = kRules};

constexpr std::array kKinds{
    RecordKind{.name = "MLINE",
               .since = Version::R13,
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfMultiline,
               .draw = drawMultiline,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kMultilineRows{kKinds};

}  // namespace quoin::db
