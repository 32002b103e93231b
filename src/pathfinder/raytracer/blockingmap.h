#pragma once

#include "common/math/rect.h"
#include "common/memory/allocator.h"

#include <cstdint>

namespace ZUNO::Pathfinder::Raytracer {

/// A height where there is no ground.
inline constexpr float noGround = 3.4028235e38F;

struct BlockingCell {
    static constexpr float blocked = -1.0F;
    static constexpr float walkable = 0.0F;

    bool isBlocked() const { return mClearance == blocked; }

    float mHeight;    ///< of the ground; `noGround` where there is none
    float mClearance; ///< `blocked` or `walkable`; a trace starts so far along its ray
};

/// A uniform grid over the plane of the mesh. With one column or row, or without an extent that a
/// scale can be told for, the scale in that axis is 0, and all positions fall into the first column
/// or row.
class BlockingMap {
public:
    using Position = Common::Math::Vec2<float>;
    using Cell = Common::Math::Vec2<int>;

    explicit BlockingMap(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mAllocator(allocator) {}
    ~BlockingMap();
    BlockingMap(const BlockingMap&) = delete;
    BlockingMap& operator=(const BlockingMap&) = delete;

    /// Covers a rectangle with cells, all of them set to `cell`.
    void init(const Position& min, const Position& max, std::uint32_t width, std::uint32_t height,
              const BlockingCell& cell);

    /// The cell of a position; coordinates are truncated toward zero.
    Cell worldToCell(const Position& position) const;
    /// The lower corner of a cell.
    Position cellToWorld(const Cell& cell) const;

    std::uint32_t columns() const { return mColumns; }
    std::uint32_t rows() const { return mRows; }
    /// The lengths of a cell's sides; 0 in an axis whose scale is 0.
    Position cellSize() const;
    const Common::Math::Rect& bounds() const { return mRect; }
    /// All cells, row by row; null before `init`.
    const BlockingCell* cells() const { return mCells; }
    BlockingCell* cells() { return mCells; }

    /// These return false, and do nothing else, outside the rectangle or the grid.
    bool getCellAtWorld(const Position& position, BlockingCell& out) const;
    bool setCellAtWorld(const Position& position, const BlockingCell& cell);
    bool getCell(int x, int y, BlockingCell& out) const;

private:
    BlockingCell& cellAt(const Position& position) const;

    BlockingCell* mCells = nullptr;
    float mScaleX = 0; ///< cells per unit
    float mScaleY = 0;
    std::uint32_t mColumns = 0;
    std::uint32_t mRows = 0;
    Common::Math::Rect mRect{{0, 0}, {0, 0}};
    Common::SharedPtr<Common::Memory::Allocator> mAllocator;
};

} // namespace ZUNO::Pathfinder::Raytracer
