#include "hostkit/meshviewbuilder.h"

#include "navmesh/meshdefects.h"
#include "navmesh/nodelocator.h"

#include <numeric>
#include <stdexcept>
#include <string>

namespace ZUNO::HostKit {

void MeshViewBuilder::build() {
    requireSoundness();
    copyMesh();
    mView.mFirstLinks.reserve(mMesh.mNodes.size() + 1);
    for (std::uint32_t node = 0; node < mView.nodeCount(); ++node)
        linkNode(node);
    mView.mFirstLinks.push_back(static_cast<std::uint32_t>(mView.mLinks.size()));
    mView.mLinks.shrink_to_fit();
    mView.mOwnBorders.shrink_to_fit();
    markWalls();
    findIslands();
    indexBoxes();
}

void MeshViewBuilder::requireSoundness() const {
    NavMesh::findDefects(mMesh,
                         [](const char* text) -> bool { throw std::invalid_argument(text); });
}

void MeshViewBuilder::copyMesh() {
    mView.mXAxis = mMesh.mXAxis;
    mView.mYAxis = mMesh.mYAxis;
    mView.mUp = mMesh.mNormal;
    mView.mIsPlaneXZ = mMesh.mXAxis == Position(1, 0, 0) && mMesh.mYAxis == Position(0, 0, 1);
    mView.mCubeSize = mMesh.mCubeSize;
    mView.mVertices.reserve(mMesh.mVertices.size());
    for (const Position& p : mMesh.mVertices)
        mView.mVertices.push_back({p.mX, p.mY, p.mZ});
    std::size_t corners = 0;
    for (const NavNode& node : mMesh.mNodes)
        corners += node.mPolygon.size();
    mView.mCorners.reserve(corners);
    mView.mFirstCorners.reserve(mMesh.mNodes.size() + 1);
    mView.mReaches.reserve(mMesh.mNodes.size());
    mView.mCentres.reserve(mMesh.mNodes.size());
    for (const NavNode& node : mMesh.mNodes) {
        mView.mFirstCorners.push_back(static_cast<std::uint32_t>(mView.mCorners.size()));
        mView.mCorners.insert(mView.mCorners.end(), node.mPolygon.begin(), node.mPolygon.end());
        mView.mReaches.push_back(mMesh.mHeights[static_cast<std::size_t>(node.mHeightClass)]);
        const Position centre =
            mMesh.getNodeCenter(static_cast<std::int32_t>(mView.mCentres.size()));
        mView.mCentres.push_back({centre.mX, centre.mY, centre.mZ});
    }
    mView.mFirstCorners.push_back(static_cast<std::uint32_t>(corners));
}

void MeshViewBuilder::linkNode(std::uint32_t node) {
    const std::size_t first = mView.mLinks.size();
    mView.mFirstLinks.push_back(static_cast<std::uint32_t>(first));
    mIsTurned = isClockwise(node);
    for (const std::int32_t neighbour : mMesh.mNodes[node].mNeighbours) {
        const auto target = static_cast<std::uint32_t>(neighbour);
        // a step to where one is leads nowhere, and one link serves a neighbour named twice
        const bool isNew = neighbour >= 0 && target != node &&
                           std::none_of(mView.mLinks.begin() + static_cast<std::ptrdiff_t>(first),
                                        mView.mLinks.end(), [&](const MeshView::Link& link) {
                                            return link.mTarget == target;
                                        });
        if (isNew)
            linkTo(node, target);
    }
}

void MeshViewBuilder::linkTo(std::uint32_t node, std::uint32_t target) {
    const bool hasEdges = linkByEdges(node, target);
    if (!linkByOverlaps(node, target) && !hasEdges)
        mView.mLinks.push_back({target, NO_BORDER});
}

bool MeshViewBuilder::linkByEdges(std::uint32_t node, std::uint32_t target) {
    const auto mine = mView.cornersOf(node);
    const auto theirs = mView.cornersOf(target);
    bool isLinked = false;
    for (std::uint32_t i = 0; i < mine.size(); ++i) {
        const std::uint32_t a = mine[i];
        const std::uint32_t b = mine[i + 1 < mine.size() ? i + 1 : 0];
        for (std::size_t j = 0; j < theirs.size(); ++j)
            if (isSamePlace(theirs[j], b) &&
                isSamePlace(theirs[j + 1 < theirs.size() ? j + 1 : 0], a)) {
                mView.mLinks.push_back({target, i | (mIsTurned ? MeshView::turnedMark : 0)});
                isLinked = true;
                break;
            }
    }
    return isLinked;
}

/// Borders that meet in the middle: what lies on both, within what a mesh's text form rounds.
bool MeshViewBuilder::linkByOverlaps(std::uint32_t node, std::uint32_t target) {
    constexpr double looseness = 0.05; // of the cube size
    constexpr double textRounding = 1e-5;
    const auto mine = mView.cornersOf(node);
    const auto theirs = mView.cornersOf(target);
    bool isLinked = false;
    for (std::uint32_t i = 0; i < mine.size(); ++i) {
        const std::uint32_t ends[2] = {mine[i], mine[i + 1 < mine.size() ? i + 1 : 0]};
        const PlanePoint a = mView.planeOf(ends[0]);
        const PlanePoint b = mView.planeOf(ends[1]);
        const double tolerance =
            looseness * double{mMesh.mCubeSize} + textRounding * (std::abs(a.mX) + std::abs(a.mY));
        const double size = distance(a, b);
        if (!(size > tolerance))
            continue;
        const auto heightAt = [&](double part) {
            const double low = mView.heightOf(mView.positionOf(ends[0]));
            return low + (mView.heightOf(mView.positionOf(ends[1])) - low) * part;
        };
        const auto liesOn = [&](std::uint32_t vertex) {
            const PlanePoint p = mView.planeOf(vertex);
            const double part = dot(p - a, b - a) / (size * size);
            return std::abs(cross(b - a, p - a)) <= tolerance * size &&
                   std::abs(mView.heightOf(mView.positionOf(vertex)) - heightAt(part)) <=
                       double{mView.reachBelow()};
        };
        for (std::size_t j = 0; j < theirs.size(); ++j) {
            const std::uint32_t c = theirs[j];
            const std::uint32_t d = theirs[j + 1 < theirs.size() ? j + 1 : 0];
            if ((isSamePlace(c, ends[1]) && isSamePlace(d, ends[0])) || !liesOn(c) || !liesOn(d))
                continue;
            // the two outlines run past each other in opposite directions
            const double from = dot(mView.planeOf(d) - a, b - a) / (size * size);
            const double to = dot(mView.planeOf(c) - a, b - a) / (size * size);
            if ((std::min(to, 1.0) - std::max(from, 0.0)) * size <= tolerance)
                continue;
            const std::uint32_t right = from > 0 ? d : ends[0];
            const std::uint32_t left = to < 1 ? c : ends[1];
            mView.mLinks.push_back(
                {target, MeshView::ownMark | static_cast<std::uint32_t>(mView.mOwnBorders.size())});
            mView.mOwnBorders.push_back(mIsTurned ? MeshView::Border{right, left, i}
                                                  : MeshView::Border{left, right, i});
            isLinked = true;
        }
    }
    return isLinked;
}

bool MeshViewBuilder::isClockwise(std::uint32_t node) const {
    const auto corners = mView.cornersOf(node);
    const PlanePoint origin = mView.planeOf(corners[0]);
    double area = 0;
    for (std::size_t i = 2; i < corners.size(); ++i)
        area += cross(mView.planeOf(corners[i - 1]) - origin, mView.planeOf(corners[i]) - origin);
    return area < 0;
}

bool MeshViewBuilder::isSamePlace(std::uint32_t a, std::uint32_t b) const {
    return a == b || mMesh.mVertices[a] == mMesh.mVertices[b];
}

void MeshViewBuilder::markWalls() {
    mView.mIsAtWall.resize(mMesh.mVertices.size());
    for (std::uint32_t node = 0; node < mView.nodeCount(); ++node) {
        const auto corners = mView.cornersOf(node);
        const auto links = mView.linksOf(node);
        for (std::uint32_t edge = 0; edge < corners.size(); ++edge) {
            const bool isOpen =
                std::any_of(links.begin(), links.end(), [&](const MeshView::Link& link) {
                    return (link.mBorder & MeshView::ownMark) == 0 &&
                           (link.mBorder & ~MeshView::turnedMark) == edge;
                });
            if (isOpen)
                continue;
            mView.mIsAtWall[corners[edge]] = true;
            mView.mIsAtWall[corners[edge + 1 < corners.size() ? edge + 1 : 0]] = true;
        }
    }
    for (const MeshView::Border& border : mView.mOwnBorders) {
        mView.mIsAtWall[border.mLeft] = true;
        mView.mIsAtWall[border.mRight] = true;
    }
}

void MeshViewBuilder::findIslands() {
    const std::uint32_t count = mView.nodeCount();
    std::vector<std::uint32_t>& leader = mView.mIslands;
    leader.resize(count);
    std::iota(leader.begin(), leader.end(), 0U);
    const auto leaderOf = [&](std::uint32_t node) {
        while (leader[node] != node)
            node = leader[node] = leader[leader[node]];
        return node;
    };
    for (std::uint32_t node = 0; node < count; ++node)
        for (const MeshView::Link& link : mView.linksOf(node))
            leader[leaderOf(node)] = leaderOf(link.mTarget);
    std::vector<std::uint32_t> sizes(count);
    for (std::uint32_t node = 0; node < count; ++node)
        ++sizes[leaderOf(node)];
    std::vector<std::uint32_t> order;
    for (std::uint32_t node = 0; node < count; ++node)
        if (sizes[node] != 0)
            order.push_back(node);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return sizes[a] > sizes[b]; });
    for (const std::uint32_t node : order)
        mView.mIslandSizes.push_back(sizes[node]);
    for (std::uint32_t node = 0; node < count; ++node)
        leader[node] = leaderOf(node);
    std::vector<std::uint32_t>& numbers = sizes;
    for (std::uint32_t i = 0; i < order.size(); ++i)
        numbers[order[i]] = i;
    for (std::uint32_t node = 0; node < count; ++node)
        leader[node] = numbers[leader[node]];
    mView.mIslandSizes.shrink_to_fit();
}

void MeshViewBuilder::indexBoxes() {
    std::vector<PlaneBox> boxes(mView.nodeCount());
    for (std::uint32_t node = 0; node < mView.nodeCount(); ++node) {
        for (const std::uint32_t corner : mView.cornersOf(node))
            boxes[node].grow(mView.planeOf(corner));
        const auto reach = NavMesh::NodeLocator::reachOf(mMesh, mMesh.mNodes[node]);
        if (reach.has_value()) {
            boxes[node].grow(PlanePoint{reach->mLow[0], reach->mLow[1]});
            boxes[node].grow(PlanePoint{reach->mHigh[0], reach->mHigh[1]});
        } else {
            mView.mEverywhere.push_back(node);
        }
    }
    mView.mBoxes = BoxTree(boxes);
    mView.mEverywhere.shrink_to_fit();
}

} // namespace ZUNO::HostKit
