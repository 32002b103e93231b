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

/// A mesh's nodes in Detour's form: corners the other way round, six at most. Nodes with more are
/// cut into fans around their first corner.
class Polygons {
public:
    explicit Polygons(const NavMesh::NavMeshContainer& mesh) : mMesh(mesh) {
        for (const auto& node : mesh.mNodes) {
            require(node.mNeighbours.size() == node.mPolygon.size(),
                    "a polygon has borders without an entry");
            mFirst.push_back(mCount);
            mCount += pieceOf(node, node.mPolygon.size() - 2) + 1;
        }
        require(mCount < none, "the mesh is too large");
        for (std::size_t node = 0; node < mesh.mNodes.size(); ++node)
            append(node);
    }

    const unsigned short* data() const { return mData.data(); }
    std::size_t count() const { return mCount; }

private:
    using Node = NavMesh::NavMeshContainer::NavNode;

    static std::uint32_t cornerOf(const Node& node, std::size_t i) {
        return node.mPolygon[node.mPolygon.size() - 1 - i % node.mPolygon.size()];
    }
    static std::int32_t neighbourOf(const Node& node, std::size_t border) {
        const std::size_t count = node.mPolygon.size();
        return node.mNeighbours[(2 * count - 2 - border) % count];
    }
    /// The piece that has the border from a corner to the next.
    static std::size_t pieceOf(const Node& node, std::size_t border) {
        const std::size_t last = node.mPolygon.size() - 2;
        return border == 0 ? 0 : (std::min(border, last) - 1) / (corners - 2);
    }

    /// The polygon behind a border: the piece that shares it, where they share the whole of it.
    unsigned short behind(std::size_t id, std::size_t border) const {
        const std::int32_t other = neighbourOf(mMesh.mNodes[id], border);
        if (other < 0)
            return none;
        const Node& neighbour = mMesh.mNodes[static_cast<std::size_t>(other)];
        const std::uint32_t end = cornerOf(mMesh.mNodes[id], border + 1);
        std::size_t shared = 0;
        for (std::size_t i = neighbour.mPolygon.size(); i-- != 0;)
            if (neighbourOf(neighbour, i) == static_cast<std::int32_t>(id)) {
                shared = i;
                if (cornerOf(neighbour, i) == end)
                    break;
            }
        return static_cast<unsigned short>(mFirst[static_cast<std::size_t>(other)] +
                                           pieceOf(neighbour, shared));
    }

    void append(std::size_t id) {
        const Node& node = mMesh.mNodes[id];
        const std::size_t pieces = pieceOf(node, node.mPolygon.size() - 2) + 1;
        for (std::size_t piece = 0; piece < pieces; ++piece) {
            const std::size_t begin = 1 + piece * (corners - 2);
            const std::size_t end = std::min(begin + corners - 2, node.mPolygon.size() - 1);
            const auto before = static_cast<unsigned short>(mFirst[id] + piece - 1);
            const auto after = static_cast<unsigned short>(mFirst[id] + piece + 1);
            std::vector<unsigned short> both(std::size_t{2} * corners, none);
            both[0] = static_cast<unsigned short>(cornerOf(node, 0));
            both[corners] = piece == 0 ? behind(id, 0) : before;
            for (std::size_t i = begin; i <= end; ++i) {
                both[i - begin + 1] = static_cast<unsigned short>(cornerOf(node, i));
                both[corners + i - begin + 1] =
                    i < end || piece + 1 == pieces ? behind(id, i) : after;
            }
            mData.insert(mData.end(), both.begin(), both.end());
        }
    }

    const NavMesh::NavMeshContainer& mMesh;
    std::vector<unsigned short> mData;
    std::vector<std::size_t> mFirst; ///< the first piece of each node
    std::size_t mCount = 0;
};

} // namespace

DetourPeer::DetourPeer(const NavMesh::NavMeshContainer& mesh) {
    require(mesh.mVertices.size() < none, "the mesh is too large");
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
    const Polygons polygons(mesh);
    const std::vector<unsigned short> flags(polygons.count(), 1);
    const std::vector<unsigned char> areas(polygons.count(), 0);
    parameters.verts = vertices.data();
    parameters.vertCount = static_cast<int>(mesh.mVertices.size());
    parameters.polys = polygons.data();
    parameters.polyFlags = flags.data();
    parameters.polyAreas = areas.data();
    parameters.polyCount = static_cast<int>(polygons.count());
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
