// What entities show, recorded once and drawn at many places.
#pragma once

#include <vector>

#include "hostdraw.h"

namespace quoin::commands {

class PlacedShapes : public hostx::DrawSink {
 public:
  void stroke(const hostx::DrawPath& path, const hostx::DrawLook& look) override;
  void fill(const std::vector<hostx::DrawPath>& paths, const hostx::DrawLook& look) override;
  /// Hides nothing: what is marked stands above the plan.
  void wipe(const hostx::DrawPath& path) override;
  void text(const hostx::DrawText& text, const hostx::DrawLook& look) override;
  void image(const hostx::DrawImage& image, const hostx::DrawLook& look) override;

  std::size_t count() const { return m_paths.size() + m_texts.size() + m_images.size(); }
  /// Draws all of it through a matrix.
  void drawAt(const AcGeMatrix3d& toWorld, hostx::DrawSink& sink) const;

 private:
  template <class Shape>
  struct Looked {
    Shape shape;
    hostx::DrawLook look;
  };
  /// One path to be stroked, or several to be filled.
  struct Paths {
    std::vector<hostx::DrawPath> paths;
    bool isFilled;
  };

  std::vector<Looked<Paths>> m_paths;
  std::vector<Looked<hostx::DrawText>> m_texts;
  std::vector<Looked<hostx::DrawImage>> m_images;
};

}  // namespace quoin::commands
