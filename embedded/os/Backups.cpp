#include "embedded/os/Backups.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

#include "embedded/os/File.h"

namespace quoin::os {
namespace {

constexpr std::string_view kEnding = ".bak";

struct Place {
  std::string folder;
  std::string name;
};

Place placeOf(const std::string& path, const std::string& folder) {
  const std::size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) {
    return {folder.empty() ? "." : folder, path};
  }
  return {folder.empty() ? path.substr(0, slash + 1) : folder, path.substr(slash + 1)};
}

/// The number in "plan.dxf.2.bak", 1 for "plan.dxf.bak"; 0 for other names.
std::size_t numberIn(std::string_view name, std::string_view original) {
  if (!name.starts_with(original) || !name.ends_with(kEnding) ||
      name.size() < original.size() + kEnding.size()) {
    return 0;
  }
  const std::string_view middle =
      name.substr(original.size(), name.size() - original.size() - kEnding.size());
  if (middle.empty()) {
    return 1;
  }
  std::size_t number = 0;
  const char* const end = middle.data() + middle.size();
  const auto read = std::from_chars(middle.data() + 1, end, number);
  const bool isNumber = middle[0] == '.' && middle.size() > 1 && middle[1] != '0' &&
                        read.ec == std::errc() && read.ptr == end;
  return isNumber && number > 1 ? number : 0;
}

}  // namespace

std::string backupPath(const std::string& path, std::size_t number, const std::string& folder) {
  const std::string numbered =
      (number > 1 ? "." + std::to_string(number) : std::string()) + std::string(kEnding);
  return folder.empty() ? path + numbered : folder + "/" + placeOf(path, folder).name + numbered;
}

std::vector<Backup> backupsOf(const std::string& path, const std::string& folder,
                              FileSystem& files) {
  std::string target = path;
  std::optional<FileFacts> facts;
  followLinks(files, target, facts);
  const Place place = placeOf(target, folder);
  std::vector<std::string> names;
  files.names(place.folder, names);
  std::vector<Backup> backups;
  for (const std::string& name : names) {
    if (const std::size_t number = numberIn(name, place.name)) {
      backups.push_back({number, backupPath(target, number, folder)});
    }
  }
  std::sort(backups.begin(), backups.end(),
            [](const Backup& a, const Backup& b) { return a.number < b.number; });
  return backups;
}

PutBack putBack(const std::string& path, const Backup& backup, const std::string& folder,
                FileSystem& files) {
  FileFacts kept;
  if (const int error = files.facts(backup.path, false, kept)) {
    throw FileFailure(Acad::eFileNotFound, backup.path,
                      "it cannot be looked at: " + std::generic_category().message(error));
  }
  if (kept.kind != FileFacts::Kind::Regular) {
    throw FileFailure(Acad::eFileAccessErr, backup.path, "it is no ordinary file");
  }
  AtomicFile::Options options;
  options.keepBackup = true;
  options.backupFolder = folder;
  options.newFileMode = kept.mode;
  AtomicFile file(path, options, files);
  file.write(readFile(backup.path, {}, files));
  file.commit();
  if (!file.isUnchanged()) {
    // Its bytes have the file's name now. Where it cannot be taken away it is one backup more.
    files.remove(backup.path);
  }
  return {file.backup(), file.isUnchanged()};
}

}  // namespace quoin::os
