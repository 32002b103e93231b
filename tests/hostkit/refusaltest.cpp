// The host kit when memory ends: each request of `new` is refused in turn.
#include "common/callback/openstream.h"
#include "common/interface.h"
#include "hostkit/corridor.h"
#include "hostkit/explain.h"
#include "hostkit/pathpoints.h"
#include "hostkit/recorder.h"
#include "hostkit/replay.h"
#include "tests/hostkit/walkingworld.h"
#include "tests/support/exceptions.h"
#include "tests/support/heaprequests.h"
#include "tests/support/quiet.h"

#include <sstream>

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

std::ostream& operator<<(std::ostream& out, const Position& p) {
    return out << p.mX << ' ' << p.mY << ' ' << p.mZ << ' ';
}

/// An answer in words.
class Words {
public:
    Words() { mText.exceptions(std::ios::badbit); } // else a refused request cuts the text
    template <typename T>
    Words& operator<<(const T& value) {
        mText << value << ' ';
        return *this;
    }
    std::string text() const { return mText.str(); }

private:
    std::ostringstream mText;
};

/// Asks for something, and gives the answer. Made anew for each refusal, and asked again after it.
using Question = std::function<std::string()>;

} // namespace

/// Files and waypoints are there before; the foundation draws from `new`, as all else does.
class RefusalTest : public testing::Test {
protected:
    RefusalTest() {
        using Common::Callback::MemoryCallback;
        Common::initLibrary(Common::SharedPtr<MemoryCallback>(new HeapMemoryCallback));
        const Worlds::MeshModel floor = Worlds::makeFloor(60, 3);
        mFolder.put("floor.xml", floor.toXML("floor"));
        mFolder.put("other.xml", Worlds::makeFloor(30, 4).toXML("other"));
        const MeshFiles files(new StdioFileCallback);
        readMesh(mFolder.in("floor.xml"), files)
            ->writeBinary(Common::Callback::openStream(Common::getAllocator(), files,
                                                       mFolder.in("floor.bin").c_str(),
                                                       Common::IO::FACCESS_WRITE),
                          1);
        mView.emplace(loadMeshView(mFolder.in("floor.xml")));
        mStart = RandomPlaces(*mView).pick(1);
        mGoal = RandomPlaces(*mView).pick(5);
        Session session(mFolder.in("floor.xml"));
        mWaypoints = *WalkingWorld::search(mStart.mPosition, mGoal.mPosition);
        ChainFinder(*mView).find(mStart.mPosition, mGoal.mPosition, mWaypoints, mChain);
    }
    ~RefusalTest() override { Common::closeLibrary(); }

    /// What a path across the running world answers.
    std::string path(Exports& exports) const {
        Words words;
        const int search = exports.initPathSearch(mStart.mPosition, mGoal.mPosition);
        if (search >= 0)
            words << exports.runPathSearch(search, 100000) << exports.getPathCost(search);
        exports.closePathSearch(search);
        return words.text();
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
    const auto load = [&](const char* name) -> Question {
        return [this, name] {
            const MeshView view = loadMeshView(mFolder.in(name));
            return (Words() << view.nodeCount() << view.memoryUsage().mMesh
                            << view.islandSizes().size())
                .text();
        };
    };
    survive("a view", [&] { return load("floor.xml"); });
    survive("a view of the binary form", [&] { return load("floor.bin"); });
    survive("the surface", [&] {
        return [&] {
            const Place place = RandomPlaces(*mView).pick(7);
            return (Words() << place.mPosition << distanceToWall(*mView, place, 50)
                            << describe(*mView, explain(*mView, {-9, 0, 3}, place.mPosition))
                            << findNearestReachable(*mView, place.mPosition, {-9, 0, 3}).mNode)
                .text();
        };
    });
    for (const StraightForm form : {StraightForm::PLAIN, StraightForm::IMPROVED})
        survive("straight paths", [&] {
            auto straightener = std::make_shared<PathStraightener>(*mView);
            return [&, form, straightener, straight = StraightPath{}]() mutable {
                straightener->straighten(mStart.mPosition, mGoal.mPosition, mWaypoints, form,
                                         straight);
                return (Words() << straight.mLength << straight.mCorners.size()
                                << keepOffWalls(*mView, straight, 0.3F).back().mPosition
                                << placesAlong(*mView, straight, 1).size())
                    .text();
            };
        });
    survive("a corridor", [&] {
        return [&, corridor = std::make_shared<Corridor>(*mView)]() {
            corridor->place(mStart);
            corridor->follow(mChain, mGoal.mPosition);
            Words words;
            for (int i = 0; i < 100; ++i) {
                const Position way = corridor->nextCorner(0.1F) - corridor->position().mPosition;
                const float part = 0.5F / std::max(length(way), 0.5F);
                corridor->move(corridor->position().mPosition +
                               Position(way.mX * part, 0, way.mZ * part));
                if (i % 7 == 0)
                    corridor->moveGoal(mGoal.mPosition + Position(0.1F, 0, 0.1F));
                if (i % 11 == 0)
                    corridor->move(corridor->position().mPosition + Position(1, 0, -1));
                corridor->shorten();
            }
            return (words << corridor->position().mPosition << corridor->nodes().size()).text();
        };
    });
    for (const char* const mesh : {"floor.xml", "floor.bin"})
        survive("a session", [&] {
            return [&, mesh] {
                Session session(mFolder.in(mesh));
                const std::string answer = path(session.exports());
                return answer + std::to_string(session.close().mBlocks);
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
            Words words;
            for (const RequestId id : ids)
                words << scheduler->find(id)->mWaypoints.size() << scheduler->find(id)->mCost;
            return words.text();
        };
    });
    survive("a recorder", [&] {
        return [&] {
            const Exports::Files files(new StdioFileCallback);
            const Exports::Memory memory(new HeapMemoryCallback);
            std::string answer;
            {
                Recorder recorder(mFolder.in("recording"));
                const std::unique_ptr<Exports, void (*)(Exports*)> closing(
                    &recorder, [](Exports* open) { open->close(); });
                if (!recorder.initWorldRepresentation(mFolder.in("floor.xml").c_str(), memory,
                                                      files, ""))
                    throw std::runtime_error("no memory for a world");
                answer = path(recorder);
            }
            Exports exports;
            const ReplayOutcome outcome = replay(mFolder.get("recording"), exports, {});
            return answer + (outcome.mDifference ? "differs" : "same");
        };
    });
}

} // namespace ZUNO::Tests
