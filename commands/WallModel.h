// Walls and slabs as a model, and the files that hold it.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "commands/FloorSlabs.h"
#include "commands/WallPrism.h"

namespace quoin::commands {

/// What the bodies of a layer look like.
struct ModelMaterial {
  std::string layer;  // UTF-8
  /// Red, green and blue as screens show them, 0 to 1.
  std::array<double, 3> color{1.0, 1.0, 1.0};
};

struct Model {
  std::vector<WallPrism> walls;
  std::vector<FloorSlab> slabs;
  /// Of every layer with bodies, in the order in which they come first.
  std::vector<ModelMaterial> materials;

  struct Body {
    const std::string& name;
    const std::string& layer;
    std::size_t material;  // index into `materials`
    std::vector<WallPrism::Face> faces;
  };
  /// Calls `visit` for every body, slabs behind walls. Faces live no longer than the call: those of
  /// all bodies at a time would take much memory.
  void forEachBody(const std::function<void(const Body&)>& visit) const;
};

/// A material for every layer with bodies, in its layer's colour.
/// Fails: throws CommandError (InputUnreadable) for a drawing without a layer table.
std::vector<ModelMaterial> materialsOf(Drawing& drawing, const Model& model);

/// How a drawing's coordinates become the model's.
struct ModelForm {
  double scale = 1.0;  // model units of a drawing unit
  bool isYUp = false;  // turned about x: the drawing's y runs to -z
  /// What the model's units are, where it is not the drawing's.
  std::optional<AcDb::UnitsValue> units = {};

  AcGePoint3d place(const AcGePoint3d& point) const;
};

/// Whether the file's ending is one that writeModel writes: .dxf, .obj, .glb.
bool isModelFile(const std::filesystem::path& file);
/// Whether it is one of glTF, which is in metres with y upwards.
bool isGltfFile(const std::filesystem::path& file);
/// Whether materials are a file of their own.
bool hasMaterialFile(const std::filesystem::path& file);
/// Where the materials of an OBJ file go: beside it, under its name with the ending .mtl.
std::filesystem::path materialFileOf(const std::filesystem::path& file);
/// Writes the model; the file appears whole or not at all, and behind the one with its materials.
/// Fails: throws CommandError (OutputUnwritable).
void writeModel(const Model& model, const ModelForm& form, const std::filesystem::path& file);

}  // namespace quoin::commands
