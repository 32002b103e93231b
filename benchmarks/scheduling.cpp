// Many characters' searches: alone, one after the other, recorded, and scheduled over frames.
#include "hostkit/scheduler.h"
#include "hostkit/session.h"
#include "worlds/meshmodel.h"

#include <benchmark/benchmark.h>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>

namespace {

using namespace ZUNO::HostKit;
using std::chrono::microseconds;

/// A world over a floor of 3,800 nodes, and the paths that characters ask for.
class Crowd {
public:
    explicit Crowd(std::size_t requests, const std::string& recording = {}) {
        const auto mesh = ZUNO::Worlds::makeFloor(3800, 1);
        const auto file = std::filesystem::temp_directory_path() / "zunobench-crowd.xml";
        std::ofstream(file, std::ios::binary) << mesh.toXML("benchmark");
        mSession =
            std::make_unique<Session>(file.string(), SessionSettings{.mRecording = recording});
        const auto places = ZUNO::Worlds::placesOn(mesh);
        std::mt19937 random(1);
        const auto pick = [&] {
            const auto& [x, y, z] = places[random() % places.size()];
            return ZUNO::Common::Math::Vec3<float>(x, y, z);
        };
        mRequests.resize(requests);
        for (PathRequest& request : mRequests)
            request = {pick(), pick()};
    }

    std::unique_ptr<Session> mSession;
    std::vector<PathRequest> mRequests;
    Exports& exports() { return mSession->exports(); }
};

/// Searches as a host makes them by itself. The arguments: expansions a call, and 1 for recording.
void searchAlone(benchmark::State& state) {
    const auto file = std::filesystem::temp_directory_path() / "zunobench-recording";
    Crowd crowd(1000, state.range(1) != 0 ? file.string() : "");
    const auto budget = static_cast<unsigned int>(state.range(0));
    std::vector<ZUNO::Common::Math::Vec3<float>> waypoints;
    for (auto _ : state) {
        for (const PathRequest& request : crowd.mRequests) {
            const int search = crowd.exports().initPathSearch(request.mStart, request.mGoal);
            while (crowd.exports().runPathSearch(search, budget) == ZUNO::Pathfinder::PATH_RUNNING)
                continue;
            waypoints.clear();
            for (ZUNO::Common::Math::Vec3<float> p; crowd.exports().getNextWaypoint(search, p);)
                waypoints.push_back(p);
            crowd.exports().closePathSearch(search);
        }
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(searchAlone)
    ->Args({1000000, 0})
    ->Args({32, 0})
    ->Args({32, 1})
    ->Unit(benchmark::kMillisecond);

/// The argument is the slice. All requests are added at once.
void searchScheduled(benchmark::State& state) {
    Crowd crowd(1000);
    Scheduler scheduler(crowd.exports(), {.mSlice = static_cast<std::uint32_t>(state.range(0))});
    std::vector<RequestId> ids;
    PathAnswer answer;
    for (auto _ : state) {
        ids.clear();
        for (const PathRequest& request : crowd.mRequests)
            ids.push_back(scheduler.add(request));
        while (scheduler.queueLength() != 0)
            scheduler.advance(FrameBudget::time(microseconds(500)));
        for (const RequestId id : ids)
            scheduler.take(id, answer);
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(searchScheduled)->Arg(4)->Arg(8)->Arg(16)->Arg(32)->Unit(benchmark::kMillisecond);

/// The processor's time, which other programs on the machine don't lengthen.
std::chrono::nanoseconds processorTime() {
    return std::chrono::nanoseconds(std::int64_t{std::clock()} * (1000000000 / CLOCKS_PER_SEC));
}

/// A frame without work: the clock alone, read until 500 us are over. What it lasts beyond them is
/// the machine's doing, which no scheduler can prevent.
double idleFrame() {
    const auto begin = processorTime();
    auto lasted = begin - begin;
    while (lasted < microseconds(500))
        lasted = processorTime() - begin;
    return static_cast<double>(lasted.count()) / 500000;
}

double above110Percent(const std::vector<double>& times) {
    return static_cast<double>(
        std::ranges::count_if(times, [](double time) { return time > 1.1; }));
}

/// 1,000 agents that ask anew whenever they are answered, over 10,000 frames of 500 us, each
/// followed by an idle one.
void frames(benchmark::State& state) {
    Crowd crowd(10000);
    Scheduler scheduler(crowd.exports(), {.mClock = processorTime});
    for (auto _ : state) {
        std::size_t next = 0;
        std::vector<RequestId> ids(1000);
        for (RequestId& id : ids)
            id = scheduler.add(crowd.mRequests[next++]);
        PathAnswer answer;
        std::vector<double> times;
        std::vector<double> idleTimes;
        for (int frame = 0; frame < 10000; ++frame) {
            scheduler.advance(FrameBudget::time(microseconds(500)));
            times.push_back(static_cast<double>(scheduler.figures().mFrameTime.count()) / 500000);
            idleTimes.push_back(idleFrame());
            for (RequestId& id : ids)
                if (scheduler.take(id, answer))
                    id = scheduler.add(crowd.mRequests[next++ % crowd.mRequests.size()]);
        }
        std::ranges::sort(times);
        state.counters["mean"] = std::accumulate(times.begin(), times.end(), 0.0) / 10000;
        state.counters["p99.9"] = times[9990];
        state.counters["most"] = times.back();
        state.counters["above110%"] = above110Percent(times);
        state.counters["idleAbove110%"] = above110Percent(idleTimes);
        state.counters["waited"] = scheduler.figures().mMostFramesWaited;
    }
}
BENCHMARK(frames)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
