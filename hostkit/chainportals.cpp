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
    const auto links = mView.linksOf(node);
    const auto isToNext = [&](const MeshView::Link& link) { return link.mTarget == next; };
    const auto first = std::find_if(links.begin(), links.end(), isToNext);
    if (first == links.end())
        return false;
    // the pieces of a border follow each other
    const auto last = std::find_if_not(first + 1, links.end(), isToNext);
    if (first->mBorder == NO_BORDER)
        addGap(node, next, step);
    else
        addBorder(node, {first, last}, step);
    return true;
}

/// A border with vertices in its middle comes in pieces, in the order of the node's outline, which
/// may begin at any of them.
void ChainPortals::addBorder(std::uint32_t node, std::span<const MeshView::Link> pieces,
                             std::uint32_t step) {
    MeshView::Border whole = mView.borderOf(node, pieces[0]);
    Portal portal{mView.planeOf(whole.mLeft), mView.planeOf(whole.mRight)};
    const auto join = [&](const MeshView::Link& link) {
        const MeshView::Border border = mView.borderOf(node, link);
        const Portal piece{mView.planeOf(border.mLeft), mView.planeOf(border.mRight)};
        constexpr double bendless = 1e-6;
        const auto isInLine = [&](const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
            return std::abs(turn(a, b, c)) <= bendless * dot(c - a, c - a);
        };
        if (piece.mRight == portal.mLeft && isInLine(portal.mRight, portal.mLeft, piece.mLeft)) {
            whole.mLeft = border.mLeft;
            portal.mLeft = piece.mLeft;
        } else if (piece.mLeft == portal.mRight &&
                   isInLine(piece.mRight, portal.mRight, portal.mLeft)) {
            whole.mRight = border.mRight;
            portal.mRight = piece.mRight;
        } else if (distance(piece.mLeft, piece.mRight) > distance(portal.mLeft, portal.mRight)) {
            whole = border;
            portal = piece;
        }
    };
    std::for_each(pieces.begin() + 1, pieces.end(), join);
    std::for_each(pieces.rbegin(), pieces.rend(), join); // those before the outline's first corner
    mPortals.push_back(portal);
    mEnds.push_back({whole.mLeft, whole.mRight, step});
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
