#pragma once

#include "navmesh/navmeshcontainer.h"

#include <algorithm>
#include <optional>

namespace ZUNO::NavMesh {

/// Finds the node under a point as `NavMeshContainer::findNode` does, without looking at all of
/// them: a grid over the plane lists for each cell the nodes that can hold a point of it, lowest id
/// first, and the mesh itself decides on each.
/// Cost: at most 44 bytes a node. Thread: any number of them may ask.
class NodeLocator {
public:
    NodeLocator(const Common::SharedPtr<NavMeshContainer>& navMesh,
                const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    /// The lowest id of a node that the point stands on, or -1.
    std::int32_t findNode(const NavMeshContainer::Point3& point) const;

    /// The bytes that it holds beside the object itself.
    std::size_t getMemoryUsage() const;

    /// An upright rectangle of the plane.
    struct Rect {
        void grow(const Rect& other) {
            for (int axis = 0; axis < 2; ++axis) {
                mLow[axis] = std::min(mLow[axis], other.mLow[axis]);
                mHigh[axis] = std::max(mHigh[axis], other.mHigh[axis]);
            }
        }
        Rect widened(double margin) const {
            return {{mLow[0] - margin, mLow[1] - margin}, {mHigh[0] + margin, mHigh[1] + margin}};
        }
        double largerExtent() const { return std::max(mHigh[0] - mLow[0], mHigh[1] - mLow[1]); }

        double mLow[2];
        double mHigh[2];
    };

    /// Where in the plane the points lie that the mesh's own test, which rounds, can find on the
    /// node; nothing when no bound is known.
    static std::optional<Rect> reachOf(const NavMeshContainer& mesh,
                                       const NavMeshContainer::NavNode& node);

private:
    using IdList = NavMeshContainer::Vector<std::uint32_t>;

    /// Where a node may hold points: around its corners.
    struct Reach {
        std::uint32_t mId;
        Rect mRect;
    };
    /// A rectangle of cells, its last ones included.
    struct CellRange {
        std::size_t size() const {
            return std::size_t{mLastColumn - mFirstColumn + 1} * (mLastRow - mFirstRow + 1);
        }

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

    /// Lays the grid and returns how many entries its cells have altogether.
    std::size_t layGrid(const NavMeshContainer::Vector<Reach>& reaches);
    void divide(const Rect& bounds, std::size_t cells);
    void fill(const NavMeshContainer::Vector<Reach>& reaches);

    std::size_t cellAt(std::uint32_t column, std::uint32_t row) const {
        return std::size_t{row} * mColumns.mCount + column;
    }
    CellRange rangeOf(const Rect& rect) const;
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
