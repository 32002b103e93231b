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
};

Speed measureSpeed(unsigned int nodes) {
    const Sample sample(nodes);
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
    return {medianOf(expansions), medianOf(searches)};
}

} // namespace

void compareGrowth() {
    const Speed small = measureSpeed(1000);
    const Speed large = measureSpeed(100000);
    print("expansion on 100,000 nodes against 1,000", {large.mExpansion, small.mExpansion}, 1.5);
    print("search of 100 expansions on 100,000 against 1,000",
          {large.mShortSearch, small.mShortSearch}, 3);
}

void compareLoading() {
    const Sample sample(20000);
    std::ostringstream content;
    content << std::ifstream(sample.file(), std::ios::binary).rdbuf();
    const std::string document = content.str();
    const Pair load = compare([&] { const HostKit::Session session(sample.file()); },
                              [&] {
                                  std::string copy = document;
                                  pugi::xml_document tree;
                                  tree.load_buffer_inplace(copy.data(), copy.size());
                              });
    print("loading the world of 20,000 nodes against pugixml", load, 3);

    // the same mesh with a grid of a few cells: the difference is the grid
    std::string coarse = document;
    coarse.replace(coarse.find("<cubesize>"), 10, "<cubesize>50"); // 500 and more
    const TemporaryFile file(coarse);
    const Pair grid = compare([&] { const HostKit::Session session(sample.file()); },
                              [&] { const HostKit::Session session(file.name()); });
    print("its grid of 1,000 x 1,000 cells, as a part of that",
          {grid.mOurs - grid.mTheirs, grid.mOurs}, 0.25);
}

void showMemory(const Sample& sample) {
    HostKit::Session session(sample.file());
    const auto& allocator = Common::gObjectAllocator;
    const NavMesh::MeshGraph graph(sample.shared(), allocator);
    const NavMesh::NodeLocator locator(sample.shared(), allocator);
    std::size_t borders = 0;
    for (const auto& node : sample.mesh().mNodes)
        borders += node.mNeighbours.size();
    const auto nodes = static_cast<double>(sample.nodes());
    const double held = static_cast<double>(graph.getMemoryUsage() + locator.getMemoryUsage());
    const double allowed = 64 * nodes + 8 * static_cast<double>(borders);
    std::printf(
        "    index, centres and lengths: %.1f bytes a node with its borders, goal %.1f: %s\n",
        held / nodes, allowed / nodes, held <= allowed ? "yes" : "NO");
    std::mt19937 random(3);
    constexpr int searches = 200;
    const std::uint64_t before = session.memory().mBytes;
    for (int i = 0; i < searches; ++i)
        Interface::runPathSearch(
            Interface::initPathSearch(sample.pick(random), sample.pick(random)), 50);
    const double each = static_cast<double>(session.memory().mBytes - before) / searches;
    std::printf("    an open search after 50 expansions: %.0f bytes, goal 10240: %s\n", each,
                each <= 10240 ? "yes" : "NO");
}

} // namespace ZUNO::Benchmarks
