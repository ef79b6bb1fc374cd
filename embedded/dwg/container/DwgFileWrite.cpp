// Writing a changed DWG file: which records go where, and the look at what came out.
#include <algorithm>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Container.h"
#include "embedded/dwg/container/DwgFile.h"
#include "embedded/dwg/container/ObjectMap.h"
#include "embedded/dwg/container/RecordFrame.h"
#include "embedded/dwg/container/SectionFrame.h"

namespace quoin::dwg {

using namespace container;
using dxf::FileError;

namespace {

[[noreturn]] void fail(Acad::ErrorStatus status, const std::string& record,
                       const std::string& cause) {
  FileError error(status, cause);
  error.record = record;
  throw error;
}

std::vector<const RecordChange*> inOrder(const std::vector<RecordChange>& changes) {
  std::vector<const RecordChange*> sorted;
  sorted.reserve(changes.size());
  for (const RecordChange& change : changes) {
    sorted.push_back(&change);
  }
  std::sort(sorted.begin(), sorted.end(), [](const RecordChange* one, const RecordChange* other) {
    return one->handle < other->handle;
  });
  return sorted;
}

/// Refuses changes that cannot be; they are in order of handle.
void check(const std::vector<const RecordChange*>& changes, const DwgFile& file) {
  const RecordChange* before = nullptr;
  for (const RecordChange* change : changes) {
    const char* cause = nullptr;
    if (change->handle == 0) {
      cause = "a record needs a handle";
    } else if (before != nullptr && before->handle == change->handle) {
      cause = "it is changed twice";
    } else if (change->isErased && file.find(change->handle) == nullptr) {
      cause = "it is erased, and the file has none";
    } else if (!change->isErased &&
               (change->data.empty() || change->handleBits > change->data.size() * 8)) {
      cause = "it has no data, or less than its handles need";
    }
    if (cause != nullptr) {
      fail(Acad::eInvalidInput, recordText(change->handle), cause);
    }
    before = change;
  }
}

/// Merges the object map with changes, both in order of handle.
class MapMerger {
 public:
  MapMerger(const Container& container, bool hasHandleBits)
      : m_container(container), m_hasHandleBits(hasHandleBits) {
    m_changes.isMapChanged = false;
  }

  void keep(const MapEntry& entry) { m_entries.push_back(entry); }

  void change(const MapEntry& entry, const RecordChange& change) {
    if (change.isErased) {
      m_changes.isMapChanged = true;
      return;
    }
    std::string frame = framedRecord(change.data, change.handleBits, m_hasHandleBits);
    const std::uint64_t size =
        readRecordFrame(m_container.objects(), entry.place, m_hasHandleBits).size;
    if (frame.size() == size) {
      m_entries.push_back(entry);
      m_changes.patches.push_back({entry.place, std::move(frame)});
    } else {
      append(change.handle, frame);
    }
  }

  void add(const RecordChange& change) {
    append(change.handle, framedRecord(change.data, change.handleBits, m_hasHandleBits));
  }

  ContainerChanges finish() {
    m_changes.objectMap = objectMapOf(m_entries);
    m_changes.largestHandle = m_entries.empty() ? 0 : m_entries.back().handle;
    std::sort(m_changes.patches.begin(), m_changes.patches.end(),
              [](const auto& one, const auto& other) { return one.place < other.place; });
    return std::move(m_changes);
  }

 private:
  void append(std::uint64_t handle, const std::string& frame) {
    m_entries.push_back({handle, m_container.appendPlace() + m_changes.appended.size()});
    m_changes.appended += frame;
    m_changes.isMapChanged = true;
  }

  const Container& m_container;
  bool m_hasHandleBits;
  std::vector<MapEntry> m_entries;
  ContainerChanges m_changes;
};

/// Every record of the new file against the old one's or the change. Both are in order of handle.
void compareRecords(const DwgFile& old, const DwgFile& fresh,
                    const std::vector<const RecordChange*>& changes) {
  auto next = fresh.records().begin();
  const auto expect = [&](std::uint64_t handle, std::string_view data, std::uint64_t handleBits) {
    if (next == fresh.records().end() || next->handle != handle || next->data != data ||
        next->handleBits != handleBits) {
      fail(Acad::eFilerError, recordText(handle), "it is not in the new file as it should be");
    }
    ++next;
  };
  const auto expectChange = [&](const RecordChange& change) {
    if (!change.isErased) {
      expect(change.handle, change.data, change.handleBits);
    }
  };
  auto change = changes.begin();
  for (const RecordView& record : old.records()) {
    for (; change != changes.end() && (*change)->handle < record.handle; ++change) {
      expectChange(**change);
    }
    if (change != changes.end() && (*change)->handle == record.handle) {
      expectChange(**change++);
    } else {
      expect(record.handle, record.data, record.handleBits);
    }
  }
  for (; change != changes.end(); ++change) {
    expectChange(**change);
  }
  if (next != fresh.records().end()) {
    fail(Acad::eFilerError, recordText(next->handle), "the new file has it, and should not");
  }
}

void compareSections(const DwgFile& old, const DwgFile& fresh, const FileChanges& changes) {
  const auto expect = [](std::string_view name, std::string_view wanted, std::string_view got) {
    if (wanted != got) {
      fail(Acad::eFilerError, std::string(name), "it is not in the new file as it should be");
    }
  };
  expect("AcDb:Header", changes.headerVariables ? *changes.headerVariables : old.headerVariables(),
         fresh.headerVariables());
  expect("AcDb:Classes", changes.classes ? *changes.classes : old.classes(), fresh.classes());
  expect(sectionText(SectionName::Template),
         changes.templateSection ? *changes.templateSection : old.section(SectionName::Template),
         fresh.section(SectionName::Template));
  const std::vector<std::string> names = old.sectionNames();
  if (names != fresh.sectionNames()) {
    fail(Acad::eFilerError, "", "the new file has other sections");
  }
  for (const std::string& name : names) {
    const bool isNew =
        name == sectionText(SectionName::Header) || name == sectionText(SectionName::Classes) ||
        name == sectionText(SectionName::Handles) || name == sectionText(SectionName::Objects) ||
        name == sectionText(SectionName::Template);
    if (!isNew) {
      expect(name, old.sectionNamed(name), fresh.sectionNamed(name));
    }
  }
}

}  // namespace

ContainerChanges DwgFile::containerChanges(const FileChanges& changes) const {
  const std::vector<const RecordChange*> sorted = inOrder(changes.records);
  check(sorted, *this);
  MapMerger merger(*m_container, hasHandleBits());
  Warnings ignored;
  auto change = sorted.begin();
  for (const MapEntry& entry : readMap(ignored)) {
    for (; change != sorted.end() && (*change)->handle < entry.handle; ++change) {
      merger.add(**change);
    }
    if (change != sorted.end() && (*change)->handle == entry.handle) {
      merger.change(entry, **change++);
    } else {
      merger.keep(entry);
    }
  }
  for (; change != sorted.end(); ++change) {
    merger.add(**change);
  }
  ContainerChanges all = merger.finish();
  const auto framed = [&](SectionName name, FramedSection which, const std::string& contents) {
    return withContents(section(name), which, m_version, m_maintenance, contents);
  };
  if (changes.headerVariables) {
    all.header = framed(SectionName::Header, FramedSection::Header, *changes.headerVariables);
  }
  if (changes.classes) {
    all.classes = framed(SectionName::Classes, FramedSection::Classes, *changes.classes);
  }
  all.templateSection = changes.templateSection;
  return all;
}

std::string DwgFile::written(const FileChanges& changes) const {
  if (changes.isEmpty()) {
    return bytes();
  }
  try {
    if (!m_whyReadOnly.empty()) {
      fail(Acad::eNotApplicable, "", m_whyReadOnly);
    }
    DwgFile fresh(m_container->written(containerChanges(changes)), m_fileName);
    if (!fresh.whyReadOnly().empty()) {
      fail(Acad::eFilerError, "", "the new file is not whole: " + fresh.whyReadOnly());
    }
    compareRecords(*this, fresh, inOrder(changes.records));
    compareSections(*this, fresh, changes);
    return fresh.m_container->takeBytes();
  } catch (const Damage& damage) {
    FileError error(Acad::eFilerError, damage.what());
    error.fileName = m_fileName;
    throw error;
  } catch (FileError& error) {
    error.fileName = m_fileName;
    throw;
  }
}

}  // namespace quoin::dwg
