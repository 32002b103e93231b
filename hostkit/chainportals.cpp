#include "hostkit/chainportals.h"

#include "hostkit/surface.h"

namespace ZUNO::HostKit {

bool ChainPortals::lay(std::span<const std::uint32_t> chain) {
    mPortals.clear();
    mEnds.clear();
    mPoints.clear();
    for (std::size_t i = 1; i < chain.size(); ++i)
        if (!addPortal(chain[i - 1], chain[i], static_cast<std::uint32_t>(i)))
            return false;
    return true;
}

bool ChainPortals::addPortal(std::uint32_t node, std::uint32_t next, std::uint32_t step) {
    MeshView::Border whole{NO_VERTEX, NO_VERTEX, 0};
    Portal portal;
    bool isLinked = false;
    for (const MeshView::Link& link : mView.linksOf(node)) {
        if (link.mTarget != next)
            continue;
        isLinked = true;
        if (link.mBorder == NO_BORDER)
            continue;
        const MeshView::Border border = mView.borderOf(node, link);
        const Portal piece{mView.planeOf(border.mLeft), mView.planeOf(border.mRight)};
        // a border with vertices in its middle comes in pieces
        constexpr double bendless = 1e-6;
        const auto isInLine = [&](const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
            return std::abs(turn(a, b, c)) <= bendless * dot(c - a, c - a);
        };
        if (whole.mLeft != NO_VERTEX && piece.mRight == portal.mLeft &&
            isInLine(portal.mRight, portal.mLeft, piece.mLeft)) {
            whole.mLeft = border.mLeft;
            portal.mLeft = piece.mLeft;
        } else if (whole.mLeft != NO_VERTEX && piece.mLeft == portal.mRight &&
                   isInLine(piece.mRight, portal.mRight, portal.mLeft)) {
            whole.mRight = border.mRight;
            portal.mRight = piece.mRight;
        } else if (whole.mLeft == NO_VERTEX ||
                   distance(piece.mLeft, piece.mRight) > distance(portal.mLeft, portal.mRight)) {
            whole = border;
            portal = piece;
        }
    }
    if (whole.mLeft != NO_VERTEX) {
        mPortals.push_back(portal);
        mEnds.push_back({whole.mLeft, whole.mRight, step});
    } else if (isLinked) {
        addGap(node, next, step);
    }
    return isLinked;
}

/// Two nodes that don't touch are left and entered where they come nearest to each other.
void ChainPortals::addGap(std::uint32_t node, std::uint32_t next, std::uint32_t step) {
    double nearest = std::numeric_limits<double>::infinity();
    PlanePoint here = mView.planeOf(mView.cornersOf(node)[0]);
    PlanePoint there = mView.planeOf(mView.cornersOf(next)[0]);
    const auto consider = [&](const PlanePoint& a, const PlanePoint& b) {
        if (!(distance(a, b) < nearest))
            return;
        nearest = distance(a, b);
        here = a;
        there = b;
    };
    for (const std::uint32_t corner : mView.cornersOf(node)) {
        const PlanePoint point = mView.planeOf(corner);
        consider(point, nearestInNode(mView, next, point));
    }
    for (const std::uint32_t corner : mView.cornersOf(next)) {
        const PlanePoint point = mView.planeOf(corner);
        consider(nearestInNode(mView, node, point), point);
    }
    addPoint(node, here, step - 1);
    addPoint(next, there, step);
}

void ChainPortals::addPoint(std::uint32_t node, const PlanePoint& point, std::uint32_t step) {
    const std::uint32_t end = pointMark | static_cast<std::uint32_t>(mPoints.size());
    mPoints.push_back(surfaceAt(mView, node, point));
    mPortals.push_back({point, point});
    mEnds.push_back({end, end, step});
}

Position ChainPortals::positionOf(const Funnel::Bend& bend) const {
    const std::uint32_t end = bend.mIsLeft ? mEnds[bend.mPortal].mLeft : mEnds[bend.mPortal].mRight;
    return (end & pointMark) != 0 ? mPoints[end & ~pointMark] : mView.positionOf(end);
}

} // namespace ZUNO::HostKit
