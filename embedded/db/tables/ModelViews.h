// What looks at model space or is counted in its coordinates without being one of its entities:
// extents, limits and base points of the header, views, viewports of the layouts, user coordinate
// systems, the layout of model space. Whoever moves or scales all of model space takes them along,
// so that the drawing opens and its sheets show as before.
#pragma once

#include <cstddef>
#include <vector>

#include "acadstrc.h"
#include "dbid.h"
#include "gevec3d.h"
#include "hostapi.h"

class AcDbDatabase;

namespace quoin::db {

/// How many of each were changed.
struct ViewChanges {
  std::size_t variables = 0;    // of the header
  std::size_t views = 0;        // active and named ones
  std::size_t viewports = 0;    // of layouts
  std::size_t coordinates = 0;  // user coordinate systems
  std::size_t layouts = 0;      // that of model space
};

/// Takes them along where every point p of model space goes to factor * p + move. What stands at
/// 0,0,0 because nobody placed it (base point, origins of coordinate systems and snap) stays
/// there, and so do extents that say "none". Settings for new entities, linetypes and dimensions
/// stay.
/// Fails: eInvalidInput (no database, a factor not above 0, a number that would not be finite),
/// and then nothing is changed.
HOST_API Acad::ErrorStatus transformViews(AcDbDatabase* database, double factor,
                                          const AcGeVector3d& move, ViewChanges& changes);

/// The objects that tell places in model space, are no entities, and do not follow: where the
/// drawing lies on the globe (GEODATA), and how texts and dimensions stand at other scales than the
/// current one (annotation contexts). In file order.
HOST_API std::vector<AcDbObjectId> placesThatStay(const AcDbDatabase* database);

}  // namespace quoin::db
