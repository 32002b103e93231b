#include "tools/zunobake/scenemesh.h"

#include <stdexcept>

namespace ZUNO::Tools {

SceneMesh::SceneMesh(const Scene& scene, const BakeSettings& settings, UpAxis up,
                     const Exploration& exploration, const BakeListener& listener) {
    listener.mOnStage("baking");
    const TileBaker baker(scene, settings);
    const std::vector<TilePolygon> polygons = bakeTiles(baker, listener.mOnTiles);
    listener.mOnStage("joining");
    const BakedMesh baked(polygons, settings, baker.cells());
    if (baked.nodes().empty())
        throw std::runtime_error("no island is as large as --min-region asks for");
    mIslandsLeftOut = baked.islandsLeftOut();
    baked.fill(*mMesh.shared(), baker.grid(), scene, up);
    listener.mOnStage("exploring");
    LoadedMesh upright; // as the scene lies
    baked.fill(*upright.shared(), baker.grid(), scene, UpAxis::Y);
    const HostKit::MeshView view(*upright);
    PassageFinder passages(scene, settings, view);
    mUnreachable = listUnreachable(*mMesh, exploration.mFrom,
                                   exploration.mFindsPassages ? &passages : nullptr);
}

void requireWritableNames(const Scene& scene, const BakeSettings& settings) {
    std::vector<std::string> names = scene.mSurfaceNames;
    for (const Agent& agent : settings.mAgents)
        names.push_back(agent.mName);
    for (const std::string& name : names)
        if (name.find('<') != std::string::npos)
            throw std::runtime_error("the name '" + name + "' can't stand in an XML file: " +
                                     "choose an output that ends in .bin");
}

} // namespace ZUNO::Tools
