#include "embedded/db/geometry/DrawLooks.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "embedded/db/core/EntityFields.h"

namespace quoin::db {

using hostx::DrawColor;

namespace {

constexpr double kUsualWeight = 0.25;  // millimetres, of lines of the default weight
constexpr Adesk::UInt16 kForeground = 7;
constexpr std::wstring_view kByLayer = L"ByLayer";
constexpr std::wstring_view kByBlock = L"ByBlock";
constexpr std::wstring_view kContinuous = L"Continuous";
/// The layer of the points that dimensions measure: never plotted, whatever its record says.
constexpr std::wstring_view kDefinitionPoints = L"Defpoints";
constexpr std::int64_t kTransparencyByBlock = 0x01000000;

/// Whether a name is one of those that every drawing has, in any case.
bool isNamed(std::wstring_view name, std::wstring_view known) {
  const auto lower = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? c - L'A' + L'a' : c; };
  return std::equal(name.begin(), name.end(), known.begin(), known.end(),
                    [&](wchar_t a, wchar_t b) { return lower(a) == lower(b); });
}

DrawColor indexed(Adesk::UInt16 index) {
  if (index == kForeground || index > AcCmEntityColor::kACImaximum || index == 0) {
    return {};
  }
  const Adesk::UInt32 rgb = AcCmEntityColor::lookUpRGB(index);
  return {static_cast<unsigned char>(rgb >> 16), static_cast<unsigned char>(rgb >> 8),
          static_cast<unsigned char>(rgb), false};
}

DrawColor shownColor(const AcCmColor& color) {
  if (color.isByColor()) {
    return {color.red(), color.green(), color.blue(), false};
  }
  return indexed(color.colorIndex());
}

double millimetersOf(std::int64_t weight) {
  constexpr std::int64_t kMost = 1000;  // hundredths; the widest that is offered has 211
  constexpr double kHundredth = 0.01;
  return weight < 0 ? kUsualWeight : kHundredth * static_cast<double>(std::min(weight, kMost));
}

/// Of a value (440): its last byte, where the one before says that it is one.
double opacityOf(std::int64_t transparency) {
  constexpr std::int64_t kIsValue = 0x02000000;
  constexpr std::int64_t kAll = 0xFF;
  return transparency & kIsValue ? static_cast<double>(transparency & kAll) / kAll : 1.0;
}

/// Where the properties that all entities share stand in a record.
struct SharedPlaces {
  static constexpr std::array kCodes{code::kLayer,        code::kLinetype,   code::kColor,
                                     code::kTrueColor,    code::kVisibility, code::kLinetypeScale,
                                     code::kTransparency, code::kLineWeight};
  enum { Layer, Linetype, Color, TrueColor, Visibility, Scale, Transparency, Weight };
  std::array<std::size_t, kCodes.size()> at;

  /// One pass over the record instead of one a property.
  explicit SharedPlaces(const TagList& tags) {
    at.fill(TagList::kNone);
    const TagRange range = tags.shared();
    unsigned int seen = 0;
    const auto look = [&](std::size_t i) {
      const auto found = std::find(kCodes.begin(), kCodes.end(), tags[i].code);
      return found == kCodes.end() ? kCodes.size()
                                   : static_cast<std::size_t>(found - kCodes.begin());
    };
    const TagRange body = range.takesStrays ? tags.body() : range;
    for (std::size_t i = body.first; i < body.last; ++i) {
      const std::size_t which = look(i);
      if (which < kCodes.size()) {
        const bool isInside = i >= range.first && i < range.last && tags.isOwn(i);
        if (isInside && at[which] == TagList::kNone) {
          at[which] = i;
        } else if (!isInside) {
          seen |= 1U << which;
        }
      }
    }
    for (std::size_t which = 0; seen != 0 && which < kCodes.size(); ++which) {
      if (at[which] == TagList::kNone && (seen & 1U << which)) {
        at[which] = tags.find(kCodes[which], range);
      }
    }
  }
};

}  // namespace

DrawLooks::DrawLooks(DatabaseImpl& database) : m_database(database) {}

void DrawLooks::resolve(const TagList& tags, const ResolvedLook* outer, ResolvedLook& look) {
  const SharedPlaces places(tags);
  const auto has = [&](int which) {
    return places.at[static_cast<std::size_t>(which)] != TagList::kNone;
  };
  const auto place = [&](int which) { return places.at[static_cast<std::size_t>(which)]; };
  const std::string_view name =
      has(SharedPlaces::Layer) ? dxf::trimmedValue(tags[place(SharedPlaces::Layer)]) : "0";
  look.layer = layerOf(name, tags.format());
  if (outer && outer->layer && look.layer->isZero) {
    look.layer = outer->layer;
  }
  const LayerLook& layer = *look.layer;
  look.isInvisible =
      has(SharedPlaces::Visibility) && tags.integerAt(place(SharedPlaces::Visibility)) != 0;

  if (has(SharedPlaces::TrueColor)) {
    const std::int64_t rgb = tags.integerAt(place(SharedPlaces::TrueColor));
    look.color = {static_cast<unsigned char>(rgb >> 16), static_cast<unsigned char>(rgb >> 8),
                  static_cast<unsigned char>(rgb), false};
  } else {
    const std::int64_t index = has(SharedPlaces::Color)
                                   ? tags.integerAt(place(SharedPlaces::Color))
                                   : std::int64_t{AcCmEntityColor::kACIbyLayer};
    look.color = index == AcCmEntityColor::kACIbyLayer   ? layer.color
                 : index == AcCmEntityColor::kACIbyBlock ? (outer ? outer->color : DrawColor())
                 : index > 0 && index <= AcCmEntityColor::kACImaximum
                     ? indexed(static_cast<Adesk::UInt16>(index))
                     : DrawColor();
  }

  const std::int64_t weight = has(SharedPlaces::Weight)
                                  ? tags.integerAt(place(SharedPlaces::Weight))
                                  : std::int64_t{AcDb::kLnWtByLayer};
  look.lineWeight = weight == AcDb::kLnWtByLayer   ? layer.lineWeight
                    : weight == AcDb::kLnWtByBlock ? (outer ? outer->lineWeight : kUsualWeight)
                                                   : millimetersOf(weight);

  look.dashes = layer.dashes;
  if (has(SharedPlaces::Linetype)) {
    const std::size_t index = place(SharedPlaces::Linetype);
    const Linetype& linetype = linetypeOf(dxf::trimmedValue(tags[index]), tags, index);
    look.dashes = linetype.kind == Linetype::Kind::ByLayer   ? layer.dashes
                  : linetype.kind == Linetype::Kind::ByBlock ? (outer ? outer->dashes : nullptr)
                                                             : linetype.dashes;
  }
  look.dashScale = has(SharedPlaces::Scale) ? tags.doubleAt(place(SharedPlaces::Scale)) : 1.0;

  const std::int64_t transparency =
      has(SharedPlaces::Transparency) ? tags.integerAt(place(SharedPlaces::Transparency)) : 0;
  look.opacity = transparency == 0                      ? layer.opacity
                 : transparency == kTransparencyByBlock ? (outer ? outer->opacity : 1.0)
                                                        : opacityOf(transparency);
}

DrawColor DrawLooks::colorOf(const AcCmColor& color, const ResolvedLook& look) {
  return color.isByLayer()   ? (look.layer ? look.layer->color : DrawColor())
         : color.isByBlock() ? look.color
                             : shownColor(color);
}

const LayerLook* DrawLooks::layerOf(std::string_view name, const dxf::Format& format) {
  if (const auto known = m_layersByBytes.find(name); known != m_layersByBytes.end()) {
    return known->second;
  }
  constexpr std::int64_t kFrozen = 1;
  const std::wstring wide = dxf::textOf(dxf::TagView{code::kLayer, name, 0, 0}, format);
  const AcDbStub* const record = m_database.layer(wide);
  LayerLook*& shared = m_layers[record];
  if (!shared || !record) {
    shared = &m_layerStore.emplace_back();
    shared->lineWeight = kUsualWeight;
    shared->name = wide;
    shared->isZero = wide == L"0";
    shared->isPlotted = !isNamed(wide, kDefinitionPoints);
    if (record) {
      const TagList tags = m_database.tagsOf(*record);
      const TagRange range = layout::kLayer.in(tags);
      shared->id = AcDbObjectId(const_cast<AcDbStub*>(record));
      shared->color = shownColor(db::colorOf(tags, layout::kLayer));
      shared->lineWeight =
          millimetersOf(tags.integer(code::kLineWeight, range, AcDb::kLnWtByLwDefault));
      const auto linetype = tags.text(code::kLinetype, range);
      shared->dashes = linetype ? linetypeNamed(*linetype) : nullptr;
      shared->isOff = tags.integer(code::kColor, range, kForeground) < 0;
      shared->isFrozen = (tags.integer(code::kFlags, range, 0) & kFrozen) != 0;
      constexpr int kIsPlotted = 290;
      shared->isPlotted = shared->isPlotted && tags.integer(kIsPlotted, range, 1) != 0;
      constexpr int kValue = 1071;
      const TagRange data = tags.xData(L"AcCmTransparency");
      for (std::size_t i = data.first; i < data.last; ++i) {
        if (tags[i].code == kValue) {
          shared->opacity = opacityOf(tags.integerAt(i));
        }
      }
    }
  }
  m_layersByBytes.emplace(name, shared);
  return shared;
}

const DrawLooks::Linetype& DrawLooks::linetypeOf(std::string_view name, const TagList& tags,
                                                 std::size_t index) {
  const auto known = m_linetypesByBytes.find(name);
  if (known != m_linetypesByBytes.end()) {
    return known->second;
  }
  Linetype linetype;
  const std::wstring wide = tags.textAt(index);
  if (isNamed(wide, kByLayer)) {
    linetype.kind = Linetype::Kind::ByLayer;
  } else if (isNamed(wide, kByBlock)) {
    linetype.kind = Linetype::Kind::ByBlock;
  } else {
    linetype.dashes = linetypeNamed(wide);
  }
  return m_linetypesByBytes.emplace(name, linetype).first->second;
}

const Dashes* DrawLooks::dashesOf(std::uint64_t linetype) {
  const AcDbStub* const record = m_database.byHandle(linetype);
  return record && m_database.kindOf(*record) == "LTYPE" ? linetypeOf(*record) : nullptr;
}

const Dashes* DrawLooks::dashesOf(std::wstring_view linetype, const ResolvedLook& look) {
  return isNamed(linetype, kByLayer)   ? (look.layer ? look.layer->dashes : nullptr)
         : isNamed(linetype, kByBlock) ? look.dashes
                                       : linetypeNamed(linetype);
}

const Dashes* DrawLooks::linetypeNamed(std::wstring_view name) {
  if (isNamed(name, kContinuous)) {
    return nullptr;
  }
  const AcDbStub* const record = m_database.record(TableKind::Linetype, name);
  return record ? linetypeOf(*record) : nullptr;
}

const Dashes* DrawLooks::linetypeOf(const AcDbStub& record) {
  constexpr int kDash = 49;
  constexpr std::size_t kMostDashes = 64;
  const auto [known, isNew] = m_linetypes.try_emplace(&record);
  Dashes& dashes = known->second;
  if (isNew) {
    const TagList tags = m_database.tagsOf(record);
    const TagRange range = layout::kLinetype.in(tags);
    double gaps = 0.0;
    double strokes = 0.0;
    for (std::size_t at = tags.find(kDash, range);
         at != TagList::kNone && dashes.size() < kMostDashes;
         at = tags.find(kDash, range, at + 1)) {
      const double dash = tags.doubleAt(at);
      dashes.push_back(dash);
      (dash < 0.0 ? gaps : strokes) += std::fabs(dash);
    }
    const bool hasGap = gaps > 0.0 && std::isfinite(gaps) && std::isfinite(strokes);
    if (!hasGap) {
      dashes.clear();
    }
  }
  return dashes.empty() ? nullptr : &dashes;
}

}  // namespace quoin::db
