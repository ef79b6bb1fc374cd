// What things look like, resolved: layers, linetypes, and what the contents of a block take from
// the reference that shows it. Read once a drawing, by the bytes of their names.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "embedded/db/core/DatabaseImpl.h"
#include "hostdraw.h"

namespace quoin::db {

/// Strokes, gaps and dots at the scale 1; empty for a continuous line.
using Dashes = std::vector<double>;

struct LayerLook {
  AcDbObjectId id;
  std::wstring name;
  hostx::DrawColor color;
  double lineWeight = 0.0;
  const Dashes* dashes = nullptr;
  double opacity = 1.0;
  bool isOff = false;
  bool isFrozen = false;
  bool isPlotted = true;
  bool isZero = false;  // "0", which in blocks stands for the reference's layer
};

/// The look of an entity; what is by block in the blocks that it shows takes it.
struct ResolvedLook {
  const LayerLook* layer = nullptr;
  hostx::DrawColor color;
  double lineWeight = 0.0;
  const Dashes* dashes = nullptr;
  double dashScale = 1.0;  // of the entity itself
  double opacity = 1.0;
  bool isInvisible = false;
};

class DrawLooks {
 public:
  explicit DrawLooks(DatabaseImpl& database);
  DrawLooks(const DrawLooks&) = delete;
  DrawLooks& operator=(const DrawLooks&) = delete;

  /// The look of an entity; `outer` is null outside of blocks.
  void resolve(const TagList& tags, const ResolvedLook* outer, ResolvedLook& look);
  /// A colour of a style: by layer and by block stand for those of `look`.
  static hostx::DrawColor colorOf(const AcCmColor& color, const ResolvedLook& look);
  /// The linetype of a record's handle; null for by layer and for none.
  const Dashes* dashesOf(std::uint64_t linetype);
  /// By name; by layer and by block stand for those of `look`.
  const Dashes* dashesOf(std::wstring_view linetype, const ResolvedLook& look);

 private:
  const LayerLook* layerOf(std::string_view name, const dxf::Format& format);
  const Dashes* linetypeOf(const AcDbStub& record);
  const Dashes* linetypeNamed(std::wstring_view name);

  DatabaseImpl& m_database;
  std::unordered_map<std::string_view, LayerLook*> m_layersByBytes;
  std::unordered_map<const AcDbStub*, LayerLook*> m_layers;
  std::deque<LayerLook> m_layerStore;
  struct Linetype {
    enum class Kind { Own, ByLayer, ByBlock } kind = Kind::Own;
    const Dashes* dashes = nullptr;
  };
  const Linetype& linetypeOf(std::string_view name, const TagList& tags, std::size_t index);
  std::unordered_map<std::string_view, Linetype> m_linetypesByBytes;
  std::unordered_map<const AcDbStub*, Dashes> m_linetypes;
};

}  // namespace quoin::db
