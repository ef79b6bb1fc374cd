// Whole records: tags to bits and back, in every version that is written.
#include "embedded/dwg/records/RecordCodec.h"

#include <random>
#include <string>

#include "dwg/records/RecordTest.h"

namespace quoin::dwg {
namespace {

using dxf::Version;
using testing::kEntity;

class RecordCodecTest : public testing::RecordTest {
 protected:
  RecordCodecTest() : RecordTest("ANSI_936") {}

  /// "0 LINE\n10 1.5\n" as the tags of an entity in model space with this handle.
  std::string tags(const std::string& text) const {
    std::string bytes;
    std::size_t at = 0;
    while (at < text.size()) {
      const std::size_t end = text.find('\n', at);
      const std::size_t blank = text.find(' ', at);
      bytes += text.substr(at, blank - at) + '\n' + text.substr(blank + 1, end - blank);
      at = end + 1;
    }
    return bytes;
  }
  std::string entity(const std::string& kind, const std::string& own,
                     const std::string& shared = "8 墙体\n") const {
    std::string bytes = tags("0 " + kind + "\n5 2AB\n330 1F\n100 AcDbEntity\n");
    return text(bytes + tags(shared) + tags(own));
  }
  /// UTF-8 as the format spells it.
  std::string text(const std::string& utf8) const {
    if (m_facts.format.textIsUtf8()) {
      return utf8;
    }
    std::string bytes;
    for (std::size_t i = 0; i < utf8.size();) {
      if (utf8.compare(i, 6, "墙体") == 0) {
        bytes += "\xC7\xBD\xCC\xE5";  // GBK
        i += 6;
      } else {
        bytes += utf8[i++];
      }
    }
    return bytes;
  }

  /// The tag of a line weight where the version has them.
  static std::string weight(const std::string& value) {
    return GetParam() >= Version::R2000 ? "370 " + value + "\n" : "";
  }

  RecordBytes encoded(const std::string& kind, const std::string& tags) {
    RecordBytes bytes;
    std::string problem;
    EXPECT_TRUE(m_codec.makeRecord(kind, kEntity, tags, m_record, problem)) << problem;
    EXPECT_TRUE(m_codec.encode(kEntity, m_record, bytes));
    return bytes;
  }
  void comesBack(const std::string& kind, const std::string& tags) {
    EXPECT_EQ(decoded(encoded(kind, tags)), tags);
  }
};

TEST_P(RecordCodecTest, ALineComesBack) {
  comesBack("LINE", entity("LINE",
                           "100 AcDbLine\n10 1.5\n20 2.25\n30 0.0\n11 1.5\n21 -7.0\n"
                           "31 0.0\n"));
  comesBack("LINE", entity("LINE",
                           "100 AcDbLine\n39 2.0\n10 1.5\n20 2.25\n30 1.0\n11 1.5\n"
                           "21 -7.0\n31 0.0\n210 0.0\n220 1.0\n230 0.0\n"));
}

TEST_P(RecordCodecTest, WhatEntitiesShareComesBack) {
  comesBack("POINT", entity("POINT", "100 AcDbPoint\n10 1.0\n20 2.0\n30 3.0\n",
                            "8 0\n6 DASHED\n62 3\n48 0.5\n60 1\n" + weight("25")));
  comesBack("POINT", entity("POINT", "100 AcDbPoint\n10 1.0\n20 2.0\n30 3.0\n",
                            "8 0\n6 ByBlock\n62 0\n" + weight("-2")));
}

TEST_P(RecordCodecTest, ALightweightPolylineKeepsBulgesAndWidths) {
  comesBack("LWPOLYLINE", entity("LWPOLYLINE",
                                 "100 AcDbPolyline\n90 3\n70 1\n43 0.0\n10 0.0\n20 0.0\n42 0.5\n"
                                 "10 5.0\n20 0.0\n10 5.0\n20 1.0e-09\n"));
  comesBack("LWPOLYLINE", entity("LWPOLYLINE",
                                 "100 AcDbPolyline\n90 2\n70 128\n43 0.25\n38 7.5\n"
                                 "10 0.0\n20 0.0\n10 5.0\n20 0.1\n"));
}

TEST_P(RecordCodecTest, AnEditedPolylineWithoutWidthsHasNoneAfterwards) {
  const std::string front = "100 AcDbPolyline\n90 2\n70 1\n43 0.0\n10 0.0\n20 0.0\n10 ";
  decoded(encoded("LWPOLYLINE", entity("LWPOLYLINE", front + "5.0\n20 1.0\n")));
  const std::string meant = entity("LWPOLYLINE", front + "7.0\n20 1.0\n");
  std::string problem;
  ASSERT_TRUE(m_codec.readTags(meant, m_record, problem)) << problem;
  RecordBytes bytes;
  ASSERT_TRUE(m_codec.encode(kEntity, m_record, bytes));
  std::string said;
  m_codec.writeTags(m_record, said);
  EXPECT_EQ(said, meant);
  EXPECT_EQ(decoded(bytes), meant);
}

TEST_P(RecordCodecTest, TextsComeBackInChinese) {
  comesBack("TEXT", entity("TEXT",
                           "100 AcDbText\n10 1.0\n20 2.0\n30 0.0\n40 250.0\n1 墙体\n"
                           "100 AcDbText\n"));
  comesBack("TEXT", entity("TEXT",
                           "100 AcDbText\n10 1.0\n20 2.0\n30 0.0\n40 250.0\n1 a\n"
                           "50 90.0\n41 0.8\n72 1\n11 5.0\n21 2.0\n31 0.0\n"
                           "100 AcDbText\n73 2\n"));
}

TEST_P(RecordCodecTest, AMultilineTextThatIsTurnedByAnAngleHasADirection) {
  const std::string front = "100 AcDbMText\n10 1.0\n20 2.0\n30 0.0\n40 250.0\n41 0.0\n";
  const std::string turned =
      decoded(encoded("MTEXT", entity("MTEXT", front + "71 1\n72 1\n1 a\n50 90.0\n")));
  EXPECT_NE(turned.find("\n21\n1.0\n31\n0.0\n"), std::string::npos) << turned;
  std::string problem;
  EXPECT_TRUE(
      m_codec.readTags(entity("MTEXT", front + "71 1\n72 1\n1 a\n50 0.0\n"), m_record, problem));
  RecordBytes bytes;
  EXPECT_TRUE(m_codec.encode(kEntity, m_record, bytes));
  EXPECT_EQ(decoded(bytes).find("\n11\n"), std::string::npos);
}

TEST_P(RecordCodecTest, AColorThatNothingShowsIsKept) {
  encoded("DIMSTYLE", tags("0 DIMSTYLE\n105 2AB\n330 A\n100 AcDbSymbolTableRecord\n"
                           "100 AcDbDimStyleTableRecord\n2 Mine\n70 0\n69 0\n70 3\n"));
}

TEST_P(RecordCodecTest, AnEditChangesOneFieldAndNoOther) {
  const std::string before = entity("LINE",
                                    "100 AcDbLine\n10 1.5\n20 2.25\n30 0.0\n11 1.5\n"
                                    "21 -7.0\n31 0.0\n");
  const std::string after = entity("LINE",
                                   "100 AcDbLine\n10 1.5\n20 2.25\n30 0.0\n11 9.0\n"
                                   "21 -7.0\n31 0.0\n");
  RecordBytes bytes = encoded("LINE", before);
  decoded(bytes);
  std::string problem;
  ASSERT_TRUE(m_codec.readTags(after, m_record, problem)) << problem;
  ASSERT_TRUE(m_codec.encode(kEntity, m_record, bytes));
  EXPECT_EQ(decoded(bytes), after);
}

TEST_P(RecordCodecTest, AnEditGivesNoFieldThatTheRecordHasNot) {
  const std::string before = entity(
      "LWPOLYLINE", "100 AcDbPolyline\n90 2\n70 0\n43 0.0\n10 0.0\n20 0.0\n10 5.0\n20 0.1\n");
  const std::string after = entity(
      "LWPOLYLINE", "100 AcDbPolyline\n90 2\n70 0\n43 0.0\n10 1.0\n20 0.0\n10 6.0\n20 0.1\n");
  decoded(encoded("LWPOLYLINE", before));
  std::string problem;
  ASSERT_TRUE(m_codec.readTags(after, m_record, problem)) << problem;
  std::string meant;
  m_codec.writeTags(m_record, meant);
  EXPECT_EQ(meant, after);
}

TEST_P(RecordCodecTest, WidthsOfSomeVerticesAreWidthsOfAll) {
  const std::string bare = entity(
      "LWPOLYLINE", "100 AcDbPolyline\n90 2\n70 0\n43 0.0\n10 0.0\n20 0.0\n10 5.0\n20 0.1\n");
  const std::string some =
      entity("LWPOLYLINE",
             "100 AcDbPolyline\n90 2\n70 0\n10 0.0\n20 0.0\n10 5.0\n20 0.1\n40 2.0\n41 3.0\n");
  const std::string all = entity("LWPOLYLINE",
                                 "100 AcDbPolyline\n90 2\n70 0\n10 0.0\n20 0.0\n40 0.0\n41 0.0\n"
                                 "10 5.0\n20 0.1\n40 2.0\n41 3.0\n");
  decoded(encoded("LWPOLYLINE", bare));
  std::string problem;
  ASSERT_TRUE(m_codec.readTags(some, m_record, problem)) << problem;
  RecordBytes bytes;
  ASSERT_TRUE(m_codec.encode(kEntity, m_record, bytes));
  EXPECT_EQ(decoded(bytes), all);
}

TEST_P(RecordCodecTest, ExtendedDataComesBack) {
  const std::string line = entity("LINE",
                                  "100 AcDbLine\n10 1.5\n20 2.25\n30 0.0\n11 1.5\n"
                                  "21 -7.0\n31 0.0\n");
  comesBack("LINE", line + tags("1001 ACAD\n1000 wall\n1002 {\n1070 -5\n1040 0.5\n1010 1.0\n"
                                "1020 2.0\n1030 3.0\n1005 2F\n1002 }\n1071 70000\n1004 00FF\n"));
}

TEST_P(RecordCodecTest, TextsBeyondTheCodePageComeBack) {
  // A letter that GBK has not, and one that takes a pair in UTF-16.
  const bool isUtf8 = m_facts.format.textIsUtf8();
  const std::string rare = isUtf8 ? "\xC3\xBE\xF0\xA0\xAE\xB7" : "\\U+00FE\\U+D842\\U+DFB7";
  comesBack("TEXT", entity("TEXT", "100 AcDbText\n10 1.0\n20 2.0\n30 0.0\n40 250.0\n1 " + rare +
                                       "\n100 AcDbText\n"));
  const std::string line = entity("LINE",
                                  "100 AcDbLine\n10 1.5\n20 2.25\n30 0.0\n11 1.5\n"
                                  "21 -7.0\n31 0.0\n");
  comesBack("LINE", line + tags("1001 ACAD\n1000 " + rare + "\n"));
  comesBack("XRECORD", tags("0 XRECORD\n5 2AB\n330 1F\n100 AcDbXrecord\n280 1\n1 " + rare + "\n"));
}

TEST_P(RecordCodecTest, ANameWithAnEscapeIsFoundByWhatItStandsFor) {
  m_facts.name("LAYER", 0x60, L"\\U+00FE");
  EXPECT_EQ(m_facts.handleOf("LAYER", L"\u00FE"), 0x60U);
  comesBack("POINT", entity("POINT", "100 AcDbPoint\n10 1.0\n20 2.0\n30 3.0\n", "8 \\U+00FE\n"));
}

TEST_P(RecordCodecTest, ATagWithoutAPlaceIsRefusedByName) {
  std::string problem;
  EXPECT_FALSE(m_codec.makeRecord("LINE", kEntity,
                                  entity("LINE",
                                         "100 AcDbLine\n10 1.5\n20 2.25\n30 0.0\n11 1.5\n"
                                         "21 -7.0\n31 0.0\n77 5\n"),
                                  m_record, problem));
  EXPECT_EQ(problem, "group code 77 has no place in a DWG record");
  EXPECT_FALSE(m_codec.makeRecord("MESH", kEntity, entity("MESH", ""), m_record, problem));
}

TEST_P(RecordCodecTest, NoBytesBringItDown) {
  std::mt19937 random(30);
  const std::string good = encoded("LWPOLYLINE", entity("LWPOLYLINE",
                                                        "100 AcDbPolyline\n90 2\n70 0\n43 0.0\n"
                                                        "10 0.0\n20 0.0\n10 5.0\n20 0.1\n"))
                               .data;
  for (int i = 0; i < 20000; ++i) {
    std::string bytes = good.substr(0, 1 + random() % good.size());
    for (unsigned changes = random() % 4; changes != 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    const std::uint64_t handleBits = random() % (bytes.size() * 8 + 9);
    m_codec.decode({kEntity, bytes, handleBits}, m_record);
    std::string tags;
    m_codec.writeTags(m_record, tags);
    m_codec.isExact({kEntity, bytes, handleBits}, m_record);
  }
}

INSTANTIATE_TEST_SUITE_P(Versions, RecordCodecTest,
                         ::testing::Values(Version::R14, Version::R2000, Version::R2004,
                                           Version::R2007, Version::R2010, Version::R2013,
                                           Version::R2018),
                         testing::releaseOf);

}  // namespace
}  // namespace quoin::dwg
