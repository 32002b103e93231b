#include "hostkit/straightpath.h"

#include "hostkit/surface.h"

namespace ZUNO::HostKit {

namespace {

/// Whether two positions differ by no more than rounding to float does.
bool isSamePlace(const Position& a, const Position& b) {
    constexpr float error = 4.0F / (1 << 24);
    return std::abs(a.mX - b.mX) <= error * std::abs(a.mX) &&
           std::abs(a.mY - b.mY) <= error * std::abs(a.mY) &&
           std::abs(a.mZ - b.mZ) <= error * std::abs(a.mZ);
}

} // namespace

double planeLength(const MeshView& view, const StraightPath& path) {
    double length = 0;
    for (std::size_t i = 1; i < path.mCorners.size(); ++i)
        length += distance(view.planeOf(path.mCorners[i - 1].mPosition),
                           view.planeOf(path.mCorners[i].mPosition));
    return length;
}

bool PathStraightener::straighten(const Position& start, const Position& goal,
                                  const std::vector<Position>& waypoints, StraightForm form,
                                  StraightPath& path) {
    mChains.find(start, goal, waypoints, path.mChain);
    return straightenChain(start, goal, path.mChain, form, path);
}

bool PathStraightener::straightenChain(const Position& start, const Position& goal,
                                       const std::vector<std::uint32_t>& chain, StraightForm form,
                                       StraightPath& path) {
    path.mChain = chain;
    path.mCorners.clear();
    path.mLength = 0;
    const bool isOnMesh = !chain.empty() && isFinite(start) && isFinite(goal) &&
                          std::all_of(chain.begin(), chain.end(),
                                      [&](std::uint32_t node) { return node < mView.nodeCount(); });
    if (isOnMesh) {
        mStart = nearestInNode(mView, chain.front(), mView.planeOf(start));
        mGoal = nearestInNode(mView, chain.back(), mView.planeOf(goal));
    }
    if (!isOnMesh || !pull(path)) {
        path.mChain.clear();
        return false;
    }
    if (form == StraightForm::IMPROVED)
        improve(path);
    return true;
}

bool PathStraightener::pull(StraightPath& path) {
    if (!mPortals.lay(path.mChain))
        return false;
    path.mCorners.clear();
    path.mLength = 0;
    addCorner(surfaceAt(mView, path.mChain.front(), mStart), 0, path);
    for (const Funnel::Bend& bend : mFunnel.pull(mStart, mGoal, mPortals.portals()))
        addCorner(mPortals.positionOf(bend), mPortals.stepOf(bend), path);
    const Position goal = surfaceAt(mView, path.mChain.back(), mGoal);
    // the goal is the last corner, and takes the place of one that lies there
    if (path.mCorners.size() > 1 && isSamePlace(path.mCorners.back().mPosition, goal))
        path.mCorners.pop_back();
    addCorner(goal, static_cast<std::uint32_t>(path.mChain.size() - 1), path);
    for (std::size_t i = 1; i < path.mCorners.size(); ++i)
        path.mLength +=
            std::sqrt(squareDistance(path.mCorners[i - 1].mPosition, path.mCorners[i].mPosition));
    return true;
}

void PathStraightener::addCorner(const Position& position, std::uint32_t step,
                                 StraightPath& path) const {
    if (!path.mCorners.empty() && isSamePlace(path.mCorners.back().mPosition, position))
        path.mCorners.back().mStep = step;
    else
        path.mCorners.push_back({position, step});
}

void PathStraightener::improve(StraightPath& path) {
    constexpr std::size_t leastBudget = 700;
    constexpr std::size_t budgetPerNode = 8;
    constexpr std::size_t partBudget = 200;
    constexpr std::size_t partCorners = 4;
    cutCorners(path);
    if (path.mCorners.size() <= 2 || improvePart(path, 0, path.mCorners.size() - 1,
                                                 leastBudget + budgetPerNode * path.mChain.size()))
        return;
    for (std::size_t first = 0; first + 2 < path.mCorners.size(); first += partCorners / 2)
        improvePart(path, first, std::min(first + partCorners, path.mCorners.size() - 1),
                    partBudget);
    cutCorners(path);
}

/// Leaves out corners that bend in the open, for no wall but for the nodes' borders.
void PathStraightener::cutCorners(StraightPath& path) {
    for (std::size_t i = 1; i + 1 < path.mCorners.size();) {
        const StraightPath::Corner& before = path.mCorners[i - 1];
        const StraightPath::Corner& behind = path.mCorners[i + 1];
        const SurfaceMove walked =
            walkStraight(mView, {path.mChain[before.mStep], before.mPosition}, behind.mPosition);
        if (!walked.mIsReached || !joinDetour(path, walked, before.mStep, behind.mStep) ||
            !replacePart(path, before.mStep, behind.mStep))
            ++i;
    }
}

/// Makes a detour of a straight walk, and of what is left of a part of the chain where the two
/// meet: around a corner there are more nodes than one.
bool PathStraightener::joinDetour(const StraightPath& path, const SurfaceMove& walked,
                                  std::uint32_t from, std::uint32_t to) {
    const std::uint32_t last = walked.mPlace.mNode;
    std::uint32_t joined = to;
    while (joined > from && path.mChain[joined] != last &&
           !mView.isLinked(last, path.mChain[joined]))
        --joined;
    mDetour.assign(walked.mNodes.begin(),
                   walked.mNodes.begin() + static_cast<std::ptrdiff_t>(walked.mNodeCount));
    if (path.mChain[joined] == last)
        mDetour.pop_back();
    const auto rest = std::span(path.mChain).subspan(joined, to + 1 - joined);
    mDetour.insert(mDetour.end(), rest.begin(), rest.end());
    return joined > from;
}

/// Takes the detour instead of a part of the chain, if that makes the path shorter.
bool PathStraightener::replacePart(StraightPath& path, std::uint32_t from, std::uint32_t to) {
    const std::span chain(path.mChain);
    mCandidate.mChain.assign(chain.begin(), chain.first(from).end());
    mCandidate.mChain.insert(mCandidate.mChain.end(), mDetour.begin(), mDetour.end());
    mCandidate.mChain.insert(mCandidate.mChain.end(), chain.subspan(to + 1).begin(), chain.end());
    if (!pull(mCandidate) || !(mCandidate.mLength < path.mLength))
        return false;
    std::swap(mCandidate, path);
    return true;
}

bool PathStraightener::improvePart(StraightPath& path, std::size_t first, std::size_t last,
                                   std::size_t budget) {
    const auto pointOf = [&](std::size_t corner) {
        return corner == 0 ? mStart
               : corner == path.mCorners.size() - 1
                   ? mGoal
                   : mView.planeOf(path.mCorners[corner].mPosition);
    };
    double length = 0;
    for (std::size_t i = first + 1; i <= last; ++i)
        length += distance(pointOf(i - 1), pointOf(i));
    const std::uint32_t from = path.mCorners[first].mStep;
    const std::uint32_t to = path.mCorners[last].mStep;
    constexpr double worthwhile = 0.995;
    constexpr double haste = 0.05;
    const IntervalSearch::Result result =
        mSearch.run({path.mChain[from], pointOf(first)}, {path.mChain[to], pointOf(last)},
                    length * worthwhile, haste, budget, mDetour);
    if (result != IntervalSearch::Result::FOUND)
        return result == IntervalSearch::Result::NONE;
    replacePart(path, from, to);
    return true;
}

} // namespace ZUNO::HostKit
