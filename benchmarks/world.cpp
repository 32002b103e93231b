// The runtime through its exports, on floors of 1,000, 10,000 and 100,000 nodes.
#include "hostkit/session.h"
#include "worlds/meshmodel.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>

namespace {

using ZUNO::Common::Math::Vec2;
using ZUNO::Common::Math::Vec3;
using ZUNO::Pathfinder::Interface;

/// The file of a floor of so many nodes, and its nodes' centres.
struct Floor {
    std::string mFile;
    std::uintmax_t mBytes;
    std::vector<Vec3<float>> mCentres;
};

const Floor& floorOf(std::int64_t nodes) {
    static std::map<std::int64_t, Floor> floors;
    const auto place = floors.find(nodes);
    if (place != floors.end())
        return place->second;
    const auto mesh = ZUNO::Worlds::makeFloor(static_cast<unsigned int>(nodes), 1);
    Floor& made = floors[nodes];
    made.mFile =
        std::filesystem::temp_directory_path() / ("zunobench" + std::to_string(nodes) + ".xml");
    std::ofstream(made.mFile, std::ios::binary) << mesh.toXML("benchmark");
    made.mBytes = std::filesystem::file_size(made.mFile);
    for (const auto& [x, y, z] : ZUNO::Worlds::placesOn(mesh))
        made.mCentres.emplace_back(x, y, z);
    return made;
}

std::unique_ptr<ZUNO::HostKit::Session> theSession;
std::int64_t theSessionNodes = 0;

void closeWorld() {
    theSession.reset();
    theSessionNodes = 0;
}

/// The world over a floor; the one of the last call is kept.
const Floor& openWorld(std::int64_t nodes) {
    const Floor& floor = floorOf(nodes);
    if (theSessionNodes != nodes) {
        closeWorld();
        theSession = std::make_unique<ZUNO::HostKit::Session>(floor.mFile);
        theSessionNodes = nodes;
    }
    return floor;
}

void meshSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1000)->Arg(10000)->Arg(100000);
}

void initPathSearch(benchmark::State& state) {
    const Floor& floor = openWorld(state.range(0));
    std::mt19937 random(1);
    for (auto _ : state) {
        const auto& start = floor.mCentres[random() % floor.mCentres.size()];
        const auto& goal = floor.mCentres[random() % floor.mCentres.size()];
        Interface::closePathSearch(Interface::initPathSearch(start, goal));
    }
}
BENCHMARK(initPathSearch)->Apply(meshSizes)->Unit(benchmark::kMicrosecond);

/// A whole query between nodes that lie so many rows of the floor apart.
void wholeQuery(benchmark::State& state) {
    const Floor& floor = openWorld(state.range(0));
    const auto distance = static_cast<float>(state.range(1));
    const Vec3<float> start = floor.mCentres[floor.mCentres.size() / 2];
    const Vec3<float>* goal = &floor.mCentres[0];
    for (const auto& centre : floor.mCentres)
        if (std::abs(length(centre - start) - distance) <
            std::abs(length(*goal - start) - distance))
            goal = &centre;
    unsigned int waypoints = 0;
    for (auto _ : state) {
        const int search = Interface::initPathSearch(start, *goal);
        Interface::runPathSearch(search, ~0U);
        waypoints = 0;
        for (Vec3<float> waypoint; Interface::getNextWaypoint(search, waypoint);)
            ++waypoints;
        benchmark::DoNotOptimize(Interface::getPathCost(search));
        Interface::closePathSearch(search);
    }
    state.counters["waypoints"] = waypoints;
}
BENCHMARK(wholeQuery)
    ->ArgsProduct({{1000, 10000, 100000}, {10, 40}})
    ->Args({100000, 160})
    ->Unit(benchmark::kMicrosecond);

/// One expansion in the middle of a long search.
void oneExpansion(benchmark::State& state) {
    const Floor& floor = openWorld(state.range(0));
    int search = -1;
    int result = 2;
    for (auto _ : state) {
        if (result != 1) {
            state.PauseTiming();
            Interface::closePathSearch(search);
            search = Interface::initPathSearch(floor.mCentres.front(), floor.mCentres.back());
            state.ResumeTiming();
        }
        result = Interface::runPathSearch(search, 1);
    }
    Interface::closePathSearch(search);
}
BENCHMARK(oneExpansion)->Apply(meshSizes);

void traceRay(benchmark::State& state) {
    const Floor& floor = openWorld(state.range(0));
    const auto distance = static_cast<float>(state.range(1));
    std::mt19937 random(1);
    for (auto _ : state) {
        const auto& from = floor.mCentres[random() % floor.mCentres.size()];
        ZUNO::Common::Geom::Ray2D<float, float> ray({from.mX, from.mZ},
                                                    {from.mX + distance, from.mZ + distance / 3});
        Interface::traceRay(ray);
        benchmark::DoNotOptimize(ray.mHitDistance);
    }
}
BENCHMARK(traceRay)->ArgsProduct({{1000, 100000}, {2, 10, 50}});

void isBlocked(benchmark::State& state) {
    const Floor& floor = openWorld(state.range(0));
    std::mt19937 random(1);
    for (auto _ : state) {
        const auto& at = floor.mCentres[random() % floor.mCentres.size()];
        benchmark::DoNotOptimize(Interface::isBlocked({at.mX, at.mZ}));
    }
}
BENCHMARK(isBlocked)->Apply(meshSizes);

/// Start, load and close.
void loadWorld(benchmark::State& state) {
    const Floor& floor = floorOf(state.range(0));
    closeWorld();
    std::uint64_t peak = 0;
    for (auto _ : state) {
        ZUNO::HostKit::Session session(floor.mFile);
        peak = session.memory().mPeakBytes;
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(floor.mBytes));
    state.counters["nodes/s"] = benchmark::Counter(
        static_cast<double>(state.iterations() * state.range(0)), benchmark::Counter::kIsRate);
    state.counters["peak/file"] = static_cast<double>(peak) / static_cast<double>(floor.mBytes);
}
BENCHMARK(loadWorld)->Apply(meshSizes)->Unit(benchmark::kMillisecond);

} // namespace
