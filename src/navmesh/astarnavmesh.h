#pragma once

#include "common/astar/astarmap.h"
#include "common/astar/searchfunctions.h"
#include "common/utility/bitmask.h"
#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// How many bits of an edge id hold the node that the edge leaves; the rest hold the border.
inline constexpr unsigned int ZUNO_ASTARMAP_NAVMESH_EDGEINDEX_NODEBITS = 20;

/// An edge of the mesh's graph: from a node, over one of its borders.
struct NavMeshEdge {
    static constexpr std::uint32_t STARTNODE_MASK =
        Common::Utility::BitMask<ZUNO_ASTARMAP_NAVMESH_EDGEINDEX_NODEBITS>::MASK;
    static constexpr std::uint32_t maxBorders =
        Common::Utility::BitMask<32 - ZUNO_ASTARMAP_NAVMESH_EDGEINDEX_NODEBITS>::MASK;

    static constexpr std::uint32_t make(std::uint32_t node, std::uint32_t border) {
        return border << ZUNO_ASTARMAP_NAVMESH_EDGEINDEX_NODEBITS | node;
    }
    static constexpr std::uint32_t nodeOf(std::uint32_t edge) { return edge & STARTNODE_MASK; }
    static constexpr std::uint32_t borderOf(std::uint32_t edge) {
        return edge >> ZUNO_ASTARMAP_NAVMESH_EDGEINDEX_NODEBITS;
    }

    /// Whether an entry of a node's neighbours is one: any negative number stands for none.
    static constexpr bool isNeighbour(std::int32_t entry) { return entry >= 0; }
    /// Whether an edge id can name that border; one beyond is no edge, whatever it leads to.
    static constexpr bool isBorder(std::size_t border) { return border < maxBorders; }
    /// Calls `visitor(border, neighbour)` for the borders of a node that are edges, in their order.
    template <typename Visitor>
    static void forEach(const NavMeshContainer::NavNode& node, Visitor visitor) {
        for (std::uint32_t border = 0; border < node.mNeighbours.size(); ++border)
            if (isNeighbour(node.mNeighbours[border]) && isBorder(border))
                visitor(border, static_cast<std::uint32_t>(node.mNeighbours[border]));
    }
};

/// A mesh as a graph: an edge for each border with a neighbour. Read-only; one serves any number
/// of searches. A mesh beyond the limits of edge ids (1,048,574 nodes, 4,095 borders a node) is
/// reported and must not be searched.
class AStarMapNavMesh : public Common::Astar::AStarMap {
public:
    explicit AStarMapNavMesh(const Common::SharedPtr<NavMeshContainer>& navMesh);

    void getOutEdges(Common::Astar::EdgeList& edges, std::uint32_t node) override;
    std::uint32_t getEdgeEndNode(std::uint32_t edge) override;
    std::uint32_t getEdgeStartNode(std::uint32_t edge) override {
        return NavMeshEdge::nodeOf(edge);
    }
    std::uint32_t getNodeCount() override {
        return static_cast<std::uint32_t>(mNavMesh->mNodes.size());
    }

private:
    Common::SharedPtr<NavMeshContainer> mNavMesh;
};

/// The two ends of a search: the host's points, and the nodes that they stand on. They replace the
/// centres of the start node (where a path leaves it) and of the goal node (where it enters).
struct SearchEnds {
    /// The straight distance from what stands for `fromNode` to what stands for `toNode`.
    float distance(const NavMeshContainer& mesh, std::uint32_t fromNode,
                   std::uint32_t toNode) const;

    Common::Math::Vec3<float> mStartPos;
    Common::Math::Vec3<float> mGoalPos;
    std::uint32_t mStartNode = 0xFFFFFFFF;
    std::uint32_t mGoalNode = 0xFFFFFFFF;
};

/// Prices an edge as the straight distance between the points that stand for its nodes.
class NMCostFunc : public Common::Astar::CostFunc {
public:
    explicit NMCostFunc(const Common::SharedPtr<NavMeshContainer>& navMesh) : mNavMesh(navMesh) {}
    float getCost(std::uint32_t edge) override;

private:
    Common::SharedPtr<NavMeshContainer> mNavMesh;

public:
    SearchEnds mEnds; ///< to be set before the search starts
};

/// Estimates what is left as the straight distance to the goal.
class NMHeuristicFunc : public Common::Astar::HeuristicFunc {
public:
    explicit NMHeuristicFunc(const Common::SharedPtr<NavMeshContainer>& navMesh)
        : mNavMesh(navMesh) {}
    float estimate(std::uint32_t fromNode, std::uint32_t toNode) override {
        return mEnds.distance(*mNavMesh, fromNode, toNode);
    }

private:
    Common::SharedPtr<NavMeshContainer> mNavMesh;

public:
    SearchEnds mEnds; ///< to be set before the search starts
};

} // namespace ZUNO::NavMesh
