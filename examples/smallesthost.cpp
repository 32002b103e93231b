#include "hostkit/session.h"

#include <cstdio>
#include <exception>

using ZUNO::Common::Math::Vec3;
using ZUNO::Pathfinder::Interface;

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: smallesthost MESH\n");
        return 2;
    }
    try {
        ZUNO::HostKit::Session session(argv[1]);
        const Vec3<float> start(2, 0, 2);
        const Vec3<float> goal(50, 5, 25);
        const int search = Interface::initPathSearch(start, goal);
        if (search < 0) {
            std::puts("start or goal stands on no node");
            return 1;
        }
        int result = 1;
        while (result == 1)
            result = Interface::runPathSearch(search, 20); // at most 20 expansions a frame
        Vec3<float> waypoint;
        while (Interface::getNextWaypoint(search, waypoint))
            std::printf("to %g %g %g\n", waypoint.mX, waypoint.mY, waypoint.mZ);
        std::printf("cost %g\n", Interface::getPathCost(search));
        Interface::closePathSearch(search);
        std::printf("left behind: %llu blocks\n",
                    static_cast<unsigned long long>(session.close().mBlocks));
        return result;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "smallesthost: %s\n", error.what());
        return 2;
    }
}
