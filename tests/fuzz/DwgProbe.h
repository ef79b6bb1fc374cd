// What must hold for any bytes whatever when they are read as the container of a DWG drawing. The
// mutation test and the libFuzzer target share it.
#pragma once

#include <stdexcept>
#include <string>

#include "embedded/dwg/container/DwgFile.h"
#include "embedded/dxf/FileError.h"
#include "fuzz/DxfProbe.h"

namespace quoin::test {
namespace probe {

/// Reads all that the file gives; what is given lies in order and in bounds.
inline void readEverything(const dwg::DwgFile& file) {
  std::uint64_t before = 0;
  std::uint64_t sizes = 0;
  for (const dwg::RecordView& record : file.records()) {
    require(record.handle > before, "records are in order of handle, each handle once");
    require(file.find(record.handle) == &record, "a handle leads to its record");
    require(!record.data.empty() && record.handleBits <= record.data.size() * 8,
            "a record has data, and handles within it");
    sizes += record.data.size();
    before = record.handle;
  }
  require(sizes <= file.section(dwg::SectionName::Objects).size(),
          "the records are no more than the section that they are in");
  for (const std::string& name : file.sectionNames()) {
    file.sectionNamed(name);
  }
  for (const dwg::Warning& warning : file.warnings()) {
    require(!warning.message().empty(), "a warning says something");
  }
  file.savedBy();
}

/// Changes a record, erases one, adds one: the new file has these changes and no others, or the
/// writer says that it cannot.
inline bool editAndReopen(const dwg::DwgFile& file) {
  dwg::FileChanges changes;
  const std::uint64_t last = file.records().empty() ? 0 : file.records().back().handle;
  if (last == ~std::uint64_t{0}) {
    return false;
  }
  changes.records.push_back({last + 1, "a new record", 0, false});
  if (file.records().size() > 1) {
    changes.records.push_back({last, std::string(file.records().back().data) + "+", 0, false});
    changes.records.push_back({file.records().front().handle, "", 0, true});
  }
  changes.headerVariables = std::string(file.headerVariables()) + "+";
  try {
    const dwg::DwgFile fresh(file.written(changes));
    require(fresh.find(last + 1) != nullptr && fresh.find(last + 1)->data == "a new record",
            "what was added is there");
    return true;
  } catch (const dxf::FileError& error) {
    require(!error.message().empty(), "an error says something");
    require(!file.whyReadOnly().empty(), "a whole file can be written");
    return false;
  }
}

}  // namespace probe

/// Fails: throws std::logic_error naming the law that does not hold.
inline ProbeResult probeDwg(const std::string& bytes) {
  try {
    const dwg::DwgFile file(bytes);
    probe::require(file.written({}) == bytes, "an untouched file comes back byte for byte");
    probe::readEverything(file);
    probe::editAndReopen(file);
    return ProbeResult::Loaded;
  } catch (const dxf::FileError& error) {
    probe::require(!error.message().empty(), "an error says something");
    return dwg::DwgFile::recognises(bytes) ? ProbeResult::Refused : ProbeResult::NotRecognised;
  }
}

}  // namespace quoin::test
