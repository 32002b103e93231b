#pragma once

#include "tools/zunobake/scene.h"

#include <tiny_gltf.h>

namespace ZUNO::Tools {

/// Adds the triangles of a model's default scene to a scene, as `readGltf` does; messages call the
/// file by its name.
void addModel(const tinygltf::Model& model, const std::string& name, const SceneOptions& options,
              Scene& scene);

} // namespace ZUNO::Tools
