// Makes an object the current one of its kind while it lives. The host's plain functions
// reach the running host through such pointers; there is one host at a time.
#pragma once

#include <stdexcept>
#include <string>

namespace quoin::rx {

template <class T>
class CurrentGuard {
 public:
  /// Fails: throws std::logic_error when there is a current object already.
  CurrentGuard(T*& current, T* object, const char* kind) : m_current(current) {
    if (current) {
      throw std::logic_error(std::string("there is a ") + kind + " already");
    }
    current = object;
  }
  ~CurrentGuard() { m_current = nullptr; }
  CurrentGuard(const CurrentGuard&) = delete;
  CurrentGuard& operator=(const CurrentGuard&) = delete;

 private:
  T*& m_current;
};

}  // namespace quoin::rx
