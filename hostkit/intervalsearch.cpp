#include "hostkit/intervalsearch.h"

namespace ZUNO::HostKit {

namespace {

/// Ways of equal length to one corner come out different by rounding.
constexpr double rounding = 1 + 1e-12;

} // namespace

IntervalSearch::Result IntervalSearch::run(const End& start, const End& goal, double bound,
                                           double haste, std::size_t budget,
                                           std::vector<std::uint32_t>& chain) {
    mGoal = goal;
    mBound = bound;
    mHaste = haste;
    mStates.clear();
    mRoots.clear();
    mWaiting.clear();
    mArrivalCount = 0;
    if (mArrivals.empty() || ++mRun == 0) {
        mArrivals.assign(std::max(mArrivals.size(), fewestArrivals), Arrival{});
        mRun = 1;
    }
    begin(start);
    while (!mWaiting.empty()) {
        std::pop_heap(mWaiting.begin(), mWaiting.end(), isLater);
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
        turn(toLeft, toRight) == 0 && dot(toLeft, toRight) > 0) {
        const bool isLeftNearer = dot(toLeft, toLeft) < dot(toRight, toRight);
        Ray& nearer = isLeftNearer ? state.mLeft : state.mRight;
        if (!isCorner(nearer, root.mPoint))
            return;
        state.mRoot = rootAt(nearer.mVertex, isLeftNearer ? 0 : 1, nearer.mPoint, root);
        if (state.mRoot == noRoot)
            return;
        nearer.mRoot = state.mRoot; // a ray from a point to itself bounds nothing
    }
    // the roots at the interval's ends are made when the first shadow needs them
    const PlanePoint& from = mRoots[state.mRoot].mPoint;
    Sight sight{state,
                index,
                lineOf(state.mLeft),
                lineOf(state.mRight),
                {isCorner(state.mLeft, from) ? unmadeRoot : noRoot,
                 isCorner(state.mRight, from) ? unmadeRoot : noRoot}};
    for (const MeshView::Link& link : mView.linksOf(state.mNode))
        if (link.mTarget != state.mFrom && link.mTarget != mStartNode && link.mBorder != NO_BORDER)
            look(sight, link);
}

void IntervalSearch::look(Sight& sight, const MeshView::Link& link) {
    const State& state = sight.mState;
    const MeshView::Border border = mView.borderOf(state.mNode, link);
    const PlanePoint left = mView.planeOf(border.mLeft);
    const PlanePoint right = mView.planeOf(border.mRight);
    // what is seen, as parts of the border from its right end to its left
    double seenTo = 0;
    if (const double rightOfLeft = sight.mLeft.turnTo(right); !(rightOfLeft > 0)) {
        const double leftOfLeft = sight.mLeft.turnTo(left);
        seenTo = leftOfLeft <= 0 ? 1 : rightOfLeft / (rightOfLeft - leftOfLeft);
    } else if (sight.mCorners[0] == noRoot && sight.mCorners[1] == noRoot) {
        return; // beside what is seen, and there is no corner to bend around
    }
    double seenFrom = 1;
    if (const double leftOfRight = sight.mRight.turnTo(left); !(leftOfRight < 0)) {
        const double rightOfRight = sight.mRight.turnTo(right);
        seenFrom = rightOfRight >= 0 ? 0 : rightOfRight / (rightOfRight - leftOfRight);
    }
    const auto addPart = [&](double first, double last, std::uint32_t root, const Ray& leftLimit,
                             const Ray& rightLimit) {
        const Ray leftRay{left, root, border.mLeft};
        const Ray rightRay{right, root, border.mRight};
        add({last < 1 ? leftLimit : leftRay, first > 0 ? rightLimit : rightRay, root, sight.mIndex,
             state.mNode, link.mTarget},
            {between(right, left, last), between(right, left, first)});
    };
    const auto limitOf = [](const Ray& ray) { return Ray{ray.mPoint, ray.mRoot, NO_VERTEX}; };
    const auto corner = [&](int side, const Ray& ray) {
        std::uint32_t& root = sight.mCorners[side];
        if (root == unmadeRoot)
            root = rootAt(ray.mVertex, side, ray.mPoint, mRoots[state.mRoot]);
        return root;
    };
    if (seenFrom < seenTo)
        addPart(seenFrom, seenTo, state.mRoot, limitOf(state.mLeft), limitOf(state.mRight));
    if (seenTo < 1 && corner(0, state.mLeft) != noRoot)
        addPart(seenTo, 1, sight.mCorners[0], {}, limitOf(state.mLeft));
    if (seenFrom > 0 && corner(1, state.mRight) != noRoot)
        addPart(0, seenFrom, sight.mCorners[1], limitOf(state.mRight), {});
}

void IntervalSearch::add(const State& state, const Interval& interval) {
    const double length = estimate(mRoots[state.mRoot], interval);
    if (!(length < mBound))
        return;
    const double rest = length - mRoots[state.mRoot].mLength;
    mWaiting.push_back({length + mHaste * rest, static_cast<std::uint32_t>(mStates.size())});
    std::push_heap(mWaiting.begin(), mWaiting.end(), isLater);
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
    Arrival* arrival = &slotOf(vertex);
    if (arrival->mRun == mRun)
        return *arrival;
    if (2 * mArrivalCount >= mArrivals.size()) {
        growArrivals();
        arrival = &slotOf(vertex);
    }
    ++mArrivalCount;
    *arrival = {std::numeric_limits<double>::infinity(), vertex, mRun, 0};
    return *arrival;
}

/// Where a vertex's arrival is, or has to be made.
IntervalSearch::Arrival& IntervalSearch::slotOf(std::uint32_t vertex) {
    const std::size_t mask = mArrivals.size() - 1;
    std::size_t at = vertex * std::size_t{0x9E3779B1} & mask;
    while (mArrivals[at].mRun == mRun && mArrivals[at].mVertex != vertex)
        at = (at + 1) & mask;
    return mArrivals[at];
}

void IntervalSearch::growArrivals() {
    std::vector<Arrival> former(mArrivals.size() * 2);
    mArrivals.swap(former);
    for (const Arrival& arrival : former)
        if (arrival.mRun == mRun)
            slotOf(arrival.mVertex) = arrival;
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
