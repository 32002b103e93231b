// A crowd that walks: the listing that docs/walking.md goes through step by step.
#include "hostkit/corridor.h"
#include "hostkit/meshloading.h"
#include "hostkit/scheduler.h"
#include "hostkit/session.h"
#include "hostkit/straightpath.h"
#include "hostkit/surface.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <exception>

using namespace ZUNO::HostKit;

namespace {

constexpr float framesPerSecond = 60;
constexpr float speed = 1.6F; // units of the mesh a second

struct Walker {
    explicit Walker(const MeshView& view) : mCorridor(view) {}
    Corridor mCorridor; // where the walker is, and the nodes to its goal
    Position mGoal;
    RequestId mRequest = 0; // 0: none is open
};

/// Asks for a path from where the walker stands.
void ask(Walker& walker, Scheduler& scheduler) {
    PathRequest request;
    request.mStart = walker.mCorridor.position().mPosition;
    request.mGoal = walker.mGoal;
    request.mPriority = Priority::NORMAL;
    request.mDeadline = 30; // frames; a later answer is counted as late
    walker.mRequest = scheduler.add(request);
}

/// Takes the answer when it is there, straightens it, and follows it.
void takeAnswer(Walker& walker, Scheduler& scheduler, PathStraightener& straightener,
                PathAnswer& answer, StraightPath& path) {
    if (!scheduler.take(walker.mRequest, answer))
        return; // in a later frame
    walker.mRequest = 0;
    if (answer.mResult == PathResult::FOUND &&
        straightener.straighten(answer.mStart, answer.mGoal, answer.mWaypoints,
                                StraightForm::IMPROVED, path))
        walker.mCorridor.follow(path.mChain, answer.mGoal);
}

/// Goes as far as a frame allows, around corners and along walls.
void step(Walker& walker) {
    const Position from = walker.mCorridor.position().mPosition;
    const Position way = walker.mCorridor.nextCorner(0.2F) - from;
    const float distance = length(way);
    const float share = distance > 0 ? std::min(1.0F, speed / framesPerSecond / distance) : 0;
    walker.mCorridor.move(from + Position(way.mX * share, way.mY * share, way.mZ * share));
}

void run(const char* mesh, const char* recording) {
    // the world, and the host's own view of the same mesh
    Session session(mesh, SessionSettings{.mRecording = recording});
    const MeshView view = loadMeshView(mesh);

    // one of each for everybody; answer and path are used again and again
    Scheduler scheduler(session.exports());
    PathStraightener straightener(view);
    PathAnswer answer;
    StraightPath path;

    // somewhere on the largest island
    const RandomPlaces places(view, 0);
    std::uint64_t seed = 1;
    std::deque<Walker> walkers;
    while (walkers.size() < 50) {
        Walker& walker = walkers.emplace_back(view);
        walker.mCorridor.place(places.pick(seed++));
        walker.mGoal = places.pick(seed++).mPosition;
        ask(walker, scheduler);
    }

    unsigned int reached = 0;
    for (unsigned int frame = 0; frame < 3600; ++frame) {
        scheduler.advance(FrameBudget::time(std::chrono::microseconds(500)));
        for (Walker& walker : walkers) {
            if (walker.mRequest != 0)
                takeAnswer(walker, scheduler, straightener, answer, path);
            if (walker.mCorridor.hasPath())
                step(walker);
            const bool isThere = walker.mCorridor.isAtGoal(0.3F);
            if (isThere) {
                ++reached;
                walker.mGoal = places.pick(seed++).mPosition;
            }
            if (walker.mRequest == 0 && (isThere || walker.mCorridor.needsSearch()))
                ask(walker, scheduler);
        }
    }

    const SchedulerFigures& figures = scheduler.figures();
    std::printf("%u goals reached; of %llu answers %llu late, the slowest after %u frames\n",
                reached, static_cast<unsigned long long>(figures.answered()),
                static_cast<unsigned long long>(figures.mLate), figures.mMostFramesWaited);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: walkingcrowd MESH [RECORDING]\n");
        return 2;
    }
    try {
        run(argv[1], argc > 2 ? argv[2] : "");
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "walkingcrowd: %s\n", error.what());
        return 2;
    }
}
