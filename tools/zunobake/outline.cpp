#include "tools/zunobake/outline.h"

#include <tuple>

namespace ZUNO::Tools {

double areaOf(const Outline& outline) {
    std::int64_t area = 0;
    for (std::size_t i = 2; i < outline.size(); ++i)
        area += turnAt(outline[0], outline[i - 1], outline[i]);
    return static_cast<double>(area) / 2;
}

namespace {

/// Whether one who comes from a turns right at b, or goes back the way that led there.
bool isDent(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
    const std::int64_t turn = turnAt(a, b, c);
    const std::int64_t ahead =
        std::int64_t{b.mX - a.mX} * (c.mX - b.mX) + std::int64_t{b.mZ - a.mZ} * (c.mZ - b.mZ);
    return turn < 0 || (turn == 0 && ahead < 0);
}

/// Whether something holds of a corner, given with those before and behind it.
template <typename Predicate>
bool anyCorner(const Outline& outline, Predicate holds) {
    const std::size_t count = outline.size();
    for (std::size_t i = 0; i < count; ++i)
        if (holds(outline[i], outline[(i + 1) % count], outline[(i + 2) % count]))
            return true;
    return false;
}

} // namespace

bool isConvex(const Outline& outline) {
    return !anyCorner(outline, [](const GridPoint& a, const GridPoint& b, const GridPoint& c) {
        const bool isAlongAxis = (a.mX == b.mX && b.mX == c.mX) || (a.mZ == b.mZ && b.mZ == c.mZ);
        return isDent(a, b, c) || (turnAt(a, b, c) == 0 && !isAlongAxis);
    });
}

bool hasDent(const Outline& outline) {
    return anyCorner(outline, isDent);
}

std::pair<int, int> rangeOf(const Outline& outline, int GridPoint::*axis) {
    std::pair<int, int> range(outline.front().*axis, outline.front().*axis);
    for (const GridPoint& corner : outline)
        range = {std::min(range.first, corner.*axis), std::max(range.second, corner.*axis)};
    return range;
}

bool isLower(const GridPoint& a, const GridPoint& b) {
    return std::tie(a.mY, a.mX, a.mZ) < std::tie(b.mY, b.mX, b.mZ);
}

std::size_t lowestCornerOf(const Outline& outline) {
    return static_cast<std::size_t>(std::min_element(outline.begin(), outline.end(), isLower) -
                                    outline.begin());
}

namespace {

/// The height of a fan of triangles at a place; NaN beside it.
double surfaceAt(const Outline& outline, std::size_t first, double x, double z) {
    const std::size_t count = outline.size();
    const GridPoint& a = outline[first];
    for (std::size_t i = 2; i < count; ++i) {
        const GridPoint& b = outline[(first + i - 1) % count];
        const GridPoint& c = outline[(first + i) % count];
        const auto area = static_cast<double>(turnAt(a, b, c));
        if (area <= 0)
            continue;
        const double u = ((x - a.mX) * (c.mZ - a.mZ) - (c.mX - a.mX) * (z - a.mZ)) / area;
        const double v = ((b.mX - a.mX) * (z - a.mZ) - (x - a.mX) * (b.mZ - a.mZ)) / area;
        if (u >= 0 && v >= 0 && u + v <= 1)
            return a.mY + u * (b.mY - a.mY) + v * (c.mY - a.mY);
    }
    return std::nan("");
}

} // namespace

double heightErrorOf(const Outline& outline, const Ground& ground, std::size_t samples) {
    double error = 0;
    if (ground.mCells.empty()) {
        for (const GridPoint& corner : outline)
            error = std::max(error, std::abs(double(corner.mY - ground.mLowest)));
        return error;
    }
    const std::size_t first = lowestCornerOf(outline);
    const std::size_t stride = ground.mCells.size() / samples + 1;
    for (std::size_t i = 0; i < ground.mCells.size(); i += stride) {
        const GridPoint& cell = ground.mCells[i];
        const double away = surfaceAt(outline, first, cell.mX + 0.5, cell.mZ + 0.5) - cell.mY;
        error = std::isnan(away) ? error : std::max(error, std::abs(away));
    }
    return error;
}

} // namespace ZUNO::Tools
