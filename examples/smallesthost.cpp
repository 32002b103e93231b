#include "hostkit/meshloading.h"
#include "hostkit/session.h"

#include <cstdio>
#include <exception>

using namespace ZUNO::HostKit;
using namespace ZUNO::Pathfinder;

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: smallesthost MESH\n");
        return 2;
    }
    try {
        Session session(argv[1]);
        const MeshView mesh = loadMeshView(argv[1]); // for what the exports don't tell
        std::uint32_t last = mesh.nodeCount() - 1;
        while (mesh.islandOf(last) != mesh.islandOf(0))
            --last;
        const int search = Interface::initPathSearch(mesh.centreOf(0), mesh.centreOf(last));
        int result = search == noSearch ? PATH_NONE : PATH_RUNNING;
        while (result == PATH_RUNNING)
            result = Interface::runPathSearch(search, 20); // at most 20 expansions a frame
        if (result == PATH_FOUND) {
            Position waypoint;
            while (Interface::getNextWaypoint(search, waypoint))
                std::printf("to %g %g %g\n", waypoint.mX, waypoint.mY, waypoint.mZ);
            std::printf("cost %g\n", Interface::getPathCost(search));
        }
        Interface::closePathSearch(search);

        std::printf("left behind: %llu blocks\n",
                    static_cast<unsigned long long>(session.close().mBlocks));
        return result == PATH_FOUND ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "smallesthost: %s\n", error.what());
        return 2;
    }
}
