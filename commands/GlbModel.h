// Models as binary glTF 2.0, the form that viewers and game engines read.
#pragma once

#include <filesystem>

#include "commands/WallModel.h"

namespace quoin::commands {

/// One mesh a layer, in the layer's material, on a node of its own under one root. The root's
/// translation brings the meshes, whose numbers are floats, to their place. Every face has its own
/// corners with its normal, so that edges stay sharp. The same model gives the same bytes.
/// Fails: throws CommandError (OutputUnwritable), also for a model beyond the 4 GB of the format.
void writeGlb(const Model& model, const ModelForm& form, const std::filesystem::path& file);

}  // namespace quoin::commands
