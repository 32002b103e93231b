#include "benchmarks/detourpeer.h"

#include <algorithm>
#include <cmath>
#include <recastnavigation/DetourNavMeshBuilder.h>
#include <vector>

namespace ZUNO::Benchmarks {

namespace {

constexpr int corners = 6;
constexpr float latticeSteps = 65000;
constexpr unsigned short none = 0xFFFF;

void require(bool holds, const char* what) {
    if (!holds)
        throw DetourPeer::Refusal(std::string("Detour: ") + what);
}

} // namespace

DetourPeer::DetourPeer(const NavMesh::NavMeshContainer& mesh) {
    require(mesh.mVertices.size() < none && mesh.mNodes.size() < none, "the mesh is too large");
    dtNavMeshCreateParams parameters{};
    const auto& first = mesh.mVertices[0];
    float low[3] = {first.mX, first.mY, first.mZ};
    float high[3] = {first.mX, first.mY, first.mZ};
    for (const auto& corner : mesh.mVertices)
        for (unsigned int axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], corner[axis]);
            high[axis] = std::max(high[axis], corner[axis]);
        }
    const float extent = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
    const float step = extent / latticeSteps;
    std::vector<unsigned short> vertices;
    for (const auto& corner : mesh.mVertices)
        for (unsigned int axis = 0; axis < 3; ++axis)
            vertices.push_back(
                static_cast<unsigned short>(std::lround((corner[axis] - low[axis]) / step)));
    std::vector<unsigned short> polygons;
    for (const auto& node : mesh.mNodes) {
        const std::size_t count = node.mPolygon.size();
        require(count <= corners, "a polygon has too many corners");
        require(node.mNeighbours.size() == count, "a polygon has borders without an entry");
        // it runs the other way round: corner i is ours from behind, and so are the borders
        for (std::size_t i = 0; i < corners; ++i)
            polygons.push_back(i < count ? static_cast<unsigned short>(node.mPolygon[count - 1 - i])
                                         : none);
        for (std::size_t i = 0; i < corners; ++i) {
            const std::int32_t neighbour =
                i < count ? node.mNeighbours[(2 * count - 2 - i) % count] : -1;
            polygons.push_back(neighbour < 0 ? none : static_cast<unsigned short>(neighbour));
        }
    }
    const std::vector<unsigned short> flags(mesh.mNodes.size(), 1);
    const std::vector<unsigned char> areas(mesh.mNodes.size(), 0);
    parameters.verts = vertices.data();
    parameters.vertCount = static_cast<int>(mesh.mVertices.size());
    parameters.polys = polygons.data();
    parameters.polyFlags = flags.data();
    parameters.polyAreas = areas.data();
    parameters.polyCount = static_cast<int>(mesh.mNodes.size());
    parameters.nvp = corners;
    std::ranges::copy(low, parameters.bmin);
    std::ranges::copy(high, parameters.bmax);
    parameters.walkableHeight = 2;
    parameters.walkableRadius = 0;
    parameters.walkableClimb = 1;
    parameters.cs = step;
    parameters.ch = step;
    parameters.buildBvTree = true;
    unsigned char* data = nullptr;
    int size = 0;
    require(dtCreateNavMeshData(&parameters, &data, &size), "the mesh can't be made");
    mMesh.reset(dtAllocNavMesh());
    require(dtStatusSucceed(mMesh->init(data, size, DT_TILE_FREE_DATA)), "the mesh can't be used");
    mQuery.reset(dtAllocNavMeshQuery());
    require(dtStatusSucceed(mQuery->init(mMesh.get(), 65535)), "no query can be made");
}

DetourPeer::Place DetourPeer::locate(float x, float y, float z) const {
    const float position[3] = {x, y, z};
    const float halfExtents[3] = {2, 4, 2}; // as its samples ask
    Place place;
    mQuery->findNearestPoly(position, halfExtents, &mFilter, &place.mPolygon, place.mPosition);
    return place;
}

int DetourPeer::findPath(const Place& from, const Place& to) const {
    int count = 0;
    mQuery->findPath(from.mPolygon, to.mPolygon, from.mPosition, to.mPosition, &mFilter, mPath,
                     &count, maxPath);
    return count != 0 && mPath[count - 1] == to.mPolygon ? count : 0;
}

float DetourPeer::castRay(const Place& from, const float (&to)[3]) const {
    float part = 0;
    float normal[3];
    mQuery->raycast(from.mPolygon, from.mPosition, to, &mFilter, &part, normal, mPath, &mPassed,
                    maxPath);
    return part;
}

} // namespace ZUNO::Benchmarks
