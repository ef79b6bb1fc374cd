// Output files other than drawings: pictures and models.
#pragma once

#include <filesystem>
#include <string>

namespace quoin::commands {

/// The ending with its dot in lower case, ".png"; "" for none.
std::string lowerCaseExtension(const std::filesystem::path& file);

/// Writes a file as drawings are written (embedded/os/File.h): it appears whole or not at all.
/// Fails: throws CommandError (OutputUnwritable): "FILE: cannot ACTION: cause".
void writeWholeFile(const std::string& bytes, const std::filesystem::path& file,
                    const std::string& action);

/// Makes a folder, and those that it is in, where they are missing.
/// Fails: throws CommandError (OutputUnwritable): "FOLDER: cannot make the folder: cause".
void makeFolder(const std::filesystem::path& folder);

}  // namespace quoin::commands
