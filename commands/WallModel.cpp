#include "commands/WallModel.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <unordered_map>

#include "commands/CommandError.h"
#include "commands/GlbModel.h"
#include "commands/OutputFile.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/os/File.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// Numbers the corners of a body by where they are, in the order in which they come.
class CornerNumbers {
 public:
  explicit CornerNumbers(std::size_t most) { m_numbers.reserve(most); }

  std::size_t of(const AcGePoint3d& corner) {
    const auto [place, isNew] = m_numbers.emplace(corner, m_corners.size());
    if (isNew) {
      m_corners.push_back(corner);
    }
    return place->second;
  }
  const std::vector<AcGePoint3d>& corners() const { return m_corners; }

 private:
  struct Hash {
    std::size_t operator()(const AcGePoint3d& corner) const {
      constexpr std::size_t kMix = 0x9E3779B97F4A7C15ULL;
      const std::hash<double> hash;  // the same for both zeros
      return (hash(corner.x) * kMix + hash(corner.y)) * kMix + hash(corner.z);
    }
  };
  struct Same {
    bool operator()(const AcGePoint3d& a, const AcGePoint3d& b) const {
      return a.x == b.x && a.y == b.y && a.z == b.z;
    }
  };
  std::unordered_map<AcGePoint3d, std::size_t, Hash, Same> m_numbers;
  std::vector<AcGePoint3d> m_corners;
};

/// Names of the materials in an OBJ file, where a blank would end a name: "A WALL" is A_WALL, or
/// A_WALL_2 where another layer has that name.
std::vector<std::string> materialNames(const Model& model) {
  std::set<std::string> taken;
  for (const ModelMaterial& material : model.materials) {
    if (material.layer.find(' ') == std::string::npos) {
      taken.insert(material.layer);
    }
  }
  std::vector<std::string> names;
  for (const ModelMaterial& material : model.materials) {
    std::string name = material.layer;
    if (name.find(' ') != std::string::npos) {
      std::replace(name.begin(), name.end(), ' ', '_');
      const std::string plain = name;
      for (int i = 2; !taken.insert(name).second; ++i) {
        name = fmt::format("{}_{}", plain, i);
      }
    }
    names.push_back(std::move(name));
  }
  return names;
}

/// Wavefront OBJ: vertices counted through the file from 1, one group a body.
std::string objText(const Model& model, const ModelForm& form, const std::string& materialFile,
                    const std::vector<std::string>& materials) {
  std::string text = "# walls as closed prisms, one group a wall\nmtllib " + materialFile + "\n";
  std::size_t vertexCount = 0;
  std::size_t material = materials.size();
  model.forEachBody([&](const Model::Body& body) {
    text += "g " + body.name + "\n";
    if (body.material != material) {
      material = body.material;
      text += "usemtl " + materials[material] + "\n";
    }
    // The corners, each once, so that the faces share them.
    CornerNumbers numbers(2 * body.faces.size());
    std::string faces;
    for (const WallPrism::Face& face : body.faces) {
      std::array<std::size_t, 4> corners{};
      for (std::size_t i = 0; i < face.size(); ++i) {
        corners[i] = vertexCount + 1 + numbers.of(face[i]);
      }
      faces += "f";
      for (std::size_t i = 0; i < face.size(); ++i) {
        // A corner that falls on the one before it makes the quadrilateral a triangle.
        if (corners[i] != corners[(i + 3) % 4]) {
          fmt::format_to(std::back_inserter(faces), " {}", corners[i]);
        }
      }
      faces += "\n";
    }
    for (const AcGePoint3d& corner : numbers.corners()) {
      const AcGePoint3d point = form.place(corner);
      fmt::format_to(std::back_inserter(text), "v {} {} {}\n", point.x, point.y, point.z);
    }
    text += faces;
    vertexCount += numbers.corners().size();
  });
  return text;
}

std::string mtlText(const Model& model, const std::vector<std::string>& names) {
  std::string text = "# a material a layer, in its colour\n";
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto& [red, green, blue] = model.materials[i].color;
    text +=
        fmt::format("newmtl {}\nKd {:.4f} {:.4f} {:.4f}\nillum 1\n", names[i], red, green, blue);
  }
  return text;
}

/// Both files are written before either gets its name, the materials first: no model names
/// materials that are not there.
void writeObj(const Model& model, const ModelForm& form, const std::filesystem::path& file) {
  const std::filesystem::path materialFile = materialFileOf(file);
  const std::vector<std::string> names = materialNames(model);
  const std::string text = objText(model, form, materialFile.filename().string(), names);
  try {
    os::AtomicFile materials(materialFile.string());
    os::AtomicFile output(file.string());
    materials.write(mtlText(model, names));
    output.write(text);
    materials.commit();
    output.commit();
  } catch (const os::FileFailure& failure) {
    throw CommandError(ExitCode::OutputUnwritable,
                       fmt::format("{}: cannot write the model: {}", failure.path, failure.what()));
  }
}

/// A new drawing with a 3DFACE for every face.
void writeDxf(const Model& model, const ModelForm& form, const std::filesystem::path& file) {
  AcDbDatabase database(true, true);
  if (form.units) {
    database.setInsunits(*form.units);
  }
  AcDbObjectPointer<AcDbBlockTableRecord> modelSpace(modelSpaceOf(database), AcDb::kForWrite);
  model.forEachBody([&](const Model::Body& body) {
    for (const WallPrism::Face& face : body.faces) {
      auto entity = std::make_unique<AcDbFace>(form.place(face[0]), form.place(face[1]),
                                               form.place(face[2]), form.place(face[3]));
      entity->setDatabaseDefaults(&database);
      entity->setLayer(os::fromUtf8(body.layer).c_str());
      if (modelSpace.openStatus() != Acad::eOk ||
          modelSpace->appendAcDbEntity(entity.get()) != Acad::eOk) {
        throw CommandError(ExitCode::EntityFailed, "cannot add a face to the model");
      }
      entity.release()->close();
    }
  });
  modelSpace.close();
  if (database.saveAs(os::fromUtf8(file.string()).c_str()) != Acad::eOk) {
    throw CommandError(ExitCode::OutputUnwritable, os::toUtf8(hostx::lastFileError(&database)));
  }
}

/// The layer's colour; white where it cannot be read.
std::array<double, 3> colorOf(AcDbLayerTable& table, const std::string& layer) {
  AcDbObjectId id;
  if (table.getAt(os::fromUtf8(layer).c_str(), id) != Acad::eOk) {
    return {1.0, 1.0, 1.0};
  }
  const AcDbObjectPointer<AcDbLayerTableRecord> record(id, AcDb::kForRead);
  if (record.openStatus() != Acad::eOk) {
    return {1.0, 1.0, 1.0};
  }
  const AcCmColor color = record->color();
  constexpr double kMost = 255.0;
  return {color.red() / kMost, color.green() / kMost, color.blue() / kMost};
}

}  // namespace

void Model::forEachBody(const std::function<void(const Body&)>& visit) const {
  std::unordered_map<std::string, std::size_t> materialOf;
  for (std::size_t i = 0; i < materials.size(); ++i) {
    materialOf.emplace(materials[i].layer, i);
  }
  for (const WallPrism& wall : walls) {
    visit({wall.name, wall.layer, materialOf.at(wall.layer), wall.faces()});
  }
  for (const FloorSlab& slab : slabs) {
    visit({slab.name, slab.layer, materialOf.at(slab.layer), slab.faces()});
  }
}

std::vector<ModelMaterial> materialsOf(Drawing& drawing, const Model& model) {
  std::vector<ModelMaterial> materials;
  AcDbLayerTable* table = nullptr;
  if (drawing.database().getLayerTable(table, AcDb::kForRead) != Acad::eOk) {
    throw CommandError(ExitCode::InputUnreadable,
                       drawing.file().string() + ": its layers cannot be read");
  }
  std::set<std::string> seen;
  const auto add = [&](const std::string& layer) {
    if (seen.insert(layer).second) {
      materials.push_back({layer, colorOf(*table, layer)});
    }
  };
  for (const WallPrism& wall : model.walls) {
    add(wall.layer);
  }
  for (const FloorSlab& slab : model.slabs) {
    add(slab.layer);
  }
  table->close();
  return materials;
}

AcGePoint3d ModelForm::place(const AcGePoint3d& point) const {
  const AcGePoint3d sized(scale * point.x, scale * point.y, scale * point.z);
  return isYUp ? AcGePoint3d(sized.x, sized.z, 0.0 - sized.y) : sized;
}

bool isModelFile(const std::filesystem::path& file) {
  const std::string extension = lowerCaseExtension(file);
  return extension == ".dxf" || extension == ".obj" || extension == ".glb";
}

bool isGltfFile(const std::filesystem::path& file) {
  return lowerCaseExtension(file) == ".glb";
}

bool hasMaterialFile(const std::filesystem::path& file) {
  return lowerCaseExtension(file) == ".obj";
}

std::filesystem::path materialFileOf(const std::filesystem::path& file) {
  return std::filesystem::path(file).replace_extension(".mtl");
}

void writeModel(const Model& model, const ModelForm& form, const std::filesystem::path& file) {
  const std::string extension = lowerCaseExtension(file);
  if (extension == ".obj") {
    writeObj(model, form, file);
  } else if (extension == ".glb") {
    writeGlb(model, form, file);
  } else {
    writeDxf(model, form, file);
  }
}

}  // namespace quoin::commands
