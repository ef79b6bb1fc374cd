#include "embedded/ed/Editor.h"

#include <algorithm>
#include <utility>

#include "embedded/ed/DocumentState.h"

namespace quoin::ed {

Editor* Editor::s_current = nullptr;

Editor* Editor::current() {
  return s_current;
}

Editor::Editor() : m_guard(s_current, this, "running editor") {}

Editor::~Editor() {
  while (!m_open.empty()) {
    closeDocument(*m_open.back());
  }
}

AcApDocument& Editor::openDocument(std::wstring fileName, std::shared_ptr<AcDbDatabase> database) {
  auto state = std::make_unique<DocumentState>();
  state->fileName = std::move(fileName);
  state->database = std::move(database);
  m_documents.emplace_back(new AcApDocument(std::move(state)));
  AcApDocument& document = *m_documents.back();
  m_open.push_back(&document);
  m_currentDocument = &document;
  if (m_hooks.onOpened) {
    m_hooks.onOpened(document);
  }
  return document;
}

void Editor::closeDocument(AcApDocument& document) {
  if (!isOpen(&document)) {
    return;
  }
  AcApDocument* const before = std::exchange(m_currentDocument, &document);
  if (m_hooks.onClosing) {
    m_hooks.onClosing(document);
  }
  DocumentState& state = stateOf(document);
  state.prompts.close();
  state.isClosed = true;
  state.database.reset();
  std::erase(m_open, &document);
  if (before != &document) {
    m_currentDocument = before;
  } else {
    m_currentDocument = m_open.empty() ? nullptr : m_open.back();
  }
}

bool Editor::isOpen(const AcApDocument* document) const {
  return std::find(m_open.begin(), m_open.end(), document) != m_open.end();
}

bool Editor::setCurrentDocument(AcApDocument* document) {
  if (document && !isOpen(document)) {
    return false;
  }
  m_currentDocument = document;
  return true;
}

InputPrompts& Editor::prompts(AcApDocument& document) {
  return stateOf(document).prompts;
}

const View& Editor::view(const AcApDocument& document) const {
  return stateOf(document).view;
}

bool Editor::setView(AcApDocument& document, const View& view) {
  if (!view.isValid()) {
    return false;
  }
  stateOf(document).view = view;
  return true;
}

const UserSystem& Editor::userSystem(const AcApDocument& document) const {
  return stateOf(document).userSystem;
}

bool Editor::setUserSystem(AcApDocument& document, const UserSystem& system) {
  if (!system.isValid()) {
    return false;
  }
  stateOf(document).userSystem = system;
  return true;
}

bool Editor::getVariable(std::wstring_view name, resbuf& result) const {
  return m_variables.get(name, m_currentDocument ? &stateOf(*m_currentDocument) : nullptr, result);
}

bool Editor::setVariable(std::wstring_view name, const resbuf& value) {
  return m_variables.set(name, m_currentDocument ? &stateOf(*m_currentDocument) : nullptr, value);
}

DocumentState& Editor::stateOf(const AcApDocument& document) const {
  return *document.m_state;
}

}  // namespace quoin::ed
