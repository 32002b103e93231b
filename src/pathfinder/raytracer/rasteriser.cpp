#include "pathfinder/raytracer/rasteriser.h"

#include <algorithm>

namespace ZUNO::Pathfinder::Raytracer {

using Common::Math::Rect;
using Common::Math::Vec2;

Rasteriser::Rasteriser(BlockingMap& map, const Points& points, float half,
                       const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mMap(map), mPoints(points), mColumns(allocator), mRows(allocator) {
    const Rect& bounds = map.bounds();
    const Vec2<int> last = map.worldToCell(bounds.mMax); // rounding may carry it beyond the grid
    const auto isWithin = [](float low, float coordinate, float high) {
        return low <= coordinate && coordinate <= high;
    };
    mColumns.reserve(static_cast<std::size_t>(last.mX) + 1);
    for (int x = 0; x <= last.mX; ++x) {
        const float centre = map.cellToWorld({x, 0}).mX + half;
        const auto column = static_cast<std::uint32_t>(map.worldToCell({centre, 0}).mX);
        mColumns.push_back({centre, isWithin(bounds.mMin.mX, centre, bounds.mMax.mX)
                                        ? std::min(column, map.columns() - 1)
                                        : nowhere});
    }
    mRows.reserve(static_cast<std::size_t>(last.mY) + 1);
    for (int y = 0; y <= last.mY; ++y) {
        const float centre = map.cellToWorld({0, y}).mY + half;
        const auto row = static_cast<std::uint32_t>(map.worldToCell({0, centre}).mY);
        mRows.push_back({centre, isWithin(bounds.mMin.mY, centre, bounds.mMax.mY)
                                     ? std::min(row, map.rows() - 1)
                                     : nowhere});
    }
}

void Rasteriser::mark(const Polygon& polygon, const BlockingCell& cell) {
    Rect rect;
    for (const std::uint32_t corner : polygon)
        rect.grow(mPoints[corner]);
    const Vec2<int> low = mMap.worldToCell(rect.mMin);
    const Vec2<int> high = mMap.worldToCell(rect.mMax);
    for (int y = low.mY; y <= high.mY; ++y) {
        const Line& row = mRows[static_cast<std::size_t>(y)];
        if (row.mCell == nowhere)
            continue;
        Span span{low.mX, high.mX};
        Vec2<float> start = mPoints[polygon.back()];
        for (const std::uint32_t corner : polygon) {
            const Vec2<float> end = mPoints[corner];
            cut(span, start, end, row.mCentre);
            start = end;
        }
        for (int x = span.mFirst; x <= span.mLast; ++x)
            put(cell, x, row);
    }
}

void Rasteriser::cut(Span& span, const Vec2<float>& start, const Vec2<float>& end, float y) const {
    if (span.mFirst > span.mLast)
        return;
    const bool refusesFirst = refuses(start, end, span.mFirst, y);
    const bool refusesLast = refuses(start, end, span.mLast, y);
    if (refusesFirst == refusesLast) {
        if (refusesFirst)
            span.mLast = span.mFirst - 1;
        return;
    }
    // the refused cells end between a cell that is refused and one that is not
    int refused = refusesFirst ? span.mFirst : span.mLast;
    int taken = refusesFirst ? span.mLast : span.mFirst;
    while (std::abs(refused - taken) > 1) {
        const int middle = refused + (taken - refused) / 2;
        (refuses(start, end, middle, y) ? refused : taken) = middle;
    }
    (refusesFirst ? span.mFirst : span.mLast) = taken;
}

} // namespace ZUNO::Pathfinder::Raytracer
