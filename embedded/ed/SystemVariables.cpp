#include "embedded/ed/SystemVariables.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

#include "acutmem.h"
#include "adscodes.h"
#include "embedded/ed/DocumentState.h"
#include "embedded/ed/DrawingVariables.h"

namespace quoin::ed {
namespace {

// The longest text that the host takes for a variable.
constexpr std::size_t kLongestText = 255;

VariableValue firstValue(const VariableRow& row) {
  VariableValue value;
  std::copy(std::begin(row.first), std::end(row.first), value.numbers);
  value.text = row.firstText ? row.firstText : L"";
  return value;
}

/// The drawing's side of a document's variable; null when the drawing does not keep it.
const DrawingVariable* drawingVariable(const VariableRow& row, const DocumentState* document) {
  const bool hasDrawing = row.isPerDocument && document && document->database;
  return hasDrawing ? findDrawingVariable(row.name) : nullptr;
}

/// What was set, or else what the drawing says, or else the first value.
VariableValue currentValue(const VariableRow& row, const DocumentState* document,
                           const VariableValues& stored) {
  const auto found = stored.find(std::wstring_view(row.name));
  if (found != stored.end()) {
    return found->second;
  }
  const DrawingVariable* const kept = drawingVariable(row, document);
  return kept ? kept->read(*document->database) : firstValue(row);
}

bool isInRange(const VariableRow& row, double number) {
  return std::isfinite(number) && number >= row.least && number <= row.most;
}

std::optional<VariableValue> pointFrom(const resbuf& value, bool keepsZ) {
  if (value.restype != RTPOINT && value.restype != RT3DPOINT) {
    return std::nullopt;
  }
  VariableValue result;
  const int coordinates = keepsZ && value.restype == RT3DPOINT ? 3 : 2;
  for (int i = 0; i < coordinates; ++i) {
    if (!std::isfinite(value.resval.rpoint[i])) {
      return std::nullopt;
    }
    result.numbers[i] = value.resval.rpoint[i];
  }
  return result;
}

/// The value for a row; nothing when type or range do not fit.
std::optional<VariableValue> valueFrom(const VariableRow& row, const resbuf& value) {
  VariableValue result;
  switch (row.type) {
    case VariableType::Short:
      result.numbers[0] = value.resval.rint;
      return value.restype == RTSHORT && isInRange(row, result.numbers[0]) ? std::optional(result)
                                                                           : std::nullopt;
    case VariableType::Real:
      if (value.restype != RTREAL || !isInRange(row, value.resval.rreal)) {
        return std::nullopt;
      }
      result.numbers[0] = value.resval.rreal;
      return result;
    case VariableType::Text:
      if (value.restype != RTSTR || !value.resval.rstring) {
        return std::nullopt;
      }
      result.text = value.resval.rstring;
      return result.text.size() <= kLongestText ? std::optional(result) : std::nullopt;
    case VariableType::Point2d:
      return pointFrom(value, false);
    case VariableType::Point3d:
      return pointFrom(value, true);
  }
  return std::nullopt;
}

bool writeValue(const VariableRow& row, const VariableValue& value, resbuf& result) {
  resbuf written = {};
  switch (row.type) {
    case VariableType::Short:
      written.restype = RTSHORT;
      // A drawing may give more than a short number holds.
      written.resval.rint = static_cast<short>(std::clamp<double>(
          value.numbers[0], std::numeric_limits<short>::min(), std::numeric_limits<short>::max()));
      break;
    case VariableType::Real:
      written.restype = RTREAL;
      written.resval.rreal = value.numbers[0];
      break;
    case VariableType::Text:
      written.restype = RTSTR;
      if (acutNewString(value.text.c_str(), written.resval.rstring) != Acad::eOk) {
        return false;
      }
      break;
    case VariableType::Point2d:
    case VariableType::Point3d:
      written.restype = row.type == VariableType::Point2d ? RTPOINT : RT3DPOINT;
      std::copy(std::begin(value.numbers), std::end(value.numbers), written.resval.rpoint);
      break;
  }
  result = written;
  return true;
}

}  // namespace

bool SystemVariables::get(std::wstring_view name, const DocumentState* document,
                          resbuf& result) const {
  const VariableRow* const row = findVariable(name);
  if (!row || (row->isPerDocument && !document)) {
    return false;
  }
  if (row->compute) {
    return writeValue(*row, row->compute(*document), result);
  }
  const VariableValues& stored = row->isPerDocument ? document->variables : m_session;
  return writeValue(*row, currentValue(*row, document, stored), result);
}

bool SystemVariables::set(std::wstring_view name, DocumentState* document, const resbuf& value) {
  const VariableRow* const row = findVariable(name);
  if (!row || row->isReadOnly || (row->isPerDocument && !document)) {
    return false;
  }
  std::optional<VariableValue> wanted = valueFrom(*row, value);
  if (!wanted) {
    return false;
  }
  const DrawingVariable* const kept = drawingVariable(*row, document);
  if (kept && kept->write) {
    return kept->write(*document->database, *wanted);
  }
  VariableValues& values = row->isPerDocument ? document->variables : m_session;
  values.insert_or_assign(row->name, std::move(*wanted));
  return true;
}

}  // namespace quoin::ed
