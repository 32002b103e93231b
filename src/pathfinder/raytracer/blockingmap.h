#pragma once

#include "common/math/rect.h"
#include "common/memory/allocator.h"
#include "navmesh/planegrid.h"
#include "pathfinder/answers.h"

#include <cstdint>

namespace ZUNO::Pathfinder::Raytracer {

struct BlockingCell {
    static constexpr float blocked = -1.0F;
    static constexpr float walkable = 0.0F;

    bool isBlocked() const { return mClearance == blocked; }

    float mHeight;    ///< of the ground; `noGround` where there is none
    float mClearance; ///< `walkable` (0) or `blocked` (-1). A ray begins its walk at this distance
                      ///< from its start: from a blocked cell, one unit behind it.
};
static_assert(sizeof(BlockingCell) == NavMesh::PlaneGrid::bytesPerCell);

/// A uniform grid over the plane of the mesh. In an axis with one column or row the scale is 0, and
/// all positions fall into the first one; so too where the extent is so small that cells per unit
/// are no finite number.
class BlockingMap {
public:
    using Position = Common::Math::Vec2<float>;
    using Cell = Common::Math::Vec2<int>;

    explicit BlockingMap(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mAllocator(allocator) {}
    ~BlockingMap();
    BlockingMap(const BlockingMap&) = delete;
    BlockingMap& operator=(const BlockingMap&) = delete;

    /// Covers a rectangle with cells, all of them set to `cell`, in place of earlier ones. Throws
    /// an OutOfMemoryException; the map is then without cells.
    void init(const Position& min, const Position& max, std::uint32_t width, std::uint32_t height,
              const BlockingCell& cell);

    /// Returns the cell of a position, which may lie outside the grid. Coordinates are truncated
    /// toward zero; what an int can't hold becomes the nearest one that it can.
    Cell worldToCell(const Position& position) const;
    /// Returns the lower corner of a cell, in units of the mesh's plane.
    Position cellToWorld(const Cell& cell) const;

    bool hasCell(const Cell& cell) const {
        return static_cast<std::uint32_t>(cell.mX) < mColumns &&
               static_cast<std::uint32_t>(cell.mY) < mRows;
    }
    std::uint32_t columns() const { return mColumns; }
    std::uint32_t rows() const { return mRows; }
    /// Returns the lengths of a cell's sides; 0 in an axis whose scale is 0.
    Position cellSize() const;
    const Common::Math::Rect& bounds() const { return mRect; }
    /// Returns all cells, row by row; null before `init`.
    const BlockingCell* cells() const { return mCells; }
    BlockingCell* cells() { return mCells; }

    /// These return false, and do nothing else, for a position outside the rectangle or a cell
    /// outside the grid.
    bool findCellAtWorld(const Position& position, Cell& out) const;
    bool getCellAtWorld(const Position& position, BlockingCell& out) const;
    bool setCellAtWorld(const Position& position, const BlockingCell& cell);
    bool getCell(int x, int y, BlockingCell& out) const;

private:
    BlockingCell& cellAt(const Cell& cell) const {
        return mCells[static_cast<std::size_t>(cell.mY) * mColumns +
                      static_cast<std::size_t>(cell.mX)];
    }

    BlockingCell* mCells = nullptr;
    float mScaleX = 0; ///< cells per unit
    float mScaleY = 0;
    std::uint32_t mColumns = 0;
    std::uint32_t mRows = 0;
    Common::Math::Rect mRect{{0, 0}, {0, 0}};
    Common::SharedPtr<Common::Memory::Allocator> mAllocator;
};

} // namespace ZUNO::Pathfinder::Raytracer
