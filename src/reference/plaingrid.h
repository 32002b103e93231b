#pragma once

#include "navmesh/navmeshcontainer.h"
#include "pathfinder/answers.h"

#include <cstdint>
#include <vector>

namespace ZUNO::Reference {

/// The blocking grid as it is defined: every cell of a node's rectangle is tested against every
/// border. It computes cells and positions by itself, so that a mistake in the grid that worlds run
/// on shows as a difference.
/// Cost: a build looks at all cells around each node. Thread: read-only once built.
class PlainGrid {
public:
    using Position = Common::Math::Vec2<float>;
    using Index = Common::Math::Vec2<int>; ///< column and row
    struct Cell {
        float mHeight = Pathfinder::noGround;
        bool mIsBlocked = true;
    };

    explicit PlainGrid(const NavMesh::NavMeshContainer& mesh);

    /// Returns the cell under a position; null outside the rectangle of the mesh's corners.
    const Cell* cellUnder(const Position& position) const;
    /// Returns the cell; null outside the grid.
    const Cell* cellAt(const Index& index) const;

    /// Returns the index of the cell that a position falls into. Both coordinates are truncated
    /// toward zero; the cell may lie outside the grid.
    Index indexOf(const Position& position) const;
    /// Returns the corner of a cell that has the smallest coordinates.
    Position lowerCornerOf(const Index& index) const;

    const Position& min() const { return mMin; }
    const Position& max() const { return mMax; }

private:
    using Outline = std::vector<Position>;

    void measure(const std::vector<Position>& points, float cellSize);
    void mark(const Outline& outline, float height, float half);
    Cell* findUnder(const Position& position);

    Position mMin{3.4028235e38F, 3.4028235e38F};
    Position mMax{-3.4028235e38F, -3.4028235e38F};
    std::int64_t mColumns = 0;
    std::int64_t mRows = 0;
    float mScaleX = 0; ///< columns per unit
    float mScaleY = 0; ///< rows per unit
    std::vector<Cell> mCells;
};

} // namespace ZUNO::Reference
