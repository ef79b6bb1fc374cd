#include <algorithm>
#include <utility>

#include "acdocman.h"
#include "embedded/ed/DocumentState.h"
#include "embedded/ed/Editor.h"

using quoin::ed::DocumentState;
using quoin::ed::Editor;

namespace {

/// Where the last part of a path begins; both separators count on every platform.
std::size_t titleBegin(const std::wstring& path) {
  const std::size_t separator = path.find_last_of(L"/\\");
  return separator == std::wstring::npos ? 0 : separator + 1;
}

}  // namespace

std::wstring DocumentState::title() const {
  return fileName.substr(titleBegin(fileName));
}
std::wstring DocumentState::folder() const {
  return fileName.substr(0, titleBegin(fileName));
}

AcApDocument::AcApDocument(std::unique_ptr<DocumentState> state) : m_state(std::move(state)) {}
AcApDocument::~AcApDocument() = default;

const ACHAR* AcApDocument::fileName() const {
  return m_state->fileName.c_str();
}
const ACHAR* AcApDocument::docTitle() const {
  return m_state->fileName.c_str() + titleBegin(m_state->fileName);
}
AcDbDatabase* AcApDocument::database() const {
  return m_state->database.get();
}
AcEdInputPointManager* AcApDocument::inputPointManager() const {
  return &m_state->prompts.pointManager();
}
bool AcApDocument::isQuiescent() const {
  return m_state->prompts.isQuiescent();
}

AcApDocumentIterator::AcApDocumentIterator() {
  if (const Editor* const editor = Editor::current()) {
    for (AcApDocument* const document : editor->documents()) {
      m_documents.append(document);
    }
  }
}
AcApDocumentIterator::~AcApDocumentIterator() = default;

AcApDocument* AcApDocumentIterator::document() const {
  return done() ? nullptr : m_documents[m_next];
}

AcApDocument* AcApDocManager::curDocument() const {
  const Editor* const editor = Editor::current();
  return editor ? editor->currentDocument() : nullptr;
}

int AcApDocManager::documentCount() const {
  const Editor* const editor = Editor::current();
  return editor ? static_cast<int>(editor->documents().size()) : 0;
}

AcApDocumentIterator* AcApDocManager::newAcApDocumentIterator() const {
  return new AcApDocumentIterator;
}

AcApDocument* AcApDocManager::document(const AcDbDatabase* database) const {
  const Editor* const editor = Editor::current();
  if (!editor || !database) {
    return nullptr;
  }
  const auto& open = editor->documents();
  const auto found = std::find_if(open.begin(), open.end(), [&](const AcApDocument* document) {
    return document->database() == database;
  });
  return found == open.end() ? nullptr : *found;
}

Acad::ErrorStatus AcApDocManager::setCurDocument(AcApDocument* document) {
  Editor* const editor = Editor::current();
  return editor && document && editor->setCurrentDocument(document) ? Acad::eOk
                                                                    : Acad::eInvalidInput;
}

AcApDocManager* acDocManagerPtr() {
  static AcApDocManager manager;
  return &manager;
}
