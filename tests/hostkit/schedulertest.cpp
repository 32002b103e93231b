#include "hostkit/scheduler.h"
#include "tests/host/hosttest.h"
#include "tests/hostkit/walkingworld.h"
#include "tests/support/heaprequests.h"

#include <algorithm>
#include <array>
#include <map>
#include <random>

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

/// A world whose searches take as many expansions as the goal's x says, and a microsecond each.
class CostlyExports : public Exports {
public:
    int initPathSearch(const Vec3& start, const Vec3& goal) override {
        auto search = std::ranges::find(mSearches, false, &Search::mIsOpen);
        if (search == mSearches.end())
            search = mSearches.insert(search, Search{});
        *search = {true, static_cast<unsigned int>(goal.mX), static_cast<std::size_t>(start.mX)};
        return static_cast<int>(search - mSearches.begin());
    }
    int runPathSearch(int id, unsigned int budget) override {
        Search& search = mSearches.at(static_cast<std::size_t>(id));
        const unsigned int done = std::min(search.mLeft, budget);
        search.mLeft -= done;
        mExpansions += done;
        mNow += std::chrono::microseconds(done);
        if (mOnSlice)
            mOnSlice(search.mCharacter, budget);
        return search.mLeft == 0 ? 2 : 1;
    }
    bool closePathSearch(int id) override {
        Search& search = mSearches.at(static_cast<std::size_t>(id));
        search.mIsOpen = false;
        if (mOnClose)
            mOnClose(search.mCharacter);
        return true;
    }
    auto openCount() const { return std::ranges::count(mSearches, true, &Search::mIsOpen); }

    std::function<void(std::size_t, unsigned int)> mOnSlice; ///< the character, and its expansions
    std::function<void(std::size_t)> mOnClose;
    std::uint64_t mExpansions = 0;
    std::chrono::nanoseconds mNow{0};

private:
    struct Search {
        bool mIsOpen = false;
        unsigned int mLeft = 0; ///< expansions
        std::size_t mCharacter = 0;
    };
    std::vector<Search> mSearches;
};

PathRequest costing(unsigned int expansions, Priority priority = Priority::NORMAL,
                    unsigned int deadline = 0, std::size_t character = 0) {
    return {{static_cast<float>(character), 0, 0},
            {static_cast<float>(expansions), 0, 0},
            priority,
            deadline};
}

} // namespace

TEST(SchedulerTest, GivesEachSliceToTheRequestWhoseTurnItIs) {
    // an account of its own: what each character asked for, when, and what it was charged
    struct Account {
        RequestId mId = 0;
        std::uint64_t mDue = 0;
        std::uint64_t mCharged = 1; // for being opened
        std::uint64_t mLast = 0;    // the frame of its deadline
        std::pair<std::uint64_t, RequestId> turn() const { return {mDue + mCharged / 100, mId}; }
    };
    std::map<std::size_t, Account> open;
    CostlyExports exports;
    Scheduler scheduler(exports, {.mSlice = 10, .mTurn = 100});
    unsigned int slices = 0;
    unsigned int outOfTurn = 0;
    unsigned int late = 0;
    std::uint64_t frame = 0;
    exports.mOnSlice = [&](std::size_t character, unsigned int slice) {
        Account& served = open[character];
        for (const auto& [other, account] : open)
            outOfTurn += account.turn() < served.turn() ? 1 : 0;
        served.mCharged += slice;
        ++slices;
    };
    exports.mOnClose = [&](std::size_t character) {
        late += frame > open[character].mLast ? 1 : 0;
        open.erase(character);
    };
    std::mt19937 random(5);
    const auto below = [&](unsigned int count) {
        return static_cast<unsigned int>(random() % count);
    };
    for (; frame < 600; ++frame) {
        for (std::size_t character = 0; character < 40; ++character) {
            if (open.contains(character) || below(2) == 0)
                continue;
            const unsigned int deadline = below(3) == 0 ? 1 + below(20) : 0;
            const unsigned int priority = below(3);
            const unsigned int patience = std::array{0U, 30U, 300U}[priority];
            const RequestId id = scheduler.add(
                costing(1 + below(900), static_cast<Priority>(priority), deadline, character));
            open[character] = {
                id, frame + (deadline != 0 ? std::min(patience, deadline - 1) : patience), 1,
                deadline != 0 ? frame + deadline - 1 : ~0ULL};
        }
        scheduler.advance(FrameBudget::expansions(1000));
    }
    EXPECT_EQ(outOfTurn, 0U) << "of " << slices;
    EXPECT_GT(scheduler.figures().answered(), 1000U);
    EXPECT_EQ(scheduler.figures().mLate, late);
    EXPECT_GT(late, 0U) << "the load should be too much for some";
}

TEST(SchedulerTest, KeepsToItsBudgetAndStarvesNobody) {
    constexpr unsigned int agents = 1000;
    constexpr unsigned int dearest = 2000;
    constexpr unsigned int budget = 5000;
    for (const bool isTimed : {false, true}) {
        CostlyExports exports;
        Scheduler scheduler(exports, {.mClock = [&] { return exports.mNow; }});
        const FrameBudget frameBudget = isTimed
                                            ? FrameBudget::time(std::chrono::microseconds(budget))
                                            : FrameBudget::expansions(budget);
        std::mt19937 random(7);
        const auto request = [&] {
            const auto expansions = static_cast<unsigned int>(1 + random() % dearest);
            return costing(expansions, static_cast<Priority>(random() % 3));
        };
        std::vector<RequestId> ids(agents);
        for (RequestId& id : ids)
            id = scheduler.add(request());
        PathAnswer answer;
        std::size_t heapBefore = 0;
        for (unsigned int frame = 0; frame < 10000; ++frame) {
            if (frame == 2000)
                heapBefore = heapRequests();
            const std::uint64_t before = exports.mExpansions;
            scheduler.advance(frameBudget);
            const auto spent = exports.mExpansions - before;
            ASSERT_LE(spent, budget + (isTimed ? 31 : 0)) << "frame " << frame;
            ASSERT_GE(isTimed ? spent : scheduler.figures().mFrameExpansions, budget);
            for (RequestId& id : ids) {
                if (!scheduler.take(id, answer))
                    continue;
                // before its turn came at the latest; then one request of each agent goes before
                const unsigned int turn = 300 + dearest / 1024 + 1;
                ASSERT_LE(answer.mFramesWaited, turn + agents * (dearest + 64) / budget + 1);
                id = scheduler.add(request());
            }
        }
        EXPECT_EQ(heapRequests(), heapBefore);
        EXPECT_GT(scheduler.figures().answered(), 40000U);
        EXPECT_EQ(scheduler.queueLength(), agents);
    }
}

TEST(SchedulerTest, CallbacksMayDoWhatTheyLike) {
    CostlyExports exports;
    std::vector<RequestId> answered;
    {
        Scheduler scheduler(exports);
        RequestId second = 0;
        RequestId third = 0;
        const auto note = [&](RequestId id, PathAnswer&) { answered.push_back(id); };
        const RequestId first = scheduler.add(costing(1), [&](RequestId id, PathAnswer& answer) {
            note(id, answer);
            EXPECT_EQ(answer.mResult, PathResult::NO_PATH);
            EXPECT_FALSE(scheduler.cancel(id) || scheduler.change(id, {}) || scheduler.isOpen(id));
            EXPECT_TRUE(scheduler.cancel(second));
            for (int i = 0; i < 100; ++i) // more room is needed while the answer is looked at
                third = scheduler.add(costing(1));
            EXPECT_EQ(answer.mGoal.mX, 1.0F);
            EXPECT_THROW(scheduler.advance(FrameBudget::expansions(1)), std::logic_error);
        });
        second = scheduler.add(costing(1), note);
        scheduler.add(costing(1), [](RequestId, PathAnswer&) { throw std::runtime_error("host"); });
        const RequestId last = scheduler.add(costing(1), note);
        EXPECT_THROW(scheduler.advance(FrameBudget::expansions(1000)), std::runtime_error);
        EXPECT_EQ(answered, std::vector<RequestId>{first});
        scheduler.advance(FrameBudget::expansions(50)); // the callback that is left, and some more
        EXPECT_EQ(answered, (std::vector<RequestId>{first, last}));
        EXPECT_FALSE(scheduler.find(third));
        scheduler.advance(FrameBudget::expansions(10000));
        EXPECT_TRUE(scheduler.find(third));
        scheduler.add(costing(5000));
        scheduler.advance(FrameBudget::expansions(500));
        EXPECT_EQ(exports.openCount(), 1);
    }
    EXPECT_EQ(exports.openCount(), 0) << "a scheduler closes what it opened";
}

using SchedulingTest = HostTest;

TEST_F(SchedulingTest, PathsDontDependOnHowFramesFall) {
    const Worlds::MeshModel floor = Worlds::makeFloor(1500, 5);
    mFiles->mFiles["floor"] = floor.toXML("floor");
    ASSERT_TRUE(start());
    const auto places = Worlds::placesOn(floor);
    std::mt19937 random(3);
    const auto place = [&] {
        const auto& [x, y, z] = places[random() % places.size()];
        return Position(x, random() % 30 == 0 ? 99 : y, z);
    };
    std::vector<PathRequest> requests(120);
    for (PathRequest& request : requests)
        request = {place(), place(), static_cast<Priority>(random() % 3), 0};
    Exports exports;
    const auto pathOf = [](const PathAnswer& answer) {
        return std::tuple(answer.mResult, answer.mCost, answer.mWaypoints);
    };
    using Path = std::tuple<PathResult, float, std::vector<Position>>;
    const auto pathsOf = [&](const FrameBudget& budget, std::uint32_t slice) {
        Scheduler scheduler(exports, {.mSlice = slice, .mTurn = 50});
        std::vector<RequestId> ids;
        unsigned int cancelled = 0; // without an answer
        for (const PathRequest& request : requests) {
            const RequestId wrong = scheduler.add({request.mGoal, request.mStart});
            ids.push_back(scheduler.add({request.mGoal, request.mGoal}));
            scheduler.advance(budget);
            EXPECT_TRUE(scheduler.change(ids.back(), request));
            scheduler.advance(budget);
            cancelled += scheduler.isOpen(wrong) ? 1 : 0;
            scheduler.cancel(wrong);
            if (random() % 40 == 0) { // a new world in the old one's place
                Interface::close();
                EXPECT_TRUE(start());
                scheduler.restart();
            }
        }
        while (scheduler.queueLength() != 0)
            scheduler.advance(budget);
        EXPECT_EQ(scheduler.figures().mCancelled, cancelled);
        std::vector<Path> paths;
        PathAnswer answer;
        for (const RequestId id : ids) {
            EXPECT_TRUE(scheduler.take(id, answer));
            paths.push_back(pathOf(answer));
        }
        return paths;
    };
    std::vector<Path> alone;
    for (const PathRequest& request : requests)
        alone.push_back(pathOf(WalkingWorld::search(request.mStart, request.mGoal)));
    EXPECT_EQ(pathsOf(FrameBudget::expansions(7), 3), alone);
    EXPECT_EQ(pathsOf(FrameBudget::expansions(100000), 64), alone);
    EXPECT_EQ(pathsOf(FrameBudget::time(std::chrono::microseconds(20)), 16), alone);
}

} // namespace ZUNO::Tests
