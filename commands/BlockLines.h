// The straight lines in the blocks of a drawing: each block read once, its lines counted, and
// walked where inserts show them.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "commands/Drawing.h"
#include "dbents.h"

namespace quoin::commands {

/// How what stands in a block becomes a wall line of the plan.
enum class Belongs { Never, ByItself, AsItsInsert };

struct InnerLine {
  AcGePoint3d start;
  AcGePoint3d end;
  AcDbObjectId entity;
  int segment;
  Belongs belongs;
};

/// An insert in a block or in model space, all cells of an array.
struct Insert {
  AcDbObjectId block;
  AcDbObjectId entity;
  std::wstring layer;
  AcGeMatrix3d transform;
  AcGeVector3d columnStep;
  AcGeVector3d rowStep;
  std::size_t columns = 1;
  std::size_t rows = 1;

  std::size_t cells() const { return columns * rows; }
  /// From the block to where the insert stands, for one cell.
  AcGeMatrix3d cell(std::size_t index) const;
};

Insert readInsert(const AcDbBlockReference& reference);

/// A block, read once.
struct BlockContent {
  std::vector<InnerLine> lines;
  std::vector<Insert> inserts;
  /// How many lines one insert shows: those of chosen layers, and those of the insert's layer.
  double byThemselves = 0.0;
  double asTheInsert = 0.0;
  enum class Count { Missing, Running, Done } count = Count::Missing;
  bool isInsideItself = false;  // or shows such a block; known when it is counted
  bool isOpen = false;          // while its lines are walked: a block inside itself ends there

  double linesOn(bool isInsertChosen) const {
    return byThemselves + (isInsertChosen ? asTheInsert : 0.0);
  }
};

class BlockLines {
 public:
  /// The layers must outlive this.
  BlockLines(Drawing& drawing, const std::set<std::wstring>& layers)
      : m_drawing(drawing), m_layers(layers) {}

  bool isChosen(const std::wstring& layer) const { return m_layers.count(layer) != 0; }
  BlockContent& content(const AcDbObjectId& block);
  /// The content with the numbers of its lines.
  const BlockContent& counted(const AcDbObjectId& block);

 private:
  Belongs belongingOf(const std::wstring& layer) const;
  void read(const AcDbObjectId& block, BlockContent& content);

  Drawing& m_drawing;
  const std::set<std::wstring>& m_layers;
  std::unordered_map<AcDbStub*, std::unique_ptr<BlockContent>> m_contents;
};

/// Walks the lines that an insert shows, nested inserts and all cells of arrays, always in the same
/// order.
class BlockWalk {
 public:
  /// An insert whose lines are being walked, cell by cell.
  struct Frame {
    const Insert* insert;
    BlockContent* content;
    AcGeMatrix3d outer;
    std::wstring layer;  // that layer 0 stands for
    std::size_t cell = 0;
    std::size_t next = 0;  // of the content's inserts
    AcGeMatrix3d toWorld;
  };

  explicit BlockWalk(BlockLines& blocks) : m_blocks(blocks) {}

  /// Calls `visit` for every line; it stops the walk by returning false. The insert must outlive
  /// the walk.
  /// Fails: throws CommandError (Interrupted).
  using Visit = std::function<bool(const InnerLine&)>;
  void walk(const Insert& insert, const Visit& visit);

  /// The inserts that show the line, the outermost first.
  const std::vector<Frame>& path() const { return m_open; }

 private:
  void begin(const Insert& insert, const AcGeMatrix3d& outer, const std::wstring& layer,
             const Visit& visit);
  void step(const Visit& visit);
  void visitLines(const Visit& visit);

  BlockLines& m_blocks;
  std::vector<Frame> m_open;
  bool m_isStopped = false;
  std::size_t m_looks = 0;
};

}  // namespace quoin::commands
