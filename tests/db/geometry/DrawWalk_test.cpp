// Drawing blocks: looks, order, nesting, budgets.
#include <gtest/gtest.h>

#include <string>

#include "support/DrawnText.h"

namespace quoin::test {
namespace {

const std::string kLine = "0 LINE\n8 0\n10 0.0\n20 0.0\n11 1.0\n21 1.0\n";

std::string block(const std::string& name, const std::string& entities) {
  return "0 BLOCK\n8 0\n2 " + name + "\n70 0\n10 0.0\n20 0.0\n30 0.0\n3 " + name + "\n" + entities +
         "0 ENDBLK\n8 0\n";
}

std::string insert(const std::string& name, double x, const std::string& more = {}) {
  return "0 INSERT\n8 0\n2 " + name + "\n10 " + std::to_string(x) + "\n20 0.0\n" + more;
}

std::string layer(const std::string& name, int color, const std::string& linetype = "CONTINUOUS",
                  int flags = 0) {
  return "0 LAYER\n2 " + name + "\n70 " + std::to_string(flags) + "\n62 " + std::to_string(color) +
         "\n6 " + linetype + "\n";
}

std::string drawingOf(const std::string& blocks, const std::string& entities,
                      const std::string& layers = {}, const std::string& header = {}) {
  return asciiDxf("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n" + header +
                  "0 ENDSEC\n0 SECTION\n2 TABLES\n0 TABLE\n2 LTYPE\n70 1\n0 LTYPE\n2 DASHED\n70 "
                  "0\n3 - -\n72 65\n73 2\n40 3.0\n49 2.0\n49 -1.0\n0 ENDTAB\n0 TABLE\n2 LAYER\n70 "
                  "9\n" +
                  layers + "0 ENDTAB\n0 ENDSEC\n0 SECTION\n2 BLOCKS\n" + blocks +
                  "0 ENDSEC\n0 SECTION\n2 ENTITIES\n" + entities + "0 ENDSEC\n0 EOF\n");
}

std::string shown(const std::string& bytes, const hostx::DrawOptions& options = {}) {
  return DrawnSpace(Drawing(bytes), options).sink.all();
}

/// A block with a line, and `depth` more that each show the one below `times` times.
std::string nested(int depth, int times) {
  std::string blocks = block("B0", kLine);
  for (int i = 1; i <= depth; ++i) {
    std::string inserts;
    for (int j = 0; j < times; ++j) {
      inserts += insert("B" + std::to_string(i - 1), 1.0 + j);
    }
    blocks += block("B" + std::to_string(i), inserts);
  }
  return blocks;
}

TEST(DrawWalk, LooksComeFromLayersAndFromReferences) {
  const std::string contents =
      "0 LINE\n8 0\n10 0\n20 0\n11 1\n21 0\n"        // layer 0, by layer
      "0 LINE\n8 B\n62 0\n10 0\n20 1\n11 1\n21 1\n"  // by block
      "0 LINE\n8 B\n10 0\n20 2\n11 1\n21 2\n"        // by its own layer
      "0 LINE\n8 B\n6 BYBLOCK\n62 5\n10 0\n20 3\n11 1\n21 3\n";
  EXPECT_EQ(shown(drawingOf(block("D", contents),
                            "0 INSERT\n8 A\n62 3\n6 DASHED\n2 D\n10 0\n20 0\n" + kLine,
                            layer("A", 1) + layer("B", 2, "DASHED"))),
            "stroke 0,0 -> 1,0 #ff0000\n"
            "stroke 0,1 -> 1,1 #00ff00 dashes 2 -1\n"
            "stroke 0,2 -> 1,2 #ffff00 dashes 2 -1\n"
            "stroke 0,3 -> 1,3 #0000ff dashes 2 -1\n"
            "stroke 0,0 -> 1,1\n");
}

TEST(DrawWalk, LinetypesAreScaledByTheEntityTheDrawingAndTheBlock) {
  const std::string dashed = "0 LINE\n8 0\n6 DASHED\n48 0.5\n10 0\n20 0\n11 1\n21 0\n";
  EXPECT_EQ(shown(drawingOf(block("D", dashed), dashed + insert("D", 0.0, "41 3\n42 3\n43 3\n"), {},
                            "9 $LTSCALE\n40 10\n")),
            "stroke 0,0 -> 1,0 dashes 10 -5\n"
            "stroke 0,0 -> 3,0 dashes 30 -15\n");
  // Finer than a pixel, it is a line.
  hostx::DrawOptions coarse;
  coarse.pixel = 4.0;
  EXPECT_EQ(shown(drawingOf({}, dashed), coarse), "stroke 0,0 -> 1,0\n");
}

TEST(DrawWalk, LayersThatAreOffOrFrozenAreLeftOut) {
  const std::string contents =
      "0 LINE\n8 0\n10 0\n20 0\n11 1\n21 0\n"
      "0 LINE\n8 ON\n10 0\n20 1\n11 1\n21 1\n";
  const std::string layers =
      layer("ON", 7) + layer("OFF", -7) + layer("FROZEN", 7, "CONTINUOUS", 1);
  const auto on = [&](const std::string& name) {
    return drawingOf(block("D", contents),
                     "0 INSERT\n8 " + name + "\n2 D\n10 0\n20 0\n0 LINE\n8 " + name +
                         "\n10 5\n20 5\n11 6\n21 5\n",
                     layers);
  };
  EXPECT_EQ(shown(on("ON")), "stroke 0,0 -> 1,0\nstroke 0,1 -> 1,1\nstroke 5,5 -> 6,5\n");
  // What is off hides what lies on it, and not what a reference on it shows of other layers.
  EXPECT_EQ(shown(on("OFF")), "stroke 0,1 -> 1,1\n");
  EXPECT_EQ(shown(on("FROZEN")), "");
  hostx::DrawOptions all;
  all.isAllShown = true;
  EXPECT_EQ(shown(on("FROZEN"), all), "stroke 0,0 -> 1,0\nstroke 0,1 -> 1,1\nstroke 5,5 -> 6,5\n");
  EXPECT_EQ(shown(drawingOf({}, "0 LINE\n8 0\n60 1\n10 0\n20 0\n11 1\n21 0\n")), "");
}

TEST(DrawWalk, ArraysShowEveryCellThroughTheirTurn) {
  EXPECT_EQ(shown(drawingOf(block("D", kLine),
                            insert("D", 1.0, "50 90\n70 2\n71 2\n44 10\n45 20\n41 2\n"))),
            "stroke 1,0 -> 0,2\n"
            "stroke 1,10 -> 0,12\n"
            "stroke -19,0 -> -20,2\n"
            "stroke -19,10 -> -20,12\n");
}

TEST(DrawWalk, AttributesShowAboveTheBlockAndPromptsDoNot) {
  const std::string definition = "0 ATTDEF\n8 0\n10 0\n20 0\n40 1\n1 x\n3 p\n2 NAME\n70 0\n";
  const std::string attribute = "66 1\n0 ATTRIB\n8 0\n62 0\n10 7\n20 8\n40 2\n1 hall\n2 NAME\n70 ";
  const std::string end = "\n0 SEQEND\n8 0\n";
  EXPECT_EQ(shown(drawingOf(block("D", definition + kLine),
                            insert("D", 0.0, "62 1\n" + attribute + "0" + end) +
                                insert("D", 0.0, attribute + "1" + end))),
            "stroke 0,0 -> 1,1\n"
            "text 'hall' at 7,8 along 1,0 up 0,2 #ff0000\n"
            "stroke 0,0 -> 1,1\n");
  EXPECT_EQ(shown(drawingOf({}, definition)), "text 'NAME' at 0,0 along 1,0 up 0,1\n");
}

TEST(DrawWalk, BlocksInsideThemselvesShowNothingMore) {
  EXPECT_EQ(shown(drawingOf(block("A", kLine + insert("B", 1.0)) + block("B", insert("A", 2.0)),
                            insert("A", 0.0))),
            "stroke 0,0 -> 1,1\n");
}

TEST(DrawWalk, TenThousandNestedBlocksAreDrawn) {
  EXPECT_EQ(shown(drawingOf(nested(10'000, 1), insert("B10000", 0.0))),
            "stroke 10000,0 -> 10001,1\n");
}

/// Counts strokes and keeps the last one.
class CountingSink : public hostx::DrawSink {
 public:
  std::size_t strokes = 0;
  hostx::DrawPath last;
  void stroke(const hostx::DrawPath& path, const hostx::DrawLook&) override {
    ++strokes;
    last = path;
  }
  void fill(const std::vector<hostx::DrawPath>&, const hostx::DrawLook&) override {}
  void wipe(const hostx::DrawPath&) override {}
  void text(const hostx::DrawText&, const hostx::DrawLook&) override {}
  void image(const hostx::DrawImage&, const hostx::DrawLook&) override {}
};

hostx::DrawReport countInto(CountingSink& sink, const Drawing& drawing) {
  AcDbObjectId space;
  acdbSymUtil()->getBlockId(space, ACDB_MODEL_SPACE, &drawing.db());
  return hostx::drawBlock(space, sink);
}

TEST(DrawWalk, BeyondItsBudgetReferencesAreFrames) {
  const Drawing drawing(drawingOf(nested(8, 10), insert("B8", 0.0) + insert("B1", 50.0)));
  CountingSink sink;
  const hostx::DrawReport report = countInto(sink, drawing);
  EXPECT_GT(report.framed, 0u);
  EXPECT_LT(sink.strokes, 1'100'000u);
  EXPECT_EQ(report.drawn, 2u);
  EXPECT_EQ(pathText(sink.last), "51,0 -> 61,0 -> 61,1 -> 51,1 close");
}

TEST(DrawWalk, AnArrayOfABillionCellsIsBounded) {
  const Drawing drawing(drawingOf(block("E", {}) + block("D", kLine),
                                  insert("E", 0.0, "70 32767\n71 32767\n44 1\n45 1\n") +
                                      insert("D", 0.0, "70 32767\n71 32767\n44 1\n45 1\n")));
  CountingSink sink;
  const hostx::DrawReport report = countInto(sink, drawing);
  EXPECT_EQ(report.framed, 2u);
  EXPECT_EQ(pathText(sink.last), "0,0 -> 32767,0 -> 32767,32767 -> 0,32767 close");
}

TEST(DrawWalk, EntitiesAreDrawnInTheOrderOfTheirTable) {
  const auto line = [](const std::string& handle, int y) {
    return "0 LINE\n5 " + handle + "\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbLine\n" +
           point(10, 0, y) + point(11, 1, y);
  };
  std::string text = smallR2000(line("40", 0) + line("41", 1) + line("42", 2));
  const std::string record = "0 BLOCK_RECORD\n5 1F\n";
  text.replace(text.find(record), record.size(), record + "102 {ACAD_XDICTIONARY\n360 50\n102 }\n");
  const std::string objects = "0 DICTIONARY\n5 C\n";
  text.replace(text.find(objects), objects.size(), objects.substr(0, 0) + "0 DICTIONARY\n5 C\n");
  const std::string last = "0 ENDSEC\n0 SECTION\n2 THUMBNAILIMAGE";
  text.insert(text.find(last),
              "0 DICTIONARY\n5 50\n330 1F\n100 AcDbDictionary\n3 ACAD_SORTENTS\n360 51\n"
              "0 SORTENTSTABLE\n5 51\n330 50\n100 AcDbSortentsTable\n330 1F\n331 40\n5 42\n331 42\n"
              "5 40\n");
  EXPECT_EQ(shown(asciiDxf(text)), "stroke 0,2 -> 1,2\nstroke 0,1 -> 1,1\nstroke 0,0 -> 1,0\n");
}

TEST(DrawWalk, WhatHasNoKindIsCountedInBlocksToo) {
  const std::string solid = "0 3DSOLID\n8 0\n70 1\n1 x\n0 GADGET\n8 0\n";
  const DrawnSpace space(Drawing(drawingOf(block("D", solid), solid + insert("D", 0.0) + kLine)));
  EXPECT_EQ(space.report.drawn, 1u);
  EXPECT_EQ(space.report.leftOut,
            (std::map<std::wstring, Adesk::UInt64>{{L"3DSOLID", 2}, {L"GADGET", 2}}));
}

TEST(DrawWalk, PaperLeavesOutLayersThatAreNotPlotted) {
  const auto on = [](const std::string& layer) {
    return "0 LINE\n8 " + layer + "\n10 5\n20 5\n11 6\n21 5\n";
  };
  const std::string text =
      drawingOf(block("D", on("NOTES") + on("0") + on("Walls")),
                on("defpoints") + on("NOTES") + insert("D", 0.0) + "0 INSERT\n8 NOTES\n2 D\n",
                "0 LAYER\n2 NOTES\n70 0\n62 7\n290 0\n0 LAYER\n2 Walls\n70 0\n62 7\n290 1\n");
  hostx::DrawOptions plot;
  plot.isPlot = true;
  const DrawnSpace paper(Drawing(text), plot);
  // Of the reference on such a layer, what lies on its own layer shows still.
  EXPECT_EQ(paper.sink.lines.size(), 3u);
  EXPECT_EQ(paper.report.notPlotted,
            (std::map<std::wstring, Adesk::UInt64>{{L"NOTES", 4}, {L"defpoints", 1}}));
  const DrawnSpace screen{Drawing(text)};
  EXPECT_EQ(screen.sink.lines.size(), 8u);
  EXPECT_TRUE(screen.report.notPlotted.empty());
}

TEST(DrawWalk, OneEntityIsDrawnWithItsBlocks) {
  const Drawing drawing(
      smallDrawing("0 INSERT\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n2 Door\n" +
                   point(10, 5, 5)));
  RecordingSink sink;
  const hostx::DrawReport report = hostx::drawEntity(drawing.id(0x40), sink);
  EXPECT_EQ(sink.all(), "stroke 5,5 -> 6,5\n");
  EXPECT_EQ(report.drawn, 1u);
  EXPECT_EQ(hostx::drawEntity(AcDbObjectId(), sink).drawn, 0u);
  EXPECT_EQ(hostx::drawBlock(drawing.id(0x40), sink).drawn, 0u);
}

TEST(DrawWalk, StopsWhenToldTo) {
  std::string lines;
  for (int i = 0; i < 10'000; ++i) {
    lines += kLine;
  }
  hostx::DrawOptions options;
  int asked = 0;
  options.goesOn = [&] { return ++asked < 2; };
  const DrawnSpace space(Drawing(drawingOf({}, lines)), options);
  EXPECT_TRUE(space.report.isStopped);
  EXPECT_LT(space.sink.lines.size(), 10'000u);
}

}  // namespace
}  // namespace quoin::test
