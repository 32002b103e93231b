#pragma once

#include "tools/picture/loadedmesh.h"

#include <emscripten/val.h>

namespace ZUNO::Viewer {

/// A copy of the numbers in an array of the page's own.
template <typename T>
emscripten::val copyOf(const std::vector<T>& numbers) {
    const emscripten::val view(emscripten::typed_memory_view(numbers.size(), numbers.data()));
    return view.call<emscripten::val>("slice");
}

emscripten::val toArray(const Common::Math::Vec3<float>& vector);

/// What the page shows of a mesh: its arrays, its tables, and all that is wrong with it.
emscripten::val describe(const Tools::LoadedMesh& mesh);

} // namespace ZUNO::Viewer
