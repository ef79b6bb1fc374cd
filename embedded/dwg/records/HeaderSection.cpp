#include "embedded/dwg/records/HeaderSection.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/HeaderVariables.h"
#include "embedded/dwg/records/RecordCoder.h"
#include "embedded/dxf/Tag.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

constexpr std::int64_t kMillisecondsOfDay = 86400000;
constexpr std::string_view kFlags = "FLAGS";

// --- bits -----------------------------------------------------------------------------------

/// Whether so many bits may follow the variables: nothing but what fills the last byte, or four
/// shorts and some bits of which nobody knows what they say.
bool isTail(std::size_t bits) {
  constexpr std::size_t kFill = 8;
  constexpr std::size_t kShorts = 4 * 18;
  return bits < kFill || (bits >= kShorts && bits < kShorts + 2 * kFill);
}

// --- what DXF spells otherwise ----------------------------------------------------------------

/// The arrows that are part of the format. Their blocks' names have an underscore in front, which
/// DXF leaves out here.
constexpr std::array<std::wstring_view, 19> kArrows = {
    L"ClosedBlank", L"Closed",   L"Dot",         L"DotBlank",   L"DotSmall",
    L"ArchTick",    L"Oblique",  L"Origin",      L"Origin2",    L"Open",
    L"Open30",      L"Open90",   L"Small",       L"None",       L"BoxFilled",
    L"BoxBlank",    L"Integral", L"DatumFilled", L"DatumBlank",
};

bool isArrow(std::wstring_view name) {
  return std::any_of(kArrows.begin(), kArrows.end(),
                     [name](std::wstring_view arrow) { return os::sameName(arrow, name); });
}

bool isArrowVariable(std::string_view name) {
  return name == "DIMBLK" || name == "DIMBLK1" || name == "DIMBLK2" || name == "DIMLDRBLK";
}

constexpr std::int64_t kByLayerIndex = 256;
constexpr std::int64_t kNoIndex = 257;

/// The colour as an index: what R2004 and later keep as a number with the kind in its highest byte.
std::int64_t colorIndex(std::int64_t index, std::optional<std::int64_t> trueColor) {
  if (!trueColor) {
    return index;
  }
  const auto color = static_cast<std::uint32_t>(*trueColor);
  const auto byte = [color](unsigned shift) { return static_cast<std::uint8_t>(color >> shift); };
  switch (byte(24)) {
    case kMethodByLayer:
      return kByLayerIndex;
    case kMethodByBlock:
      return 0;
    case kMethodTrue:
      return nearestIndex(*trueColor);
    case kMethodIndexed:
      return byte(0);
    case kMethodNone:
      return kNoIndex;
    default:
      return index;
  }
}

/// The other way; nothing for what is no index.
std::optional<std::int64_t> trueColorOf(std::int64_t index) {
  const auto color = [](std::uint32_t number) { return static_cast<std::int32_t>(number); };
  if (index == 0) {
    return color(0xC1000000);
  }
  if (index == kByLayerIndex) {
    return color(0xC0000000);
  }
  if (index == kNoIndex) {
    return color(0xC8000000);
  }
  if (index < 0 || index > kNoIndex) {
    return std::nullopt;
  }
  return color(0xC3000000 | static_cast<std::uint32_t>(index));
}

/// Whether the code can hold the number.
bool holds(VariableCode code, std::int64_t number) {
  switch (code) {
    case VariableCode::Bit:
      return number == 0 || number == 1;
    case VariableCode::RawChar:
      return number >= 0 && number <= 0xFF;
    case VariableCode::BitShort:
      return number >= -0x8000 && number <= 0x7FFF;
    case VariableCode::BitLong:
      return number >= -0x80000000LL && number <= 0x7FFFFFFFLL;
    default:
      return true;
  }
}

}  // namespace

// --- reading and writing ----------------------------------------------------------------------

bool HeaderSection::read(std::string_view contents, Version version, const os::CodePage& codePage) {
  *this = HeaderSection();
  m_version = version;
  m_codePage = &codePage;
  RecordValues values;
  RecordCoder coder(version, codePage, 0, contents, 0, values);
  codeVariables(coder);
  if (coder.hasFailed()) {
    return false;
  }
  const RecordCoder::Rest rest = coder.rest();
  m_values = std::move(values);
  m_isExact = rest.data == 0 && isTail(rest.end) && encoded(m_values) == contents;
  readHandles();
  return true;
}

std::string HeaderSection::encoded(const RecordValues& values) const {
  RecordCoder coder(m_version, *m_codePage, 0, values);
  codeVariables(coder);
  coder.rest();
  RecordBytes bytes;
  return coder.finish(bytes) ? std::move(bytes.data) : std::string();
}

std::string HeaderSection::write() const {
  return m_isExact ? encoded(m_values) : std::string();
}

/// Takes the values over as they come back from their bits.
bool HeaderSection::become(const RecordValues& values) {
  const std::string contents = encoded(values);
  HeaderSection fresh;
  if (contents.empty() || !fresh.read(contents, m_version, *m_codePage) || !fresh.m_isExact) {
    return false;
  }
  *this = std::move(fresh);
  return true;
}

std::uint64_t HeaderSection::handleOf(std::string_view name) const {
  const StoredVariable* const variable = storedVariable(name, m_version);
  const Value* const value = variable == nullptr ? nullptr : m_values.first(variable->key);
  return value == nullptr || value->type != Value::Type::Handle
             ? 0
             : static_cast<std::uint64_t>(value->integer);
}

void HeaderSection::readHandles() {
  m_handles.seed = handleOf("HANDSEED");
  m_handles.blockControl = handleOf("BLOCK_CONTROL");
  m_handles.layerControl = handleOf("LAYER_CONTROL");
  m_handles.styleControl = handleOf("STYLE_CONTROL");
  m_handles.linetypeControl = handleOf("LTYPE_CONTROL");
  m_handles.viewControl = handleOf("VIEW_CONTROL");
  m_handles.ucsControl = handleOf("UCS_CONTROL");
  m_handles.viewportControl = handleOf("VPORT_CONTROL");
  m_handles.applicationControl = handleOf("APPID_CONTROL");
  m_handles.dimensionStyleControl = handleOf("DIMSTYLE_CONTROL");
  m_handles.viewportEntityControl = handleOf("VX_CONTROL");
  m_handles.namedObjects = handleOf("NAMED_OBJECTS");
  m_handles.groups = handleOf("GROUPS");
  m_handles.multilineStyles = handleOf("MLINESTYLES");
  m_handles.layouts = handleOf("LAYOUTS");
  m_handles.plotSettings = handleOf("PLOTSETTINGS");
  m_handles.plotStyles = handleOf("PLOTSTYLES");
  m_handles.materials = handleOf("MATERIALS");
  m_handles.colors = handleOf("COLORS");
  m_handles.visualStyles = handleOf("VISUALSTYLES");
  m_handles.modelSpace = handleOf("MODEL_SPACE");
  m_handles.paperSpace = handleOf("PAPER_SPACE");
  m_handles.byLayerLinetype = handleOf("BYLAYER");
  m_handles.byBlockLinetype = handleOf("BYBLOCK");
  m_handles.continuousLinetype = handleOf("CONTINUOUS");
  m_handles.currentLayer = handleOf("CLAYER");
  m_handles.currentTextStyle = handleOf("TEXTSTYLE");
  m_handles.currentLinetype = handleOf("CELTYPE");
  m_handles.currentDimensionStyle = handleOf("DIMSTYLE");
  m_handles.currentMultilineStyle = handleOf("CMLSTYLE");
  m_handles.currentMaterial = handleOf("CMATERIAL");
}

// --- tags -----------------------------------------------------------------------------------

namespace {

/// What is behind a name of DXF.
const StoredVariable* storedBehind(std::string_view name, Version version) {
  return storedVariable(packedVariable(name) != nullptr ? kFlags : name.substr(1), version);
}

/// The group code that a variable's first tag has.
int codeOf(const SpelledVariable& variable) {
  return variable.layout.items().front().code;
}

}  // namespace

/// The variable's fields under the group codes of its tags.
RecordValues HeaderSection::shown(const SpelledVariable& variable, const StoredVariable& stored,
                                  const DrawingFacts& facts) const {
  RecordValues values;
  const Value* const first = m_values.first(stored.key);
  if (first == nullptr) {
    return values;
  }
  const int code = codeOf(variable);
  const PackedVariable* const packed = packedVariable(variable.name);
  const bool isBool = dxf::tagType(code) == dxf::TagType::Bool;
  if (packed != nullptr) {
    const std::int64_t mask = (std::int64_t{1} << packed->bits) - 1;
    const std::int64_t number = first->integer >> packed->shift & mask;
    values.addInteger(code, packed->isInverted ? mask - number : number);
  } else if (stored.code == VariableCode::Date) {
    const Value* const milliseconds = m_values.first(stored.key + kMilliseconds);
    values.addDouble(
        code, static_cast<double>(first->integer) + static_cast<double>(milliseconds->integer) /
                                                        static_cast<double>(kMillisecondsOfDay));
  } else if (stored.code == VariableCode::Color) {
    const Value* const trueColor = m_values.first(stored.key + kTrueColor);
    values.addInteger(
        code, colorIndex(first->integer,
                         trueColor == nullptr ? std::nullopt : std::optional(trueColor->integer)));
  } else if (first->type == Value::Type::Handle && isArrowVariable(stored.name)) {
    const std::wstring& name = facts.nameOf(static_cast<std::uint64_t>(first->integer));
    const bool isOfProgram = name.starts_with(L'_') && isArrow(std::wstring_view(name).substr(1));
    values.addText(code, isOfProgram ? name.substr(1) : name);
  } else if (isBool && first->type == Value::Type::Integer) {
    values.addInteger(code, first->integer == 1 ? 1 : 0);  // $XCLIPFRAME has more in DWG
  } else {
    constexpr int kStep = 10;  // between the parts of a point, here as in DXF
    for (int part = 0; part < 3; ++part) {
      if (const Value* const value = m_values.first(stored.key + part * kStep)) {
        values.addFrom(m_values, *value);
        values[values.size() - 1].key = code + part * kStep;
      }
    }
  }
  return values;
}

bool HeaderSection::showOutside(const SpelledVariable& variable, const DrawingFacts& facts,
                                const OutsideVariables& outside, RecordValues& values) const {
  const int code = codeOf(variable);
  const auto wide = [](std::string_view text) { return std::wstring(text.begin(), text.end()); };
  if (variable.name == "$ACADVER") {
    values.addText(code, wide(dxf::acadVerText(facts.format.version)));
  } else if (variable.name == "$ACADMAINTVER") {
    values.addInteger(code, outside.maintenance);
  } else if (variable.name == "$DWGCODEPAGE") {
    values.addText(code, wide(facts.format.codePage));
  } else if (variable.name == "$LASTSAVEDBY") {
    values.addText(code, outside.lastSavedBy);
  } else if (variable.name == "$MEASUREMENT") {
    values.addInteger(code, outside.measurement);
  } else if (variable.name == "$HANDLING") {
    values.addInteger(code, 1);
  } else {
    return false;
  }
  return true;
}

void HeaderSection::writeTags(const DrawingFacts& facts, const OutsideVariables& outside,
                              std::string& bytes) const {
  constexpr int kName = 9;
  std::string tags;
  for (const SpelledVariable& variable : spelledVariables()) {
    if (!variable.isIn(m_version)) {
      continue;
    }
    RecordValues values;
    if (!showOutside(variable, facts, outside, values)) {
      const StoredVariable* stored = storedBehind(variable.name, m_version);
      if (stored == nullptr && variable.name.starts_with("$TDC")) {
        stored = storedVariable("TDUCREATE", m_version);
      } else if (stored == nullptr && variable.name.starts_with("$TDU")) {
        stored = storedVariable("TDUUPDATE", m_version);
      }
      if (stored != nullptr) {
        values = shown(variable, *stored, facts);
      }
    }
    tags.clear();
    variable.layout.write(values, facts, tags);
    if (!tags.empty()) {
      dxf::putAscii(bytes, kName, variable.name, facts.format);
      bytes += tags;
    }
  }
}

// --- changes --------------------------------------------------------------------------------

namespace {

bool isSame(const RecordValues& values, const Value& value, const RecordValues& others,
            const Value& other) {
  if (value.type != other.type) {
    return false;
  }
  switch (value.type) {
    case Value::Type::Text:
      return values.textOf(value) == others.textOf(other);
    case Value::Type::Double:
      return std::bit_cast<std::uint64_t>(value.number) ==
             std::bit_cast<std::uint64_t>(other.number);
    default:
      return value.integer == other.integer;
  }
}

}  // namespace

/// Enters the fields of a variable's tags. Fails: false for a value that DWG cannot have.
bool HeaderSection::store(const SpelledVariable& variable, const StoredVariable& stored,
                          const RecordValues& fresh, const DrawingFacts& facts,
                          RecordValues& values) const {
  const int code = codeOf(variable);
  const Value* const first = fresh.first(code);
  if (first == nullptr) {
    return false;
  }
  // The fields that take the place of those with their keys.
  RecordValues made;
  if (const PackedVariable* const packed = packedVariable(variable.name)) {
    const std::int64_t mask = (std::int64_t{1} << packed->bits) - 1;
    if (first->integer < 0 || first->integer > mask) {
      return false;
    }
    const std::int64_t number = packed->isInverted ? mask - first->integer : first->integer;
    const std::int64_t flags = m_values.first(stored.key)->integer;
    made.addInteger(stored.key, (flags & ~(mask << packed->shift)) | number << packed->shift);
  } else if (stored.code == VariableCode::Date) {
    if (!(first->number >= 0.0 && first->number < 0x7FFFFFFF)) {
      return false;
    }
    auto days = static_cast<std::int64_t>(first->number);
    std::int64_t milliseconds = std::llround((first->number - static_cast<double>(days)) *
                                             static_cast<double>(kMillisecondsOfDay));
    days += milliseconds / kMillisecondsOfDay;
    milliseconds %= kMillisecondsOfDay;
    made.addInteger(stored.key, days);
    made.addInteger(stored.key + kMilliseconds, milliseconds);
  } else if (stored.code == VariableCode::Color) {
    const std::optional<std::int64_t> trueColor = trueColorOf(first->integer);
    if (!trueColor) {
      return false;
    }
    // A name that the colour had does not belong to the new one.
    made.addInteger(stored.key, m_version < Version::R2004 ? first->integer : 0);
    made.addInteger(stored.key + kTrueColor, *trueColor);
    made.addInteger(stored.key + kColorNames, 0);
  } else if (first->type == Value::Type::Text && isArrowVariable(stored.name) &&
             m_version >= Version::R2000) {
    const std::wstring& name = fresh.textOf(*first);
    std::uint64_t block = isArrow(name) ? facts.handleOf("BLOCK_RECORD", L"_" + name) : 0;
    block = block != 0 ? block : facts.handleOf("BLOCK_RECORD", name);
    if (block == 0 && !name.empty()) {
      return false;
    }
    made.addHandle(stored.key, block);
  } else {
    for (std::size_t i = 0; i < fresh.size(); ++i) {
      if (fresh[i].type == Value::Type::Integer && !holds(stored.code, fresh[i].integer)) {
        return false;
      }
      made.addFrom(fresh, fresh[i]);
      made[made.size() - 1].key = stored.key + fresh[i].key - code;
    }
  }
  for (std::size_t i = 0; i < m_values.size(); ++i) {
    const Value* const other = made.first(m_values[i].key);
    if (other == nullptr || isSame(made, *other, m_values, m_values[i])) {
      values.addFrom(m_values, m_values[i]);
      continue;
    }
    values.addFrom(made, *other);
    if (other->type != Value::Type::Text) {
      values[values.size() - 1].form = m_values[i].form;  // where that can hold the value
    }
  }
  return true;
}

bool HeaderSection::set(std::string_view name, std::string_view tags, const DrawingFacts& facts) {
  const auto spelled = spelledVariables();
  const auto variable = std::find_if(spelled.begin(), spelled.end(), [&](const auto& candidate) {
    return candidate.name == name && candidate.isIn(m_version);
  });
  if (!m_isExact || variable == spelled.end()) {
    return false;
  }
  const StoredVariable* const stored = storedBehind(name, m_version);
  if (stored == nullptr || m_values.first(stored->key) == nullptr) {
    return false;
  }
  std::vector<dxf::TagView> views;
  dxf::TagCursor cursor(tags, facts.format);
  for (dxf::TagView tag; cursor.next(tag);) {
    if (dxf::isUnreadableDouble(tag, facts.format)) {
      return false;
    }
    views.push_back(tag);
  }
  RecordValues fresh;
  std::vector<bool> used(views.size(), false);
  std::string problem;
  if (!variable->layout.read(views, shown(*variable, *stored, facts), facts, fresh, used,
                             problem) ||
      std::find(used.begin(), used.end(), false) != used.end()) {
    return false;
  }
  RecordValues values;
  return store(*variable, *stored, fresh, facts, values) && become(values);
}

bool HeaderSection::setSeed(std::uint64_t handle) {
  const StoredVariable* const stored = storedVariable("HANDSEED", m_version);
  if (!m_isExact || stored == nullptr) {
    return false;
  }
  RecordValues values = m_values;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].key == stored->key) {
      values[i].integer = static_cast<std::int64_t>(handle);
    }
  }
  return become(values);
}

}  // namespace quoin::dwg
