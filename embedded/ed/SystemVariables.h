// System variables: a table with one row a variable (type, first value, range, whether it can
// be set, whether each document has its own), and the values that were set. What the view, the
// user coordinate system and the file name decide is computed from them when it is read; what
// the drawing keeps in its header is read from there.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "adsdef.h"
#include "hostapi.h"

namespace quoin::ed {

struct DocumentState;

enum class VariableType : std::uint8_t { Short, Real, Text, Point2d, Point3d };

/// A value of any type: a Short or Real is in numbers[0], a point's coordinates are in
/// numbers.
struct VariableValue {
  double numbers[3] = {0.0, 0.0, 0.0};
  std::wstring text;
};

/// Values by variable name.
using VariableValues = std::map<std::wstring, VariableValue, std::less<>>;

/// One row of the table.
struct VariableRow {
  const wchar_t* name;  // in capitals
  VariableType type;
  bool isReadOnly;
  bool isPerDocument;
  VariableValue (*compute)(const DocumentState& document);  // null: a stored value
  double first[3];
  const wchar_t* firstText;
  double least;  // of a number; both ends belong to the range
  double most;
};

/// The whole table, sorted by name.
HOST_API std::span<const VariableRow> variableTable();
/// The row of a variable by its name in any letter case; null for an unknown one.
HOST_API const VariableRow* findVariable(std::wstring_view name);

class HOST_API SystemVariables {
 public:
  /// Reads a variable for a document (null: none is open) into `result`. A text is a new one
  /// that the caller frees.
  /// Fails: false for an unknown name, and for a document's variable without a document.
  bool get(std::wstring_view name, const DocumentState* document, resbuf& result) const;
  /// Sets a variable. Integers come as RTSHORT, points as RTPOINT or RT3DPOINT.
  /// Fails: false, with nothing changed, as get and for a read-only variable, a value of
  ///        another type and one out of range.
  bool set(std::wstring_view name, DocumentState* document, const resbuf& value);

 private:
  VariableValues m_session;
};

}  // namespace quoin::ed
