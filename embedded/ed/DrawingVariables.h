// System variables that a drawing keeps in its own header: read from the document's database,
// and written back to it where the database can be told.
#pragma once

#include <string_view>

#include "embedded/ed/SystemVariables.h"

class AcDbDatabase;

namespace quoin::ed {

struct DrawingVariable {
  const wchar_t* name;  // in capitals
  VariableValue (*read)(const AcDbDatabase& database);
  /// Null: a value that is set stays with the document and does not reach the drawing.
  /// Fails: false when the drawing does not take the value.
  bool (*write)(AcDbDatabase& database, const VariableValue& value);
};

/// The variable of this name (in capitals) that drawings keep; null for any other.
const DrawingVariable* findDrawingVariable(std::wstring_view name);

}  // namespace quoin::ed
