// A character that walks: the code of docs/straight-paths.md, in one program.
#include "hostkit/corridor.h"
#include "hostkit/explain.h"
#include "hostkit/meshloading.h"
#include "hostkit/pathpoints.h"
#include "hostkit/session.h"

#include <cstdio>
#include <exception>

using namespace ZUNO::HostKit;
using ZUNO::Pathfinder::Interface;

namespace {

/// All waypoints of a path; whether there is one.
bool searchPath(const Position& start, const Position& goal, std::vector<Position>& waypoints) {
    const int search = Interface::initPathSearch(start, goal);
    if (search == ZUNO::Pathfinder::noSearch)
        return false;
    const int result = Interface::runPathSearch(search, 0xFFFFFFFF);
    for (Position point; Interface::getNextWaypoint(search, point);)
        waypoints.push_back(point);
    Interface::closePathSearch(search);
    return result == ZUNO::Pathfinder::PATH_FOUND;
}

int walk(const char* mesh) {
    // the world, and beside it the host's own view of the same mesh
    const Session session(mesh);
    const MeshView view = loadMeshView(mesh);

    // a start beside the mesh is snapped to it
    const NearestPlace start = findNearest(view, {-0.5F, 0, 2}, 2, 1);
    const Position goal(50, 5, 25);
    std::printf("snapped by %g\n", double{start.mDistance});

    std::vector<Position> waypoints;
    if (!searchPath(start.mPosition, goal, waypoints)) {
        std::fputs(describe(view, explain(view, start.mPosition, goal)).c_str(), stdout);
        return 1;
    }

    // straight from corner to corner, instead of by the nodes' centres
    PathStraightener straightener(view);
    StraightPath path;
    straightener.straighten(start.mPosition, goal, waypoints, StraightForm::IMPROVED, path);
    std::printf("%zu waypoints, %zu corners, length %.2f\n", waypoints.size(), path.mCorners.size(),
                path.mLength);

    // the same half a unit off the walls, and as places for animation, one every 2 units
    const std::vector<Place> wide = keepOffWalls(view, path, 0.5F);
    std::printf("%.2f off the wall at the first corner, %zu places\n",
                double{distanceToWall(view, wide[1], 2)}, placesAlong(view, path, 2).size());

    // frame by frame, with a push on the way and a goal that walks off a little
    Corridor corridor(view);
    corridor.place(start);
    corridor.follow(path.mChain, goal);
    int frames = 0;
    for (; !corridor.isAtGoal(0.2F) && frames < 5000 && !corridor.needsSearch(); ++frames) {
        const float step = 0.1F;
        const Position here = corridor.position().mPosition;
        const Position corner = corridor.nextCorner(step);
        const Position way = corner - here;
        const float part = step / std::max(length(way), step);
        corridor.move({here.mX + way.mX * part, here.mY, here.mZ + way.mZ * part});
        if (frames == 100)
            corridor.move({here.mX + 1, here.mY, here.mZ + 1});
        if (frames == 200)
            corridor.moveGoal({49, 5, 25});
    }
    std::printf("arrived: %s\n", corridor.isAtGoal(0.2F) ? "yes" : "no");

    // why there is no way to the island in the harbour
    const Position island(100, 0, 75);
    std::fputs(describe(view, explain(view, goal, island)).c_str(), stdout);
    const NearestPlace shore = findNearestReachable(view, goal, island);
    std::printf("one gets as near as %g\n", double{shore.mDistance});
    return corridor.isAtGoal(0.2F) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: walkingcharacter MESH\n");
        return 2;
    }
    try {
        return walk(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "walkingcharacter: %s\n", error.what());
        return 2;
    }
}
