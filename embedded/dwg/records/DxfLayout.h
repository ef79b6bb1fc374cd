// How DXF spells the fields of a record: which tags stand behind which marker, in which order,
// and what is left out. The other half of a kind's description; RecordCoder.h has the bits.
//
// A layout is a text of words:
//   @AcDbLine      the marker (group 100)
//   39             a tag of this group code, from the field of this key
//   39?0           left out where it is 0 ("?" alone: 0 or no text)
//   10p            a point: 10, 20 and 30;  10q  a point in the plane: 10 and 20
//   210p?0,0,1     left out where it is that point
//   50a            an angle: degrees in DXF, radians in DWG
//   370w           a line weight: hundredths of a millimetre in DXF, an index in DWG
//   8:LAYER        the name of a record of that table, whose handle the record has
//   7:STYLE?Standard   left out for that name
//   73#1           the second meaning of the code in the record; its key is 73 + kKeyStep
//   1t3            a text in pieces: as many 3 as it takes, then 1
//   310b           bytes, in as many tags as it takes
//   66=1           this tag always
//   280+2010       since that release (2000 or 2010): before, the code has its second meaning alone
//   ~              from here on the tags of the embedded object (group 101)
//   75&74          only where the last field 74 is not 0
//   70&69!         the same, but it may be there all the same in what is read
//   40?!0          written always, but may be missing in what is read
//   ( 10q 42?0 )   these again and again, as long as there is another of the first
//   [ 92 10q 40 ]  these in the order in which the record has them, from the first of them on
//   [ *#3 ]        any codes in the order of the record, their keys 3 * kKeyStep above
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dwg/records/DrawingFacts.h"
#include "embedded/dwg/records/RecordValues.h"
#include "embedded/dxf/Tag.h"

namespace quoin::dwg {

struct LayoutItem {
  enum class Shape : std::uint8_t {
    Marker,
    Tag,
    Point2,
    Point3,
    Constant,
    GroupBegin,
    GroupEnd,
    SequenceBegin,
    SequenceEnd,
    Any,
    Embedded
  };
  enum class Unit : std::uint8_t { Plain, Angle, LineWeight, Pieces, Bytes };

  Shape shape = Shape::Tag;
  Unit unit = Unit::Plain;
  int code = 0;
  int key = 0;
  int pieceCode = 0;  // Pieces
  bool isOptional = false;
  bool isAlwaysWritten = false;
  int conditionKey = 0;      // 0: none
  bool isCondition = false;  // of another item
  bool isTolerated = false;  // in spite of its condition
  dxf::Version since = dxf::Version::Unknown;
  std::string text;               // Marker: its name; a table's name; Constant: its value
  std::wstring missingName;       // what is left out, of names and texts
  double missing[3] = {0, 0, 0};  // of numbers and points
};

class HOST_API DxfLayout {
 public:
  explicit DxfLayout(std::string_view text);

  /// Appends the tags of these fields.
  void write(const RecordValues& values, const DrawingFacts& facts, std::string& bytes) const;

  /// Fields of these tags (without kind, handle, groups and extended data), for a record that
  /// had the fields `original`: what did not change keeps how the file stores it. `used` marks
  /// the tags that have a place here.
  /// Fails: false when a tag has a value that DWG cannot have; `problem` says which.
  bool read(const std::vector<dxf::TagView>& tags, const RecordValues& original,
            const DrawingFacts& facts, RecordValues& values, std::vector<bool>& used,
            std::string& problem) const;

  /// Whether tags show the fields with this key.
  bool shows(int key) const;
  const std::vector<LayoutItem>& items() const { return m_items; }

 private:
  std::size_t endOfSequence(std::size_t begin) const;
  void writeSequence(std::size_t begin, const RecordValues& values, const DrawingFacts& facts,
                     std::string& bytes) const;

  std::vector<LayoutItem> m_items;
};

}  // namespace quoin::dwg
