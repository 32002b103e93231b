#include "reference/plainraytracer.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace ZUNO::Reference {

using Index = PlainGrid::Index;

namespace {

/// One coordinate of a walk from one cell to another.
class Coordinate {
public:
    Coordinate(int from, int to)
        : mPlace(from), mDirection(to > from ? 1 : (to < from ? -1 : 0)),
          mDistance(std::abs(std::int64_t{to} - from)), mError(mDistance) {}

    std::int64_t distance() const { return mDistance; }
    int place() const { return mPlace; }

    /// One of so many steps of the walk.
    void step(std::int64_t steps) {
        mError += mDistance;
        if (mError <= steps)
            return;
        mError -= steps;
        mPlace += mDirection;
    }

private:
    int mPlace;
    int mDirection;
    std::int64_t mDistance;
    std::int64_t mError;
};

} // namespace

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
    const Index from = mGrid.indexOf(begin);
    const Index to = mGrid.indexOf(ray.mEnd);
    Coordinate column(from.mColumn, to.mColumn);
    Coordinate row(from.mRow, to.mRow);
    const std::int64_t steps = std::max(column.distance(), row.distance());
    std::optional<Index> previous;
    for (std::int64_t taken = 0; taken <= steps; ++taken) {
        const Index current{column.place(), row.place()};
        const PlainGrid::Cell* const cell = mGrid.cellAt(current);
        if (cell == nullptr)
            return previous.has_value() ? std::sqrt(squaredDistanceTo(*previous)) : 0.0F;
        if (cell->mIsBlocked)
            return std::sqrt(squaredDistanceTo(current));
        if (!(squaredDistanceTo(current) < ray.mLength * ray.mLength))
            return -1;
        previous = current;
        column.step(steps);
        row.step(steps);
    }
    return -1;
}

} // namespace ZUNO::Reference
