// Inputs and results of the algorithms as the lines of a corpus case, both ways: a failing
// random set prints itself as a case that can be pasted into the corpus.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "AxisLineCutAlg.h"
#include "oracle/BreakWallOracle.h"
#include "oracle/DrawWallOracle.h"
#include "oracle/MergeOracle.h"
#include "oracle/ShowWallOracle.h"
#include "support/Corpus.h"
#include "support/GeometryText.h"
#include "support/ModuleRuns.h"

namespace quoin::test {

using Lines = std::vector<std::string>;

inline std::string joined(const Lines& lines) {
  std::string result;
  for (const std::string& line : lines) {
    result += line + "\n";
  }
  return result;
}

template <class Line>
std::string lineText(const Line& line) {
  return text(line.ptStart, line.ptEnd);
}

template <class Line>
std::string numberedText(std::size_t number, const Line& line) {
  return std::to_string(number) + ": " + lineText(line);
}

// --- inputs out -----------------------------------------------------------------------------

template <class LinesOfCase>
std::string linesAsInput(const LinesOfCase& lines) {
  std::string result;
  for (const auto& line : lines) {
    result += "line " + lineText(line) + "\n";
  }
  return result;
}

inline std::string asInput(const std::vector<WallLineLikeSeg>& lines) {
  return linesAsInput(lines);
}

inline std::string asInput(const std::vector<std::optional<AxisLikeLineSeg>>& lines) {
  std::string result;
  for (const auto& line : lines) {
    result += line ? "line " + lineText(*line) + "\n" : "null\n";
  }
  return result;
}

inline std::string asInput(const std::vector<oracle::GougeLine>& lines) {
  std::string result;
  for (const oracle::GougeLine& line : lines) {
    result += "line " + lineText(line) + " | " + text(line.attr1) + " " + text(line.attr2) + " " +
              text(line.attr3) + "\n";
  }
  return result;
}

inline std::string asInput(const std::vector<oracle::WallLine>& lines) {
  std::string result;
  for (const oracle::WallLine& line : lines) {
    result += "line " + lineText(line) + " | " + text(line.side1) + " " + text(line.side2) + " " +
              text(line.attr1) + " " + text(line.attr2) + (line.startFixed ? " start-fixed" : "") +
              (line.endFixed ? " end-fixed" : "") + "\n";
  }
  return result;
}

inline std::string wallText(const WallEntityLikeRect& wall) {
  return lineText(wall) + " | " + text(wall.dLeftWidth) + " " + text(wall.dRightWidth);
}

inline std::string asInput(const WallEntityLikeRect& show,
                           const std::vector<WallEntityLikeRect>& walls) {
  std::string result = "show " + wallText(show) + "\n";
  for (const WallEntityLikeRect& wall : walls) {
    result += "wall " + wallText(wall) + "\n";
  }
  return result;
}

// --- results out ----------------------------------------------------------------------------

inline Lines asLines(const std::vector<oracle::Piece>& pieces, const std::string& key = "piece ") {
  Lines lines;
  for (const oracle::Piece& piece : pieces) {
    lines.push_back(key + numberedText(piece.source, piece));
  }
  return lines;
}

inline Lines asLines(const oracle::DrawnLine& drawn) {
  Lines lines;
  for (const AcGePoint3d& pt : drawn.points) {
    lines.push_back("point " + text(pt));
  }
  for (const std::size_t number : drawn.modified) {
    lines.push_back("modified " + numberedText(number, drawn.lines[number]));
  }
  for (const std::string& line : asLines(drawn.cutOff, "cutoff ")) {
    lines.push_back(line);
  }
  for (const WallLineLikeSeg& piece : drawn.pieces) {
    lines.push_back("piece " + lineText(piece));
  }
  return lines;
}

inline Lines asLines(const std::vector<AxisLikeLineSeg>& results) {
  Lines lines;
  for (const AxisLikeLineSeg& line : results) {
    lines.push_back("line " + lineText(line));
  }
  return lines;
}

inline std::string absorbedText(const std::vector<std::size_t>& merged) {
  std::string result = " <-";
  for (const std::size_t number : merged) {
    result += " " + std::to_string(number);
  }
  return result;
}

inline Lines asLines(const std::vector<oracle::GougeLine>& lines,
                     const std::set<std::size_t>& result) {
  Lines texts;
  for (const std::size_t number : result) {
    texts.push_back("merged " + numberedText(number, lines[number]) +
                    absorbedText(lines[number].merged));
  }
  return texts;
}

inline Lines asLines(const std::vector<oracle::WallLine>& lines,
                     const std::set<std::size_t>& result) {
  Lines texts;
  for (const std::size_t number : result) {
    const oracle::WallLine& line = lines[number];
    texts.push_back("merged " + numberedText(number, line) + " | " + text(line.side1) + " " +
                    text(line.side2) + absorbedText(line.merged));
  }
  return texts;
}

inline void addConnections(Lines& lines, const std::string& key,
                           const std::vector<oracle::Connection>& connections) {
  for (const oracle::Connection& connection : connections) {
    lines.push_back(key + lineText(connection));
  }
}

inline Lines asLines(const oracle::ShownWall& shown) {
  Lines lines{"left " + lineText(shown.left), "right " + lineText(shown.right),
              shown.start ? "start " + lineText(*shown.start) : "start met",
              shown.end ? "end " + lineText(*shown.end) : "end met"};
  addConnections(lines, "start-connection ", shown.startConnections);
  addConnections(lines, "end-connection ", shown.endConnections);
  return lines;
}

inline Lines asLines(const oracle::PreparedWall& prepared) {
  const PrepareFrom2dTo3dData& data = prepared.data;
  const auto face = [](bool isFree, const AcGePoint3d& left, const AcGePoint3d& middle,
                       const AcGePoint3d& right) {
    return std::string(isFree ? "free " : "met ") + text(left) + " " + text(middle) + " " +
           text(right);
  };
  Lines lines{
      "start " + face(data.bHasStartWall, data.ptStartLeft, data.ptStartMid, data.ptStartRight),
      "end " + face(data.bHasEndWall, data.ptEndLeft, data.ptEndMid, data.ptEndRight)};
  addConnections(lines, "start-connection ", prepared.startConnections);
  addConnections(lines, "end-connection ", prepared.endConnections);
  return lines;
}

// --- inputs in ------------------------------------------------------------------------------

/// "P P | number number ... word ...": a line with what belongs to it.
struct RecordText {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
  std::vector<double> values;
  std::set<std::string> words;

  /// The value with this number; 0 where the text has fewer.
  double value(std::size_t number) const { return number < values.size() ? values[number] : 0.0; }
};

inline RecordText recordText(std::string_view source) {
  RecordText record;
  record.ptStart = detail::takePoint(source);
  record.ptEnd = detail::takePoint(source);
  detail::skip(source, " |");
  while (!source.empty()) {
    const std::string item(source.substr(0, source.find(' ')));
    if (item.find("fixed") != std::string::npos) {
      record.words.insert(item);
    } else {
      std::string_view number = item;
      record.values.push_back(detail::takeNumber(number));
    }
    source.remove_prefix(item.size());
    detail::skip(source, " ");
  }
  return record;
}

/// The values of all input lines with this key.
inline Lines valuesOf(const CorpusCase& entry, std::string_view wanted) {
  Lines values;
  for (const auto& [key, value] : entry.input) {
    if (key == wanted) {
      values.push_back(value);
    }
  }
  return values;
}

inline std::vector<WallLineLikeSeg> wallLinesOf(const CorpusCase& entry) {
  std::vector<WallLineLikeSeg> lines;
  for (const std::string& value : valuesOf(entry, "line")) {
    const RecordText record = recordText(value);
    lines.emplace_back(record.ptStart, record.ptEnd);
  }
  return lines;
}

/// "cut 0: P P ...": break points that the caller names.
inline NamedCuts cutsOf(const CorpusCase& entry) {
  NamedCuts cuts;
  for (const std::string& value : valuesOf(entry, "cut")) {
    std::string_view rest = value;
    const auto number = static_cast<std::size_t>(detail::takeNumber(rest));
    detail::skip(rest, ": ");
    while (!rest.empty()) {
      cuts[number].push_back(detail::takePoint(rest));
      detail::skip(rest, " ");
    }
  }
  return cuts;
}

inline std::vector<std::optional<AxisLikeLineSeg>> axesOf(const CorpusCase& entry) {
  std::vector<std::optional<AxisLikeLineSeg>> lines;
  for (const auto& [key, value] : entry.input) {
    if (key == "null") {
      lines.emplace_back();
    } else {
      const RecordText record = recordText(value);
      lines.push_back(AxisLikeLineSeg{record.ptStart, record.ptEnd});
    }
  }
  return lines;
}

inline std::vector<AcGePoint3d> breakPointsOf(const CorpusCase& entry) {
  std::vector<AcGePoint3d> points;
  for (const std::string& value : valuesOf(entry, "break")) {
    points.push_back(point(value));
  }
  return points;
}

inline std::vector<oracle::GougeLine> gougesOf(const CorpusCase& entry) {
  std::vector<oracle::GougeLine> lines;
  for (const std::string& value : valuesOf(entry, "line")) {
    const RecordText record = recordText(value);
    lines.push_back(
        {record.ptStart, record.ptEnd, record.value(0), record.value(1), record.value(2), {}});
  }
  return lines;
}

inline std::vector<oracle::WallLine> mergeWallsOf(const CorpusCase& entry) {
  std::vector<oracle::WallLine> lines;
  for (const std::string& value : valuesOf(entry, "line")) {
    const RecordText record = recordText(value);
    lines.push_back({record.ptStart,
                     record.ptEnd,
                     record.value(0),
                     record.value(1),
                     record.value(2),
                     record.value(3),
                     record.words.count("start-fixed") > 0,
                     record.words.count("end-fixed") > 0,
                     {}});
  }
  return lines;
}

inline std::vector<WallEntityLikeRect> wallsOf(const CorpusCase& entry, std::string_view key) {
  std::vector<WallEntityLikeRect> walls;
  for (const std::string& value : valuesOf(entry, key)) {
    const RecordText record = recordText(value);
    walls.push_back({record.ptStart, record.ptEnd, record.value(0), record.value(1)});
  }
  return walls;
}

}  // namespace quoin::test
