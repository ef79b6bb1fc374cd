// A raster image, decoded.
#pragma once

#include <cairo.h>

#include <memory>

namespace quoin::commands {

struct SurfaceDeleter {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

struct Raster {
  std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface;  // the first row at the top
  int width = 0;
  int height = 0;
};

}  // namespace quoin::commands
