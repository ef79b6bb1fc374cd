// The raster files that a drawing's images name: found, read and decoded. Nothing else opens a file
// that a drawing names, and this only where the user asked for it. Drawings come from anywhere, so
// that what they name may be missing, broken, endless or far too large.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "commands/picture/Raster.h"

namespace quoin::commands {

class ImageFiles {
 public:
  /// Images of more pixels are not read: decoding takes up to eight bytes each.
  static constexpr std::uint64_t kMostPixels = 100'000'000;
  static constexpr std::uint64_t kMostBytes = 512'000'000;
  /// And no more of them together, halved as they are shown: pages keep what is on them.
  static constexpr std::uint64_t kMostTogether = 250'000'000;

  struct File {
    std::string path;     // as the drawing has it, UTF-8
    std::string file;     // that was opened; empty for none
    std::string problem;  // why it does not show; empty where it does
  };

  explicit ImageFiles(const std::filesystem::path& drawing,
                      std::uint64_t mostTogether = kMostTogether)
      : m_folder(drawing.parent_path()), m_mostTogether(mostTogether) {}

  /// The image that a drawing names by `path`, no finer than needed where it is shown in so many
  /// dots; null where it cannot be shown.
  /// Fails: throws CommandError (Interrupted).
  std::shared_ptr<const Raster> raster(const std::string& path, double width, double height);
  /// What became of a path that was asked for.
  const File& fileOf(const std::string& path) { return entryOf(path).told; }

 private:
  struct Entry {
    File told;
    std::shared_ptr<const Raster> raster;
    int halvings = 0;          // of the file's size
    std::uint64_t pixels = 0;  // that count to those of all
  };

  Entry& entryOf(const std::string& path);
  /// The name of the first of the places of a path where something is; empty for none.
  std::string placeOf(const std::string& path) const;
  void load(Entry& entry, double width, double height);
  void keepWithin(std::uint64_t pixels);

  std::filesystem::path m_folder;
  std::uint64_t m_mostTogether;
  std::uint64_t m_together = 0;
  std::map<std::string, Entry> m_entries;
};

}  // namespace quoin::commands
