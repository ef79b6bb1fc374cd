#include "embedded/os/DynamicLibrary.h"

#include <dlfcn.h>
#include <link.h>

#include <string>

namespace quoin::os {
namespace {

/// What the system has to say about the last failure, without the path in front that the
/// caller knows.
std::string lastCause(const std::string& path) {
  const char* const text = dlerror();
  std::string cause = text ? text : "unknown cause";
  const std::string prefix = path + ": ";
  return cause.starts_with(prefix) ? cause.substr(prefix.size()) : cause;
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::filesystem::path& path) {
  // A name without a folder would be searched for in the system's folders.
  const std::string file = std::filesystem::absolute(path).string();
  m_handle = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!m_handle) {
    throw LibraryError(lastCause(file));
  }
}

void* DynamicLibrary::symbol(const char* name) const {
  void* const address = m_handle ? dlsym(m_handle, name) : nullptr;
  // dlsym also finds what the library's dependencies define; only its own counts.
  return address && contains(address) ? address : nullptr;
}

bool DynamicLibrary::contains(const void* address) const {
  link_map* own = nullptr;
  void* definer = nullptr;
  Dl_info info;
  return m_handle && dlinfo(m_handle, RTLD_DI_LINKMAP, &own) == 0 &&
         dladdr1(address, &info, &definer, RTLD_DL_LINKMAP) != 0 && own == definer;
}

void DynamicLibrary::close() {
  if (m_handle) {
    dlclose(std::exchange(m_handle, nullptr));
  }
}

}  // namespace quoin::os
