#include "hostkit/surface.h"

namespace ZUNO::HostKit {

namespace {

Position mixed(const Position (&corners)[3], const double (&weights)[3]) {
    double sum[3] = {0, 0, 0};
    for (int i = 0; i < 3; ++i) {
        sum[0] += weights[i] * double{corners[i].mX};
        sum[1] += weights[i] * double{corners[i].mY};
        sum[2] += weights[i] * double{corners[i].mZ};
    }
    return {static_cast<float>(sum[0]), static_cast<float>(sum[1]), static_cast<float>(sum[2])};
}

/// Where a point lies in a triangle: the corners' weights, and the least of them.
struct Weights {
    double mOf[3] = {0, 0, 0};
    double mLeast = -std::numeric_limits<double>::infinity();
};

Weights weigh(const PlanePoint (&corners)[3], const PlanePoint& p) {
    const double area = cross(corners[1] - corners[0], corners[2] - corners[0]);
    if (!(std::abs(area) > 0))
        return {};
    Weights weights;
    weights.mOf[1] = cross(p - corners[0], corners[2] - corners[0]) / area;
    weights.mOf[2] = cross(corners[1] - corners[0], p - corners[0]) / area;
    weights.mOf[0] = 1 - weights.mOf[1] - weights.mOf[2];
    weights.mLeast = std::min({weights.mOf[0], weights.mOf[1], weights.mOf[2]});
    return weights;
}

/// The outline itself, for nodes without a triangle in them: the nearest point of its borders.
Position outlineAt(const MeshView& view, std::uint32_t node, const PlanePoint& point) {
    const auto corners = view.cornersOf(node);
    double nearest = std::numeric_limits<double>::infinity();
    Position found = view.positionOf(corners[0]);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const std::uint32_t a = corners[i];
        const std::uint32_t b = corners[i + 1 < corners.size() ? i + 1 : 0];
        const double part = partAlong(point, view.planeOf(a), view.planeOf(b));
        const double away = distance(point, between(view.planeOf(a), view.planeOf(b), part));
        if (!(away < nearest))
            continue;
        nearest = away;
        found = mixed({view.positionOf(a), view.positionOf(b), {0, 0, 0}}, {1 - part, part, 0});
    }
    return found;
}

/// How far outside a node's outline rounding to float may carry a point that belongs to it.
double roundingAt(const PlanePoint& point) {
    constexpr double error = 4.0 / (1 << 24);
    return error * (std::abs(point.mX) + std::abs(point.mY));
}

} // namespace

Position surfaceAt(const MeshView& view, std::uint32_t node, const PlanePoint& point) {
    const auto corners = view.cornersOf(node);
    const PlanePoint origin = view.planeOf(corners[0]);
    Weights best;
    std::size_t bestCorner = 0;
    for (std::size_t i = 2; i < corners.size() && best.mLeast < 0; ++i) {
        const Weights weights =
            weigh({origin, view.planeOf(corners[i - 1]), view.planeOf(corners[i])}, point);
        if (weights.mLeast > best.mLeast) {
            best = weights;
            bestCorner = i;
        }
    }
    // right beside a triangle's border is as good as on it; anything else is nearest on the outline
    constexpr double rounding = 1e-9;
    if (!(best.mLeast >= -rounding))
        return outlineAt(view, node, point);
    return mixed({view.positionOf(corners[0]), view.positionOf(corners[bestCorner - 1]),
                  view.positionOf(corners[bestCorner])},
                 best.mOf);
}

PlanePoint nearestInNode(const MeshView& view, std::uint32_t node, const PlanePoint& point) {
    const auto corners = view.cornersOf(node);
    bool isLeft = false;
    bool isRight = false;
    PlanePoint a = view.planeOf(corners.back());
    for (std::size_t i = 0; i < corners.size() && !(isLeft && isRight); ++i) {
        const PlanePoint b = view.planeOf(corners[i]);
        const double side = turn(a, b, point);
        isLeft = isLeft || side > 0;
        isRight = isRight || side < 0;
        a = b;
    }
    if (isLeft != isRight)
        return point;
    double nearest = std::numeric_limits<double>::infinity();
    PlanePoint found = view.planeOf(corners[0]);
    a = view.planeOf(corners.back());
    for (const std::uint32_t corner : corners) {
        const PlanePoint b = view.planeOf(corner);
        const PlanePoint here = nearestOnSegment(point, a, b);
        const double away = dot(point - here, point - here);
        if (away < nearest) {
            nearest = away;
            found = here;
        }
        a = b;
    }
    return found;
}

Place settle(const MeshView& view, std::uint32_t node, const PlanePoint& point) {
    const Position centre = view.centreOf(node);
    if (!isFinite(centre))
        return {};
    for (const double part : {0.0, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 0.1}) {
        const Position there = surfaceAt(view, node, between(point, view.planeOf(centre), part));
        if (view.isOnNode(there, node))
            return {node, there};
    }
    return {};
}

Place findGround(const MeshView& view, const Position& point, float height) {
    Place found;
    if (!isFinite(point))
        return found;
    const PlanePoint p = view.planeOf(point);
    double nearest = double{height};
    view.boxes().visitAt(p, [&](std::uint32_t node) {
        if (distance(nearestInNode(view, node, p), p) > roundingAt(p))
            return;
        const Position there = surfaceAt(view, node, p);
        const double away = std::abs(view.heightOf(there) - view.heightOf(point));
        const bool isBetter =
            found ? away < nearest || (away == nearest && node < found.mNode) : away <= nearest;
        if (isBetter) {
            nearest = away;
            found = {node, there};
        }
    });
    return found;
}

NearestPlace findNearest(const MeshView& view, const Position& point, float radius, float height) {
    NearestPlace found;
    if (!isFinite(point) || !(radius >= 0))
        return found;
    const PlanePoint p = view.planeOf(point);
    double nearest = std::numeric_limits<double>::infinity(); // squared, in space
    const auto limit = [&] { return std::min(nearest, double{radius} * double{radius}); };
    view.boxes().visitNear(p, limit, [&](std::uint32_t node) {
        const PlanePoint inside = nearestInNode(view, node, p);
        if (!(dot(inside - p, inside - p) <= limit()))
            return;
        const Place there = settle(view, node, inside);
        if (!there ||
            !(std::abs(view.heightOf(there.mPosition) - view.heightOf(point)) <= double{height}))
            return;
        const double away = squareDistance(there.mPosition, point);
        if (away < nearest || (away == nearest && node < found.mNode)) {
            nearest = away;
            static_cast<Place&>(found) = there;
        }
    });
    if (found)
        found.mDistance = static_cast<float>(std::sqrt(nearest));
    return found;
}

} // namespace ZUNO::HostKit
