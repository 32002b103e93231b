// What the runtime costs by itself: growth, loading, memory.
#include "benchmarks/peers.h"
#include "common/memory/globalallocators.h"
#include "hostkit/session.h"
#include "navmesh/meshsearch.h"
#include "navmesh/nodelocator.h"

#include <fstream>
#include <pugixml.hpp>
#include <sstream>

namespace ZUNO::Benchmarks {

using Pathfinder::Interface;

namespace {

/// Seconds per expansion, and seconds for a search of 100 expansions with its opening.
struct Speed {
    double mExpansion;
    double mShortSearch;
    std::size_t mGraphBytes;
};

Speed measureSpeed(unsigned int nodes) {
    const Sample sample = Sample::floor(nodes);
    const HostKit::Session session(sample.file());
    std::mt19937 random(2);
    std::vector<double> expansions;
    std::vector<double> searches;
    for (int i = 0; i < 400; ++i) {
        const Journey query{sample.pick(random), sample.pick(random)};
        int id = -1;
        int state = 0;
        const double seconds = secondsOf([&] {
            id = Interface::initPathSearch(query.mFrom, query.mTo);
            state = Interface::runPathSearch(id, 100);
        });
        if (state == Pathfinder::PATH_RUNNING)
            searches.push_back(seconds);
        if (state == Pathfinder::PATH_RUNNING) {
            const double more = secondsOf([&] { state = Interface::runPathSearch(id, 200); });
            if (state == Pathfinder::PATH_RUNNING)
                expansions.push_back(more / 200);
        }
        Interface::closePathSearch(id);
    }
    const NavMesh::MeshGraph graph(sample.shared(), Common::gObjectAllocator);
    return {medianOf(expansions), medianOf(searches), graph.getMemoryUsage()};
}

} // namespace

void compareGrowth() {
    const Speed small = measureSpeed(1000);
    const Speed large = measureSpeed(100000);
    const auto show = [&](const char* what, const Pair& times, double goal) {
        if (!print(what, times, goal))
            std::printf("    because: the graph takes %zu KB against %zu KB\n",
                        large.mGraphBytes / 1024, small.mGraphBytes / 1024);
    };
    show("expansion on 100,000 nodes against 1,000", {large.mExpansion, small.mExpansion}, 1.5);
    show("search of 100 expansions on 100,000 against 1,000",
         {large.mShortSearch, small.mShortSearch}, 3);
}

namespace {

/// Says in which part of a load the time goes.
void showPartsOfLoading(const Sample& sample) {
    const auto& allocator = Common::gObjectAllocator;
    const auto microseconds = [](const std::function<void()>& part) {
        return compare(part, [] {}).mOurs * 1e6;
    };
    const double reading = microseconds([&] { const Tools::LoadedMesh mesh(sample.file()); });
    const double graph = microseconds([&] { NavMesh::MeshGraph(sample.shared(), allocator); });
    const double index = microseconds([&] { NavMesh::NodeLocator(sample.shared(), allocator); });
    std::printf("    because: reading and checking the mesh takes %.0f us, its graph %.0f us, its "
                "index %.0f us\n",
                reading, graph, index);
}

} // namespace

void compareLoading() {
    const Sample sample = Sample::floor(20000);
    std::ostringstream content;
    content << std::ifstream(sample.file(), std::ios::binary).rdbuf();
    const std::string document = content.str();
    const Pair load = compare([&] { const HostKit::Session session(sample.file()); },
                              [&] {
                                  std::string copy = document;
                                  pugi::xml_document tree;
                                  tree.load_buffer_inplace(copy.data(), copy.size());
                              });
    if (!print("loading the world of 20,000 nodes against pugixml", load, 3))
        showPartsOfLoading(sample);

    // the same mesh with a grid of a few cells: the difference is the grid
    std::string coarse = document;
    coarse.replace(coarse.find("<cubesize>"), 10, "<cubesize>50"); // 500 and more
    const TemporaryFile file(coarse);
    const Pair grid = compare([&] { const HostKit::Session session(sample.file()); },
                              [&] { const HostKit::Session session(file.name()); });
    if (!print("its grid of 1,000 x 1,000 cells, as a part of that",
               {grid.mOurs - grid.mTheirs, grid.mOurs}, 0.25))
        std::printf("    because: the rest takes %.0f us\n", grid.mTheirs * 1e6);
}

void showMemory(const Sample& sample) {
    HostKit::Session session(sample.file());
    const auto& allocator = Common::gObjectAllocator;
    const NavMesh::MeshGraph graph(sample.shared(), allocator);
    const NavMesh::NodeLocator locator(sample.shared(), allocator);
    const auto nodes = static_cast<double>(sample.nodes());
    const auto bytesOf = [&](const auto& part) {
        return static_cast<double>(part.getMemoryUsage()) / nodes;
    };
    if (!printFigure("bytes of graph and index, a node, " + sample.label(),
                     bytesOf(graph) + bytesOf(locator), 64))
        std::printf("    because: the graph takes %.1f and the index %.1f of them\n",
                    bytesOf(graph), bytesOf(locator));
    std::mt19937 random(3);
    constexpr int searches = 200;
    const std::uint64_t before = session.memory().mBytes;
    for (int i = 0; i < searches; ++i)
        Interface::runPathSearch(
            Interface::initPathSearch(sample.pick(random), sample.pick(random)), 50);
    const double each = static_cast<double>(session.memory().mBytes - before) / searches;
    printFigure("bytes of an open search, " + sample.label(), each, 10240);
}

} // namespace ZUNO::Benchmarks
