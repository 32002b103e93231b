// What searches cost by themselves: many side by side, without a path, and slice by slice.
#include "benchmarks/peers.h"
#include "hostkit/session.h"
#include "worlds/meshmodel.h"

#include <limits>
#include <numeric>
#include <sys/resource.h>

namespace ZUNO::Benchmarks {

using Pathfinder::Interface;

namespace {

std::vector<Journey> pickJourneys(const Sample& sample, std::size_t count, unsigned int seed) {
    std::mt19937 random(seed);
    std::vector<Journey> journeys;
    while (journeys.size() < count)
        journeys.push_back({sample.pick(random), sample.pick(random)});
    return journeys;
}

constexpr unsigned int firstExpansions = 50;

/// What searches cost: of each the least of all rounds, so that what interrupts one is left out.
class Costs {
public:
    explicit Costs(const std::vector<Journey>& journeys)
        : mJourneys(journeys), mOpening(journeys.size(), never), mExpanding(mOpening) {}

    /// Runs the searches side by side.
    void measureSideBySide(const std::function<void()>& whileOpen = [] {}) {
        std::vector<int> ids(mJourneys.size());
        for (std::size_t i = 0; i < ids.size(); ++i)
            ids[i] = open(i);
        for (std::size_t i = 0; i < ids.size(); ++i)
            expand(i, ids[i]);
        whileOpen();
        for (const int id : ids)
            Interface::closePathSearch(id);
    }
    /// Runs one after the other.
    void measureAlone() {
        for (std::size_t i = 0; i < mJourneys.size(); ++i) {
            const int id = open(i);
            expand(i, id);
            Interface::closePathSearch(id);
        }
    }

    /// Seconds of a search for its opening, and for each of its first expansions.
    double opening() const { return meanOf(mOpening); }
    double expansion() const { return meanOf(mExpanding) / firstExpansions; }

private:
    static constexpr double never = std::numeric_limits<double>::infinity();

    static double meanOf(const std::vector<double>& values) {
        return std::accumulate(values.begin(), values.end(), 0.0) /
               static_cast<double>(values.size());
    }
    int open(std::size_t i) {
        int id = -1;
        const double seconds = secondsOf(
            [&] { id = Interface::initPathSearch(mJourneys[i].mFrom, mJourneys[i].mTo); });
        mOpening[i] = std::min(mOpening[i], seconds);
        return id;
    }
    void expand(std::size_t i, int id) {
        const double seconds = secondsOf([&] { Interface::runPathSearch(id, firstExpansions); });
        mExpanding[i] = std::min(mExpanding[i], seconds);
    }

    const std::vector<Journey>& mJourneys;
    std::vector<double> mOpening;
    std::vector<double> mExpanding;
};

/// The text of a floor and, high above it, a small one that no way leads to.
std::string makeTwoFloors(unsigned int nodes) {
    Worlds::MeshModel mesh = Worlds::makeFloor(nodes, 1);
    const Worlds::MeshModel upper = Worlds::makeFloor(60, 2);
    const auto firstCorner = static_cast<std::uint32_t>(mesh.mVertices.size());
    const auto firstNode = static_cast<std::int32_t>(mesh.mNodes.size());
    for (auto corner : upper.mVertices) {
        corner.mY += 400;
        mesh.mVertices.push_back(corner);
    }
    for (auto node : upper.mNodes) {
        for (auto& corner : node.mPolygon)
            corner += firstCorner;
        for (auto& neighbour : node.mNeighbours)
            neighbour += neighbour >= 0 ? firstNode : 0;
        mesh.mNodes.push_back(node);
    }
    return mesh.toXML("benchmark");
}

} // namespace

namespace {

/// How often the system had to hand out a page of memory so far.
long pageFaults() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

} // namespace

void compareManySearches() {
    const Sample sample = Sample::floor(100000);
    const std::vector<Journey> journeys = pickJourneys(sample, 1000, 4);
    double bytes = 0;
    double faults = 0;
    double requests = 0;
    Costs afresh(journeys);
    Costs again(journeys);
    Costs alone(journeys);
    for (int world = 0; world < 8; ++world) {
        HostKit::Session session(sample.file());
        const HostKit::MemoryFigures before = session.memory();
        const long faultsBefore = pageFaults();
        afresh.measureSideBySide([&] {
            const HostKit::MemoryFigures& now = session.memory();
            bytes = static_cast<double>(now.mBytes - before.mBytes) / 1000;
            requests = static_cast<double>(now.mAllocations - before.mAllocations) / 1000;
            if (world == 0) // later worlds get pages that the process has
                faults = static_cast<double>(pageFaults() - faultsBefore) / 1000;
        });
        again.measureSideBySide();
        alone.measureAlone();
    }
    const std::string of = "1,000 searches on 100,000 nodes: ";
    const auto explain = [&](bool holds) {
        if (!holds)
            std::printf("    because: %.1f requests to the host and, in the first world, %.1f page "
                        "faults a search; alone it opens in %.2f us\n",
                        requests, faults, alone.opening() * 1e6);
    };
    explain(print(of + "expansion, opened afresh", {afresh.expansion(), alone.expansion()}, 1.5));
    explain(print(of + "expansion, again", {again.expansion(), alone.expansion()}, 1.3));
    explain(printFigure(of + "us to open afresh", afresh.opening() * 1e6, 3));
    explain(printFigure(of + "us to open again", again.opening() * 1e6, 3));
    explain(printFigure(of + "KB of the host's", bytes / 1024, 10));
}

void measureDoomedSearches() {
    const TemporaryFile file(makeTwoFloors(21000));
    const Sample sample(file.name());
    const HostKit::Session session(file.name());
    const auto goal = sample.mesh().getNodeCenter(static_cast<std::int32_t>(sample.nodes() - 1));
    for (const unsigned int budget : {1U, 7U, 50U, 1000000000U}) {
        std::vector<double> seconds;
        std::vector<double> calls;
        unsigned int slices = 0;
        for (int round = 0; round < 25; ++round) {
            double running = 0;
            slices = 0;
            const double whole = secondsOf([&] {
                const int id = Interface::initPathSearch(sample.mesh().getNodeCenter(0), goal);
                running = secondsOf([&] {
                    while (Interface::runPathSearch(id, budget) == Pathfinder::PATH_RUNNING)
                        ++slices;
                });
                Interface::closePathSearch(id);
            });
            seconds.push_back(whole - running + running / (slices + 1)); // of one call each
            calls.push_back(running / (slices + 1));
        }
        if (!printFigure("search without a path on 21,000 nodes, " + std::to_string(slices + 1) +
                             " slices: us",
                         medianOf(seconds) * 1e6, 2))
            std::printf("    because: a slice takes %.3f us, opening and closing the rest\n",
                        medianOf(calls) * 1e6);
    }
}

void measureFrameTails() {
    const Sample sample = Sample::floor(21000);
    const HostKit::Session session(sample.file());
    const std::vector<Journey> journeys = pickJourneys(sample, 60, 8);
    std::vector<double> slices; // the least of several rounds: what the machine adds is left out
    for (int round = 0; round < 7; ++round) {
        std::size_t next = 0;
        for (const Journey& journey : journeys) {
            const int id = Interface::initPathSearch(journey.mFrom, journey.mTo);
            for (int state = 1; state == 1; ++next) {
                const double seconds = secondsOf([&] { state = Interface::runPathSearch(id, 20); });
                if (round == 0)
                    slices.push_back(seconds);
                else
                    slices[next] = std::min(slices[next], seconds);
            }
            Interface::closePathSearch(id);
        }
    }
    std::ranges::sort(slices);
    const auto at = [&](double part) {
        return slices[static_cast<std::size_t>(part * static_cast<double>(slices.size() - 1))];
    };
    std::printf("    slices of 20 expansions on 21,000 nodes, us: median %.2f, 90 %% %.2f, 99 %% "
                "%.2f, 99.9 %% %.2f, longest %.2f\n",
                at(0.5) * 1e6, at(0.9) * 1e6, at(0.99) * 1e6, at(0.999) * 1e6, at(1) * 1e6);
    print("slice of 20 expansions, 99.9th percentile against median", {at(0.999), at(0.5)}, 4);
}

} // namespace ZUNO::Benchmarks
