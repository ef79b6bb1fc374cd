// What a drawing shows, kept as a list of primitives in the order in which they are drawn. A line
// takes some forty bytes, so that a million of them are no burden.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "commands/picture/Box.h"
#include "hostdraw.h"

namespace quoin::commands {

class DrawList : public hostx::DrawSink {
 public:
  enum class Kind : std::uint8_t { Stroke, Fill, Wipe, Text, Image, BeginClip, EndClip };
  /// Numbers of a verb: Move and Line a point; Arc center, u, v, start and sweep
  /// (hostx::DrawPiece); Close none.
  enum class Verb : std::uint8_t { Move, Line, Arc, Close };

  struct Look {
    hostx::DrawColor color;
    float lineWeight = 0.0F;  // millimetres
    float opacity = 1.0F;
    std::vector<double> dashes;
    AcDbObjectId layer;
    bool operator==(const Look& other) const;
  };
  /// A path as its verbs and their numbers, in the drawing's plane.
  struct PathView {
    const Verb* verbs = nullptr;
    std::size_t verbCount = 0;
    const double* numbers = nullptr;
  };
  struct Text {
    std::string text;  // UTF-8
    AcGePoint2d position;
    AcGeVector2d along;  // unit
    AcGeVector2d up;     // as long as capitals are high
    float alongShare = 0.0F;
    float upShare = 0.0F;
    double width = 0.0;
    std::uint32_t font = 0;  // of fonts()
    std::uint8_t flags = 0;
    static constexpr std::uint8_t kBold = 1;
    static constexpr std::uint8_t kItalic = 2;
    static constexpr std::uint8_t kUnderlined = 4;
    static constexpr std::uint8_t kOverlined = 8;
    static constexpr std::uint8_t kStruckThrough = 16;

    /// The start of the base line.
    AcGePoint2d start() const;
    /// Around the letters, with what hangs below the base line.
    Box box() const;
  };
  struct Image {
    std::string path;  // UTF-8
    AcGePoint2d origin;
    AcGeVector2d u;
    AcGeVector2d v;
    std::vector<AcGePoint2d> clip;  // corners of what shows
    bool isClipped = false;         // rather than the whole image
  };

  /// Walks over the primitives.
  class Reader {
   public:
    explicit Reader(const DrawList& list) : m_list(list) {}
    bool next();
    Kind kind() const { return m_list.m_items[m_item - 1].kind(); }
    const Look& look() const { return m_list.m_looks[lookIndex()]; }
    std::uint32_t lookIndex() const { return m_list.m_items[m_item - 1].look; }
    PathView path() const { return m_path; }
    const Text& text() const { return m_list.m_texts[m_text - 1]; }
    const Image& image() const { return m_list.m_images[m_image - 1]; }

   private:
    const DrawList& m_list;
    std::size_t m_item = 0;
    std::size_t m_verb = 0;
    std::size_t m_number = 0;
    std::size_t m_text = 0;
    std::size_t m_image = 0;
    PathView m_path;
  };

  // --- what is taken

  /// Leaves out entities of the drawn space for which this returns false.
  void setEntityFilter(std::function<bool(const AcDbObjectId&)> takes) {
    m_takesEntity = std::move(takes);
  }
  /// Keeps to what counts to these layers.
  void setLayers(std::set<AcDbObjectId> layers);
  bool beginEntity(const AcDbObjectId& entity) override;
  void stroke(const hostx::DrawPath& path, const hostx::DrawLook& look) override;
  void fill(const std::vector<hostx::DrawPath>& paths, const hostx::DrawLook& look) override;
  void wipe(const hostx::DrawPath& path) override;
  void text(const hostx::DrawText& text, const hostx::DrawLook& look) override;
  void image(const hostx::DrawImage& image, const hostx::DrawLook& look) override;
  void beginClip(const hostx::DrawPath& path) override;
  void endClip() override;

  // --- what there is

  std::size_t count() const { return m_items.size(); }
  bool isEmpty() const { return m_items.empty(); }
  /// Around all that shows, texts included.
  const Box& extents() const { return m_extents; }
  /// How many primitives show something in a box.
  std::size_t countIn(const Box& box) const;
  const std::vector<Look>& looks() const { return m_looks; }
  const std::vector<std::wstring>& fonts() const { return m_fonts; }
  /// The paths that name images, and how many images each.
  std::map<std::string, std::size_t> imagePaths() const;

  static Box boxOf(const PathView& path);

 private:
  struct Item {
    static constexpr std::uint32_t kKindBits = 3;
    std::uint32_t look = 0;
    std::uint32_t kindAndVerbs = 0;
    Kind kind() const { return static_cast<Kind>(kindAndVerbs & ((1U << kKindBits) - 1U)); }
    std::size_t verbs() const { return kindAndVerbs >> kKindBits; }
  };

  bool takes(const hostx::DrawLook& look) const;
  void addExtents(const Box& box);
  std::uint32_t lookIndex(const hostx::DrawLook& look);
  void addPath(const hostx::DrawPath& path);
  void addPoint(Verb verb, double x, double y);
  void addItem(Kind kind, std::uint32_t look, std::size_t firstVerb);
  PathView viewFrom(std::size_t firstVerb, std::size_t firstNumber) const;

  std::function<bool(const AcDbObjectId&)> m_takesEntity;
  std::set<AcDbObjectId> m_layers;
  bool m_isByLayer = false;
  bool m_isWipeTaken = true;
  std::vector<Item> m_items;
  std::vector<Verb> m_verbs;
  std::vector<double> m_numbers;
  std::vector<Text> m_texts;
  std::vector<Image> m_images;
  std::vector<Look> m_looks;
  std::unordered_multimap<std::size_t, std::uint32_t> m_lookOfHash;
  std::uint32_t m_lastLook = 0;
  std::vector<std::wstring> m_fonts;
  std::map<std::wstring, std::uint32_t> m_fontOf;
  Box m_extents;
  std::vector<Box> m_clips;
};

/// The box of an arc as a DrawPiece has it.
Box boxOfArc(const double* numbers);

}  // namespace quoin::commands
