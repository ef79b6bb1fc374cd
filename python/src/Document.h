// A drawing as a document for Python: what quoin.Drawing holds, and how it names entities.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "commands/CommandError.h"
#include "commands/Drawing.h"
#include "python/src/Arrays.h"
#include "python/src/Engine.h"

namespace quoin::python {

using commands::Drawing;

std::vector<std::string> inUtf8(const std::vector<std::wstring>& texts);
/// 0 for an empty one.
std::uint64_t parseHandle(const std::string& text);

/// A drawing with names for its entities: their handles, and numbers beyond all handles where the
/// file gives none.
class Document {
 public:
  /// `units` are what a drawing unit is, whatever the file says; "" for what it says.
  /// Fails: throws CommandError, as Drawing does; Usage for units that nobody knows.
  Document(const std::string& file, const std::string& codePage, const std::string& units);

  std::uint64_t nameOf(const AcDbObjectId& id);

  /// Of whatever object has the name; null for none.
  AcDbObjectId objectWith(std::uint64_t name);

  /// Fails: throws CommandError (EntityFailed) for a name that no entity has.
  AcDbObjectId entityWith(std::uint64_t name);

  Drawing drawing;

 private:
  static constexpr std::uint64_t kFirstNumber = std::uint64_t{1} << 63;

  std::map<AcDbObjectId, std::uint64_t> m_numberOf;
  std::vector<AcDbObjectId> m_unnamed;
};

/// Where lines of a drawing are: their entities, and segments of polylines or -1.
class Places {
 public:
  void add(Document& document, const AcDbObjectId& entity, int segment) {
    m_handles.push_back(document.nameOf(entity));
    m_segments.push_back(segment);
  }
  /// (handles, segments)
  py::tuple arrays() {
    return py::make_tuple(toArray(std::move(m_handles)), toArray(std::move(m_segments)));
  }

 private:
  std::vector<std::uint64_t> m_handles;
  std::vector<std::int32_t> m_segments;
};

/// The layers that patterns name; without any those that look like walls.
/// Fails: throws CommandError (NothingToDo) where there is none.
std::set<std::wstring> chooseLayers(Drawing& drawing, const std::vector<std::string>& patterns);

/// What quoin.Drawing holds. The document ends on Quoin's thread, when nobody uses it any more.
class DrawingFile {
 public:
  DrawingFile(const std::string& file, const std::string& codePage, const std::string& units,
              const py::object& progress) {
    m_document = onQuoinThread(
        [file, codePage, units] {
          return std::shared_ptr<Document>(
              new Document(file, codePage, units),
              [](Document* document) { postToQuoinThread([document] { delete document; }); });
        },
        progress);
  }

  void close() { m_document.reset(); }
  bool isClosed() const { return !m_document; }

  /// Runs `work` with the document.
  template <class Work>
  auto with(Work work, const py::object& progress = py::none()) const {
    if (!m_document) {
      throw commands::CommandError(commands::ExitCode::Usage, "the drawing is closed");
    }
    return onQuoinThread(
        [document = m_document, work = std::move(work)] { return work(*document); }, progress);
  }

 private:
  std::shared_ptr<Document> m_document;
};

/// Plan reading on documents.
void addDrawingPlans(py::class_<DrawingFile>& drawing);

}  // namespace quoin::python
