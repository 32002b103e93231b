// Paths, locations and rays beside Detour.
#include "benchmarks/detourpeer.h"
#include "benchmarks/peers.h"
#include "common/memory/globalallocators.h"
#include "hostkit/session.h"
#include "navmesh/nodelocator.h"
#include "reference/comparison.h"
#include "reference/plainworld.h"

namespace ZUNO::Benchmarks {
namespace {

using Common::Math::Vec3;
using Pathfinder::Interface;
using Ray = Common::Geom::Ray2D<float, float>;

/// Sides take turns after so many questions; the second figure is with one at a time.
constexpr std::size_t chunk = 200;

/// A query from open to close; whether there was a path.
bool ask(const Journey& journey) {
    const int id = Interface::initPathSearch(journey.mFrom, journey.mTo);
    const bool isFound = id != Pathfinder::noSearch &&
                         Interface::runPathSearch(id, 0xFFFFFFFF) == Pathfinder::PATH_FOUND;
    Vec3<float> waypoint;
    if (isFound) {
        Interface::getNextWaypoint(id, waypoint);
        Interface::getPathCost(id);
    }
    Interface::closePathSearch(id);
    return isFound;
}

/// One mesh with both sides over it.
class Comparison {
public:
    explicit Comparison(const Sample& sample)
        : mSample(sample), mSession(sample.file()), mPeer(sample.mesh()),
          mOn(", " + sample.label()) {
        takeJourneys();
    }

    void run() {
        countWork();
        compareQueries();
        compareOpening();
        compareRays("its own", mSample.file(), mSample.mesh().mCubeSize);
        for (const unsigned int cells : {1000U, 3000U}) {
            const TemporaryFile file(mSample.withCells(cells));
            compareRays("extent / " + std::to_string(cells), file.name(),
                        Tools::LoadedMesh(file.name())->mCubeSize);
        }
    }

private:
    DetourPeer::Place locate(const Vec3<float>& p) const { return mPeer.locate(p.mX, p.mY, p.mZ); }

    /// Those that both sides find a path for.
    void takeJourneys() {
        std::mt19937 random(5);
        std::vector<Journey> asked = mSample.journeys();
        const bool isLarge = mSample.nodes() >= 3000;
        for (std::size_t i = 0; mSample.journeys().empty() && i < (isLarge ? 80U : 800U); ++i)
            asked.push_back({mSample.pick(random), mSample.pick(random)});
        for (const Journey& journey : asked) {
            const bool isFound = ask(journey);
            const bool isTheirs = mPeer.findPath(locate(journey.mFrom), locate(journey.mTo)) != 0;
            mLost += isFound && !isTheirs ? 1 : 0;
            if (isFound && isTheirs)
                mJourneys.push_back(journey);
        }
        std::printf("%zu of %zu queries have a path for both; %u for us alone\n", mJourneys.size(),
                    asked.size(), mLost);
        if (mJourneys.empty())
            throw std::runtime_error("there is nothing to compare");
    }

    void countWork() {
        std::uint64_t expansions = 0;
        std::int64_t visited = 0;
        for (const Journey& journey : mJourneys) {
            const int id = Interface::initPathSearch(journey.mFrom, journey.mTo);
            while (Interface::runPathSearch(id, 1) == Pathfinder::PATH_RUNNING)
                ++expansions;
            Interface::closePathSearch(id);
            mPeer.findPath(locate(journey.mFrom), locate(journey.mTo));
            visited += mPeer.visitedPolygons();
        }
        const auto count = static_cast<double>(mJourneys.size());
        mExpansions = static_cast<double>(expansions) / count;
        mVisited = static_cast<double>(visited) / count;
    }

    void compareQueries() const {
        const auto theirs = [&](const Journey& journey) {
            mPeer.findPath(locate(journey.mFrom), locate(journey.mTo));
        };
        const double goal = mSample.nodes() >= 20000 ? 0.6 : (mSample.nodes() >= 3000 ? 0.5 : 0.45);
        const auto show = [&](const std::string& what, std::size_t turn) {
            const Pair times = compareEach(mJourneys, turn, ask, theirs);
            if (!print(what, times, goal))
                std::printf("    because: %.0f expansions of %.0f ns against %.0f visited polygons "
                            "of %.0f ns, the rest of a query shared among them\n",
                            mExpansions, times.mOurs * 1e9 / mExpansions, mVisited,
                            times.mTheirs * 1e9 / mVisited);
        };
        show("whole query" + mOn, chunk);
        show("    query by query", 1);
    }

    void compareOpening() const {
        const auto ours = [](const Journey& journey) {
            Interface::closePathSearch(Interface::initPathSearch(journey.mFrom, journey.mTo));
        };
        const auto theirs = [&](const Journey& journey) {
            locate(journey.mFrom);
            locate(journey.mTo);
        };
        std::vector<Journey> often; // a turn must be longer than the clock's steps
        while (often.size() < 4000)
            often.insert(often.end(), mJourneys.begin(), mJourneys.end());
        const double goal = mSample.nodes() >= 3000 ? 0.3 : 1;
        const auto show = [&](const std::string& what, std::size_t turn) {
            if (print(what, compareEach(often, turn, ours, theirs), goal))
                return;
            const NavMesh::NodeLocator locator(mSample.shared(), Common::gObjectAllocator);
            const auto locateBoth = [&](const Journey& journey) {
                locator.findNode(journey.mFrom);
                locator.findNode(journey.mTo);
            };
            const Pair parts = compareEach(often, turn, locateBoth, theirs);
            std::printf("    because: both locations alone take %.3f us\n", parts.mOurs * 1e6);
        };
        show("opening a search, two locations" + mOn, chunk);
        show("    query by query", 1);
    }

    void compareRays(const std::string& cells, const std::string& file, float cubeSize) {
        mSession.close();
        const HostKit::Session session(file);
        struct Cast {
            DetourPeer::Place mFrom;
            Vec3<float> mTo;
        };
        std::mt19937 random(9);
        std::vector<Cast> casts;
        for (const Journey& journey : mSample.journeys())
            casts.push_back({locate(journey.mFrom), journey.mTo});
        while (casts.size() < 2000)
            casts.push_back({locate(mSample.pick(random)), mSample.pick(random)});
        const auto ours = [&](const Cast& cast) {
            Ray ray({cast.mFrom.mPosition[0], cast.mFrom.mPosition[2]}, {cast.mTo.mX, cast.mTo.mZ});
            Interface::traceRay(ray);
            return ray.mHitDistance == Pathfinder::noHit ? length(ray.mEnd - ray.mStart)
                                                         : ray.mHitDistance;
        };
        const auto theirs = [&](const Cast& cast) {
            const float end[3] = {cast.mTo.mX, cast.mTo.mY, cast.mTo.mZ};
            mPeer.castRay(cast.mFrom, end);
            return mPeer.passedPolygons();
        };
        const auto show = [&](const std::string& what, std::size_t turn) {
            if (print(what, compareEach(casts, turn, ours, theirs), 1.0))
                return;
            double way = 0;
            double polygons = 0;
            for (const Cast& cast : casts) {
                way += ours(cast);
                polygons += theirs(cast);
            }
            const auto count = static_cast<double>(casts.size());
            std::printf("    because: %.0f cells long against %.1f polygons passed\n",
                        way / count / cubeSize, polygons / count);
        };
        show("ray, cells of " + cells + mOn, chunk);
        show("    query by query", 1);
    }

    const Sample& mSample;
    HostKit::Session mSession;
    DetourPeer mPeer;
    std::string mOn;
    std::vector<Journey> mJourneys;
    unsigned int mLost = 0;
    double mExpansions = 0; ///< a query
    double mVisited = 0;    ///< polygons that Detour visits for one
};

} // namespace

void compareWithDetour(const Sample& sample) {
    Comparison(sample).run();
}

void compareWithPlainForms(const Sample& sample) {
    const HostKit::Session session(sample.file());
    Interface exports;
    Reference::PlainWorld plain(sample.shared(), Common::gObjectAllocator);
    Reference::Questions questions(6);
    Reference::SearchComparison searches(plain, exports, questions);
    std::string difference = searches.run(questions.journeysOver(sample.mesh(), 300), 4, 64);
    Common::Math::Vec2<float> low(0, 0);
    Common::Math::Vec2<float> high(0, 0);
    Interface::getBoundingRectangle(low, high);
    if (difference.empty())
        difference = Reference::compareRays(plain, exports, questions.raysOver(low, high, 3000));
    std::printf("    300 queries and 3,000 rays against the plain forms: %s\n",
                difference.empty() ? "the same" : difference.c_str());
}

} // namespace ZUNO::Benchmarks
