// Renders pictures: PNG and PDF with Cairo, SVG as text.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/picture/Box.h"
#include "commands/picture/ImageFiles.h"
#include "commands/picture/ListPainter.h"
#include "commands/picture/PaperSize.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// How a picture comes onto its page. Without paper and scale it is 1600 points wide, and as high
/// as the plan needs.
struct SheetOptions {
  Theme theme = Theme::Faint;  // of what the drawing shows
  std::optional<Box> window;   // the part of the drawing that is shown; all that matters without
  std::optional<PaperSize> paper;
  /// Of drawing to paper in true size, 100 for 1:100; without it, with paper, the largest usual
  /// one that fits.
  std::optional<double> scale;
  double dpi = 0.0;  // of a PNG; 0 for one dot a point, or 150 with paper or scale
  bool hasTextOutlines = false;
  /// Opens the files of images; without it, images are frames with the names of their files.
  std::shared_ptr<ImageFiles> images;
};

/// Whether the file's ending is one that renderPicture writes: .png, .svg, .pdf.
bool isPictureFile(const std::filesystem::path& file);
/// Whether the file's ending is that of a file that holds several pages.
bool isPagesFile(const std::filesystem::path& file);

/// What renderPicture writes to a file of this name; only PDF files hold more than one page.
/// Fails: as it does.
std::string pictureBytes(const std::vector<Picture>& pages, const SheetOptions& options,
                         const std::filesystem::path& file);
std::string pictureBytes(const Picture& picture, const std::filesystem::path& file);

/// Writes the picture in the format of the file's ending; the file appears whole or not at all.
/// Fails: throws CommandError (OutputUnwritable, Interrupted; Usage where the plan does not fit the
/// paper).
void renderPicture(const Picture& picture, const std::filesystem::path& file);

}  // namespace quoin::commands
