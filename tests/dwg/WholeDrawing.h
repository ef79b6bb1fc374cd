// A whole drawing of the project's own, in every version that is made: layers, a block with an
// attribute, entities in model and paper space, dictionaries and layouts, as DXF and as DWG.
#pragma once

#include <string>
#include <string_view>

#include "dwg/DwgMaker.h"
#include "embedded/dxf/NewDrawing.h"
#include "embedded/dxf/RecordStore.h"
#include "support/DxfText.h"

namespace quoin::test {

/// The handles of what the drawing has.
enum WholeHandle : std::uint64_t {
  kWallsLayer = 0x30,
  kDoorBlock = 0x31,
  kDoorLine = 0x34,
  kDoorTag = 0x35,
  kFirstLine = 0x40,
  kSecondLine = 0x41,
  kOutline = 0x42,
  kArc = 0x43,
  kCircle = 0x44,
  kText = 0x45,
  kMText = 0x46,
  kDoor = 0x47,
  kDoorNumber = 0x48,
  kPolyline = 0x4A,
  kLastLine = 0x4E,
  kPaperText = 0x50,
};

/// The empty drawing of the program in another version.
inline std::string newDrawingOf(dxf::Version version) {
  std::string text = dxf::newDrawingTemplate();
  const std::string release(dxf::acadVerText(dxf::Version::R2010));
  return text.replace(text.find(release), release.size(), dxf::acadVerText(version));
}

/// Loads that into the store and puts everything into it.
inline void drawWhole(dxf::RecordStore& store, dxf::Version version) {
  store.load(newDrawingOf(version), "whole.dxf");
  const auto entity = [](std::string_view kind, std::string_view handle, std::string_view owner,
                         std::string_view tags) {
    return asciiDxf("0 " + std::string(kind) + "\n5 " + std::string(handle) + "\n330 " +
                    std::string(owner) + "\n100 AcDbEntity\n" + std::string(tags));
  };
  store.appendTableRecord(
      *store.table("LAYER"),
      asciiDxf("0 LAYER\n5 30\n330 2\n100 AcDbSymbolTableRecord\n100 AcDbLayerTableRecord\n"
               "2 Walls\n70 0\n62 1\n6 Continuous\n370 -3\n390 F\n"),
      kWallsLayer);
  dxf::Block& door = store.appendBlock(
      L"Door",
      asciiDxf("0 BLOCK_RECORD\n5 31\n330 1\n100 AcDbSymbolTableRecord\n"
               "100 AcDbBlockTableRecord\n2 Door\n340 0\n70 4\n280 1\n281 0\n"),
      kDoorBlock,
      entity("BLOCK", "32", "31",
             "8 0\n100 AcDbBlockBegin\n2 Door\n70 2\n10 0.0\n20 0.0\n30 0.0\n3 Door\n1\n"),
      0x32, entity("ENDBLK", "33", "31", "8 0\n100 AcDbBlockEnd\n"), 0x33);
  store.appendEntity(
      door,
      entity("LINE", "34", "31",
             "8 0\n100 AcDbLine\n10 0.0\n20 0.0\n30 0.0\n11 900.0\n21 0.0\n31 0.0\n"),
      kDoorLine);
  store.appendEntity(door,
                     entity("ATTDEF", "35", "31",
                            "8 0\n100 AcDbText\n10 0.0\n20 50.0\n30 0.0\n40 80.0\n1 D0\n"
                            "100 AcDbAttributeDefinition\n3 Number\n2 NUMBER\n70 0\n"),
                     kDoorTag);

  dxf::Block& model = store.modelSpace();
  const auto draw = [&](std::string_view kind, std::string_view handle, std::uint64_t number,
                        const std::string& tags) {
    return store.appendEntity(model, entity(kind, handle, "1F", "8 Walls\n" + tags), number);
  };
  const auto line = [](const std::string& from, const std::string& to) {
    return "100 AcDbLine\n10 " + from + "\n20 0.0\n30 0.0\n11 " + to + "\n21 3000.0\n31 0.0\n";
  };
  draw("LINE", "40", kFirstLine, line("0.0", "0.0"));
  draw("LINE", "41", kSecondLine, line("0.0", "4000.0"));
  draw("LWPOLYLINE", "42", kOutline,
       "100 AcDbPolyline\n90 3\n70 1\n43 0.0\n10 0.0\n20 0.0\n10 5000.0\n20 0.0\n42 0.5\n"
       "10 5000.0\n20 4000.5\n");
  draw("ARC", "43", kArc,
       "100 AcDbCircle\n10 900.0\n20 0.0\n30 0.0\n40 900.0\n100 AcDbArc\n50 90.0\n51 180.0\n");
  draw("CIRCLE", "44", kCircle, "100 AcDbCircle\n10 2000.0\n20 2000.0\n30 0.0\n40 150.0\n");
  draw("TEXT", "45", kText,
       "100 AcDbText\n10 100.0\n20 100.0\n30 0.0\n40 250.0\n1 Kitchen\n100 AcDbText\n");
  draw("MTEXT", "46", kMText,
       "100 AcDbMText\n10 100.0\n20 900.0\n30 0.0\n40 250.0\n41 2000.0\n71 1\n72 1\n1 Hall\n");
  AcDbStub* const reference = draw(
      "INSERT", "47", kDoor, "100 AcDbBlockReference\n66 1\n2 Door\n10 700.0\n20 0.0\n30 0.0\n");
  store.appendSubEntity(*reference,
                        entity("ATTRIB", "48", "47",
                               "8 Walls\n100 AcDbText\n10 700.0\n20 50.0\n30 0.0\n40 80.0\n1 D7\n"
                               "100 AcDbAttribute\n2 NUMBER\n70 0\n"),
                        kDoorNumber);
  store.appendSubEntity(*reference, entity("SEQEND", "49", "47", "8 Walls\n"), 0x49);
  AcDbStub* const polyline =
      draw("POLYLINE", "4A", kPolyline, "100 AcDb2dPolyline\n66 1\n10 0.0\n20 0.0\n30 0.0\n70 0\n");
  for (const auto& [handle, number, x] :
       {std::tuple{"4B", 0x4BU, "0.0"}, std::tuple{"4C", 0x4CU, "1250.0"}}) {
    store.appendSubEntity(*polyline,
                          entity("VERTEX", handle, "4A",
                                 "8 Walls\n100 AcDbVertex\n100 AcDb2dVertex\n10 " + std::string(x) +
                                     "\n20 500.0\n30 0.0\n70 0\n"),
                          number);
  }
  store.appendSubEntity(*polyline, entity("SEQEND", "4D", "4A", "8 Walls\n"), 0x4D);
  draw("LINE", "4E", kLastLine, line("8000.0", "8000.0"));
  store.appendEntity(*store.paperSpace(),
                     entity("TEXT", "50", "1B",
                            "67 1\n8 0\n100 AcDbText\n10 10.0\n20 10.0\n30 0.0\n40 5.0\n1 Sheet\n"
                            "100 AcDbText\n"),
                     kPaperText);
}

/// The drawing as a DWG file.
inline std::string wholeDwg(dxf::Version version) {
  dxf::RecordStore store;
  drawWhole(store, version);
  DwgMaker maker(store);
  std::string file = maker.file();
  for (const std::string& why : maker.leftOut()) {
    throw std::logic_error(why);
  }
  return file;
}

}  // namespace quoin::test
