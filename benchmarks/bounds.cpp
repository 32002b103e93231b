// Meshes of at most 1 MB that are made to cost much: what a load takes of time and memory, and the
// slowest query and expansion of those that run.
#include "common/callback/reportcallback.h"
#include "common/exceptions/exception.h"
#include "hostkit/explain.h"
#include "hostkit/foundation.h"
#include "hostkit/heapmemorycallback.h"
#include "hostkit/memoryfilecallback.h"
#include "hostkit/meshfile.h"
#include "hostkit/meshview.h"
#include "hostkit/straightpath.h"
#include "pathfinder/interface.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <optional>
#include <random>

namespace {

using namespace ZUNO;
using Pathfinder::Interface;
using Mesh = NavMesh::NavMeshContainer;
using Point2 = Mesh::Point2;
using Point3 = Mesh::Point3;

/// Of the processor, whatever else the machine does.
double secondsOf(const std::function<void()>& action) {
    const std::clock_t begin = std::clock();
    action();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// A mesh in the making, in the plane of x and z.
class Builder {
public:
    explicit Builder(float cubeSize) {
        mMesh.mNormal = {0, 1, 0};
        mMesh.mXAxis = {1, 0, 0};
        mMesh.mYAxis = {0, 0, 1};
        mMesh.mCubeSize = cubeSize;
        mMesh.mHeights.push_back(2);
    }
    std::uint32_t corner(float x, float z) {
        mMesh.mVertices.push_back({x, 0, z});
        return static_cast<std::uint32_t>(mMesh.mVertices.size() - 1);
    }
    void node(const std::vector<std::uint32_t>& corners, const std::vector<int>& neighbours) {
        auto& added = mMesh.mNodes.emplace_back(mMesh.getAllocator());
        added.mHeightClass = 0;
        added.mPolygon.assign(corners.begin(), corners.end());
        added.mNeighbours.assign(neighbours.begin(), neighbours.end());
    }
    void box(float x, float z, float width, float depth, const std::vector<int>& neighbours) {
        node({corner(x, z), corner(x + width, z), corner(x + width, z + depth),
              corner(x, z + depth)},
             neighbours);
    }
    Mesh mMesh;
};

/// One square, whose grid has so many columns and rows.
void fillGrid(Builder& mesh, float columns, float rows) {
    mesh.box(0, 0, columns, rows, {});
}
/// Nodes on the same spot, each a neighbour of the next ones.
void fillStack(Builder& mesh, int count, float side, int links) {
    const std::vector<std::uint32_t> ring{mesh.corner(0, 0), mesh.corner(side, 0),
                                          mesh.corner(side, side), mesh.corner(0, side)};
    for (int i = 0; i < count; ++i) {
        std::vector<int> neighbours;
        for (int k = 1; k <= links; ++k)
            neighbours.push_back((i + k) % count);
        mesh.node(ring, neighbours);
    }
}
/// One round node of so many corners.
void fillRound(Builder& mesh, int corners, float radius) {
    std::vector<std::uint32_t> ring;
    for (int i = 0; i < corners; ++i) {
        const double angle = 6.283185307179586 * i / corners;
        ring.push_back(mesh.corner(static_cast<float>(radius * std::cos(angle)),
                                   static_cast<float>(radius * std::sin(angle))));
    }
    mesh.node(ring, {});
}
/// Slivers from one corner to the far side, each a neighbour of the one beside it.
void fillFan(Builder& mesh, int count, float size) {
    const std::uint32_t tip = mesh.corner(0, 0);
    for (int i = 0; i < count; ++i) {
        const float z = size * static_cast<float>(i) / static_cast<float>(count);
        const float next = size * static_cast<float>(i + 1) / static_cast<float>(count);
        mesh.node({tip, mesh.corner(size, z), mesh.corner(size, next)},
                  {i - 1, -1, i + 1 == count ? -1 : i + 1});
    }
}
/// Boxes at random, linked at random; `away` lies a goal so far off that estimates are coarse.
void fillTangle(Builder& mesh, int count, int links, float away) {
    std::mt19937 random(7);
    for (int i = 0; i < count; ++i) {
        std::vector<int> neighbours;
        for (int k = 0; k < links; ++k)
            neighbours.push_back(static_cast<int>(random() % static_cast<unsigned>(count)));
        if (i == 0) // far off, and reached from the last one
            mesh.box(away, away, away / 8 + 1, away / 8 + 1, neighbours);
        else
            mesh.box(static_cast<float>(random() % 1000), static_cast<float>(random() % 1000), 1, 1,
                     i + 1 == count ? std::vector<int>{0, i - 1} : neighbours);
    }
}
/// A hub with many leaves, which is reached over a long way first and by many short steps later.
/// The goal is so far off that all estimates are one, so that the cheaper way passes its saving on.
void fillSavings(Builder& mesh, int leaves, int steps) {
    const int hub = 2;
    const int firstStep = 3;
    const int firstLeaf = firstStep + steps;
    mesh.box(1e9F, 0, 1e8F, 1e8F, {}); // the goal
    mesh.box(-800, 700, 2, 2, {hub});  // the long way
    std::vector<int> all;
    for (int i = 0; i < leaves; ++i)
        all.push_back(firstLeaf + i);
    mesh.box(static_cast<float>(steps), 0, 1, 1, all);
    for (int i = 0; i < steps; ++i)
        mesh.box(static_cast<float>(i), 0, 1, 1,
                 i == 0           ? std::vector<int>{1, firstStep + 1}
                 : i + 1 == steps ? std::vector<int>{hub}
                                  : std::vector<int>{firstStep + i + 1});
    const std::vector<std::uint32_t> ring{mesh.corner(0, 50), mesh.corner(9, 50),
                                          mesh.corner(9, 59)};
    for (int i = 0; i < leaves; ++i)
        mesh.node(ring, i == 0 ? std::vector<int>{0} : std::vector<int>{});
}
/// A chain of nodes, each reached from the last by a short way and by one that is longer by half as
/// much as the one before. All are reached over a long way first; when a cheaper one turns up, the
/// last in the chain gets cheaper for each choice of ways, the dearest first.
void fillDoubling(Builder& mesh, int stages, float away) {
    const int steps = 4 * stages;
    const int firstStep = 3;
    const int chain = firstStep + steps; // of each stage: the long way, the short one, its end
    const auto longest = static_cast<float>(1 << stages);
    mesh.box(away, 0, away / 8, away / 8, {}); // the goal
    mesh.box(-4 * longest, 0, 2, 2, {2});      // the long way
    mesh.box(0, 0, 1, 1, {chain + 1, chain});  // the chain's begin
    for (int i = 0; i < steps; ++i)
        mesh.box(static_cast<float>(i - steps), 0, 1, 1,
                 i == 0           ? std::vector<int>{1, firstStep + 1}
                 : i + 1 == steps ? std::vector<int>{2}
                                  : std::vector<int>{firstStep + i + 1});
    for (int i = 0; i < stages; ++i) {
        const int stage = chain + 3 * i;
        const auto x = static_cast<float>(2 * i);
        mesh.box(x + 1, longest / static_cast<float>(2 << i), 1, 1, {stage + 2});
        mesh.box(x + 1, 0, 1, 1, {stage + 2});
        mesh.box(x + 2, 0, 1, 1,
                 i + 1 == stages ? std::vector<int>{} : std::vector<int>{stage + 4, stage + 3});
    }
}
/// A hub whose leaves lie each a little farther than the last, and all nearer than what waits;
/// without anything that waits they are neighbours in the opposite order.
void fillRow(Builder& mesh, int leaves, bool isTurned = false) {
    const std::vector<int> back{1};
    std::vector<int> all;
    for (int i = 0; i < leaves; ++i)
        all.push_back(isTurned ? 3 + leaves - i : 4 + i);
    mesh.box(-900, 0, 1, 1, {});                                                    // the goal
    mesh.box(0, 0, 1, 1, all);                                                      // the hub
    mesh.box(9e5F, 0, 1000, 1000, {0});                                             // what waits
    mesh.box(-3, 0, 1, 1, isTurned ? std::vector<int>{1} : std::vector<int>{1, 2}); // the start
    const std::uint32_t tip = mesh.corner(2, 0);
    for (int i = 0; i < leaves; ++i)
        mesh.node({tip, mesh.corner(3 + static_cast<float>(i), 0), mesh.corner(3, 1)}, back);
}
/// Two rows of hubs with as many borders as can be searched.
void fillHubs(Builder& mesh, int hubs, int borders) {
    for (int i = 0; i < hubs; ++i) {
        std::vector<int> neighbours;
        for (int k = 0; k < borders; ++k)
            neighbours.push_back((i + 1 + k) % hubs);
        mesh.box(static_cast<float>(i % 50) * 3, static_cast<float>(i / 50) * 3, 2, 2, neighbours);
    }
}

/// Keeps the first report's text.
class ReportingMemory : public HostKit::HeapMemoryCallback,
                        public Common::Callback::ReportCallback {
public:
    void report(const char* text, const char*, unsigned int) noexcept override {
        const char* const message = std::strstr(text, "Error Message: ");
        if (mReport.empty() && message != nullptr)
            mReport = message + std::strlen("Error Message: ");
    }
    std::string mReport;
};

class Trial {
public:
    Trial(const char* name, const std::string& text) : mName(name) {
        mFiles = new HostKit::MemoryFileCallback("mesh", text);
        mFileCallback = mFiles;
        mMemory = new ReportingMemory;
        mMemoryCallback = mMemory;
    }
    void run() {
        bool isLoaded = false;
        const double load = secondsOf([&] {
            try {
                isLoaded =
                    Interface::initWorldRepresentation("mesh", mMemoryCallback, mFileCallback, "");
            } catch (Common::Exceptions::Exception* exception) {
                mMemory->mReport = exception->getMessage().getConstCharPtr();
                delete exception;
            }
        });
        const auto peak = static_cast<double>(mMemory->figures().mPeakBytes) / (1 << 20);
        std::printf("%-28s %7.0f %8.3f %7.0f", mName,
                    static_cast<double>(mFiles->mFiles["mesh"].size()) / 1000, load, peak);
        if (isLoaded)
            ask();
        else
            std::printf("  refused: %.110s", mMemory->mReport.c_str());
        std::printf("\n");
        std::fflush(stdout);
        Interface::close();
    }

private:
    void ask() {
        std::mt19937 random(3);
        const Common::SharedPtr<Mesh> mesh = HostKit::readMesh("mesh", mFileCallback);
        const auto place = [&] {
            const auto& polygon = mesh->mNodes[random() % mesh->mNodes.size()].mPolygon;
            const Point3& a = mesh->mVertices[polygon[0]];
            const Point3& b = mesh->mVertices[polygon[polygon.size() / 2]];
            return Point3((a.mX + b.mX) / 2, a.mY, (a.mZ + b.mZ) / 2);
        };
        const auto slowest = [](double& worst, const std::function<void()>& action) {
            worst = std::max(worst, secondsOf(action));
        };
        const auto fourth =
            std::min<std::int32_t>(3, static_cast<std::int32_t>(mesh->mNodes.size()) - 1);
        double query = 0;
        double expansion = 0;
        for (int i = 0; i < 40; ++i) {
            const Point3 from = i == 8 ? mesh->getNodeCenter(fourth) : place();
            const Point3 to = i % 4 == 0 ? mesh->getNodeCenter(0) : place();
            slowest(query, [&] { Interface::getGroundHeight({from.mX, from.mZ}); });
            Common::Geom::Ray2D<float, float> ray({from.mX, from.mZ}, {to.mX * 2, to.mZ});
            slowest(query, [&] { Interface::traceRay(ray); });
            int id = -1;
            slowest(query, [&] { id = Interface::initPathSearch(from, to); });
            int state = id < 0 ? 2 : 1;
            for (int k = 0; k < 30'000 && state == 1; ++k)
                slowest(expansion, [&] { state = Interface::runPathSearch(id, 1); });
            Point3 waypoint(0, 0, 0);
            slowest(query, [&] { Interface::getNextWaypoint(id, waypoint); });
            slowest(query, [&] { Interface::closePathSearch(id); });
        }
        std::printf(" %9.3f %9.0f", query * 1e3, expansion * 1e6);
        askView(*mesh, place);
    }
    void askView(const Mesh& mesh, const std::function<Point3()>& place) const {
        std::optional<HostKit::MeshView> view;
        std::printf(" %8.3f", secondsOf([&] { view.emplace(mesh); }));
        double worst[6] = {};
        for (int i = 0; i < 20; ++i) {
            const Point3 from = place();
            const Point3 to = place();
            HostKit::Place at;
            const auto timed = [&](int which, const std::function<void()>& action) {
                worst[which] = std::max(worst[which], secondsOf(action));
            };
            timed(0, [&] { at = HostKit::findGround(*view, from); });
            timed(1, [&] { HostKit::findNearest(*view, {from.mX, 0, -to.mZ}, 1000, 1000); });
            timed(2, [&] { HostKit::moveAlongSurface(*view, at, to); });
            timed(3, [&] { HostKit::walkStraight(*view, at, to); });
            timed(4, [&] { HostKit::distanceToWall(*view, at, 100); });
            timed(5, [&] { HostKit::explain(*view, from, to); });
        }
        for (const double seconds : worst)
            std::printf(" %7.2f", seconds * 1e3);
    }

    const char* mName;
    HostKit::MemoryFileCallback* mFiles;
    ReportingMemory* mMemory;
    HostKit::MeshFiles mFileCallback;
    Common::SharedPtr<Common::Callback::MemoryCallback> mMemoryCallback;
};

struct Case {
    const char* mName;
    float mCubeSize;
    std::function<void(Builder&)> mFill;
};

const Case theCases[] = {
    {"a grid of 5000 x 5000", 1, [](Builder& m) { fillGrid(m, 4999, 4999); }},
    {"a grid of 23000 x 23000", 1, [](Builder& m) { fillGrid(m, 22999, 22999); }},
    {"one row of 25 million", 1, [](Builder& m) { fillGrid(m, 8388608, 0.5F); }},
    {"covered 100 times", 1, [](Builder& m) { fillStack(m, 100, 2000, 1); }},
    {"covered 13 times, fine", 1, [](Builder& m) { fillStack(m, 13, 4999, 1); }},
    {"5,000 nodes on one spot", 1, [](Builder& m) { fillStack(m, 5000, 100, 4); }},
    {"25 nodes, all linked", 1, [](Builder& m) { fillStack(m, 12, 100, 4000); }},
    {"9,000 corners", 1, [](Builder& m) { fillRound(m, 9000, 2000); }},
    {"20,000 corners, small", 1, [](Builder& m) { fillRound(m, 18000, 50); }},
    {"4,500 slivers", 1, [](Builder& m) { fillFan(m, 4500, 2000); }},
    {"a tangle", 1, [](Builder& m) { fillTangle(m, 3000, 6, 2000); }},
    {"a tangle, goal at 1e6", 1000, [](Builder& m) { fillTangle(m, 3000, 6, 1e6F); }},
    {"a tangle, goal at 1e9", 1e6F, [](Builder& m) { fillTangle(m, 3000, 6, 1e9F); }},
    {"a dense tangle", 1, [](Builder& m) { fillTangle(m, 200, 200, 2000); }},
    {"a dense tangle, 1e9", 1e6F, [](Builder& m) { fillTangle(m, 200, 200, 1e9F); }},
    {"savings for 4,000 nodes", 1e6F, [](Builder& m) { fillSavings(m, 4000, 60); }},
    {"4,000 leaves in a row", 1000, [](Builder& m) { fillRow(m, 4000); }},
    {"4,000, the farthest first", 1000, [](Builder& m) { fillRow(m, 4000, true); }},
    {"savings, doubling 10 times", 1e12F, [](Builder& m) { fillDoubling(m, 10, 1e15F); }},
    {"savings, doubling 20 times", 1e12F, [](Builder& m) { fillDoubling(m, 20, 1e15F); }},
    {"hubs", 1, [](Builder& m) { fillHubs(m, 11, 4000); }},
    {"many hubs", 1, [](Builder& m) { fillHubs(m, 210, 210); }},
};

void runAll(int argc, char** argv) {
    std::printf("%-28s %7s %8s %7s %9s %9s %8s  view's: ground nearest move straight wall "
                "explain [ms]\n",
                "mesh", "KB", "load [s]", "MB", "query[ms]", "exp. [us]", "view [s]");
    for (const Case& row : theCases) {
        if (argc > 1 && std::string(row.mName).find(argv[1]) == std::string::npos)
            continue;
        Builder builder(row.mCubeSize);
        row.mFill(builder);
        Trial(row.mName, HostKit::textOf(builder.mMesh)).run();
    }
    if (argc > 1)
        return;
    const auto repeated = [](const std::string& piece) {
        std::string text = "<a>";
        while (text.size() < 1'000'000)
            text += piece;
        return text + "</a>";
    };
    Trial("nested as deep as it goes", repeated("<a>")).run();
    Trial("a name of a megabyte", "<" + std::string(1'000'000, 'n') + "/>").run();
    Trial("elements alone", repeated("<a/>")).run();
    Trial("line feeds alone", repeated("\n")).run();
    Trial("comments alone", repeated("<!---->")).run();
    Trial("attributes alone", "<a " + repeated("b=\"\" ")).run();
}

} // namespace

int main(int argc, char** argv) {
    const HostKit::Foundation foundation;
    runAll(argc, argv);
}
