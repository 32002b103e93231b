#include "hostkit/meshview.h"

#include "common/math/floatrange.h"
#include "hostkit/meshviewbuilder.h"

namespace ZUNO::HostKit {

using Common::Math::largestCoordinate;
using Common::Math::Vec2;

MeshView::MeshView(const NavMesh::NavMeshContainer& mesh) {
    MeshViewBuilder(mesh, *this).build();
}

MeshView::Border MeshView::borderOf(std::uint32_t node, const Link& link) const {
    if ((link.mBorder & ownMark) != 0)
        return link.mBorder != NO_BORDER ? mOwnBorders[link.mBorder & ~ownMark]
                                         : Border{NO_VERTEX, NO_VERTEX, 0};
    const auto corners = cornersOf(node);
    const std::uint32_t edge = link.mBorder & ~turnedMark;
    const std::uint32_t first = corners[edge];
    const std::uint32_t second = corners[edge + 1 < corners.size() ? edge + 1 : 0];
    return (link.mBorder & turnedMark) != 0 ? Border{first, second, edge}
                                            : Border{second, first, edge};
}

MeshView::Opening MeshView::nextOpening(std::uint32_t node, std::uint32_t edge, const PlanePoint& a,
                                        const PlanePoint& b, double done) const {
    Opening next{1, 1};
    for (const Link& link : linksOf(node)) {
        if (link.mBorder == NO_BORDER)
            continue;
        const Border border = borderOf(node, link);
        if (border.mEdge != edge)
            continue;
        if ((link.mBorder & ownMark) == 0)
            return {done, 1};
        const double left = partAlong(planeOf(border.mLeft), a, b);
        const double right = partAlong(planeOf(border.mRight), a, b);
        const double first = std::min(left, right);
        const double last = std::max(left, right);
        if (last > done && first < next.mFirst)
            next = {std::max(first, done), last};
    }
    return next;
}

// The operations, and their order, are those of the mesh's own test: results are the same to the
// bit.
bool MeshView::isOnNode(const Position& point, std::uint32_t node) const {
    const auto corners = cornersOf(node);
    const float height = dot(mUp, point - positionOf(corners[0]));
    if (!isFinite(point) || height < -2.0F * mCubeSize || height > mReaches[node])
        return false;
    const auto project = [&](const Position& p) {
        return Vec2<float>(dot(p, mXAxis), dot(p, mYAxis));
    };
    const Vec2<float> projected = project(point);
    Vec2<float> start = project(positionOf(corners.back()));
    for (const std::uint32_t corner : corners) {
        const Vec2<float> end = project(positionOf(corner));
        if (signedArea(start, end, projected) * -1.0F > 0.0F)
            return false;
        start = end;
    }
    return true;
}

std::uint32_t MeshView::findNode(const Position& point) const {
    if (!isFinite(point))
        return NO_NODE;
    std::uint32_t lowest = NO_NODE;
    const auto consider = [&](std::uint32_t node) {
        if (node < lowest && isOnNode(point, node))
            lowest = node;
    };
    const Vec2<float> rounded(dot(point, mXAxis), dot(point, mYAxis));
    // beyond the largest coordinate the world's test may find a point anywhere
    if (std::abs(rounded.mX) < largestCoordinate && std::abs(rounded.mY) < largestCoordinate) {
        mBoxes.visitAt({double{rounded.mX}, double{rounded.mY}}, consider);
        for (const std::uint32_t node : mEverywhere)
            consider(node);
    } else {
        for (std::uint32_t node = 0; node < nodeCount(); ++node)
            consider(node);
    }
    return lowest;
}

MeshView::MemoryUsage MeshView::memoryUsage() const {
    const auto bytesOf = [](const auto& list) { return list.capacity() * sizeof(list[0]); };
    const std::size_t targets = mLinks.size() * sizeof(std::uint32_t);
    return {bytesOf(mVertices) + bytesOf(mCorners) + targets + bytesOf(mReaches),
            sizeof(*this) + bytesOf(mCentres) + bytesOf(mFirstCorners) + bytesOf(mFirstLinks) +
                bytesOf(mLinks) - targets + bytesOf(mOwnBorders) + bytesOf(mIslands) +
                bytesOf(mIslandSizes) + mIsAtWall.capacity() / 8 + mBoxes.memoryUsage() +
                bytesOf(mEverywhere)};
}

} // namespace ZUNO::HostKit
