#pragma once

#include "navmesh/astarnavmesh.h"

#include <span>

namespace ZUNO::NavMesh {

/// The graph of a mesh as a world's searches read it. It gives the edges of `AStarMapNavMesh` in
/// their order, and what the plain cost and heuristic functions compute of them, so that a search
/// over it has the same bits:
/// - the nodes' centres and the lengths between them are worked out once, by the same operations;
/// - only borders that are edges are kept;
/// - nodes have numbers of its own, islands after islands and neighbours near to each other, so
///   that what a search knows of its nodes lies together. No result depends on the numbers.
///
/// Read-only, for any number of searches. Holds 20 bytes a node and 8 an edge.
class MeshGraph {
public:
    /// An edge: over which border it leaves its node, where it leads, and how long it is from
    /// centre to centre.
    class Edge {
    public:
        Edge(std::uint32_t end, std::uint32_t border, float length)
            : mBorderAndEnd(NavMeshEdge::make(end, border)), mLength(length) {}

        std::uint32_t end() const { return NavMeshEdge::nodeOf(mBorderAndEnd); }
        float length() const { return mLength; }
        /// The edge's id when it leaves that node.
        std::uint32_t idFrom(std::uint32_t node) const {
            return NavMeshEdge::make(node, NavMeshEdge::borderOf(mBorderAndEnd));
        }

    private:
        std::uint32_t mBorderAndEnd;
        float mLength;
    };

    MeshGraph(const Common::SharedPtr<NavMeshContainer>& navMesh,
              const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    std::uint32_t nodeCount() const { return static_cast<std::uint32_t>(mNumbers.size()); }
    /// How many edges leave the node that most of them leave.
    std::uint32_t mostEdges() const { return mMostEdges; }
    /// The graph's number of a node of the mesh.
    std::uint32_t numberOf(std::uint32_t nodeID) const { return mNumbers[nodeID]; }

    NavMeshContainer::Point3 centreOf(std::uint32_t number) const {
        const Node& node = mNodes[number];
        return {node.mX, node.mY, node.mZ};
    }
    /// Fetches what `centreOf` reads; for one who will soon ask.
    void prefetchCentre(std::uint32_t number) const { __builtin_prefetch(&mNodes[number]); }
    std::span<const Edge> edgesOf(std::uint32_t number) const {
        return {mEdges.data() + mNodes[number].mFirstEdge,
                mEdges.data() + mNodes[number + 1].mFirstEdge};
    }

    /// Returns how many nodes a search from `start` expands before it knows that there is no path
    /// to `goal`: all that can be reached. Returns 0 when there may be a path, and when some
    /// neighbour on the start's island does not lead back, which makes what can be reached another
    /// question.
    std::uint32_t countVainExpansions(std::uint32_t start, std::uint32_t goal) const;

    /// The bytes that it holds beside the object itself.
    std::size_t getMemoryUsage() const;

private:
    struct Node {
        float mX;
        float mY;
        float mZ;
        std::uint32_t mFirstEdge;
    };
    /// Nodes that hang together, whichever way their edges lead: from the former island's end on.
    struct Island {
        std::uint32_t mEnd;
        bool mIsTwoWay; ///< each edge has one that leads back
    };

    /// Adds a node's edges behind those of the node numbered before it.
    void addEdges(const NavMeshContainer& mesh, std::uint32_t nodeID);
    const Island& islandOf(std::uint32_t number) const;

    NavMeshContainer::Vector<Node> mNodes; ///< by number, and one for the edges' end
    NavMeshContainer::Vector<Edge> mEdges;
    NavMeshContainer::Vector<std::uint32_t> mNumbers; ///< by node id
    NavMeshContainer::Vector<Island> mIslands;
    std::uint32_t mMostEdges = 0;
};

} // namespace ZUNO::NavMesh
