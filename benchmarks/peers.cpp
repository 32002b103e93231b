// How the runtime stands against what a user would pick instead: ratios of medians, measured turn
// by turn in one run, with the goals that were set for them.
#include "benchmarks/detourpeer.h"
#include "hostkit/session.h"
#include "navmesh/interface.h"
#include "navmesh/meshsearch.h"
#include "navmesh/nodelocator.h"
#include "reference/comparison.h"
#include "reference/plainworld.h"
#include "tools/picture/loadedmesh.h"
#include "worlds/meshmodel.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <pugixml.hpp>
#include <random>
#include <sstream>

namespace ZUNO::Benchmarks {
namespace {

using Common::Math::Vec2;
using Common::Math::Vec3;
using Pathfinder::Interface;
using Clock = std::chrono::steady_clock;

constexpr int rounds = 25;

double secondsOf(const std::function<void()>& action) {
    const auto begin = Clock::now();
    action();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

double medianOf(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

struct Pair {
    double mOurs;
    double mTheirs;
};

/// The medians of two actions that take turns.
Pair compare(const std::function<void()>& ours, const std::function<void()>& theirs) {
    std::vector<double> our;
    std::vector<double> their;
    for (int i = 0; i < rounds; ++i) {
        our.push_back(secondsOf(ours));
        their.push_back(secondsOf(theirs));
    }
    return {medianOf(our), medianOf(their)};
}

void printHead() {
    std::printf("%-52s %8s %8s %10s %10s  %s\n", "what", "ratio", "goal", "ours/us", "theirs/us",
                "holds");
}

void print(const std::string& what, double ratio, double goal, double ours, double theirs) {
    std::printf("%-52s %8.2f %8.2f %10.2f %10.2f  %s\n", what.c_str(), ratio, goal, ours * 1e6,
                theirs * 1e6, ratio <= goal ? "yes" : "NO");
    std::fflush(stdout);
}

/// A mesh on disk, loaded beside the runtime's own, and points on its nodes.
class Sample {
public:
    /// The mesh of a file.
    explicit Sample(const std::string& file) : mFile(file), mMesh(file) { takePoints(); }
    /// A floor of about so many nodes.
    explicit Sample(unsigned int nodes) : mFile(makeFloor(nodes)), mMesh(mFile), mIsOurs(true) {
        takePoints();
    }
    ~Sample() {
        if (mIsOurs)
            std::filesystem::remove(mFile);
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    const NavMesh::NavMeshContainer& mesh() const { return *mMesh; }
    Common::SharedPtr<NavMesh::NavMeshContainer> shared() const { return mMesh.shared(); }
    const std::string& file() const { return mFile; }
    std::size_t nodes() const { return mMesh->mNodes.size(); }
    const Vec3<float>& pick(std::mt19937& random) const {
        return mPoints[random() % mPoints.size()];
    }

private:
    static std::string makeFloor(unsigned int nodes) {
        const std::string file = (std::filesystem::temp_directory_path() /
                                  ("zunopeers" + std::to_string(nodes) + ".xml"))
                                     .string();
        Worlds::MeshModel floor = Worlds::makeFloor(nodes, 1);
        int extent = 0; // in quarters, from 0 on
        for (const auto& corner : floor.mVertices)
            extent = std::max({extent, corner.mX, corner.mZ});
        floor.mCubeSize = static_cast<float>(extent) / 4 / 1000;
        std::ofstream(file, std::ios::binary) << floor.toXML("benchmark");
        return file;
    }
    void takePoints() {
        for (std::size_t id = 0; id < nodes(); ++id)
            mPoints.push_back(mMesh->getNodeCenter(static_cast<std::int32_t>(id)));
    }

    std::string mFile;
    Tools::LoadedMesh mMesh;
    bool mIsOurs = false;
    std::vector<Vec3<float>> mPoints;
};

struct Query {
    Vec3<float> mFrom;
    Vec3<float> mTo;
};

/// A query from open to close; whether there was a path.
bool ask(const Query& query) {
    const int id = Interface::initPathSearch(query.mFrom, query.mTo);
    const bool isFound = id >= 0 && Interface::runPathSearch(id, 0xFFFFFFFF) == 0;
    Vec3<float> waypoint;
    if (isFound) {
        Interface::getNextWaypoint(id, waypoint);
        Interface::getPathCost(id);
    }
    Interface::closePathSearch(id);
    return isFound;
}

std::vector<Query> findableQueries(const Sample& sample, std::size_t count) {
    std::mt19937 random(5);
    std::vector<Query> queries;
    while (queries.size() < count) {
        const Query query{sample.pick(random), sample.pick(random)};
        if (ask(query))
            queries.push_back(query);
    }
    return queries;
}

void compareWithDetour(const Sample& sample) {
    const HostKit::Session session(sample.file());
    const DetourPeer peer(sample.mesh());
    const bool isLarge = sample.nodes() >= 3500;
    const double queryGoal = sample.nodes() >= 20000 ? 0.35 : (isLarge ? 0.4 : 1.0);
    const std::string on = " on " + std::to_string(sample.nodes()) + " nodes";
    const std::vector<Query> queries = findableQueries(sample, isLarge ? 40 : 400);
    const auto count = static_cast<double>(queries.size());
    const auto locate = [&](const Vec3<float>& p) { return peer.locate(p.mX, p.mY, p.mZ); };
    const auto lost = std::ranges::count_if(queries, [&](const Query& query) {
        return peer.findPath(locate(query.mFrom), locate(query.mTo)) == 0;
    });
    if (lost != 0)
        std::printf("    Detour finds no path for %td of %zu queries\n", lost, queries.size());

    const Pair whole = compare(
        [&] {
            for (const Query& query : queries)
                ask(query);
        },
        [&] {
            for (const Query& query : queries)
                peer.findPath(locate(query.mFrom), locate(query.mTo));
        });
    print("whole query" + on, whole.mOurs / whole.mTheirs, queryGoal, whole.mOurs / count,
          whole.mTheirs / count);

    std::uint64_t expansions = 0;
    std::int64_t visited = 0;
    for (const Query& query : queries) {
        const int id = Interface::initPathSearch(query.mFrom, query.mTo);
        while (Interface::runPathSearch(id, 1) == 1)
            ++expansions;
        Interface::closePathSearch(id);
        peer.findPath(locate(query.mFrom), locate(query.mTo));
        visited += peer.visitedPolygons();
    }
    std::printf("    expansions a query %.0f, Detour's visited polygons %.0f\n",
                static_cast<double>(expansions) / count, static_cast<double>(visited) / count);

    const int repeats = 20;
    const Pair location = compare(
        [&] {
            for (int i = 0; i < repeats; ++i)
                for (const Query& query : queries)
                    Interface::closePathSearch(Interface::initPathSearch(query.mFrom, query.mTo));
        },
        [&] {
            for (int i = 0; i < repeats; ++i)
                for (const Query& query : queries) {
                    locate(query.mFrom);
                    locate(query.mTo);
                }
        });
    if (isLarge)
        print("opening a search, two locations" + on, location.mOurs / location.mTheirs, 0.3,
              location.mOurs / count / repeats, location.mTheirs / count / repeats);

    std::mt19937 random(9);
    std::vector<std::pair<DetourPeer::Place, Vec3<float>>> rays;
    for (int i = 0; i < 2000; ++i) {
        const Vec3<float>& from = sample.pick(random);
        rays.emplace_back(locate(from), sample.pick(random));
    }
    float sum = 0;
    const Pair cast = compare(
        [&] {
            for (const auto& [from, to] : rays) {
                Common::Geom::Ray2D<float, float> ray({from.mPosition[0], from.mPosition[2]},
                                                      {to.mX, to.mZ});
                Interface::traceRay(ray);
                sum += ray.mHitDistance;
            }
        },
        [&] {
            for (const auto& [from, to] : rays) {
                const float end[3] = {to.mX, to.mY, to.mZ};
                sum += peer.castRay(from, end);
            }
        });
    print("ray" + on, cast.mOurs / cast.mTheirs, 1.0, cast.mOurs / 2000, cast.mTheirs / 2000);
    if (std::isnan(sum))
        std::puts("a ray ends nowhere");
}

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
        const Query query{sample.pick(random), sample.pick(random)};
        int id = -1;
        int state = 0;
        const double seconds = secondsOf([&] {
            id = Interface::initPathSearch(query.mFrom, query.mTo);
            state = Interface::runPathSearch(id, 100);
        });
        if (state == 1)
            searches.push_back(seconds);
        if (state == 1) {
            const double more = secondsOf([&] { state = Interface::runPathSearch(id, 200); });
            if (state == 1)
                expansions.push_back(more / 200);
        }
        Interface::closePathSearch(id);
    }
    return {medianOf(expansions), medianOf(searches)};
}

void compareGrowth() {
    const Speed small = measureSpeed(1000);
    const Speed large = measureSpeed(100000);
    print("expansion on 100,000 nodes against 1,000", large.mExpansion / small.mExpansion, 2,
          large.mExpansion, small.mExpansion);
    print("search of 100 expansions on 100,000 against 1,000",
          large.mShortSearch / small.mShortSearch, 3, large.mShortSearch, small.mShortSearch);
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
    print("loading the world of 20,000 nodes against pugixml", load.mOurs / load.mTheirs, 6,
          load.mOurs, load.mTheirs);

    // the same mesh with a grid of a few cells: the difference is the grid
    std::string coarse = document;
    coarse.replace(coarse.find("<cubesize>"), 10, "<cubesize>50"); // 500 and more
    const std::string file = sample.file() + ".coarse";
    std::ofstream(file, std::ios::binary) << coarse;
    const Pair grid = compare([&] { const HostKit::Session session(sample.file()); },
                              [&] { const HostKit::Session session(file); });
    std::filesystem::remove(file);
    print("its grid of 1,000 x 1,000 cells, as a part of that",
          (grid.mOurs - grid.mTheirs) / grid.mOurs, 0.25, grid.mOurs - grid.mTheirs, grid.mOurs);
}

void compareManySearches() {
    const Sample sample(20000);
    const HostKit::Session session(sample.file());
    std::mt19937 random(4);
    const auto expandSome = [&](int searches, int frames) {
        std::vector<int> ids;
        for (int i = 0; i < searches; ++i)
            ids.push_back(Interface::initPathSearch(sample.pick(random), sample.pick(random)));
        std::uint64_t slices = 0;
        const double seconds = secondsOf([&] {
            for (int frame = 0; frame < frames; ++frame)
                for (const int id : ids)
                    slices += Interface::runPathSearch(id, 50) == 1 ? 1 : 0;
        });
        for (const int id : ids)
            Interface::closePathSearch(id);
        return slices != 0 ? seconds / static_cast<double>(slices) / 50 : 0.0;
    };
    std::vector<double> alone;
    std::vector<double> together;
    for (int i = 0; i < 200; ++i)
        if (const double seconds = expandSome(1, 10); seconds > 0)
            alone.push_back(seconds);
    for (int i = 0; i < 5; ++i)
        together.push_back(expandSome(1000, 10));
    print("expansion among 1,000 searches against one alone", medianOf(together) / medianOf(alone),
          1.3, medianOf(together), medianOf(alone));
}

/// The world's answers against those of the plain parts, bit for bit.
void compareWithPlainForms(const Sample& sample) {
    const HostKit::Session session(sample.file());
    Interface exports;
    Reference::PlainWorld plain(sample.shared(), NavMesh::getAllocator());
    Reference::Questions questions(6);
    Reference::SearchComparison searches(plain, exports, questions);
    std::string difference = searches.run(questions.journeysOver(sample.mesh(), 300), 4, 64);
    Vec2<float> low(0, 0);
    Vec2<float> high(0, 0);
    Interface::getBoundingRectangle(low, high);
    if (difference.empty())
        difference = Reference::compareRays(plain, exports, questions.raysOver(low, high, 3000));
    std::printf("    300 queries and 3,000 rays against the plain forms: %s\n",
                difference.empty() ? "the same" : difference.c_str());
}

void showMemory(const Sample& sample) {
    HostKit::Session session(sample.file());
    const auto& allocator = NavMesh::getAllocator();
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
    std::printf(
        "    an open search after 50 expansions: %.0f bytes beside its 12 bytes and 2 bits a "
        "node, goal 4096: %s\n",
        each, each <= 4096 ? "yes" : "NO");
}

void compareAll(const Sample& sample) {
    try {
        compareWithDetour(sample);
    } catch (const std::runtime_error& error) {
        std::printf("    %s\n", error.what());
    }
    compareWithPlainForms(sample);
    showMemory(sample);
}

} // namespace
} // namespace ZUNO::Benchmarks

int main(int argc, char** argv) {
    using namespace ZUNO::Benchmarks;
    try {
        printHead();
        for (const unsigned int nodes : {60U, 4000U, 21000U})
            compareAll(Sample(nodes));
        for (int i = 1; i < argc; ++i) {
            std::printf("%s\n", argv[i]);
            compareAll(Sample(std::string(argv[i])));
        }
        compareGrowth();
        compareLoading();
        compareManySearches();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zunopeers: %s\n", error.what());
        return 2;
    }
    return 0;
}
