#include "hostkit/intervalsearch.h"

#include <bit>

namespace ZUNO::HostKit {

namespace {

/// Ways of equal length to one corner come out different by rounding.
constexpr double rounding = 1 + 1e-12;

bool isLater(double a, double b) {
    return a > b;
}

} // namespace

IntervalSearch::Result IntervalSearch::run(const End& start, const End& goal, double bound,
                                           double haste, std::size_t budget,
                                           std::vector<std::uint32_t>& chain) {
    const auto later = [](const Waiting& a, const Waiting& b) {
        return isLater(a.mEstimate, b.mEstimate);
    };
    mGoal = goal;
    mBound = bound;
    mHaste = haste;
    mStates.clear();
    mRoots.clear();
    mWaiting.clear();
    const std::size_t room = std::bit_ceil(budget * 4 + 1); // a state makes two roots at most
    if (mArrivals.size() < room || ++mRun == 0) {
        mArrivals.assign(std::max(room, mArrivals.size()), Arrival{0, NO_VERTEX, 0, 0});
        mRun = 1;
    }
    begin(start);
    while (!mWaiting.empty()) {
        std::pop_heap(mWaiting.begin(), mWaiting.end(), later);
        const std::uint32_t index = mWaiting.back().mState;
        mWaiting.pop_back();
        if (mStates[index].mNode == goal.mNode) {
            writeChain(index, chain);
            return Result::FOUND;
        }
        if (mStates.size() > budget)
            return Result::EXHAUSTED;
        expand(index);
    }
    return Result::NONE;
}

void IntervalSearch::begin(const End& start) {
    mStartNode = start.mNode;
    mRoots.push_back({start.mPoint, 0, NO_VERTEX});
    for (const MeshView::Link& link : mView.linksOf(start.mNode)) {
        if (link.mBorder == NO_BORDER)
            continue;
        const MeshView::Border border = mView.borderOf(start.mNode, link);
        const Interval whole{mView.planeOf(border.mLeft), mView.planeOf(border.mRight)};
        add({{whole.mLeft, 0, border.mLeft},
             {whole.mRight, 0, border.mRight},
             0,
             noState,
             start.mNode,
             link.mTarget},
            whole);
    }
}

void IntervalSearch::expand(std::uint32_t index) {
    State state = mStates[index];
    const Root root = mRoots[state.mRoot];
    if (root.mVertex != NO_VERTEX && root.mLength > arrivalAt(root.mVertex).mLength * rounding)
        return;
    const PlanePoint toLeft = state.mLeft.mPoint - root.mPoint;
    const PlanePoint toRight = state.mRight.mPoint - root.mPoint;
    // in line with a border one sees its nearer end alone, and has to bend there
    if (state.mLeft.mVertex != NO_VERTEX && state.mRight.mVertex != NO_VERTEX &&
        turn(root.mPoint, state.mLeft.mPoint, state.mRight.mPoint) == 0 &&
        dot(toLeft, toRight) > 0) {
        const bool isLeftNearer = dot(toLeft, toLeft) < dot(toRight, toRight);
        Ray& nearer = isLeftNearer ? state.mLeft : state.mRight;
        if (!isCorner(nearer, root.mPoint))
            return;
        state.mRoot = rootAt(nearer.mVertex, isLeftNearer ? 0 : 1, nearer.mPoint, root);
        if (state.mRoot == noRoot)
            return;
        nearer.mRoot = state.mRoot; // a ray from a point to itself bounds nothing
    }
    // the roots at the interval's ends, made when the first shadow needs them
    const PlanePoint& from = mRoots[state.mRoot].mPoint;
    std::uint32_t corners[2] = {isCorner(state.mLeft, from) ? unmadeRoot : noRoot,
                                isCorner(state.mRight, from) ? unmadeRoot : noRoot};
    for (const MeshView::Link& link : mView.linksOf(state.mNode))
        if (link.mTarget != state.mFrom && link.mTarget != mStartNode && link.mBorder != NO_BORDER)
            look(state, index, corners, link);
}

void IntervalSearch::look(const State& state, std::uint32_t index, std::uint32_t (&corners)[2],
                          const MeshView::Link& link) {
    const MeshView::Border border = mView.borderOf(state.mNode, link);
    const PlanePoint left = mView.planeOf(border.mLeft);
    const PlanePoint right = mView.planeOf(border.mRight);
    const double leftOfLeft = turnFrom(state.mLeft, left);
    const double rightOfLeft = turnFrom(state.mLeft, right);
    const double leftOfRight = turnFrom(state.mRight, left);
    const double rightOfRight = turnFrom(state.mRight, right);
    // what is seen, as parts of the border from its right end to its left
    const double seenTo = rightOfLeft > 0   ? 0
                          : leftOfLeft <= 0 ? 1
                                            : rightOfLeft / (rightOfLeft - leftOfLeft);
    const double seenFrom = leftOfRight < 0     ? 1
                            : rightOfRight >= 0 ? 0
                                                : rightOfRight / (rightOfRight - leftOfRight);
    const auto addPart = [&](double first, double last, std::uint32_t root, const Ray& leftLimit,
                             const Ray& rightLimit) {
        const Ray leftRay{left, root, border.mLeft};
        const Ray rightRay{right, root, border.mRight};
        add({last < 1 ? leftLimit : leftRay, first > 0 ? rightLimit : rightRay, root, index,
             state.mNode, link.mTarget},
            {between(right, left, last), between(right, left, first)});
    };
    const auto limitOf = [](const Ray& ray) { return Ray{ray.mPoint, ray.mRoot, NO_VERTEX}; };
    const auto corner = [&](int side, const Ray& ray) {
        if (corners[side] == unmadeRoot)
            corners[side] = rootAt(ray.mVertex, side, ray.mPoint, mRoots[state.mRoot]);
        return corners[side];
    };
    if (seenFrom < seenTo)
        addPart(seenFrom, seenTo, state.mRoot, limitOf(state.mLeft), limitOf(state.mRight));
    if (seenTo < 1 && corner(0, state.mLeft) != noRoot)
        addPart(seenTo, 1, corners[0], {}, limitOf(state.mLeft));
    if (seenFrom > 0 && corner(1, state.mRight) != noRoot)
        addPart(0, seenFrom, corners[1], limitOf(state.mRight), {});
}

void IntervalSearch::add(const State& state, const Interval& interval) {
    const double length = estimate(mRoots[state.mRoot], interval);
    if (!(length < mBound))
        return;
    const double rest = length - mRoots[state.mRoot].mLength;
    mWaiting.push_back({length + mHaste * rest, static_cast<std::uint32_t>(mStates.size())});
    std::push_heap(mWaiting.begin(), mWaiting.end(), [](const Waiting& a, const Waiting& b) {
        return isLater(a.mEstimate, b.mEstimate);
    });
    mStates.push_back(state);
}

/// The least length of a way to the goal through the interval. A goal on the root's side of it is
/// as far as its mirror image on the other side.
double IntervalSearch::estimate(const Root& root, const Interval& interval) const {
    const PlanePoint& from = root.mPoint;
    const auto& [left, right] = interval;
    const PlanePoint base = left - right;
    const double rootSide = cross(base, from - right);
    const double square = dot(base, base);
    PlanePoint goal = mGoal.mPoint;
    const auto by = [&](const PlanePoint& point) {
        return root.mLength + distance(from, point) + distance(point, goal);
    };
    if (rootSide == 0) {
        if (square > 0 && dot(left - from, right - from) <= 0)
            return root.mLength + distance(from, goal);
        return by(distance(from, left) < distance(from, right) ? left : right);
    }
    const double goalSide = cross(base, goal - right);
    if (rootSide * goalSide > 0)
        goal = goal - PlanePoint{-base.mY, base.mX} * (2 * goalSide / square);
    if (cross(left - from, goal - from) > 0)
        return by(left);
    if (cross(right - from, goal - from) < 0)
        return by(right);
    return root.mLength + distance(from, goal);
}

std::uint32_t IntervalSearch::rootAt(std::uint32_t vertex, int side, const PlanePoint& point,
                                     const Root& before) {
    const double length = before.mLength + distance(before.mPoint, point);
    Arrival& arrival = arrivalAt(vertex);
    const bool isShorter = length * rounding < arrival.mLength;
    const std::uint8_t mark = side == 0 ? 1 : 2;
    if (!(length < mBound) || (!isShorter && (arrival.mSides & mark) != 0) ||
        length > arrival.mLength * rounding)
        return noRoot;
    arrival.mSides = static_cast<std::uint8_t>(isShorter ? mark : arrival.mSides | mark);
    arrival.mLength = std::min(arrival.mLength, length);
    mRoots.push_back({point, length, vertex});
    return static_cast<std::uint32_t>(mRoots.size() - 1);
}

IntervalSearch::Arrival& IntervalSearch::arrivalAt(std::uint32_t vertex) {
    const std::size_t mask = mArrivals.size() - 1;
    std::size_t at = vertex * std::size_t{0x9E3779B1} & mask;
    while (mArrivals[at].mRun == mRun && mArrivals[at].mVertex != vertex)
        at = (at + 1) & mask;
    if (mArrivals[at].mRun != mRun)
        mArrivals[at] = {std::numeric_limits<double>::infinity(), vertex, mRun, 0};
    return mArrivals[at];
}

void IntervalSearch::writeChain(std::uint32_t index, std::vector<std::uint32_t>& chain) const {
    chain.clear();
    std::uint32_t at = index;
    for (; mStates[at].mBefore != noState; at = mStates[at].mBefore)
        chain.push_back(mStates[at].mNode);
    chain.push_back(mStates[at].mNode);
    chain.push_back(mStates[at].mFrom);
    std::reverse(chain.begin(), chain.end());
}

} // namespace ZUNO::HostKit
