#pragma once

#include "navmesh/navmeshcontainer.h"
#include "pathfinder/raytracer/blockingmap.h"

namespace ZUNO::Pathfinder::Raytracer {

/// Marks the cells of a grid whose centres lie on a node: on none of its borders' right sides, by
/// the signs of areas computed in `float`. Borders count as inside; a clockwise polygon holds
/// nothing.
///
/// Along a row of cells such an area changes one way only: it is a sum whose one changing term is a
/// product of the centre's first coordinate and a constant, and rounding keeps the order. So each
/// border cuts a row's cells into a part that it refuses and a part that it does not, and only the
/// cut is looked for. Where products leave the range of `float` that does not hold, and every cell
/// is looked at.
class Rasteriser {
public:
    using Points = NavMesh::NavMeshContainer::Vector<Common::Math::Vec2<float>>;
    using Polygon = NavMesh::NavMeshContainer::Vector<std::uint32_t>;

    /// `points`: all corners in the plane. `half`: how far a cell's centre lies from its lower
    /// corner. The grid and the points must live as long as this object.
    Rasteriser(BlockingMap& map, const Points& points, float half,
               const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    void mark(const Polygon& polygon, const BlockingCell& cell);

private:
    static constexpr std::uint32_t nowhere = 0xFFFFFFFF;

    /// A column or a row.
    struct Line {
        float mCentre;       ///< the coordinate of its cells' centres
        std::uint32_t mCell; ///< the column or row in which that coordinate lies, or nowhere
    };
    using Lines = NavMesh::NavMeshContainer::Vector<Line>;

    /// Cells of a row; none when the first is behind the last.
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
    void markEach(const Polygon& polygon, const BlockingCell& cell, const Span& span,
                  const Line& row);
    void cut(Span& span, const Common::Math::Vec2<float>& start,
             const Common::Math::Vec2<float>& end, float y) const;

    BlockingMap& mMap;
    const Points& mPoints;
    Lines mColumns;
    Lines mRows;
    bool mKeepsOrder; ///< whether products of coordinates stay in the range of `float`
};

} // namespace ZUNO::Pathfinder::Raytracer
