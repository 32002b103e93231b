#include "benchmarks/peerssample.h"

#include "navmesh/planegrid.h"
#include "tools/zunobake/baker.h"
#include "worlds/meshmodel.h"
#include "worlds/scenes.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace ZUNO::Benchmarks {

Sample::Sample(const std::string& file, const std::string& journeys)
    : mName(file), mMesh(file), mJourneys(readJourneys(journeys)) {}

Sample::Sample(const char* kind, const Text& text)
    : mKind(kind), mOwnFile(text.mContent), mName(mOwnFile->name()), mMesh(mName) {}

Sample::Text Sample::makeFloor(unsigned int nodes) {
    Worlds::MeshModel floor = Worlds::makeFloor(nodes, 1);
    int extent = 0; // in quarters, from 0 on
    for (const auto& corner : floor.mVertices)
        extent = std::max({extent, corner.mX, corner.mZ});
    floor.mCubeSize = static_cast<float>(extent) / 4 / 1000;
    return {floor.toXML("benchmark")};
}

Sample::Text Sample::bakeTown(int plots) {
    const std::string text = Worlds::makeTown(plots, 1).toObj("benchmark");
    std::istringstream file(text);
    Tools::Scene scene;
    Tools::readObj(file, text.size(), "town", {}, scene);
    Tools::BakeSettings settings;
    settings.mRadius = 0.25F;
    settings.mTileSize = 512;
    settings.mAgents.push_back({"agent"});
    const Tools::TileBaker baker(scene, settings);
    const auto polygons = Tools::bakeTiles(baker, [](std::size_t, std::size_t) {});
    const Tools::BakedMesh baked(polygons, settings, baker.cells());
    const Tools::LoadedMesh mesh;
    baked.fill(*mesh.shared(), baker.grid(), scene, Tools::UpAxis::Y);
    return {mesh.toXML()};
}

std::vector<Journey> Sample::readJourneys(const std::string& file) {
    std::vector<Journey> journeys;
    if (file.empty())
        return journeys;
    std::ifstream in(file);
    Journey journey{};
    while (in >> journey.mFrom.mX >> journey.mFrom.mY >> journey.mFrom.mZ >> journey.mTo.mX >>
           journey.mTo.mY >> journey.mTo.mZ)
        journeys.push_back(journey);
    if (!in.eof() || journeys.empty())
        throw std::runtime_error(file + ": expected lines of six numbers; read " +
                                 std::to_string(journeys.size()));
    return journeys;
}

NavMesh::NavMeshContainer::Point3 Sample::pick(std::mt19937& random) const {
    return mMesh->getNodeCenter(static_cast<std::int32_t>(random() % nodes()));
}

std::string Sample::withCells(unsigned int cells) const {
    NavMesh::NavMeshContainer& mesh = *mMesh.shared();
    const Common::Math::Rect bounds = NavMesh::measurePlane(mesh).mBounds;
    const float extent = std::max(bounds.mMax.mX - bounds.mMin.mX, bounds.mMax.mY - bounds.mMin.mY);
    const float former = std::exchange(mesh.mCubeSize, extent / static_cast<float>(cells));
    std::string text = mMesh.toXML();
    mesh.mCubeSize = former;
    return text;
}

} // namespace ZUNO::Benchmarks
