// Walks a path, asks 12,000 questions and prints the digest of the answers: host MESH
#include "../questions.h"
#include "hostkit/session.h"
using namespace ZUNO::HostKit;

int main(int argc, char** argv) try {
    Session session(argc > 1 ? argv[1] : "");
    Exports& world = session.exports();
    Exports::Vec2 low(0, 0), high(0, 0);
    world.getBoundingRectangle(low, high);
    int steps = 0; // of the first path
    for (int i = 0; i < 3000; ++i) {
        Exports::Vec3 ends[2];
        for (Exports::Vec3& end : ends) {
            end.mX = between(low.mX, high.mX);
            end.mZ = between(low.mY, high.mY);
            const float height = world.getGroundHeight({end.mX, end.mZ});
            end.mY = height == ZUNO::Pathfinder::noGround ? 0 : height;
        }
        const std::int32_t blocked = world.isBlocked({ends[1].mX, ends[1].mZ}) ? 1 : 0;
        Exports::Ray2D ray({ends[0].mX, ends[0].mZ}, {ends[1].mX, ends[1].mZ});
        world.traceRay(ray);
        add(&ends[0].mX, 3), add(&ends[1].mX, 3), add(&blocked, 1), add(&ray.mHitDistance, 1);
        const int search = world.initPathSearch(ends[0], ends[1]);
        if (search < 0)
            continue;
        int state = 1;
        while (state == 1)
            state = world.runPathSearch(search, 64);
        const int before = steps;
        for (; world.getNextWaypoint(search, ends[0]); ++steps)
            add(&ends[0].mX, 3);
        const float cost = world.getPathCost(search);
        world.closePathSearch(search);
        add(&state, 1), add(&cost, 1);
        if (before == 0 && steps > 0)
            std::printf("walked %d steps, cost %.3f\n", steps, double{cost});
    }
    std::printf("digest %016llx\n", static_cast<unsigned long long>(digest));
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
}
