#include "commands/picture/ShownImages.h"

#include <fmt/format.h>

#include "commands/Words.h"
#include "commands/picture/SheetLayout.h"

namespace quoin::commands {

std::map<std::string, std::size_t> openImages(Picture& picture, const DrawList& list,
                                              const SheetOptions& options) {
  ImageFiles& images = *options.images;
  const double dots = options.paper || options.scale ? kImageDotsPerPoint : 1.0;
  findImages(images, list, layOut(picture, options).view.scale * dots);
  constexpr std::size_t kMostNamed = 5;
  std::size_t failed = 0;
  std::map<std::string, std::size_t> paths = list.imagePaths();
  for (const auto& [path, count] : paths) {
    const ImageFiles::File& file = images.fileOf(path);
    if (!file.problem.empty() && ++failed <= kMostNamed) {
      picture.warnings.push_back(fmt::format("image not shown: '{}': {}", path, file.problem));
    }
  }
  if (failed > kMostNamed) {
    picture.warnings.push_back(fmt::format("and {} more", countText(failed - kMostNamed, "image")));
  }
  return paths;
}

}  // namespace quoin::commands
