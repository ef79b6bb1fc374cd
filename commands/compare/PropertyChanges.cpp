#include "commands/compare/PropertyChanges.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "commands/Words.h"
#include "commands/compare/SpelledAlike.h"

namespace quoin::commands {

namespace {

using Group = std::vector<const Said*>;

/// The name of what a code says in records of a kind; "*" is any kind.
struct NameRow {
  std::string_view kind;
  int code;
  std::string_view name;
};

constexpr NameRow kNames[] = {
    {"LINE", 10, "start"},
    {"LINE", 11, "end"},
    {"CIRCLE", 10, "centre"},
    {"CIRCLE", 40, "radius"},
    {"ARC", 10, "centre"},
    {"ARC", 40, "radius"},
    {"ARC", 50, "start angle"},
    {"ARC", 51, "end angle"},
    {"ELLIPSE", 10, "centre"},
    {"ELLIPSE", 11, "major axis"},
    {"ELLIPSE", 40, "axis ratio"},
    {"ELLIPSE", 41, "start"},
    {"ELLIPSE", 42, "end"},
    {"POINT", 10, "position"},
    {"TEXT", 10, "position"},
    {"TEXT", 11, "alignment point"},
    {"TEXT", 1, "text"},
    {"TEXT", 40, "height"},
    {"TEXT", 50, "rotation"},
    {"TEXT", 41, "width factor"},
    {"TEXT", 51, "oblique angle"},
    {"TEXT", 72, "alignment"},
    {"TEXT", 73, "alignment"},
    {"TEXT", 7, "text style"},
    {"MTEXT", 10, "position"},
    {"MTEXT", 1, "text"},
    {"MTEXT", 40, "height"},
    {"MTEXT", 41, "width"},
    {"MTEXT", 50, "rotation"},
    {"MTEXT", 11, "rotation"},
    {"MTEXT", 71, "alignment"},
    {"MTEXT", 7, "text style"},
    {"MTEXT", 45, "background"},
    {"MTEXT", 63, "background"},
    {"MTEXT", 90, "background"},
    {"MTEXT", 421, "background"},
    {"MTEXT", 441, "background"},
    {"ATTDEF", 1, "text"},
    {"ATTDEF", 7, "text style"},
    {"INSERT", 2, "block"},
    {"INSERT", 10, "position"},
    {"INSERT", 41, "scale"},
    {"INSERT", 42, "scale"},
    {"INSERT", 43, "scale"},
    {"INSERT", 50, "rotation"},
    {"INSERT", 70, "columns"},
    {"INSERT", 71, "rows"},
    {"INSERT", 44, "column spacing"},
    {"INSERT", 45, "row spacing"},
    {"LWPOLYLINE", 10, "vertices"},
    {"LWPOLYLINE", kVertexCode, "vertices"},
    {"LWPOLYLINE", 70, "closed"},
    {"POLYLINE", 10, "elevation"},
    {"SPLINE", 10, "control points"},
    {"SPLINE", 11, "fit points"},
    {"SPLINE", 12, "tangents"},
    {"SPLINE", 13, "tangents"},
    {"SPLINE", 40, "knots"},
    {"SPLINE", 41, "weights"},
    {"SPLINE", 70, "closed"},
    {"HATCH", 2, "pattern"},
    {"HATCH", 10, "boundary"},
    {"HATCH", 11, "boundary"},
    {"HATCH", 41, "pattern scale"},
    {"HATCH", 52, "pattern angle"},
    {"DIMENSION", 1, "text"},
    {"DIMENSION", 3, "dimension style"},
    {"DIMENSION", 10, "dimension line"},
    {"DIMENSION", 11, "text position"},
    {"DIMENSION", 13, "first origin"},
    {"DIMENSION", 14, "second origin"},
    {"LEADER", 10, "vertices"},
    {"MLINE", 2, "style"},
    {"MLINE", 11, "vertices"},
    {"LAYER", 290, "plotted"},
    {"LAYER", kOffCode, "off"},
    {"LAYER", kFrozenCode, "frozen"},
    {"LAYER", kLockedCode, "locked"},
    {"STYLE", 3, "font"},
    {"STYLE", 4, "big font"},
    {"STYLE", 40, "height"},
    {"STYLE", 41, "width factor"},
    {"STYLE", 50, "oblique angle"},
    {"LTYPE", 3, "description"},
    {"LTYPE", 40, "pattern length"},
    {"LTYPE", 49, "dashes"},
    {"BLOCK", 10, "base point"},
    {"BLOCK", 1, "path"},
    {"BLOCK", 70, "flags"},
    {"*", 8, "layer"},
    {"*", 6, "linetype"},
    {"*", 39, "thickness"},
    {"*", 48, "linetype scale"},
    {"*", 60, "visibility"},
    {"*", 210, "normal"},
    {"*", 284, "shadows"},
    {"*", 347, "material"},
    {"*", 348, "visual style"},
    {"*", 370, "line weight"},
    {"*", 390, "plot style"},
    {"*", 440, "transparency"},
};

std::string nameOf(const SaidRecord& record, const Said& said) {
  if (said.part > 0) {
    return record.kind == "INSERT" ? "attributes" : "vertices";
  }
  for (const NameRow& row : kNames) {
    if (row.code == said.code && (row.kind == "*" || row.kind == record.kind)) {
      return std::string(row.name);
    }
  }
  if (said.code >= 1000 && said.code < kVertexCode) {
    return "extended data";
  }
  if (record.kind == "DIMSTYLE") {
    return fmt::format("variable {}", said.code);
  }
  return isGeometry(record, said) ? "geometry" : fmt::format("group {}", said.code);
}

std::string lineWeightText(double value) {
  return value == -1.0   ? "ByLayer"
         : value == -2.0 ? "ByBlock"
         : value == -3.0 ? "default"
                         : numberText(value / 100.0) + " mm";
}

/// 0 is by layer; else the upper byte says what it is, and the lowest how opaque.
std::string transparencyText(double value) {
  const auto bits = static_cast<std::uint32_t>(value);
  if (bits >> 24U != 2U) {
    return bits == 0 ? "ByLayer" : "ByBlock";
  }
  return fmt::format("{:.0f} %", 100.0 - (bits & 0xFFU) * 100.0 / 255.0);
}

std::string spelled(std::string_view text) {
  return text == "BYLAYER" ? "ByLayer" : text == "BYBLOCK" ? "ByBlock" : std::string(text);
}

std::string numberWords(const Said& said) {
  switch (said.code) {
    case 60:
      return said.x == 0.0 ? "visible" : "invisible";
    case 370:
      return lineWeightText(said.x);
    case 440:
      return transparencyText(said.x);
    case 290:
    case kOffCode:
    case kFrozenCode:
    case kLockedCode:
      return said.x == 0.0 ? "no" : "yes";
    default:
      return numberText(said.x);
  }
}

std::string valueText(const Said& said) {
  switch (said.type) {
    case Said::Type::Text:
      return spelled(said.text);
    case Said::Type::Number:
    case Said::Type::Length:
      return numberWords(said);
    case Said::Type::Point:
    case Said::Type::Vector:
      break;
  }
  if (said.code == kVertexCode) {
    return fmt::format("bulge {}", numberText(said.z)) +
           (said.x == 0.0 && said.y == 0.0 ? "" : ", widths " + pointText({said.x, said.y, 0.0}));
  }
  return pointText({said.x, said.y, 0.0}) + (said.z == 0.0 ? "" : "," + numberText(said.z));
}

/// What holds where a record does not say it.
std::string absentText(const SaidRecord& record, const Said& other) {
  Said absent = other;
  switch (other.type) {
    case Said::Type::Text:
      return other.code == 8 ? "0" : spelled(defaultText(record.kind, other.code));
    case Said::Type::Number:
    case Said::Type::Length:
      absent.x = defaultNumber(record.kind, other.code);
      return numberWords(absent);
    case Said::Type::Point:
    case Said::Type::Vector:
      return other.code == 210 ? "0,0,1" : "";
  }
  return "";
}

/// Whether two names of objects are one: an object of which the file does not tell the name may be
/// any of its kind.
bool isOneObject(const Said& before, const Said& after) {
  const auto isKindOf = [](const std::string& kind, const std::string& name) {
    return !kind.empty() && name.starts_with(kind + " ");
  };
  return dxf::tagType(before.code) == dxf::TagType::Handle &&
         (isKindOf(before.text, after.text) || isKindOf(after.text, before.text));
}

bool isSame(const Said& before, const Said& after, const Nearness& nearness,
            const AcGeVector3d& shift) {
  if (before.type != after.type) {
    return false;
  }
  switch (before.type) {
    case Said::Type::Text:
      return before.text == after.text || isOneObject(before, after);
    case Said::Type::Number:
      return Nearness::isOneNumber(before.x, after.x);
    case Said::Type::Length:
      return nearness.isOneLength(before.x, after.x);
    case Said::Type::Vector:
      return nearness.isOneLength(before.x, after.x) && nearness.isOneLength(before.y, after.y) &&
             nearness.isOneLength(before.z, after.z);
    case Said::Type::Point:
      break;
  }
  return nearness.isOneLength(before.x + shift.x, after.x) &&
         nearness.isOneLength(before.y + shift.y, after.y) &&
         nearness.isOneLength(before.z + shift.z, after.z);
}

bool isBefore(const Said* a, const Said* b) {
  return a->part != b->part ? a->part < b->part : a->code < b->code;
}

/// What a record says, all of one part and code together.
Group grouped(const SaidRecord& record) {
  Group all;
  for (const Said& said : record.said) {
    all.push_back(&said);
  }
  std::stable_sort(all.begin(), all.end(), isBefore);
  return all;
}

std::size_t endOf(const Group& all, std::size_t begin, const Said& first) {
  while (begin < all.size() && all[begin]->part == first.part && all[begin]->code == first.code) {
    ++begin;
  }
  return begin;
}

bool isColor(const Said& said) {
  return said.part == 0 && (said.code == 62 || said.code == 420 || said.code == 430);
}

std::string colorText(const SaidRecord& record) {
  std::string text;
  for (const Said& said : record.said) {
    if (said.part != 0) {
      continue;
    }
    if (said.code == 420) {
      text = fmt::format("#{:06x}", static_cast<std::uint32_t>(said.x) & 0xFFFFFFU);
    } else if (said.code == 62) {
      text = said.x == 0.0 ? "ByBlock" : said.x == 256.0 ? "ByLayer" : numberText(said.x);
    }
  }
  if (text.empty()) {
    const double absent = defaultNumber(record.kind, 62);
    text = absent == 256.0 ? "ByLayer" : numberText(absent);
  }
  return text;
}

class Comparer {
 public:
  Comparer(const SaidRecord& before, const SaidRecord& after, const Nearness& nearness,
           const AcGeVector3d& shift)
      : m_before(before), m_after(after), m_nearness(nearness), m_shift(shift) {}

  std::vector<PropertyChange> run() {
    const Group before = grouped(m_before);
    const Group after = grouped(m_after);
    for (std::size_t i = 0, j = 0; i < before.size() || j < after.size();) {
      const bool isOld = j == after.size() || (i < before.size() && !isBefore(after[j], before[i]));
      const Said& first = isOld ? *before[i] : *after[j];
      const std::size_t oldEnd = endOf(before, i, first);
      const std::size_t newEnd = endOf(after, j, first);
      if (!isColor(first)) {
        compare(first,
                Group(before.begin() + static_cast<std::ptrdiff_t>(i),
                      before.begin() + static_cast<std::ptrdiff_t>(oldEnd)),
                Group(after.begin() + static_cast<std::ptrdiff_t>(j),
                      after.begin() + static_cast<std::ptrdiff_t>(newEnd)));
      }
      i = oldEnd;
      j = newEnd;
    }
    if (const std::string old = colorText(m_before), now = colorText(m_after); old != now) {
      m_changes.push_back({"colour", old, now, false});
    }
    return std::move(m_changes);
  }

 private:
  void compare(const Said& first, const Group& before, const Group& after) {
    const std::size_t common = std::min(before.size(), after.size());
    std::size_t at = 0;
    while (at < common && isSame(*before[at], *after[at], m_nearness, m_shift)) {
      ++at;
    }
    if (at == before.size() && at == after.size()) {
      return;
    }
    const std::string name = nameOf(m_before, first);
    const bool isGeometric = isGeometry(m_before, first);
    const auto known =
        std::find_if(m_changes.begin(), m_changes.end(),
                     [&](const PropertyChange& change) { return change.name == name; });
    if (known != m_changes.end()) {
      known->isGeometry = known->isGeometry || isGeometric;
      return;
    }
    m_changes.push_back({name, sideText(m_before, before, at, first),
                         sideText(m_after, after, at, first), isGeometric});
    PropertyChange& change = m_changes.back();
    if (name == "geometry" || name == "extended data") {
      change.before = change.after = "";  // no one value of them tells anything
    } else if (before.size() != after.size() && std::max(before.size(), after.size()) > 1) {
      change.before = std::to_string(before.size());
      change.after = std::to_string(after.size());
    }
  }

  static std::string sideText(const SaidRecord& record, const Group& group, std::size_t at,
                              const Said& first) {
    if (first.part > 0 && first.code != 1) {
      return "";
    }
    if (at >= group.size()) {
      return absentText(record, first);
    }
    const std::string text = valueText(*group[at]);
    return group.size() > 1 ? fmt::format("{}: {}", at + 1, text) : text;
  }

  const SaidRecord& m_before;
  const SaidRecord& m_after;
  const Nearness& m_nearness;
  const AcGeVector3d m_shift;
  std::vector<PropertyChange> m_changes;
};

const Said* anchorOf(const SaidRecord& record) {
  for (const Said& said : record.said) {
    if (said.type == Said::Type::Point) {
      return &said;
    }
  }
  return nullptr;
}

bool hasGeometry(const std::vector<PropertyChange>& changes) {
  return std::any_of(changes.begin(), changes.end(),
                     [](const PropertyChange& change) { return change.isGeometry; });
}

}  // namespace

EntityChange changeOf(const SaidRecord& old, const SaidRecord& now, const Nearness& nearness) {
  std::optional<SpelledAlike> alike;
  if (SpelledAlike::isNeeded(old, now)) {
    alike.emplace(old, now, nearness);
  }
  const SaidRecord& before = alike ? alike->before : old;
  const SaidRecord& after = alike ? alike->after : now;
  EntityChange change;
  change.properties = Comparer(before, after, nearness, {}).run();
  const Said* const from = anchorOf(before);
  const Said* const to = anchorOf(after);
  if (!hasGeometry(change.properties) || !from || !to) {
    return change;
  }
  const AcGeVector3d shift(to->x - from->x, to->y - from->y, to->z - from->z);
  std::vector<PropertyChange> moved = Comparer(before, after, nearness, shift).run();
  if (!hasGeometry(moved)) {
    change.properties = std::move(moved);
    change.move = worldPoint(after, *to) - worldPoint(before, *from);
  }
  return change;
}

}  // namespace quoin::commands
