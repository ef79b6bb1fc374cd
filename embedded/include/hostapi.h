// The export macro of the host API: every class and function that the embedded host
// implements out of line carries it. Modules see the same declarations as imports.
#pragma once

#if defined(_WIN32)
#if defined(QUOINHOST_BUILD)
#define HOST_API __declspec(dllexport)
#else
#define HOST_API __declspec(dllimport)
#endif
#else
#define HOST_API __attribute__((visibility("default")))
#endif
