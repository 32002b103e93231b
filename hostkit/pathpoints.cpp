#include "hostkit/pathpoints.h"

namespace ZUNO::HostKit {

namespace {

PlanePoint directionTo(const PlanePoint& from, const PlanePoint& to) {
    const double length = distance(from, to);
    return length > 0 ? (to - from) * (1 / length) : PlanePoint{};
}

/// The first node of a part of the chain that holds the point, or else the nearest to it.
std::uint32_t nodeUnder(const MeshView& view, const StraightPath& path, const PlanePoint& point,
                        std::uint32_t first, std::uint32_t last) {
    std::uint32_t nearest = first;
    double least = std::numeric_limits<double>::infinity();
    for (std::uint32_t at = first; at <= last && least > 0; ++at) {
        const double away = distance(point, nearestInNode(view, path.mChain[at], point));
        if (away < least) {
            least = away;
            nearest = at;
        }
    }
    return nearest;
}

/// A path's corners, and how far each is moved off its wall.
class Shifting {
public:
    Shifting(const MeshView& view, const StraightPath& path, float margin)
        : mView(view), mPath(path), mMargins(path.mCorners.size(), double{margin}) {
        for (std::size_t i = 0; i < path.mCorners.size(); ++i)
            mPlaces.push_back(shifted(i));
    }

    std::vector<Place> run() {
        constexpr int rounds = 3; // half the margin, a quarter, nothing
        for (int round = 1; round <= rounds; ++round)
            for (std::size_t i = 1; i < mPlaces.size(); ++i) {
                if (isFree(i))
                    continue;
                for (const std::size_t end : {i - 1, i}) {
                    mMargins[end] = round < rounds ? mMargins[end] / 2 : 0;
                    mPlaces[end] = shifted(end);
                }
            }
        return mPlaces;
    }

private:
    PlanePoint pointOf(std::size_t corner) const {
        return mView.planeOf(mPath.mCorners[corner].mPosition);
    }
    bool isFree(std::size_t leg) const {
        return (mMargins[leg - 1] == 0 && mMargins[leg] == 0) ||
               walkStraight(mView, mPlaces[leg - 1], mPlaces[leg].mPosition).mIsReached;
    }
    /// A corner lies on the inner side of its bend; off the wall is outwards, along the middle.
    Place shifted(std::size_t corner) const {
        const StraightPath::Corner& at = mPath.mCorners[corner];
        const Place original{mPath.mChain[at.mStep], at.mPosition};
        if (corner == 0 || corner + 1 == mPath.mCorners.size() || !(mMargins[corner] > 0))
            return original;
        const PlanePoint here = pointOf(corner);
        const PlanePoint outwards =
            directionTo(pointOf(corner - 1), here) - directionTo(here, pointOf(corner + 1));
        return walkStraight(mView, original, here + directionTo({}, outwards) * mMargins[corner])
            .mPlace;
    }

    const MeshView& mView;
    const StraightPath& mPath;
    std::vector<double> mMargins;
    std::vector<Place> mPlaces;
};

} // namespace

std::vector<Place> keepOffWalls(const MeshView& view, const StraightPath& path, float margin) {
    return Shifting(view, path, margin).run();
}

std::vector<Place> placesAlong(const MeshView& view, const StraightPath& path, float step) {
    std::vector<Place> places;
    if (path.mCorners.empty())
        return places;
    constexpr double mostPlaces = 1 << 20;
    const double stride = std::max(double{step}, planeLength(view, path) / mostPlaces);
    double next = 0; // from the beginning of the leg
    for (std::size_t i = 1; i < path.mCorners.size(); ++i) {
        const PlanePoint from = view.planeOf(path.mCorners[i - 1].mPosition);
        const PlanePoint to = view.planeOf(path.mCorners[i].mPosition);
        const double length = distance(from, to);
        std::uint32_t at = path.mCorners[i - 1].mStep;
        while (next < length && (step > 0 || places.empty())) {
            const PlanePoint point = between(from, to, next / length);
            at = nodeUnder(view, path, point, at, path.mCorners[i].mStep);
            places.push_back({path.mChain[at], surfaceAt(view, path.mChain[at], point)});
            next += stride;
        }
        next -= length;
    }
    places.push_back({path.mChain.back(), path.mCorners.back().mPosition});
    return places;
}

} // namespace ZUNO::HostKit
