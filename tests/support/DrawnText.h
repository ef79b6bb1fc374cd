// What a drawing shows as text, a primitive a line: what a recording sink saw.
#pragma once

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "dbsymutl.h"
#include "embedded/os/Utf8.h"
#include "hostdraw.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {

/// "12.5": as many digits as are worth comparing; never "-0".
inline std::string shortNumber(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.5g", std::fabs(value) < 1e-9 ? 0.0 : value);
  return text;
}

inline std::string shortPoint(const AcGePoint3d& point) {
  std::string text = shortNumber(point.x) + "," + shortNumber(point.y);
  return std::fabs(point.z) < 1e-9 ? text : text + "," + shortNumber(point.z);
}

/// "0,0 -> 1,0 -> arc(0.5,0 by 180) 0,0 close".
inline std::string pathText(const hostx::DrawPath& path) {
  std::string text = shortPoint(path.start);
  for (const hostx::DrawPiece& piece : path.pieces) {
    text += " -> ";
    if (piece.kind == hostx::DrawPiece::Kind::Arc) {
      const double turn = piece.sweep * 180.0 / kPi;
      const double isTurned = piece.u.crossProduct(piece.v).z < 0.0 ? -1.0 : 1.0;
      text += "arc(" + shortPoint(piece.center) + " by " + shortNumber(turn * isTurned) + ") ";
    }
    text += shortPoint(piece.end);
  }
  return path.isClosed ? text + " close" : text;
}

/// Writes each primitive as a line; looks only where they are not the usual ones.
class RecordingSink : public hostx::DrawSink {
 public:
  std::vector<std::string> lines;
  AcDbExtents box;
  std::map<Adesk::UInt64, AcDbExtents> boxes;  // by the entity of the space
  std::size_t entities = 0;

  bool beginEntity(const AcDbObjectId& entity) override {
    ++entities;
    m_entity = entity.handle();
    return true;
  }
  void stroke(const hostx::DrawPath& path, const hostx::DrawLook& look) override {
    add(path);
    put("stroke " + pathText(path), look);
  }
  void fill(const std::vector<hostx::DrawPath>& paths, const hostx::DrawLook& look) override {
    std::string text = "fill";
    for (const hostx::DrawPath& path : paths) {
      add(path);
      text += (text.size() > 4 ? " | " : " ") + pathText(path);
    }
    put(text, look);
  }
  void wipe(const hostx::DrawPath& path) override {
    add(path);
    lines.push_back("wipe " + pathText(path));
  }
  void text(const hostx::DrawText& text, const hostx::DrawLook& look) override {
    const AcGePoint3d corner =
        text.position - text.along * (text.width * text.alongShare) - text.up * text.upShare;
    for (const double x : {0.0, text.width}) {
      for (const double y : {0.0, 1.0}) {
        addPoint(corner + text.along * x + text.up * y);
      }
    }
    std::string line = "text '" + os::toUtf8(text.text) + "' at " + shortPoint(text.position) +
                       " along " + shortPoint(AcGePoint3d() + text.along) + " up " +
                       shortPoint(AcGePoint3d() + text.up);
    if (text.alongShare != 0.0 || text.upShare != 0.0) {
      line += " share " + shortNumber(text.alongShare) + "," + shortNumber(text.upShare);
    }
    line += text.isUnderlined ? " underlined" : "";
    line += text.isOverlined ? " overlined" : "";
    line += text.isStruckThrough ? " struck" : "";
    line += text.isBold ? " bold" : "";
    line += text.isItalic ? " italic" : "";
    line += text.font.empty() ? "" : " font " + os::toUtf8(text.font);
    put(line, look);
    widths.push_back(text.width);
  }
  void image(const hostx::DrawImage& image, const hostx::DrawLook& look) override {
    const AcGePoint3d& origin = image.origin;
    for (const AcGePoint3d& corner :
         image.clip.empty() ? std::vector<AcGePoint3d>{origin, origin + image.u, origin + image.v,
                                                       origin + image.u + image.v}
                            : image.clip) {
      addPoint(corner);
    }
    put("image '" + os::toUtf8(image.path) + "' " + shortPoint(image.origin) + " u " +
            shortPoint(AcGePoint3d() + image.u) + " v " + shortPoint(AcGePoint3d() + image.v) +
            (image.clip.empty() ? "" : " clipped"),
        look);
  }
  void beginClip(const hostx::DrawPath& path) override {
    lines.push_back("clip " + pathText(path));
  }
  void endClip() override { lines.emplace_back("end of clip"); }

  std::string all() const {
    std::string text;
    for (const std::string& line : lines) {
      text += line + "\n";
    }
    return text;
  }
  std::vector<double> widths;  // of the texts
  bool hasLooks = true;

 private:
  void put(std::string line, const hostx::DrawLook& look) {
    if (hasLooks && !look.color.isForeground) {
      char color[16];
      std::snprintf(color, sizeof color, " #%02x%02x%02x", look.color.red, look.color.green,
                    look.color.blue);
      line += color;
    }
    if (hasLooks && look.lineWeight != 0.25) {
      line += " weight " + shortNumber(look.lineWeight);
    }
    if (hasLooks && !look.dashes.empty()) {
      line += " dashes";
      for (const double dash : look.dashes) {
        line += " " + shortNumber(dash);
      }
    }
    if (hasLooks && look.opacity != 1.0) {
      line += " opacity " + shortNumber(look.opacity);
    }
    lines.push_back(line);
  }
  void addPoint(const AcGePoint3d& point) {
    box.addPoint(point);
    boxes[m_entity].addPoint(point);
  }
  void add(const hostx::DrawPath& path) {
    addPoint(path.start);
    for (const hostx::DrawPiece& piece : path.pieces) {
      addPoint(piece.end);
      constexpr int kSteps = 32;
      for (int i = 1; i < kSteps && piece.kind == hostx::DrawPiece::Kind::Arc; ++i) {
        const double t = piece.start + piece.sweep * i / kSteps;
        addPoint(piece.center + piece.u * std::cos(t) + piece.v * std::sin(t));
      }
    }
  }

  Adesk::UInt64 m_entity = 0;
};

/// What a space of a drawing shows.
struct DrawnSpace {
  explicit DrawnSpace(const AcDbDatabase& database, const hostx::DrawOptions& options = {},
                      const wchar_t* block = ACDB_MODEL_SPACE) {
    AcDbObjectId space;
    acdbSymUtil()->getBlockId(space, block, const_cast<AcDbDatabase*>(&database));
    report = hostx::drawBlock(space, sink, options);
  }
  explicit DrawnSpace(const Drawing& drawing, const hostx::DrawOptions& options = {},
                      const wchar_t* block = ACDB_MODEL_SPACE)
      : DrawnSpace(drawing.db(), options, block) {
    EXPECT_EQ(drawing.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&drawing.db()));
  }
  RecordingSink sink;
  hostx::DrawReport report;
};

/// What the entities show, a primitive a line.
inline std::string drawn(const std::string& entities, const hostx::DrawOptions& options = {}) {
  return DrawnSpace(Drawing(smallDrawing(entities)), options).sink.all();
}

}  // namespace quoin::test
