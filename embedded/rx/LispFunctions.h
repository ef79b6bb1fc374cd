// The AutoLISP functions that modules have defined, and the calls to them. A module without a
// registered function pointer is called through its kInvkSubrMsg handler.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "hostapi.h"

namespace quoin::rx {

class HOST_API LispFunctions {
 public:
  /// Sends kInvkSubrMsg to a module.
  using Invoke = std::function<void(const void* module)>;
  explicit LispFunctions(Invoke invoke) : m_invoke(std::move(invoke)) {}

  /// The module being served; null for none. The operations below without a module act for
  /// it and return false without one.
  void setServed(const void* module) { m_served = module; }

  bool define(const wchar_t* name, int code);
  bool undefine(const wchar_t* name, int code);
  bool setFunction(int (*function)(), int code);
  /// Drops whatever a module has defined.
  void removeFunctionsOf(const void* module);

  /// Calls a function by name, in any letter case.
  /// Fails: false when nobody has defined it.
  bool call(const wchar_t* name);
  /// The code of the function being called; -1 outside of a call.
  int calledCode() const { return m_calledCode; }
  bool isDefined(const wchar_t* name) const;

 private:
  struct Definition {
    const void* module;
    int code;
  };

  Invoke m_invoke;
  const void* m_served = nullptr;
  int m_calledCode = -1;
  std::map<std::wstring, Definition> m_definitions;
  std::map<std::pair<const void*, int>, int (*)()> m_functions;
};

}  // namespace quoin::rx
