#include "commands/compare/DrawingDifference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "commands/Progress.h"
#include "commands/Words.h"
#include "commands/compare/Matching.h"
#include "embedded/db/core/DrawingStream.h"
#include "embedded/dxf/FileError.h"

namespace quoin::commands {

namespace {

using Stubs = std::vector<AcDbStub*>;

/// A file whose numbers show fewer decimals has round numbers rather than rounded ones.
constexpr int kLeastDecimals = 4;
/// One with more has all digits that matter.
constexpr int kMostDecimals = 12;

/// One of the two drawings.
struct Side {
  explicit Side(Drawing& drawing)
      : store(*static_cast<AcDbStub*>(drawing.modelSpaceId())->store), reader(store) {}

  /// The number of an entity's layer in `names`, which both sides share.
  std::size_t layerOf(const AcDbStub& stub, std::vector<std::string>& names,
                      std::unordered_map<std::string, std::size_t>& numberOf) {
    std::string name = reader.layerOf(stub);
    const auto known = layers.find(name);
    if (known != layers.end()) {
      return known->second;
    }
    const auto [number, isNew] = numberOf.emplace(foldedName(name), names.size());
    if (isNew) {
      names.push_back(name);
    }
    layers.emplace(std::move(name), number->second);
    return number->second;
  }

  dxf::RecordStore& store;
  RecordReader reader;
  std::unordered_map<std::string, std::size_t> layers;  // as they are spelled here
};

bool hasParts(std::string_view kind) {
  return kind == "INSERT" || kind == "POLYLINE";
}

/// The window of paper space itself, which says how the paper is looked at.
bool isOwnWindow(const Side& side, const AcDbStub& stub) {
  return side.store.kindName(stub) == "VIEWPORT" && side.reader.textOf(stub, 69) == "1";
}

std::uint64_t kindHash(std::string_view kind) {
  return std::hash<std::string_view>()(kind);
}

class SpaceComparer {
 public:
  SpaceComparer(Side& before, Side& after, const CompareRules& rules, const Nearness& nearness,
                std::set<std::string> notRead, std::vector<std::string>& layers,
                std::unordered_map<std::string, std::size_t>& layerNumbers)
      : m_old(before),
        m_new(after),
        m_rules(rules),
        m_nearness(nearness),
        m_notRead(std::move(notRead)),
        m_layers(layers),
        m_layerNumbers(layerNumbers) {
    const dxf::Format& one = before.store.format();
    const dxf::Format& other = after.store.format();
    m_isOneFormat = one.form == other.form && one.narrowGroupCodes == other.narrowGroupCodes &&
                    one.lineEnd == other.lineEnd && one.textIsUtf8() == other.textIsUtf8() &&
                    one.hasSubclassMarkers() == other.hasSubclassMarkers() &&
                    (one.textIsUtf8() || one.codePage == other.codePage);
  }

  const std::set<std::string>& notCompared() const { return m_notCompared; }

  void compare(const Stubs& before, const Stubs& after, ComparedSpace& space) {
    Stubs olds = kept(m_old, before);
    Stubs news = kept(m_new, after);
    const std::size_t known = dropUntouched(olds, news, space);
    if (!olds.empty() || !news.empty()) {
      matchRest(olds, news, known, space);
    }
    const auto inFileOrder = [](const ComparedEntity& a, const ComparedEntity& b) {
      return (a.after.isNull() ? a.before : a.after) < (b.after.isNull() ? b.before : b.after);
    };
    for (auto* list : {&space.added, &space.removed, &space.moved, &space.changed}) {
      std::sort(list->begin(), list->end(), inFileOrder);
    }
  }

 private:
  static Stubs kept(const Side& side, const Stubs& stubs) {
    Stubs kept;
    kept.reserve(stubs.size());
    std::copy_if(stubs.begin(), stubs.end(), std::back_inserter(kept), [&](const AcDbStub* stub) {
      return !stub->erased && stub->size > 0 && !isOwnWindow(side, *stub);
    });
    return kept;
  }

  bool isChosen(std::size_t layer) {
    if (!m_rules.isChosen) {
      return true;
    }
    while (m_isChosen.size() < m_layers.size()) {
      m_isChosen.push_back(m_rules.isChosen(m_layers[m_isChosen.size()]));
    }
    return m_isChosen[layer];
  }

  ChangeCounts& countsOf(ComparedSpace& space, std::size_t layer) {
    if (m_counts.size() < m_layers.size()) {
      m_counts.resize(m_layers.size(), nullptr);
    }
    if (!m_counts[layer] || m_countsOf != &space) {
      if (m_countsOf != &space) {
        std::fill(m_counts.begin(), m_counts.end(), nullptr);
        m_countsOf = &space;
      }
      m_counts[layer] = &space.layers[m_layers[layer]];
    }
    return *m_counts[layer];
  }

  std::size_t oldLayer(const AcDbStub& stub) {
    return m_old.layerOf(stub, m_layers, m_layerNumbers);
  }
  std::size_t newLayer(const AcDbStub& stub) {
    return m_new.layerOf(stub, m_layers, m_layerNumbers);
  }

  void countSame(const AcDbStub& stub, ComparedSpace& space) {
    if (const std::size_t layer = newLayer(stub); isChosen(layer)) {
      ++countsOf(space, layer).same;
    }
  }

  bool isSameBytes(const AcDbStub& before, const AcDbStub& after) const {
    const std::string_view kind = m_old.store.kindName(before);
    if (before.bytes() != after.bytes()) {
      return false;
    }
    if (!hasParts(kind)) {
      return true;
    }
    const Stubs oldParts = m_old.store.subEntities(before);
    const Stubs newParts = m_new.store.subEntities(after);
    return std::equal(oldParts.begin(), oldParts.end(), newParts.begin(), newParts.end(),
                      [](const AcDbStub* a, const AcDbStub* b) {
                        return a->bytes() == b->bytes() && a->erased == b->erased;
                      });
  }

  /// Takes those out that have the very bytes they had: mostly all of them. Their number.
  std::size_t dropUntouched(Stubs& olds, Stubs& news, ComparedSpace& space) {
    if (!m_isOneFormat || m_rules.ignoresHandles) {
      return 0;
    }
    const auto byHandle = [](const AcDbStub* a, const AcDbStub* b) {
      return a->handle != b->handle ? a->handle < b->handle : a->index < b->index;
    };
    std::sort(olds.begin(), olds.end(), byHandle);
    std::sort(news.begin(), news.end(), byHandle);
    std::size_t count = 0;
    Stubs oldRest;
    Stubs newRest;
    std::size_t j = 0;
    for (AcDbStub* const old : olds) {
      for (; j < news.size() && news[j]->handle < old->handle; ++j) {
        newRest.push_back(news[j]);
      }
      if (old->handle != 0 && j < news.size() && news[j]->handle == old->handle &&
          isSameBytes(*old, *news[j])) {
        countSame(*news[j], space);
        ++count;
        ++j;
      } else {
        oldRest.push_back(old);
      }
    }
    newRest.insert(newRest.end(), news.begin() + static_cast<std::ptrdiff_t>(j), news.end());
    olds = std::move(oldRest);
    news = std::move(newRest);
    return count;
  }

  /// How far from the origin entities are, but for the few that are very far out.
  double farthestOf(const Stubs& olds, const Stubs& news) const {
    std::vector<double> far;
    const auto look = [&](const Side& side, const Stubs& stubs) {
      for (const AcDbStub* stub : stubs) {
        const double value = side.reader.firstCoordinate(*stub);
        if (std::isfinite(value)) {
          far.push_back(value);
        }
      }
    };
    look(m_old, olds);
    look(m_new, news);
    if (far.empty()) {
      return 0.0;
    }
    const auto most = far.begin() + static_cast<std::ptrdiff_t>((far.size() - 1) * 99 / 100);
    std::nth_element(far.begin(), most, far.end());
    return *most;
  }

  std::vector<MatchItem> itemsOf(Side& side, const Stubs& stubs, double farthest,
                                 Progress& progress, double share) {
    std::vector<MatchItem> items(stubs.size());
    SaidRecord record;
    for (std::size_t i = 0; i < stubs.size(); ++i) {
      if (i % 4096 == 0 && !progress.report(share + 0.5 * static_cast<double>(i) /
                                                        static_cast<double>(stubs.size()))) {
        Progress::checkInterrupt();
      }
      side.reader.read(*stubs[i], record);
      items[i] = {stubs[i]->handle, kindHash(record.kind),
                  signatureOf(record, m_nearness, farthest)};
    }
    return items;
  }

  EntityChange change(const AcDbStub& before, const AcDbStub& after) {
    m_old.reader.read(before, m_before);
    m_new.reader.read(after, m_after);
    return changeOf(m_before, m_after, m_nearness);
  }

  void matchRest(const Stubs& olds, const Stubs& news, std::size_t known, ComparedSpace& space) {
    Progress progress("Comparing the drawings");
    MatchRules rules;
    rules.usesHandles = !m_rules.ignoresHandles;
    rules.knownSame = known;
    rules.near = m_nearness.length;
    rules.farthest = farthestOf(olds, news);
    rules.isSamePlace = [&](std::size_t before, std::size_t after) {
      const EntityChange found = change(*olds[before], *news[after]);
      return !found.move && std::none_of(found.properties.begin(), found.properties.end(),
                                         [](const PropertyChange& one) { return one.isGeometry; });
    };
    const std::vector<MatchItem> before = itemsOf(m_old, olds, rules.farthest, progress, 0.0);
    const std::vector<MatchItem> after = itemsOf(m_new, news, rules.farthest, progress, 0.5);
    const Matches matches = match(before, after, rules);
    space.isRenumbered = matches.isRenumbered;
    for (const MatchedPair& pair : matches.same) {
      countSame(*news[pair.after], space);
    }
    for (const MatchedPair& pair : matches.unsure) {
      note(*olds[pair.before], *news[pair.after], change(*olds[pair.before], *news[pair.after]),
           space);
    }
    for (const MatchedPair& pair : matches.moved) {
      EntityChange moved;
      moved.move = after[pair.after].signature.anchor - before[pair.before].signature.anchor;
      note(*olds[pair.before], *news[pair.after], moved, space);
    }
    for (const std::size_t i : matches.removed) {
      if (const std::size_t layer = oldLayer(*olds[i]); isChosen(layer)) {
        ++countsOf(space, layer).removed;
        space.removed.push_back({olds[i], {}, m_layers[layer], {}});
      }
    }
    for (const std::size_t i : matches.added) {
      if (const std::size_t layer = newLayer(*news[i]); isChosen(layer)) {
        ++countsOf(space, layer).added;
        space.added.push_back({{}, news[i], m_layers[layer], {}});
      }
    }
  }

  void note(AcDbStub& before, AcDbStub& after, EntityChange change, ComparedSpace& space) {
    const std::string kind(m_new.store.kindName(after));
    if (m_notRead.count(kind) != 0) {
      const std::size_t dropped = std::erase_if(change.properties, [](const PropertyChange& one) {
        return one.isGeometry || one.name.starts_with("group ");
      });
      if (dropped > 0 || change.move) {
        m_notCompared.insert(kind);
      }
      change.move.reset();
    }
    const std::size_t layer = newLayer(after);
    if (!isChosen(layer) && !isChosen(oldLayer(before))) {
      return;
    }
    ChangeCounts& counts = countsOf(space, layer);
    if (change.isNone()) {
      ++counts.same;
      return;
    }
    const bool isMoved = change.properties.empty();
    ++(isMoved ? counts.moved : counts.changed);
    (isMoved ? space.moved : space.changed)
        .push_back({&before, &after, m_layers[layer], std::move(change)});
  }

  Side& m_old;
  Side& m_new;
  const CompareRules& m_rules;
  const Nearness& m_nearness;
  const std::set<std::string> m_notRead;
  std::set<std::string> m_notCompared;
  std::vector<std::string>& m_layers;
  std::unordered_map<std::string, std::size_t>& m_layerNumbers;
  std::vector<bool> m_isChosen;
  std::vector<ChangeCounts*> m_counts;
  const ComparedSpace* m_countsOf = nullptr;
  bool m_isOneFormat = false;
  SaidRecord m_before;
  SaidRecord m_after;
};

/// A block of a drawing under what it is compared by.
struct NamedBlock {
  ComparedSpace::Kind kind;
  std::string name;
  dxf::Block* block;
};

using BlockKey = std::pair<int, std::string>;

/// Layout names by the handles of their blocks' records.
std::unordered_map<std::uint64_t, std::string> layoutNames(const Side& side) {
  std::unordered_map<std::uint64_t, std::string> names;
  for (const AcDbStub* object : side.store.objects()) {
    if (!object->erased && side.store.kindName(*object) == "LAYOUT") {
      names[side.reader.handleIn(*object, 330, "AcDbLayout")] =
          side.reader.textOf(*object, 1, "AcDbLayout");
    }
  }
  return names;
}

std::map<BlockKey, NamedBlock> blocksOf(Side& side) {
  const std::unordered_map<std::uint64_t, std::string> layouts = layoutNames(side);
  std::map<BlockKey, NamedBlock> blocks;
  for (dxf::Block& block : side.store.blocks()) {
    if (block.record && block.record->erased) {
      continue;
    }
    std::string name = RecordReader::utf8Of(block.name);
    ComparedSpace::Kind kind = ComparedSpace::Kind::Block;
    if (&block == &side.store.modelSpace()) {
      kind = ComparedSpace::Kind::Model;
      name.clear();
    } else if (foldedName(name).starts_with("*PAPER_SPACE")) {
      kind = ComparedSpace::Kind::Layout;
      const auto layout = layouts.find(block.record ? block.record->handle : 0);
      // Files without layouts have one.
      name = layout != layouts.end() ? layout->second : block.entities.empty() ? "" : "Layout1";
      if (name.empty()) {
        continue;
      }
    }
    std::string key = foldedName(name);
    if (isAnonymous(name)) {
      // Programs number them anew; it is the same one where the record is.
      key += " " + std::to_string(block.record ? block.record->handle : 0);
    }
    blocks.emplace(BlockKey{static_cast<int>(kind), std::move(key)},
                   NamedBlock{kind, std::move(name), &block});
  }
  return blocks;
}

void sortTable(ComparedTable& table) {
  std::sort(table.added.begin(), table.added.end());
  std::sort(table.removed.begin(), table.removed.end());
  std::sort(table.changed.begin(), table.changed.end(),
            [](const ComparedRecord& a, const ComparedRecord& b) { return a.name < b.name; });
}

/// What every drawing has, listed or not.
bool isImplied(std::string_view table, const std::string& key) {
  return (table == "LAYER" && key == "0") ||
         (table == "LTYPE" && (key == "BYLAYER" || key == "BYBLOCK" || key == "CONTINUOUS")) ||
         ((table == "STYLE" || table == "DIMSTYLE" || table == "MLINESTYLE") && key == "STANDARD");
}

using NamedRecords = std::map<std::string, std::pair<std::string, const AcDbStub*>>;

template <class StubList>
NamedRecords named(const Side& side, const StubList& stubs, std::string_view kind) {
  NamedRecords records;
  for (const AcDbStub* stub : stubs) {
    if (!stub->erased && stub->size > 0 && side.store.kindName(*stub) == kind) {
      const std::string name = side.reader.textOf(*stub, 2);
      if (!name.empty()) {
        records.emplace(foldedName(name), std::make_pair(name, stub));
      }
    }
  }
  return records;
}

NamedRecords recordsOf(Side& side, std::string_view table) {
  if (table == "MLINESTYLE") {
    return named(side, side.store.objects(), table);
  }
  const dxf::Table* const found = side.store.table(table);
  return found ? named(side, found->records, table) : NamedRecords();
}

ComparedTable compareTable(Side& before, Side& after, std::string_view table,
                           const std::string& words, const Nearness& nearness,
                           const CompareRules& rules) {
  ComparedTable compared;
  compared.name = words;
  const NamedRecords olds = recordsOf(before, table);
  const NamedRecords news = recordsOf(after, table);
  const auto counts = [&](const std::string& name) {
    return !rules.isChosen || rules.isChosen(name);
  };
  SaidRecord old;
  SaidRecord now;
  for (const auto& [key, record] : olds) {
    const auto other = news.find(key);
    if (!counts(record.first)) {
      continue;
    }
    if (other == news.end()) {
      if (!isImplied(table, key)) {
        compared.removed.push_back(record.first);
      }
      continue;
    }
    before.reader.read(*record.second, old);
    after.reader.read(*other->second.second, now);
    EntityChange change = changeOf(old, now, nearness);
    std::erase_if(change.properties, [](const PropertyChange& one) { return one.name == "name"; });
    if (!change.properties.empty()) {
      compared.changed.push_back({other->second.first, std::move(change.properties)});
    }
  }
  for (const auto& [key, record] : news) {
    if (!olds.count(key) && counts(record.first) && !isImplied(table, key)) {
      compared.added.push_back(record.first);
    }
  }
  sortTable(compared);
  return compared;
}

/// The values of a header variable as text for people.
std::string settingText(const dxf::RecordStore& store, std::string_view name) {
  std::string text;
  try {
    dxf::TagCursor cursor(store.headerVariable(name), store.format());
    for (dxf::TagView tag; cursor.next(tag);) {
      const dxf::TagType type = dxf::tagType(tag.code);
      text += text.empty() ? "" : ",";
      text += type == dxf::TagType::Text     ? std::string(dxf::trimmedValue(tag))
              : type == dxf::TagType::Double ? numberText(dxf::doubleOf(tag, store.format()))
                                             : std::to_string(dxf::integerOf(tag, store.format()));
    }
  } catch (const dxf::FileError&) {
    return "";
  }
  return text;
}

/// Settings on which it depends what a drawing means or shows.
struct SettingRow {
  const char* variable;
  const char* name;
  const char* absent;
};
constexpr std::array kSettings{
    SettingRow{"$INSUNITS", "units", "0"},
    SettingRow{"$LUNITS", "kind of units", "2"},
    SettingRow{"$LTSCALE", "linetype scale", "1"},
    SettingRow{"$PSLTSCALE", "linetype scale in layouts", "1"},
    SettingRow{"$PDMODE", "point form", "0"},
    SettingRow{"$PDSIZE", "point size", "0"},
    SettingRow{"$FILLMODE", "fill", "1"},
    SettingRow{"$ATTMODE", "attributes shown", "1"},
    SettingRow{"$ANGBASE", "zero of angles", "0"},
    SettingRow{"$ANGDIR", "direction of angles", "0"},
};

std::vector<PropertyChange> compareSettings(const Side& before, const Side& after) {
  std::vector<PropertyChange> changes;
  for (const SettingRow& row : kSettings) {
    std::string old = settingText(before.store, row.variable);
    std::string now = settingText(after.store, row.variable);
    old = old.empty() ? row.absent : old;
    now = now.empty() ? row.absent : now;
    if (old != now) {
      changes.push_back({row.name, old, now, false});
    }
  }
  return changes;
}

/// As near as the digits of both files tell.
Nearness nearnessOf(const Side& before, const Side& after, const Nearness& asked) {
  Nearness nearness = asked;
  const int decimals = std::min(before.reader.decimals(), after.reader.decimals());
  if (decimals >= kLeastDecimals && decimals < kMostDecimals) {
    // Half of the last digit, and what reading it costs.
    nearness.length = std::max(nearness.length, 0.500001 * std::pow(10.0, -decimals));
  }
  return nearness;
}

}  // namespace

ChangeCounts& ChangeCounts::operator+=(const ChangeCounts& other) {
  added += other.added;
  removed += other.removed;
  moved += other.moved;
  changed += other.changed;
  same += other.same;
  return *this;
}

ChangeCounts ComparedSpace::counts() const {
  ChangeCounts sum;
  for (const auto& [layer, counts] : layers) {
    sum += counts;
  }
  return sum;
}

bool ComparedSpace::isChangedBlock() const {
  return kind == Kind::Block && (isShifted || !counts().isSame());
}

bool DrawingDifference::isSame() const {
  return counts().isSame() && settings.empty() &&
         std::all_of(tables.begin(), tables.end(),
                     [](const ComparedTable& table) { return table.isSame(); });
}

ChangeCounts DrawingDifference::counts() const {
  ChangeCounts sum;
  for (const ComparedSpace& space : spaces) {
    sum += space.counts();
  }
  return sum;
}

DrawingDifference differenceOf(Drawing& before, Drawing& after, const CompareRules& rules) {
  Side old(before);
  Side now(after);
  DrawingDifference difference;
  const Nearness nearness = nearnessOf(old, now, rules.nearness);
  difference.tolerance = nearness.length;
  std::vector<std::string> layers;
  std::unordered_map<std::string, std::size_t> layerNumbers;
  std::set<std::string> notRead;
  for (Drawing* drawing : {&before, &after}) {
    for (const auto& kinds :
         {unreadKinds(drawing->database()), partlyReadKinds(drawing->database())}) {
      for (const dxf::UnreadKind& kind : kinds) {
        notRead.insert(kind.name);
      }
    }
  }
  SpaceComparer comparer(old, now, rules, nearness, std::move(notRead), layers, layerNumbers);
  const std::map<BlockKey, NamedBlock> oldBlocks = blocksOf(old);
  const std::map<BlockKey, NamedBlock> newBlocks = blocksOf(now);

  ComparedTable blocks{"blocks", {}, {}, {}};
  ComparedTable layouts{"layouts", {}, {}, {}};
  const auto tableOf = [&](const NamedBlock& block) -> ComparedTable& {
    return block.kind == ComparedSpace::Kind::Block ? blocks : layouts;
  };
  SaidRecord oldBegin;
  SaidRecord newBegin;
  for (const auto& [key, block] : oldBlocks) {
    const auto other = newBlocks.find(key);
    if (other == newBlocks.end()) {
      // An anonymous one belongs to what shows it.
      if (!isAnonymous(block.name)) {
        tableOf(block).removed.push_back(block.name);
      }
      continue;
    }
    ComparedSpace& space = difference.spaces.emplace_back();
    space.kind = block.kind;
    space.name = other->second.name;
    space.before = block.block->record;
    space.after = other->second.block->record;
    comparer.compare(block.block->entities, other->second.block->entities, space);
    if (block.kind == ComparedSpace::Kind::Block && block.block->begin &&
        other->second.block->begin) {
      old.reader.read(*block.block->begin, oldBegin);
      now.reader.read(*other->second.block->begin, newBegin);
      EntityChange change = changeOf(oldBegin, newBegin, nearness);
      std::erase_if(change.properties, [](const PropertyChange& one) {
        return one.name != "base point" && one.name != "path";
      });
      if (change.move) {
        change.properties.push_back({"base point", "", "", true});
      }
      space.isShifted = std::any_of(change.properties.begin(), change.properties.end(),
                                    [](const PropertyChange& one) { return one.isGeometry; });
      if (!change.properties.empty()) {
        blocks.changed.push_back({space.name, std::move(change.properties)});
      }
    }
  }
  for (const auto& [key, block] : newBlocks) {
    if (!oldBlocks.count(key) && !isAnonymous(block.name)) {
      tableOf(block).added.push_back(block.name);
    }
  }
  difference.notCompared = comparer.notCompared();
  difference.tables.push_back(compareTable(old, now, "LAYER", "layers", nearness, rules));
  if (!rules.isChosen) {
    for (const auto& [table, words] :
         {std::pair{"LTYPE", "linetypes"}, std::pair{"STYLE", "text styles"},
          std::pair{"DIMSTYLE", "dimension styles"}, std::pair{"MLINESTYLE", "multiline styles"},
          std::pair{"VIEW", "views"}}) {
      difference.tables.push_back(compareTable(old, now, table, words, nearness, rules));
    }
    difference.tables.push_back(std::move(layouts));
    difference.tables.push_back(std::move(blocks));
    difference.settings = compareSettings(old, now);
  }
  return difference;
}

}  // namespace quoin::commands
