#pragma once

#include "navmesh/navmeshcontainer.h"

namespace ZUNO::NavMesh {

/// Finds the node under a point as `NavMeshContainer::findNode` does, without looking at all of
/// them: a grid over the plane lists for each cell the nodes that can hold a point of it, lowest id
/// first, and the mesh itself decides on each. Holds at most 44 bytes a node.
class NodeLocator {
public:
    NodeLocator(const Common::SharedPtr<NavMeshContainer>& navMesh,
                const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    /// The lowest id of a node that the point stands on, or -1.
    std::int32_t findNode(const NavMeshContainer::Point3& point) const;

    /// The bytes that it holds beside the object itself.
    std::size_t getMemoryUsage() const;

private:
    using IdList = NavMeshContainer::Vector<std::uint32_t>;

    /// A rectangle of cells, its last ones included.
    struct CellRange {
        std::uint32_t mFirstColumn;
        std::uint32_t mFirstRow;
        std::uint32_t mLastColumn;
        std::uint32_t mLastRow;
    };
    /// Cells along one axis.
    struct Axis {
        std::uint32_t cellOf(double coordinate) const;

        double mBegin = 0;
        double mScale = 0; ///< cells per unit
        std::uint32_t mCount = 1;
    };

    /// Lays a grid of at most so many cells over the plane.
    void layGrid(double width, double height, std::size_t cells);
    CellRange rangeOf(const double (&rect)[4]) const;
    /// The lowest id of a list, below `limit`, of a node that holds the point; else `limit`.
    std::int32_t findIn(const std::uint32_t* first, const std::uint32_t* last,
                        const NavMeshContainer::Point3& point, std::int32_t limit) const;

    Common::SharedPtr<NavMeshContainer> mNavMesh;
    Axis mColumns;
    Axis mRows;
    IdList mFirstEntries; ///< of each cell, and one for the end
    IdList mEntries;
    IdList mEverywhere; ///< nodes that may hold points far from their corners
};

} // namespace ZUNO::NavMesh
