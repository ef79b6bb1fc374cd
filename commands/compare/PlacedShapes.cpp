#include "commands/compare/PlacedShapes.h"

namespace quoin::commands {

namespace {

void place(hostx::DrawPath& path, const AcGeMatrix3d& toWorld) {
  path.start = toWorld * path.start;
  for (hostx::DrawPiece& piece : path.pieces) {
    piece.end = toWorld * piece.end;
    piece.center = toWorld * piece.center;
    piece.u = toWorld * piece.u;
    piece.v = toWorld * piece.v;
  }
}

void place(hostx::DrawText& text, const AcGeMatrix3d& toWorld) {
  const AcGeVector3d along = toWorld * text.along;
  const double stretch = along.length();
  text.position = toWorld * text.position;
  text.up = toWorld * text.up;
  text.width *= stretch;
  text.along = stretch > 0.0 ? along / stretch : along;
}

void place(hostx::DrawImage& image, const AcGeMatrix3d& toWorld) {
  image.origin = toWorld * image.origin;
  image.u = toWorld * image.u;
  image.v = toWorld * image.v;
  for (AcGePoint3d& corner : image.clip) {
    corner = toWorld * corner;
  }
}

}  // namespace

void PlacedShapes::stroke(const hostx::DrawPath& path, const hostx::DrawLook& look) {
  m_paths.push_back({{{path}, false}, look});
}

void PlacedShapes::fill(const std::vector<hostx::DrawPath>& paths, const hostx::DrawLook& look) {
  m_paths.push_back({{paths, true}, look});
}

void PlacedShapes::wipe(const hostx::DrawPath& path) {
  stroke(path, {});
}

void PlacedShapes::text(const hostx::DrawText& text, const hostx::DrawLook& look) {
  m_texts.push_back({text, look});
}

void PlacedShapes::image(const hostx::DrawImage& image, const hostx::DrawLook& look) {
  m_images.push_back({image, look});
}

void PlacedShapes::drawAt(const AcGeMatrix3d& toWorld, hostx::DrawSink& sink) const {
  for (const auto& [recorded, look] : m_paths) {
    std::vector<hostx::DrawPath> paths = recorded.paths;
    for (hostx::DrawPath& path : paths) {
      place(path, toWorld);
    }
    recorded.isFilled ? sink.fill(paths, look) : sink.stroke(paths.front(), look);
  }
  for (auto [text, look] : m_texts) {
    place(text, toWorld);
    sink.text(text, look);
  }
  for (auto [image, look] : m_images) {
    place(image, toWorld);
    sink.image(image, look);
  }
}

}  // namespace quoin::commands
