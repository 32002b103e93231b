#include "tools/picture/trail.h"

#include <algorithm>

namespace ZUNO::Tools {

using namespace HostKit;

namespace {

/// Whether a floor that is shown lies above the place. Nearer than half of the lowest height that
/// one stands in it is the same floor, on a slope.
bool isUnderFloor(const MeshView& view, const HeightRange& shown, const Place& place) {
    const PlanePoint point = view.planeOf(place.mPosition);
    const double ceiling =
        view.heightOf(place.mPosition) + static_cast<double>(view.reachAbove(place.mNode)) / 2;
    bool isUnder = false;
    view.boxes().visitNear(
        point, [] { return 0.0; },
        [&](std::uint32_t node) {
            const PlanePoint nearest = nearestInNode(view, node, point);
            isUnder = isUnder || (nearest.mX == point.mX && nearest.mY == point.mY &&
                                  view.heightOf(surfaceAt(view, node, point)) > ceiling &&
                                  shown.holds(view, node));
        });
    return isUnder;
}

} // namespace

bool HeightRange::holds(const MeshView& view, std::uint32_t node) const {
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -lowest;
    for (const std::uint32_t corner : view.cornersOf(node)) {
        const double height = view.heightOf(view.positionOf(corner));
        lowest = std::min(lowest, height);
        highest = std::max(highest, height);
    }
    return highest >= mLow && lowest <= mHigh;
}

std::vector<TrailPiece> cutTrail(const MeshView& view, const HeightRange& shown,
                                 const std::vector<Place>& places) {
    std::vector<TrailPiece> pieces;
    for (const Place& place : places) {
        const bool isHidden = !shown.holds(view, place.mNode) || isUnderFloor(view, shown, place);
        if (pieces.empty() || pieces.back().mIsHidden != isHidden) {
            if (!pieces.empty())
                pieces.back().mPoints.push_back(place.mPosition);
            pieces.push_back({isHidden, {}});
        }
        pieces.back().mPoints.push_back(place.mPosition);
    }
    return pieces;
}

} // namespace ZUNO::Tools
