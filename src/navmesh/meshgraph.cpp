#include "navmesh/meshgraph.h"

#include <algorithm>

namespace ZUNO::NavMesh {

MeshGraph::MeshGraph(const Common::SharedPtr<NavMeshContainer>& navMesh,
                     const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : AStarMapNavMesh(navMesh), mCentres(allocator), mFirstBorders(allocator), mBorders(allocator) {
    const NavMeshContainer& mesh = *navMesh;
    // borders that an edge id can't name are no edges; asking for them is what reports them
    const auto bordersOf = [](const NavMeshContainer::NavNode& node) {
        return std::min<std::size_t>(node.mNeighbours.size(), NavMeshEdge::maxBorders);
    };
    std::size_t borders = 0;
    mCentres.reserve(mesh.mNodes.size());
    for (std::size_t id = 0; id < mesh.mNodes.size(); ++id) {
        mCentres.push_back(mesh.getNodeCenter(static_cast<std::int32_t>(id)));
        borders += bordersOf(mesh.mNodes[id]);
    }
    mBorders.reserve(borders);
    mFirstBorders.reserve(mesh.mNodes.size() + 1);
    for (std::size_t id = 0; id < mesh.mNodes.size(); ++id) {
        const NavMeshContainer::NavNode& node = mesh.mNodes[id];
        mFirstBorders.push_back(static_cast<std::uint32_t>(mBorders.size()));
        for (std::size_t i = 0; i < bordersOf(node); ++i) {
            const std::int32_t end = node.mNeighbours[i];
            if (end < 0)
                mBorders.push_back({Common::Astar::noNode, 0});
            else
                mBorders.push_back(
                    {static_cast<std::uint32_t>(end),
                     length(mCentres[static_cast<std::size_t>(end)] - mCentres[id])});
        }
    }
    mFirstBorders.push_back(static_cast<std::uint32_t>(mBorders.size()));
}

std::size_t MeshGraph::getMemoryUsage() const {
    return mCentres.capacity() * sizeof(mCentres[0]) +
           mFirstBorders.capacity() * sizeof(mFirstBorders[0]) +
           mBorders.capacity() * sizeof(mBorders[0]);
}

} // namespace ZUNO::NavMesh
