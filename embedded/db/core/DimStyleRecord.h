// Records of dimension styles between drawings. In a drawing a style points to arrow blocks,
// its text style and linetypes as the file's release does: by name in R12, by handle in R2000
// and later. A free record has them all by name, under the codes that R2000 has the handles
// under, in the neutral format; so it can go into any drawing.
#pragma once

#include "embedded/db/core/Transfer.h"

namespace quoin::db {

/// Something of a drawing that a dimension style points to.
struct DimReference {
  int code;        // group code since `since`
  int legacyCode;  // group code of the name before R2000; 0 if there is none
  TableKind table;
  dxf::Version since;
};

namespace order {
inline constexpr std::array kDimStyle{
    2,   70,  3,   4,   5,   6,   7,   40,  41,  42,  43,  44,  45,  46,  47,  48,
    49,  50,  140, 141, 142, 143, 144, 145, 146, 147, 148, 69,  71,  72,  73,  74,
    75,  76,  77,  78,  79,  90,  170, 171, 172, 173, 174, 175, 176, 177, 178, 179,
    270, 271, 272, 273, 274, 275, 276, 277, 278, 279, 280, 281, 282, 283, 284, 285,
    286, 287, 288, 289, 290, 294, 340, 341, 342, 343, 344, 371, 372, 345, 346, 347};
}  // namespace order

namespace layout {
inline constexpr SubclassLayout kDimStyle{"AcDbDimStyleTableRecord", order::kDimStyle};
}  // namespace layout

namespace dim {
inline constexpr int kUnit = 270;  // before R2000
inline constexpr int kFraction = 276;
inline constexpr int kLinearUnit = 277;
}  // namespace dim

/// The older variable that holds what the two newer ones say, and back.
int dimUnitOf(int linearUnit, int fraction);
int linearUnitOf(int dimUnit);
int fractionOf(int dimUnit);

/// The reference with this code; null if there is none.
const DimReference* dimReferenceOf(int code);

/// The record of a style in a drawing as a free record has it, without handle and owner.
/// Fails: throws FileError.
std::string freeDimStyle(const TagList& style, DatabaseImpl& database);

/// A free record as the drawing has it: in its release, with handles where that has them. What
/// the drawing lacks is left out.
/// Fails: throws FileError.
std::string placedDimStyle(const TagList& freeStyle, DatabaseImpl& database,
                           const Placement& placement);

}  // namespace quoin::db
