// Any mesh and any calls, by the exports, the host kit and the plain forms: every answer has the
// same bits, whatever memory was refused in between.
#include "common/exceptions/memoryexceptions.h"
#include "fuzz/anymesh.h"
#include "hostkit/foundation.h"
#include "hostkit/meshfile.h"
#include "hostkit/meshview.h"
#include "hostkit/scheduler.h"
#include "hostkit/straightpath.h"
#include "navmesh/meshdefects.h"
#include "reference/comparison.h"
#include "reference/plainworld.h"

#include <concepts>
#include <optional>

using namespace ZUNO;
using Pathfinder::Interface;

namespace {

using Point2 = Fuzz::AnyMesh::Point2;
using Point3 = Fuzz::AnyMesh::Point3;
using MeshPtr = Common::SharedPtr<NavMesh::NavMeshContainer>;

void expectSame(const char* what, float value, float expected) {
    if (!Reference::isSame(value, expected))
        std::fprintf(stderr, "%.9g for %.9g: ", double{value}, double{expected});
    Fuzz::require(Reference::isSame(value, expected), what);
}
template <std::integral T, std::integral Expected>
void expectSame(const char* what, T value, Expected expected) {
    const auto a = static_cast<long long>(value);
    const auto b = static_cast<long long>(expected);
    if (a != b)
        std::fprintf(stderr, "%lld for %lld: ", a, b);
    Fuzz::require(a == b, what);
}
void expectSame(const char* what, const Point3& value, const Point3& expected) {
    expectSame(what, value.mX, expected.mX);
    expectSame(what, value.mY, expected.mY);
    expectSame(what, value.mZ, expected.mZ);
}

/// The world of a mesh by plain parts, and the host kit's view of it.
struct PlainSide {
    explicit PlainSide(const MeshPtr& mesh)
        : mMesh(mesh), mWorld(mesh, Common::Memory::processHeap()), mView(*mesh),
          mStraightener(mView) {}

    MeshPtr mMesh;
    Reference::PlainWorld mWorld;
    HostKit::MeshView mView;
    HostKit::PathStraightener mStraightener; ///< used again and again
};

class Comparison {
public:
    explicit Comparison(Fuzz::Choices& choices) : mChoices(choices), mMeshes(choices) {
        mMemory = Fuzz::makeBoundedMemory();
        mMemoryCallback = mMemory;
        mFiles = new Tests::MemoryFiles;
        mFileCallback = mFiles;
    }

    void run() {
        if (below(8) == 7)
            refuseSoon();
        start();
        while (mPlain.has_value() && mChoices.goesOn())
            step();
        mPlain.reset();
        Interface::close();
        Fuzz::requireAllBack(*mMemory, *mFiles);
    }

private:
    /// A search that is open on both sides.
    struct Search {
        int mId;
        int mPlainId;
    };
    /// What a search alone comes to.
    struct Path {
        int mState = Pathfinder::noSearch;
        std::vector<Point3> mWaypoints = {};
        float mCost = 0;
    };

    std::size_t below(std::size_t count) { return mChoices.below(count); }
    Point3 place() { return mMeshes.place(*mPlain->mMesh); }
    Point2 flatPlace() { return place().killComponent(mPlain->mMesh->mNormal.getDominantAxis()); }

    /// Makes a call, and makes it again after memory was refused.
    template <typename Call>
    auto calling(Call call) {
        for (;;) {
            try {
                const auto answer = call();
                mMemory->mFailingRequest = 0;
                return answer;
            } catch (Common::Memory::OutOfMemoryException* exception) {
                delete exception;
                Fuzz::require(isRefused(), "memory ends when it is refused");
                mMemory->mFailingRequest = 0;
            }
        }
    }
    void refuseSoon() {
        mMemory->mFailingRequest = mMemory->mRequests + 1 + static_cast<unsigned int>(below(24));
    }
    bool isRefused() const {
        return mMemory->mFailingRequest != 0 && mMemory->mRequests >= mMemory->mFailingRequest;
    }

    /// Starts a world, or puts another mesh into the place of the former one's: it runs if, and
    /// only if, the mesh has no defect.
    void start() {
        const MeshPtr mesh(Common::Memory::createManaged<NavMesh::NavMeshContainer>(
            Common::Memory::processHeap()));
        mMeshes.fill(*mesh);
        const bool isFit = findDefects(*mesh, [](const char*) { return false; });
        mFiles->mFiles["mesh"] = HostKit::textOf(*mesh);
        const bool isStarted = calling([&] {
            if (!mPlain.has_value())
                Interface::close(); // after a start that failed
            const bool isWhole =
                Interface::initWorldRepresentation("mesh", mMemoryCallback, mFileCallback, "");
            if (!isWhole && isRefused())
                Common::Memory::throwOutOfMemory(); // for the world itself: it was reported
            return isWhole;
        });
        expectSame("a world runs on a mesh without defects", isStarted, isFit);
        if (!isFit)
            return;
        mSearches.clear();
        mHasSameIds = true;
        mPlain.emplace(mesh);
    }

    void step() {
        switch (below(16)) {
        case 0:
        case 1:
            open();
            break;
        case 2:
        case 3:
        case 4:
            advance();
            break;
        case 5:
            readPath();
            break;
        case 6:
            closeOne();
            break;
        case 7:
            for (std::size_t i = below(8); i != 0; --i)
                trace();
            break;
        case 8:
            traceInSpace();
            break;
        case 9:
            lookUp();
            break;
        case 10:
            schedule();
            break;
        case 11:
            straighten();
            break;
        case 12:
            if (below(8) == 0)
                start();
            break;
        case 13:
            refuseSoon();
            break;
        default:
            searchAtOnce();
        }
    }

    void open() {
        const Point3 from = place();
        const Point3 to = place();
        const int id = calling([&] { return Interface::initPathSearch(from, to); });
        const int plainId = mPlain->mWorld.initPathSearch(from, to);
        expectSame("a search begins", id == Pathfinder::noSearch, plainId == Pathfinder::noSearch);
        if (mHasSameIds)
            expectSame("a search's id", id, plainId);
        if (id != Pathfinder::noSearch)
            mSearches.push_back({id, plainId});
    }

    /// With memory to be refused one expansion at a time, which happens as a whole or not at all.
    void advance() {
        if (mSearches.empty())
            return;
        const Search& search = mSearches[below(mSearches.size())];
        const bool isCareful = mMemory->mFailingRequest != 0;
        const auto budget = static_cast<unsigned int>(isCareful ? 1 : below(12));
        const int state = calling([&] { return Interface::runPathSearch(search.mId, budget); });
        expectSame("a search's state", state,
                   mPlain->mWorld.runPathSearch(search.mPlainId, budget));
    }

    void readPath() {
        if (mSearches.empty())
            return;
        const Search& search = mSearches[below(mSearches.size())];
        for (std::size_t i = below(6); i != 0; --i) {
            Point3 waypoint(0, 0, 0);
            Point3 expected(0, 0, 0);
            const bool goesOn = mPlain->mWorld.getNextWaypoint(search.mPlainId, expected);
            expectSame("there is a waypoint",
                       calling([&] { return Interface::getNextWaypoint(search.mId, waypoint); }),
                       goesOn);
            expectSame("a waypoint", waypoint, expected);
        }
        expectSame("a path's cost", Interface::getPathCost(search.mId),
                   mPlain->mWorld.getPathCost(search.mPlainId));
    }

    void closeOne() {
        if (mSearches.empty())
            return;
        const std::size_t place = below(mSearches.size());
        Fuzz::require(Interface::closePathSearch(mSearches[place].mId), "a search is closed");
        Fuzz::require(!Interface::closePathSearch(mSearches[place].mId), "and then it is gone");
        mPlain->mWorld.closePathSearch(mSearches[place].mPlainId);
        mSearches.erase(mSearches.begin() + static_cast<std::ptrdiff_t>(place));
    }

    void trace() {
        Common::Geom::Ray2D<float, float> ray(flatPlace(), flatPlace());
        if (below(4) == 0) // along an axis
            (below(2) == 0 ? ray.mEnd.mX : ray.mEnd.mY) =
                below(2) == 0 ? ray.mStart.mX : ray.mStart.mY;
        Common::Geom::Ray2D<float, float> expected = ray;
        mPlain->mWorld.traceRay(expected);
        Interface::traceRay(ray);
        expectSame("a ray's hit", ray.mHitDistance, expected.mHitDistance);
    }
    void traceInSpace() {
        const unsigned int up = mPlain->mMesh->mNormal.getDominantAxis();
        Common::Geom::Ray3D<float, float> ray(place(), place());
        Common::Geom::Ray2D<float, float> expected(ray.mStart.killComponent(up),
                                                   ray.mEnd.killComponent(up));
        mPlain->mWorld.traceRay(expected);
        Interface::traceRay(ray);
        expectSame("a ray's hit in space", ray.mHitDistance, expected.mHitDistance);
    }

    /// What is asked about one place.
    void lookUp() {
        const Point3 at = place();
        const Point2 flat = at.killComponent(mPlain->mMesh->mNormal.getDominantAxis());
        expectSame("what is blocked", Interface::isBlocked(flat), mPlain->mWorld.isBlocked(flat));
        expectSame("a height", Interface::getGroundHeight(flat),
                   mPlain->mWorld.getGroundHeight(flat));
        const std::int32_t node = mPlain->mWorld.findNode(at);
        expectSame("the view's node", static_cast<std::int32_t>(mPlain->mView.findNode(at)), node);
        const auto any = static_cast<std::uint32_t>(below(mPlain->mMesh->mNodes.size()));
        const auto anyId = static_cast<std::int32_t>(any);
        expectSame("whether the view's node is stood on", mPlain->mView.isOnNode(at, any),
                   mPlain->mMesh->isPointInNode(at, anyId));
        expectSame("the view's centre", mPlain->mView.centreOf(any),
                   mPlain->mMesh->getNodeCenter(anyId));
    }

    /// A search of the plain world's, from its beginning to its end.
    Path searchPlain(const Point3& from, const Point3& to) {
        Path path;
        Reference::PlainWorld& world = mPlain->mWorld;
        const int id = world.initPathSearch(from, to);
        if (id == Pathfinder::noSearch)
            return path;
        path.mState = world.runPathSearch(id, 100'000);
        for (Point3 waypoint(0, 0, 0); world.getNextWaypoint(id, waypoint);)
            path.mWaypoints.push_back(waypoint);
        path.mCost = world.getPathCost(id);
        world.closePathSearch(id);
        return path;
    }

    void searchAtOnce() {
        const Point3 from = place();
        const Point3 to = place();
        const Path expected = searchPlain(from, to);
        const int id = calling([&] { return Interface::initPathSearch(from, to); });
        if (expected.mState == Pathfinder::noSearch) {
            expectSame("no search begins", id, Pathfinder::noSearch);
            return;
        }
        const int state = calling([&] { return Interface::runPathSearch(id, 100'000); });
        expectSame("how a search ends", state, expected.mState);
        Point3 waypoint(0, 0, 0);
        for (const Point3& next : expected.mWaypoints) {
            Fuzz::require(calling([&] { return Interface::getNextWaypoint(id, waypoint); }),
                          "there are as many waypoints");
            expectSame("a waypoint of all", waypoint, next);
        }
        Fuzz::require(!calling([&] { return Interface::getNextWaypoint(id, waypoint); }),
                      "there are no more waypoints");
        expectSame("a whole path's cost", Interface::getPathCost(id), expected.mCost);
        Interface::closePathSearch(id);
    }

    /// Requests side by side come to what each comes to alone.
    void schedule() {
        HostKit::Exports exports;
        HostKit::SchedulerSettings settings;
        settings.mSlice = static_cast<std::uint32_t>(1 + below(20));
        settings.mTurn = static_cast<std::uint32_t>(1 + below(40));
        HostKit::Scheduler scheduler(exports, settings);
        std::vector<HostKit::RequestId> requests;
        std::vector<Path> paths;
        for (std::size_t i = 1 + below(4); i != 0; --i) {
            HostKit::PathRequest request;
            request.mStart = place();
            request.mGoal = place();
            request.mPriority = static_cast<HostKit::Priority>(below(3));
            request.mDeadline = static_cast<std::uint32_t>(below(4));
            paths.push_back(searchPlain(request.mStart, request.mGoal));
            requests.push_back(scheduler.add(request));
        }
        const std::size_t budget = settings.mSlice + below(40);
        for (int frame = 0; frame < 1000 && scheduler.queueLength() != 0; ++frame)
            calling([&] {
                scheduler.advance(HostKit::FrameBudget::expansions(budget));
                return true;
            });
        mHasSameIds = false; // the order in which ids became free is the scheduler's
        for (std::size_t i = 0; i < requests.size(); ++i) {
            HostKit::PathAnswer answer;
            Fuzz::require(scheduler.take(requests[i], answer), "every request is answered");
            const int state = answer.mResult == HostKit::PathResult::FOUND ? Pathfinder::PATH_FOUND
                              : answer.mResult == HostKit::PathResult::NO_PATH
                                  ? Pathfinder::PATH_NONE
                                  : Pathfinder::noSearch;
            expectSame("a request's result", state, paths[i].mState);
            expectSame("a request's path", answer.mWaypoints.size(), paths[i].mWaypoints.size());
            for (std::size_t k = 0; k < answer.mWaypoints.size(); ++k)
                expectSame("a request's waypoint", answer.mWaypoints[k], paths[i].mWaypoints[k]);
            expectSame("a request's cost", answer.mCost, paths[i].mCost);
        }
    }

    /// A straightener that has worked before gives what a new one gives.
    void straighten() {
        const Point3 from = place();
        const Point3 to = place();
        const Path found = searchPlain(from, to);
        if (found.mState != Pathfinder::PATH_FOUND)
            return;
        HostKit::PathStraightener fresh(mPlain->mView);
        HostKit::StraightPath path;
        HostKit::StraightPath again;
        double plainLength = 0;
        for (const auto form : {HostKit::StraightForm::PLAIN, HostKit::StraightForm::IMPROVED}) {
            Fuzz::require(mPlain->mStraightener.straighten(from, to, found.mWaypoints, form, path),
                          "what was found can be straightened");
            fresh.straighten(from, to, found.mWaypoints, form, again);
            Fuzz::require(path.mChain == again.mChain, "chains are the same");
            expectSame("as many corners", path.mCorners.size(), again.mCorners.size());
            for (std::size_t i = 0; i < path.mCorners.size(); ++i)
                expectSame("a corner", path.mCorners[i].mPosition, again.mCorners[i].mPosition);
            Fuzz::require(form == HostKit::StraightForm::PLAIN || !(path.mLength > plainLength),
                          "an improved path is no longer");
            plainLength = path.mLength;
        }
    }

    Fuzz::Choices& mChoices;
    Fuzz::AnyMesh mMeshes;
    Tests::CountingMemory* mMemory;
    Tests::MemoryFiles* mFiles;
    Common::SharedPtr<Common::Callback::MemoryCallback> mMemoryCallback;
    Common::SharedPtr<Common::Callback::FileIOCallback> mFileCallback;
    std::optional<PlainSide> mPlain; ///< of the world that runs; none while none does
    std::vector<Search> mSearches;
    bool mHasSameIds = true;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const HostKit::Foundation foundation;
    Fuzz::silenceReports();
    Fuzz::Choices choices(data, size);
    Comparison(choices).run();
    return 0;
}
