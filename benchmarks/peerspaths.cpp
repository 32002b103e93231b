// Paths, locations and rays beside Detour.
#include "benchmarks/detourpeer.h"
#include "benchmarks/peers.h"
#include "common/memory/globalallocators.h"
#include "hostkit/session.h"
#include "reference/comparison.h"
#include "reference/plainworld.h"

#include <cmath>

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
          mOn(" on " + std::to_string(sample.nodes()) + " nodes") {
        takeJourneys();
    }

    void run() {
        showWork();
        compareQueries();
        compareOpening();
        compareRays("its own", mSample.file());
        for (const unsigned int cells : {1000U, 3000U}) {
            const TemporaryFile file(mSample.withCells(cells));
            compareRays("extent / " + std::to_string(cells), file.name());
        }
    }

private:
    DetourPeer::Place locate(const Vec3<float>& p) const { return mPeer.locate(p.mX, p.mY, p.mZ); }

    /// Those that both sides find a path for.
    void takeJourneys() {
        std::mt19937 random(5);
        std::vector<Journey> asked = mSample.journeys();
        const bool isLarge = mSample.nodes() >= 3500;
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

    void showWork() const {
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
        std::printf("    expansions a query %.0f, Detour's visited polygons %.0f\n",
                    static_cast<double>(expansions) / count, static_cast<double>(visited) / count);
    }

    void compareQueries() const {
        const auto theirs = [&](const Journey& journey) {
            mPeer.findPath(locate(journey.mFrom), locate(journey.mTo));
        };
        const double goal = mSample.nodes() >= 20000 ? 0.6 : (mSample.nodes() >= 3500 ? 0.5 : 0.45);
        print("whole query" + mOn, compareEach(mJourneys, chunk, ask, theirs), goal);
        print("    query by query", compareEach(mJourneys, 1, ask, theirs), goal);
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
        const double goal = mSample.nodes() >= 3500 ? 0.3 : 1;
        print("opening a search, two locations" + mOn, compareEach(often, chunk, ours, theirs),
              goal);
        print("    query by query", compareEach(often, 1, ours, theirs), goal);
    }

    void compareRays(const std::string& cells, const std::string& file) {
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
        float sum = 0;
        const auto ours = [&](const Cast& cast) {
            Ray ray({cast.mFrom.mPosition[0], cast.mFrom.mPosition[2]}, {cast.mTo.mX, cast.mTo.mZ});
            Interface::traceRay(ray);
            sum += ray.mHitDistance;
        };
        const auto theirs = [&](const Cast& cast) {
            const float end[3] = {cast.mTo.mX, cast.mTo.mY, cast.mTo.mZ};
            sum += mPeer.castRay(cast.mFrom, end);
        };
        print("ray, cells of " + cells + mOn, compareEach(casts, chunk, ours, theirs), 1.0);
        print("    query by query", compareEach(casts, 1, ours, theirs), 1.0);
        if (std::isnan(sum))
            std::puts("a ray ends nowhere");
    }

    const Sample& mSample;
    HostKit::Session mSession;
    DetourPeer mPeer;
    std::string mOn;
    std::vector<Journey> mJourneys;
    unsigned int mLost = 0;
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
