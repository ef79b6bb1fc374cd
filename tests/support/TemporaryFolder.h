// A folder of its own for a test, gone at its end.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>

namespace quoin::test {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do {
      m_path = std::filesystem::temp_directory_path() /
               ("quoin-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(m_path));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::permissions(m_path, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return m_path; }
  std::string file(const std::string& name) const { return (m_path / name).string(); }

  std::string put(const std::string& name, std::string_view bytes) const {
    std::ofstream(m_path / name, std::ios::binary) << bytes;
    return file(name);
  }
  std::string get(const std::string& name) const {
    std::ifstream stream(m_path / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }
  /// The names in the folder: nothing may stay behind.
  std::set<std::string> names() const {
    std::set<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
      found.insert(entry.path().filename().string());
    }
    return found;
  }

 private:
  std::filesystem::path m_path;
};

}  // namespace quoin::test
