// Drawings that other projects publish lie outside the source tree; tests that want them find
// them through QUOIN_SHARED_DATA or beside the source tree, and skip themselves where they are
// absent.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace quoin::test {

/// The folder of shared drawings; empty when there is none.
inline std::filesystem::path sharedDataFolder() {
  std::error_code ignored;
  if (const char* named = std::getenv("QUOIN_SHARED_DATA")) {
    return std::filesystem::is_directory(named, ignored) ? named : std::filesystem::path{};
  }
  const std::filesystem::path beside =
      std::filesystem::path(QUOIN_SOURCE_DIR).parent_path() / "shared" / "data";
  return std::filesystem::is_directory(beside, ignored) ? beside : std::filesystem::path{};
}

/// The shared files with this extension (".dxf"), sorted by name.
inline std::vector<std::filesystem::path> sharedFiles(const std::string& extension) {
  std::vector<std::filesystem::path> files;
  const std::filesystem::path folder = sharedDataFolder();
  if (folder.empty()) {
    return files;
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == extension) {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// All bytes of a file.
inline std::string bytesOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

}  // namespace quoin::test
