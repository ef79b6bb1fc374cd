// What a drawing shows, as plain primitives. Each kind of entity draws itself into a sink, with
// colours, weights and linetypes resolved through layers and blocks; pictures, comparing and
// picking are sinks. All coordinates are the drawing's world, also for what stands in blocks.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "dbmain.h"
#include "gemat3d.h"
#include "gepnt3d.h"
#include "gevec3d.h"
#include "hostapi.h"

namespace hostx {

struct DrawColor {
  unsigned char red = 0;
  unsigned char green = 0;
  unsigned char blue = 0;
  /// Index 7: what stands out from the paper, black on white and white on black.
  bool isForeground = true;
};

/// How a primitive looks.
struct DrawLook {
  DrawColor color;
  /// Millimetres on paper; 0 for the thinnest line there is.
  double lineWeight = 0.0;
  /// Strokes (positive), gaps (negative) and dots (0) in turn, in drawing units, from the start of
  /// the path; empty for a continuous line.
  std::vector<double> dashes;
  /// 0 to 1, 1 for what hides all that lies beneath.
  double opacity = 1.0;
  /// The layer that the primitive counts to; in a block that of the reference for layer 0.
  AcDbObjectId layer;
};

/// One piece of a path, from where the piece before it ends.
struct DrawPiece {
  enum class Kind : unsigned char { Line, Arc };
  Kind kind = Kind::Line;
  AcGePoint3d end;
  /// Of an arc: center + u cos t + v sin t for t from `start` over `sweep`, radians; a negative
  /// sweep runs from v towards u.
  AcGePoint3d center;
  AcGeVector3d u;
  AcGeVector3d v;
  double start = 0.0;
  double sweep = 0.0;
};

struct DrawPath {
  AcGePoint3d start;
  std::vector<DrawPiece> pieces;  // none: a dot
  bool isClosed = false;
};

/// A line of text of one font, laid out: `position` is its point at `alongShare` of its width and
/// `upShare` of the height of its capitals.
struct DrawText {
  std::wstring text;  // without codes
  AcGePoint3d position;
  AcGeVector3d along;  // unit direction of the base line; world
  AcGeVector3d up;     // of the letters, as long as capitals are high; world
  double alongShare = 0.0;
  double upShare = 0.0;
  /// The width that the text takes, in drawing units along `along`: who draws it with a font of
  /// other widths stretches it to this.
  double width = 0.0;
  std::wstring font;  // a font file ("arial.ttf", "txt.shx") or family; empty for the usual one
  bool isBold = false;
  bool isItalic = false;
  bool isUnderlined = false;
  bool isOverlined = false;
  bool isStruckThrough = false;
};

/// A raster image: its corners, and the file that the drawing names, not opened.
struct DrawImage {
  AcGePoint3d origin;  // lower left
  AcGeVector3d u;      // along the whole lower edge
  AcGeVector3d v;      // along the whole left edge
  std::wstring path;
  std::vector<AcGePoint3d> clip;  // corners of what shows; empty for all of it
};

class HOST_API DrawSink {
 public:
  virtual ~DrawSink();
  /// Called for an entity of the drawn space before its primitives, not for what its blocks hold.
  /// False leaves it out, uncounted.
  virtual bool beginEntity(const AcDbObjectId& entity);
  virtual void stroke(const DrawPath& path, const DrawLook& look) = 0;
  /// Fills what lies inside an odd number of the closed paths.
  virtual void fill(const std::vector<DrawPath>& paths, const DrawLook& look) = 0;
  /// Hides what was drawn before inside the closed path, with the paper's colour.
  virtual void wipe(const DrawPath& path) = 0;
  virtual void text(const DrawText& text, const DrawLook& look) = 0;
  virtual void image(const DrawImage& image, const DrawLook& look) = 0;
  /// What follows, up to the endClip() that belongs to it, shows inside the closed path alone: a
  /// viewport of a layout. Clips are nested. A sink that does nothing here shows too much.
  virtual void beginClip(const DrawPath& path);
  virtual void endClip();
};

struct DrawOptions {
  /// What is looked at, where that is known: rays and construction lines are cut off there.
  AcDbExtents view;
  /// Drawing units of the smallest thing that can be told apart; 0 where nobody knows. Points of
  /// relative size, curves without exact pieces and dense patterns go by it.
  double pixel = 0.0;
  /// Layers that are off or frozen and entities that are invisible are drawn all the same.
  bool isAllShown = false;
  /// Leaves out, and counts, what lies on layers that are not plotted: what paper shows.
  bool isPlot = false;
  /// Hatches are filled whatever their pattern is, and areas whether or not the drawing shows them
  /// filled: for who asks where something is filled.
  bool isAllFilled = false;
  /// Called now and then; false stops the drawing.
  std::function<bool()> goesOn;
};

struct DrawReport {
  Adesk::UInt64 drawn = 0;  // entities of the space that showed something
  /// Entities, inside blocks too, that nobody can draw: how many of which kind.
  std::map<std::wstring, Adesk::UInt64> leftOut;
  /// Entities, inside blocks too, on layers that are not plotted: how many on which layer.
  std::map<std::wstring, Adesk::UInt64> notPlotted;
  /// Block references drawn as their frames, because blocks show more than anybody could paint.
  Adesk::UInt64 framed = 0;
  bool isStopped = false;
};

/// Draws what a block holds (model space, a layout's space, any block), in draw order.
/// Fails: an empty report for what is no block.
HOST_API DrawReport drawBlock(const AcDbObjectId& block, DrawSink& sink,
                              const DrawOptions& options = {});
/// Draws one entity with the blocks that it shows.
HOST_API DrawReport drawEntity(const AcDbObjectId& entity, DrawSink& sink,
                               const DrawOptions& options = {});

}  // namespace hostx
