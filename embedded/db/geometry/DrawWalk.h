// Drawing entities with the blocks that they show, however deeply these are nested, into a sink.
// A drawing of a few kilobytes can show more entities than anybody could paint (blocks that each
// show the one below ten times), so that there is a budget: within it every entity is drawn where
// it shows; beyond it, references are drawn as the frames of what they show.
#pragma once

#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "embedded/db/core/RecordKinds.h"
#include "embedded/db/geometry/DrawLooks.h"
#include "embedded/db/geometry/DrawPaths.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "hostdraw.h"

namespace quoin::db {

/// The cells of an array of block references: one place a cell.
struct BlockCells {
  std::int64_t columns = 1;
  std::int64_t rows = 1;
  AcGeVector3d columnStep;  // world
  AcGeVector3d rowStep;
};

/// A window onto a space: what it shows is cut off at its frame.
struct DrawWindow {
  DrawPath frame;
  AcDbExtents box;
  std::vector<std::uint64_t> frozenLayers;
  double scale = 1.0;  // from what it shows to where it stands
};

/// One drawing of a space or an entity. Nested blocks wait in a list of their own, not on the stack
/// of the process.
class DrawWalk {
 public:
  /// Entities of blocks that are drawn one by one.
  static constexpr std::size_t kExactEntities = 1'000'000;
  /// Entities of spaces that windows show.
  static constexpr std::size_t kWindowedEntities = 10'000'000;

  DrawWalk(DatabaseImpl& database, hostx::DrawSink& sink, const hostx::DrawOptions& options);
  DrawWalk(const DrawWalk&) = delete;
  DrawWalk& operator=(const DrawWalk&) = delete;

  hostx::DrawReport drawBlock(const dxf::Block& block);
  hostx::DrawReport drawEntity(const AcDbStub& entity);

  // --- for the functions that draw one kind --------------------------------------------------
  // Primitives with a number that is not finite are left out.

  /// With the entity's look.
  void stroke(const DrawPath& path);
  /// Without its linetype: arrows, frames.
  void strokePlain(const DrawPath& path);
  void fill(std::span<const DrawPath> paths);
  void fill(const DrawPath& path) { fill(std::span(&path, 1)); }
  /// With another look.
  void stroke(const DrawPath& path, const hostx::DrawLook& look);
  void fill(std::span<const DrawPath> paths, const hostx::DrawLook& look);
  void wipe(const DrawPath& path);
  void text(const hostx::DrawText& text);
  void text(const hostx::DrawText& text, const hostx::DrawLook& look);
  void image(const hostx::DrawImage& image);

  /// Draws what follows of the entity in another colour, what is by block in its blocks too.
  void setColor(const hostx::DrawColor& color);
  /// The entity's look as primitives have it.
  const hostx::DrawLook& look();
  /// The same without its linetype, and with a colour of its style.
  hostx::DrawLook lookOf(const AcCmColor& color);
  /// With a linetype of its style.
  void setDashes(hostx::DrawLook& look, const Dashes* dashes) const;
  const ResolvedLook& resolved() const { return m_look; }
  DrawLooks& looks() { return m_looks; }

  /// Says that the entity shows a block through a matrix, above what it has drawn so far.
  void show(const dxf::Block& block, const AcGeMatrix3d& toWorld, const BlockCells& cells = {});
  /// The same; where the block shows nothing, `otherwise` draws the entity.
  void showOr(const dxf::Block& block, const AcGeMatrix3d& toWorld, const Drawn& entity,
              DrawFunction otherwise);
  /// Says that the entity shows a record of its own (an attribute), above what it shows so far.
  void showPart(const AcDbStub& part, const AcGeMatrix3d& toWorld);
  /// Says that the entity shows a space through a window.
  void showWindow(const dxf::Block& space, const AcGeMatrix3d& toWorld, DrawWindow window);

  /// Counts what cannot be drawn.
  void leaveOut(std::wstring_view kind);

  const hostx::DrawOptions& options() const { return m_options; }
  /// What is looked at where the entity stands; the extents of its space where nobody knows.
  const AcDbExtents& view();
  /// From the space of the entity to the drawn one, where a window is between them; else 1.
  double windowScale() const {
    return m_window < 0 ? 1.0 : m_windows[static_cast<std::size_t>(m_window)].scale;
  }
  /// How far a chord may be from its curve, for a curve of this size.
  double chordError(double size) const;
  /// A variable of the drawing's header.
  double variable(std::string_view name, double otherwise) const;
  /// Whether areas are filled ($FILLMODE).
  bool isFilled() const { return m_isFilled; }
  /// Whether the entity's own layer shows: a viewport shows its space without its frame else.
  bool isLayerShown() const { return m_isLayerShown; }
  /// The spaces around the entity: 0 for one of the drawn space itself.
  std::size_t depth() const { return m_frames.size() - 1; }

 private:
  /// What an entity shows that is not drawn yet.
  struct Shown {
    const dxf::Block* block = nullptr;
    const AcDbStub* part = nullptr;
    AcGeMatrix3d toWorld;
    BlockCells cells;
    std::int64_t nextColumn = 0;
    std::int64_t nextRow = 0;
    const AcDbStub* owner = nullptr;
    DrawFunction otherwise = nullptr;
    Adesk::UInt64 emittedBefore = 0;
    int window = -1;  // index of m_windows
    bool isBegun = false;
  };
  /// A block that is being drawn; the first one is what was asked for.
  struct Frame {
    const dxf::Block* block = nullptr;
    std::span<AcDbStub* const> entities;
    AcGeMatrix3d toWorld;
    ResolvedLook outer;  // of the reference
    std::size_t nextEntity = 0;
    std::vector<Shown> shown;  // by the entity before `nextEntity`, in order
    std::size_t nextShown = 0;
    ResolvedLook shownLook;  // of that entity
    int window = -1;         // that it is seen through
    bool isSpace = false;    // rather than a block
  };

  void run();
  bool hasRoom(const Shown& shown) const;
  bool goesOn();
  void visit(const AcDbStub& entity);
  void drawOwn(const AcDbStub& stub, const ResolvedLook* outer, const AcGeMatrix3d& toWorld,
               int window, bool isInBlock);
  void advance();
  void begin(const dxf::Block& block, const AcGeMatrix3d& toWorld, int window, bool isSpace);
  void leave();
  void finishShown();
  void frameOnly(const Shown& shown);
  void finishEntity();
  bool isHidden(const ResolvedLook& look, bool isReference, int window) const;
  std::span<AcDbStub* const> inDrawOrder(const dxf::Block& block);
  const AcDbExtents& boxOf(const dxf::Block& block);
  void prepareLook();

  DatabaseImpl& m_database;
  hostx::DrawSink& m_sink;
  const hostx::DrawOptions& m_options;
  hostx::DrawReport m_report;
  DrawLooks m_looks;
  double m_linetypeScale = 1.0;
  bool m_isPaperScaled = true;
  bool m_isFilled = true;

  std::vector<Frame> m_frames;
  std::vector<DrawWindow> m_windows;
  std::unordered_set<const dxf::Block*> m_path;  // blocks of the frames
  std::unordered_map<const dxf::Block*, std::vector<AcDbStub*>> m_orders;
  std::unordered_map<const dxf::Block*, AcDbExtents> m_boxes;
  AcDbStub* m_single = nullptr;

  // --- of the entity that is being drawn -------------------------------------------------------
  std::vector<Shown> m_shown;
  ResolvedLook m_look;
  AcGeMatrix3d m_toWorld;
  int m_window = -1;
  bool m_isLookReady = false;
  bool m_isLayerShown = true;
  hostx::DrawLook m_drawLook;
  hostx::DrawLook m_plainLook;

  std::size_t m_visited = 0;   // entities of blocks
  std::size_t m_windowed = 0;  // entities of spaces that are seen through windows
  std::size_t m_sinceAsked = 0;
  Adesk::UInt64 m_emitted = 0;
  Adesk::UInt64 m_emittedBefore = 0;  // the entity of the space
  bool m_isInEntity = false;
  AcDbExtents m_spaceBox;
  bool m_isSpaceMeasured = false;
};

}  // namespace quoin::db
