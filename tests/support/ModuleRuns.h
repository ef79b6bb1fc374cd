// The module's algorithms as functions of values, with the results of the direct forms: a test
// hands in lists and reads lists, and who deletes which record is settled here. All of them
// read the scale of the project that is open.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "AxisLineCutAlg.h"
#include "BreakWallAlgorithm.h"
#include "DrawWallAlgorithm/DrawWallLikeAlgorithm.h"
#include "DrawWallAlgorithm/ShowWallLikeAlgorithm.h"
#include "MergeGougeAlgorithm.h"
#include "MergeWallAlgorithm.h"
#include "oracle/BreakWallOracle.h"
#include "oracle/DrawWallOracle.h"
#include "oracle/MergeOracle.h"
#include "oracle/ShowWallOracle.h"

namespace quoin::test {

/// Break points that the caller names, by line index.
using NamedCuts = std::map<std::size_t, std::vector<AcGePoint3d>>;

inline std::vector<oracle::Piece> breakWithModule(const std::vector<WallLineLikeSeg>& lines,
                                                  const NamedCuts& cuts = {}) {
  CBreakWallAlgorithm algorithm;
  std::map<const WallLineLikeSeg*, std::size_t> indexOf;
  for (const WallLineLikeSeg& line : lines) {
    algorithm.GetSrcWallLines().push_back(new WallLineLikeSeg(line));
    indexOf.emplace(algorithm.GetSrcWallLines().back(), indexOf.size());
  }
  for (const auto& [index, points] : cuts) {
    AcArray<AcGePoint3d> array;
    for (const AcGePoint3d& pt : points) {
      array.append(pt);
    }
    algorithm.AppendWallBreakPnt(algorithm.GetSrcWallLines().at(index), array);
  }
  algorithm.SplitWallLines();
  std::vector<oracle::Piece> pieces;
  for (const WallLineLikeSeg* piece : algorithm.GetNewWallLines()) {
    pieces.push_back({piece->ptStart, piece->ptEnd, indexOf.at(piece->pSrcLine)});
  }
  return pieces;
}

inline oracle::DrawnLine drawWithModule(const std::vector<WallLineLikeSeg>& lines,
                                        const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd) {
  std::vector<std::unique_ptr<WallLineLikeSeg>> records;
  std::map<const WallLineLikeSeg*, std::size_t> indexOf;
  CDrawWallLikeAlgorithm algorithm;
  for (const WallLineLikeSeg& line : lines) {
    records.push_back(std::make_unique<WallLineLikeSeg>(line));
    algorithm.GetSrcWallLines().push_back(records.back().get());
    indexOf.emplace(records.back().get(), indexOf.size());
  }
  oracle::DrawnLine drawn;
  for (const AcGePoint3d& pt : algorithm.CalcNewWallLine(ptStart, ptEnd)) {
    drawn.points.push_back(pt);
  }
  for (const auto& record : records) {
    drawn.lines.push_back(*record);
  }
  for (const WallLineLikeSeg* line : algorithm.GetSrcModifyiedWallLines()) {
    drawn.modified.push_back(indexOf.at(line));
    records[drawn.modified.back()].release();  // has passed to the algorithm
  }
  for (const WallLineLikeSeg* piece : algorithm.GetSrcNewWallLines()) {
    drawn.cutOff.push_back({piece->ptStart, piece->ptEnd, indexOf.at(piece->pSrcLine)});
  }
  for (const WallLineLikeSeg* piece : algorithm.GetNewWallLines()) {
    drawn.pieces.push_back(*piece);
  }
  return drawn;
}

inline std::vector<AxisLikeLineSeg> cutAxesWithModule(
    const std::vector<std::optional<AxisLikeLineSeg>>& lines) {
  AxisLineCutAlg algorithm;
  for (const auto& line : lines) {
    algorithm.AppendSrcAxisLine(line ? new AxisLikeLineSeg(*line) : nullptr);
  }
  algorithm.CutAxisLines();
  std::vector<AxisLikeLineSeg> results;
  for (const AxisLikeLineSeg* line : algorithm.GetDestAxisLines()) {
    results.push_back(*line);
  }
  return results;
}

namespace detail {

/// Numbers of records, for the merges' lists of pointers.
template <class Record, class Pointers>
std::vector<std::size_t> numbersOf(const Pointers& pointers, const std::vector<Record*>& records) {
  std::map<const Record*, std::size_t> indexOf;
  for (const Record* record : records) {
    indexOf.emplace(record, indexOf.size());
  }
  std::vector<std::size_t> indices;
  for (const Record* pointer : pointers) {
    indices.push_back(indexOf.at(pointer));
  }
  return indices;
}

}  // namespace detail

/// Merges in place; returns the indices of the result set.
inline std::set<std::size_t> mergeGougesWithModule(std::vector<oracle::GougeLine>& lines,
                                                   const std::vector<AcGePoint3d>& breakPoints) {
  CMergeGougeAlgorithm algorithm;
  std::vector<MergeGougeSeg*>& records = algorithm.GetSrcGougeLines();
  for (const oracle::GougeLine& line : lines) {
    records.push_back(
        new MergeGougeSeg{line.ptStart, line.ptEnd, line.attr1, line.attr2, line.attr3, {}});
  }
  for (const AcGePoint3d& pt : breakPoints) {
    algorithm.AppendBreakPnt(pt);
  }
  algorithm.MergeGougeLines();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const MergeGougeSeg& record = *records[i];
    lines[i] = {record.ptStart, record.ptEnd,  record.dAttr1,
                record.dAttr2,  record.dAttr3, detail::numbersOf(record.mergedSegs, records)};
  }
  const auto result = detail::numbersOf(algorithm.GetMergeGougeLines(), records);
  return {result.begin(), result.end()};
}

inline std::set<std::size_t> mergeWallsWithModule(std::vector<oracle::WallLine>& lines,
                                                  const std::vector<AcGePoint3d>& breakPoints) {
  CMergeWallAlgorithm algorithm;
  std::vector<MergeWallSeg*>& records = algorithm.GetSrcWallLines();
  for (const oracle::WallLine& line : lines) {
    records.push_back(new MergeWallSeg{line.ptStart,
                                       line.ptEnd,
                                       line.side1,
                                       line.side2,
                                       line.attr1,
                                       line.attr2,
                                       line.startFixed,
                                       line.endFixed,
                                       {}});
  }
  for (const AcGePoint3d& pt : breakPoints) {
    algorithm.AppendBreakPnt(pt);
  }
  algorithm.MergeWallLines();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const MergeWallSeg& record = *records[i];
    lines[i] = {
        record.ptStart,     record.ptEnd,     record.dSide1,
        record.dSide2,      record.dAttr1,    record.dAttr2,
        record.bStartFixed, record.bEndFixed, detail::numbersOf(record.mergedSegs, records)};
  }
  const auto result = detail::numbersOf(algorithm.GetMergeWallLines(), records);
  return {result.begin(), result.end()};
}

namespace detail {

/// Fills the algorithm. The show wall stands among all walls, so that it is released too.
inline void fill(CShowWallLikeAlgorithm& algorithm, const WallEntityLikeRect& show,
                 const std::vector<WallEntityLikeRect>& walls) {
  *algorithm.GetShowWall() = show;
  for (const WallEntityLikeRect& wall : walls) {
    algorithm.GetAllWallRect().push_back(new WallEntityLikeRect(wall));
  }
  algorithm.GetAllWallRect().push_back(algorithm.GetShowWall());
}

inline std::vector<oracle::Connection> connections(
    const std::vector<WallEntityLikeRect*>& records) {
  std::vector<oracle::Connection> result;
  for (const WallEntityLikeRect* record : records) {
    result.push_back({record->ptStart, record->ptEnd});
  }
  return result;
}

}  // namespace detail

inline oracle::ShownWall showWithModule(const WallEntityLikeRect& show,
                                        const std::vector<WallEntityLikeRect>& walls) {
  CShowWallLikeAlgorithm algorithm;
  detail::fill(algorithm, show, walls);
  algorithm.CalcShowWall();
  oracle::ShownWall shown;
  shown.left = *algorithm.GetLeftWall();
  shown.right = *algorithm.GetRightWall();
  if (algorithm.GetStartWall()) {
    shown.start = *algorithm.GetStartWall();
  }
  if (algorithm.GetEndWall()) {
    shown.end = *algorithm.GetEndWall();
  }
  shown.startConnections = detail::connections(algorithm.GetStartWallArray());
  shown.endConnections = detail::connections(algorithm.GetEndWallArray());
  return shown;
}

inline oracle::PreparedWall prepareWithModule(const WallEntityLikeRect& show,
                                              const std::vector<WallEntityLikeRect>& walls) {
  CShowWallLikeAlgorithm algorithm;
  detail::fill(algorithm, show, walls);
  oracle::PreparedWall prepared;
  prepared.data = algorithm.CalcShowWallPrepareFor3d();
  prepared.startConnections = detail::connections(algorithm.GetStartWallArray());
  prepared.endConnections = detail::connections(algorithm.GetEndWallArray());
  return prepared;
}

}  // namespace quoin::test
