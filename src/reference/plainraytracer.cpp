#include "reference/plainraytracer.h"

#include "reference/gridlinewalker.h"

#include <cmath>
#include <optional>

namespace ZUNO::Reference {

using Index = PlainGrid::Index;

bool PlainRayTracer::isBlocked(const Position& position) {
    const PlainGrid::Cell* const cell = mGrid.cellUnder(position);
    return cell == nullptr || cell->mIsBlocked;
}

float PlainRayTracer::getGroundHeight(const Position& position) {
    const PlainGrid::Cell* const cell = mGrid.cellUnder(position);
    return cell != nullptr ? cell->mHeight : Pathfinder::noGround;
}

void PlainRayTracer::getBoundingRectangle(Position& min, Position& max) {
    min = mGrid.min();
    max = mGrid.max();
}

float PlainRayTracer::trace(const Ray& ray) const {
    const PlainGrid::Cell* const start = mGrid.cellUnder(ray.mStart);
    if (start == nullptr || ray.mLength <= (start->mIsBlocked ? -1.0F : 0.0F))
        return -1;
    const float part = (start->mIsBlocked ? -1.0F : 0.0F) / ray.mLength;
    const Position begin(ray.mStart.mX + (ray.mEnd.mX - ray.mStart.mX) * part,
                         ray.mStart.mY + (ray.mEnd.mY - ray.mStart.mY) * part);
    if (!std::isfinite(begin.mX) || !std::isfinite(begin.mY))
        return 0;
    const auto squaredDistanceTo = [&](const Index& index) {
        const Position corner = mGrid.lowerCornerOf(index);
        const float x = corner.mX - ray.mStart.mX;
        const float y = corner.mY - ray.mStart.mY;
        return x * x + y * y;
    };
    GridLineWalker walker;
    Index current = mGrid.indexOf(begin);
    walker.init(current, mGrid.indexOf(ray.mEnd));
    std::optional<Index> previous;
    do {
        const PlainGrid::Cell* const cell = mGrid.cellAt(current);
        if (cell == nullptr)
            return previous.has_value() ? std::sqrt(squaredDistanceTo(*previous)) : 0.0F;
        if (cell->mIsBlocked)
            return std::sqrt(squaredDistanceTo(current));
        if (!(squaredDistanceTo(current) < ray.mLength * ray.mLength))
            return -1;
        previous = current;
    } while (walker.next(current));
    return -1;
}

} // namespace ZUNO::Reference
