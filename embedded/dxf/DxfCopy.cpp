#include "embedded/dxf/DxfCopy.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/Tag.h"

namespace quoin::dxf {
namespace {

constexpr int kGroupCode = 102;
constexpr std::size_t kPieceSize = std::size_t{1} << 20;
constexpr std::size_t kBinaryMarkSize = 22;

bool isDictionary(std::string_view kind) {
  return kind == "DICTIONARY" || kind == "ACDBDICTIONARYWDFLT";
}

/// Copies the tags of a DXF file from one form into another, record by record.
class Copy {
 public:
  Copy(const RecordStore& store, const std::function<void(std::string_view)>& sink,
       const Progress& progress)
      : m_store(&store), m_sink(&sink), m_progress(&progress), m_target(store.format()) {
    m_target.form = Form::Ascii;
    m_target.narrowGroupCodes = false;
    if (store.format().form == Form::Binary) {
      m_target.lineEnd = "\r\n";
      m_target.groupCodeColumns = 3;
    }
    findLeftOut();
  }

  void run() {
    std::string bytes;
    m_store->save([&](std::string_view piece) { bytes += piece; });
    std::string_view tags = bytes;
    if (m_store->format().form == Form::Binary) {
      tags.remove_prefix(std::min(kBinaryMarkSize, tags.size()));
    }
    TagCursor cursor(tags, m_store->format());
    TagView tag;
    std::vector<TagView> record;
    while (cursor.next(tag)) {
      if (tag.code == 0 && !record.empty()) {
        put(record);
        record.clear();
        flush(cursor.offset(), tags.size());
      }
      record.push_back(tag);
    }
    put(record);
    (*m_sink)(m_out);
  }

 private:
  void findLeftOut() {
    const DrawingSource* const source = m_store->source();
    for (const AcDbStub& stub : m_store->stubs()) {
      if (source != nullptr && stub.handle != 0 && !stub.isNew && stub.role != Role::Table &&
          !source->isRead(stub.handle)) {
        m_leftOut.insert(stub.handle);
      }
    }
    // What belongs to a record that is left out goes with it.
    std::size_t before = 0;
    while (before != m_leftOut.size()) {
      before = m_leftOut.size();
      for (const AcDbStub* object : m_store->objects()) {
        if (m_leftOut.contains(ownerOf(*object))) {
          m_leftOut.insert(object->handle);
        }
      }
    }
  }

  /// The owner that stands in front of the first marker; 0 for none.
  std::uint64_t ownerOf(const AcDbStub& object) const {
    TagCursor cursor(object.bytes(), m_store->format());
    TagView tag;
    bool isInGroup = false;
    while (cursor.next(tag) && tag.code != 100) {
      if (tag.code == kGroupCode) {
        isInGroup = trimmedValue(tag).starts_with('{');
      } else if (tag.code == 330 && !isInGroup) {
        return handleOf(tag, m_store->format());
      }
    }
    return 0;
  }

  void flush(std::size_t done, std::size_t all) {
    if (m_out.size() < kPieceSize) {
      return;
    }
    (*m_sink)(m_out);
    m_out.clear();
    const double share = static_cast<double>(done) / static_cast<double>(all);
    if (*m_progress && !(*m_progress)(share)) {
      throw FileError(Acad::eUserBreak, "writing was stopped");
    }
  }

  bool refersToLeftOut(const TagView& tag) const {
    return !m_leftOut.empty() && tagType(tag.code) == TagType::Handle && tag.code != 5 &&
           tag.code != 105 && m_leftOut.contains(handleOf(tag, m_store->format()));
  }

  void put(const std::vector<TagView>& record) {
    if (record.empty()) {
      return;
    }
    const Format& source = m_store->format();
    const std::string_view kind = trimmedValue(record.front());
    if (isLeftOut(record)) {
      return;
    }
    bool isInGroup = false;
    for (std::size_t i = 0; i < record.size(); ++i) {
      const TagView& tag = record[i];
      if (tag.code == kGroupCode) {
        isInGroup = trimmedValue(tag).starts_with('{');
      }
      const bool namesLeftOut = isDictionary(kind) && tag.code == 3 && i + 1 < record.size() &&
                                refersToLeftOut(record[i + 1]);
      if (namesLeftOut) {
        ++i;
      } else if (!refersToLeftOut(tag)) {
        putTranscoded(m_out, tag, source, m_target);
      } else if (!isInGroup) {
        putHandle(m_out, tag.code, 0, m_target);
      }
    }
  }

  bool isLeftOut(const std::vector<TagView>& record) const {
    if (m_leftOut.empty()) {
      return false;
    }
    const auto handle = std::find_if(record.begin(), record.end(), [](const TagView& tag) {
      return tag.code == 5 || tag.code == 105;
    });
    return handle != record.end() && m_leftOut.contains(handleOf(*handle, m_store->format()));
  }

  const RecordStore* m_store;
  const std::function<void(std::string_view)>* m_sink;
  const Progress* m_progress;
  Format m_target;
  std::unordered_set<std::uint64_t> m_leftOut;
  std::string m_out;
};

}  // namespace

void writeDxfCopy(const RecordStore& store, const std::function<void(std::string_view)>& sink,
                  const Progress& progress) {
  Copy(store, sink, progress).run();
}

}  // namespace quoin::dxf
