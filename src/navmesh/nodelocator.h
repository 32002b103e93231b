#pragma once

#include "navmesh/navmeshcontainer.h"

#include <algorithm>
#include <optional>

namespace ZUNO::NavMesh {

/// Finds the node under a point as `NavMeshContainer::findNode` does, without looking at all of
/// them: a grid over the plane lists for each cell the nodes that can hold a point of it, lowest id
/// first, each with the part of the cell that it can hold points of. The mesh itself decides on
/// those whose part holds the point. So lists may be long where nodes are small: to pass a node
/// over takes one subtraction.
/// Cost: at most 24 bytes a node. Thread: any number of them may ask.
class NodeLocator {
public:
    NodeLocator(const Common::SharedPtr<NavMeshContainer>& navMesh,
                const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    /// Returns the lowest id of a node that the point stands on, or -1.
    std::int32_t findNode(const NavMeshContainer::Point3& point) const;

    /// Returns the bytes that it holds beside the object itself.
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
        /// Returns a coordinate in cells. Grows with the coordinate, rounding included.
        double position(double coordinate) const { return (coordinate - mBegin) * mScale; }
        /// Returns the cell of a position, the nearest one outside the grid.
        std::uint32_t cellOf(double position) const {
            if (!(position > 0))
                return 0;
            return position < mCount ? static_cast<std::uint32_t>(position) : mCount - 1;
        }
        std::uint32_t cellAt(double coordinate) const { return cellOf(position(coordinate)); }

        double mBegin = 0;
        double mScale = 0; ///< cells per unit
        std::uint32_t mCount = 1;
    };
    /// A rectangle in a cell, in 128ths of its sides. Each byte has the highest bit to spare, so
    /// that one subtraction compares all four.
    class Part {
    public:
        Part() = default;
        /// Of positions in the cell: the lowest and the highest ones of both axes.
        Part(std::uint32_t lowX, std::uint32_t lowY, std::uint32_t highX, std::uint32_t highY)
            : mBytes(lowX | lowY << 8U | (most - highX) << 16U | (most - highY) << 24U) {}

        /// Whether a point may lie in it: its lowest and highest positions are its own.
        bool holds(const Part& point) const {
            return (((point.mBytes | marks) - mBytes) & marks) == marks;
        }
        /// Returns the position within a cell, as long as there is one; the nearest one else.
        static std::uint32_t within(double position, std::uint32_t cell) {
            const double part = (position - cell) * (most + 1);
            if (!(part > 0))
                return 0;
            return part < most ? static_cast<std::uint32_t>(part) : most;
        }

    private:
        static constexpr std::uint32_t most = 127;
        static constexpr std::uint32_t marks = 0x80808080;

        std::uint32_t mBytes = 0;
    };
    struct Entry {
        std::uint32_t mId = 0;
        Part mPart;
    };

    /// Lays the grid and returns how many entries its cells have altogether.
    std::size_t layGrid(const NavMeshContainer::Vector<Reach>& reaches);
    void divide(const Rect& bounds, std::size_t cells);
    void fill(const NavMeshContainer::Vector<Reach>& reaches);

    std::size_t cellAt(std::uint32_t column, std::uint32_t row) const {
        return std::size_t{row} * mColumns.mCount + column;
    }
    bool isPointIn(std::uint32_t id, const NavMeshContainer::Point3& point) const {
        return mNavMesh->isPointInNode(point, static_cast<std::int32_t>(id));
    }
    CellRange rangeOf(const Rect& rect) const;
    Part partOf(const Rect& rect, std::uint32_t column, std::uint32_t row) const;

    Common::SharedPtr<NavMeshContainer> mNavMesh;
    Axis mColumns;
    Axis mRows;
    IdList mFirstEntries; ///< of each cell, and one for the end
    NavMeshContainer::Vector<Entry> mEntries;
    IdList mEverywhere; ///< nodes that may hold points far from their corners
};

} // namespace ZUNO::NavMesh
