#include "commands/OutputFile.h"

#include <fmt/format.h>

#include <algorithm>

#include "commands/CommandError.h"
#include "embedded/os/File.h"

namespace quoin::commands {

std::string lowerCaseExtension(const std::filesystem::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return extension;
}

void writeWholeFile(const std::string& bytes, const std::filesystem::path& file,
                    const std::string& action) {
  try {
    os::AtomicFile output(file.string());
    output.write(bytes);
    output.commit();
  } catch (const os::FileFailure& failure) {
    throw CommandError(ExitCode::OutputUnwritable,
                       fmt::format("{}: cannot {}: {}", file.string(), action, failure.what()));
  }
}

void makeFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::error_code ignored;
  std::filesystem::create_directories(folder, error);
  if (!std::filesystem::is_directory(folder, ignored)) {
    throw CommandError(ExitCode::OutputUnwritable,
                       fmt::format("{}: cannot make the folder{}", folder.string(),
                                   error ? ": " + error.message() : ""));
  }
}

}  // namespace quoin::commands
