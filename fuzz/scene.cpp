// The baker over any scene: it says what is wrong, or makes a mesh with nothing wrong.
#include "fuzz/ground.h"
#include "navmesh/meshdefects.h"
#include "tools/picture/loadedmesh.h"
#include "tools/zunobake/baker.h"

#include <sstream>
#include <stdexcept>

using namespace ZUNO;
using namespace ZUNO::Tools;

namespace {

bool refuse(const char* text) {
    Fuzz::require(false, text);
    return false;
}

BakeSettings settings() {
    BakeSettings coarse;
    coarse.mAgents = {{"agent"}};
    coarse.mMinRegion = 2;
    coarse.mMaxCells = 10'000;
    return coarse;
}

void bake(std::istream& file, std::size_t size) {
    SceneOptions options;
    options.mSkipsDegenerate = options.mTakesBothSides = true;
    Scene scene;
    readObj(file, size, "scene", options, scene);
    static const BakeSettings bakeSettings = settings();
    const TileBaker baker(scene, bakeSettings);
    const BakedMesh baked(bakeTiles(baker, [](std::size_t, std::size_t) {}), bakeSettings,
                          baker.cells());
    if (baked.nodes().empty())
        return;
    LoadedMesh mesh;
    baked.fill(*mesh.shared(), baker.grid(), scene, options.mUp);
    findDefects(*mesh, refuse);
    findOddities(*mesh, refuse);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceReports();
    std::istringstream file(std::string(reinterpret_cast<const char*>(data), size));
    try {
        bake(file, size);
    } catch (const std::runtime_error& error) {
        Fuzz::require(*error.what() != '\0', "errors say what happened");
    }
    return 0;
}
