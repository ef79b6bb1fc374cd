#include "embedded/dxf/SharedTags.h"

#include <algorithm>
#include <array>
#include <span>

namespace quoin::dxf {
namespace {

/// Handle, linetype, layer, linetype scale, visibility, colour, paper space, shadow, owner,
/// material, visual style, line weight, plot style, layout, true colour and its name, transparency.
constexpr std::array kShared{5,   6,   8,   48,  60,  62,  67,  284, 330,
                             347, 348, 370, 390, 410, 420, 430, 440};

/// A kind and those of the codes above that it uses for itself (DXF reference, entity by entity).
struct OwnUse {
  std::string_view kind;
  std::span<const int> codes;
};

constexpr std::array kHatchUse{330};          // the objects that bound it
constexpr std::array kLeaderUse{330};         // attributes of its block
constexpr std::array kTextUse{48, 420, 430};  // width of columns, colour of the background
constexpr std::array kViewportUse{348};       // its visual style

/// Sorted by kind. Kinds that hold whatever their maker likes (proxies), tables with their cells
/// (62, 60, 284 and more mean borders and texts there), surfaces (48 is a factor), meshes, lights
/// and sections are not here.
constexpr std::array kKinds{OwnUse{"3DFACE", {}},
                            OwnUse{"3DSOLID", {}},
                            OwnUse{"ARC", {}},
                            OwnUse{"ARC_DIMENSION", {}},
                            OwnUse{"ATTDEF", {}},
                            OwnUse{"ATTRIB", {}},
                            OwnUse{"BODY", {}},
                            OwnUse{"CIRCLE", {}},
                            OwnUse{"DGNUNDERLAY", {}},
                            OwnUse{"DIMENSION", {}},
                            OwnUse{"DWFUNDERLAY", {}},
                            OwnUse{"ELLIPSE", {}},
                            OwnUse{"HATCH", kHatchUse},
                            OwnUse{"HELIX", {}},
                            OwnUse{"IMAGE", {}},
                            OwnUse{"INSERT", {}},
                            OwnUse{"LARGE_RADIAL_DIMENSION", {}},
                            OwnUse{"LEADER", {}},
                            OwnUse{"LINE", {}},
                            OwnUse{"LWPOLYLINE", {}},
                            OwnUse{"MLEADER", kLeaderUse},
                            OwnUse{"MLINE", {}},
                            OwnUse{"MPOLYGON", kHatchUse},
                            OwnUse{"MTEXT", kTextUse},
                            OwnUse{"MULTILEADER", kLeaderUse},
                            OwnUse{"OLE2FRAME", {}},
                            OwnUse{"OLEFRAME", {}},
                            OwnUse{"PDFUNDERLAY", {}},
                            OwnUse{"POINT", {}},
                            OwnUse{"POLYLINE", {}},
                            OwnUse{"RAY", {}},
                            OwnUse{"REGION", {}},
                            OwnUse{"SEQEND", {}},
                            OwnUse{"SHAPE", {}},
                            OwnUse{"SOLID", {}},
                            OwnUse{"SPLINE", {}},
                            OwnUse{"TEXT", {}},
                            OwnUse{"TOLERANCE", {}},
                            OwnUse{"TRACE", {}},
                            OwnUse{"VERTEX", {}},
                            OwnUse{"VIEWPORT", kViewportUse},
                            OwnUse{"WIPEOUT", {}},
                            OwnUse{"XLINE", {}}};

constexpr bool isBefore(const OwnUse& a, const OwnUse& b) {
  return a.kind < b.kind;
}
static_assert(std::is_sorted(kKinds.begin(), kKinds.end(), isBefore));

bool contains(std::span<const int> codes, int code) {
  return std::find(codes.begin(), codes.end(), code) != codes.end();
}

}  // namespace

bool isSharedTag(std::string_view kind, int code) {
  if (!contains(kShared, code)) {
    return false;
  }
  const auto row = std::lower_bound(kKinds.begin(), kKinds.end(), OwnUse{kind, {}}, isBefore);
  return row != kKinds.end() && row->kind == kind && !contains(row->codes, code);
}

}  // namespace quoin::dxf
