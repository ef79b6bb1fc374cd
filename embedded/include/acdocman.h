// Documents: the open drawings of the editor, and which of them is current. A document object
// stays valid until the host ends, even after it was closed; then it has no database and its
// input point manager takes no reactors.
#pragma once

#include <memory>

#include "acedinpt.h"

class AcDbDatabase;

namespace quoin::ed {
class Editor;
struct DocumentState;
}  // namespace quoin::ed

class HOST_API AcApDocument {
 public:
  ~AcApDocument();
  AcApDocument(const AcApDocument&) = delete;
  AcApDocument& operator=(const AcApDocument&) = delete;

  /// The drawing's path; its title alone when it has never been saved.
  const ACHAR* fileName() const;
  /// The last part of the path.
  const ACHAR* docTitle() const;
  /// Null when the document was opened without a database and after it was closed.
  AcDbDatabase* database() const;
  /// Never null.
  AcEdInputPointManager* inputPointManager() const;
  /// Whether no prompt is under way.
  bool isQuiescent() const;

 private:
  friend class quoin::ed::Editor;
  explicit AcApDocument(std::unique_ptr<quoin::ed::DocumentState> state);
  std::unique_ptr<quoin::ed::DocumentState> m_state;
};

/// Walks the documents that are open when it is made, in the order in which they were opened.
class HOST_API AcApDocumentIterator {
 public:
  AcApDocumentIterator();
  ~AcApDocumentIterator();

  bool done() const { return m_next >= m_documents.length(); }
  void step() { ++m_next; }
  /// Null when done.
  AcApDocument* document() const;

 private:
  AcArray<AcApDocument*> m_documents;
  int m_next = 0;
};

class HOST_API AcApDocManager {
 public:
  /// The document that commands act on; null when none is open or no host runs.
  AcApDocument* curDocument() const;
  AcApDocument* mdiActiveDocument() const { return curDocument(); }
  int documentCount() const;
  /// A new iterator that the caller deletes.
  AcApDocumentIterator* newAcApDocumentIterator() const;
  /// The open document of this database; null if there is none.
  AcApDocument* document(const AcDbDatabase* database) const;
  /// Makes an open document the current one.
  /// Fails: eInvalidInput for null and for a closed document.
  Acad::ErrorStatus setCurDocument(AcApDocument* document);
};

/// The document manager, never null: without a running host it knows no documents.
HOST_API AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()
/// The current document; null if there is none.
inline AcApDocument* curDoc() {
  return acDocManager->curDocument();
}
