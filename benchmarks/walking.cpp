// Straight paths: how long they are beside the shortest there is, and what they cost beside the
// search.
#include "hostkit/meshloading.h"
#include "hostkit/session.h"
#include "hostkit/straightpath.h"
#include "hostkit/surface.h"
#include "worlds/meshmodel.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

namespace {

using namespace ZUNO::HostKit;
using ZUNO::Pathfinder::Interface;
using Clock = std::chrono::steady_clock;

/// Lengths as parts of the shortest.
class Ratios {
public:
    void add(double ratio) { mRatios.push_back(ratio); }
    void print(const char* name) {
        std::sort(mRatios.begin(), mRatios.end());
        double sum = 0;
        for (const double ratio : mRatios)
            sum += ratio;
        const auto count = static_cast<double>(mRatios.size());
        std::printf("  %-9s mean %.4f, 99 %% %.4f\n", name, sum / count,
                    mRatios[static_cast<std::size_t>(count * 0.99)]);
    }

private:
    std::vector<double> mRatios;
};

class Walks {
public:
    explicit Walks(const std::string& mesh)
        : mSession(mesh), mView(loadMeshView(mesh)), mStraightener(mView), mSearch(mView) {}

    void run(std::uint64_t count) {
        const RandomPlaces places(mView, 0);
        for (std::uint64_t i = 0; i < count; ++i)
            walk(places.pick(2 * i).mPosition, places.pick(2 * i + 1).mPosition);
        const MeshView::MemoryUsage usage = mView.memoryUsage();
        std::printf("  view      %.3f of the world's bytes beyond the mesh itself\n",
                    static_cast<double>(usage.mBeyond) /
                        static_cast<double>(mSession.memory().mBytes));
        mPlain.print("plain");
        mImproved.print("improved");
        std::printf("  cost      plain %.3f, improved %.3f of the search's time\n",
                    mTimes[1] / mTimes[0], mTimes[2] / mTimes[0]);
    }

private:
    template <typename Action>
    void time(int part, Action action) {
        const auto begin = Clock::now();
        action();
        mTimes[part] += std::chrono::duration<double>(Clock::now() - begin).count();
    }

    void walk(const Position& start, const Position& goal) {
        std::vector<Position> waypoints;
        bool isFound = false;
        time(0, [&] {
            const int search = Interface::initPathSearch(start, goal);
            isFound = search >= 0 &&
                      Interface::runPathSearch(search, 0xFFFFFFFF) == ZUNO::Pathfinder::PATH_FOUND;
            for (Position point; search >= 0 && Interface::getNextWaypoint(search, point);)
                waypoints.push_back(point);
            Interface::closePathSearch(search);
        });
        if (!isFound)
            return;
        StraightPath plain;
        StraightPath improved;
        time(1,
             [&] { mStraightener.straighten(start, goal, waypoints, StraightForm::PLAIN, plain); });
        time(2, [&] {
            mStraightener.straighten(start, goal, waypoints, StraightForm::IMPROVED, improved);
        });
        const double shortest = shortestLength(plain, start, goal);
        if (!(shortest > 0))
            return;
        mPlain.add(planeLength(mView, plain) / shortest);
        mImproved.add(planeLength(mView, improved) / shortest);
    }

    /// Without haste and with a budget that no sample exhausts.
    double shortestLength(const StraightPath& plain, const Position& start, const Position& goal) {
        constexpr std::size_t budget = 1 << 18;
        const double length = planeLength(mView, plain);
        std::vector<std::uint32_t> chain;
        StraightPath shortest;
        const auto result = mSearch.run({plain.mChain.front(), mView.planeOf(start)},
                                        {plain.mChain.back(), mView.planeOf(goal)},
                                        length * (1 - 1e-9), 0, budget, chain);
        if (result != IntervalSearch::Result::FOUND)
            return length;
        mStraightener.straightenChain(start, goal, chain, StraightForm::PLAIN, shortest);
        return planeLength(mView, shortest);
    }

    Session mSession;
    MeshView mView;
    PathStraightener mStraightener;
    IntervalSearch mSearch;
    Ratios mPlain;
    Ratios mImproved;
    double mTimes[3] = {0, 0, 0}; ///< of searches, of plain and of improved paths
};

void run(const std::string& mesh) {
    std::printf("%s\n", mesh.c_str());
    Walks(mesh).run(1000);
}

} // namespace

int main(int argc, char** argv) {
    try {
        for (int i = 1; i < argc; ++i)
            run(argv[i]);
        if (argc > 1)
            return 0;
        const std::string file =
            (std::filesystem::temp_directory_path() / "zunowalking.xml").string();
        std::ofstream(file, std::ios::binary) << ZUNO::Worlds::makeFloor(3900, 1).toXML("floor");
        run(file);
        std::filesystem::remove(file);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zunowalking: %s\n", error.what());
        return 1;
    }
}
