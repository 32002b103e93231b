#include "hostkit/scheduler.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace ZUNO::HostKit {

namespace {

constexpr unsigned int slotBits = 24; // of an id; the rest counts the requests
constexpr std::uint32_t waypointsPerSlice = 64;

std::uint32_t indexOf(RequestId id) {
    return static_cast<std::uint32_t>(id & ((1U << slotBits) - 1));
}

/// Room for `count` elements, doubled so that many calls cost little.
template <typename T>
void makeRoom(std::vector<T>& list, std::size_t count) {
    if (list.capacity() < count)
        list.reserve(std::max(count, list.capacity() * 2));
}

} // namespace

/// What is left of a frame.
class Scheduler::Frame {
public:
    Frame(const FrameBudget& budget, const SchedulerSettings& settings)
        : mBudget(budget), mClock(settings.mClock), mBegin(mClock()) {}

    bool hasLeft() const {
        return mCharged < mBudget.mExpansions &&
               (mBudget.mTime == std::chrono::nanoseconds::max() || elapsed() < mBudget.mTime);
    }
    std::uint32_t sliceOf(std::uint32_t most) const {
        return static_cast<std::uint32_t>(
            std::min<std::uint64_t>(most, mBudget.mExpansions - mCharged));
    }
    void charge(std::uint32_t expansions) { mCharged += expansions; }
    std::uint64_t charged() const { return mCharged; }
    std::chrono::nanoseconds elapsed() const { return mClock() - mBegin; }

private:
    FrameBudget mBudget;
    const std::function<std::chrono::nanoseconds()>& mClock;
    std::chrono::nanoseconds mBegin;
    std::uint64_t mCharged = 0;
};

/// Ends the frame's part before the callbacks, also when an export throws.
class Scheduler::FrameGuard {
public:
    FrameGuard(Scheduler& scheduler, const Frame& frame) : mScheduler(scheduler), mFrame(frame) {}
    FrameGuard(const FrameGuard&) = delete;
    FrameGuard& operator=(const FrameGuard&) = delete;
    ~FrameGuard() {
        SchedulerFigures& figures = mScheduler.mFigures;
        ++figures.mFrames;
        figures.mFrameTime = mFrame.elapsed();
        figures.mFrameExpansions = mFrame.charged();
        figures.mExpansions += mFrame.charged();
    }

private:
    Scheduler& mScheduler;
    const Frame& mFrame;
};

Scheduler::Scheduler(Exports& exports, SchedulerSettings settings)
    : mExports(exports), mSettings(std::move(settings)) {
    mSettings.mSlice = std::max(mSettings.mSlice, 1U);
    mSettings.mTurn = std::max(mSettings.mTurn, 1U);
    if (!mSettings.mClock)
        mSettings.mClock = steadyTime;
}

Scheduler::~Scheduler() {
    for (Slot& slot : mSlots)
        closeSearch(slot);
}

RequestId Scheduler::add(const PathRequest& request, AnswerCallback callback) {
    const std::uint32_t index = takeSlot();
    Slot& slot = mSlots[index];
    slot.mRequest = request;
    slot.mCallback = std::move(callback);
    slot.mOrder = ++mFigures.mAdded;
    open(index, mFigures.mFrames);
    return idOf(index);
}

bool Scheduler::change(RequestId id, const PathRequest& request) {
    Slot* const slot = slotOf(id);
    if (slot == nullptr || slot->mState == State::CALLING_BACK)
        return false;
    slot->mRequest = request;
    closeSearch(*slot);
    open(indexOf(id), slot->mState == State::ANSWERED ? mFigures.mFrames : slot->mFrame);
    return true;
}

bool Scheduler::cancel(RequestId id) {
    Slot* const slot = slotOf(id);
    if (slot == nullptr || slot->mState == State::CALLING_BACK)
        return false;
    if (slot->mState != State::ANSWERED)
        ++mFigures.mCancelled;
    closeSearch(*slot);
    free(indexOf(id));
    return true;
}

void Scheduler::advance(const FrameBudget& budget) {
    if (mIsAdvancing)
        throw std::logic_error("Scheduler::advance was called by a callback of its own");
    struct Advancing {
        bool& mFlag;
        explicit Advancing(bool& flag) : mFlag(flag) { mFlag = true; }
        ~Advancing() { mFlag = false; }
    } const advancing(mIsAdvancing);
    {
        Frame frame(budget, mSettings);
        const FrameGuard guard(*this, frame);
        while (!mQueue.isEmpty() && frame.hasLeft())
            step(mQueue.front(), frame);
    }
    callBack();
}

void Scheduler::step(std::uint32_t index, Frame& frame) {
    switch (mSlots[index].mState) {
    case State::WAITING:
        return start(index, frame);
    case State::RUNNING:
        return search(index, frame);
    default:
        return read(index, frame);
    }
}

void Scheduler::charge(std::uint32_t index, std::uint32_t expansions, Frame& frame) {
    Slot& slot = mSlots[index];
    frame.charge(expansions);
    slot.mAnswer.mExpansions += expansions;
    if (slot.mAnswer.mExpansions < slot.mTurnEnd)
        return;
    slot.mTurnEnd = (slot.mAnswer.mExpansions / mSettings.mTurn + 1) * mSettings.mTurn;
    mQueue.put(index, turnOf(slot), slot.mOrder);
}

void Scheduler::start(std::uint32_t index, Frame& frame) {
    Slot& slot = mSlots[index];
    slot.mSearch = mExports.initPathSearch(slot.mRequest.mStart, slot.mRequest.mGoal);
    charge(index, 1, frame);
    if (slot.mSearch == Pathfinder::noSearch)
        finish(index, PathResult::OFF_MESH);
    else
        slot.mState = State::RUNNING;
}

void Scheduler::search(std::uint32_t index, Frame& frame) {
    Slot& slot = mSlots[index];
    const std::uint32_t slice = frame.sliceOf(mSettings.mSlice);
    const int result = mExports.runPathSearch(slot.mSearch, slice);
    charge(index, slice, frame);
    if (result == Pathfinder::PATH_FOUND)
        slot.mState = State::READING;
    else if (result != Pathfinder::PATH_RUNNING)
        finish(index, PathResult::NO_PATH);
}

void Scheduler::read(std::uint32_t index, Frame& frame) {
    Slot& slot = mSlots[index];
    auto& waypoints = slot.mAnswer.mWaypoints;
    Common::Math::Vec3<float> waypoint;
    bool hasMore = true;
    for (std::uint32_t i = 0; hasMore && i < waypointsPerSlice; ++i) {
        if (waypoints.size() == waypoints.capacity()) // before the search gives one away
            waypoints.reserve(waypoints.size() * 2 + waypointsPerSlice);
        hasMore = mExports.getNextWaypoint(slot.mSearch, waypoint);
        if (hasMore)
            waypoints.push_back(waypoint);
    }
    charge(index, 1, frame);
    if (hasMore)
        return;
    slot.mAnswer.mCost = mExports.getPathCost(slot.mSearch);
    finish(index, PathResult::FOUND);
}

void Scheduler::finish(std::uint32_t index, PathResult result) {
    Slot& slot = mSlots[index];
    PathAnswer& answer = slot.mAnswer;
    if (slot.mCallback) // may throw: there is room unless callbacks threw
        mToCallBack.push_back(idOf(index));
    closeSearch(slot);
    mQueue.remove(index);
    slot.mState = State::ANSWERED;
    answer.mResult = result;
    answer.mFramesWaited = static_cast<std::uint32_t>(mFigures.mFrames - slot.mFrame + 1);
    answer.mIsLate = slot.mRequest.mDeadline != 0 && answer.mFramesWaited > slot.mRequest.mDeadline;
    ++(result == PathResult::FOUND     ? mFigures.mFound
       : result == PathResult::NO_PATH ? mFigures.mNoPath
                                       : mFigures.mOffMesh);
    mFigures.mLate += answer.mIsLate ? 1 : 0;
    mFigures.mFramesWaited += answer.mFramesWaited;
    mFigures.mMostFramesWaited = std::max(mFigures.mMostFramesWaited, answer.mFramesWaited);
}

void Scheduler::callBack() {
    // the list stays as it is while a callback throws: the next frame goes on behind it
    while (mCalledBack < mToCallBack.size()) {
        const RequestId id = mToCallBack[mCalledBack++];
        Slot* const slot = slotOf(id);
        if (slot == nullptr || slot->mState != State::ANSWERED)
            continue;
        struct Freeing {
            Scheduler& mScheduler;
            RequestId mId;
            ~Freeing() { mScheduler.free(indexOf(mId)); }
        } const freeing{*this, id};
        slot->mState = State::CALLING_BACK;
        slot->mCallback(id, slot->mAnswer);
    }
    mToCallBack.clear();
    mCalledBack = 0;
}

bool Scheduler::isOpen(RequestId id) const {
    const Slot* const slot = slotOf(id);
    return slot != nullptr && slot->mState != State::ANSWERED &&
           slot->mState != State::CALLING_BACK;
}

const PathAnswer* Scheduler::find(RequestId id) const {
    const Slot* const slot = slotOf(id);
    return slot != nullptr && slot->mState == State::ANSWERED ? &slot->mAnswer : nullptr;
}

bool Scheduler::take(RequestId id, PathAnswer& answer) {
    Slot* const slot = slotOf(id);
    if (slot == nullptr || slot->mState != State::ANSWERED)
        return false;
    std::swap(slot->mAnswer, answer);
    free(indexOf(id));
    return true;
}

void Scheduler::restart() {
    for (std::uint32_t index = 0; index < mSlots.size(); ++index) {
        Slot& slot = mSlots[index];
        if (slot.mState == State::FREE || slot.mState == State::CALLING_BACK)
            continue;
        slot.mSearch = Pathfinder::noSearch;
        open(index, slot.mFrame);
    }
}

std::uint32_t Scheduler::takeSlot() {
    if (mFreeSlots.empty()) {
        const auto index = static_cast<std::uint32_t>(mSlots.size());
        if (index >> slotBits != 0)
            throw std::length_error("Scheduler: too many requests at a time");
        mQueue.makeRoom(mSlots.size() + 1);
        makeRoom(mFreeSlots, mSlots.size() + 1);
        makeRoom(mToCallBack, mSlots.size() + 1);
        mSlots.emplace_back();
        return index;
    }
    const std::uint32_t index = mFreeSlots.back();
    mFreeSlots.pop_back();
    return index;
}

const Scheduler::Slot* Scheduler::slotOf(RequestId id) const {
    const std::uint32_t index = indexOf(id);
    if (index >= mSlots.size())
        return nullptr;
    const Slot& slot = mSlots[index];
    return slot.mState != State::FREE && slot.mOrder == id >> slotBits ? &slot : nullptr;
}

Scheduler::Slot* Scheduler::slotOf(RequestId id) {
    return const_cast<Slot*>(std::as_const(*this).slotOf(id));
}

RequestId Scheduler::idOf(std::uint32_t index) const {
    return mSlots[index].mOrder << slotBits | index;
}

std::uint64_t Scheduler::turnOf(const Slot& slot) const {
    const PathRequest& request = slot.mRequest;
    std::uint32_t patience = mSettings.mPatience[static_cast<std::size_t>(request.mPriority)];
    if (request.mDeadline != 0)
        patience = std::min(patience, request.mDeadline - 1);
    return slot.mFrame + patience + slot.mAnswer.mExpansions / mSettings.mTurn;
}

/// Lets a request begin, as one that was added in `frame`.
void Scheduler::open(std::uint32_t index, std::uint64_t frame) {
    Slot& slot = mSlots[index];
    slot.mFrame = frame;
    slot.mState = State::WAITING;
    slot.mAnswer.mStart = slot.mRequest.mStart;
    slot.mAnswer.mGoal = slot.mRequest.mGoal;
    slot.mAnswer.mWaypoints.clear();
    slot.mAnswer.mCost = 0;
    slot.mAnswer.mExpansions = 0;
    slot.mTurnEnd = mSettings.mTurn;
    mQueue.put(index, turnOf(slot), slot.mOrder);
    mFigures.mLongestQueue = std::max(mFigures.mLongestQueue, mQueue.size());
}

void Scheduler::closeSearch(Slot& slot) {
    if (slot.mSearch != Pathfinder::noSearch)
        mExports.closePathSearch(slot.mSearch);
    slot.mSearch = Pathfinder::noSearch;
}

void Scheduler::free(std::uint32_t index) {
    Slot& slot = mSlots[index];
    mQueue.remove(index);
    slot.mState = State::FREE;
    slot.mCallback = nullptr;
    mFreeSlots.push_back(index);
}

} // namespace ZUNO::HostKit
