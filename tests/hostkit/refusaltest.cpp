// The host kit, and what else draws from `new`, when memory ends: each request is refused in turn.
#include "common/astar/astarstoragefast.h"
#include "common/interface.h"
#include "hostkit/corridor.h"
#include "hostkit/explain.h"
#include "hostkit/pathpoints.h"
#include "hostkit/replay.h"
#include "tests/hostkit/walkingworld.h"
#include "tests/support/exceptions.h"
#include "tests/support/heaprequests.h"
#include "tests/support/quiet.h"
#include "tools/picture/loadedmesh.h"

#include <sstream>

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

std::ostream& operator<<(std::ostream& out, const Position& p) {
    return out << p.mX << ' ' << p.mY << ' ' << p.mZ;
}

/// An answer in words.
template <typename... Values>
std::string words(const Values&... values) {
    std::ostringstream text;
    text.exceptions(std::ios::badbit); // else a refused request cuts the text
    ((text << values << ' '), ...);
    return text.str();
}

/// Asks for something, and gives the answer. Made anew for each refusal, and asked again after it.
using Question = std::function<std::string()>;

} // namespace

/// Files and waypoints are there before; the foundation draws from `new`, as all else does.
class RefusalTest : public testing::Test {
protected:
    RefusalTest() {
        using Common::Callback::MemoryCallback;
        Common::initLibrary(Common::SharedPtr<MemoryCallback>(new HeapMemoryCallback));
        const std::string floor = mFolder.put("floor.xml", Worlds::makeFloor(30, 3).toXML("floor"));
        mFolder.put("other.xml", Worlds::makeFloor(16, 4).toXML("other"));
        Tools::LoadedMesh(floor).save(mFolder.in("floor.bin"));
        mView.emplace(loadMeshView(floor));
        mStart = RandomPlaces(*mView).pick(1);
        mGoal = RandomPlaces(*mView).pick(5);
        const Session session(floor);
        mWaypoints = WalkingWorld::search(mStart.mPosition, mGoal.mPosition).mWaypoints;
        ChainFinder(*mView).find(mStart.mPosition, mGoal.mPosition, mWaypoints, mChain);
    }
    ~RefusalTest() override { Common::closeLibrary(); }

    /// What a path across the running world answers.
    std::string path(Exports& exports) const {
        const PathAnswer answer = WalkingWorld::search(mStart.mPosition, mGoal.mPosition, exports);
        return words(answer.mWaypoints.size(), answer.mCost);
    }

    /// Refuses the request of that number, and says whether it came to that, and how many blocks
    /// stay.
    std::pair<bool, std::size_t> refuse(std::size_t number, const std::function<Question()>& make,
                                        const std::string& right) {
        const Quiet quiet; // a world reports it, too
        const std::size_t before = heapBlocks();
        bool isReached = false;
        {
            const Question ask = make();
            std::string error = "no memory";
            std::string answer = right;
            try {
                refuseHeapRequest(number);
                error = raisedBy([&] { answer = ask(); });
            } catch (const std::bad_alloc&) {
            } catch (const std::runtime_error& shortage) {
                error = shortage.what();
            }
            isReached = refuseHeapRequest(0);
            EXPECT_EQ(answer, right);
            EXPECT_TRUE(error.empty() || error.find("emory") != std::string::npos) << error;
            EXPECT_EQ(raisedBy([&] { answer = ask(); }), "");
            EXPECT_EQ(answer, right) << "asked again";
        }
        return {isReached, heapBlocks() - before};
    }

    void survive(const std::string& name, const std::function<Question()>& make) {
        const std::string right = make()();
        std::size_t number = 0;
        for (bool isReached = true; isReached && !HasFailure();) {
            const testing::ScopedTrace trace(__FILE__, __LINE__,
                                             name + ", request " + std::to_string(++number));
            std::size_t left = 0;
            std::tie(isReached, left) = refuse(number, make, right);
            if (left != 0) { // pools may have grown, but once only
                EXPECT_EQ(refuse(number, make, right).second, 0U);
            }
        }
        EXPECT_GT(number, 2U) << name;
        std::cout << name << ": " << number - 1 << " requests\n";
    }

    TempFolder mFolder;
    std::optional<MeshView> mView;
    Place mStart;
    Place mGoal;
    std::vector<Position> mWaypoints;
    std::vector<std::uint32_t> mChain;
};

TEST_F(RefusalTest, LeavesEverythingOfUse) {
    for (const char* const mesh : {"floor.xml", "floor.bin"})
        survive("a view", [&] {
            return [&, mesh] {
                const MeshView view = loadMeshView(mFolder.in(mesh));
                return words(view.nodeCount(), view.memoryUsage().mMesh, view.islandSizes().size());
            };
        });
    survive("the surface", [&] {
        return [&] {
            const Place place = RandomPlaces(*mView).pick(7);
            return words(place.mPosition, distanceToWall(*mView, place, 50),
                         describe(*mView, explain(*mView, {-9, 0, 3}, place.mPosition)),
                         findNearestReachable(*mView, place.mPosition, {-9, 0, 3}).mNode);
        };
    });
    for (const StraightForm form : {StraightForm::PLAIN, StraightForm::IMPROVED})
        survive("straight paths", [&] {
            auto straightener = std::make_shared<PathStraightener>(*mView);
            return [&, form, straightener, straight = StraightPath{}]() mutable {
                straightener->straighten(mStart.mPosition, mGoal.mPosition, mWaypoints, form,
                                         straight);
                return words(straight.mLength, straight.mCorners.size(),
                             keepOffWalls(*mView, straight, 0.3F).back().mPosition,
                             placesAlong(*mView, straight, 1).size());
            };
        });
    survive("a corridor", [&] {
        return [&, corridor = std::make_shared<Corridor>(*mView)]() {
            corridor->place(mStart);
            corridor->follow(mChain, mGoal.mPosition);
            for (int i = 0; i < 100; ++i) {
                stepOn(*corridor, 0.5F);
                if (i % 7 == 0)
                    corridor->moveGoal(mGoal.mPosition + Position(0.1F, 0, 0.1F));
                if (i % 11 == 0)
                    corridor->move(corridor->position().mPosition + Position(1, 0, -1));
                corridor->shorten();
            }
            return words(corridor->position().mPosition, corridor->nodes().size());
        };
    });
    survive("a reload", [&] {
        auto session = std::make_shared<Session>(mFolder.in("floor.xml"));
        auto scheduler = std::make_shared<Scheduler>(session->exports());
        scheduler->add({mStart.mPosition, mGoal.mPosition});
        scheduler->advance(FrameBudget::expansions(20));
        return [&, session, scheduler, former = path(session->exports())] {
            try {
                session->reload(mFolder.in("other.xml"), scheduler.get());
            } catch (...) {
                EXPECT_EQ(path(session->exports()), former);
                throw;
            }
            return path(session->exports()) + std::to_string(scheduler->queueLength());
        };
    });
    survive("a scheduler", [&] {
        auto session = std::make_shared<Session>(mFolder.in("floor.xml"));
        return [&, session, scheduler = std::make_shared<Scheduler>(session->exports()),
                ids = std::vector<RequestId>{}]() mutable {
            ids.reserve(9);
            while (ids.size() < 9)
                ids.push_back(scheduler->add({mStart.mPosition, mGoal.mPosition}));
            while (scheduler->queueLength() != 0)
                scheduler->advance(FrameBudget::expansions(100));
            std::string answers;
            for (const RequestId id : ids)
                answers +=
                    words(scheduler->find(id)->mWaypoints.size(), scheduler->find(id)->mCost);
            return answers;
        };
    });
    survive("a plain search's records", [&] {
        using Storage = Common::Astar::AStarStorageFast;
        auto records = std::make_shared<Storage>(nullptr, Common::Memory::processHeap());
        records->initNodes(10);
        return [records] {
            try {
                records->initNodes(1000);
            } catch (...) {
                records->initNodes(5); // fewer than it had room for
                throw;
            }
            return words(records->getRecordOfNode(1000) != nullptr);
        };
    });
    survive("a recorded session", [&] {
        return [&] {
            const SessionSettings settings{.mRecording = mFolder.in("recording")};
            Session session(mFolder.in("floor.bin"), settings);
            std::string answer;
            try {
                answer = path(session.exports());
            } catch (Common::Exceptions::Exception* shortage) {
                delete shortage; // behind the session's end, the library would end what it kept
                throw std::bad_alloc();
            }
            const std::uint64_t blocks = session.close().mBlocks;
            Exports exports;
            const ReplayOutcome outcome = replay(mFolder.get("recording"), exports, {});
            return answer + words(blocks, outcome.mDifference ? "differs" : "same");
        };
    });
}

} // namespace ZUNO::Tests
