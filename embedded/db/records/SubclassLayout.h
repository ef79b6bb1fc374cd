// Where tags stand: for every subclass that a typed class reads, the group codes in the order
// in which they are conventionally written (DXF reference). A tag that a record lacks is
// inserted by this order; what a record has stays where it is.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "embedded/db/records/TagList.h"

namespace quoin::db {

struct SubclassLayout {
  std::string_view marker;
  std::span<const int> order;
  /// Whether look-ups go on into the subclasses behind (AcDbArc behind AcDbCircle).
  bool beyond = false;
  /// Whether these are the tags that all entities share, which may stand elsewhere.
  bool isShared = false;

  TagRange in(const TagList& tags) const {
    return isShared ? tags.shared()
           : beyond ? tags.subclassAndBeyond(marker)
                    : tags.subclass(marker);
  }
};

namespace code {
// Codes that every entity shares.
inline constexpr int kHandle = 5;
inline constexpr int kDimStyleHandle = 105;
inline constexpr int kOwner = 330;
inline constexpr int kLayer = 8;
inline constexpr int kLinetype = 6;
inline constexpr int kColor = 62;
inline constexpr int kTrueColor = 420;
inline constexpr int kColorName = 430;
inline constexpr int kTransparency = 440;
inline constexpr int kLinetypeScale = 48;
inline constexpr int kVisibility = 60;
inline constexpr int kPaperSpace = 67;
inline constexpr int kLayoutName = 410;
inline constexpr int kMaterial = 347;
inline constexpr int kLineWeight = 370;
inline constexpr int kPlotStyle = 390;
inline constexpr int kShadow = 284;
inline constexpr int kVisualStyle = 348;
// Codes that many kinds share.
inline constexpr int kLineStart = 10;
inline constexpr int kLineEnd = 11;
inline constexpr int kThickness = 39;
inline constexpr int kNormal = 210;
inline constexpr int kName = 2;
inline constexpr int kFlags = 70;
inline constexpr int kPartsFollow = 66;
// Codes of the vertices of polylines, light or heavy.
inline constexpr int kStartWidth = 40;
inline constexpr int kEndWidth = 41;
inline constexpr int kBulge = 42;
}  // namespace code

namespace order {
inline constexpr std::array kEntity{67, 410, 8,  6,   62,  347, 420, 430, 440,
                                    48, 60,  92, 160, 310, 370, 348, 284, 390};
inline constexpr std::array kPoint{10, 20, 30, 39, 210, 220, 230, 50};
inline constexpr std::array kLine{39, 10, 20, 30, 11, 21, 31, 210, 220, 230};
inline constexpr std::array kCircle{39, 10, 20, 30, 40, 210, 220, 230, 50, 51};
inline constexpr std::array kFace{10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 70};
inline constexpr std::array kText{39, 10, 20, 30, 40, 1,   50,  41,  51, 7,
                                  71, 72, 11, 21, 31, 210, 220, 230, 73, 74};
inline constexpr std::array kAttribute{280, 2, 70, 73, 74};
inline constexpr std::array kAttributeDefinition{280, 3, 2, 70, 73, 74};
inline constexpr std::array kReference{66, 2,  10, 20, 30, 41,  42,  43,
                                       50, 70, 71, 44, 45, 210, 220, 230};
inline constexpr std::array kVertex{10, 20, 30, 40, 41, 42, 91, 70, 50, 71, 72, 73, 74};
inline constexpr std::array kHeavyPolyline{66, 10, 20, 30, 39, 70,  40,  41,
                                           71, 72, 73, 74, 75, 210, 220, 230};
inline constexpr std::array kPolyline{90, 70, 43, 38, 39, 10, 20, 91, 40, 41, 42, 210, 220, 230};
inline constexpr std::array kMText{10,  20,  30, 40, 41, 46, 71, 72, 3,  1,  7,  210,
                                   220, 230, 11, 21, 31, 42, 43, 50, 73, 44, 90, 63};
inline constexpr std::array kRecordName{2, 70};
inline constexpr std::array kLayer{2, 70, 62, 420, 430, 6, 290, 370, 390, 347, 348};
inline constexpr std::array kLinetype{2, 70, 3, 72, 73, 40, 49, 74};
inline constexpr std::array kTextStyle{2, 70, 40, 41, 50, 71, 42, 3, 4};
inline constexpr std::array kBlockRecord{2, 340, 70, 280, 281, 310};
inline constexpr std::array kBlock{8, 2, 70, 10, 20, 30, 3, 1};
}  // namespace order

namespace layout {
inline constexpr SubclassLayout kEntity{"AcDbEntity", order::kEntity, false, true};
inline constexpr SubclassLayout kPoint{"AcDbPoint", order::kPoint};
inline constexpr SubclassLayout kLine{"AcDbLine", order::kLine};
inline constexpr SubclassLayout kFace{"AcDbFace", order::kFace};
inline constexpr SubclassLayout kCircle{"AcDbCircle", order::kCircle, true};
inline constexpr SubclassLayout kText{"AcDbText", order::kText};
inline constexpr SubclassLayout kAttribute{"AcDbAttribute", order::kAttribute};
inline constexpr SubclassLayout kAttributeDefinition{"AcDbAttributeDefinition",
                                                     order::kAttributeDefinition};
inline constexpr SubclassLayout kReference{"AcDbBlockReference", order::kReference, true};
inline constexpr SubclassLayout kMInsert{"AcDbMInsertBlock", order::kReference};
inline constexpr SubclassLayout kVertex2d{"AcDb2dVertex", order::kVertex};
inline constexpr SubclassLayout kVertex3d{"AcDb3dPolylineVertex", order::kVertex};
inline constexpr SubclassLayout kPolyline2d{"AcDb2dPolyline", order::kHeavyPolyline};
inline constexpr SubclassLayout kPolyline3d{"AcDb3dPolyline", order::kHeavyPolyline};
inline constexpr SubclassLayout kPolyline{"AcDbPolyline", order::kPolyline};
inline constexpr SubclassLayout kMText{"AcDbMText", order::kMText};
inline constexpr SubclassLayout kLayer{"AcDbLayerTableRecord", order::kLayer};
inline constexpr SubclassLayout kLinetype{"AcDbLinetypeTableRecord", order::kLinetype};
inline constexpr SubclassLayout kTextStyle{"AcDbTextStyleTableRecord", order::kTextStyle};
inline constexpr SubclassLayout kBlockRecord{"AcDbBlockTableRecord", order::kBlockRecord};
inline constexpr SubclassLayout kBlockBegin{"AcDbBlockBegin", order::kBlock};
/// The name of any table record: behind AcDbSymbolTableRecord, in whichever subclass.
inline constexpr SubclassLayout kSymbol{"AcDbSymbolTableRecord", order::kRecordName, true};
}  // namespace layout

}  // namespace quoin::db
