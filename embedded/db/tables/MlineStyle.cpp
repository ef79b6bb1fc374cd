// Styles of multilines, and materials.
#include "dbmaterial.h"
#include "dbmstyle.h"
#include "embedded/db/core/EntityFields.h"
#include "embedded/db/tables/SymbolNames.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbMlineStyle, AcDbObject)
ACRX_CONS_DEFINE_MEMBERS(AcDbMaterial, AcDbObject)

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

constexpr int kDescription = 3;
constexpr int kStartAngle = 51;
constexpr int kEndAngle = 52;
constexpr int kElementCount = 71;
constexpr int kOffset = 49;
// Colours stand both in front of the elements and in each of them: they are not in this order,
// and found in their own stretch.
constexpr std::array kMlineOrder{code::kName, code::kFlags, kDescription,
                                 kStartAngle, kEndAngle,    kElementCount};
constexpr SubclassLayout kMlineStyle{"AcDbMlineStyle", kMlineOrder};

constexpr std::int64_t kFilled = 1;
constexpr std::int64_t kShowMiters = 2;
constexpr std::int64_t kStartSquare = 16;
constexpr std::int64_t kStartInnerArcs = 32;
constexpr std::int64_t kStartRound = 64;
constexpr std::int64_t kEndSquare = 256;
constexpr std::int64_t kEndInnerArcs = 512;
constexpr std::int64_t kEndRound = 1024;

constexpr double kRightAngle = 90.0;
constexpr double kLeastAngle = 10.0;
constexpr double kMostAngle = 170.0;
constexpr std::wstring_view kByLayer = L"BYLAYER";

/// The tags in front of the elements.
TagRange headOf(const TagList& tags) {
  TagRange range = kMlineStyle.in(tags);
  const std::size_t first = tags.find(kOffset, range);
  range.last = first == TagList::kNone ? range.last : first;
  return range;
}

std::vector<TagRange> elementsOf(const TagList& tags) {
  const TagRange range = kMlineStyle.in(tags);
  std::vector<TagRange> elements;
  for (std::size_t at = tags.find(kOffset, range); at != TagList::kNone;) {
    const std::size_t next = tags.find(kOffset, range, at + 1);
    elements.push_back({at, next == TagList::kNone ? range.last : next});
    at = next;
  }
  return elements;
}

AcCmColor colorIn(const TagList& tags, TagRange range) {
  AcCmColor color;
  if (const std::size_t rgb = tags.find(code::kTrueColor, range); rgb != TagList::kNone) {
    const auto value = static_cast<Adesk::UInt32>(tags.integerAt(rgb));
    color.setRGB(static_cast<Adesk::UInt8>(value >> 16), static_cast<Adesk::UInt8>(value >> 8),
                 static_cast<Adesk::UInt8>(value));
    return color;
  }
  constexpr std::int64_t kByLayerIndex = AcCmEntityColor::kACIbyLayer;
  const std::int64_t index = tags.integer(code::kColor, range, kByLayerIndex);
  const bool isIndex = index >= 0 && index <= AcCmEntityColor::kACInone;
  color.setColorIndex(static_cast<Adesk::UInt16>(isIndex ? index : kByLayerIndex));
  return color;
}

void putColor(std::string& bytes, const AcCmColor& color, const dxf::Format& format) {
  dxf::putInteger(bytes, code::kColor, color.colorIndex(), format);
  if (color.isByColor() && format.version >= dxf::Version::R2004) {
    dxf::putInteger(bytes, code::kTrueColor, color.entityColor().rgb(), format);
  }
}

bool flagOf(const AcDbMlineStyle& style, std::int64_t flag) {
  return (integerOf(style, kMlineStyle, code::kFlags) & flag) != 0;
}

Acad::ErrorStatus setEndingAngle(AcDbMlineStyle& style, int code, double angle) {
  const double degrees = toDegrees(angle);
  // The limits themselves may come out of the conversion a rounding too far.
  constexpr double kRounding = 1e-9;
  if (!(degrees >= kLeastAngle - kRounding && degrees <= kMostAngle + kRounding)) {
    return Acad::eInvalidInput;
  }
  return setAngle(style, kMlineStyle, code, angle);
}

}  // namespace

// --- styles of multilines -------------------------------------------------------------------

AcDbMlineStyle::AcDbMlineStyle() = default;

Acad::ErrorStatus AcDbMlineStyle::initMlineStyle() {
  return change(*this, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    if (!Access::of(*this).stub) {
      edit.setText(kMlineStyle, code::kName, L"");
    }
    edit.setInteger(kMlineStyle, code::kFlags, 0);
    edit.setText(kMlineStyle, kDescription, L"");
    edit.setDouble(kMlineStyle, kStartAngle, kRightAngle);
    edit.setDouble(kMlineStyle, kEndAngle, kRightAngle);
    edit.setInteger(kMlineStyle, kElementCount, 0);
    for (const TagRange& element : elementsOf(tags)) {
      edit.replace(element, {});
    }
  });
}

const ACHAR* AcDbMlineStyle::name() const {
  return keptText(*this, code::kName, textOf(*this, kMlineStyle, code::kName));
}

Acad::ErrorStatus AcDbMlineStyle::setName(const ACHAR* name) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  try {
    if (!name || !isValidSymbolName(name, false)) {
      return Acad::eInvalidInput;
    }
    if (Access::of(*this).stub && textOf(*this, kMlineStyle, code::kName) != name) {
      return Acad::eNotApplicable;
    }
  } catch (...) {
    return statusOfException();
  }
  return setText(*this, kMlineStyle, code::kName, name);
}

const ACHAR* AcDbMlineStyle::description() const {
  return keptText(*this, kDescription, textOf(*this, kMlineStyle, kDescription));
}

Acad::ErrorStatus AcDbMlineStyle::setDescription(const ACHAR* description) {
  return setText(*this, kMlineStyle, kDescription, description);
}

#define QUOIN_DEFINE_MLINE_FLAG(GET, SET, FLAG)                 \
  bool AcDbMlineStyle::GET() const {                            \
    return flagOf(*this, FLAG);                                 \
  }                                                             \
  Acad::ErrorStatus AcDbMlineStyle::SET(bool on) {              \
    return setFlag(*this, kMlineStyle, code::kFlags, FLAG, on); \
  }

QUOIN_DEFINE_MLINE_FLAG(filled, setFilled, kFilled)
QUOIN_DEFINE_MLINE_FLAG(showMiters, setShowMiters, kShowMiters)
QUOIN_DEFINE_MLINE_FLAG(startSquareCap, setStartSquareCap, kStartSquare)
QUOIN_DEFINE_MLINE_FLAG(endSquareCap, setEndSquareCap, kEndSquare)
QUOIN_DEFINE_MLINE_FLAG(startRoundCap, setStartRoundCap, kStartRound)
QUOIN_DEFINE_MLINE_FLAG(endRoundCap, setEndRoundCap, kEndRound)
QUOIN_DEFINE_MLINE_FLAG(startInnerArcs, setStartInnerArcs, kStartInnerArcs)
QUOIN_DEFINE_MLINE_FLAG(endInnerArcs, setEndInnerArcs, kEndInnerArcs)

double AcDbMlineStyle::startAngle() const {
  return toRadians(numberOf(*this, kMlineStyle, kStartAngle, kRightAngle));
}

Acad::ErrorStatus AcDbMlineStyle::setStartAngle(double angle) {
  return setEndingAngle(*this, kStartAngle, angle);
}

double AcDbMlineStyle::endAngle() const {
  return toRadians(numberOf(*this, kMlineStyle, kEndAngle, kRightAngle));
}

Acad::ErrorStatus AcDbMlineStyle::setEndAngle(double angle) {
  return setEndingAngle(*this, kEndAngle, angle);
}

AcCmColor AcDbMlineStyle::fillColor() const {
  const TagList& tags = tagsOf(*this);
  return colorIn(tags, headOf(tags));
}

Acad::ErrorStatus AcDbMlineStyle::setFillColor(const AcCmColor& color) {
  return change(*this, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    const TagRange head = headOf(tags);
    if (colorIn(tags, head) == color) {
      return;
    }
    for (const int code : {code::kTrueColor, code::kColorName}) {
      if (const std::size_t at = tags.find(code, head); at != TagList::kNone) {
        edit.replace({at, at + 1}, {});
      }
    }
    std::string bytes;
    putColor(bytes, color, tags.format());
    const std::size_t index = tags.find(code::kColor, head);
    const std::size_t count = tags.find(kElementCount, head);
    if (index != TagList::kNone) {
      edit.replace({index, index + 1}, std::move(bytes));
    } else {
      edit.insertBefore(count == TagList::kNone ? head.last : count, std::move(bytes));
    }
  });
}

int AcDbMlineStyle::numElements() const {
  return static_cast<int>(elementsOf(tagsOf(*this)).size());
}

Acad::ErrorStatus AcDbMlineStyle::addElement(int& index, double offset, const AcCmColor& color,
                                             AcDbObjectId linetype, bool) {
  index = -1;
  const AcDbStub* const stub = linetype;
  Acad::ErrorStatus status = checkWritable(*this);
  if (status == Acad::eOk && stub) {
    status = checkRecord(*this, stub, TableKind::Linetype);
  }
  if (status != Acad::eOk) {
    return status;
  }
  try {
    if (numElements() >= kMostElements) {
      return Acad::eInvalidInput;
    }
    const std::wstring name =
        stub ? DatabaseImpl::of(*stub).recordName(*stub) : std::wstring(kByLayer);
    int place = 0;
    status = change(*this, [&](RecordEdit& edit) {
      const TagList& tags = edit.tags();
      const std::vector<TagRange> elements = elementsOf(tags);
      std::size_t before = kMlineStyle.in(tags).last;
      for (const TagRange& element : elements) {
        if (tags.doubleAt(element.first) < offset) {
          before = element.first;
          break;
        }
        ++place;
      }
      edit.noteNumber(offset);
      std::string bytes;
      dxf::putDouble(bytes, kOffset, offset, tags.format());
      putColor(bytes, color, tags.format());
      dxf::putText(bytes, code::kLinetype, name, tags.format());
      edit.insertBefore(before, std::move(bytes));
      edit.setInteger(kMlineStyle, kElementCount, static_cast<std::int64_t>(elements.size()) + 1);
    });
    index = status == Acad::eOk ? place : -1;
    return status;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbMlineStyle::addElement(double offset, const AcCmColor& color,
                                             AcDbObjectId linetype) {
  int index = 0;
  return addElement(index, offset, color, linetype);
}

Acad::ErrorStatus AcDbMlineStyle::getElementAt(int index, double& offset, AcCmColor& color,
                                               AcDbObjectId& linetype) const {
  try {
    const TagList& tags = tagsOf(*this);
    const std::vector<TagRange> elements = elementsOf(tags);
    if (index < 0 || static_cast<std::size_t>(index) >= elements.size()) {
      return Acad::eInvalidIndex;
    }
    const TagRange& element = elements[static_cast<std::size_t>(index)];
    offset = tags.doubleAt(element.first);
    color = colorIn(tags, element);
    const std::optional<std::wstring> name = tags.text(code::kLinetype, element);
    linetype = recordNamed(*this, TableKind::Linetype, name ? *name : std::wstring(kByLayer));
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbMlineStyle::removeElementAt(int index) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk || index < 0 || index >= numElements()) {
    return status == Acad::eOk ? Acad::eInvalidIndex : status;
  }
  return change(*this, [&](RecordEdit& edit) {
    const std::vector<TagRange> elements = elementsOf(edit.tags());
    edit.replace(elements[static_cast<std::size_t>(index)], {});
    edit.setInteger(kMlineStyle, kElementCount, static_cast<std::int64_t>(elements.size()) - 1);
  });
}

// --- materials ------------------------------------------------------------------------------

namespace {
constexpr int kMaterialName = 1;
constexpr int kMaterialDescription = 2;
constexpr std::array kMaterialOrder{kMaterialName, kMaterialDescription};
constexpr SubclassLayout kMaterial{"AcDbMaterial", kMaterialOrder};
}  // namespace

AcDbMaterial::AcDbMaterial() = default;

const ACHAR* AcDbMaterial::name() const {
  return keptText(*this, kMaterialName, textOf(*this, kMaterial, kMaterialName));
}

Acad::ErrorStatus AcDbMaterial::setName(const ACHAR* name) {
  return name && *name ? setText(*this, kMaterial, kMaterialName, name) : Acad::eInvalidInput;
}

const ACHAR* AcDbMaterial::description() const {
  return keptText(*this, kMaterialDescription, textOf(*this, kMaterial, kMaterialDescription));
}

Acad::ErrorStatus AcDbMaterial::setDescription(const ACHAR* description) {
  return setText(*this, kMaterial, kMaterialDescription, description);
}
