#include "hostkit/corridor.h"

namespace ZUNO::HostKit {

namespace {

/// What counts as standing on a border, in cube sizes.
constexpr double touch = 1e-3;

} // namespace

void Corridor::place(const Place& position) {
    mPosition = position;
    loseWay();
    mNeedsSearch = false;
}

bool Corridor::follow(const std::vector<std::uint32_t>& chain, const Position& goal) {
    // the character may have walked on while the search ran
    std::size_t first = std::min(chain.size(), lookAhead);
    while (first > 0 && chain[first - 1] != mPosition.mNode)
        --first;
    const bool isBeside =
        first == 0 && !chain.empty() && mPosition && mView.isLinked(mPosition.mNode, chain.front());
    if ((first == 0 && !isBeside) || !isFinite(goal))
        return false;
    mNodes.reserve(2 * (chain.size() + SurfaceMove::maxNodes)); // for what pushes add
    mNodes.assign(chain.rbegin(),
                  chain.rend() - (isBeside ? 0 : static_cast<std::ptrdiff_t>(first) - 1));
    if (isBeside)
        mNodes.push_back(mPosition.mNode);
    const PlanePoint end = nearestInNode(mView, mNodes.front(), mView.planeOf(goal));
    mGoal = {mNodes.front(), surfaceAt(mView, mNodes.front(), end)};
    mGoalWander = 0;
    mNeedsSearch = false;
    return true;
}

bool Corridor::isAtGoal(float within) const {
    if (!hasPath())
        return false;
    const double height = mView.heightOf(mPosition.mPosition) - mView.heightOf(mGoal.mPosition);
    return std::abs(height) <= double{within} + double{mView.reachBelow()} &&
           distance(mView.planeOf(mPosition.mPosition), mView.planeOf(mGoal.mPosition)) <=
               double{within};
}

std::span<const std::uint32_t> Corridor::ahead() {
    mAhead.assign(mNodes.rbegin(), mNodes.rbegin() + static_cast<std::ptrdiff_t>(
                                                         std::min(mNodes.size(), lookAhead)));
    return mAhead;
}

/// The goal, or what stands for it at the end of a long way: the middle of the last border.
PlanePoint Corridor::aimOf(std::span<const std::uint32_t> nodes) const {
    if (nodes.size() == mNodes.size() || mPortals.portals().empty())
        return mView.planeOf(mGoal.mPosition);
    const Portal& last = mPortals.portals().back();
    return between(last.mLeft, last.mRight, 0.5);
}

/// Goes over to the last of the nodes ahead on whose borders the character stands. At a corner one
/// stands on all nodes around it, and others than those ahead may lie behind a thin wall.
void Corridor::passBorders() {
    const PlanePoint here = mView.planeOf(mPosition.mPosition);
    std::size_t passed = 0;
    for (const Portal& portal : mPortals.portals()) {
        const PlanePoint nearest = nearestOnSegment(here, portal.mLeft, portal.mRight);
        if (distance(here, nearest) > touch * double{mView.cubeSize()})
            break;
        ++passed;
    }
    if (passed == 0 || mPortals.portals().size() >= mNodes.size()) // there, or gaps ahead
        return;
    mNodes.resize(mNodes.size() - passed);
    const std::uint32_t node = mNodes.back();
    mPosition = {node, surfaceAt(mView, node, nearestInNode(mView, node, here))};
}

Position Corridor::nextCorner(float reached) {
    if (!hasPath() || !mPortals.lay(ahead()))
        return mPosition.mPosition;
    passBorders();
    const auto nodes = ahead();
    mPortals.lay(nodes);
    const PlanePoint here = mView.planeOf(mPosition.mPosition);
    const PlanePoint aim = aimOf(nodes);
    const Position end =
        nodes.size() == mNodes.size() ? mGoal.mPosition : surfaceAt(mView, nodes.back(), aim);
    const auto& bends = mFunnel.pull(here, aim, mPortals.portals());
    for (std::size_t i = 0; i < bends.size(); ++i) {
        const Position corner = mPortals.positionOf(bends[i]);
        const Position next = i + 1 < bends.size() ? mPortals.positionOf(bends[i + 1]) : end;
        if (!(distance(here, mView.planeOf(corner)) <= double{reached}) ||
            !canSkip(nodes.subspan(mPortals.stepOf(bends[i])), next))
            return corner;
    }
    return end;
}

/// Whether one can walk straight on to the corner behind the next one, and gets there on the nodes
/// that the way goes by: others that it lies on may be beyond a thin wall.
bool Corridor::canSkip(std::span<const std::uint32_t> behind, const Position& next) const {
    const SurfaceMove walked = walkStraight(mView, mPosition, next);
    return walked.mIsReached &&
           std::find(behind.begin(), behind.end(), walked.mPlace.mNode) != behind.end();
}

void Corridor::move(const Position& target) {
    if (!mPosition)
        return;
    const SurfaceMove walked = moveAlongSurface(mView, mPosition, target);
    makeRoom(walked);
    mPosition = walked.mPlace;
    if (hasPath())
        enter(walked);
}

/// Takes the memory for the nodes of a walk, before anything is changed.
void Corridor::makeRoom(const SurfaceMove& walked) {
    if (mNodes.capacity() < mNodes.size() + walked.mNodeCount)
        mNodes.reserve(2 * (mNodes.size() + walked.mNodeCount));
}

/// Joins the corridor from where one has walked to: at the node farthest along it that was walked
/// through, and from there back the way one came.
void Corridor::enter(const SurfaceMove& walked) {
    const std::size_t considered = std::min(mNodes.size(), SurfaceMove::maxNodes);
    for (std::size_t i = mNodes.size() - considered; i < mNodes.size(); ++i)
        for (std::size_t j = walked.mNodeCount; j-- > 0;) {
            if (walked.mNodes[j] != mNodes[i])
                continue;
            mNodes.resize(i + 1);
            for (std::size_t k = j + 1; k < walked.mNodeCount; ++k) {
                if (!mView.isLinked(walked.mNodes[k], mNodes.back())) // there is no way back
                    return loseWay();
                mNodes.push_back(walked.mNodes[k]);
            }
            return;
        }
    loseWay();
}

void Corridor::loseWay() {
    mNodes.clear();
    mNeedsSearch = true;
}

void Corridor::moveGoal(const Position& target) {
    if (!hasPath())
        return;
    const SurfaceMove walked = moveAlongSurface(mView, mGoal, target);
    if (!walked.mIsReached) {
        mNeedsSearch = true;
        return;
    }
    makeRoom(walked);
    mGoalWander += distance(mView.planeOf(mGoal.mPosition), mView.planeOf(walked.mPlace.mPosition));
    mGoal = walked.mPlace;
    // leave the corridor for the goal's new way at the node nearest to the character
    std::size_t left = 0;
    std::size_t joined = 0;
    for (std::size_t j = 0; j < walked.mNodeCount; ++j)
        for (std::size_t i = mNodes.size(); i-- > left;)
            if (mNodes[i] == walked.mNodes[j]) {
                left = i;
                joined = j;
                break;
            }
    std::reverse(mNodes.begin(), mNodes.end());
    mNodes.resize(mNodes.size() - left);
    for (std::size_t j = joined + 1; j < walked.mNodeCount; ++j)
        mNodes.push_back(walked.mNodes[j]);
    std::reverse(mNodes.begin(), mNodes.end());
    const double apart =
        distance(mView.planeOf(mPosition.mPosition), mView.planeOf(mGoal.mPosition));
    mNeedsSearch = mNeedsSearch || mGoalWander > 2 * apart + double{mView.cubeSize()} * 16;
}

void Corridor::shorten() {
    const auto nodes = ahead();
    if (nodes.size() < 3 || !mPortals.lay(nodes))
        return;
    const PlanePoint here = mView.planeOf(mPosition.mPosition);
    const auto& bends = mFunnel.pull(here, aimOf(nodes), mPortals.portals());
    if (bends.empty())
        return;
    // past the next corner, towards the one behind it
    const std::uint32_t step = mPortals.stepOf(bends.size() > 1 ? bends[1] : bends[0]);
    const Position beyond = bends.size() > 1 ? mPortals.positionOf(bends[1])
                            : nodes.size() == mNodes.size()
                                ? mGoal.mPosition
                                : surfaceAt(mView, nodes.back(), aimOf(nodes));
    const std::uint32_t target = bends.size() > 1 ? nodes[step] : nodes.back();
    const SurfaceMove walked = walkStraight(mView, mPosition, beyond);
    if (!walked.mIsReached)
        return;
    std::size_t at = mNodes.size();
    while (at > 0 && mNodes[at - 1] != walked.mPlace.mNode && mNodes[at - 1] != target)
        --at;
    if (at == 0)
        return;
    makeRoom(walked);
    const bool isSame = mNodes[at - 1] == walked.mPlace.mNode;
    if (!isSame && !mView.isLinked(walked.mPlace.mNode, mNodes[at - 1]))
        return;
    mNodes.resize(at);
    for (std::size_t i = walked.mNodeCount - (isSame ? 1 : 0); i-- > 0;)
        mNodes.push_back(walked.mNodes[i]);
}

} // namespace ZUNO::HostKit
