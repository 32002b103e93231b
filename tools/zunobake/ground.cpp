#include "tools/zunobake/ground.h"

#include "tools/zunobake/levels.h"
#include "tools/zunobake/outline.h"
#include "tools/zunobake/recastfield.h"

#include <algorithm>
#include <limits>

namespace ZUNO::Tools {

namespace {

struct SpanPlace {
    int mX;
    int mZ;
    unsigned int mSpan;
};

/// Calls `visit` with the walkable neighbours of a span.
template <typename Visitor>
void forEachNeighbour(const rcCompactHeightfield& field, const SpanPlace& place, Visitor visit) {
    for (int side = 0; side < 4; ++side) {
        const int connection = rcGetCon(field.spans[place.mSpan], side);
        if (connection == RC_NOT_CONNECTED)
            continue;
        const int x = place.mX + rcGetDirOffsetX(side);
        const int z = place.mZ + rcGetDirOffsetY(side);
        const unsigned int other =
            spansOf(field, x, z).mFirst + static_cast<unsigned int>(connection);
        if (field.areas[other] != RC_NULL_AREA)
            visit(SpanPlace{x, z, other});
    }
}

bool hasFloors(const rcCompactHeightfield& field, int x, int z) {
    const auto [first, end] = spansOf(field, x, z);
    return std::count_if(field.areas + first, field.areas + end,
                         [](unsigned char area) { return area != RC_NULL_AREA; }) > 1;
}

/// Takes what hangs together with the first of some spans.
void fillPiece(const rcCompactHeightfield& field, std::vector<SpanPlace>& piece,
               std::vector<bool>& isSeen) {
    for (std::size_t i = 0; i < piece.size(); ++i)
        forEachNeighbour(field, SpanPlace(piece[i]), [&](const SpanPlace& next) {
            if (!isSeen[next.mSpan]) {
                isSeen[next.mSpan] = true;
                piece.push_back(next);
            }
        });
}

void cutPiece(const rcCompactHeightfield& field, const std::vector<SpanPlace>& piece,
              const CellSettings& cells, std::vector<bool>& isOdd) {
    const auto heightOf = [&](const SpanPlace& place) { return int{field.spans[place.mSpan].y}; };
    const auto [low, high] = std::minmax_element(
        piece.begin(), piece.end(),
        [&](const SpanPlace& a, const SpanPlace& b) { return heightOf(a) < heightOf(b); });
    const int lowest = heightOf(*low);
    const int highest = heightOf(*high);
    std::vector<int> crossings(unsignedOf(highest - lowest) + 1);
    for (const SpanPlace& place : piece)
        forEachNeighbour(field, place, [&](const SpanPlace& next) {
            for (int y = heightOf(place) + 1; y <= heightOf(next); ++y)
                ++crossings[unsignedOf(y - lowest)];
        });
    const std::vector<int> levels = chooseLevels(crossings, cells.mClimb + 1, cells.mLevel);
    for (const SpanPlace& place : piece) {
        const auto level = std::upper_bound(levels.begin(), levels.end(), heightOf(place) - lowest);
        isOdd[place.mSpan] = (level - levels.begin()) % 2 != 0;
    }
}

} // namespace

std::vector<bool> findOddLevels(const rcCompactHeightfield& field, const CellSettings& cells) {
    std::vector<bool> isOdd(unsignedOf(field.spanCount));
    std::vector<bool> isSeen(unsignedOf(field.spanCount));
    forEachSpan(field, [&](int x, int z, unsigned int i) {
        if (isSeen[i])
            return;
        isSeen[i] = true;
        std::vector<SpanPlace> piece{{x, z, i}};
        fillPiece(field, piece, isSeen);
        if (std::any_of(piece.begin(), piece.end(), [&](const SpanPlace& place) {
                return hasFloors(field, place.mX, place.mZ);
            }))
            cutPiece(field, piece, cells, isOdd);
    });
    return isOdd;
}

namespace {

constexpr int noHeight = std::numeric_limits<int>::max();

/// The height of the span of a region in a cell, or of the only span for a polygon of several
/// regions; else of the walkable one nearest to some height, which says nothing when it is further
/// away than `reach`.
int heightIn(const rcCompactHeightfield& field, int x, int z, unsigned short region, int mean,
             int reach) {
    int nearest = noHeight;
    const auto [first, end] = spansOf(field, x, z);
    for (unsigned int i = first; i < end; ++i) {
        if (field.areas[i] == RC_NULL_AREA)
            continue;
        const int height = field.spans[i].y;
        if (field.spans[i].reg == region || (region == RC_MULTIPLE_REGS && !hasFloors(field, x, z)))
            return height;
        if (std::abs(height - mean) <= reach &&
            (nearest == noHeight || std::abs(height - mean) < std::abs(nearest - mean)))
            nearest = height;
    }
    return nearest;
}

} // namespace

Ground measureGround(const rcCompactHeightfield& field, int border, unsigned short region,
                     const std::vector<GridPoint>& polygon) {
    const auto [low, high] = rangeOf(polygon, &GridPoint::mY);
    Ground ground{low, high, false, {}};
    const int mean = (low + high) / 2;
    const int reach = field.walkableHeight + (high - low) / 2;
    forEachCell(polygon, [&](int x, int z) {
        const int height = heightIn(field, x + border, z + border, region, mean, reach);
        if (height == noHeight)
            return;
        ground.mLowest = std::min(ground.mLowest, height);
        ground.mHighest = std::max(ground.mHighest, height);
        ground.mHasFloors = ground.mHasFloors || hasFloors(field, x + border, z + border);
        ground.mCells.push_back({x, height, z});
    });
    if (ground.mLowest == ground.mHighest)
        ground.mCells = {};
    return ground;
}

} // namespace ZUNO::Tools
