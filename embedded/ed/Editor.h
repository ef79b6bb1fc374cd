// The editor of the embedded host: its documents, the current one, and everything with which
// other code plays the user: prompts, views, user coordinate systems, opening and closing.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "acdocman.h"
#include "embedded/ed/CommandInput.h"
#include "embedded/ed/InputPrompts.h"
#include "embedded/ed/SystemVariables.h"
#include "embedded/ed/View.h"
#include "embedded/rx/CurrentGuard.h"

namespace quoin::ed {

class HOST_API Editor {
 public:
  Editor();
  /// Closes the open documents, last opened first.
  ~Editor();
  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  /// The running host's editor; null when no host runs.
  static Editor* current();

  /// Opens a document and makes it the current one. Without a database it is a document for
  /// input and view alone.
  AcApDocument& openDocument(std::wstring fileName, std::shared_ptr<AcDbDatabase> database = {});
  /// Closes an open document: cancels its prompts, drops its reactors and its database. When it
  /// was current, the open document that was opened last becomes current. Its object stays.
  void closeDocument(AcApDocument& document);
  /// The open documents in the order in which they were opened.
  const std::vector<AcApDocument*>& documents() const { return m_open; }
  bool isOpen(const AcApDocument* document) const;

  /// Null when no document is current.
  AcApDocument* currentDocument() const { return m_currentDocument; }
  /// Null leaves no document current.
  /// Fails: false for a closed document.
  bool setCurrentDocument(AcApDocument* document);

  /// What answers the prompts of commands.
  CommandInput& commandInput() { return m_commandInput; }

  // The user's side of a document.
  InputPrompts& prompts(AcApDocument& document);
  const View& view(const AcApDocument& document) const;
  /// Fails: false for a view with nothing to look at; the old one stays.
  bool setView(AcApDocument& document, const View& view);
  const UserSystem& userSystem(const AcApDocument& document) const;
  /// Fails: false when the axes are no unit vectors normal to each other.
  bool setUserSystem(AcApDocument& document, const UserSystem& system);

  /// System variables of the current document and the session, as acedGetVar and acedSetVar.
  bool getVariable(std::wstring_view name, resbuf& result) const;
  bool setVariable(std::wstring_view name, const resbuf& value);

  /// Called when a document was opened and when it is about to close; it is current then.
  struct Hooks {
    std::function<void(AcApDocument&)> onOpened = {};
    std::function<void(AcApDocument&)> onClosing = {};
  };
  void setHooks(Hooks hooks) { m_hooks = std::move(hooks); }

 private:
  DocumentState& stateOf(const AcApDocument& document) const;

  static Editor* s_current;
  rx::CurrentGuard<Editor> m_guard;
  Hooks m_hooks;
  SystemVariables m_variables;
  CommandInput m_commandInput;
  // Closed documents too: modules may still hold them.
  std::vector<std::unique_ptr<AcApDocument>> m_documents;
  std::vector<AcApDocument*> m_open;
  AcApDocument* m_currentDocument = nullptr;
};

}  // namespace quoin::ed
