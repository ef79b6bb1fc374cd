// What the frame that is linked into every module and the host say to each other: the
// version handshake and the outcome of the library's own load hook.
#pragma once

#include "afxext.h"
#include "rxdefs.h"

/// The version of the host API, in the high half the release (18), in the low half 0.
inline constexpr Adesk::Int32 kAcRxApiVersion = 0x00120000;

/// The names of the two functions that the host looks up in a module.
inline constexpr const char* kAcRxEntryPointName = "acrxEntryPoint";
inline constexpr const char* kAcRxApiVersionName = "acrxGetApiVersion";

/// Writes the host API version that the module was built against; null is left alone. The
/// frame defines it; the host calls it once the library is open.
extern "C" AFX_EXT_API void acrxGetApiVersion(Adesk::Int32* version);

/// Serves one application message. The module defines it.
extern "C" AFX_EXT_API AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt);

/// Told by the frame when the module's DllMain refuses its attachment, so that the host can
/// close the library again.
HOST_API void acrxNoteAttachRefused();

/// Told by the frame, with an address inside the library, before the module's static objects
/// go. When the process ends under a module that is still loaded, this is the host's last
/// chance to unload it in order.
HOST_API void acrxNoteDetaching(const void* addressInLibrary);
