#include "hostkit/strait.h"

namespace ZUNO::HostKit {

namespace {

/// The nodes of one island, by their places.
class IslandTree {
public:
    IslandTree(const MeshView& view, std::uint32_t island) {
        std::vector<PlaneBox> boxes;
        for (std::uint32_t node = 0; node < view.nodeCount(); ++node) {
            if (view.islandOf(node) != island)
                continue;
            mNodes.push_back(node);
            PlaneBox& box = boxes.emplace_back();
            for (const std::uint32_t corner : view.cornersOf(node))
                box.grow(view.planeOf(corner));
        }
        mTree = BoxTree(boxes);
    }

    const std::vector<std::uint32_t>& nodes() const { return mNodes; }
    template <typename Limit, typename Visitor>
    void visitNear(const PlanePoint& point, Limit limit, Visitor visitor) const {
        mTree.visitNear(point, limit, [&](std::uint32_t item) { visitor(mNodes[item]); });
    }

private:
    std::vector<std::uint32_t> mNodes;
    BoxTree mTree;
};

/// Of two convex outlines that don't overlap, one is nearest to the other at a corner.
class StraitSearch {
public:
    explicit StraitSearch(const MeshView& view) : mView(view) {}

    void lookAcross(const IslandTree& shore, const IslandTree& otherShore, bool isTurned) {
        for (const std::uint32_t node : shore.nodes())
            for (const std::uint32_t corner : mView.cornersOf(node))
                lookFrom({node, mView.positionOf(corner)}, otherShore, isTurned);
    }
    Strait found() const { return {mFrom, mTo, static_cast<float>(std::sqrt(mNearest))}; }

private:
    /// Corners of the other island that may be looked at: some at once, and more for each corner
    /// that is looked from. So the cost stays in proportion where all of one island lies above all
    /// of the other, and where nodes have thousands of corners.
    static constexpr std::ptrdiff_t firstLooks = 100'000;
    static constexpr std::ptrdiff_t looksPerCorner = 24;

    void lookFrom(const Place& place, const IslandTree& otherShore, bool isTurned) {
        const PlanePoint point = mView.planeOf(place.mPosition);
        mLooks += looksPerCorner;
        const auto limit = [&] { return mLooks > 0 && mNearest > 0 ? mNearest : -1; };
        otherShore.visitNear(point, limit, [&](std::uint32_t node) {
            if (mLooks <= 0)
                return;
            mLooks -= static_cast<std::ptrdiff_t>(mView.cornersOf(node).size());
            const Position there = surfaceAt(mView, node, nearestInNode(mView, node, point));
            const double away = squareDistance(place.mPosition, there);
            if (!(away < mNearest))
                return;
            mNearest = away;
            mFrom = isTurned ? Place{node, there} : place;
            mTo = isTurned ? place : Place{node, there};
        });
    }

    const MeshView& mView;
    Place mFrom;
    Place mTo;
    double mNearest = std::numeric_limits<double>::infinity(); ///< squared
    std::ptrdiff_t mLooks = firstLooks;                        ///< that are left
};

} // namespace

Strait findStrait(const MeshView& view, std::uint32_t from, std::uint32_t to) {
    const IslandTree shore(view, from);
    const IslandTree otherShore(view, to);
    StraitSearch search(view);
    search.lookAcross(shore, otherShore, false);
    search.lookAcross(otherShore, shore, true);
    return search.found();
}

} // namespace ZUNO::HostKit
