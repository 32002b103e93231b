#include "tools/picture/meshfigures.h"

#include <algorithm>
#include <numeric>

namespace ZUNO::Tools {

std::vector<unsigned int> findIslands(const NavMesh::NavMeshContainer& mesh) {
    const std::size_t count = mesh.mNodes.size();
    std::vector<unsigned int> leader(count);
    std::iota(leader.begin(), leader.end(), 0U);
    const auto leaderOf = [&](unsigned int node) {
        while (leader[node] != node)
            node = leader[node] = leader[leader[node]];
        return node;
    };
    for (unsigned int id = 0; id < count; ++id)
        for (const std::int32_t neighbour : mesh.mNodes[id].mNeighbours)
            if (neighbour >= 0)
                leader[leaderOf(id)] = leaderOf(static_cast<unsigned int>(neighbour));
    std::vector<unsigned int> size(count);
    for (unsigned int id = 0; id < count; ++id)
        ++size[leaderOf(id)];
    std::vector<unsigned int> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](unsigned int a, unsigned int b) { return size[a] > size[b]; });
    std::vector<unsigned int> rank(count);
    for (unsigned int i = 0; i < count; ++i)
        rank[order[i]] = i;
    std::vector<unsigned int> islands(count);
    for (unsigned int id = 0; id < count; ++id)
        islands[id] = rank[leaderOf(id)];
    return islands;
}

MeshCounts countMesh(const NavMesh::NavMeshContainer& mesh) {
    MeshCounts counts;
    for (const auto& node : mesh.mNodes) {
        counts.mBorders += node.mPolygon.size();
        for (const std::int32_t neighbour : node.mNeighbours)
            counts.mLinks += neighbour >= 0 ? 1 : 0;
    }
    for (const unsigned int island : findIslands(mesh)) {
        counts.mIslandSizes.resize(std::max<std::size_t>(counts.mIslandSizes.size(), island + 1));
        ++counts.mIslandSizes[island];
    }
    return counts;
}

Common::Math::Vec2<float> positionAt(const NavMesh::NavMeshContainer& mesh,
                                     const Common::Math::Vec2<float>& point) {
    const Common::Math::Vec3<float>& x = mesh.mXAxis;
    const Common::Math::Vec3<float>& y = mesh.mYAxis;
    const Common::Math::Vec3<float> position(x.mX * point.mX + y.mX * point.mY,
                                             x.mY * point.mX + y.mY * point.mY,
                                             x.mZ * point.mX + y.mZ * point.mY);
    return position.killComponent(mesh.mNormal.getDominantAxis());
}

} // namespace ZUNO::Tools
