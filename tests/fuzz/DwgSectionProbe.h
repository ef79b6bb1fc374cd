// What must hold for any bytes whatever when they are read as one of the sections of a DWG drawing
// that are no records: header variables, classes, object map. The mutation test and the libFuzzer
// target share it.
//
// An input is a digit for the version (SmallDrawing.h), a letter for the section (h, c, m; all
// others count as one of these) and the section's contents.
#pragma once

#include <string>
#include <string_view>

#include "dwg/records/SmallDrawing.h"
#include "embedded/dwg/container/ObjectMap.h"
#include "embedded/dwg/container/Warnings.h"
#include "embedded/dwg/records/ClassSection.h"
#include "embedded/dwg/records/HeaderSection.h"
#include "fuzz/DxfProbe.h"

namespace quoin::test {
namespace probe {

/// Gives some variables their own values again, and the drawing another seed of handles.
inline ProbeResult probeHeader(std::string_view contents, const dwg::DrawingFacts& facts) {
  dwg::HeaderSection section;
  if (!section.read(contents, facts.format.version, *facts.codePage)) {
    require(section.write().empty() && !section.isExact(), "what is not read is not written");
    return ProbeResult::Refused;
  }
  std::string tags;
  section.writeTags(facts, {}, tags);
  if (!section.isExact()) {
    require(section.write().empty() && !section.setSeed(5), "what is not exact is not written");
    return ProbeResult::Loaded;
  }
  require(section.write() == contents, "an untouched section comes back byte for byte");
  dxf::TagCursor cursor(tags, facts.format);
  std::string name;
  std::string value;
  // Each is written and read again with the whole section; which ones depends on the contents.
  constexpr std::size_t kEach = 29;
  std::size_t count = contents.empty() ? 0 : static_cast<unsigned char>(contents.back());
  const auto setOne = [&] {
    dwg::HeaderSection changed = section;
    if (!name.empty() && ++count % kEach == 0 && changed.set(name, value, facts)) {
      require(changed.isExact(), "a section with a changed variable may be changed again");
    }
  };
  for (dxf::TagView tag; cursor.next(tag);) {
    if (tag.code == 9) {
      setOne();
      name = dxf::trimmedValue(tag);
      value.clear();
    } else {
      value += tags.substr(tag.begin, tag.end - tag.begin);
    }
  }
  setOne();
  if (section.setSeed(0x123456)) {
    dwg::HeaderSection again;
    require(again.read(section.write(), facts.format.version, *facts.codePage) && again.isExact() &&
                again.handles().seed == 0x123456,
            "a changed section says what was meant");
  }
  return ProbeResult::Loaded;
}

inline ProbeResult probeClasses(std::string_view contents, const dwg::DrawingFacts& facts) {
  dwg::ClassSection section;
  if (!section.read(contents, facts.format.version, *facts.codePage)) {
    require(section.classes().empty() && section.write().empty(), "what is not read has nothing");
    return ProbeResult::Refused;
  }
  require(section.classes().size() <= contents.size() + 1, "memory is bounded by the section");
  require(section.byType().size() <= section.classes().size(), "a number has one class");
  std::string tags;
  section.writeTags(facts.format, tags);
  if (section.isExact()) {
    require(section.write() == contents, "an untouched section comes back byte for byte");
  }
  const std::uint16_t last = section.classes().empty() ? 500 : section.classes().back().number;
  if (section.setCount(last, 70000)) {
    dwg::ClassSection again;
    require(again.read(section.write(), facts.format.version, *facts.codePage) && again.isExact() &&
                again.classes().size() == section.classes().size(),
            "a changed section says what was meant");
  }
  return ProbeResult::Loaded;
}

inline ProbeResult probeObjectMap(std::string_view contents) {
  constexpr std::uint64_t kMostEntries = 1000;
  constexpr std::size_t kMostInChunk = 0xFFFF;  // the chunk that exceeds them is the last
  dwg::container::Warnings warnings;
  const auto entries = dwg::container::readObjectMap(contents, 0, kMostEntries, warnings);
  require(entries.size() <= kMostEntries + kMostInChunk, "no more records than there is room for");
  require(entries.size() <= contents.size(), "memory is bounded by the section");
  for (std::size_t i = 0; i < entries.size(); ++i) {
    require(entries[i].handle > (i == 0 ? 0 : entries[i - 1].handle), "handles are in order");
    // Places from the middle of all numbers on are in no file; their differences have no sign.
    if (entries[i].place > INT64_MAX) {
      return ProbeResult::Refused;
    }
  }
  dwg::container::Warnings none;
  const std::string written = dwg::container::objectMapOf(entries);
  const auto again = dwg::container::readObjectMap(written, 0, entries.size(), none);
  require(none.list().empty() && again.size() == entries.size(), "a written map is whole");
  for (std::size_t i = 0; i < entries.size(); ++i) {
    require(again[i].handle == entries[i].handle && again[i].place == entries[i].place,
            "a written map says what was meant");
  }
  return warnings.list().empty() ? ProbeResult::Loaded : ProbeResult::Refused;
}

}  // namespace probe

/// Fails: throws std::logic_error naming the law that does not hold.
inline ProbeResult probeDwgSection(std::string_view input) {
  constexpr std::size_t kHead = 2;
  if (input.size() < kHead) {
    return ProbeResult::NotRecognised;
  }
  const auto version = static_cast<unsigned char>(input[0]) % std::size(dwg::testing::kVersions);
  const dwg::DrawingFacts facts =
      dwg::testing::smallFacts(dwg::testing::kVersions[version], "ANSI_936");
  const std::string_view contents = input.substr(kHead);
  switch (static_cast<unsigned char>(input[1]) % 3) {
    case 'h' % 3:
      return probe::probeHeader(contents, facts);
    case 'c' % 3:
      return probe::probeClasses(contents, facts);
    default:
      return probe::probeObjectMap(contents);
  }
}

}  // namespace quoin::test
