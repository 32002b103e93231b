#pragma once

#include "common/astar/astarnode.h"
#include "navmesh/astarnavmesh.h"

namespace ZUNO::NavMesh {

/// The graph of a mesh with what searches ask again and again worked out once: the nodes' centres,
/// and the length of each edge between centres. They come out of the very operations that the
/// plain cost and heuristic functions perform, so the results have the same bits.
/// Holds 20 bytes a node and 8 a border.
class MeshGraph final : public AStarMapNavMesh {
public:
    MeshGraph(const Common::SharedPtr<NavMeshContainer>& navMesh,
              const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    const NavMeshContainer::Point3& centreOf(std::uint32_t node) const { return mCentres[node]; }
    std::uint32_t endOf(std::uint32_t edge) const { return borderOf(edge).mEnd; }
    float lengthOf(std::uint32_t edge) const { return borderOf(edge).mLength; }

    /// Calls `visitor(edge, endNode)` for the edges that `getOutEdges` gives, in their order.
    template <typename Visitor>
    void visit(std::uint32_t node, Visitor visitor) const {
        const std::uint32_t first = mFirstBorders[node];
        const std::uint32_t count = mFirstBorders[node + 1] - first;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t end = mBorders[first + i].mEnd;
            if (end != Common::Astar::noNode)
                visitor(NavMeshEdge::make(node, i), end);
        }
    }

    /// The bytes that it holds beside the object itself.
    std::size_t getMemoryUsage() const;

private:
    struct Border {
        std::uint32_t mEnd; ///< the node behind it, or noNode
        float mLength;      ///< of the edge, from centre to centre
    };

    const Border& borderOf(std::uint32_t edge) const {
        return mBorders[mFirstBorders[NavMeshEdge::nodeOf(edge)] + NavMeshEdge::borderOf(edge)];
    }

    NavMeshContainer::Vector<NavMeshContainer::Point3> mCentres;
    NavMeshContainer::Vector<std::uint32_t> mFirstBorders; ///< of each node, and one for the end
    NavMeshContainer::Vector<Border> mBorders;
};

} // namespace ZUNO::NavMesh
