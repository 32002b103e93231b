#include "navmesh/meshgraph.h"

#include "navmesh/nodeorder.h"

#include <algorithm>

namespace ZUNO::NavMesh {

namespace {

bool leadsTo(const NavMeshContainer::NavNode& node, std::uint32_t end) {
    bool isFound = false;
    NavMeshEdge::forEach(
        node, [&](std::uint32_t, std::uint32_t other) { isFound = isFound || other == end; });
    return isFound;
}

bool isTwoWay(const NavMeshContainer& mesh, std::uint32_t node) {
    bool isSo = true;
    NavMeshEdge::forEach(mesh.mNodes[node], [&](std::uint32_t, std::uint32_t end) {
        isSo = isSo && leadsTo(mesh.mNodes[end], node);
    });
    return isSo;
}

} // namespace

MeshGraph::MeshGraph(const Common::SharedPtr<NavMeshContainer>& navMesh,
                     const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mNodes(allocator), mEdges(allocator), mNumbers(allocator), mIslands(allocator) {
    const NavMeshContainer& mesh = *navMesh;
    const NodeOrder order(mesh, allocator);
    std::size_t edges = 0;
    for (const auto& node : mesh.mNodes)
        NavMeshEdge::forEach(node, [&](std::uint32_t, std::uint32_t) { ++edges; });
    mEdges.reserve(edges);
    mNodes.reserve(mesh.mNodes.size() + 1);
    mNumbers.resize(mesh.mNodes.size());
    for (const NodeOrder::Entry& entry : order.entries()) {
        const auto number = static_cast<std::uint32_t>(mNodes.size());
        const auto centre = mesh.getNodeCenter(static_cast<std::int32_t>(entry.mNode));
        mNodes.push_back({centre.mX, centre.mY, centre.mZ, 0});
        mNumbers[entry.mNode] = number;
        if (number == 0 || entry.mIsland != (&entry - 1)->mIsland)
            mIslands.push_back({number, true});
        mIslands.back().mEnd = number + 1;
    }
    mNodes.push_back({0, 0, 0, 0});
    for (const NodeOrder::Entry& entry : order.entries())
        addEdges(mesh, entry.mNode);
}

void MeshGraph::addEdges(const NavMeshContainer& mesh, std::uint32_t nodeID) {
    const std::uint32_t number = mNumbers[nodeID];
    NavMeshEdge::forEach(mesh.mNodes[nodeID], [&](std::uint32_t border, std::uint32_t neighbour) {
        const std::uint32_t end = mNumbers[neighbour];
        mEdges.emplace_back(end, border, length(centreOf(end) - centreOf(number)));
    });
    mNodes[number + 1].mFirstEdge = static_cast<std::uint32_t>(mEdges.size());
    mMostEdges = std::max(mMostEdges, mNodes[number + 1].mFirstEdge - mNodes[number].mFirstEdge);
    Island& island = mIslands[static_cast<std::size_t>(&islandOf(number) - mIslands.data())];
    island.mIsTwoWay = island.mIsTwoWay && isTwoWay(mesh, nodeID);
}

const MeshGraph::Island& MeshGraph::islandOf(std::uint32_t number) const {
    return *std::upper_bound(
        mIslands.begin(), mIslands.end(), number,
        [](std::uint32_t node, const Island& island) { return node < island.mEnd; });
}

std::uint32_t MeshGraph::countVainExpansions(std::uint32_t start, std::uint32_t goal) const {
    const Island& island = islandOf(start);
    const std::uint32_t begin = &island == mIslands.data() ? 0 : (&island - 1)->mEnd;
    const bool isReached = goal >= begin && goal < island.mEnd;
    return isReached || !island.mIsTwoWay ? 0 : island.mEnd - begin;
}

std::size_t MeshGraph::getMemoryUsage() const {
    return mNodes.capacity() * sizeof(Node) + mEdges.capacity() * sizeof(Edge) +
           mNumbers.capacity() * sizeof(std::uint32_t) + mIslands.capacity() * sizeof(Island);
}

} // namespace ZUNO::NavMesh
