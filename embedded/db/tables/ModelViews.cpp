#include "embedded/db/tables/ModelViews.h"

#include <array>
#include <cmath>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/db/core/DatabaseImpl.h"
#include "gepnt2d.h"
#include "gepnt3d.h"

namespace quoin::db {
namespace {

constexpr int kAxisStep = 10;  // from the code of x to that of y, from that to z's

/// How all of model space changes.
struct Change {
  double factor;
  AcGeVector3d move;

  bool isMove() const { return move.x != 0.0 || move.y != 0.0 || move.z != 0.0; }
  AcGePoint3d point(const AcGePoint3d& before) const { return before * factor + move; }
};

bool isZero(const AcGePoint3d& point) {
  return point.x == 0.0 && point.y == 0.0 && point.z == 0.0;
}

/// One record's numbers, found by their tags. What a record lacks reads as 0 and stays missing.
class Numbers {
 public:
  Numbers(RecordEdit& edit, TagRange range) : m_edit(edit), m_range(range) {}

  std::size_t tag(int code) const { return m_edit.tags().find(code, m_range); }
  bool has(int code) const { return tag(code) != TagList::kNone; }
  double number(int code) const { return m_edit.tags().number(code, m_range, 0.0); }
  std::int64_t integer(int code) const { return m_edit.tags().integer(code, m_range, 0); }
  AcGePoint3d point(int code) const { return m_edit.tags().point(code, m_range); }

  void set(int code, double value) {
    if (const std::size_t at = tag(code); at != TagList::kNone) {
      m_edit.setDoubleAt(at, value);
    }
  }
  void setPoint(int code, const AcGePoint3d& point) {
    set(code, point.x);
    set(code + kAxisStep, point.y);
    set(code + 2 * kAxisStep, point.z);
  }
  void scale(int code, double factor) { set(code, number(code) * factor); }
  void scalePoint(int code, double factor) { setPoint(code, point(code) * factor); }

 private:
  RecordEdit& m_edit;
  TagRange m_range;
};

/// A point that was put somewhere in the plan; at 0,0,0 nobody has put it anywhere.
AcGePoint3d placed(const AcGePoint3d& before, const Change& change) {
  return isZero(before) ? before : change.point(before);
}

/// Whether these corners bound anything. "No extents" is written as a box from 1e20 to -1e20, or
/// as two corners at the origin.
bool isBox(const AcGePoint3d& least, const AcGePoint3d& most) {
  constexpr double kNone = 1.0e20;
  for (unsigned int axis = 0; axis < 3; ++axis) {
    if (std::fabs(least[axis]) >= kNone || std::fabs(most[axis]) >= kNone) {
      return false;
    }
  }
  return !(isZero(least) && isZero(most));
}

void changeBox(Numbers& numbers, int least, int most, const Change& change) {
  const AcGePoint3d low = numbers.point(least);
  const AcGePoint3d high = numbers.point(most);
  if (isBox(low, high)) {
    numbers.setPoint(least, change.point(low));
    numbers.setPoint(most, change.point(high));
  }
}

// --- views ----------------------------------------------------------------------------------

/// A view's numbers, whichever record they stand in (DXF reference: VPORT, VIEW, VIEWPORT).
struct View {
  AcGePoint2d center;  // in the view's own coordinates, counted from the target
  AcGePoint3d target;
  AcGeVector3d direction = AcGeVector3d::kZAxis;  // towards the eye
  double twist = 0.0;                             // radians, counter-clockwise
  bool isPerspective = false;
};

/// Whether it looks straight down from over 0,0: then its centre is a point of the plan, and many
/// programs read nothing else.
bool isPlanView(const View& view) {
  constexpr double kSameDirection = 1.0e-9;
  const AcGeVector3d& direction = view.direction;
  return !view.isPerspective && isZero(view.target) && direction.z > 0.0 &&
         std::hypot(direction.x, direction.y) <= kSameDirection * direction.z;
}

View changedView(const View& before, const Change& change) {
  View view = before;
  view.center = AcGePoint2d(before.center.x * change.factor, before.center.y * change.factor);
  if (isPlanView(before)) {
    const double cosine = std::cos(before.twist);
    const double sine = std::sin(before.twist);
    view.center.x += cosine * change.move.x - sine * change.move.y;
    view.center.y += sine * change.move.x + cosine * change.move.y;
  } else {
    view.target = change.point(before.target);
  }
  if (before.isPerspective) {
    view.direction = before.direction * change.factor;  // its length is the eye's distance
  }
  return view;
}

/// The codes of a view's numbers; 0 where a kind has none.
struct ViewCodes {
  std::string_view marker;
  int center;
  int direction;
  int target;
  int twist;
  int mode;
  std::array<int, 2> heights;
  int snapBase;
  int snapSpacing;
  int gridSpacing;
};

constexpr int kPerspective = 1;  // of the view mode
constexpr std::array kClipCodes{43, 44};
constexpr int kOrigin = 110;  // of the coordinate system that belongs to a view
constexpr int kXAxis = 111;
constexpr int kYAxis = 112;
constexpr int kElevation = 146;

constexpr ViewCodes kActiveView{
    "AcDbViewportTableRecord", 12, 16, 17, 51, 71, {40, 45}, 13, 14, 15};
constexpr ViewCodes kNamedView{"AcDbViewTableRecord", 10, 11, 12, 50, 71, {40, 41}, 0, 0, 0};
constexpr ViewCodes kSheetView{"AcDbViewport", 12, 16, 17, 51, 90, {45, 0}, 13, 14, 15};

/// The point in which snap begins counts in the view's coordinate system, which is the world where
/// its origin stays.
void changeSnapBase(Numbers& numbers, int code, const Change& change) {
  const AcGePoint3d before = numbers.point(code);
  AcGePoint3d after = before * change.factor;
  if (!isZero(before) && isZero(numbers.point(kOrigin))) {
    const AcGeVector3d x =
        numbers.has(kXAxis) ? numbers.point(kXAxis).asVector() : AcGeVector3d::kXAxis;
    const AcGeVector3d y =
        numbers.has(kYAxis) ? numbers.point(kYAxis).asVector() : AcGeVector3d::kYAxis;
    after.x += change.move.dotProduct(x);
    after.y += change.move.dotProduct(y);
  }
  numbers.set(code, after.x);
  numbers.set(code + kAxisStep, after.y);
}

void changeCoordinateSystem(Numbers& numbers, int origin, const Change& change) {
  numbers.setPoint(origin, placed(numbers.point(origin), change));
  numbers.scale(kElevation, change.factor);
}

void changeView(Numbers& numbers, const ViewCodes& codes, const Change& change) {
  View before;
  const AcGePoint3d center = numbers.point(codes.center);
  before.center = AcGePoint2d(center.x, center.y);
  before.target = numbers.point(codes.target);
  if (numbers.has(codes.direction)) {
    before.direction = numbers.point(codes.direction).asVector();
  }
  before.twist = toRadians(numbers.number(codes.twist));
  before.isPerspective = (numbers.integer(codes.mode) & kPerspective) != 0;
  const View after = changedView(before, change);
  numbers.set(codes.center, after.center.x);
  numbers.set(codes.center + kAxisStep, after.center.y);
  numbers.setPoint(codes.target, after.target);
  numbers.setPoint(codes.direction, AcGePoint3d() + after.direction);
  for (const int code : codes.heights) {
    numbers.scale(code, change.factor);
  }
  for (const int code : kClipCodes) {
    numbers.scale(code, change.factor);
  }
  if (codes.snapBase != 0) {
    changeSnapBase(numbers, codes.snapBase, change);
    for (const int code : {codes.snapSpacing, codes.gridSpacing}) {
      numbers.scale(code, change.factor);
      numbers.scale(code + kAxisStep, change.factor);
    }
  }
  changeCoordinateSystem(numbers, kOrigin, change);
}

// --- viewports before R2000 -----------------------------------------------------------------

/// Their view stands in extended data, by order alone (DXF reference, VIEWPORT, MVIEW).
class OldSheetView {
 public:
  explicit OldSheetView(RecordEdit& edit) : m_edit(edit) {
    const TagList& tags = edit.tags();
    const TagRange range = tags.xData(L"ACAD");
    bool isView = false;
    for (std::size_t i = range.first; i < range.last; ++i) {
      const int code = tags[i].code;
      if (code == kText) {
        isView = tags.textAt(i) == L"MVIEW";
      } else if (isView && code == kReal) {
        m_reals.push_back(i);
      } else if (isView && code == kPoint) {
        m_points.push_back(i);
      } else if (isView && code == kInteger) {
        m_integers.push_back(i);
      }
    }
  }

  bool isWhole() const {
    return m_reals.size() >= kRealCount && m_points.size() >= 2 && m_integers.size() >= 2 &&
           m_points[1] + 2 < m_edit.tags().size();
  }
  AcGePoint3d shown() const {
    return pointAt(m_points[0]) + AcGeVector3d(real(kCenterX), real(kCenterX + 1), 0.0);
  }
  double height() const { return real(kHeight); }

  void change(const Change& change) {
    View before;
    before.center = AcGePoint2d(real(kCenterX), real(kCenterX + 1));
    before.target = pointAt(m_points[0]);
    before.direction = pointAt(m_points[1]).asVector();
    before.twist = toRadians(real(kTwist));
    before.isPerspective = (m_edit.tags().integerAt(m_integers[1]) & kPerspective) != 0;
    const View after = changedView(before, change);
    set(kCenterX, after.center.x);
    set(kCenterX + 1, after.center.y);
    setPointAt(m_points[0], after.target);
    setPointAt(m_points[1], AcGePoint3d() + after.direction);
    for (const std::size_t place : {kHeight, kClips, kClips + 1}) {
      set(place, real(place) * change.factor);
    }
    const AcGePoint2d base(real(kSnapBase), real(kSnapBase + 1));
    const bool isPlaced = base.x != 0.0 || base.y != 0.0;
    set(kSnapBase, base.x * change.factor + (isPlaced ? change.move.x : 0.0));
    set(kSnapBase + 1, base.y * change.factor + (isPlaced ? change.move.y : 0.0));
    for (std::size_t place = kSpacings; place < kRealCount; ++place) {
      set(place, real(place) * change.factor);
    }
  }

 private:
  static constexpr int kText = 1000;
  static constexpr int kPoint = 1010;
  static constexpr int kReal = 1040;
  static constexpr int kInteger = 1070;
  // The order of the reals.
  static constexpr std::size_t kTwist = 0;
  static constexpr std::size_t kHeight = 1;
  static constexpr std::size_t kCenterX = 2;
  static constexpr std::size_t kClips = 5;
  static constexpr std::size_t kSnapBase = 8;
  static constexpr std::size_t kSpacings = 10;  // of snap and grid, x and y
  static constexpr std::size_t kRealCount = 14;

  double real(std::size_t place) const { return m_edit.tags().doubleAt(m_reals[place]); }
  void set(std::size_t place, double value) { m_edit.setDoubleAt(m_reals[place], value); }
  AcGePoint3d pointAt(std::size_t at) const {
    const TagList& tags = m_edit.tags();
    return {tags.doubleAt(at), tags.doubleAt(at + 1), tags.doubleAt(at + 2)};
  }
  void setPointAt(std::size_t at, const AcGePoint3d& point) {
    for (unsigned int axis = 0; axis < 3; ++axis) {
      m_edit.setDoubleAt(at + axis, point[axis]);
    }
  }

  RecordEdit& m_edit;
  std::vector<std::size_t> m_reals;
  std::vector<std::size_t> m_points;
  std::vector<std::size_t> m_integers;
};

/// Whether a viewport is the sheet's own view of itself and does not look at model space: the one
/// with the number 1, and those that show a place of the sheet right there in its size.
bool showsSheet(const Numbers& numbers, const AcGePoint3d& shown, double height) {
  constexpr int kNumber = 69;
  constexpr int kPlace = 10;
  constexpr int kOwnHeight = 41;
  const AcGePoint3d place = numbers.point(kPlace);
  return numbers.integer(kNumber) == 1 ||
         (place.x == shown.x && place.y == shown.y && numbers.number(kOwnHeight) == height);
}

void changeViewport(RecordEdit& edit, const Change& change) {
  constexpr int kSheetHeight = 45;
  Numbers numbers(edit, edit.tags().subclass(kSheetView.marker));
  const AcGePoint3d shown =
      numbers.point(kSheetView.center) + numbers.point(kSheetView.target).asVector();
  if (numbers.has(kSheetHeight) && !showsSheet(numbers, shown, numbers.number(kSheetHeight))) {
    changeView(numbers, kSheetView, change);
  }
  OldSheetView old(edit);
  if (old.isWhole() && !showsSheet(numbers, old.shown(), old.height())) {
    old.change(change);
  }
}

// --- layouts --------------------------------------------------------------------------------

void changeLayout(RecordEdit& edit, const Change& change) {
  constexpr int kInsertionBase = 12;
  constexpr int kLayoutOrigin = 13;
  const TagList& tags = edit.tags();
  Numbers layout(edit, tags.subclass("AcDbLayout"));
  layout.setPoint(10, change.point(layout.point(10)));  // limits
  layout.setPoint(11, change.point(layout.point(11)));
  layout.setPoint(kInsertionBase, placed(layout.point(kInsertionBase), change));
  changeBox(layout, 14, 15, change);  // extents
  changeCoordinateSystem(layout, kLayoutOrigin, change);
  // The window that is plotted, in drawing units.
  constexpr std::array<int, 4> kWindow{48, 49, 140, 141};
  Numbers plot(edit, tags.subclass("AcDbPlotSettings"));
  bool isWindow = false;
  for (const int code : kWindow) {
    isWindow = isWindow || plot.number(code) != 0.0;
  }
  for (std::size_t i = 0; i < kWindow.size() && isWindow; ++i) {
    const double move = i % 2 == 0 ? change.move.x : change.move.y;
    plot.set(kWindow[i], plot.number(kWindow[i]) * change.factor + move);
  }
}

bool isModelLayout(const TagList& tags) {
  constexpr int kLayoutName = 1;
  return tags.hasMarkers() && tags.text(kLayoutName, tags.subclass("AcDbLayout")) == L"Model";
}

// --- the whole drawing ----------------------------------------------------------------------

/// New bytes of records and header variables, all computed before the first is put in place.
class PendingChanges {
 public:
  PendingChanges(DatabaseImpl& database, const Change& change)
      : m_database(database), m_change(change) {}

  /// `edits` changes the record through the edit that it is given.
  template <class Edits>
  void add(AcDbStub& stub, std::size_t& count, Edits&& edits) {
    if (m_database.isErased(stub) || !stub.data) {
      return;
    }
    const TagList tags = m_database.tagsOf(stub);
    RecordEdit edit(tags);
    edits(edit);
    m_isFinite = m_isFinite && edit.isFinite();
    if (edit.isChanged()) {
      m_records.emplace_back(&stub, edit.bytes());
      ++count;
    }
  }
  template <class Edits>
  void addVariable(std::string_view name, std::size_t& count, Edits&& edits) {
    const TagList tags = m_database.headerTags(name);
    if (tags.size() == 0) {
      return;
    }
    RecordEdit edit(tags);
    Numbers numbers(edit, {0, tags.size()});
    edits(numbers);
    m_isFinite = m_isFinite && edit.isFinite();
    if (edit.isChanged()) {
      m_variables.emplace_back(name, edit.bytes());
      ++count;
    }
  }
  void addHeader(std::size_t& count);
  void addTables(ViewChanges& changes);
  void addViewports(std::size_t& count);
  void addLayouts(std::size_t& count);

  bool isFinite() const { return m_isFinite; }
  void apply() {
    for (auto& [stub, bytes] : m_records) {
      m_database.replace(*stub, std::move(bytes));
    }
    for (auto& [name, bytes] : m_variables) {
      m_database.store.setHeaderVariable(name, std::move(bytes));
      ++m_database.changes;
    }
  }

 private:
  DatabaseImpl& m_database;
  const Change& m_change;
  std::vector<std::pair<AcDbStub*, std::string>> m_records;
  std::vector<std::pair<std::string_view, std::string>> m_variables;
  bool m_isFinite = true;
};

void PendingChanges::addHeader(std::size_t& count) {
  constexpr int kPoint = 10;
  constexpr int kNumber = 40;
  const auto pointOf = [&](std::string_view name) {
    const TagList tags = m_database.headerTags(name);
    return tags.point(kPoint, {0, tags.size()});
  };
  const bool hasExtents = isBox(pointOf("$EXTMIN"), pointOf("$EXTMAX"));
  for (const std::string_view name : {"$EXTMIN", "$EXTMAX", "$LIMMIN", "$LIMMAX", "$VIEWCTR"}) {
    if (hasExtents || !name.starts_with("$EXT")) {
      addVariable(name, count, [&](Numbers& numbers) {
        numbers.setPoint(kPoint, m_change.point(numbers.point(kPoint)));
      });
    }
  }
  for (const std::string_view name :
       {"$INSBASE", "$UCSORG", "$UCSORGTOP", "$UCSORGBOTTOM", "$UCSORGLEFT", "$UCSORGRIGHT",
        "$UCSORGFRONT", "$UCSORGBACK", "$SNAPBASE"}) {
    addVariable(name, count, [&](Numbers& numbers) {
      numbers.setPoint(kPoint, placed(numbers.point(kPoint), m_change));
    });
  }
  for (const std::string_view name : {"$SNAPUNIT", "$GRIDUNIT"}) {
    addVariable(name, count,
                [&](Numbers& numbers) { numbers.scalePoint(kPoint, m_change.factor); });
  }
  for (const std::string_view name : {"$ELEVATION", "$VIEWSIZE"}) {
    addVariable(name, count, [&](Numbers& numbers) { numbers.scale(kNumber, m_change.factor); });
  }
}

void PendingChanges::addTables(ViewChanges& changes) {
  constexpr std::int64_t kIsPaperView = 1;
  constexpr int kSystemOrigin = 10;
  constexpr int kOrthographicOrigin = 13;
  for (AcDbStub* const stub : m_database.tableRecords(TableKind::Viewport)) {
    add(*stub, changes.views, [&](RecordEdit& edit) {
      Numbers numbers(edit, edit.tags().subclass(kActiveView.marker));
      changeView(numbers, kActiveView, m_change);
    });
  }
  for (AcDbStub* const stub : m_database.tableRecords(TableKind::View)) {
    add(*stub, changes.views, [&](RecordEdit& edit) {
      Numbers numbers(edit, edit.tags().subclass(kNamedView.marker));
      if ((numbers.integer(code::kFlags) & kIsPaperView) == 0) {
        changeView(numbers, kNamedView, m_change);
      }
    });
  }
  for (AcDbStub* const stub : m_database.tableRecords(TableKind::Ucs)) {
    add(*stub, changes.coordinates, [&](RecordEdit& edit) {
      Numbers numbers(edit, edit.tags().subclass("AcDbUCSTableRecord"));
      changeCoordinateSystem(numbers, kSystemOrigin, m_change);
      numbers.setPoint(kOrthographicOrigin, placed(numbers.point(kOrthographicOrigin), m_change));
    });
  }
}

void PendingChanges::addViewports(std::size_t& count) {
  const dxf::Block* const model = &m_database.store.modelSpace();
  for (dxf::Block& block : m_database.store.blocks()) {
    if (&block == model) {
      continue;  // those are entities and change with the others
    }
    for (AcDbStub* const stub : block.entities) {
      if (m_database.kindOf(*stub) == "VIEWPORT") {
        add(*stub, count, [&](RecordEdit& edit) { changeViewport(edit, m_change); });
      }
    }
  }
}

void PendingChanges::addLayouts(std::size_t& count) {
  for (AcDbStub* const stub : m_database.store.objects()) {
    if (m_database.kindOf(*stub) == "LAYOUT" && isModelLayout(m_database.tagsOf(*stub))) {
      add(*stub, count, [&](RecordEdit& edit) { changeLayout(edit, m_change); });
    }
  }
}

}  // namespace

Acad::ErrorStatus transformViews(AcDbDatabase* database, double factor, const AcGeVector3d& move,
                                 ViewChanges& changes) {
  changes = {};
  const Change change{factor, move};
  if (!database || !(factor > 0.0) || !std::isfinite(factor) ||
      !std::isfinite(move.x + move.y + move.z)) {
    return Acad::eInvalidInput;
  }
  if (factor == 1.0 && !change.isMove()) {
    return Acad::eOk;
  }
  try {
    PendingChanges pending(Access::of(*database), change);
    ViewChanges made;
    pending.addHeader(made.variables);
    pending.addTables(made);
    pending.addViewports(made.viewports);
    pending.addLayouts(made.layouts);
    if (!pending.isFinite()) {
      return Acad::eInvalidInput;
    }
    pending.apply();
    changes = made;
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

std::vector<AcDbObjectId> placesThatStay(const AcDbDatabase* database) {
  constexpr std::string_view kContext = "OBJECTCONTEXTDATA_CLASS";
  std::vector<AcDbObjectId> ids;
  if (database) {
    const DatabaseImpl& impl = Access::of(*database);
    for (AcDbStub* const stub : impl.store.objects()) {
      const std::string_view kind = impl.kindOf(*stub);
      if (!stub->erased && (kind == "GEODATA" || kind.ends_with(kContext))) {
        ids.emplace_back(stub);
      }
    }
  }
  return ids;
}

}  // namespace quoin::db
