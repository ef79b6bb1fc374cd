// MULTILEADER: leaders with their text or block; what it shows stands in a context, nested by
// braces.
#include <algorithm>
#include <array>
#include <vector>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/entities/TextFields.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/MTextLayout.h"
#include "embedded/db/geometry/TextMeasure.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kPoint = 10;

/// The parts of a multileader's context, nested by braces.
enum class Level { kOutside, kContext, kLeader, kLine };

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
  /// The points of a leader's lines: each ends where the leader lands, if it does.
  static std::vector<std::vector<AcGePoint3d>> linesOf(const Leader& leader);
  /// The arrow at the tips of its lines.
  Arrow arrowOf(const Drawn& entity) const;
  /// Where its text stands between the sides of its box, as a share of the width.
  double textAlignment() const {
    return 0.5 * static_cast<double>(std::clamp<std::int64_t>(attachment - 1, 0, 2));
  }
  bool hasLines() const { return lineType != 0; }
  bool isCurved() const { return lineType == 2; }

  std::int64_t lineType = 1;
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
  std::uint64_t textStyle = 0;
  double spacing = 1.0;
  std::int64_t textColor = 0;
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
        break;
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
  constexpr int kLineType = 170;
  lineType = tags.integer(kLineType, behind, 1);
}

std::vector<std::vector<AcGePoint3d>> LeaderContext::linesOf(const Leader& leader) {
  std::vector<std::vector<AcGePoint3d>> lines;
  for (const Line& line : leader.lines) {
    lines.push_back(line.points);
    if (leader.hasLanding) {
      lines.back().push_back(leader.landing);
    }
  }
  return lines;
}

Arrow LeaderContext::arrowOf(const Drawn& entity) const {
  constexpr int kArrowBlock = 342;
  return {blockWithHandle(entity, entity.tags.handle(kArrowBlock, behind)), arrowSize, textNormal};
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
    case 340:
      textStyle = tags.handleAt(i);
      break;
    case 45:
      spacing = tags.doubleAt(i);
      break;
    case 90:
      textColor = tags.integerAt(i);
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

Acad::ErrorStatus extentsOfMultiLeader(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                       ExtentsWalk& walk, AcDbExtents& box) {
  const LeaderContext context(entity.tags);
  const Arrow arrow = context.arrowOf(entity);
  for (const LeaderContext::Leader& leader : context.leaders) {
    if (!context.hasLines()) {
      break;
    }
    for (const std::vector<AcGePoint3d>& points : LeaderContext::linesOf(leader)) {
      addLeaderLine(points, context.isCurved(), toWorld, box);
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
    const double left = -size.width * context.textAlignment();
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

/// A colour as one number: how it is given in the highest byte.
AcCmColor packedColor(std::int64_t value) {
  AcCmColor color;
  const auto method = value >> 24 & 0xFF;
  if (method == AcCmEntityColor::kByColor) {
    color.setRGB(static_cast<Adesk::UInt8>(value >> 16), static_cast<Adesk::UInt8>(value >> 8),
                 static_cast<Adesk::UInt8>(value));
  } else if (method == AcCmEntityColor::kByACI) {
    color.setColorIndex(static_cast<Adesk::UInt16>(value & 0xFF));
  } else {
    color.setColorMethod(method == AcCmEntityColor::kByLayer ? AcCmEntityColor::kByLayer
                                                             : AcCmEntityColor::kByBlock);
  }
  return color;
}

/// The values of the attributes that its block asks for: definitions and texts in turn.
void drawAttributes(const Drawn& entity, const LeaderContext& context, const AcGeMatrix3d& toWorld,
                    DrawWalk& walk) {
  constexpr int kDefinition = 330;
  constexpr int kValue = 302;
  const TagList& tags = entity.tags;
  const AcDbStub* definition = nullptr;
  for (std::size_t i = context.behind.first; i < context.behind.last; ++i) {
    if (tags[i].code == kDefinition) {
      definition = entity.database->byHandle(tags.handleAt(i));
    } else if (tags[i].code == kValue && definition &&
               entity.database->kindOf(*definition) == "ATTDEF") {
      const TagList own = entity.database->tagsOf(*definition);
      TextFields fields(own);
      fields.text = tags.textAt(i);
      drawFields(fields, entity.database, own, toWorld * context.blockTransform, walk);
      definition = nullptr;
    }
  }
}

void drawMultiLeader(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kLineColor = 91;
  const LeaderContext context(entity.tags);
  const TagList& tags = entity.tags;
  const Arrow arrow = context.arrowOf(entity);
  const hostx::DrawColor own = walk.look().color;
  const hostx::DrawLook look =
      walk.lookOf(packedColor(tags.integer(kLineColor, context.behind, 0)));
  walk.setColor(look.color);
  for (const LeaderContext::Leader& leader : context.leaders) {
    if (!context.hasLines()) {
      break;
    }
    for (const std::vector<AcGePoint3d>& points : LeaderContext::linesOf(leader)) {
      if (points.size() > 1) {
        walk.stroke(leaderPath(points, context.isCurved(), toWorld, walk), look);
      }
      drawArrow(arrow, points, toWorld, walk);
    }
    if (leader.hasLanding && leader.length > 0.0) {
      walk.stroke(linePath(toWorld * leader.landing,
                           toWorld * (leader.landing + leader.dogleg * leader.length)),
                  look);
    }
  }
  walk.setColor(own);
  if (context.hasText) {
    MTextSettings settings;
    settings.height = context.textHeight;
    settings.limit = context.textWidth;
    settings.spacing = context.spacing;
    settings.alignment = context.textAlignment();
    const AcDbStub* const style =
        entity.database ? entity.database->byHandle(context.textStyle) : nullptr;
    settings.style = style && entity.database->kindOf(*style) == "STYLE" ? textStyleOf(*style)
                                                                         : textStyleOf(nullptr, {});
    MTextLayout text = layoutMText(context.text, settings);
    const AcCmColor color = packedColor(context.textColor);
    for (MTextPiece& piece : text.pieces) {
      piece.color = piece.color ? piece.color : color;
    }
    drawMText(text, toWorld * frameAt(context.textPlace, context.textDirection, context.textNormal),
              walk);
  }
  const dxf::Block* const block =
      context.hasBlock ? blockWithHandle(entity, context.block) : nullptr;
  if (block) {
    drawAttributes(entity, context, toWorld, walk);
    walk.show(*block, toWorld * context.blockTransform);
  }
}

struct LeaderRule {
  Level level;
  int code;
  Meaning meaning;
};

constexpr std::array kLeaderRules{
    LeaderRule{Level::kOutside, 41, Length},       LeaderRule{Level::kOutside, 42, Length},
    LeaderRule{Level::kOutside, 45, Length},       LeaderRule{Level::kContext, 40, Length},
    LeaderRule{Level::kContext, 10, Point},        LeaderRule{Level::kContext, 41, Length},
    LeaderRule{Level::kContext, 140, Length},      LeaderRule{Level::kContext, 145, Length},
    LeaderRule{Level::kContext, 11, Normal},       LeaderRule{Level::kContext, 12, Point},
    LeaderRule{Level::kContext, 13, Direction},    LeaderRule{Level::kContext, 42, AngleRadians},
    LeaderRule{Level::kContext, 43, Length},       LeaderRule{Level::kContext, 44, Length},
    LeaderRule{Level::kContext, 14, Normal},       LeaderRule{Level::kContext, 15, Point},
    LeaderRule{Level::kContext, 46, AngleRadians}, LeaderRule{Level::kContext, 110, Point},
    LeaderRule{Level::kContext, 111, Direction},   LeaderRule{Level::kContext, 112, Direction},
    LeaderRule{Level::kLeader, 10, Point},         LeaderRule{Level::kLeader, 11, Direction},
    LeaderRule{Level::kLeader, 12, Point},         LeaderRule{Level::kLeader, 13, Point},
    LeaderRule{Level::kLeader, 40, Length},        LeaderRule{Level::kLine, 10, Point},
    LeaderRule{Level::kLine, 11, Point},           LeaderRule{Level::kLine, 12, Point}};

/// The level behind a tag that opens or closes one.
Level levelBehind(Level level, std::string_view value) {
  if (!value.empty() && value.back() == '{') {
    return value.starts_with("CONTEXT")       ? Level::kContext
           : value.starts_with("LEADER_LINE") ? Level::kLine
                                              : Level::kLeader;
  }
  return level == Level::kLine     ? Level::kLeader
         : level == Level::kLeader ? Level::kContext
                                   : Level::kOutside;
}

/// The sixteen numbers, row by row, that place the block of a multileader.
void transformBlockMatrix(RecordEdit& edit, const std::vector<std::size_t>& at,
                          const AcGeMatrix3d& matrix) {
  if (at.size() != 16) {
    return;
  }
  AcGeMatrix3d before;
  for (std::size_t i = 0; i < at.size(); ++i) {
    before.entry[i / 4][i % 4] = edit.tags().doubleAt(at[i]);
  }
  const AcGeMatrix3d after = matrix * before;
  for (std::size_t i = 0; i < at.size(); ++i) {
    edit.setDoubleAt(at[i], after.entry[i / 4][i % 4]);
  }
}

Acad::ErrorStatus transformMultileader(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kFirstBrace = 300;
  constexpr int kLastBrace = 305;
  constexpr int kBlockMatrix = 47;
  constexpr int kTextNormal = 11;
  const TagList& tags = edit.tags();
  const TagRange range = tags.subclass("AcDbMLeader");
  const AcGeVector3d normal = tags.point(kTextNormal, range, AcGePoint3d(0.0, 0.0, 1.0)).asVector();
  const TransformParts parts(normal.length() > 0.0 ? normal.normal() : AcGeVector3d::kZAxis,
                             matrix);
  if (!parts.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  Level level = Level::kOutside;
  std::vector<std::size_t> blockMatrix;
  for (std::size_t i = range.first; i < range.last; ++i) {
    const int code = tags[i].code;
    const std::string_view value = dxf::trimmedValue(tags[i]);
    if (code >= kFirstBrace && code <= kLastBrace && !value.empty() &&
        (value.back() == '{' || value == "}")) {
      level = levelBehind(level, value);
      continue;
    }
    if (level == Level::kContext && code == kBlockMatrix) {
      blockMatrix.push_back(i);
    }
    const auto rule =
        std::find_if(kLeaderRules.begin(), kLeaderRules.end(),
                     [&](const LeaderRule& one) { return one.level == level && one.code == code; });
    if (rule != kLeaderRules.end() && tags.isOwn(i)) {
      transformTag(edit, i, rule->meaning, parts);
    }
  }
  transformBlockMatrix(edit, blockMatrix, matrix);
  return Acad::eOk;
}

constexpr std::array kOwnCodes{330};  // attributes of its block

constexpr std::array kKinds{
    RecordKind{.name = "MULTILEADER",
               .since = Version::R2007,
               .ownCodes = kOwnCodes,
               .extents = extentsOfMultiLeader,
               .draw = drawMultiLeader,
               .transform = transformMultileader},
    RecordKind{.name = "MLEADER",
               .ownCodes = kOwnCodes,
               .extents = extentsOfMultiLeader,
               .draw = drawMultiLeader,
               .transform = transformMultileader},
};

}  // namespace

const std::span<const RecordKind> kMultiLeaderRows{kKinds};

}  // namespace quoin::db
