#include "tools/zunobake/scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace ZUNO::Tools {

namespace {

struct Point {
    double mX;
    double mY;
};

/// Twice the area of a triangle, above 0 when it runs counter-clockwise.
double areaOf(const Point& a, const Point& b, const Point& c) {
    return (b.mX - a.mX) * (c.mY - a.mY) - (c.mX - a.mX) * (b.mY - a.mY);
}

/// The polygon along the axis that it faces most, so that it runs counter-clockwise; empty when it
/// has no area.
std::vector<Point> flatten(std::span<const float> corners) {
    const std::size_t count = corners.size() / 3;
    // from the first corner, so that a polygon far from zero keeps its digits
    const auto at = [&](std::size_t corner, std::size_t axis) -> double {
        return static_cast<double>(corners[corner % count * 3 + axis]) - corners[axis];
    };
    std::array<double, 3> normal{};
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t u = (axis + 1) % 3;
            const std::size_t v = (axis + 2) % 3;
            normal[axis] += at(i, u) * at(i + 1, v) - at(i + 1, u) * at(i, v);
        }
    const auto isFlatter = [](double a, double b) { return std::abs(a) < std::abs(b); };
    const auto steepest = std::max_element(normal.begin(), normal.end(), isFlatter);
    if (*steepest == 0)
        return {};
    const auto axis = static_cast<std::size_t>(steepest - normal.begin());
    const double side = *steepest < 0 ? -1 : 1;
    std::vector<Point> points;
    for (std::size_t i = 0; i < count; ++i)
        points.push_back({side * at(i, (axis + 1) % 3), at(i, (axis + 2) % 3)});
    return points;
}

/// Whether the corner at a place of the ring can be cut off: it turns left, and no other corner
/// lies in its triangle.
bool isEar(const std::vector<Point>& points, const std::vector<int>& ring, std::size_t place) {
    const auto at = [&](std::size_t i) -> const Point& {
        return points[static_cast<std::size_t>(ring[i % ring.size()])];
    };
    const Point& before = at(place + ring.size() - 1);
    const Point& tip = at(place);
    const Point& after = at(place + 1);
    if (areaOf(before, tip, after) <= 0)
        return false;
    for (std::size_t i = place + 2; i < place + ring.size() - 1; ++i) {
        const Point& other = at(i);
        if (areaOf(before, tip, other) >= 0 && areaOf(tip, after, other) >= 0 &&
            areaOf(after, before, other) >= 0)
            return false;
    }
    return true;
}

} // namespace

std::vector<int> triangulate(std::span<const float> corners) {
    const std::vector<Point> points = flatten(corners);
    std::vector<int> ring(points.size());
    for (std::size_t i = 0; i < ring.size(); ++i)
        ring[i] = static_cast<int>(i);
    std::vector<int> triangles;
    while (ring.size() >= 3) {
        std::size_t place = 0;
        while (place < ring.size() && !isEar(points, ring, place))
            ++place;
        if (place == ring.size()) // corners that coincide or cross: any will do
            place = 0;
        const std::size_t count = ring.size();
        triangles.insert(triangles.end(), {ring[(place + count - 1) % count], ring[place],
                                           ring[(place + 1) % count]});
        ring.erase(ring.begin() + static_cast<std::ptrdiff_t>(place));
    }
    return triangles;
}

} // namespace ZUNO::Tools
