#include "commands/OutputFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>

#include "commands/CommandError.h"

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
  const auto fail = [&](const std::string& cause) {
    throw CommandError(ExitCode::OutputUnwritable,
                       fmt::format("{}: cannot {}: {}", file.string(), action, cause));
  };
  std::filesystem::path beside = file;
  beside += ".part";
  {
    std::ofstream stream(beside, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
      std::error_code ignored;
      std::filesystem::remove(beside, ignored);
      fail("the folder is not there, is full or may not be written to");
    }
  }
  std::error_code error;
  std::filesystem::rename(beside, file, error);
  if (error) {
    std::error_code ignored;
    std::filesystem::remove(beside, ignored);
    fail(error.message());
  }
}

}  // namespace quoin::commands
