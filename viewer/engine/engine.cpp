// The runtime as a page sees it: one world, asked through the same functions as by any host.
#include "navmesh/planegrid.h"
#include "pathfinder/navmeshinstance.h"
#include "tools/picture/meshfigures.h"
#include "viewer/engine/guarded.h"
#include "viewer/engine/meshdescription.h"
#include "viewer/engine/world.h"

#include <cmath>
#include <emscripten/bind.h>
#include <fstream>
#include <stdexcept>

namespace ZUNO::Viewer {

using Common::Math::Vec2;
using Common::Math::Vec3;
using emscripten::val;

namespace {

/// Opens a mesh file of either form, given by its bytes, and starts a world over it if it is fit
/// for one. Once in an engine's life.
val openMesh(const std::string& bytes) {
    return guarded([&] {
        constexpr const char* path = "/mesh";
        std::ofstream(path, std::ios::binary) << bytes;
        val description = val::undefined();
        std::string xml;
        {
            const Tools::LoadedMesh mesh(path, Tools::LoadedMesh::Defects::ACCEPTED);
            description = describe(mesh);
            xml = mesh.isBinary() ? mesh.toXML() : bytes;
            if (description["isFit"].as<bool>())
                theWorld().mView = std::make_unique<const HostKit::MeshView>(*mesh);
        }
        std::remove(path);
        if (theWorld().mView != nullptr)
            startWorld(xml);
        return description;
    });
}

val memory() {
    const HostKit::HeapMemoryCallback* const heap = theWorld().mHeap;
    const HostKit::MemoryFigures figures =
        heap != nullptr ? heap->figures() : HostKit::MemoryFigures{};
    val out = val::object();
    out.set("blocks", static_cast<double>(figures.mBlocks));
    out.set("bytes", static_cast<double>(figures.mBytes));
    out.set("peak", static_cast<double>(figures.mPeakBytes));
    return out;
}

/// Closes the world and tells what memory it left behind.
val closeWorld() {
    return guarded([] {
        endCrowd();
        theWorld().mExports.close();
        return memory();
    });
}

int openSearch(const Vec3<float>& start, const Vec3<float>& goal) {
    return guarded([&] { return theWorld().mExports.initPathSearch(start, goal); });
}

int runSearch(int id, unsigned int budget) {
    return guarded([&] { return theWorld().mExports.runPathSearch(id, budget); });
}

/// The waypoints that were not given yet, as x, y and z of each.
val takeWaypoints(int id) {
    return guarded([&] {
        std::vector<float> points;
        Vec3<float> waypoint;
        while (theWorld().mExports.getNextWaypoint(id, waypoint))
            points.insert(points.end(), {waypoint.mX, waypoint.mY, waypoint.mZ});
        return copyOf(points);
    });
}

float pathCost(int id) {
    return guarded([&] { return theWorld().mExports.getPathCost(id); });
}

bool closeSearch(int id) {
    return guarded([&] { return theWorld().mExports.closePathSearch(id); });
}

/// For each node 0: not visited, 1: open, 2: closed.
val nodeStates(int id) {
    return guarded([&] {
        auto* const world = Pathfinder::NavMeshInstance::getInstance();
        auto* const search = world != nullptr ? world->inspectSearch(id) : nullptr;
        if (search == nullptr)
            throw std::runtime_error("no such search");
        std::vector<std::uint8_t> states;
        const auto count = static_cast<std::uint32_t>(world->getNavMesh()->mNodes.size());
        for (std::uint32_t node = 0; node < count; ++node)
            states.push_back(static_cast<std::uint8_t>(search->stateOf(node)));
        return copyOf(states);
    });
}

int nodeAt(const Vec3<float>& point) {
    return guarded([&] {
        const auto* const world = Pathfinder::NavMeshInstance::getInstance();
        return world != nullptr ? world->getNavMesh()->findNode(point) : -1;
    });
}

bool isBlocked(const Vec2<float>& position) {
    return guarded([&] { return theWorld().mExports.isBlocked(position); });
}

float groundHeight(const Vec2<float>& position) {
    return guarded([&] { return theWorld().mExports.getGroundHeight(position); });
}

/// How far a ray gets, or -1 for all of its way.
float traceRay(const Vec3<float>& start, const Vec3<float>& end) {
    return guarded([&] {
        Common::Geom::Ray3D<float, float> ray(start, end);
        theWorld().mExports.traceRay(ray);
        return ray.mHitDistance;
    });
}

/// The blocking grid as queries see it, at most `mostCells` of it: every n-th cell of a larger one.
val blockingGrid(double mostCells) {
    return guarded([&] {
        const auto* const world = Pathfinder::NavMeshInstance::getInstance();
        if (world == nullptr)
            throw std::runtime_error("no world");
        const NavMesh::NavMeshContainer& mesh = *world->getNavMesh();
        const NavMesh::PlaneGrid grid = NavMesh::measurePlane(mesh);
        const double cells = static_cast<double>(grid.mColumns) * static_cast<double>(grid.mRows);
        const double step = std::max(std::ceil(std::sqrt(cells / mostCells)), 1.0);
        const float side = mesh.mCubeSize * static_cast<float>(step);
        const auto columns = static_cast<int>(std::ceil(static_cast<double>(grid.mColumns) / step));
        const auto rows = static_cast<int>(std::ceil(static_cast<double>(grid.mRows) / step));
        std::vector<float> heights; // NaN: blocked
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const float x = grid.mBounds.mMin.mX + (static_cast<float>(column) + 0.5F) * side;
                const float y = grid.mBounds.mMin.mY + (static_cast<float>(row) + 0.5F) * side;
                const Vec2<float> position = Tools::positionAt(mesh, {x, y});
                heights.push_back(theWorld().mExports.isBlocked(position)
                                      ? NAN
                                      : theWorld().mExports.getGroundHeight(position));
            }
        val out = val::object();
        out.set("columns", columns);
        out.set("rows", rows);
        out.set("side", side);
        out.set("x", grid.mBounds.mMin.mX);
        out.set("y", grid.mBounds.mMin.mY);
        out.set("step", step);
        out.set("heights", copyOf(heights));
        return out;
    });
}

EMSCRIPTEN_BINDINGS(engine) {
    emscripten::value_array<Vec2<float>>("Vec2")
        .element(&Vec2<float>::mX)
        .element(&Vec2<float>::mY);
    emscripten::value_array<Vec3<float>>("Vec3")
        .element(&Vec3<float>::mX)
        .element(&Vec3<float>::mY)
        .element(&Vec3<float>::mZ);
    emscripten::function("openMesh", &openMesh);
    emscripten::function("closeWorld", &closeWorld);
    emscripten::function("memory", &memory);
    emscripten::function("openSearch", &openSearch);
    emscripten::function("runSearch", &runSearch);
    emscripten::function("takeWaypoints", &takeWaypoints);
    emscripten::function("pathCost", &pathCost);
    emscripten::function("closeSearch", &closeSearch);
    emscripten::function("nodeStates", &nodeStates);
    emscripten::function("nodeAt", &nodeAt);
    emscripten::function("isBlocked", &isBlocked);
    emscripten::function("groundHeight", &groundHeight);
    emscripten::function("traceRay", &traceRay);
    emscripten::function("blockingGrid", &blockingGrid);
}

} // namespace
} // namespace ZUNO::Viewer
