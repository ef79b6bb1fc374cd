#include "embedded/dwg/records/DxfLayout.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "embedded/os/CaseFold.h"

namespace quoin::dwg {
namespace {

using Shape = LayoutItem::Shape;
using Unit = LayoutItem::Unit;

constexpr int kMarkerCode = 100;
constexpr int kEmbeddedCode = 101;
constexpr std::size_t kPieceLength = 250;  // of a text in pieces, in characters
constexpr std::size_t kChunk = 127;        // of bytes in a tag

/// Line weights by their index in a record; the rest are special values.
constexpr std::array<int, 24> kLineWeights = {0,  5,   9,   13,  15,  18,  20,  25,
                                              30, 35,  40,  50,  53,  60,  70,  80,
                                              90, 100, 106, 120, 140, 158, 200, 211};
constexpr std::int64_t kByLayerWeight = 29;

std::int64_t lineWeightOf(std::int64_t index) {
  const auto position = static_cast<std::size_t>(index);
  return position < kLineWeights.size() ? kLineWeights[position] : kByLayerWeight - 1 - index;
}

std::optional<std::int64_t> indexOfLineWeight(std::int64_t weight) {
  if (weight < 0) {
    return weight >= -3 ? std::optional(kByLayerWeight - 1 - weight) : std::nullopt;
  }
  const auto found = std::find(kLineWeights.begin(), kLineWeights.end(), weight);
  return found == kLineWeights.end() ? std::nullopt
                                     : std::optional<std::int64_t>(found - kLineWeights.begin());
}

// Rounded once in the factor, as other programs do, so that their files have the very same degrees.
double toDegrees(double radians) {
  return radians * (180.0 / std::numbers::pi);
}

double toRadians(double degrees) {
  return degrees * (std::numbers::pi / 180.0);
}

// --- the words of a layout ------------------------------------------------------------------

int numberAt(std::string_view word, std::size_t& at) {
  int number = 0;
  const auto end = std::from_chars(word.data() + at, word.data() + word.size(), number);
  at = static_cast<std::size_t>(end.ptr - word.data());
  return number;
}

void readMissing(std::string_view text, LayoutItem& item) {
  item.isOptional = true;
  item.isAlwaysWritten = text.starts_with('!');
  text.remove_prefix(item.isAlwaysWritten ? 1 : 0);
  item.missingName = std::wstring(text.begin(), text.end());
  std::size_t index = 0;
  while (!text.empty() && index < 3) {
    const std::size_t comma = std::min(text.find(','), text.size());
    item.missing[index++] = std::strtod(std::string(text.substr(0, comma)).c_str(), nullptr);
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
}

LayoutItem itemOf(std::string_view word) {
  LayoutItem item;
  if (word == "(" || word == ")") {
    item.shape = word == "(" ? Shape::GroupBegin : Shape::GroupEnd;
    return item;
  }
  if (word == "[" || word == "]") {
    item.shape = word == "[" ? Shape::SequenceBegin : Shape::SequenceEnd;
    return item;
  }
  if (word == "~") {
    item.shape = Shape::Embedded;
    return item;
  }
  if (word.front() == '@') {
    item.shape = Shape::Marker;
    item.text = word.substr(1);
    return item;
  }
  std::size_t at = 0;
  if (word.front() == '*') {
    item.shape = Shape::Any;
    at = 1;
  } else {
    item.code = numberAt(word, at);
  }
  item.key = item.code;
  while (at < word.size()) {
    switch (word[at++]) {
      case 'p':
        item.shape = Shape::Point3;
        break;
      case 'q':
        item.shape = Shape::Point2;
        break;
      case 'a':
        item.unit = Unit::Angle;
        break;
      case 'w':
        item.unit = Unit::LineWeight;
        break;
      case 'b':
        item.unit = Unit::Bytes;
        break;
      case 't':
        item.unit = Unit::Pieces;
        item.pieceCode = numberAt(word, at);
        break;
      case '#':
        item.key += numberAt(word, at) * kKeyStep;
        break;
      case ':': {
        const std::size_t end = std::min(word.find_first_of("?#", at), word.size());
        item.text = word.substr(at, end - at);
        at = end;
        break;
      }
      case '=':
        item.shape = Shape::Constant;
        item.text = word.substr(at);
        at = word.size();
        break;
      case '+':
        item.since = numberAt(word, at) == 2000 ? dxf::Version::R2000 : dxf::Version::R2010;
        break;
      case '&':
        item.conditionKey = numberAt(word, at);
        item.isTolerated = at < word.size() && word[at] == '!';
        at += item.isTolerated ? 1 : 0;
        break;
      case '?':
        readMissing(word.substr(at), item);
        at = word.size();
        break;
      default:
        break;
    }
  }
  return item;
}

/// How many tags of which codes a point has.
std::size_t sizeOf(Shape shape) {
  return shape == Shape::Point3 ? 3 : shape == Shape::Point2 ? 2 : 1;
}

/// The part of an item that a key belongs to, and its code; a negative part for none.
struct ItemPart {
  int part = -1;
  int code = 0;
};

ItemPart partOfKey(const LayoutItem& item, int key) {
  const int above = key - item.key;
  if (item.shape == Shape::Any) {
    return above >= 0 && above < kKeyStep ? ItemPart{0, above} : ItemPart{};
  }
  const bool isPart =
      above >= 0 && above % 10 == 0 && above / 10 < static_cast<int>(sizeOf(item.shape));
  return isPart ? ItemPart{above / 10, item.code + above} : ItemPart{};
}

ItemPart partOfCode(const LayoutItem& item, int code) {
  return item.shape == Shape::Any ? ItemPart{0, code}
                                  : partOfKey(item, item.key + code - item.code);
}

// --- one field as tags ----------------------------------------------------------------------

/// Appends the tag (or tags) of one value.
void putValue(const LayoutItem& item, int code, const Value& value, const RecordValues& values,
              const DrawingFacts& facts, std::string& bytes) {
  const dxf::Format& format = facts.format;
  if (!item.text.empty()) {
    dxf::putText(bytes, code, facts.nameOf(static_cast<std::uint64_t>(value.integer)), format);
    return;
  }
  switch (value.type) {
    case Value::Type::Text: {
      std::wstring_view text = values.textOf(value);
      while (item.unit == Unit::Pieces && text.size() >= kPieceLength) {
        dxf::putText(bytes, item.pieceCode, text.substr(0, kPieceLength), format);
        text.remove_prefix(kPieceLength);
      }
      dxf::putText(bytes, code, text, format);
      return;
    }
    case Value::Type::Bytes: {
      std::string_view rest = values.bytesOf(value);
      while (!rest.empty()) {
        dxf::putBinary(bytes, code, rest.substr(0, kChunk), format);
        rest.remove_prefix(std::min(kChunk, rest.size()));
      }
      return;
    }
    case Value::Type::Handle:
      dxf::putHandle(bytes, code, static_cast<std::uint64_t>(value.integer), format);
      return;
    case Value::Type::Double:
      if (dxf::tagType(code) == dxf::TagType::Double) {
        dxf::putDouble(bytes, code,
                       item.unit == Unit::Angle ? toDegrees(value.number) : value.number, format);
        return;
      }
      dxf::putInteger(bytes, code, static_cast<std::int64_t>(value.number), format);
      return;
    case Value::Type::Integer:
      if (dxf::tagType(code) == dxf::TagType::Double) {
        dxf::putDouble(bytes, code, static_cast<double>(value.integer), format);
        return;
      }
      dxf::putInteger(bytes, code,
                      item.unit == Unit::LineWeight ? lineWeightOf(value.integer) : value.integer,
                      format);
  }
}

bool isMissingValue(const LayoutItem& item, std::size_t part, const Value& value,
                    const RecordValues& values, const DrawingFacts& facts) {
  if (!item.text.empty()) {
    return item.missingName.empty()
               ? value.integer == 0
               : os::sameName(facts.nameOf(static_cast<std::uint64_t>(value.integer)),
                              item.missingName);
  }
  switch (value.type) {
    case Value::Type::Text:
      return values.textOf(value) == item.missingName;
    case Value::Type::Bytes:
      return values.bytesOf(value).empty();
    case Value::Type::Double:
      return value.number == item.missing[part];
    default:
      return static_cast<double>(value.integer) == item.missing[part];
  }
}

}  // namespace

DxfLayout::DxfLayout(std::string_view text) {
  while (!text.empty()) {
    const std::size_t begin = std::min(text.find_first_not_of(" \n"), text.size());
    text.remove_prefix(begin);
    const std::size_t end = std::min(text.find_first_of(" \n"), text.size());
    if (end != 0) {
      m_items.push_back(itemOf(text.substr(0, end)));
    }
    text.remove_prefix(end);
  }
  for (LayoutItem& item : m_items) {
    item.isCondition = std::any_of(m_items.begin(), m_items.end(), [&](const LayoutItem& other) {
      return other.conditionKey == item.key && item.key != 0;
    });
  }
}

bool DxfLayout::shows(int key) const {
  return std::any_of(m_items.begin(), m_items.end(),
                     [key](const LayoutItem& item) { return partOfKey(item, key).part >= 0; });
}

std::size_t DxfLayout::endOfSequence(std::size_t begin) const {
  std::size_t end = begin;
  while (m_items[end].shape != Shape::SequenceEnd) {
    ++end;
  }
  return end;
}

void DxfLayout::writeSequence(std::size_t begin, const RecordValues& values,
                              const DrawingFacts& facts, std::string& bytes) const {
  const std::size_t end = endOfSequence(begin);
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t j = begin; j < end; ++j) {
      const ItemPart found = partOfKey(m_items[j], values[i].key);
      if (found.part < 0) {
        continue;
      }
      const auto part = static_cast<std::size_t>(found.part);
      if (!m_items[j].isOptional || !isMissingValue(m_items[j], part, values[i], values, facts)) {
        putValue(m_items[j], found.code, values[i], values, facts, bytes);
      }
      break;
    }
  }
}

void DxfLayout::write(const RecordValues& values, const DrawingFacts& facts,
                      std::string& bytes) const {
  ValueCursor cursor(values);
  std::unordered_map<int, std::int64_t> lastOf;
  std::size_t groupBegin = 0;
  for (std::size_t i = 0; i < m_items.size(); ++i) {
    const LayoutItem& item = m_items[i];
    switch (item.shape) {
      case Shape::Marker:
        dxf::putAscii(bytes, kMarkerCode, item.text, facts.format);
        break;
      case Shape::Constant:
        if (dxf::tagType(item.code) == dxf::TagType::Text) {
          dxf::putAscii(bytes, item.code, item.text, facts.format);
        } else {
          dxf::putInteger(bytes, item.code, std::atoi(item.text.c_str()), facts.format);
        }
        break;
      case Shape::Embedded:
        break;
      case Shape::SequenceBegin:
        writeSequence(i + 1, values, facts, bytes);
        i = endOfSequence(i);
        break;
      case Shape::GroupBegin:
        groupBegin = i;
        if (cursor.peek(m_items[i + 1].key) == nullptr) {
          while (m_items[i].shape != Shape::GroupEnd) {
            ++i;
          }
        }
        break;
      case Shape::GroupEnd:
        if (cursor.peek(m_items[groupBegin + 1].key) != nullptr) {
          i = groupBegin;
        }
        break;
      default: {
        const std::size_t size = sizeOf(item.shape);
        std::array<const Value*, 3> parts{};
        bool isMissing = item.isOptional && !item.isAlwaysWritten;
        bool isThere = item.conditionKey == 0 || lastOf[item.conditionKey] != 0;
        for (std::size_t part = 0; part < size; ++part) {
          parts[part] = cursor.take(item.key + 10 * static_cast<int>(part));
          isThere = isThere && parts[part] != nullptr;
          if (item.isCondition && parts[part] != nullptr) {
            lastOf[item.key] = parts[part]->integer;
          }
          isMissing =
              isMissing && isThere && isMissingValue(item, part, *parts[part], values, facts);
        }
        for (std::size_t part = 0; isThere && !isMissing && part < size; ++part) {
          putValue(item, item.code + 10 * static_cast<int>(part), *parts[part], values, facts,
                   bytes);
        }
      }
    }
  }
}

// --- reading --------------------------------------------------------------------------------

namespace {

/// Goes through the tags of a record by marker and code; those in front of the first marker count
/// from the beginning.
class TagWalk {
 public:
  TagWalk(const std::vector<dxf::TagView>& tags, std::vector<bool>& used)
      : m_tags(&tags), m_used(&used) {
    while (m_end < tags.size() && tags[m_end].code != kMarkerCode) {
      ++m_end;
    }
  }

  /// From now on the tags behind the next marker of this name count. Fails: false for none.
  bool enter(std::string_view marker) {
    for (std::size_t i = m_end; i < m_tags->size(); ++i) {
      const dxf::TagView& tag = (*m_tags)[i];
      if (tag.code == kMarkerCode && dxf::trimmedValue(tag) == marker) {
        (*m_used)[i] = true;
        m_begin = i + 1;
        m_end = m_begin;
        endAtMarker();
        return true;
      }
    }
    m_begin = m_end = m_tags->size();
    return false;
  }
  /// From now on the tags of the embedded object count, where there is one.
  void enterEmbedded() {
    m_begin = m_end;
    if (m_end < m_tags->size() && (*m_tags)[m_end].code == kEmbeddedCode) {
      ++m_end;
      endAtMarker();
    } else {
      m_end = m_begin;
    }
  }

  /// The next tag with this code that is not used yet; m_tags->size() for none.
  std::size_t find(int code) const {
    for (std::size_t i = m_begin; i < m_end; ++i) {
      if ((*m_tags)[i].code == code && !(*m_used)[i]) {
        return i;
      }
    }
    return m_tags->size();
  }
  const dxf::TagView* take(int code) {
    const std::size_t index = find(code);
    if (index == m_tags->size()) {
      return nullptr;
    }
    (*m_used)[index] = true;
    // Repeated groups go forward: what is used up in front need not be looked at again.
    while (m_begin < m_end && (*m_used)[m_begin]) {
      ++m_begin;
    }
    return &(*m_tags)[index];
  }
  bool has(int code) const { return find(code) != m_tags->size(); }
  /// The first tag that is not used yet.
  std::size_t firstUnused() const {
    std::size_t index = m_begin;
    while (index < m_end && (*m_used)[index]) {
      ++index;
    }
    return index;
  }
  /// The tag at `index`, which is used now; null where there is none that is not used.
  const dxf::TagView* takeAt(std::size_t index) {
    if (index >= m_end || (*m_used)[index]) {
      return nullptr;
    }
    (*m_used)[index] = true;
    return &(*m_tags)[index];
  }
  const dxf::TagView* at(std::size_t index) const {
    return index < m_end && !(*m_used)[index] ? &(*m_tags)[index] : nullptr;
  }
  /// Whether `code` comes before the next `stop`.
  bool hasBefore(int code, int stop) const {
    for (std::size_t i = m_begin; i < m_end; ++i) {
      if ((*m_used)[i]) {
        continue;
      }
      const int here = (*m_tags)[i].code;
      if (here == code || here == stop) {
        return here == code;
      }
    }
    return false;
  }

 private:
  void endAtMarker() {
    while (m_end < m_tags->size() && (*m_tags)[m_end].code != kMarkerCode &&
           (*m_tags)[m_end].code != kEmbeddedCode) {
      ++m_end;
    }
  }

  const std::vector<dxf::TagView>* m_tags;
  std::vector<bool>* m_used;
  std::size_t m_begin = 0;
  std::size_t m_end = 0;
};

/// Reads fields from tags, beside the fields that the record had.
class FieldReader {
 public:
  FieldReader(const RecordValues& original, const DrawingFacts& facts, RecordValues& values)
      : m_original(&original), m_originals(original), m_facts(&facts), m_values(&values) {}

  bool read(const LayoutItem& item, std::size_t part, const dxf::TagView& tag) {
    const int above = item.shape == Shape::Any ? tag.code : 10 * static_cast<int>(part);
    const int code = item.code + above;
    const int key = item.key + above;
    m_given.insert(key);
    const Value* const former = m_originals.take(key);
    if (former != nullptr && spelling(item, code, *former) == valueBytes(item, code, tag)) {
      m_values->addFrom(*m_original, *former);
      return true;
    }
    return readNew(item, key, tag);
  }

  /// What a tag that is not there stands for.
  void leaveOut(const LayoutItem& item, std::size_t part) {
    const int key = item.key + 10 * static_cast<int>(part);
    const Value* const former = m_originals.take(key);
    if (former != nullptr && isMissingValue(item, part, *former, *m_original, *m_facts)) {
      m_values->addFrom(*m_original, *former);
    } else if (!item.text.empty()) {
      m_values->addHandle(key, m_facts->handleOf(item.text, item.missingName));
    } else if (former != nullptr && former->type == Value::Type::Text) {
      m_values->addText(key, item.missingName);
    } else if (dxf::tagType(item.code) == dxf::TagType::Double) {
      m_values->addDouble(key, item.missing[part]);
    } else if (dxf::tagType(item.code) == dxf::TagType::Text) {
      m_values->addText(key, item.missingName);
    } else if (dxf::tagType(item.code) == dxf::TagType::Handle) {
      m_values->addHandle(key, 0);
    } else if (item.unit != Unit::Bytes) {
      m_values->addInteger(key, static_cast<std::int64_t>(item.missing[part]));
    }
  }

  /// A tag that is not there because of another one.
  void keep(const LayoutItem& item) {
    for (std::size_t part = 0; part < sizeOf(item.shape); ++part) {
      const Value* const former = m_originals.take(item.key + 10 * static_cast<int>(part));
      if (former != nullptr) {
        m_values->addFrom(*m_original, *former);
      }
    }
  }
  /// Whether the last field with this key is not 0.
  bool hasOtherThanZero(int key) const {
    for (std::size_t i = m_values->size(); i-- != 0;) {
      if ((*m_values)[i].key == key) {
        return (*m_values)[i].integer != 0;
      }
    }
    return false;
  }

  void addPieces(const LayoutItem& item, const std::vector<dxf::TagView>& pieces) {
    const Value* const former = m_originals.take(item.key);
    if (former == nullptr && pieces.empty()) {
      return;  // the record has no such text, and gets none
    }
    std::string given;
    std::wstring text;
    for (const dxf::TagView& piece : pieces) {
      given += valueBytes(item, piece.code, piece);
      text += dxf::textOf(piece, m_facts->format);
    }
    if (former != nullptr && spelling(item, item.code, *former) == given) {
      m_values->addFrom(*m_original, *former);
    } else {
      m_values->addText(item.key, text);
    }
  }
  /// Fields that neither the record had nor any tag gives: what parts of it lack, but none has.
  void dropNeverGiven(const LayoutItem& item) {
    if (!m_given.contains(item.key) && m_original->first(item.key) == nullptr) {
      m_values->removeAll(item.key);
    }
  }
  void addBytes(const LayoutItem& item, std::string bytes) {
    m_originals.take(item.key);
    m_values->addBytes(item.key, std::move(bytes));
  }

 private:
  std::string spelling(const LayoutItem& item, int code, const Value& value) const {
    std::string bytes;
    putValue(item, code, value, *m_original, *m_facts, bytes);
    return bytes;
  }
  std::string valueBytes(const LayoutItem&, int code, const dxf::TagView& tag) const {
    std::string bytes;
    dxf::TagView same = tag;
    same.code = code;
    dxf::putTranscoded(bytes, same, m_facts->format, m_facts->format);
    return bytes;
  }

  bool readNew(const LayoutItem& item, int key, const dxf::TagView& tag) {
    const dxf::Format& format = m_facts->format;
    if (!item.text.empty()) {
      const std::wstring name = dxf::textOf(tag, format);
      const std::uint64_t handle = m_facts->handleOf(item.text, name);
      m_values->addHandle(key, handle);
      return handle != 0 || name.empty();
    }
    switch (dxf::tagType(tag.code)) {
      case dxf::TagType::Text:
        m_values->addText(key, dxf::textOf(tag, format));
        return true;
      case dxf::TagType::Double: {
        const double number = dxf::doubleOf(tag, format);
        m_values->addDouble(key, item.unit == Unit::Angle ? toRadians(number) : number);
        return true;
      }
      case dxf::TagType::Handle:
        m_values->addHandle(key, dxf::handleOf(tag, format));
        return true;
      case dxf::TagType::Binary:
        m_values->addBytes(key, dxf::binaryOf(tag, format));
        return true;
      default: {
        std::optional<std::int64_t> integer = dxf::integerOf(tag, format);
        if (item.unit == Unit::LineWeight) {
          integer = indexOfLineWeight(*integer);
        }
        m_values->addInteger(key, integer.value_or(0));
        return integer.has_value();
      }
    }
  }

  const RecordValues* m_original;
  ValueCursor m_originals;
  const DrawingFacts* m_facts;
  RecordValues* m_values;
  std::unordered_set<int> m_given;
};

/// Takes the tags of a sequence, from the first one with its first item's code on.
/// Fails: the tag that DWG cannot have; null for none.
const dxf::TagView* readSequence(std::span<const LayoutItem> items, TagWalk& walk,
                                 FieldReader& reader) {
  const bool isAny = items.front().shape == Shape::Any;
  std::size_t index = isAny ? walk.firstUnused() : walk.find(items.front().code);
  for (const dxf::TagView* tag = walk.at(index); tag != nullptr; tag = walk.at(++index)) {
    const LayoutItem* found = nullptr;
    ItemPart part;
    for (const LayoutItem& item : items) {
      part = partOfCode(item, tag->code);
      if (part.part >= 0) {
        found = &item;
        break;
      }
    }
    if (found == nullptr) {
      break;
    }
    walk.takeAt(index);
    if (!reader.read(*found, static_cast<std::size_t>(part.part), *tag)) {
      return tag;
    }
  }
  return nullptr;
}

}  // namespace

bool DxfLayout::read(const std::vector<dxf::TagView>& tags, const RecordValues& original,
                     const DrawingFacts& facts, RecordValues& values, std::vector<bool>& used,
                     std::string& problem) const {
  TagWalk walk(tags, used);
  FieldReader reader(original, facts, values);
  std::size_t groupBegin = 0;
  bool isInGroup = false;
  const auto stopCode = [&] { return isInGroup ? m_items[groupBegin + 1].code : -1; };
  for (std::size_t i = 0; i < m_items.size(); ++i) {
    const LayoutItem& item = m_items[i];
    switch (item.shape) {
      case Shape::Marker:
        walk.enter(item.text);
        break;
      case Shape::Constant:
        walk.take(item.code);
        break;
      case Shape::Embedded:
        walk.enterEmbedded();
        break;
      case Shape::SequenceBegin: {
        const std::size_t end = endOfSequence(i);
        const std::span sequence(m_items.data() + i + 1, end - i - 1);
        if (const dxf::TagView* const wrong = readSequence(sequence, walk, reader)) {
          problem =
              "group code " + std::to_string(wrong->code) + " has a value that DWG cannot have";
          return false;
        }
        i = end;
        break;
      }
      case Shape::GroupBegin:
        groupBegin = i;
        isInGroup = true;
        if (!walk.has(m_items[i + 1].code)) {
          while (m_items[i].shape != Shape::GroupEnd) {
            ++i;
          }
          isInGroup = false;
        }
        break;
      case Shape::GroupEnd:
        if (walk.has(m_items[groupBegin + 1].code)) {
          i = groupBegin;
        } else {
          isInGroup = false;
        }
        break;
      default: {
        if (item.unit == Unit::Pieces) {
          std::vector<dxf::TagView> pieces;
          while (const dxf::TagView* piece = walk.take(item.pieceCode)) {
            pieces.push_back(*piece);
          }
          if (const dxf::TagView* last = walk.take(item.code)) {
            pieces.push_back(*last);
          }
          reader.addPieces(item, pieces);
          break;
        }
        if (item.unit == Unit::Bytes) {
          std::string bytes;
          while (const dxf::TagView* chunk = walk.take(item.code)) {
            bytes += dxf::binaryOf(*chunk, facts.format);
          }
          reader.addBytes(item, std::move(bytes));
          break;
        }
        const bool isTooNew = facts.format.version < item.since;
        const bool isMeant = item.conditionKey == 0 || reader.hasOtherThanZero(item.conditionKey) ||
                             (item.isTolerated && walk.has(item.code));
        if (isTooNew || !isMeant) {
          reader.keep(item);
          break;
        }
        const bool isFirstOfGroup = isInGroup && i == groupBegin + 1;
        for (std::size_t part = 0; part < sizeOf(item.shape); ++part) {
          const int code = item.code + 10 * static_cast<int>(part);
          const bool isThere = !isInGroup || isFirstOfGroup || walk.hasBefore(code, stopCode());
          const dxf::TagView* const tag = isThere ? walk.take(code) : nullptr;
          if (tag == nullptr) {
            if (item.isOptional) {
              reader.leaveOut(item, part);
            }
          } else if (!reader.read(item, part, *tag)) {
            problem = "group code " + std::to_string(code) + " has a value that DWG cannot have";
            return false;
          }
        }
      }
    }
  }
  for (const LayoutItem& item : m_items) {
    if (item.isAlwaysWritten) {
      reader.dropNeverGiven(item);
    }
  }
  return true;
}

}  // namespace quoin::dwg
