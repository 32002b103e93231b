// What spreads over a surface from node to node.
#include "hostkit/surface.h"

#include <unordered_set>

namespace ZUNO::HostKit {

namespace {

/// The distance from a point to the border of a link; 0 for nodes that don't touch, whose link can
/// be followed from anywhere.
double distanceToLink(const MeshView& view, std::uint32_t node, const MeshView::Link& link,
                      const PlanePoint& point) {
    if (link.mBorder == NO_BORDER)
        return std::numeric_limits<double>::infinity();
    const MeshView::Border border = view.borderOf(node, link);
    return distance(
        point, nearestOnSegment(point, view.planeOf(border.mLeft), view.planeOf(border.mRight)));
}

/// The nodes that were reached by walking, each with the one before it.
class Spread {
public:
    explicit Spread(std::uint32_t start) { add(start, 0); }

    std::size_t size() const { return mCount; }
    std::uint32_t node(std::size_t i) const { return mNodes[i]; }
    void reach(std::uint32_t node, std::size_t from) {
        if (mCount == mNodes.size() ||
            std::find(mNodes.begin(), mNodes.begin() + mCount, node) != mNodes.begin() + mCount)
            return;
        add(node, from);
    }
    /// The nodes up to one of them, in their order.
    void writeWayTo(std::size_t last, SurfaceMove& move) const {
        for (std::size_t i = last;; i = mFrom[i]) {
            move.mNodes[move.mNodeCount++] = mNodes[i];
            if (i == 0)
                break;
        }
        std::reverse(move.mNodes.begin(),
                     move.mNodes.begin() + static_cast<std::ptrdiff_t>(move.mNodeCount));
    }

private:
    void add(std::uint32_t node, std::size_t from) {
        mNodes[static_cast<std::size_t>(mCount)] = node;
        mFrom[static_cast<std::size_t>(mCount)] = static_cast<std::uint16_t>(from);
        ++mCount;
    }

    std::array<std::uint32_t, SurfaceMove::maxNodes> mNodes;
    std::array<std::uint16_t, SurfaceMove::maxNodes> mFrom;
    std::uint32_t mCount = 0;
};

} // namespace

SurfaceMove moveAlongSurface(const MeshView& view, const Place& start, const Position& target) {
    SurfaceMove move;
    move.mPlace = start;
    if (!start || !isFinite(target) || !isFinite(start.mPosition))
        return move;
    const PlanePoint from = nearestInNode(view, start.mNode, view.planeOf(start.mPosition));
    const PlanePoint to = view.planeOf(target);
    const PlanePoint middle = between(from, to, 0.5);
    constexpr double looseness = 1e-3; // of the cube size: borders touch the circle at its rim
    const double radius = distance(from, to) / 2 + looseness * double{view.cubeSize()};
    Spread spread(start.mNode);
    double nearest = std::numeric_limits<double>::infinity();
    std::size_t best = 0;
    PlanePoint end = from;
    for (std::size_t i = 0; i < spread.size() && nearest > 0; ++i) {
        const std::uint32_t node = spread.node(i);
        const PlanePoint here = nearestInNode(view, node, to);
        const double away = distance(here, to);
        if (away < nearest) {
            nearest = away;
            best = i;
            end = here;
        }
        for (const MeshView::Link& link : view.linksOf(node))
            if (distanceToLink(view, node, link, middle) <= radius)
                spread.reach(link.mTarget, i);
    }
    move.mPlace = {spread.node(best), surfaceAt(view, spread.node(best), end)};
    move.mIsReached = nearest == 0;
    spread.writeWayTo(best, move);
    return move;
}

namespace {

/// The part of the way at which it leaves over the line from `right` to `left`; below 0 or above 1
/// when the line lies elsewhere, infinity when it isn't left over.
double partAtLine(const PlanePoint& from, const PlanePoint& to, const PlanePoint& left,
                  const PlanePoint& right) {
    const double inside = cross(left - right, from - right);
    const double way = cross(left - right, to - from);
    return way < 0 ? inside / -way : std::numeric_limits<double>::infinity();
}

/// The same for the border alone.
double partAtBorder(const PlanePoint& from, const PlanePoint& to, const PlanePoint& left,
                    const PlanePoint& right) {
    return turn(from, to, left) >= 0 && turn(from, to, right) <= 0
               ? partAtLine(from, to, left, right)
               : std::numeric_limits<double>::infinity();
}

/// Where the way ends within a node that it doesn't leave over a border.
PlanePoint lastInNode(const MeshView& view, std::uint32_t node, const PlanePoint& from,
                      const PlanePoint& to) {
    double part = 1;
    const auto corners = view.cornersOf(node);
    PlanePoint right = view.planeOf(corners.back());
    for (const std::uint32_t corner : corners) {
        const PlanePoint left = view.planeOf(corner);
        part = std::min(part, partAtLine(from, to, left, right));
        right = left;
    }
    return nearestInNode(view, node, between(from, to, std::max(part, 0.0)));
}

} // namespace

SurfaceMove walkStraight(const MeshView& view, const Place& start, const Position& target) {
    return walkStraight(view, start, view.planeOf(target));
}

SurfaceMove walkStraight(const MeshView& view, const Place& start, const PlanePoint& to) {
    SurfaceMove move;
    move.mPlace = start;
    if (!start || !std::isfinite(to.mX) || !std::isfinite(to.mY) || !isFinite(start.mPosition))
        return move;
    const PlanePoint from = nearestInNode(view, start.mNode, view.planeOf(start.mPosition));
    std::uint32_t before = NO_NODE;
    std::uint32_t node = start.mNode;
    PlanePoint reached = from;
    while (node != NO_NODE && move.mNodeCount < SurfaceMove::maxNodes) {
        move.mNodes[move.mNodeCount++] = node;
        const PlanePoint end = nearestInNode(view, node, to);
        move.mIsReached = end == to;
        std::uint32_t next = NO_NODE;
        for (const MeshView::Link& link : view.linksOf(node)) {
            if (move.mIsReached || link.mBorder == NO_BORDER || link.mTarget == before)
                continue;
            const MeshView::Border border = view.borderOf(node, link);
            const double part =
                partAtBorder(from, to, view.planeOf(border.mLeft), view.planeOf(border.mRight));
            if (part <= 1) {
                next = link.mTarget;
                reached = between(from, to, std::max(part, 0.0));
                break;
            }
        }
        if (next == NO_NODE)
            reached = move.mIsReached ? to : lastInNode(view, node, from, to);
        before = node;
        node = next;
    }
    move.mPlace = {before, surfaceAt(view, before, reached)};
    return move;
}

float distanceToWall(const MeshView& view, const Place& place, float limit) {
    if (!place || !(limit > 0) || !isFinite(place.mPosition))
        return 0;
    const PlanePoint p = nearestInNode(view, place.mNode, view.planeOf(place.mPosition));
    double nearest = double{limit};
    std::unordered_set<std::uint32_t> known{place.mNode};
    std::vector<std::uint32_t> waiting{place.mNode};
    while (!waiting.empty()) {
        const std::uint32_t node = waiting.back();
        waiting.pop_back();
        view.visitWalls(node, [&](const PlanePoint& a, const PlanePoint& b) {
            nearest = std::min(nearest, distance(p, nearestOnSegment(p, a, b)));
        });
        for (const MeshView::Link& link : view.linksOf(node))
            if (distanceToLink(view, node, link, p) < nearest && known.insert(link.mTarget).second)
                waiting.push_back(link.mTarget);
    }
    return static_cast<float>(nearest);
}

namespace {

/// Twice the area of a triangle of a node's fan, in space.
double areaOf(const Position& a, const Position& b, const Position& c) {
    const double u[3] = {double{b.mX} - double{a.mX}, double{b.mY} - double{a.mY},
                         double{b.mZ} - double{a.mZ}};
    const double v[3] = {double{c.mX} - double{a.mX}, double{c.mY} - double{a.mY},
                         double{c.mZ} - double{a.mZ}};
    const double x = u[1] * v[2] - u[2] * v[1];
    const double y = u[2] * v[0] - u[0] * v[2];
    const double z = u[0] * v[1] - u[1] * v[0];
    return std::sqrt(x * x + y * y + z * z);
}

/// Numbers that are the same on every system.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : mState(seed) {}
    /// At least 0 and below 1.
    double next() {
        mState += 0x9E3779B97F4A7C15U;
        std::uint64_t bits = mState;
        bits = (bits ^ (bits >> 30U)) * 0xBF58476D1CE4E5B9U;
        bits = (bits ^ (bits >> 27U)) * 0x94D049BB133111EBU;
        return static_cast<double>((bits ^ (bits >> 31U)) >> 11U) * 0x1p-53;
    }

private:
    std::uint64_t mState;
};

} // namespace

RandomPlaces::RandomPlaces(const MeshView& view, std::uint32_t island) : mView(view) {
    mAreas.reserve(view.nodeCount());
    double sum = 0;
    for (std::uint32_t node = 0; node < view.nodeCount(); ++node) {
        const auto corners = view.cornersOf(node);
        const bool isMeant = island == anyIsland || view.islandOf(node) == island;
        for (std::size_t i = 2; isMeant && i < corners.size(); ++i)
            sum += areaOf(view.positionOf(corners[0]), view.positionOf(corners[i - 1]),
                          view.positionOf(corners[i]));
        mAreas.push_back(sum);
    }
}

Place RandomPlaces::pick(std::uint64_t seed) const {
    if (mAreas.empty() || !(mAreas.back() > 0) || !std::isfinite(mAreas.back()))
        return {};
    Dice dice(seed);
    double rest = dice.next() * mAreas.back();
    const auto place = std::upper_bound(mAreas.begin(), mAreas.end(), rest);
    const auto node = static_cast<std::uint32_t>(
        std::min<std::ptrdiff_t>(place - mAreas.begin(), std::ssize(mAreas) - 1));
    rest -= node > 0 ? mAreas[node - 1] : 0;
    const auto corners = mView.cornersOf(node);
    std::size_t i = 2;
    for (; i + 1 < corners.size(); ++i) {
        const double area = areaOf(mView.positionOf(corners[0]), mView.positionOf(corners[i - 1]),
                                   mView.positionOf(corners[i]));
        if (rest < area)
            break;
        rest -= area;
    }
    // the square root spreads places evenly from the first corner to the opposite side
    const PlanePoint side =
        between(mView.planeOf(corners[i - 1]), mView.planeOf(corners[i]), dice.next());
    const PlanePoint point = between(mView.planeOf(corners[0]), side, std::sqrt(dice.next()));
    return {node, surfaceAt(mView, node, point)};
}

} // namespace ZUNO::HostKit
