// Random sequences of what clients do with a drawing, against a simple model of it: the
// drawing is what the model says before and after it is saved and read again.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "support/Drawings.h"
#include "support/SharedData.h"

namespace quoin::test {
namespace {

struct Line {
  AcGePoint3d start;
  AcGePoint3d end;
  Adesk::UInt16 color = 256;
  std::wstring layer = L"0";
  bool isErased = false;
};

/// Lines of model space by number; the number is kept in the drawing as the start's z, which
/// works in files without handles too.
using Model = std::map<int, Line>;

class RandomEdits {
 public:
  RandomEdits(const std::string& bytes, unsigned seed) : m_random(seed) {
    m_drawing = std::make_unique<Drawing>(bytes);
    EXPECT_EQ(m_drawing->status, Acad::eOk);
    m_others = entitiesOf(m_drawing->db()).size();
  }

  /// Lets the lines that the drawing has, and nothing else, be edited too. Their numbers are 1 to
  /// their count.
  void adopt() {
    for (const AcDbObjectId& id : entitiesOf(m_drawing->db())) {
      const AcDbObjectPointer<AcDbLine> line(id);
      ASSERT_EQ(line.openStatus(), Acad::eOk);
      ASSERT_EQ(line->startPoint().z, static_cast<double>(++m_last));
      m_ids[m_last] = id;
      m_model[m_last] = {line->startPoint(), line->endPoint(), line->colorIndex(),
                         taken(line->layer())};
    }
    m_others = 0;
  }

  void run(int steps) {
    for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
      step();
    }
    saveAndReload();
    check();
  }

 private:
  double number() { return std::uniform_real_distribution<double>(-1e4, 1e4)(m_random); }
  int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
  std::wstring layer() {
    constexpr const wchar_t* kLayers[] = {L"0", L"Walls", L"Türen", L"墙体", L"A-WALL"};
    return kLayers[pick(5)];
  }

  void step() {
    switch (pick(12)) {
      case 0:
        saveAndReload();
        break;
      case 1:
      case 2:
        eraseOrBack();
        break;
      case 3:
      case 4:
      case 5:
        add();
        break;
      case 6:
        copy();
        break;
      case 7:
        handOver();
        break;
      default:
        change();
        break;
    }
    if (pick(4) == 0) {
      check();
    }
  }

  Model::iterator any(bool erasedToo) {
    std::vector<Model::iterator> candidates;
    for (auto at = m_model.begin(); at != m_model.end(); ++at) {
      if (erasedToo || !at->second.isErased) {
        candidates.push_back(at);
      }
    }
    return candidates.empty()
               ? m_model.end()
               : candidates[static_cast<std::size_t>(pick(static_cast<int>(candidates.size())))];
  }

  void add() {
    Line line;
    line.start = {number(), number(), static_cast<double>(++m_last)};
    line.end = {number(), number(), number()};
    line.layer = layer();
    line.color = static_cast<Adesk::UInt16>(pick(257));
    auto* const made = new AcDbLine(line.start, line.end);
    EXPECT_EQ(made->setLayer(line.layer.c_str()), Acad::eOk);
    EXPECT_EQ(made->setColorIndex(line.color), Acad::eOk);
    m_ids[m_last] = append(m_drawing->db(), made);
    m_model[m_last] = line;
  }

  void change() {
    const auto at = any(false);
    if (at == m_model.end()) {
      return;
    }
    Line& line = at->second;
    const AcDbObjectPointer<AcDbLine> open(m_ids.at(at->first), AcDb::kForWrite);
    ASSERT_EQ(open.openStatus(), Acad::eOk);
    if (pick(2) == 0) {
      line.end = {number(), number(), number()};
      EXPECT_EQ(open->setEndPoint(line.end), Acad::eOk);
    }
    if (pick(2) == 0) {
      line.color = static_cast<Adesk::UInt16>(pick(257));
      EXPECT_EQ(open->setColorIndex(line.color), Acad::eOk);
    }
    if (pick(2) == 0) {
      const std::wstring wanted = layer();
      const Acad::ErrorStatus status = open->setLayer(wanted.c_str());
      EXPECT_TRUE(status == Acad::eOk || status == Acad::eKeyNotFound);
      line.layer = status == Acad::eOk ? wanted : line.layer;
    }
  }

  void eraseOrBack() {
    const auto at = any(true);
    if (at == m_model.end()) {
      return;
    }
    const AcDbObjectPointer<AcDbLine> open(m_ids.at(at->first), AcDb::kForWrite, true);
    ASSERT_EQ(open.openStatus(), Acad::eOk);
    at->second.isErased = !at->second.isErased;
    EXPECT_EQ(open->erase(at->second.isErased), Acad::eOk);
  }

  void copy() {
    const auto at = any(false);
    if (at == m_model.end()) {
      return;
    }
    Line line = at->second;
    AcDbLine* copy = nullptr;
    {
      const AcDbObjectPointer<AcDbLine> open(m_ids.at(at->first));
      copy = AcDbLine::cast(open->clone());
    }
    ASSERT_NE(copy, nullptr);
    line.start.z = static_cast<double>(++m_last);
    EXPECT_EQ(copy->setStartPoint(line.start), Acad::eOk);
    m_ids[m_last] = append(m_drawing->db(), copy);
    m_model[m_last] = line;
  }

  void handOver() {
    const auto at = any(false);
    if (at == m_model.end()) {
      return;
    }
    AcDbLine* before = nullptr;
    ASSERT_EQ(acdbOpenObject(before, m_ids.at(at->first), AcDb::kForWrite), Acad::eOk);
    at->second.end = {number(), number(), number()};
    auto* const after = new AcDbLine(at->second.start, at->second.end);
    EXPECT_EQ(after->setPropertiesFrom(before), Acad::eOk);
    EXPECT_EQ(before->handOverTo(after), Acad::eOk);
    delete before;
    EXPECT_EQ(after->objectId(), m_ids.at(at->first));
    EXPECT_EQ(after->close(), Acad::eOk);
  }

  void saveAndReload() {
    const std::string bytes = m_drawing->saved();
    m_drawing = std::make_unique<Drawing>(bytes);
    ASSERT_EQ(m_drawing->status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&m_drawing->db()));
    EXPECT_EQ(m_drawing->saved(), bytes);
    std::erase_if(m_model, [](const auto& entry) { return entry.second.isErased; });
    m_ids.clear();
    const std::vector<AcDbObjectId> entities = entitiesOf(m_drawing->db());
    ASSERT_EQ(entities.size(), m_others + m_model.size());
    for (std::size_t i = m_others; i < entities.size(); ++i) {
      const AcDbObjectPointer<AcDbLine> line(entities[i]);
      ASSERT_EQ(line.openStatus(), Acad::eOk);
      m_ids[static_cast<int>(line->startPoint().z)] = entities[i];
    }
  }

  void check() {
    std::size_t living = 0;
    for (const auto& [number, line] : m_model) {
      ASSERT_TRUE(m_ids.contains(number));
      const AcDbObjectId id = m_ids.at(number);
      EXPECT_EQ(id.isErased(), line.isErased);
      living += line.isErased ? 0 : 1;
      const AcDbObjectPointer<AcDbLine> open(id, AcDb::kForRead, true);
      ASSERT_EQ(open.openStatus(), Acad::eOk);
      EXPECT_EQ(open->startPoint().x, line.start.x);
      EXPECT_EQ(open->startPoint().y, line.start.y);
      EXPECT_EQ(open->endPoint().z, line.end.z);
      EXPECT_EQ(open->colorIndex(), line.color);
      EXPECT_EQ(taken(open->layer()), line.layer);
      EXPECT_FALSE(open->layerId().isNull());
    }
    EXPECT_EQ(entitiesOf(m_drawing->db()).size(), m_others + living);
    EXPECT_TRUE(hostx::openObjects(&m_drawing->db()).empty());
  }

  std::mt19937 m_random;
  std::unique_ptr<Drawing> m_drawing;
  std::size_t m_others = 0;
  Model m_model;
  std::map<int, AcDbObjectId> m_ids;
  int m_last = 0;
};

TEST(RandomEditing, OfSmallDrawingsFollowsTheModel) {
  const NoMisuse noMisuse;
  std::string gbk = smallR2000(lineTags("40"));
  gbk.replace(gbk.find("ANSI_1252"), 9, "ANSI_936");
  const std::string drawings[] = {
      smallDrawing(lineTags("40")), asciiDxf(gbk), binaryDxf(smallR2000(), false),
      asciiDxf(entitiesOnly("0 LINE\n8 A\n10 1.0\n20 2.0\n30 0.5\n11 3.0\n21 4.0\n31 0.0\n"))};
  for (const std::string& bytes : drawings) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      RandomEdits(bytes, seed).run(60);
      ASSERT_FALSE(HasFailure());
    }
  }
}

TEST(RandomEditing, OfDrawingsInOldSpellingsFollowsTheModel) {
  const NoMisuse noMisuse;
  const char* const heads[] = {"100 AcDbEntity\n100 AcDbLine\n8 Walls\n62 256\n370 -1\n6 ByLayer\n",
                               "100 AcDbEntity\n62 1\n100 AcDbLine\n8 Walls\n",
                               "8 Walls\n100 AcDbLine\n62 3\n",
                               "100 AcDbLine\n8 Walls\n62 3\n",
                               "100 AcDbEntity\n8 Walls\n62 4\n100 AcDbLine\n62 256\n8 0\n",
                               "8 Walls\n"};
  std::string lines;
  int number = 0;
  for (const char* head : heads) {
    const std::string digit = std::to_string(++number);
    lines += "0 LINE\n5 4" + digit + "\n" + head + "10 1.5\n20 0.0\n30 " + digit +
             ".0\n11 2.0\n21 0.0\n31 0.0\n";
  }
  for (const std::string& bytes :
       {smallDrawing(lines), binaryDxf(smallR2000(lines), false), asciiDxf(entitiesOnly(lines))}) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
      SCOPED_TRACE("seed " + std::to_string(seed));
      RandomEdits edits(bytes, seed);
      edits.adopt();
      edits.run(60);
      ASSERT_FALSE(HasFailure());
    }
  }
}

TEST(RandomEditing, OfPublishedDrawingsFollowsTheModel) {
  const NoMisuse noMisuse;
  const auto files = sharedFiles(".dxf");
  if (files.empty()) {
    GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
  }
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    RandomEdits(bytesOf(path), 7).run(25);
    ASSERT_FALSE(HasFailure());
  }
}

}  // namespace
}  // namespace quoin::test
