// The text of records: what a reader sees of it, its font, and how much room it takes.
#pragma once

#include <string>

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/text/FontMetrics.h"
#include "gevec3d.h"

namespace quoin::db {

/// Codes of MTEXT records.
namespace mtext {
/// Distance of base lines over text height at single spacing.
inline constexpr double kLineDistance = 5.0 / 3.0;
inline constexpr int kChunk = 3;  // all of the text but the end, which has code 1
inline constexpr int kLastChunk = 1;
inline constexpr int kDirection = 11;
inline constexpr int kRotation = 50;
}  // namespace mtext

/// The text with its formatting codes, chunks joined.
std::wstring mtextContentsOf(const TagList& tags);
/// The contents without formatting codes; lines end with '\n'.
std::wstring plainMText(std::wstring_view contents);
/// The direction of the lines in world coordinates, a unit vector.
AcGeVector3d mtextDirectionOf(const TagList& tags);

/// The font of a text whose record names its style (7); the usual one where the style is not
/// there. `database` is null for a record in no drawing.
const text::Font& fontOf(DatabaseImpl* database, const TagList& text, TagRange range);

struct TextSize {
  double width = 0.0;
  double height = 0.0;
};
/// The size that the file tells; else the longest line, wrapped at the defined width, and the
/// lines one above the other.
TextSize mtextSizeOf(const TagList& tags, const text::Font& font);
/// The size of contents with codes: `limit` is the width at which lines are wrapped (0: not at
/// all), `spacing` the factor of the distance of lines.
TextSize textSizeOf(std::wstring_view contents, double height, double limit, double spacing,
                    const text::Font& font = text::usualFont());

/// The width of a line of text in units of its height.
/// %% codes count as the characters that they stand for.
double lineAdvance(std::wstring_view line, const text::Font& font = text::usualFont());

}  // namespace quoin::db
