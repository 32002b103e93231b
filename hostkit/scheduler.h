#pragma once

#include "hostkit/exports.h"
#include "hostkit/pathrequest.h"
#include "hostkit/turnqueue.h"

#include <array>
#include <chrono>
#include <deque>
#include <limits>

namespace ZUNO::HostKit {

/// What a frame may spend on searching: expansions, time, or both, whichever ends first.
struct FrameBudget {
    std::uint64_t mExpansions = std::numeric_limits<std::uint64_t>::max();
    std::chrono::nanoseconds mTime = std::chrono::nanoseconds::max();

    static FrameBudget expansions(std::uint64_t count) { return {.mExpansions = count}; }
    static FrameBudget time(std::chrono::nanoseconds time) { return {.mTime = time}; }
};

struct SchedulerSettings {
    /// Units: expansions in one call of the library. Smaller ones keep closer to a budget of time;
    /// what a search does not need of its last slice is charged all the same.
    std::uint32_t mSlice = 32;
    /// Units: expansions that put a request back by one frame in the order of turns, so that short
    /// searches pass long ones. What is interrupted costs more: some 6 % with 1,024.
    std::uint32_t mTurn = 8192;
    /// Units: frames that a request without an earlier deadline may wait for later ones, by its
    /// priority.
    std::array<std::uint32_t, 3> mPatience{0, 30, 300};
    /// What the time is. Empty: the steady clock.
    std::function<std::chrono::nanoseconds()> mClock = nullptr;
};

/// What the scheduler has done so far.
struct SchedulerFigures {
    std::uint64_t mFrames = 0;
    std::uint64_t mAdded = 0;
    std::uint64_t mFound = 0;
    std::uint64_t mNoPath = 0;
    std::uint64_t mOffMesh = 0;
    std::uint64_t mCancelled = 0;          ///< before they were answered
    std::uint64_t mLate = 0;               ///< answered after their deadline
    std::uint64_t mExpansions = 0;         ///< as charged
    std::uint64_t mFramesWaited = 0;       ///< of all answers together
    std::uint32_t mMostFramesWaited = 0;   ///< of one answer
    std::size_t mLongestQueue = 0;         ///< requests open at a time
    std::uint64_t mFrameExpansions = 0;    ///< of the last frame, as charged
    std::chrono::nanoseconds mFrameTime{}; ///< of the last frame, without its callbacks
    std::uint64_t answered() const { return mFound + mNoPath + mOffMesh; }
};

/// Searches the paths of many characters within a budget for each frame.
///
/// Order: a request's turn is the frame that it was added in, plus its patience (the lesser of its
/// priority's and of its deadline), plus one for each `mTurn` expansions that it has used. The
/// lowest turn goes first, of equal ones the request that was added first.
/// Fairness: so no work is done before a request's own that was added after the frame of its turn,
/// and nobody starves: it is answered within `w / budget + 1` frames, where `w` are the expansions
/// that are charged, while it waits, to requests whose turns are not after its own.
/// Budget: a frame goes on while its budget lasts and a request is open. A budget of expansions is
/// never exceeded: each slice is charged in full, opening a search and reading a slice of waypoints
/// count one. A budget of time is exceeded by one slice at most.
/// Results: the paths are those of searches that run alone, however the frames fell.
///
/// Cost: nothing is allocated in `advance` once queue, answers and searches have reached their
/// largest size, except what a callback does.
/// Lifetime: the exports must live as long. Ends before the world does, or is told by `restart`.
/// Thread: that of the exports.
class Scheduler {
public:
    explicit Scheduler(Exports& exports, SchedulerSettings settings = {});
    /// Closes the searches that are open; requests without an answer go without one.
    ~Scheduler();
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;

    /// Adds a request. With a callback its answer is called back at the end of the frame that finds
    /// it, and is gone then; else it waits for `find` and `take`. May be called from a callback.
    RequestId add(const PathRequest& request, AnswerCallback callback = nullptr);

    /// Gives a request new points, priority or deadline. An open one keeps its frame in the order,
    /// so that a goal that moves all the time is reached all the same; an answered one that was not
    /// taken is opened anew. Returns false for an id that names none.
    bool change(RequestId id, const PathRequest& request);

    /// Closes a request, or drops its answer. Returns false for an id that names none.
    bool cancel(RequestId id);

    /// Spends a frame's budget, then calls back what was answered.
    /// Throws what the exports and callbacks throw, with everything as it was: the next frame tries
    /// again. Throws a std::logic_error when a callback calls it.
    void advance(const FrameBudget& budget);

    /// Whether the request has no answer yet.
    bool isOpen(RequestId id) const;
    /// Returns the answer, or null while there is none. Lifetime: until it is taken, changed or
    /// cancelled.
    const PathAnswer* find(RequestId id) const;
    /// Swaps the answer out, for one whose storage is used again, and forgets the request. Returns
    /// false, and leaves `answer` as it was, while there is none.
    bool take(RequestId id, PathAnswer& answer);

    /// To be called when a new world has taken the old one's place: all searches are gone, and
    /// every request that is open or not taken is asked of the new one by its points.
    void restart();

    /// The requests that are open.
    std::size_t queueLength() const { return mQueue.size(); }
    const SchedulerFigures& figures() const { return mFigures; }

private:
    static std::chrono::nanoseconds steadyTime();

    enum class State : std::uint8_t { FREE, WAITING, RUNNING, READING, ANSWERED, CALLING_BACK };
    struct Slot {
        PathRequest mRequest;
        PathAnswer mAnswer;
        AnswerCallback mCallback;
        std::uint64_t mOrder = 0;   ///< of being added; the id's upper part
        std::uint64_t mFrame = 0;   ///< in which it was added
        std::uint64_t mTurnEnd = 0; ///< the expansions that put it back by a frame
        int mSearch = Pathfinder::noSearch;
        State mState = State::FREE;
    };
    class Frame;
    class FrameGuard;

    std::uint32_t takeSlot();
    const Slot* slotOf(RequestId id) const;
    Slot* slotOf(RequestId id);
    RequestId idOf(std::uint32_t index) const;
    std::uint64_t turnOf(const Slot& slot) const;

    void open(std::uint32_t index, std::uint64_t frame);
    void closeSearch(Slot& slot);
    void free(std::uint32_t index);

    void step(std::uint32_t index, Frame& frame);
    void charge(std::uint32_t index, std::uint32_t expansions, Frame& frame);
    void start(std::uint32_t index, Frame& frame);
    void search(std::uint32_t index, Frame& frame);
    void read(std::uint32_t index, Frame& frame);
    void finish(std::uint32_t index, PathResult result);
    void callBack();

    Exports& mExports;
    SchedulerSettings mSettings;
    std::deque<Slot> mSlots; ///< stays in place when callbacks add requests
    std::vector<std::uint32_t> mFreeSlots;
    std::vector<RequestId> mToCallBack; ///< answered, in their order
    TurnQueue mQueue;                   ///< of the slots without an answer
    SchedulerFigures mFigures;
    std::size_t mCalledBack = 0; ///< how many of them are done
    bool mIsAdvancing = false;
};

} // namespace ZUNO::HostKit
