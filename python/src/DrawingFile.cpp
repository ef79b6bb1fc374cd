// Drawings as documents: what quoin.Drawing is made of.
#include <fmt/format.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "EntityTool.h"
#include "commands/CommandError.h"
#include "commands/Drawing.h"
#include "commands/LayerChoice.h"
#include "commands/OutputFile.h"
#include "commands/Polylines.h"
#include "commands/Progress.h"
#include "commands/SingleLines.h"
#include "commands/SpaceChange.h"
#include "commands/WallChanges.h"
#include "commands/WallLines.h"
#include "commands/picture/DrawList.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "commands/picture/Render.h"
#include "commands/picture/ShownImages.h"
#include "commands/picture/ThemeNames.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"
#include "python/src/Arrays.h"
#include "python/src/Bindings.h"
#include "python/src/Document.h"

namespace quoin::python {

namespace {

using commands::CommandError;
using commands::Drawing;
using commands::ExitCode;
using commands::WallChange;
using commands::WallLine;
using Handles = Rows<std::uint64_t>;
using Segments = Rows<std::int32_t>;

/// Texts that come again and again, by index.
class Words {
 public:
  std::int32_t indexOf(const std::wstring& word) {
    const auto [at, isNew] = m_indexOf.try_emplace(word, static_cast<std::int32_t>(m_words.size()));
    if (isNew) {
      m_words.push_back(word);
    }
    return at->second;
  }
  const std::vector<std::wstring>& words() const { return m_words; }

 private:
  std::map<std::wstring, std::int32_t> m_indexOf;
  std::vector<std::wstring> m_words;
};

struct EntityRows {
  std::vector<std::uint64_t> handles;
  std::vector<std::int32_t> kinds;
  std::vector<std::int32_t> layers;
  Words kindNames;
  Words layerNames;

  void add(Document& document, const AcDbObjectId& id) {
    handles.push_back(document.nameOf(id));
    kinds.push_back(kindNames.indexOf(hostx::kindName(id)));
    layers.push_back(layerNames.indexOf(hostx::layerName(id)));
  }
  py::tuple arrays() {
    return py::make_tuple(toArray(std::move(handles)), toArray(std::move(kinds)),
                          inUtf8(kindNames.words()), toArray(std::move(layers)),
                          inUtf8(layerNames.words()));
  }
};

struct LineRows {
  FoundLines lines{true};
  Places places;
};

LineRows linesOf(Document& document, const std::vector<std::string>& patterns) {
  LineRows rows;
  const commands::WallLines found =
      commands::collectWallLines(document.drawing, chooseLayers(document.drawing, patterns));
  rows.lines.reserve(found.lines.size());
  for (const WallLine& line : found.lines) {
    rows.lines.add(line.start, line.end, std::int64_t{0});
    rows.places.add(document, line.entity, line.segment);
  }
  return rows;
}

/// Puts lines in the place of those that they come from.
class Replacer {
 public:
  Replacer(Document& document, const Lines& lines, const Handles& handles, const Segments& segments)
      : m_document(document),
        m_drawing(document.drawing),
        m_lines(lines),
        m_handles(handles),
        m_segments(segments),
        m_locked(document.drawing.lockedLayers()),
        m_results(lines.count(), 0) {}

  /// The handle of what each line became; 0 where it would have changed a locked layer.
  std::vector<std::uint64_t> run() {
    collect();
    std::vector<WallChange> changes;
    std::vector<const std::vector<std::size_t>*> rowsOf;
    commands::Progress progress("Changing the drawing");
    std::size_t done = 0;
    for (const auto& [first, sources] : m_order) {
      if (!progress.step(++done, m_order.size())) {
        commands::Progress::checkInterrupt();
      }
      for (const auto& [segment, rows] : *sources) {
        if (rows.size() == 1 && segment == WallLine::kWholeEntity && moveLine(first, rows[0])) {
          continue;
        }
        if (std::optional<WallChange> change = changeFor(first, segment, rows)) {
          changes.push_back(std::move(*change));
          rowsOf.push_back(&rows);
        }
      }
    }
    commands::applyWallChanges(m_drawing, changes);
    for (std::size_t i = 0; i < changes.size(); ++i) {
      for (std::size_t piece = 0; piece < changes[i].pieces.size(); ++piece) {
        m_results[(*rowsOf[i])[piece]] = parseHandle(changes[i].pieces[piece].handle);
      }
    }
    return std::move(m_results);
  }

 private:
  /// By segment, the rows of its pieces.
  using Sources = std::map<std::int32_t, std::vector<std::size_t>>;

  void collect() {
    for (std::size_t i = 0; i < m_lines.count(); ++i) {
      const auto [at, isNew] = m_sources.try_emplace(m_handles[i]);
      if (isNew) {
        m_order.emplace_back(m_handles[i], &at->second);
      }
      at->second[m_segments[i]].push_back(i);
    }
  }

  /// A LINE that stays one is opened once; false where it is none.
  bool moveLine(std::uint64_t handle, std::size_t row) {
    const AcDbObjectId id = m_document.objectWith(handle);
    AcDbObjectPointer<AcDbLine> line(id, AcDb::kForRead);
    if (line.openStatus() != Acad::eOk) {
      return false;
    }
    const WallLine source{
        line->startPoint(), line->endPoint(), id, WallLine::kWholeEntity, false, {}};
    const AcGePoint3d start = placed(m_lines.start(row), source, row);
    const AcGePoint3d end = placed(m_lines.end(row), source, row);
    const bool isStartSame = isSamePoint(start, source.start);
    const bool isEndSame = isSamePoint(end, source.end);
    m_results[row] = handle;
    if (isStartSame && isEndSame) {
      return true;
    }
    if (isOnLockedLayer(id)) {
      m_results[row] = 0;
      return true;
    }
    commands::check(line->upgradeOpen(), m_drawing, id, "open the line");
    if (!isStartSame) {
      commands::check(line->setStartPoint(start), m_drawing, id, "move the line's start");
    }
    if (!isEndSame) {
      commands::check(line->setEndPoint(end), m_drawing, id, "move the line's end");
    }
    return true;
  }

  bool isOnLockedLayer(const AcDbObjectId& id) const {
    return !m_locked.empty() && m_locked.count(hostx::layerName(id)) != 0;
  }

  /// Nothing where the line stays as it is.
  std::optional<WallChange> changeFor(std::uint64_t handle, std::int32_t segment,
                                      const std::vector<std::size_t>& rows) {
    const WallLine source = sourceOf(handle, segment, rows.front());
    WallChange change{source, {}};
    for (const std::size_t row : rows) {
      change.pieces.push_back(
          {placed(m_lines.start(row), source, row), placed(m_lines.end(row), source, row), ""});
    }
    const bool isSame = rows.size() == 1 && isSamePoint(change.pieces[0].start, source.start) &&
                        isSamePoint(change.pieces[0].end, source.end);
    if (isSame || source.isLocked) {
      for (const std::size_t row : rows) {
        m_results[row] = isSame ? handle : 0;
      }
      return std::nullopt;
    }
    return change;
  }

  WallLine sourceOf(std::uint64_t handle, std::int32_t segment, std::size_t row) {
    const AcDbObjectId id = m_document.entityWith(handle);
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    commands::check(entity.openStatus(), m_drawing, id, "open the entity");
    WallLine line{{}, {}, id, segment, isOnLockedLayer(id), {}};
    const AcDbLine* const single = AcDbLine::cast(entity.object());
    if (single && segment == WallLine::kWholeEntity) {
      line.start = single->startPoint();
      line.end = single->endPoint();
      return line;
    }
    if (commands::isPolyline(*entity.object()) && segment >= 0) {
      const commands::PolylineShape& shape = shapeOf(handle, *entity.object());
      const auto index = static_cast<std::size_t>(segment);
      if (index < shape.segmentCount() && shape.vertices[index].bulge == 0.0) {
        line.start = shape.vertices[index].world;
        line.end = shape.segmentEnd(index).world;
        return line;
      }
    }
    throw CommandError(ExitCode::EntityFailed,
                       fmt::format("handles[{}]: {} has no straight segment {}", row,
                                   commands::describe(m_drawing, id), segment));
  }

  /// Segments of a polyline stand together.
  const commands::PolylineShape& shapeOf(std::uint64_t handle, const AcDbEntity& entity) {
    if (m_shapeOf != handle) {
      m_shape = commands::readPolyline(entity);
      m_shapeOf = handle;
    }
    return m_shape;
  }

  /// A point in plan is at the height of the line that it is on.
  AcGePoint3d placed(const AcGePoint3d& point, const WallLine& source, std::size_t row) const {
    if (m_lines.isInSpace()) {
      return point;
    }
    if (source.start.z != source.end.z) {
      throw CommandError(ExitCode::EntityFailed,
                         fmt::format("lines[{}]: {} has ends at different heights: give lines of "
                                     "six numbers",
                                     row, commands::describe(m_drawing, source.entity)));
    }
    return {point.x, point.y, source.start.z};
  }

  static bool isSamePoint(const AcGePoint3d& a, const AcGePoint3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
  }

  Document& m_document;
  Drawing& m_drawing;
  const Lines& m_lines;
  const Handles& m_handles;
  const Segments& m_segments;
  std::set<std::wstring> m_locked;
  std::vector<std::uint64_t> m_results;
  std::unordered_map<std::uint64_t, Sources> m_sources;
  /// In the order in which they come first.
  std::vector<std::pair<std::uint64_t, const Sources*>> m_order;
  std::uint64_t m_shapeOf = 0;
  commands::PolylineShape m_shape;
};

std::vector<std::uint64_t> appendLines(Drawing& drawing, const Lines& lines,
                                       const std::string& layer) {
  std::vector<std::uint64_t> handles;
  handles.reserve(lines.count());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    auto line = std::make_unique<AcDbLine>(lines.start(i), lines.end(i));
    line->setDatabaseDefaults(&drawing.database());
    line->setLayer(os::fromUtf8(layer).c_str());
    handles.push_back(
        parseHandle(commands::appendEntity(drawing, drawing.modelSpaceId(), std::move(line))));
  }
  return handles;
}

struct PictureBytes {
  std::string bytes;
  std::vector<std::string> warnings;
};

/// Makes a picture, and the file where one is named; PNG without one.
PictureBytes paint(Drawing& drawing, const std::string& path, const std::string& title,
                   const std::string& subtitle, const Lines& highlight, const std::string& theme,
                   bool hasImages) {
  const std::optional<commands::Theme> named = commands::themeNamed(theme);
  if (!named) {
    throw CommandError(ExitCode::Usage,
                       "theme: '" + theme + "' is none of 'paper', 'screen' and 'faint'");
  }
  commands::SheetOptions options;
  options.theme = *named;
  if (!path.empty() && !commands::isPictureFile(path)) {
    throw CommandError(ExitCode::Usage, path + ": pictures end in .png, .svg or .pdf");
  }
  commands::Picture picture = commands::newPicture(drawing, title, subtitle);
  auto list = std::make_shared<commands::DrawList>();
  picture.warnings = commands::warningsOf(commands::drawSpace(
      drawing.modelSpaceId(), *list, {}, options.theme == commands::Theme::Paper));
  picture.drawn.push_back({list, std::nullopt, 1.0, true, 0});
  for (std::size_t i = 0; i < highlight.count(); ++i) {
    commands::addLine(picture, highlight.start(i), highlight.end(i),
                      i % 2 == 0 ? commands::palette::kFirst : commands::palette::kSecond,
                      commands::kPieceWidth);
  }
  if (hasImages) {
    options.images = std::make_shared<commands::ImageFiles>(drawing.file());
    commands::openImages(picture, *list, options);
  }
  PictureBytes made{commands::pictureBytes({picture}, options, path.empty() ? "plan.png" : path),
                    picture.warnings};
  if (!path.empty()) {
    commands::writeWholeFile(made.bytes, path, "write the picture");
  }
  return made;
}

py::dict infoOf(const DrawingFile& file) {
  struct Info {
    hostx::FileInfo file;
    std::string unitName;
    double millimetersPerUnit;
    std::vector<std::wstring> warnings;
    bool isModified;
  };
  const Info info = file.with([](Document& document) {
    Drawing& drawing = document.drawing;
    return Info{drawing.info(), drawing.unitName(), drawing.millimetersPerUnit(),
                hostx::warnings(&drawing.database()), hostx::isModified(&drawing.database())};
  });
  py::dict result;
  result["format"] = os::toUtf8(info.file.format);
  result["release"] = os::toUtf8(info.file.release);
  result["code_page"] = os::toUtf8(info.file.codePage);
  result["is_binary"] = info.file.isBinary;
  result["units"] = info.unitName;
  result["mm_per_unit"] = info.millimetersPerUnit;
  result["warnings"] = inUtf8(info.warnings);
  result["is_modified"] = info.isModified;
  return result;
}

py::list layersOf(const DrawingFile& file) {
  const std::vector<commands::LayerContent> layers =
      file.with([](Document& document) { return document.drawing.layers(); });
  py::list result;
  for (const commands::LayerContent& layer : layers) {
    py::dict counts;
    for (const auto& [kind, count] : layer.countOfKind) {
      counts[py::str(os::toUtf8(kind))] = count;
    }
    result.append(py::make_tuple(os::toUtf8(layer.name), layer.isOff, layer.isFrozen,
                                 layer.isLocked, counts));
  }
  return result;
}

py::tuple entitiesOf(const DrawingFile& file, const std::string& kind, const std::string& layer) {
  return file
      .with([kind = os::fromUtf8(kind), layer = os::fromUtf8(layer)](Document& document) {
        EntityRows rows;
        document.drawing.forEachEntity(
            document.drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
              if ((kind.empty() || commands::matchesGlob(hostx::kindName(id), kind)) &&
                  (layer.empty() || commands::matchesGlob(hostx::layerName(id), layer))) {
                rows.add(document, id);
              }
            });
        return rows;
      })
      .arrays();
}

/// (least, greatest), or None where nothing shows.
py::object extentsOf(const DrawingFile& file, bool isAll) {
  const std::optional<AcDbExtents> extents =
      file.with([isAll](Document& document) -> std::optional<AcDbExtents> {
        AcDbExtents measured;
        CEntityTool::GetEntExtents(&document.drawing.database(), measured, isAll);
        return measured.isFresh() ? std::nullopt : std::optional(measured);
      });
  if (!extents) {
    return py::none();
  }
  const AcGePoint3d& low = extents->minPoint();
  const AcGePoint3d& high = extents->maxPoint();
  return toArray(std::vector<double>{low.x, low.y, low.z, high.x, high.y, high.z}, 3);
}

/// (moved, left behind with the reasons)
py::tuple transform(const DrawingFile& file, double factor, double x, double y, double z,
                    bool isLeavingBehind, const py::object& progress) {
  struct Changed {
    std::size_t count;
    std::vector<std::pair<std::string, std::string>> left;
  };
  const Changed changed = file.with(
      [=](Document& document) {
        const commands::SpaceChanged done = commands::changeModelSpace(
            document.drawing,
            {factor, {x, y, z}, factor == 1.0 ? "move" : "scale", isLeavingBehind});
        Changed result{done.entities.size(), {}};
        for (const commands::SkippedEntity& left : done.left) {
          result.left.emplace_back(commands::describe(document.drawing, left.entity), left.reason);
        }
        return result;
      },
      progress);
  return py::make_tuple(changed.count, changed.left);
}

/// (backup, whether the file had these bytes already)
py::tuple save(const DrawingFile& file, const std::string& path, bool keepsBackup,
               const py::object& progress) {
  const hostx::SaveResult saved = file.with(
      [path, keepsBackup](Document& document) {
        document.drawing.saveAs(path, keepsBackup);
        return hostx::lastSave(&document.drawing.database());
      },
      progress);
  return py::make_tuple(os::toUtf8(saved.backup), saved.isUnchanged);
}

}  // namespace

void addDrawing(py::module_& module) {
  using Array = Lines::Array;
  py::class_<DrawingFile> drawing(module, "DrawingFile");
  drawing
      .def(
          py::init<const std::string&, const std::string&, const std::string&, const py::object&>(),
          py::arg("path"), py::arg("code_page"), py::arg("units"), py::arg("progress"))
      .def("close", &DrawingFile::close)
      .def_property_readonly("is_closed", &DrawingFile::isClosed)
      .def("info", &infoOf)
      .def("layers", &layersOf)
      .def("entities", &entitiesOf, py::arg("kind"), py::arg("layer"))
      .def(
          "entity",
          [](const DrawingFile& file, std::uint64_t handle) {
            return file
                .with([handle](Document& document) {
                  EntityRows rows;
                  rows.add(document, document.entityWith(handle));
                  return rows;
                })
                .arrays();
          },
          py::arg("handle"))
      .def(
          "lines",
          [](const DrawingFile& file, const std::vector<std::string>& layers,
             const py::object& progress) {
            LineRows rows = file.with(
                [layers](Document& document) { return linesOf(document, layers); }, progress);
            return py::make_tuple(rows.lines.lines(), rows.places.arrays());
          },
          py::arg("layers"), py::arg("progress"))
      .def(
          "replace",
          [](const DrawingFile& file, const Array& lines, const Handles::Array& handles,
             const Segments::Array& segments, const py::object& progress) {
            return toArray(file.with(
                [lines = Lines(lines), handles = Handles(handles),
                 segments = Segments(segments)](Document& document) {
                  return Replacer(document, lines, handles, segments).run();
                },
                progress));
          },
          py::arg("lines"), py::arg("handles"), py::arg("segments"), py::arg("progress"))
      .def(
          "erase",
          [](const DrawingFile& file, const Handles::Array& handles) {
            file.with([handles = Handles(handles)](Document& document) {
              std::vector<AcDbObjectId> ids;
              for (std::size_t i = 0; i < handles.count(); ++i) {
                ids.push_back(document.entityWith(handles[i]));
              }
              for (const AcDbObjectId& id : ids) {
                commands::eraseEntity(document.drawing, id);
              }
              return true;
            });
          },
          py::arg("handles"))
      .def(
          "append",
          [](const DrawingFile& file, const Array& lines, const std::string& layer) {
            return toArray(file.with([lines = Lines(lines), layer](Document& document) {
              return appendLines(document.drawing, lines, layer);
            }));
          },
          py::arg("lines"), py::arg("layer"))
      .def("extents", &extentsOf, py::arg("all"))
      .def("transform", &transform, py::arg("factor"), py::arg("x"), py::arg("y"), py::arg("z"),
           py::arg("leave_behind"), py::arg("progress"))
      .def(
          "picture",
          [](const DrawingFile& file, const std::string& path, const std::string& title,
             const std::string& subtitle, const Array& highlight, const std::string& theme,
             bool hasImages) {
            const PictureBytes picture = file.with([path, title, subtitle,
                                                    highlight = Lines(highlight), theme,
                                                    hasImages](Document& document) {
              return paint(document.drawing, path, title, subtitle, highlight, theme, hasImages);
            });
            return py::make_tuple(py::bytes(picture.bytes), picture.warnings);
          },
          py::arg("path"), py::arg("title"), py::arg("subtitle"), py::arg("highlight"),
          py::arg("theme"), py::arg("images"))
      .def("save", &save, py::arg("path"), py::arg("backup"), py::arg("progress"));
  addDrawingPlans(drawing);
}

}  // namespace quoin::python
