#include "benchmarks/peerssample.h"

#include "navmesh/navmeshfiles.h"
#include "navmesh/planegrid.h"
#include "worlds/meshmodel.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace ZUNO::Benchmarks {

namespace {

std::string temporaryFile(const std::string& name) {
    return (std::filesystem::temp_directory_path() / ("zunopeers" + name + ".xml")).string();
}

} // namespace

Sample::Sample(const std::string& file, const std::string& journeys)
    : mFile(file), mMesh(file), mJourneys(readJourneys(journeys)) {}

Sample::Sample(unsigned int nodes) : mFile(makeFloor(nodes)), mMesh(mFile), mIsOurs(true) {}

Sample::~Sample() {
    if (mIsOurs)
        std::filesystem::remove(mFile);
}

std::string Sample::makeFloor(unsigned int nodes) {
    const std::string file = temporaryFile(std::to_string(nodes));
    Worlds::MeshModel floor = Worlds::makeFloor(nodes, 1);
    int extent = 0; // in quarters, from 0 on
    for (const auto& corner : floor.mVertices)
        extent = std::max({extent, corner.mX, corner.mZ});
    floor.mCubeSize = static_cast<float>(extent) / 4 / 1000;
    std::ofstream(file, std::ios::binary) << floor.toXML("benchmark");
    return file;
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

std::string Sample::withCells(unsigned int cellsAlongTheExtent) const {
    const auto mesh = mMesh.shared();
    const Common::Math::Rect bounds = NavMesh::measurePlane(*mesh).mBounds;
    const float extent = std::max(bounds.mMax.mX - bounds.mMin.mX, bounds.mMax.mY - bounds.mMin.mY);
    const float former = mesh->mCubeSize;
    mesh->mCubeSize = extent / static_cast<float>(cellsAlongTheExtent);
    const std::string file = temporaryFile("cells" + std::to_string(cellsAlongTheExtent));
    NavMesh::saveNavMeshXML(file.c_str(), mesh);
    mesh->mCubeSize = former;
    return file;
}

} // namespace ZUNO::Benchmarks
