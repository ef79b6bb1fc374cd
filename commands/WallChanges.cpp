#include "commands/WallChanges.h"

#include <algorithm>
#include <memory>

#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/Polylines.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace quoin::commands {

namespace {

bool sameBits(const AcGePoint3d& a, const AcGePoint3d& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}

class Changer {
 public:
  explicit Changer(Drawing& drawing) : m_drawing(drawing) {}

  void changeLine(WallChange& change) {
    const AcDbObjectId id = change.source.entity;
    AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
    check(line.openStatus(), m_drawing, id, "open the line");
    const AcDbObjectId block = line->ownerId();
    for (std::size_t i = 1; i < change.pieces.size(); ++i) {
      std::unique_ptr<AcDbLine> copy(static_cast<AcDbLine*>(line->clone()));
      setEnds(*copy, change.pieces[i], id);
      change.pieces[i].handle = appendEntity(m_drawing, block, std::move(copy));
    }
    setEnds(*line.object(), change.pieces.front(), id);
    change.pieces.front().handle = handleText(id);
  }

  /// All cut segments of one polyline.
  void changePolyline(std::vector<WallChange>::iterator first,
                      std::vector<WallChange>::iterator last) {
    const AcDbObjectId id = first->source.entity;
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    check(entity.openStatus(), m_drawing, id, "open the polyline");
    const AcDbObjectId block = entity->ownerId();
    const PolylineShape shape = readPolyline(*entity.object());
    const std::vector<std::vector<PolylineVertex>> rest = restOf(shape, first, last);

    // New entities are made before the polyline changes, from what it still is.
    std::vector<std::unique_ptr<AcDbEntity>> made;
    std::vector<WallPiece*> pieces;
    PolylineParts parts(*entity.object(), shape, m_drawing);
    const bool keepsFirst = rest.empty() && isWide(shape, *first);
    for (auto change = first; change != last; ++change) {
      for (WallPiece& piece : change->pieces) {
        pieces.push_back(&piece);
        made.push_back(keepsFirst && made.empty() ? nullptr
                                                  : makePiece(parts, shape, *change, piece));
      }
    }
    for (std::size_t i = 1; i < rest.size(); ++i) {
      appendEntity(m_drawing, block, parts.polyline(rest[i]));
    }
    std::size_t next = 0;
    if (!rest.empty()) {
      reducePolyline(*entity.object(), rest.front(), m_drawing);
      entity.close();
    } else {
      // Nothing is left of the polyline: the first piece takes its place and handle.
      if (keepsFirst) {
        reducePolyline(*entity.object(), widePiece(shape, *first, *pieces.front()), m_drawing);
        entity.close();
      } else {
        AcDbEntity* old = nullptr;
        entity.release(old);
        check(old->handOverTo(made.front().get()), m_drawing, id, "replace the polyline by lines");
        delete old;
        made.front().release()->close();
      }
      pieces.front()->handle = handleText(id);
      next = 1;
    }
    for (; next < made.size(); ++next) {
      pieces[next]->handle = appendEntity(m_drawing, block, std::move(made[next]));
    }
  }

 private:
  void setEnds(AcDbLine& line, const WallPiece& piece, const AcDbObjectId& source) {
    if (!sameBits(line.startPoint(), piece.start)) {
      check(line.setStartPoint(piece.start), m_drawing, source, "move the line's start");
    }
    if (!sameBits(line.endPoint(), piece.end)) {
      check(line.setEndPoint(piece.end), m_drawing, source, "move the line's end");
    }
  }

  static bool isWide(const PolylineShape& shape, const WallChange& change) {
    const PolylineVertex& vertex = shape.vertices[static_cast<std::size_t>(change.source.segment)];
    return vertex.startWidth != 0.0 || vertex.endWidth != 0.0;
  }

  /// A piece of a segment with a width is a polyline, since lines have none.
  static std::unique_ptr<AcDbEntity> makePiece(PolylineParts& parts, const PolylineShape& shape,
                                               const WallChange& change, const WallPiece& piece) {
    if (isWide(shape, change)) {
      return parts.polyline(widePiece(shape, change, piece));
    }
    return parts.line(piece.start, piece.end);
  }

  /// The vertices of a piece, with its share of the taper.
  static std::vector<PolylineVertex> widePiece(const PolylineShape& shape, const WallChange& change,
                                               const WallPiece& piece) {
    const auto segment = static_cast<std::size_t>(change.source.segment);
    const PolylineVertex& from = shape.vertices[segment];
    const PolylineVertex& to = shape.segmentEnd(segment);
    const double length = from.world.distanceTo(to.world);
    const AcGeMatrix3d toPlane = AcGeMatrix3d().setToWorldToPlane(shape.normal);
    const auto vertexAt = [&](const AcGePoint3d& point) {
      PolylineVertex vertex;
      vertex.world = point;
      vertex.own = sameBits(point, from.world) ? from.own
                   : sameBits(point, to.world) ? to.own
                                               : toPlane * point;
      const double share = from.world.distanceTo(point) / length;
      const double width = from.startWidth == from.endWidth
                               ? from.startWidth
                               : from.startWidth + (from.endWidth - from.startWidth) * share;
      vertex.startWidth = vertex.endWidth = width;
      return vertex;
    };
    std::vector<PolylineVertex> vertices{vertexAt(piece.start), vertexAt(piece.end)};
    vertices.front().endWidth = vertices.back().startWidth;
    return vertices;
  }

  /// The runs of segments that are not cut, in order; that of a closed polyline across its
  /// first vertex is one run.
  static std::vector<std::vector<PolylineVertex>> restOf(
      const PolylineShape& shape, std::vector<WallChange>::const_iterator first,
      std::vector<WallChange>::const_iterator last) {
    const std::size_t count = shape.segmentCount();
    std::vector<bool> isCut(count, false);
    for (auto change = first; change != last; ++change) {
      isCut[static_cast<std::size_t>(change->source.segment)] = true;
    }
    std::size_t begin = 0;
    if (shape.isClosed) {
      begin = static_cast<std::size_t>(first->source.segment) + 1;
    }
    std::vector<std::vector<PolylineVertex>> runs;
    bool continues = false;
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t segment = (begin + i) % count;
      if (isCut[segment]) {
        continues = false;
        continue;
      }
      if (!continues) {
        runs.push_back({shape.vertices[segment]});
      } else {
        runs.back().back() = shape.vertices[segment];
      }
      runs.back().push_back(shape.segmentEnd(segment));
      continues = true;
    }
    for (std::vector<PolylineVertex>& run : runs) {
      run.back().bulge = 0.0;  // no segment follows the last vertex
    }
    return runs;
  }

  Drawing& m_drawing;
};

}  // namespace

void applyWallChanges(Drawing& drawing, std::vector<WallChange>& changes) {
  Changer changer(drawing);
  Progress progress("Changing the drawing");
  for (auto change = changes.begin(); change != changes.end();) {
    if (!progress.report(static_cast<double>(change - changes.begin()) /
                         static_cast<double>(changes.size()))) {
      Progress::checkInterrupt();
    }
    const auto last = std::find_if(change, changes.end(), [&](const WallChange& other) {
      return other.source.entity != change->source.entity;
    });
    if (change->source.isPolylineSegment()) {
      changer.changePolyline(change, last);
    } else {
      changer.changeLine(*change);
    }
    change = last;
  }
}

std::string appendEntity(Drawing& drawing, const AcDbObjectId& block,
                         std::unique_ptr<AcDbEntity> entity) {
  AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
  check(record.openStatus(), drawing, block, "open the block");
  AcDbObjectId id;
  check(record->appendAcDbEntity(id, entity.get()), drawing, block, "add an entity");
  entity.release()->close();
  return handleText(id);
}

nlohmann::json piecesJson(const std::vector<WallPiece>& pieces) {
  nlohmann::json json = nlohmann::json::array();
  for (const WallPiece& piece : pieces) {
    json.push_back(lineJson(piece.handle, piece.start, piece.end));
  }
  return json;
}

nlohmann::json changesJson(const std::vector<WallChange>& changes) {
  nlohmann::json json = nlohmann::json::array();
  for (const WallChange& change : changes) {
    nlohmann::json entry = change.report;
    entry["results"] = piecesJson(change.pieces);
    if (change.source.isPolylineSegment()) {
      entry["segment"] = change.source.segment;
    }
    json.push_back(std::move(entry));
  }
  return json;
}

}  // namespace quoin::commands
