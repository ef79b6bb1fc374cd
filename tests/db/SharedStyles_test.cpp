// Dictionaries, styles and curves of the published drawings: looking changes nothing, and every
// style survives the way into another drawing and back.
#include <gtest/gtest.h>

#include <cmath>

#include "dbdim.h"
#include "dbdimvar.h"
#include "dbelipse.h"
#include "dbmaterial.h"
#include "dbspline.h"
#include "support/SharedData.h"
#include "support/Styles.h"

namespace quoin::test {
namespace {

class SharedStyles : public testing::Test {
 protected:
  void SetUp() override {
    if (files.empty()) {
      GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
    }
  }
  const std::vector<std::filesystem::path> files = sharedFiles(".dxf");
  NoMisuse noMisuse;
};

std::vector<AcDbObjectId> dimStylesOf(const Drawing& drawing) {
  std::vector<AcDbObjectId> ids;
  const AcDbObjectPointer<AcDbDimStyleTable> styles(drawing.db().dimStyleTableId());
  AcDbDimStyleTableIterator* made = nullptr;
  styles->newIterator(made);
  const std::unique_ptr<AcDbDimStyleTableIterator> walk(made);
  for (; !walk->done(); walk->step()) {
    AcDbObjectId id;
    walk->getRecordId(id);
    ids.push_back(id);
  }
  return ids;
}

/// Every number, choice and flag of a style, in the order of their lists.
std::vector<double> settingsOf(const AcDbDimStyleTableRecord& style) {
  std::vector<double> settings{static_cast<double>(style.dimunit())};
#define QUOIN_SETTING(GET, ...) settings.push_back(static_cast<double>(style.GET()));
  ACDB_DIMENSION_NUMBERS(QUOIN_SETTING)
  ACDB_DIMENSION_INTEGERS(QUOIN_SETTING)
  ACDB_DIMENSION_FLAGS(QUOIN_SETTING)
  ACDB_DIMENSION_WEIGHTS(QUOIN_SETTING)
#undef QUOIN_SETTING
  return settings;
}

/// Looks into a dictionary and those in it; returns how many entries it saw.
std::size_t look(const AcDbObjectId& id, int depth) {
  const AcDbObjectPointer<AcDbDictionary> dictionary(id);
  if (dictionary.openStatus() != Acad::eOk || depth > 8) {
    return 0;
  }
  std::size_t count = 0;
  const std::unique_ptr<AcDbDictionaryIterator> walk(dictionary->newIterator());
  for (; !walk->done(); walk->next(), ++count) {
    AcDbObjectId found;
    // Of several entries with one name the first counts.
    EXPECT_EQ(dictionary->getAt(walk->name(), found), Acad::eOk);
    EXPECT_TRUE(dictionary->has(walk->objectId()));
    AcDbObject* object = nullptr;
    EXPECT_EQ(walk->getObject(object), Acad::eOk);
    if (const AcDbMlineStyle* const style = AcDbMlineStyle::cast(object)) {
      EXPECT_TRUE(acdbSymUtil()->compareSymbolName(style->name(), walk->name()));
      for (int i = 0; i < style->numElements(); ++i) {
        double offset = std::nan("");
        AcCmColor color;
        AcDbObjectId linetype;
        EXPECT_EQ(style->getElementAt(i, offset, color, linetype), Acad::eOk);
        EXPECT_TRUE(std::isfinite(offset));
      }
    }
    if (const AcDbMaterial* const material = AcDbMaterial::cast(object)) {
      EXPECT_TRUE(acdbSymUtil()->compareSymbolName(material->name(), walk->name()));
    }
    object->close();
    count += look(walk->objectId(), depth + 1);
  }
  EXPECT_EQ(dictionary->numEntries(), static_cast<Adesk::UInt32>(namesIn(id).size()));
  return count;
}

/// Whether a curve's points are numbers.
template <class Curve>
void lookAlong(const Curve& curve) {
  double start = 0.0;
  double end = 0.0;
  if (curve.getStartParam(start) != Acad::eOk || curve.getEndParam(end) != Acad::eOk) {
    return;
  }
  for (int i = 0; i <= 10; ++i) {
    AcGePoint3d point;
    EXPECT_EQ(curve.getPointAtParam(start + (end - start) * i / 10, point), Acad::eOk);
    EXPECT_TRUE(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
  }
}

TEST_F(SharedStyles, LookingChangesNothing) {
  std::size_t entries = 0;
  std::size_t curves = 0;
  std::size_t dimensions = 0;
  for (const std::filesystem::path& file : files) {
    SCOPED_TRACE(file.filename().string());
    const std::string bytes = bytesOf(file);
    const Drawing drawing(bytes);
    ASSERT_EQ(drawing.status, Acad::eOk);
    entries += look(drawing.db().namedObjectsDictionaryId(), 0);
    for (const AcDbObjectId& id : dimStylesOf(drawing)) {
      const AcDbObjectPointer<AcDbDimStyleTableRecord> style(id);
      settingsOf(*style);
      style->dimblk();
      style->dimtxsty();
    }
    for (const AcDbObjectId& id : entitiesOf(drawing.db())) {
      const AcDbObjectPointer<AcDbEntity> entity(id);
      if (const AcDbEllipse* const ellipse = AcDbEllipse::cast(entity.object())) {
        lookAlong(*ellipse);
        ++curves;
      } else if (const AcDbSpline* const spline = AcDbSpline::cast(entity.object())) {
        lookAlong(*spline);
        ++curves;
      } else if (const AcDbDimension* const dimension = AcDbDimension::cast(entity.object())) {
        dimensions += dimension->dimBlockId().isNull() ? 0U : 1U;
      }
    }
    EXPECT_EQ(drawing.saved(), bytes);
  }
  EXPECT_GT(entries, 100U);
  EXPECT_GT(curves, 1U);
  EXPECT_GT(dimensions, 60U);
}

TEST_F(SharedStyles, DimensionStylesGoIntoAnotherDrawingWhole) {
  std::size_t count = 0;
  for (const std::filesystem::path& file : files) {
    SCOPED_TRACE(file.filename().string());
    const Drawing from(bytesOf(file));
    ASSERT_EQ(from.status, Acad::eOk);
    const Drawing to;
    for (const AcDbObjectId& id : dimStylesOf(from)) {
      const AcDbObjectPointer<AcDbDimStyleTableRecord> source(id);
      const AcDbObjectPointer<AcDbDimStyleTableRecord> target(dimStyleOf(to, L"Standard"),
                                                              AcDb::kForWrite);
      ASSERT_EQ(target->copyFrom(source.object()), Acad::eOk);
      EXPECT_EQ(settingsOf(*target), settingsOf(*source));
      AcDbDimStyleTableRecord free;
      ASSERT_EQ(free.copyFrom(source.object()), Acad::eOk);
      EXPECT_EQ(settingsOf(free), settingsOf(*source));
      EXPECT_EQ(free.dimblk(), source->dimblk());
      ++count;
    }
    EXPECT_EQ(Drawing(to.saved()).status, Acad::eOk);
  }
  EXPECT_GT(count, files.size());
}

}  // namespace
}  // namespace quoin::test
