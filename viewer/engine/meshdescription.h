#pragma once

#include "tools/picture/loadedmesh.h"

#include <emscripten/val.h>

namespace ZUNO::Viewer {

emscripten::val toArray(const Common::Math::Vec3<float>& vector);

/// What the page shows of a mesh: its arrays, its tables, and all that is wrong with it.
emscripten::val describe(const Tools::LoadedMesh& mesh);

} // namespace ZUNO::Viewer
