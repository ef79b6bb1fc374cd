// Extents of dimensions, leaders, tolerances and tables: by the block that shows them where they
// have one, else by their definition.
#include <algorithm>
#include <cmath>
#include <span>

#include "embedded/db/Blocks.h"
#include "embedded/db/ExtentsShapes.h"
#include "embedded/db/MTextCodes.h"
#include "embedded/db/PlaneFields.h"

namespace quoin::db {
namespace {

constexpr int kText = 1;
constexpr int kStyleName = 3;
constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;
constexpr int kThirdPoint = 12;

/// A dimension variable: the entity's own value, else its style's, else `otherwise`.
double dimensionVariable(const Drawn& entity, TagRange range, int code, double otherwise) {
  constexpr int kInteger = 1070;
  constexpr int kReal = 1040;
  const TagList& tags = entity.tags;
  // Overrides stand as pairs of group code and value.
  const TagRange overrides = tags.xData(L"ACAD");
  for (std::size_t i = overrides.first; i + 1 < overrides.last; ++i) {
    if (tags[i].code == kInteger && tags.integerAt(i) == code && tags[i + 1].code == kReal) {
      return tags.doubleAt(i + 1);
    }
  }
  const std::wstring name = tags.text(kStyleName, range).value_or(L"Standard");
  const AcDbStub* const style =
      entity.database ? entity.database->record(TableKind::DimStyle, name) : nullptr;
  if (!style) {
    return otherwise;
  }
  const TagList styleTags = entity.database->tagsOf(*style);
  return styleTags.number(code, styleTags.subclass("AcDbDimStyleTableRecord"), otherwise);
}

double scaledVariable(const Drawn& entity, TagRange range, int code, double otherwise) {
  constexpr int kScale = 40;
  const double scale = dimensionVariable(entity, range, kScale, 1.0);
  // The scale 0 stands for that of the view, which an entity does not know.
  return dimensionVariable(entity, range, code, otherwise) * (scale > 0.0 ? scale : 1.0);
}

/// A frame at a place with its X axis along a direction, in the plane of a normal.
AcGeMatrix3d frameAt(const AcGePoint3d& origin, const AcGeVector3d& along,
                     const AcGeVector3d& normal) {
  const AcGeVector3d up = normal.length() > 0.0 ? normal.normal() : AcGeVector3d::kZAxis;
  const AcGeVector3d x = along.length() > 0.0 ? along.normal() : AcGeVector3d::kXAxis;
  AcGeMatrix3d frame;
  frame.setCoordSystem(origin, x, up.crossProduct(x), up);
  return frame;
}

/// The block record that a handle names; null if it is none.
const dxf::Block* blockWithHandle(const Drawn& entity, std::uint64_t handle) {
  const AcDbStub* const record = entity.database ? entity.database->byHandle(handle) : nullptr;
  return record ? entity.database->store.blockOf(*record) : nullptr;
}

/// An arrow with its tip at the first of the points: a block of unit size that points along X, or
/// without one the closed arrow, three times as long as it is wide.
struct Arrow {
  const dxf::Block* block = nullptr;
  double size = 0.0;
  AcGeVector3d normal;
};

void addArrow(const Arrow& arrow, std::span<const AcGePoint3d> points, const AcGeMatrix3d& toWorld,
              ExtentsWalk& walk, AcDbExtents& box) {
  constexpr double kHalfWidth = 1.0 / 6.0;
  if (points.size() < 2) {
    return;
  }
  const AcGeVector3d course = points[1] - points[0];
  // A piece that has no room for an arrow is drawn without one.
  if (!(arrow.size > 0.0) || course.length() < 2.0 * arrow.size) {
    return;
  }
  const AcGeMatrix3d frame = frameAt(points[0], -course, arrow.normal);
  if (arrow.block) {
    walk.show(*arrow.block, toWorld * frame * AcGeMatrix3d().setToScaling(arrow.size));
    return;
  }
  for (const double side : {-kHalfWidth, kHalfWidth}) {
    box.addPoint(toWorld * (frame * AcGePoint3d(-arrow.size, side * arrow.size, 0.0)));
  }
}

/// The block of a leader's arrow by its own or its style's variable; null for the closed arrow.
const dxf::Block* arrowBlockOf(const Drawn& entity, TagRange range) {
  constexpr int kArrowBlock = 341;
  constexpr int kInteger = 1070;
  constexpr int kReference = 1005;
  const TagList& tags = entity.tags;
  const TagRange overrides = tags.xData(L"ACAD");
  for (std::size_t i = overrides.first; i + 1 < overrides.last; ++i) {
    if (tags[i].code == kInteger && tags.integerAt(i) == kArrowBlock &&
        tags[i + 1].code == kReference) {
      return blockWithHandle(entity, tags.handleAt(i + 1));
    }
  }
  const std::wstring name = tags.text(kStyleName, range).value_or(L"Standard");
  const AcDbStub* const style =
      entity.database ? entity.database->record(TableKind::DimStyle, name) : nullptr;
  if (!style) {
    return nullptr;
  }
  const TagList styleTags = entity.database->tagsOf(*style);
  return blockWithHandle(
      entity, styleTags.handle(kArrowBlock, styleTags.subclass("AcDbDimStyleTableRecord")));
}

void addCourse(const std::vector<AcGePoint3d>& points, bool isCurved, const AcGeMatrix3d& toWorld,
               AcDbExtents& box) {
  if (isCurved && points.size() > 2) {
    addFitSpline(points, points[1] - points[0], points.back() - points[points.size() - 2], toWorld,
                 box);
    return;
  }
  for (const AcGePoint3d& point : points) {
    box.addPoint(toWorld * point);
  }
}

const dxf::Block* blockOf(const Drawn& entity, int code, TagRange range) {
  const std::wstring name = entity.tags.text(code, range).value_or(std::wstring());
  return entity.database && !name.empty() ? blockNamed(*entity.database, name) : nullptr;
}

}  // namespace

namespace {

/// What a dimension without a block is known by.
Acad::ErrorStatus extentsOfDefinition(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                      ExtentsWalk&, AcDbExtents& box) {
  constexpr int kWorldPoints[] = {10, 13, 14, 15};
  constexpr int kPlanePoints[] = {11, 16};
  const TagList& tags = entity.tags;
  const AcGeMatrix3d plane = planeToWorld(normalOf(tags, tags.subclass("AcDbDimension")));
  const TagRange all = tags.subclassAndBeyond("AcDbDimension");
  for (const int code : kWorldPoints) {
    if (tags.find(code, all) != TagList::kNone) {
      box.addPoint(toWorld * tags.point(code, all));
    }
  }
  for (const int code : kPlanePoints) {
    if (tags.find(code, all) != TagList::kNone) {
      box.addPoint(toWorld * (plane * tags.point(code, all)));
    }
  }
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus extentsOfDimension(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                     ExtentsWalk& walk, AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbDimension");
  const dxf::Block* const block = blockOf(entity, code::kName, range);
  if (!block) {
    return extentsOfDefinition(entity, toWorld, walk, box);
  }
  // The block shows the dimension where it was made; it has moved by its position since.
  const AcGeMatrix3d plane = planeToWorld(normalOf(tags, range));
  AcGeMatrix3d moved;
  moved.setToTranslation((plane * tags.point(kThirdPoint, range)).asVector());
  walk.showOr(*block, toWorld * moved, entity, extentsOfDefinition);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfLeader(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                  ExtentsWalk& walk, AcDbExtents& box) {
  constexpr int kHasArrow = 71;
  constexpr int kIsCurved = 72;
  constexpr int kAnnotation = 73;
  constexpr int kHookDirection = 74;
  constexpr int kHasHook = 75;
  constexpr int kTextWidth = 41;
  constexpr int kHorizontal = 211;
  constexpr int kArrowSize = 41;
  constexpr int kGap = 147;
  constexpr int kTextAbove = 77;
  constexpr double kUsualArrow = 0.18;
  constexpr double kUsualGap = 0.09;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbLeader");
  std::vector<AcGePoint3d> points = pointsOf(tags, kPoint, range);
  if (points.empty()) {
    return Acad::eOk;
  }
  const AcGeVector3d normal = normalOf(tags, range);
  // A text that stands above the line is underlined as far as it goes.
  const double textWidth = tags.number(kTextWidth, range, 0.0);
  const bool hasText = tags.integer(kAnnotation, range, 3) == 0;
  if (hasText && tags.integer(kHasHook, range, 0) != 0 && textWidth > 0.0 &&
      dimensionVariable(entity, range, kTextAbove, 0.0) != 0.0) {
    const AcGeVector3d along = tags.point(kHorizontal, range, {1.0, 0.0, 0.0}).asVector();
    const double side = tags.integer(kHookDirection, range, 1) == 1 ? -1.0 : 1.0;
    const double gap = scaledVariable(entity, range, kGap, kUsualGap);
    points.push_back(points.back() + along * (side * (gap + textWidth)));
  }
  addCourse(points, tags.integer(kIsCurved, range, 0) == 1, toWorld, box);
  if (tags.integer(kHasArrow, range, 1) != 0) {
    const Arrow arrow{arrowBlockOf(entity, range),
                      scaledVariable(entity, range, kArrowSize, kUsualArrow), normal};
    addArrow(arrow, points, toWorld, walk, box);
  }
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfTolerance(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                     AcDbExtents& box) {
  constexpr int kTextHeight = 140;
  constexpr double kUsualHeight = 0.18;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbFcf");
  const double height = scaledVariable(entity, range, kTextHeight, kUsualHeight);
  std::wstring text = tags.text(kText, range).value_or(std::wstring());
  // Rows of cells; a cell is twice as high as its text, with half a height at either side.
  constexpr std::wstring_view kRowEnd = L"^J";
  constexpr std::wstring_view kCellEnd = L"%%v";
  double width = 0.0;
  double rows = 0.0;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(kRowEnd, at), text.size());
    const std::wstring row = text.substr(at, end - at);
    double rowWidth = 0.0;
    for (std::size_t cell = 0; cell <= row.size();) {
      const std::size_t cellEnd = std::min(row.find(kCellEnd, cell), row.size());
      const double advance = lineAdvance(plainMText(row.substr(cell, cellEnd - cell)));
      rowWidth += advance > 0.0 ? (advance + 1.0) * height : 0.0;
      cell = cellEnd + kCellEnd.size();
    }
    rows += rowWidth > 0.0 ? 1.0 : 0.0;
    width = std::fmax(width, rowWidth);
    at = end + kRowEnd.size();
  }
  const AcGeMatrix3d frame =
      frameAt(tags.point(kPoint, range),
              tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector(), normalOf(tags, range));
  // The place is the middle of the first row's left side.
  addRectangle(0.0, height - 2.0 * height * std::fmax(rows, 1.0), width, height, toWorld * frame,
               box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfTable(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                 ExtentsWalk& walk, AcDbExtents&) {
  const TagList& tags = entity.tags;
  const TagRange place = tags.subclass("AcDbBlockReference");
  const TagRange range = tags.subclass("AcDbTable");
  const dxf::Block* const block = blockOf(entity, code::kName, place);
  if (!block) {
    return Acad::eOk;
  }
  const AcGePoint3d base = baseOf(*entity.database, *block);
  const AcGeMatrix3d frame =
      frameAt(tags.point(kPoint, place),
              tags.point(kSecondPoint, range, {1.0, 0.0, 0.0}).asVector(), normalOf(tags, range));
  const AcGeMatrix3d toBase = AcGeMatrix3d().setToTranslation(AcGePoint3d::kOrigin - base);
  walk.show(*block, toWorld * frame * toBase);
  return Acad::eOk;
}

// --- leaders with contents ------------------------------------------------------------------

namespace {

/// What the context of a MULTILEADER shows, read in one pass: the same codes mean other things
/// inside the braces of a leader and of a leader's line.
class LeaderContext {
 public:
  explicit LeaderContext(const TagList& tags);

  struct Line {
    std::vector<AcGePoint3d> points;
  };
  struct Leader {
    AcGePoint3d landing;  // where the lines end and the dogleg begins
    AcGeVector3d dogleg;  // unit vector
    double length = 0.0;
    bool hasLanding = false;
    std::vector<Line> lines;
  };
  TagRange behind;  // what the record says behind its context
  std::vector<Leader> leaders;
  double arrowSize = 0.0;
  bool hasText = false;
  std::wstring text;
  double textHeight = 0.0;
  AcGePoint3d textPlace;
  AcGeVector3d textDirection{1.0, 0.0, 0.0};
  AcGeVector3d textNormal{0.0, 0.0, 1.0};
  double textWidth = 0.0;
  std::int64_t attachment = 1;
  bool hasBlock = false;
  std::uint64_t block = 0;
  AcGeMatrix3d blockTransform;

 private:
  void readContext(const TagList& tags, std::size_t i, TagRange rest);
  void readLeader(const TagList& tags, std::size_t i, TagRange rest);
  unsigned int m_entries = 0;  // of the block's matrix
};

LeaderContext::LeaderContext(const TagList& tags) {
  enum class Level { kOutside, kContext, kLeader, kLine };
  const TagRange range = tags.body();
  behind = range;
  Level level = Level::kOutside;
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (!tags.isOwn(i)) {
      continue;
    }
    const std::string_view value = dxf::trimmedValue(tags[i]);
    const TagRange rest{i, range.last};
    if (level == Level::kOutside) {
      level = value == "CONTEXT_DATA{" ? Level::kContext : Level::kOutside;
    } else if (level == Level::kContext) {
      if (value == "LEADER{" && tags[i].code == 302) {
        level = Level::kLeader;
        leaders.emplace_back();
      } else if (value == "}" && tags[i].code == 301) {
        behind.first = i + 1;
        return;
      } else {
        readContext(tags, i, rest);
      }
    } else if (level == Level::kLeader) {
      if (value == "LEADER_LINE{" && tags[i].code == 304) {
        level = Level::kLine;
        leaders.back().lines.emplace_back();
      } else if (value == "}" && tags[i].code == 303) {
        level = Level::kContext;
      } else {
        readLeader(tags, i, rest);
      }
    } else if (value == "}" && tags[i].code == 305) {
      level = Level::kLeader;
    } else if (tags[i].code == kPoint) {
      leaders.back().lines.back().points.push_back(tags.point(kPoint, rest));
    }
  }
}

void LeaderContext::readLeader(const TagList& tags, std::size_t i, TagRange rest) {
  Leader& leader = leaders.back();
  switch (tags[i].code) {
    case 10:
      leader.landing = tags.point(10, rest);
      break;
    case 11:
      leader.dogleg = tags.point(11, rest).asVector();
      break;
    case 40:
      leader.length = tags.doubleAt(i);
      break;
    case 290:
      leader.hasLanding = tags.integerAt(i) != 0;
      break;
    default:
      break;
  }
}

void LeaderContext::readContext(const TagList& tags, std::size_t i, TagRange rest) {
  constexpr unsigned int kMatrixEntries = 16;
  switch (tags[i].code) {
    case 41:
      textHeight = tags.doubleAt(i);
      break;
    case 140:
      arrowSize = tags.doubleAt(i);
      break;
    case 290:
      hasText = tags.integerAt(i) != 0;
      break;
    case 304:
      text = tags.textAt(i);
      break;
    case 11:
      textNormal = tags.point(11, rest).asVector();
      break;
    case 12:
      textPlace = tags.point(12, rest);
      break;
    case 13:
      textDirection = tags.point(13, rest).asVector();
      break;
    case 43:
      textWidth = tags.doubleAt(i);
      break;
    case 171:
      attachment = tags.integerAt(i);
      break;
    case 296:
      hasBlock = tags.integerAt(i) != 0;
      break;
    case 341:
      block = tags.handleAt(i);
      break;
    case 47:
      if (m_entries < kMatrixEntries) {
        blockTransform(m_entries / 4, m_entries % 4) = tags.doubleAt(i);
        ++m_entries;
      }
      break;
    default:
      break;
  }
}

}  // namespace

Acad::ErrorStatus extentsOfMultiLeader(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                       ExtentsWalk& walk, AcDbExtents& box) {
  constexpr int kLineType = 170;
  constexpr int kArrowBlock = 342;
  constexpr std::int64_t kNoLine = 0;
  constexpr std::int64_t kCurved = 2;
  const LeaderContext context(entity.tags);
  const std::int64_t lineType = entity.tags.integer(kLineType, context.behind, 1);
  const Arrow arrow{blockWithHandle(entity, entity.tags.handle(kArrowBlock, context.behind)),
                    context.arrowSize, context.textNormal};
  for (const LeaderContext::Leader& leader : context.leaders) {
    if (lineType == kNoLine) {
      break;
    }
    for (const LeaderContext::Line& line : leader.lines) {
      std::vector<AcGePoint3d> points = line.points;
      if (leader.hasLanding) {
        points.push_back(leader.landing);
      }
      addCourse(points, lineType == kCurved, toWorld, box);
      addArrow(arrow, points, toWorld, walk, box);
    }
    if (leader.hasLanding) {
      box.addPoint(toWorld * leader.landing);
      box.addPoint(toWorld * (leader.landing + leader.dogleg * leader.length));
    }
  }
  if (context.hasText) {
    const TextSize size = textSizeOf(context.text, context.textHeight, context.textWidth, 1.0);
    // Its place is at the top, on the side of its attachment: left, middle or right.
    const double left = -0.5 * size.width *
                        static_cast<double>(std::clamp<std::int64_t>(context.attachment - 1, 0, 2));
    addRectangle(left, -size.height, left + size.width, 0.0,
                 toWorld * frameAt(context.textPlace, context.textDirection, context.textNormal),
                 box);
  }
  const dxf::Block* const block =
      context.hasBlock ? blockWithHandle(entity, context.block) : nullptr;
  if (block) {
    walk.show(*block, toWorld * context.blockTransform);
  }
  return Acad::eOk;
}

}  // namespace quoin::db
