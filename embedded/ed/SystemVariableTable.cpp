// The table of system variables. Key of the notation: onOff, whole, real, positive, text and
// point make a row that can be set (for the document, or with `session` for the session);
// fixed, fixedPerDocument and computed make rows that are read only. What a drawing keeps
// itself (DrawingVariables.h) has its first value here for documents without a database.
#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <iterator>

#include "embedded/ed/DocumentState.h"
#include "embedded/ed/SystemVariables.h"

namespace quoin::ed {
namespace {

using Type = VariableType;

constexpr double kShortLeast = -32768.0;
constexpr double kShortMost = 32767.0;
// The corners of a drawing with nothing in it.
constexpr double kNoExtents = 1.0e20;

constexpr VariableRow number(const wchar_t* name, Type type, double first, double least,
                             double most) {
  return {name, type, false, true, nullptr, {first, 0.0, 0.0}, nullptr, least, most};
}
constexpr VariableRow onOff(const wchar_t* name, double first) {
  return number(name, Type::Short, first, 0.0, 1.0);
}
constexpr VariableRow whole(const wchar_t* name, double first, double least = kShortLeast,
                            double most = kShortMost) {
  return number(name, Type::Short, first, least, most);
}
constexpr VariableRow real(const wchar_t* name, double first, double least = -DBL_MAX,
                           double most = DBL_MAX) {
  return number(name, Type::Real, first, least, most);
}
constexpr VariableRow positive(const wchar_t* name, double first) {
  return real(name, first, DBL_TRUE_MIN);
}
constexpr VariableRow text(const wchar_t* name, const wchar_t* first) {
  return {name, Type::Text, false, true, nullptr, {0.0, 0.0, 0.0}, first, 0.0, 0.0};
}
constexpr VariableRow point(const wchar_t* name, Type type, double x, double y, double z = 0.0) {
  return {name, type, false, true, nullptr, {x, y, z}, nullptr, -DBL_MAX, DBL_MAX};
}
constexpr VariableRow session(VariableRow row) {
  row.isPerDocument = false;
  return row;
}
constexpr VariableRow fixedPerDocument(VariableRow row) {
  row.isReadOnly = true;
  return row;
}
constexpr VariableRow fixed(VariableRow row) {
  return session(fixedPerDocument(row));
}
constexpr VariableRow computed(const wchar_t* name, Type type,
                               VariableValue (*compute)(const DocumentState&)) {
  return {name, type, true, true, compute, {0.0, 0.0, 0.0}, nullptr, 0.0, 0.0};
}

VariableValue valueOf(double value) {
  return {{value, 0.0, 0.0}, {}};
}
VariableValue valueOf(const AcGePoint3d& p) {
  return {{p.x, p.y, p.z}, {}};
}
VariableValue valueOf(const AcGeVector3d& v) {
  return {{v.x, v.y, v.z}, {}};
}
VariableValue valueOf(std::wstring value) {
  return {{0.0, 0.0, 0.0}, std::move(value)};
}

AcGeMatrix3d worldToUser(const DocumentState& document) {
  return document.userSystem.toWorld().inverse();
}

// The view is told in the user coordinate system of the moment.
VariableValue viewCenter(const DocumentState& document) {
  const AcGePoint3d center(document.view.center.x, document.view.center.y, 0.0);
  return valueOf(worldToUser(document) * (document.view.toWorld() * center));
}
VariableValue viewDirection(const DocumentState& document) {
  return valueOf(worldToUser(document) * document.view.direction);
}
VariableValue viewTarget(const DocumentState& document) {
  return valueOf(worldToUser(document) * document.view.target);
}
VariableValue viewHeight(const DocumentState& document) {
  return valueOf(document.view.height);
}
VariableValue viewTwist(const DocumentState& document) {
  return valueOf(document.view.twistRad);
}
VariableValue screenSize(const DocumentState& document) {
  return valueOf(AcGePoint3d(document.view.widthPixels, document.view.heightPixels, 0.0));
}
VariableValue userOrigin(const DocumentState& document) {
  return valueOf(document.userSystem.origin);
}
VariableValue userXAxis(const DocumentState& document) {
  return valueOf(document.userSystem.xAxis);
}
VariableValue userYAxis(const DocumentState& document) {
  return valueOf(document.userSystem.yAxis);
}
VariableValue isWorldSystem(const DocumentState& document) {
  return valueOf(document.userSystem.isWorld() ? 1.0 : 0.0);
}
VariableValue drawingName(const DocumentState& document) {
  return valueOf(document.title());
}
VariableValue drawingFolder(const DocumentState& document) {
  return valueOf(document.folder());
}
VariableValue isTitled(const DocumentState& document) {
  return valueOf(document.folder().empty() ? 0.0 : 1.0);
}
VariableValue isPrompting(const DocumentState& document) {
  return valueOf(document.prompts.isQuiescent() ? 0.0 : 1.0);
}

constexpr VariableRow kRows[] = {
    fixed(text(L"ACADVER", L"18.0")),
    real(L"ANGBASE", 0.0),
    onOff(L"ANGDIR", 0),
    session(whole(L"APERTURE", 10, 1, 50)),
    onOff(L"ATTDIA", 0),
    whole(L"ATTMODE", 1, 0, 2),
    onOff(L"ATTREQ", 1),
    whole(L"AUNITS", 0, 0, 4),
    whole(L"AUPREC", 0, 0, 8),
    session(whole(L"AUTOSNAP", 63, 0, 63)),
    onOff(L"BLIPMODE", 0),
    text(L"CECOLOR", L"BYLAYER"),
    positive(L"CELTSCALE", 1.0),
    text(L"CELTYPE", L"ByLayer"),
    whole(L"CELWEIGHT", -1, -3, 211),
    real(L"CHAMFERA", 0.0, 0.0),
    real(L"CHAMFERB", 0.0, 0.0),
    text(L"CLAYER", L"0"),
    computed(L"CMDACTIVE", Type::Short, isPrompting),
    session(onOff(L"CMDDIA", 1)),
    session(onOff(L"CMDECHO", 1)),
    whole(L"CMLJUST", 0, 0, 2),
    real(L"CMLSCALE", 20.0),
    text(L"CMLSTYLE", L"STANDARD"),
    whole(L"CVPORT", 2, 2, 2),
    real(L"DIMASZ", 2.5, 0.0),
    whole(L"DIMDEC", 2, 0, 8),
    real(L"DIMEXE", 1.25, 0.0),
    real(L"DIMEXO", 0.625, 0.0),
    real(L"DIMGAP", 0.625),
    real(L"DIMLFAC", 1.0),
    real(L"DIMSCALE", 1.0, 0.0),
    text(L"DIMSTYLE", L"ISO-25"),
    positive(L"DIMTXT", 2.5),
    session(whole(L"DRAGMODE", 2, 0, 2)),
    computed(L"DWGNAME", Type::Text, drawingName),
    computed(L"DWGPREFIX", Type::Text, drawingFolder),
    computed(L"DWGTITLED", Type::Short, isTitled),
    real(L"ELEVATION", 0.0),
    session(whole(L"EXPERT", 0, 0, 5)),
    fixedPerDocument(point(L"EXTMAX", Type::Point3d, -kNoExtents, -kNoExtents, -kNoExtents)),
    fixedPerDocument(point(L"EXTMIN", Type::Point3d, kNoExtents, kNoExtents, kNoExtents)),
    session(onOff(L"FILEDIA", 1)),
    real(L"FILLETRAD", 0.0, 0.0),
    onOff(L"FILLMODE", 1),
    onOff(L"GRIDMODE", 0),
    point(L"GRIDUNIT", Type::Point2d, 10.0, 10.0),
    fixed(onOff(L"HANDLES", 1)),
    session(onOff(L"HIGHLIGHT", 1)),
    point(L"INSBASE", Type::Point3d, 0.0, 0.0),
    whole(L"INSUNITS", 4, 0, 20),
    point(L"LASTPOINT", Type::Point3d, 0.0, 0.0),
    onOff(L"LIMCHECK", 0),
    point(L"LIMMAX", Type::Point2d, 420.0, 297.0),
    point(L"LIMMIN", Type::Point2d, 0.0, 0.0),
    positive(L"LTSCALE", 1.0),
    whole(L"LUNITS", 2, 1, 5),
    whole(L"LUPREC", 4, 0, 8),
    onOff(L"LWDISPLAY", 0),
    onOff(L"MEASUREMENT", 1),
    session(whole(L"MENUECHO", 0, 0, 15)),
    onOff(L"MIRRTEXT", 0),
    session(onOff(L"NOMUTT", 0)),
    real(L"OFFSETDIST", 1.0),
    onOff(L"ORTHOMODE", 0),
    session(whole(L"OSMODE", 4133, 0, 32767)),
    whole(L"PDMODE", 0, 0, 100),
    real(L"PDSIZE", 0.0),
    session(whole(L"PICKADD", 1, 0, 2)),
    session(onOff(L"PICKAUTO", 1)),
    session(whole(L"PICKBOX", 3, 0, 50)),
    session(onOff(L"PICKDRAG", 0)),
    session(onOff(L"PICKFIRST", 1)),
    session(real(L"POLARANG", 1.5707963267948966)),
    session(whole(L"POLARMODE", 0, 0, 15)),
    onOff(L"PSLTSCALE", 1),
    onOff(L"QTEXTMODE", 0),
    onOff(L"REGENMODE", 1),
    computed(L"SCREENSIZE", Type::Point2d, screenSize),
    session(onOff(L"SDI", 0)),
    real(L"SNAPANG", 0.0),
    point(L"SNAPBASE", Type::Point2d, 0.0, 0.0),
    onOff(L"SNAPMODE", 0),
    point(L"SNAPUNIT", Type::Point2d, 10.0, 10.0),
    onOff(L"SPLFRAME", 0),
    computed(L"TARGET", Type::Point3d, viewTarget),
    positive(L"TEXTSIZE", 2.5),
    text(L"TEXTSTYLE", L"Standard"),
    real(L"THICKNESS", 0.0),
    onOff(L"TILEMODE", 1),
    session(onOff(L"TRIMMODE", 1)),
    text(L"UCSNAME", L""),
    computed(L"UCSORG", Type::Point3d, userOrigin),
    computed(L"UCSXDIR", Type::Point3d, userXAxis),
    computed(L"UCSYDIR", Type::Point3d, userYAxis),
    whole(L"USERI1", 0),
    whole(L"USERI2", 0),
    whole(L"USERI3", 0),
    whole(L"USERI4", 0),
    whole(L"USERI5", 0),
    real(L"USERR1", 0.0),
    real(L"USERR2", 0.0),
    real(L"USERR3", 0.0),
    real(L"USERR4", 0.0),
    real(L"USERR5", 0.0),
    text(L"USERS1", L""),
    text(L"USERS2", L""),
    text(L"USERS3", L""),
    text(L"USERS4", L""),
    text(L"USERS5", L""),
    computed(L"VIEWCTR", Type::Point3d, viewCenter),
    computed(L"VIEWDIR", Type::Point3d, viewDirection),
    computed(L"VIEWSIZE", Type::Real, viewHeight),
    computed(L"VIEWTWIST", Type::Real, viewTwist),
    onOff(L"VISRETAIN", 1),
    computed(L"WORLDUCS", Type::Short, isWorldSystem),
};

constexpr bool comesBefore(const VariableRow& row, std::wstring_view name) {
  return std::wstring_view(row.name) < name;
}
static_assert(std::is_sorted(std::begin(kRows), std::end(kRows),
                             [](const VariableRow& a, const VariableRow& b) {
                               return comesBefore(a, b.name);
                             }),
              "findVariable searches by halves");

}  // namespace

std::span<const VariableRow> variableTable() {
  return kRows;
}

const VariableRow* findVariable(std::wstring_view name) {
  std::wstring capitals(name);
  for (wchar_t& c : capitals) {
    if (c >= L'a' && c <= L'z') {
      c = static_cast<wchar_t>(c - L'a' + L'A');
    }
  }
  const auto* const found =
      std::lower_bound(std::begin(kRows), std::end(kRows), capitals, comesBefore);
  return found != std::end(kRows) && capitals == found->name ? found : nullptr;
}

}  // namespace quoin::ed
