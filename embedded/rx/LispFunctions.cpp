#include "embedded/rx/LispFunctions.h"

#include "acedads.h"
#include "afxwin.h"
#include "embedded/rx/Runtime.h"

namespace quoin::rx {
namespace {

std::wstring keyOf(const wchar_t* name) {
  return CString(name).MakeUpper().GetString();
}

/// A value for the time of one scope.
class Restored {
 public:
  Restored(int& place, int value) : m_place(place), m_before(std::exchange(place, value)) {}
  ~Restored() { m_place = m_before; }
  Restored(const Restored&) = delete;
  Restored& operator=(const Restored&) = delete;

 private:
  int& m_place;
  int m_before;
};

int resultOf(bool succeeded) {
  return succeeded ? RTNORM : RTERROR;
}

LispFunctions* currentFunctions() {
  Runtime* const runtime = Runtime::current();
  return runtime ? &runtime->lispFunctions() : nullptr;
}

}  // namespace

bool LispFunctions::define(const wchar_t* name, int code) {
  const std::wstring key = keyOf(name);
  if (!m_served || key.empty() || code < 0) {
    return false;
  }
  const auto [place, isNew] = m_definitions.try_emplace(key, Definition{m_served, code});
  if (!isNew && place->second.module != m_served) {
    return false;
  }
  place->second.code = code;
  return true;
}

bool LispFunctions::undefine(const wchar_t* name, int code) {
  const auto found = m_definitions.find(keyOf(name));
  if (found == m_definitions.end() || found->second.module != m_served ||
      found->second.code != code) {
    return false;
  }
  m_definitions.erase(found);
  m_functions.erase({m_served, code});
  return true;
}

bool LispFunctions::setFunction(int (*function)(), int code) {
  if (!m_served || !function || code < 0) {
    return false;
  }
  m_functions[{m_served, code}] = function;
  return true;
}

void LispFunctions::removeFunctionsOf(const void* module) {
  std::erase_if(m_definitions, [&](const auto& entry) { return entry.second.module == module; });
  std::erase_if(m_functions, [&](const auto& entry) { return entry.first.first == module; });
}

bool LispFunctions::call(const wchar_t* name) {
  const auto found = m_definitions.find(keyOf(name));
  if (found == m_definitions.end()) {
    return false;
  }
  const Definition definition = found->second;
  const Restored restored(m_calledCode, definition.code);
  const auto function = m_functions.find({definition.module, definition.code});
  if (function != m_functions.end()) {
    function->second();
  } else {
    m_invoke(definition.module);
  }
  return true;
}

bool LispFunctions::isDefined(const wchar_t* name) const {
  return m_definitions.contains(keyOf(name));
}

}  // namespace quoin::rx

int acedDefun(const ACHAR* name, short functionCode) {
  auto* const functions = quoin::rx::currentFunctions();
  return quoin::rx::resultOf(functions && functions->define(name, functionCode));
}

int acedUndef(const ACHAR* name, short functionCode) {
  auto* const functions = quoin::rx::currentFunctions();
  return quoin::rx::resultOf(functions && functions->undefine(name, functionCode));
}

int acedRegFunc(int (*function)(), int functionCode) {
  auto* const functions = quoin::rx::currentFunctions();
  return quoin::rx::resultOf(functions && functions->setFunction(function, functionCode));
}

int acedGetFunCode() {
  auto* const functions = quoin::rx::currentFunctions();
  const int code = functions ? functions->calledCode() : -1;
  return code < 0 ? RTERROR : code;
}
