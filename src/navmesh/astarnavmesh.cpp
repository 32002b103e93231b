#include "navmesh/astarnavmesh.h"

namespace ZUNO::NavMesh {

using Common::Math::Vec3;

AStarMapNavMesh::AStarMapNavMesh(const Common::SharedPtr<NavMeshContainer>& navMesh)
    : mNavMesh(navMesh) {
    if (!ZUNO_CHECK_AS(navMesh != nullptr, "navMesh != NULL",
                       "Navmesh container is a null pointer"))
        return;
    ZUNO_CHECK(navMesh->mNodes.size() != 0, "Navmesh container is empty"); // NOLINT: shown
    ZUNO_CHECK_AS(navMesh->mNodes.size() < NavMeshEdge::STARTNODE_MASK,
                  "navMesh->mNodes.size() < STARTNODE_MASK",
                  "Number of nodes in the navmesh exceed the available range of "
                      << NavMeshEdge::STARTNODE_MASK);
}

void AStarMapNavMesh::getOutEdges(Common::Astar::EdgeList& edges, std::uint32_t node) {
    const auto& neighbours = mNavMesh->mNodes[node].mNeighbours;
    for (std::uint32_t i = 0; i < neighbours.size(); ++i) {
        if (!NavMeshEdge::isNeighbour(neighbours[i]))
            continue;
        if (!ZUNO_CHECK_AS(
                NavMeshEdge::isBorder(i),
                "i < (ZUNO::Common::Utility::BitMask<(32-ZUNO_ASTARMAP_NAVMESH_EDGEINDEX_NODEBITS)>"
                "::MASK)",
                "Number of borders in a navmesh node exceeds the available range of "
                    << NavMeshEdge::maxBorders))
            return; // such an id would name another edge
        edges.push_back(NavMeshEdge::make(node, i));
    }
}

std::uint32_t AStarMapNavMesh::getEdgeEndNode(std::uint32_t edge) {
    const std::int32_t endNode =
        mNavMesh->mNodes[NavMeshEdge::nodeOf(edge)].mNeighbours[NavMeshEdge::borderOf(edge)];
    ZUNO_CHECK_AS(NavMeshEdge::isNeighbour(endNode), "endNode >= 0",
                  "getOutEdge has delivered a wrong set of out nodes");
    return static_cast<std::uint32_t>(endNode);
}

float SearchEnds::distance(const NavMeshContainer& mesh, std::uint32_t fromNode,
                           std::uint32_t toNode) const {
    const Vec3<float> a = fromNode == mStartNode
                              ? mStartPos
                              : mesh.getNodeCenter(static_cast<std::int32_t>(fromNode));
    const Vec3<float> b =
        toNode == mGoalNode ? mGoalPos : mesh.getNodeCenter(static_cast<std::int32_t>(toNode));
    return length(b - a);
}

float NMCostFunc::getCost(std::uint32_t edge) {
    const std::uint32_t from = NavMeshEdge::nodeOf(edge);
    const std::int32_t to = mNavMesh->mNodes[from].mNeighbours[NavMeshEdge::borderOf(edge)];
    return mEnds.distance(*mNavMesh, from, static_cast<std::uint32_t>(to));
}

} // namespace ZUNO::NavMesh
