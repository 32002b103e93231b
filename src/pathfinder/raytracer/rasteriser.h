#pragma once

#include "navmesh/navmeshcontainer.h"
#include "pathfinder/raytracer/blockingmap.h"

namespace ZUNO::Pathfinder::Raytracer {

/// Marks the cells of a grid whose centres lie on a node: on none of its borders' right sides, by
/// the signs of areas computed in `float`. Points on a border count as inside; a clockwise polygon
/// holds nothing.
///
/// Along a row the float area is monotonic in x: only its last term depends on x, a product of x
/// and a difference of corners, and rounding is monotonic. So the refused cells of a border are a
/// prefix or a suffix of the row, and bisection finds where they end. That holds when products
/// overflow, too: the first two terms add up to one value for the whole row, the last term goes
/// from one infinity to the other at most, and where the two cancel out to NaN nothing is refused,
/// which lies at the far end from where the last term's sign refuses.
class Rasteriser {
public:
    using Points = NavMesh::NavMeshContainer::Vector<Common::Math::Vec2<float>>;
    using Polygon = NavMesh::NavMeshContainer::Vector<std::uint32_t>;

    /// `points`: all vertices in the plane. `half`: how far a cell's centre lies from its lower
    /// corner. Lifetime: grid and points must live as long as this object. Throws an
    /// OutOfMemoryException. Cost: one step for each column and row.
    Rasteriser(BlockingMap& map, const Points& points, float half,
               const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    /// Writes `cell` wherever the polygon holds a centre. Cost: as `countMarkingSteps` says.
    void mark(const Polygon& polygon, const BlockingCell& cell);

private:
    static constexpr std::uint32_t nowhere = 0xFFFFFFFF;

    /// A column or a row.
    struct Line {
        float mCentre;       ///< the coordinate of its cells' centres
        std::uint32_t mCell; ///< the column or row in which that coordinate lies, or nowhere
    };
    using Lines = NavMesh::NavMeshContainer::Vector<Line>;

    /// Cells of a row, both ends included; none when the first is behind the last.
    struct Span {
        int mFirst;
        int mLast;
    };
    bool refuses(const Common::Math::Vec2<float>& start, const Common::Math::Vec2<float>& end,
                 int x, float y) const {
        return -signedArea(start, end, {mColumns[static_cast<std::size_t>(x)].mCentre, y}) > 0;
    }
    void put(const BlockingCell& cell, int x, const Line& row) {
        const std::uint32_t column = mColumns[static_cast<std::size_t>(x)].mCell;
        if (column != nowhere)
            mMap.cells()[std::size_t{row.mCell} * mMap.columns() + column] = cell;
    }
    /// Takes the cells out of the span that the border refuses.
    void cut(Span& span, const Common::Math::Vec2<float>& start,
             const Common::Math::Vec2<float>& end, float y) const;

    BlockingMap& mMap;
    const Points& mPoints;
    Lines mColumns;
    Lines mRows;
};

} // namespace ZUNO::Pathfinder::Raytracer
