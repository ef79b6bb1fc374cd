// What the editor keeps of one document behind its AcApDocument.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "embedded/ed/InputPrompts.h"
#include "embedded/ed/SystemVariables.h"
#include "embedded/ed/View.h"

class AcDbDatabase;

namespace quoin::ed {

struct DocumentState {
  std::wstring fileName;
  std::shared_ptr<AcDbDatabase> database;
  InputPrompts prompts;
  View view;
  UserSystem userSystem;
  VariableValues variables;
  bool isClosed = false;

  /// The last part of the path.
  std::wstring title() const;
  /// The path up to and with its last separator.
  std::wstring folder() const;
};

}  // namespace quoin::ed
