// Renders a picture with Cairo.
#pragma once

#include <filesystem>
#include <string>

#include "commands/picture/Picture.h"

namespace quoin::commands {

/// Whether the file's ending is one that renderPicture writes: .png, .svg, .pdf.
bool isPictureFile(const std::filesystem::path& file);

/// What renderPicture writes to a file of this name.
/// Fails: as it does.
std::string pictureBytes(const Picture& picture, const std::filesystem::path& file);

/// Writes the picture in the format of the file's ending, 1600 points wide; the file appears
/// whole or not at all.
/// Fails: throws CommandError (OutputUnwritable).
void renderPicture(const Picture& picture, const std::filesystem::path& file);

}  // namespace quoin::commands
