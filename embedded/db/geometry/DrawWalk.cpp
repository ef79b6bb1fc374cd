#include "embedded/db/geometry/DrawWalk.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "embedded/db/geometry/ExtentsWalk.h"
#include "embedded/db/geometry/SignStrokes.h"
#include "embedded/dxf/FileError.h"

namespace quoin::db {

using hostx::DrawLook;

namespace {

/// A prompt for a value; the value is shown by the reference's own attribute.
bool isPrompt(const TagList& tags) {
  constexpr std::int64_t kIsConstant = 2;
  return !(tags.integer(code::kFlags, layout::kAttributeDefinition.in(tags), 0) & kIsConstant);
}

bool isFinite(const AcGePoint3d& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}
bool isFinite(const AcGeVector3d& vector) {
  return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

}  // namespace

DrawWalk::DrawWalk(DatabaseImpl& database, hostx::DrawSink& sink, const hostx::DrawOptions& options)
    : m_database(database), m_sink(sink), m_options(options), m_looks(database) {
  const double scale = variable("$LTSCALE", 1.0);
  m_linetypeScale = scale > 0.0 && std::isfinite(scale) ? scale : 1.0;
  m_isPaperScaled = variable("$PSLTSCALE", 1.0) != 0.0;
  m_isFilled = m_options.isAllFilled || variable("$FILLMODE", 1.0) != 0.0;
}

hostx::DrawReport DrawWalk::drawBlock(const dxf::Block& block) {
  begin(block, AcGeMatrix3d::kIdentity, -1, true);
  run();
  return m_report;
}

hostx::DrawReport DrawWalk::drawEntity(const AcDbStub& entity) {
  Frame& frame = m_frames.emplace_back();
  m_single = const_cast<AcDbStub*>(&entity);
  frame.entities = std::span(&m_single, 1);
  frame.isSpace = true;
  run();
  return m_report;
}

// --- primitives -----------------------------------------------------------------------------

void DrawWalk::stroke(const DrawPath& path, const DrawLook& look) {
  if (db::isFinite(path)) {
    ++m_emitted;
    m_sink.stroke(path, look);
  }
}

void DrawWalk::stroke(const DrawPath& path) {
  stroke(path, look());
}

void DrawWalk::strokePlain(const DrawPath& path) {
  look();
  stroke(path, m_plainLook);
}

void DrawWalk::fill(std::span<const DrawPath> paths) {
  look();
  fill(paths, m_plainLook);
}

void DrawWalk::fill(std::span<const DrawPath> paths, const DrawLook& look) {
  std::vector<DrawPath> finite;
  finite.reserve(paths.size());
  for (const DrawPath& path : paths) {
    if (!path.pieces.empty() && db::isFinite(path)) {
      finite.push_back(path);
      finite.back().isClosed = true;
    }
  }
  if (!finite.empty()) {
    ++m_emitted;
    m_sink.fill(finite, look);
  }
}

void DrawWalk::wipe(const DrawPath& path) {
  if (db::isFinite(path)) {
    ++m_emitted;
    m_sink.wipe(path);
  }
}

void DrawWalk::text(const hostx::DrawText& text) {
  look();
  this->text(text, m_plainLook);
}

void DrawWalk::text(const hostx::DrawText& text, const DrawLook& look) {
  const bool isShown = !text.text.empty() && isFinite(text.position) && isFinite(text.along) &&
                       isFinite(text.up) && std::isfinite(text.width) && text.width >= 0.0;
  if (isShown && hasStrokedSigns(text)) {
    drawWithSigns(text, look, *this);
  } else if (isShown) {
    ++m_emitted;
    m_sink.text(text, look);
  }
}

void DrawWalk::image(const hostx::DrawImage& image) {
  if (isFinite(image.origin) && isFinite(image.u) && isFinite(image.v)) {
    look();
    ++m_emitted;
    m_sink.image(image, m_plainLook);
  }
}

void DrawWalk::setColor(const hostx::DrawColor& color) {
  m_look.color = color;
  m_isLookReady = false;
}

const DrawLook& DrawWalk::look() {
  if (!m_isLookReady) {
    prepareLook();
  }
  return m_drawLook;
}

void DrawWalk::prepareLook() {
  m_isLookReady = true;
  m_plainLook.color = m_look.color;
  m_plainLook.lineWeight = m_look.lineWeight;
  m_plainLook.opacity = m_look.opacity;
  m_plainLook.layer = m_look.layer ? m_look.layer->id : AcDbObjectId();
  m_drawLook.color = m_plainLook.color;
  m_drawLook.lineWeight = m_plainLook.lineWeight;
  m_drawLook.opacity = m_plainLook.opacity;
  m_drawLook.layer = m_plainLook.layer;
  setDashes(m_drawLook, m_look.dashes);
}

DrawLook DrawWalk::lookOf(const AcCmColor& color) {
  look();
  DrawLook look = m_plainLook;
  look.color = DrawLooks::colorOf(color, m_look);
  return look;
}

void DrawWalk::setDashes(DrawLook& look, const Dashes* dashes) const {
  look.dashes.clear();
  if (!dashes) {
    return;
  }
  const double window = m_isPaperScaled ? windowScale() : 1.0;
  const double scale = m_linetypeScale * m_look.dashScale * lengthScale(m_toWorld) / window;
  if (!(scale > 0.0) || !std::isfinite(scale)) {
    return;
  }
  double period = 0.0;
  for (const double dash : *dashes) {
    look.dashes.push_back(dash * scale);
    period += std::fabs(dash * scale);
  }
  // What nobody can tell from a continuous line is one.
  if (!(period > m_options.pixel) || !std::isfinite(period)) {
    look.dashes.clear();
  }
}

// --- what entities show -----------------------------------------------------------------------

void DrawWalk::show(const dxf::Block& block, const AcGeMatrix3d& toWorld, const BlockCells& cells) {
  Shown& shown = m_shown.emplace_back();
  shown.block = &block;
  shown.toWorld = toWorld;
  shown.cells = cells;
}

void DrawWalk::showOr(const dxf::Block& block, const AcGeMatrix3d& toWorld, const Drawn& entity,
                      DrawFunction otherwise) {
  show(block, toWorld);
  m_shown.back().owner = entity.stub;
  m_shown.back().otherwise = otherwise;
}

void DrawWalk::showPart(const AcDbStub& part, const AcGeMatrix3d& toWorld) {
  Shown& shown = m_shown.emplace_back();
  shown.part = &part;
  shown.toWorld = toWorld;
}

void DrawWalk::showWindow(const dxf::Block& space, const AcGeMatrix3d& toWorld, DrawWindow window) {
  show(space, toWorld);
  m_shown.back().window = static_cast<int>(m_windows.size());
  m_windows.push_back(std::move(window));
}

void DrawWalk::leaveOut(std::wstring_view kind) {
  ++m_report.leftOut[std::wstring(kind)];
}

const AcDbExtents& DrawWalk::view() {
  if (m_window >= 0) {
    return m_windows[static_cast<std::size_t>(m_window)].box;
  }
  if (!m_options.view.isFresh()) {
    return m_options.view;
  }
  if (!m_isSpaceMeasured) {
    m_isSpaceMeasured = true;
    const dxf::Block* const block = m_frames.front().block;
    ExtentsWalk(&m_database).addBlock(block ? *block : m_database.store.modelSpace(), m_spaceBox);
  }
  return m_spaceBox;
}

double DrawWalk::chordError(double size) const {
  constexpr double kOfPixel = 0.2;
  constexpr double kOfSize = 1e-3;
  return m_options.pixel > 0.0 ? std::fmin(kOfPixel * m_options.pixel, kOfSize * size)
                               : kOfSize * size;
}

double DrawWalk::variable(std::string_view name, double otherwise) const {
  const TagList tags = m_database.headerTags(name);
  return tags.size() > 0 ? tags.doubleAt(0) : otherwise;
}

// --- the walk -------------------------------------------------------------------------------

void DrawWalk::begin(const dxf::Block& block, const AcGeMatrix3d& toWorld, int window,
                     bool isSpace) {
  const ResolvedLook outer = m_frames.empty() ? ResolvedLook() : m_frames.back().shownLook;
  Frame& frame = m_frames.emplace_back();
  frame.block = &block;
  frame.entities = inDrawOrder(block);
  frame.toWorld = toWorld;
  frame.window = window;
  frame.isSpace = isSpace;
  frame.outer = outer;
  m_path.insert(&block);
}

bool DrawWalk::goesOn() {
  constexpr std::size_t kAskedEvery = 4096;
  if (++m_sinceAsked >= kAskedEvery && m_options.goesOn) {
    m_sinceAsked = 0;
    m_report.isStopped = m_report.isStopped || !m_options.goesOn();
  }
  return !m_report.isStopped;
}

void DrawWalk::run() {
  std::size_t clips = 0;
  while (!m_frames.empty() && goesOn()) {
    Frame& frame = m_frames.back();
    if (frame.nextShown < frame.shown.size()) {
      advance();
    } else if (frame.nextEntity < frame.entities.size()) {
      frame.shown.clear();
      frame.nextShown = 0;
      visit(*frame.entities[frame.nextEntity++]);
    } else {
      leave();
    }
  }
  finishEntity();
  // A drawing that was stopped leaves no clip open.
  for (const Frame& frame : m_frames) {
    clips += frame.isSpace && frame.window >= 0 ? 1 : 0;
  }
  for (; clips > 0; --clips) {
    m_sink.endClip();
  }
}

void DrawWalk::finishEntity() {
  if (m_isInEntity && m_emitted > m_emittedBefore) {
    ++m_report.drawn;
  }
  m_isInEntity = false;
}

void DrawWalk::visit(const AcDbStub& entity) {
  const bool isOfSpace = m_frames.size() == 1;
  if (isOfSpace) {
    finishEntity();
  }
  if (entity.erased) {
    return;
  }
  Frame& frame = m_frames.back();
  if (isOfSpace) {
    m_emittedBefore = m_emitted;
    m_isInEntity = true;
  } else {
    ++(frame.isSpace ? m_windowed : m_visited);
  }
  drawOwn(entity, frame.isSpace ? nullptr : &frame.outer, frame.toWorld, frame.window,
          !frame.isSpace);
  if (!m_shown.empty()) {
    std::swap(frame.shown, m_shown);
    frame.shownLook = m_look;
    m_shown.clear();
  }
}

bool DrawWalk::isHidden(const ResolvedLook& look, bool isReference, int window) const {
  if (m_options.isAllShown) {
    return false;
  }
  const LayerLook& layer = *look.layer;
  // Off is what lies on the layer itself; frozen is also what references on it show.
  if (look.isInvisible || layer.isFrozen || (layer.isOff && !isReference)) {
    return true;
  }
  if (window < 0) {
    return false;
  }
  const AcDbStub* const record = stubOf(layer.id);
  const std::vector<std::uint64_t>& frozen =
      m_windows[static_cast<std::size_t>(window)].frozenLayers;
  return record && std::find(frozen.begin(), frozen.end(), record->handle) != frozen.end();
}

void DrawWalk::drawOwn(const AcDbStub& stub, const ResolvedLook* outer, const AcGeMatrix3d& toWorld,
                       int window, bool isInBlock) {
  const std::string_view name = m_database.kindOf(stub);
  const auto leaveOutThis = [&] { leaveOut(std::wstring(name.begin(), name.end())); };
  std::optional<TagList> tags;
  try {
    tags.emplace(m_database.tagsOf(stub));
  } catch (const dxf::FileError&) {
    leaveOutThis();
    return;
  }
  const RecordKind* const kind = entityKind(name);
  m_looks.resolve(*tags, outer, m_look);
  const bool isReference = name == "INSERT";
  m_isLayerShown = !isHidden(m_look, isReference, window);
  // As with layers that are off, references show what lies on other layers.
  if (m_isLayerShown && m_options.isPlot && !m_look.layer->isPlotted && !isReference) {
    m_isLayerShown = false;
    ++m_report.notPlotted[m_look.layer->name];
  }
  const bool isWindow = name == "VIEWPORT" && (!m_look.isInvisible || m_options.isAllShown);
  if (!m_isLayerShown && !isWindow) {
    return;
  }
  if (isInBlock && name == "ATTDEF" && isPrompt(*tags)) {
    return;
  }
  if (m_frames.size() == 1 && !isInBlock &&
      !m_sink.beginEntity(AcDbObjectId(const_cast<AcDbStub*>(&stub)))) {
    return;
  }
  if (!kind || !kind->draw) {
    leaveOutThis();
    return;
  }
  m_toWorld = toWorld;
  m_window = window;
  m_isLookReady = false;
  m_shown.clear();
  kind->draw({*tags, &m_database, &stub, nullptr}, toWorld, *this);
}

bool DrawWalk::hasRoom(const Shown& shown) const {
  return shown.window >= 0 ? m_windowed < kWindowedEntities : m_visited < kExactEntities;
}

/// Begins with the next of what the frame's entity shows, or with the next cell of it.
void DrawWalk::advance() {
  Frame& frame = m_frames.back();
  Shown& shown = frame.shown[frame.nextShown];
  if (!shown.isBegun) {
    shown.isBegun = true;
    shown.emittedBefore = m_emitted;
  }
  if (shown.part) {
    const ResolvedLook outer = frame.shownLook;
    const AcDbStub& part = *shown.part;
    const AcGeMatrix3d toWorld = shown.toWorld;
    ++frame.nextShown;
    drawOwn(part, &outer, toWorld, frame.window, true);
    m_shown.clear();
    return;
  }
  if (m_path.count(shown.block) != 0 || shown.nextRow >= shown.cells.rows) {
    finishShown();  // a block that holds itself shows nothing more
    return;
  }
  if (!hasRoom(shown)) {
    frameOnly(shown);
    finishShown();
    return;
  }
  AcGeMatrix3d toWorld = shown.toWorld;
  if (shown.nextColumn != 0 || shown.nextRow != 0) {
    toWorld = AcGeMatrix3d().setToTranslation(
                  shown.cells.columnStep * static_cast<double>(shown.nextColumn) +
                  shown.cells.rowStep * static_cast<double>(shown.nextRow)) *
              toWorld;
  }
  if (++shown.nextColumn >= shown.cells.columns) {
    shown.nextColumn = 0;
    ++shown.nextRow;
  }
  ++m_visited;
  const bool isWindow = shown.window >= 0;
  if (isWindow) {
    m_sink.beginClip(m_windows[static_cast<std::size_t>(shown.window)].frame);
  }
  begin(*shown.block, toWorld, isWindow ? shown.window : frame.window, isWindow);
}

void DrawWalk::leave() {
  const Frame& done = m_frames.back();
  const bool isWindow = done.isSpace && done.window >= 0;
  m_path.erase(done.block);
  m_frames.pop_back();
  if (isWindow) {
    m_sink.endClip();
  }
}

void DrawWalk::finishShown() {
  Frame& frame = m_frames.back();
  const Shown shown = frame.shown[frame.nextShown++];
  if (shown.otherwise && shown.owner && m_emitted == shown.emittedBefore) {
    const TagList tags = m_database.tagsOf(*shown.owner);
    m_look = frame.shownLook;
    m_toWorld = frame.toWorld;
    m_window = frame.window;
    m_isLookReady = false;
    shown.otherwise({tags, &m_database, shown.owner, nullptr}, frame.toWorld, *this);
    m_shown.clear();
  }
}

void DrawWalk::frameOnly(const Shown& shown) {
  const Frame& frame = m_frames.back();
  ++m_report.framed;
  const AcDbExtents& box = boxOf(*shown.block);
  if (box.isFresh()) {
    return;
  }
  AcGeMatrix3d first = shown.toWorld;
  const double columns = static_cast<double>(shown.cells.columns - 1);
  const double rows = static_cast<double>(shown.cells.rows - 1);
  m_look = frame.shownLook;
  m_toWorld = frame.toWorld;
  m_window = frame.window;
  m_isLookReady = false;
  if (columns == 0.0 && rows == 0.0) {
    strokePlain(rectanglePath(box.minPoint().x, box.minPoint().y, box.maxPoint().x,
                              box.maxPoint().y, first));
    return;
  }
  AcDbExtents all;
  for (const double column : {0.0, columns}) {
    for (const double row : {0.0, rows}) {
      AcDbExtents cell = box;
      cell.transformBy(first);
      const AcGeVector3d move = shown.cells.columnStep * column + shown.cells.rowStep * row;
      all.addPoint(cell.minPoint() + move);
      all.addPoint(cell.maxPoint() + move);
    }
  }
  strokePlain(rectanglePath(all.minPoint().x, all.minPoint().y, all.maxPoint().x, all.maxPoint().y,
                            AcGeMatrix3d::kIdentity));
}

const AcDbExtents& DrawWalk::boxOf(const dxf::Block& block) {
  const auto [known, isNew] = m_boxes.try_emplace(&block);
  if (isNew) {
    ExtentsWalk(&m_database).addBlock(block, known->second);
  }
  return known->second;
}

/// By the handles that the block's table of draw order gives them; in the order of the file where
/// it has none.
std::span<AcDbStub* const> DrawWalk::inDrawOrder(const dxf::Block& block) {
  constexpr int kEntity = 331;
  constexpr int kSortHandle = 5;
  const auto [known, isNew] = m_orders.try_emplace(&block);
  std::vector<AcDbStub*>& order = known->second;
  if (isNew && block.record) {
    const TagList tags = m_database.tagsOf(*block.record);
    const TagRange group = tags.group("{ACAD_XDICTIONARY");
    const AcDbStub* dictionary = nullptr;
    for (std::size_t i = group.first; i < group.last; ++i) {
      if (tags[i].code == 360 || tags[i].code == 330) {
        dictionary = m_database.byHandle(tags.handleAt(i));
      }
    }
    const AcDbStub* const table =
        dictionary ? m_database.dictionaryEntry(*dictionary, L"ACAD_SORTENTS") : nullptr;
    if (table && !table->erased) {
      std::unordered_map<std::uint64_t, std::uint64_t> keys;
      const TagList sort = m_database.tagsOf(*table);
      const TagRange range = sort.subclass("AcDbSortentsTable");
      std::uint64_t entity = 0;
      for (std::size_t i = range.first; i < range.last; ++i) {
        if (sort[i].code == kEntity) {
          entity = sort.handleAt(i);
        } else if (sort[i].code == kSortHandle && entity != 0) {
          keys[entity] = sort.handleAt(i);
        }
      }
      if (!keys.empty()) {
        std::vector<std::pair<std::uint64_t, AcDbStub*>> sorted;
        sorted.reserve(block.entities.size());
        for (AcDbStub* const stub : block.entities) {
          const auto key = keys.find(stub->handle);
          sorted.emplace_back(key == keys.end() ? stub->handle : key->second, stub);
        }
        std::stable_sort(sorted.begin(), sorted.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
        order.reserve(sorted.size());
        for (const auto& [key, stub] : sorted) {
          order.push_back(stub);
        }
      }
    }
  }
  return order.empty() ? std::span<AcDbStub* const>(block.entities)
                       : std::span<AcDbStub* const>(order);
}

}  // namespace quoin::db
