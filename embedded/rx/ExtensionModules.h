// The extension modules that have registered with the host's framework in this process.
#pragma once

#include <cstddef>
#include <cstdint>

#include "afxext.h"

namespace quoin::rx {

/// What has happened to extension modules since the process began.
struct ExtensionModuleCounts {
  std::uint64_t initialised = 0;  // successful AfxInitExtensionModule calls
  std::uint64_t terminated = 0;   // AfxTermExtensionModule calls for an initialised module
  std::size_t libraries = 0;      // CDynLinkLibrary objects that exist now
};

HOST_API ExtensionModuleCounts extensionModuleCounts();

}  // namespace quoin::rx
