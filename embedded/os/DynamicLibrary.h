// A shared library of the process: opened by path, asked for symbols, closed again.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "hostapi.h"

namespace quoin::os {

/// The file cannot be opened as a shared library; the text gives the system's cause.
class HOST_API LibraryError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Owns one reference to a library; the last reference closes it, which runs its unload code.
class HOST_API DynamicLibrary {
 public:
  DynamicLibrary() = default;
  /// Opens the library with all its symbols resolved; opening one that is open already adds a
  /// reference. The path is taken as it is, never searched for in system folders.
  /// Fails: throws LibraryError.
  explicit DynamicLibrary(const std::filesystem::path& path);
  ~DynamicLibrary() { close(); }
  DynamicLibrary(DynamicLibrary&& other) noexcept
      : m_handle(std::exchange(other.m_handle, nullptr)) {}
  DynamicLibrary& operator=(DynamicLibrary&& other) noexcept {
    std::swap(m_handle, other.m_handle);
    return *this;
  }

  /// The address behind an unmangled name; null when the library has none.
  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(symbol(name));
  }

  /// Whether both are references to one library.
  bool isSameAs(const DynamicLibrary& other) const { return m_handle == other.m_handle; }
  /// Whether the address lies in the library's own code or data.
  bool contains(const void* address) const;
  bool isOpen() const { return m_handle != nullptr; }
  void close();
  /// Lets go of the library without giving its reference back.
  void release() { m_handle = nullptr; }

 private:
  void* symbol(const char* name) const;
  void* m_handle = nullptr;
};

}  // namespace quoin::os
