// The mark of everything that the CAD product's platform implements and a module calls. The
// platform's own library defines PLATFORM_BUILD; for everybody else the names are imports.
#pragma once

#if defined(_WIN32)
#if defined(PLATFORM_BUILD)
#define PLATFORM_API __declspec(dllexport)
#else
#define PLATFORM_API __declspec(dllimport)
#endif
#else
#define PLATFORM_API __attribute__((visibility("default")))
#endif
