#include "tools/zunobake/ground.h"

#include "tools/zunobake/levels.h"
#include "tools/zunobake/recastfield.h"

#include <algorithm>
#include <limits>

namespace ZUNO::Tools {

std::vector<bool> findOddLevels(const rcCompactHeightfield& field, const CellSettings& cells) {
    int lowest = std::numeric_limits<int>::max();
    int highest = 0;
    forEachSpan(field, [&](int, int, unsigned int i) {
        lowest = std::min<int>(lowest, field.spans[i].y);
        highest = std::max<int>(highest, field.spans[i].y);
    });
    if (lowest > highest)
        return {};
    std::vector<int> crossings(unsignedOf(highest - lowest) + 1);
    forEachSpan(field, [&](int x, int z, unsigned int i) {
        for (int side = 0; side < 4; ++side) {
            const int connection = rcGetCon(field.spans[i], side);
            if (connection == RC_NOT_CONNECTED)
                continue;
            const int other = x + rcGetDirOffsetX(side) + (z + rcGetDirOffsetY(side)) * field.width;
            const unsigned int neighbour =
                field.cells[other].index + static_cast<unsigned int>(connection);
            if (field.areas[neighbour] == RC_NULL_AREA)
                continue;
            for (int y = field.spans[i].y + 1; y <= field.spans[neighbour].y; ++y)
                ++crossings[unsignedOf(y - lowest)];
        }
    });
    const std::vector<int> levels = chooseLevels(crossings, cells.mClimb + 1, cells.mLevel);
    std::vector<bool> isOdd(unsignedOf(highest) + 1);
    std::size_t level = 0;
    for (int y = lowest; y <= highest; ++y) {
        while (level < levels.size() && y - lowest >= levels[level])
            ++level;
        isOdd[unsignedOf(y)] = level % 2 != 0;
    }
    return isOdd;
}

namespace {

/// Whether the centre of a cell lies in a polygon of the mesh. Both are in cells.
bool holdsCentre(const std::vector<GridPoint>& polygon, int x, int z) {
    bool isInside = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const GridPoint& a = polygon[i];
        const GridPoint& b = polygon[j];
        const double centre = z + 0.5;
        if ((a.mZ > centre) != (b.mZ > centre) &&
            x + 0.5 < (b.mX - a.mX) * (centre - a.mZ) / (b.mZ - a.mZ) + a.mX)
            isInside = !isInside;
    }
    return isInside;
}

} // namespace

void measureGround(const rcCompactHeightfield& field, int border, TilePolygon& polygon) {
    GridPoint low = polygon.mCorners[0];
    GridPoint high = low;
    int sum = 0;
    for (const GridPoint& corner : polygon.mCorners) {
        low = {std::min(low.mX, corner.mX), std::min(low.mY, corner.mY),
               std::min(low.mZ, corner.mZ)};
        high = {std::max(high.mX, corner.mX), std::max(high.mY, corner.mY),
                std::max(high.mZ, corner.mZ)};
        sum += corner.mY;
    }
    const int mean = sum / static_cast<int>(polygon.mCorners.size());
    polygon.mLowestGround = low.mY;
    polygon.mHighestGround = high.mY;
    for (int z = low.mZ; z < high.mZ; ++z)
        for (int x = low.mX; x < high.mX; ++x) {
            if (!holdsCentre(polygon.mCorners, x, z))
                continue;
            int nearest = std::numeric_limits<int>::max();
            const auto [first, end] = spansOf(field, x + border, z + border);
            for (unsigned int i = first; i < end; ++i)
                if (field.areas[i] != RC_NULL_AREA &&
                    std::abs(field.spans[i].y - mean) < std::abs(nearest - mean))
                    nearest = field.spans[i].y;
            if (nearest - high.mY > field.walkableHeight || low.mY - nearest > field.walkableHeight)
                continue;
            polygon.mLowestGround = std::min(polygon.mLowestGround, nearest);
            polygon.mHighestGround = std::max(polygon.mHighestGround, nearest);
        }
}

} // namespace ZUNO::Tools
