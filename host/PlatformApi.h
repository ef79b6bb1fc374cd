// The mark of everything that the CAD product's platform implements and a module calls. The
// library that implements the platform is compiled with PLATFORM_BUILD (here the embedded host's:
// embedded/CMakeLists.txt); for everybody else the names are imports.
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
