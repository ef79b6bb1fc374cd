// What the records of texts of one line say, as values: TEXT, ATTRIB and ATTDEF.
#pragma once

#include <memory>
#include <string>

#include "embedded/db/core/RecordKinds.h"
#include "embedded/db/entities/MTextFields.h"
#include "embedded/db/records/TagList.h"
#include "gepnt3d.h"
#include "gevec3d.h"

namespace quoin::db {

/// Their group codes.
namespace text_code {
inline constexpr int kPosition = 10;
inline constexpr int kAlignment = 11;
inline constexpr int kHeight = 40;
inline constexpr int kWidthFactor = 41;
inline constexpr int kRotation = 50;
inline constexpr int kOblique = 51;
inline constexpr int kString = 1;
inline constexpr int kStyle = 7;
inline constexpr int kGeneration = 71;
inline constexpr int kHorizontal = 72;
inline constexpr int kVertical = 73;
inline constexpr int kAttributeVertical = 74;  // 73 is an attribute's field length
}  // namespace text_code

/// What a TEXT, ATTRIB or ATTDEF record says.
struct TextFields {
  static constexpr std::int64_t kBackwards = 2;
  static constexpr std::int64_t kUpsideDown = 4;

  explicit TextFields(const TagList& tags);

  std::wstring text;
  AcGeVector3d normal;
  AcGePoint3d position;
  AcGePoint3d alignment;
  double height = 0.0;
  double widthFactor = 1.0;
  double rotation = 0.0;
  double oblique = 0.0;
  std::int64_t generation = 0;
  std::int64_t horizontal = 0;
  std::int64_t vertical = 0;
  double thickness = 0.0;
};

/// Where a text's line stands: its own axes, and the box of its letters in them.
struct TextPlace {
  AcGeMatrix3d line;  // from the text's axes to its plane
  double left = 0.0;
  double bottom = 0.0;
  double width = 0.0;
  // The point that stays where it is if the width is another one, as shares of the box.
  double alongShare = 0.0;
  double upShare = 0.0;
  bool isFitted = false;  // between two points
};
/// `advance` is the natural width.
TextPlace placeOf(const TextFields& fields, double advance);

/// `tags` name the text's style.
void drawFields(const TextFields& fields, DatabaseImpl* database, const TagList& tags,
                const AcGeMatrix3d& toWorld, DrawWalk& walk);
/// The multiline text of an attribute of several lines; none for all others.
std::unique_ptr<const EmbeddedMText> linesOf(const TagList& tags);
/// How TEXT, ATTRIB and ATTDEF are drawn (TextDraw.cpp).
void drawText(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk);

}  // namespace quoin::db
