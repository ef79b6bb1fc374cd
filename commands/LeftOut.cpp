#include "commands/LeftOut.h"

#include <fmt/format.h>

#include "commands/ReportFields.h"
#include "commands/Words.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// More names than these nobody reads in one line.
constexpr std::size_t kMostNames = 5;

std::string linesText(double count) {
  constexpr double kCountable = 1.0e15;
  return count <= kCountable ? countText(static_cast<std::size_t>(count), "line")
                             : "more than 1e15 lines";
}

double linesInBlocks(const LeftOut& leftOut) {
  double sum = 0.0;
  for (const InsideShare& share : leftOut.blocks) {
    sum += share.lines;
  }
  return sum;
}

std::string blockNames(const LeftOut& leftOut) {
  std::string text;
  for (std::size_t i = 0; i < leftOut.blocks.size() && i < kMostNames; ++i) {
    const InsideShare& share = leftOut.blocks[i];
    text += fmt::format("{}{} {}", i == 0 ? "" : ", ", share.name,
                        share.times == 1 ? "once" : fmt::format("{} times", share.times));
  }
  if (leftOut.blocks.size() > kMostNames) {
    text += fmt::format(" and {} more", leftOut.blocks.size() - kMostNames);
  }
  return text;
}

void tellInside(const LeftOut& leftOut, bool canTakeInside, Report& report) {
  const std::string outcome = leftOut.isInsideCut     ? "taken along"
                              : leftOut.isInsideTaken ? "taken along, not cut themselves"
                              : canTakeInside ? "not worked on; --in-blocks takes them along"
                                              : "not worked on";
  if (!leftOut.blocks.empty()) {
    report.line("inside blocks on these layers: {} ({}): {}", linesText(linesInBlocks(leftOut)),
                blockNames(leftOut), outcome);
  }
  if (leftOut.multilines.times > 0) {
    report.line("in multilines on these layers: {} ({}): {}", linesText(leftOut.multilines.lines),
                countText(leftOut.multilines.times, "MLINE"), outcome);
  }
  if (leftOut.isCutShort) {
    report.warn("the blocks hold more lines than are taken along; the rest is left out");
  }
}

}  // namespace

void tellLeftOut(const Drawing& drawing, const LeftOut& leftOut, bool canTakeInside,
                 Report& report) {
  if (leftOut.arcSegments > 0) {
    report.line("left out, arcs of polylines: {}", countText(leftOut.arcSegments, "segment"));
  }
  if (!leftOut.countOfKind.empty()) {
    report.line("left out, of other kinds on these layers: {}", kindsText(leftOut.countOfKind));
  }
  tellInside(leftOut, canTakeInside, report);
  report.list(leftOut.skipped.size(), [&](std::size_t i) {
    const SkippedEntity& skipped = leftOut.skipped[i];
    return fmt::format("skipped: {} {}", describe(drawing, skipped.entity), skipped.reason);
  });
}

nlohmann::json skippedJson(const Drawing& drawing, const std::vector<SkippedEntity>& skipped) {
  nlohmann::json json = nlohmann::json::array();
  for (const SkippedEntity& one : skipped) {
    json.push_back(sourceJson(drawing, one.entity));
    json.back()["reason"] = one.reason;
  }
  return json;
}

void addLeftOut(const Drawing& drawing, const LeftOut& leftOut, nlohmann::json& report) {
  report["arcSegments"] = leftOut.arcSegments;
  report["otherEntities"] = kindsJson(leftOut.countOfKind);
  report["insideBlocks"] = nlohmann::json::array();
  for (const InsideShare& share : leftOut.blocks) {
    report["insideBlocks"].push_back(
        {{"block", share.name}, {"inserts", share.times}, {"lines", share.lines}});
  }
  report["multilines"] = {{"count", leftOut.multilines.times}, {"lines", leftOut.multilines.lines}};
  report["skipped"] = skippedJson(drawing, leftOut.skipped);
}

std::string leftOutText(const LeftOut& leftOut) {
  std::vector<std::string> parts;
  if (!leftOut.countOfKind.empty()) {
    parts.push_back(kindsText(leftOut.countOfKind));
  }
  if (leftOut.arcSegments > 0) {
    parts.push_back(countText(leftOut.arcSegments, "arc segment") + " of polylines");
  }
  if (!leftOut.blocks.empty()) {
    parts.push_back(linesText(linesInBlocks(leftOut)) + " inside blocks (" + blockNames(leftOut) +
                    ")");
  }
  if (leftOut.multilines.times > 0) {
    parts.push_back(countText(leftOut.multilines.times, "MLINE"));
  }
  if (!leftOut.skipped.empty()) {
    parts.push_back(countText(leftOut.skipped.size(), "line") + " that cannot be used");
  }
  return parts.empty() ? "nothing" : fmt::format("{}", fmt::join(parts, ", "));
}

void tellLeftOutOf(const Drawing& drawing, const std::vector<SkippedEntity>& leftOut,
                   Report& report) {
  report.list(leftOut.size(), [&](std::size_t i) {
    return fmt::format("left out: {} {}", describe(drawing, leftOut[i].entity), leftOut[i].reason);
  });
}

}  // namespace quoin::commands
