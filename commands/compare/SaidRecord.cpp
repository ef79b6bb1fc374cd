#include "commands/compare/SaidRecord.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "embedded/dxf/FileError.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

using dxf::TagType;
using dxf::TagView;

// Group codes that all entities share.
constexpr int kMarker = 100;
constexpr int kEmbedded = 101;
constexpr int kGroup = 102;
constexpr int kOwner = 330;
constexpr int kFirstXData = 1000;
/// Decimals of numbers that are no texts: every double has fewer significant ones.
constexpr int kAllDecimals = 17;

template <std::size_t N>
bool isOneOf(std::string_view word, const std::array<std::string_view, N>& words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

bool isPartOfInsert(std::string_view kind) {
  return kind == "ATTRIB" || kind == "ATTDEF";
}

bool isInPlaneKind(std::string_view kind) {
  constexpr std::array<std::string_view, 13> kKinds{
      "CIRCLE", "ARC",    "TEXT",  "LWPOLYLINE", "INSERT", "SOLID",    "TRACE",
      "ATTRIB", "ATTDEF", "HATCH", "POLYLINE",   "SHAPE",  "DIMENSION"};
  return isOneOf(kind, kKinds);
}

/// Kinds in whose records the order of unlike tags means something.
bool hasOwnOrder(std::string_view kind) {
  constexpr std::array<std::string_view, 7> kKinds{
      "HATCH", "MULTILEADER", "MLEADER", "MLINE", "ACAD_TABLE", "LTYPE", "MLINESTYLE"};
  return isOneOf(kind, kKinds);
}

/// Whether the point with this code is a direction, a size or a place in another space than the
/// entity's own, so that it stays where the entity is moved.
bool isVector(std::string_view kind, int code) {
  if (code == 11) {
    return isOneOf(kind, std::array<std::string_view, 12>{
                             "MTEXT", "ELLIPSE", "RAY", "XLINE", "IMAGE", "WIPEOUT", "ACAD_TABLE",
                             "TOLERANCE", "MULTILEADER", "MLEADER", "DIMSTYLE", "VIEWPORT"});
  }
  if (code > 11) {
    return isOneOf(kind, std::array<std::string_view, 8>{"IMAGE", "WIPEOUT", "SPLINE", "MLINE",
                                                         "VIEWPORT", "HELIX", "VIEW", "VPORT"}) ||
           (code != 12 && code != 15 && (kind == "MULTILEADER" || kind == "MLEADER"));
  }
  return kind == "POLYLINE";  // its own point is its elevation
}

/// Tags that say nothing about the drawing: what follows from others, places for programs to
/// remember something, and where in the file the record belongs.
bool isNoise(std::string_view kind, int code, int markers) {
  switch (code) {
    case 0:
    case 5:
    case 105:
    case kMarker:
    case 66:   // parts follow
    case 67:   // the space
    case 410:  // the layout
      return kind != "LAYOUT" || code != 67;
    case 92:
    case 160:
    case 310:  // what the entity looked like
      return markers <= 1;
    case 90:
    case 91:  // counts and identifiers of vertices
      return kind == "LWPOLYLINE" || kind == "VERTEX";
    case 42:  // as measured, and how exactly
      return kind == "DIMENSION" || kind == "MTEXT" || kind == "STYLE" || kind == "SPLINE";
    case 40:
    case 41:  // how large a leader's text is, which says so itself
      return kind == "LEADER";
    case 72:
    case 73:
    case 74:  // counts of what follows
      return kind == "SPLINE";
    case 76:
      return kind == "LEADER";
    case 210:
    case 220:
    case 230:  // the plane that its points happen to lie in
      return kind == "SPLINE";
    case 43:
      return kind == "MTEXT" || kind == "SPLINE";
    case 44:
      return kind == "SPLINE";
    case 280:  // versions and locks
      return isPartOfInsert(kind) || kind == "DIMENSION";
    case 290:
      return kind == "VIEWPORT";
    case 68:  // whether and as which one it is open
    case 69:
      return kind == "VIEWPORT";
    case 340:
    case 390:
    case 347:
    case 348:
      return kind == "LAYER" || kind == "BLOCK_RECORD";
    default:
      return false;
  }
}

/// Whether a text is a name, which is one in any case.
bool isName(std::string_view kind, int code) {
  return code == 8 || code == 6 || code == 7 ||
         (code == 2 && kind != "LAYOUT" && kind != "ATTRIB" && kind != "ATTDEF") ||
         (code == 3 && kind == "DIMENSION");
}

bool isLength(std::string_view kind, int code) {
  if (code == 38 || code == 39) {
    return true;
  }
  if (code == 40) {
    return kind != "ELLIPSE" && kind != "SPLINE" && kind != "HATCH" && kind != "LTYPE";
  }
  return (code == 41 && (kind == "VERTEX" || kind == "POLYLINE" || kind == "MTEXT"));
}

/// Which point of a record a coordinate belongs to: 10 for 10, 20 and 30; 0 for none.
int pointCode(std::string_view kind, int code) {
  if (kind == "DIMSTYLE" || kind == "LTYPE" || kind == "STYLE" || kind == "LAYER") {
    return 0;
  }
  const int hundreds = code / 100 * 100;
  const int rest = code - hundreds;
  if (hundreds > 200 || rest < 10 || rest > 38 || rest % 10 == 9) {
    return 0;
  }
  return hundreds + 10 + rest % 10;
}

double& coordinateOf(Said& point, int code) {
  const int row = code % 100 / 10;
  return row == 1 ? point.x : row == 2 ? point.y : point.z;
}

/// What a hatch's tags mean depends on the path and the edge that they stand in.
struct HatchPlace {
  bool isPolylinePath = false;
  bool isFirstPoint = true;
  int edge = 0;

  void note(int code, double value) {
    if (code == 92) {
      isPolylinePath = (static_cast<int>(value) & 2) != 0;
      edge = 0;
    } else if (code == 72 && !isPolylinePath) {
      edge = static_cast<int>(value);
    }
  }
  bool isVector(int code) {
    constexpr int kEllipse = 3;
    if (code == 10 && isFirstPoint) {
      isFirstPoint = false;  // the elevation
      return true;
    }
    return (code == 11 && edge == kEllipse) || code == 12 || code == 13 || code > 100;
  }
};

bool isTableKind(std::string_view kind) {
  return isOneOf(kind, std::array<std::string_view, 4>{"LTYPE", "STYLE", "DIMSTYLE", "BLOCK"});
}
/// Flags of table records that say something of them; the others are about external references
/// and use.
constexpr int kOwnFlags = 15;
/// A spline's that its points do not say: closed, periodic.
constexpr int kSplineFlags = 3;

int flagsOf(std::string_view kind, int flags) {
  return isTableKind(kind) ? flags & kOwnFlags : kind == "SPLINE" ? flags & kSplineFlags : flags;
}

/// Extended data in which programs keep what a file of an older version has no place for.
class RoundTripData {
 public:
  explicit RoundTripData(std::vector<Said>& said) : m_said(said) {}
  ~RoundTripData() { finish(); }
  RoundTripData(const RoundTripData&) = delete;
  RoundTripData& operator=(const RoundTripData&) = delete;

  /// Asked for each tag of extended data before it is added.
  bool isAmong(int code, std::string_view value) {
    constexpr int kApplication = 1001;
    constexpr int kText = 1000;
    if (code == kApplication) {
      finish();
      m_isCommon = value == "ACAD";
      m_isAmong = value == "ACAD_SPLINE_DATA";
      m_sizeWithName = m_said.size() + 1;
    } else if (code == kText && m_isCommon) {
      const bool isOther = value == "DSTYLE" || value == "MTEXTBEGIN" || value.starts_with("ACAD_");
      m_isAmong = value.starts_with("RT") || (m_isAmong && !isOther);
      m_hasAny = m_hasAny || m_isAmong;
    }
    return m_isAmong;
  }

 private:
  /// The application's name is of no use without its data.
  void finish() {
    if (m_hasAny && m_said.size() == m_sizeWithName) {
      m_said.pop_back();
    }
    m_hasAny = false;
  }

  std::vector<Said>& m_said;
  std::size_t m_sizeWithName = 0;
  bool m_isCommon = false;  // the application that all programs share
  bool m_isAmong = false;
  bool m_hasAny = false;
};

/// A layer's states as one each: a colour below 0 is off, flags have the rest.
void readLayerState(Said said, std::vector<Said>& all) {
  const auto add = [&](int code, bool isSo) {
    all.push_back({code, 0, Said::Type::Number, isSo ? 1.0 : 0.0, 0.0, 0.0, {}});
  };
  const int value = static_cast<int>(said.x);
  if (said.code == 62) {
    add(kOffCode, value < 0);
    said.x = std::abs(value);
    all.push_back(std::move(said));
  } else {
    add(kFrozenCode, (value & 1) != 0);
    add(kLockedCode, (value & 4) != 0);
  }
}

bool isPlainAscii(std::string_view value) {
  return std::all_of(value.begin(), value.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x80 && c != '\\' && c != '^';
  });
}

int sortCode(const Said& said) {
  return std::min(said.code, kFirstXData);
}

/// Vertices of a light polyline as points with their widths and bulges, which belong together.
void gatherVertices(std::vector<Said>& said) {
  double elevation = 0.0;
  double width = 0.0;
  for (const Said& one : said) {
    elevation = one.code == 38 ? one.x : elevation;
    width = one.code == 43 ? one.x : width;
  }
  std::vector<Said> gathered;
  std::vector<Said> vertices;
  for (Said& one : said) {
    if (one.code == 10) {
      one.z = elevation;
      vertices.push_back(std::move(one));
      vertices.push_back({kVertexCode, 0, Said::Type::Vector, width, width, 0.0, {}});
    } else if (!vertices.empty() && one.code >= 40 && one.code <= 42) {
      Said& shape = vertices.back();
      (one.code == 40 ? shape.x : one.code == 41 ? shape.y : shape.z) = one.x;
    } else if (one.code != 38 && one.code != 43) {
      gathered.push_back(std::move(one));
    }
  }
  gathered.insert(gathered.end(), std::make_move_iterator(vertices.begin()),
                  std::make_move_iterator(vertices.end()));
  said = std::move(gathered);
}

/// A colour is one thing: the true one where there is one.
void joinColors(std::vector<Said>& said) {
  const bool hasTrueColor = std::any_of(
      said.begin(), said.end(), [](const Said& one) { return one.code == 420 && one.part == 0; });
  if (hasTrueColor) {
    std::erase_if(said, [](const Said& one) { return one.code == 62 && one.part == 0; });
  }
}

/// The same for what is behind a paragraph.
void joinBackground(std::vector<Said>& said) {
  constexpr int kIndex = 63;
  constexpr int kTrueColor = 421;
  if (std::any_of(said.begin(), said.end(),
                  [](const Said& one) { return one.code == kTrueColor; })) {
    std::erase_if(said, [](const Said& one) { return one.code == kIndex; });
  }
}

/// A paragraph's text comes in pieces.
void joinText(std::vector<Said>& said) {
  std::string whole;
  for (const Said& one : said) {
    whole += one.code == 3 || one.code == 1 ? one.text : "";
  }
  std::erase_if(said, [](const Said& one) { return one.code == 3 || one.code == 1; });
  said.push_back({1, 0, Said::Type::Text, 0.0, 0.0, 0.0, whole});
}

double numberIn(const std::vector<Said>& said, std::uint32_t part, int code) {
  for (const Said& one : said) {
    if (one.part == part && one.code == code) {
      return one.x;
    }
  }
  return 0.0;
}

/// A text that is not aligned has no second point, whatever its record says.
void dropUnusedAlignment(std::vector<Said>& said, std::uint32_t part, bool isAttribute) {
  const int upCode = isAttribute ? 74 : 73;
  if (numberIn(said, part, 72) == 0.0 && numberIn(said, part, upCode) == 0.0) {
    std::erase_if(said, [&](const Said& one) { return one.part == part && one.code == 11; });
  }
}

/// What rounding leaves of a 0, as an angle.
constexpr double kZero = 1e-12;

bool isDefault(const Said& one, std::string_view kind) {
  switch (one.type) {
    case Said::Type::Text:
      return one.text == defaultText(kind, one.code);
    case Said::Type::Number:
    case Said::Type::Length:
      return std::fabs(one.x - defaultNumber(kind, one.code)) <= kZero;
    case Said::Type::Vector:
      return one.code == 210
                 ? one.x == 0.0 && one.y == 0.0 && one.z == 1.0
                 : one.code != kVertexCode && one.x == 0.0 && one.y == 0.0 && one.z == 0.0;
    case Said::Type::Point:
      break;
  }
  return false;
}

/// Leaves out what stands once in its part and is what would hold without it.
void dropDefaults(std::vector<Said>& said, const std::vector<std::string_view>& kindOfPart) {
  std::vector<Said> kept;
  kept.reserve(said.size());
  for (std::size_t begin = 0; begin < said.size();) {
    std::size_t end = begin + 1;
    while (end < said.size() && said[end].code == said[begin].code &&
           said[end].part == said[begin].part) {
      ++end;
    }
    const bool isAlone = end - begin == 1 && said[begin].code < kFirstXData;
    if (!isAlone || !isDefault(said[begin], kindOfPart[said[begin].part])) {
      std::move(said.begin() + static_cast<std::ptrdiff_t>(begin),
                said.begin() + static_cast<std::ptrdiff_t>(end), std::back_inserter(kept));
    }
    begin = end;
  }
  said = std::move(kept);
}

}  // namespace

double defaultNumber(std::string_view kind, int code) {
  switch (code) {
    case 48:
      return 1.0;
    case 62:
      return kind == "LAYER" || kind == "MTEXT" ? 7.0 : 256.0;
    case 370:
      return kind == "LAYER" ? -3.0 : -1.0;
    case 41:
      return kind == "INSERT" || kind == "TEXT" || isPartOfInsert(kind) || kind == "DIMENSION" ||
                     kind == "STYLE"
                 ? 1.0
                 : 0.0;
    case 42:
    case 43:
      return kind == "INSERT" ? 1.0 : 0.0;
    case 70:
    case 71:
      return kind == "INSERT" || (code == 71 && kind == "MTEXT") ? 1.0 : 0.0;
    case 72:
      return kind == "DIMENSION" || kind == "MTEXT" ? 1.0 : 0.0;
    case 73:
    case 44:
      return kind == "MTEXT" ? 1.0 : 0.0;
    case 290:
      return kind == "LAYER" ? 1.0 : 0.0;
    default:
      return 0.0;
  }
}

std::string_view defaultText(std::string_view kind, int code) {
  if (code == 6) {
    return kind == "LAYER" ? "CONTINUOUS" : "BYLAYER";
  }
  const bool hasStyle = kind == "TEXT" || kind == "MTEXT" || isPartOfInsert(kind);
  return (code == 7 && hasStyle) || (code == 3 && kind == "DIMENSION") ? "STANDARD" : "";
}

std::string foldedName(const std::string& name) {
  if (isPlainAscii(name)) {
    std::string folded = name;
    for (char& letter : folded) {
      letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    }
    return folded;
  }
  return os::toUtf8(os::foldCase(os::fromUtf8(name)));
}

bool isAnonymous(const std::string& blockName) {
  return blockName.size() > 1 && blockName.front() == '*' &&
         !foldedName(blockName).starts_with("*MODEL_SPACE") &&
         !foldedName(blockName).starts_with("*PAPER_SPACE");
}

std::string RecordReader::decoded(const TagView& tag) const {
  if (isPlainAscii(tag.value)) {
    return std::string(tag.value);
  }
  return os::toUtf8(dxf::textOf(tag, m_store.format()));
}

void RecordReader::read(const AcDbStub& stub, SaidRecord& record) {
  record.kind = m_store.kindName(stub);
  record.said.clear();
  record.normal = AcGeVector3d::kZAxis;
  record.isInPlane = isInPlaneKind(record.kind);
  record.isFromDwg = m_store.source() != nullptr;
  std::vector<std::string_view> kinds{record.kind};
  readTags(stub, 0, record);
  if (record.kind == "LWPOLYLINE") {
    gatherVertices(record.said);
  } else if (record.kind == "MTEXT") {
    joinText(record.said);
    joinBackground(record.said);
  } else if (record.kind == "TEXT" || record.kind == "ATTDEF") {
    dropUnusedAlignment(record.said, 0, record.kind == "ATTDEF");
  }
  joinColors(record.said);
  if (stub.role == dxf::Role::Entity) {
    for (const AcDbStub* part : m_store.subEntities(stub)) {
      const std::string_view kind = m_store.kindName(*part);
      if (kind == "SEQEND" || part->erased) {
        continue;
      }
      kinds.push_back(kind);
      const auto number = static_cast<std::uint32_t>(kinds.size() - 1);
      record.said.push_back({0, number, Said::Type::Text, 0.0, 0.0, 0.0, std::string(kind)});
      readTags(*part, number, record);
      if (kind == "ATTRIB") {
        dropUnusedAlignment(record.said, number, true);
      }
    }
  }
  if (!hasOwnOrder(record.kind)) {
    std::stable_sort(record.said.begin(), record.said.end(), [](const Said& a, const Said& b) {
      return a.part != b.part ? a.part < b.part : sortCode(a) < sortCode(b);
    });
  }
  dropDefaults(record.said, kinds);
}

void RecordReader::readTags(const AcDbStub& stub, std::uint32_t part, SaidRecord& record) {
  const std::string_view kind = m_store.kindName(stub);
  const dxf::Format& format = m_store.format();
  std::array<std::size_t, 240> placeOfPoint{};  // one behind the last point of each code
  const std::size_t first = record.said.size();
  HatchPlace hatch;
  bool isGroup = false;
  bool isEmbedded = false;
  bool hasFlags = false;
  int markers = 0;
  try {
    RoundTripData roundTrip(record.said);
    dxf::TagCursor cursor(stub.bytes(), format);
    for (TagView tag; cursor.next(tag);) {
      int code = tag.code;
      if (code == kGroup) {
        isGroup = tag.value.starts_with('{');
        continue;
      }
      markers += code == kMarker ? 1 : 0;
      isEmbedded = isEmbedded || code == kEmbedded;
      if (isGroup || code == kEmbedded || isNoise(kind, code, markers) ||
          (code == kOwner && markers == 0) ||
          (code >= kFirstXData && roundTrip.isAmong(code, dxf::trimmedValue(tag)))) {
        continue;
      }
      const TagType type = dxf::tagType(code);
      Said said;
      said.part = part;
      const int point = code < kFirstXData && !isEmbedded ? pointCode(kind, code) : 0;
      if (point != 0 && type == TagType::Double) {
        const double value = dxf::doubleOf(tag, format);
        std::size_t& place = placeOfPoint[static_cast<std::size_t>(point)];
        if (code != point) {
          if (place > first) {
            coordinateOf(record.said[place - 1], code) = value;
            continue;
          }
          // Elevations stand alone.
        } else {
          const bool stays =
              code > 100 || (kind == "HATCH" ? hatch.isVector(code) : isVector(kind, code));
          said.code = code;
          said.type = stays ? Said::Type::Vector : Said::Type::Point;
          said.x = value;
          record.said.push_back(std::move(said));
          place = record.said.size();
          continue;
        }
      }
      said.code = isEmbedded && code < kFirstXData ? kEmbeddedCodes + code : code;
      switch (type) {
        case TagType::Double:
          said.x = dxf::doubleOf(tag, format);
          said.type = isLength(kind, code) ? Said::Type::Length : Said::Type::Number;
          break;
        case TagType::Int16:
        case TagType::Int32:
        case TagType::Int64:
        case TagType::Bool:
          said.x = static_cast<double>(dxf::integerOf(tag, format));
          said.type = Said::Type::Number;
          break;
        case TagType::Handle:
          said.text = nameOf(dxf::handleOf(tag, format));
          break;
        case TagType::Text:
          said.text = decoded(tag);
          if (isName(kind, code)) {
            said.text = foldedName(said.text);
            said.text = isAnonymous(said.text) ? said.text.substr(0, 2) : said.text;
          }
          break;
        case TagType::Binary:
          said.text = dxf::binaryOf(tag, format);
          break;
      }
      if (kind == "HATCH") {
        hatch.note(code, said.x);
      }
      if (kind == "LAYER" && (code == 62 || code == 70)) {
        readLayerState(std::move(said), record.said);
      } else {
        if (code == 70 && !hasFlags) {
          hasFlags = true;  // a dimension style has a colour of this code, too
          said.x = static_cast<double>(flagsOf(kind, static_cast<int>(said.x)));
        }
        record.said.push_back(std::move(said));
      }
    }
  } catch (const dxf::FileError&) {
    return;  // as far as it can be read
  }
  for (std::size_t i = first; part == 0 && i < record.said.size(); ++i) {
    if (record.said[i].code == 210) {
      record.normal.set(record.said[i].x, record.said[i].y, record.said[i].z);
    }
  }
}

bool RecordReader::find(const AcDbStub& stub, int code, std::string_view marker,
                        TagView& tag) const {
  bool isThere = marker.empty();
  bool isGroup = false;
  try {
    dxf::TagCursor cursor(stub.bytes(), m_store.format());
    while (cursor.next(tag)) {
      if (tag.code == kGroup) {
        isGroup = tag.value.starts_with('{');
      } else if (tag.code == kMarker && !marker.empty()) {
        isThere = dxf::trimmedValue(tag) == marker;
      } else if (isThere && !isGroup && tag.code == code) {
        return true;
      }
    }
  } catch (const dxf::FileError&) {
    return false;
  }
  return false;
}

std::string RecordReader::textOf(const AcDbStub& stub, int code, std::string_view marker) const {
  TagView tag;
  return find(stub, code, marker, tag) ? decoded(tag) : "";
}

std::uint64_t RecordReader::handleIn(const AcDbStub& stub, int code,
                                     std::string_view marker) const {
  TagView tag;
  return find(stub, code, marker, tag) ? dxf::handleOf(tag, m_store.format()) : 0;
}

double RecordReader::firstCoordinate(const AcDbStub& stub) const {
  TagView x;
  TagView y;
  double most = 0.0;
  for (const auto& [code, tag] : {std::pair{10, &x}, std::pair{20, &y}}) {
    if (find(stub, code, {}, *tag)) {
      most = std::max(most, std::fabs(dxf::doubleOf(*tag, m_store.format())));
    }
  }
  return most;
}

std::string RecordReader::utf8Of(std::wstring_view text) {
  return os::toUtf8(text);
}

std::string RecordReader::layerOf(const AcDbStub& stub) const {
  const std::string layer = textOf(stub, 8);
  return layer.empty() ? "0" : layer;
}

std::string RecordReader::nameOf(std::uint64_t handle) {
  const auto [known, isNew] = m_names.try_emplace(handle);
  if (isNew && handle != 0) {
    known->second = foundName(handle);
  }
  return known->second;
}

std::string RecordReader::foundName(std::uint64_t handle) const {
  const AcDbStub* const stub = m_store.find(handle);
  if (!stub) {
    return "";
  }
  const std::string kind(m_store.kindName(*stub));
  std::string name;
  if (stub->role == dxf::Role::TableRecord) {
    name = foldedName(textOf(*stub, 2));
    name = isAnonymous(name) ? name.substr(0, 2) : name;
  } else if (stub->role == dxf::Role::Object) {
    // What objects are called: styles and pictures 2 or 1, scales 300, else by their description.
    for (const int code : {2, 1, 300, 3}) {
      name = name.empty() ? textOf(*stub, code) : name;
    }
  }
  return name.empty() ? kind : kind + " " + name;
}

int RecordReader::decimals() const {
  constexpr std::size_t kSample = 20000;
  if (m_store.source() || m_store.format().form == dxf::Form::Binary) {
    return kAllDecimals;
  }
  const std::size_t step = std::max<std::size_t>(1, m_store.stubs().size() / kSample);
  std::size_t most = 0;
  for (std::size_t i = 0; i < m_store.stubs().size(); i += step) {
    const AcDbStub& stub = m_store.stubs()[i];
    if (stub.role != dxf::Role::Entity && stub.role != dxf::Role::SubEntity) {
      continue;
    }
    try {
      dxf::TagCursor cursor(stub.bytes(), m_store.format());
      for (TagView tag; cursor.next(tag);) {
        const std::string_view text = dxf::trimmedValue(tag);
        const std::size_t point = text.find('.');
        if (dxf::tagType(tag.code) == TagType::Double && point != text.npos) {
          const bool isScaled = text.find_first_of("eE") != text.npos;
          most = std::max(most, isScaled ? std::size_t{kAllDecimals} : text.size() - point - 1);
        }
      }
    } catch (const dxf::FileError&) {
      continue;
    }
  }
  return static_cast<int>(most);
}

}  // namespace quoin::commands
