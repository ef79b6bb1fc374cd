// Starts the host, loads the module and its client module with the commands, and hands the
// command line over.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "embedded/os/Process.h"
#include "embedded/product/CommandLine.h"
#include "embedded/product/HostApplication.h"

namespace {

// Exit codes of the program itself; the commands' own are listed by `quoin --help`.
constexpr int kExitUnwritable = 5;
constexpr int kExitModuleMissing = 70;
constexpr int kExitInternalError = 71;

#if defined(_WIN32)
constexpr const char* kLibraryPrefix = "";
constexpr const char* kLibrarySuffix = ".dll";
#else
constexpr const char* kLibraryPrefix = "lib";
constexpr const char* kLibrarySuffix = ".so";
#endif

/// Where modules may lie: the folder that the user names, or else near the program.
std::vector<std::filesystem::path> moduleFolders() {
  if (const char* named = std::getenv("QUOIN_MODULES"); named && *named) {
    return {named};
  }
  const std::filesystem::path folder = quoin::os::programPath().parent_path();
  return {folder / ".." / QUOIN_LIBDIR, folder / ".." / "lib", folder};
}

/// The module's file; the first place it would be in when it is nowhere, so that the loader's
/// message names that.
std::filesystem::path findModule(const std::string& name) {
  const std::string file = kLibraryPrefix + name + kLibrarySuffix;
  const std::vector<std::filesystem::path> folders = moduleFolders();
  for (const std::filesystem::path& folder : folders) {
    std::error_code error;
    if (std::filesystem::exists(folder / file, error)) {
      return std::filesystem::canonical(folder / file, error);
    }
  }
  return (folders.front() / file).lexically_normal();
}

/// What was printed may wait in the stream yet. A report that nobody gets is no success, whatever
/// the command has done.
int withOutput(int code) {
  const bool isFlushed = std::fflush(stdout) == 0;
  const int error = errno;
  if (isFlushed && std::ferror(stdout) == 0) {
    return code;
  }
  std::fprintf(stderr, "quoin: the standard output cannot be written%s%s\n", isFlushed ? "" : ": ",
               isFlushed ? "" : std::strerror(error));
  return code == 0 ? kExitUnwritable : code;
}

int run(int argc, const char* const* argv) {
  quoin::os::reserveStandardStreams();
  quoin::os::watchForInterrupt();
  quoin::HostApplication host;
  try {
    host.loadModule(findModule("quoin"));
    host.loadModule(findModule("quoincommands"));
  } catch (const quoin::rx::ModuleError& error) {
    std::fprintf(stderr, "quoin: cannot load a module: %s\n", error.what());
    return kExitModuleMissing;
  }
  const quoin::product::CommandLineRunner runner = quoin::product::commandLineRunner();
  if (!runner) {
    std::fprintf(stderr, "quoin: no module offers commands\n");
    return kExitModuleMissing;
  }
  return withOutput(runner(argc, argv));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quoin: internal error: %s\n", error.what());
    return kExitInternalError;
  }
}
