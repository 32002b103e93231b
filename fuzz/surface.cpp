// The host's view of any mesh that loads: straight paths, surfaces, corridors, reasons.
#include "fuzz/ground.h"
#include "hostkit/corridor.h"
#include "hostkit/explain.h"
#include "hostkit/meshloading.h"
#include "hostkit/pathpoints.h"

#include <stdexcept>

using namespace ZUNO;
using namespace HostKit;

namespace {

/// Points to ask with: all over the mesh, and some that no mesh has.
std::vector<Position> pointsFor(const MeshView& view) {
    constexpr float huge = std::numeric_limits<float>::max();
    std::vector<Position> points{{0, 0, 0},
                                 {huge, -huge, huge},
                                 {std::numeric_limits<float>::quiet_NaN(), 0, 0},
                                 {1, std::numeric_limits<float>::infinity(), 1}};
    constexpr std::uint32_t most = 12;
    const std::uint32_t stride = view.nodeCount() / most + 1;
    for (std::uint32_t node = 0; node < view.nodeCount(); node += stride) {
        points.push_back(view.centreOf(node));
        points.push_back(view.positionOf(view.cornersOf(node)[0]));
    }
    return points;
}

/// A walk from node to node, by whichever link comes next.
std::vector<std::uint32_t> chainFrom(const MeshView& view, std::uint32_t node, std::size_t salt) {
    std::vector<std::uint32_t> chain{node};
    for (std::size_t i = 0; i < 20 && !view.linksOf(chain.back()).empty(); ++i) {
        const auto links = view.linksOf(chain.back());
        chain.push_back(links[(salt + i * i) % links.size()].mTarget);
    }
    return chain;
}

void checkPath(const MeshView& view, const StraightPath& path) {
    Fuzz::require(!path.mCorners.empty(), "a path has corners");
    Fuzz::require(path.mCorners.back().mStep + 1 == path.mChain.size(), "the goal comes last");
    for (std::size_t i = 1; i < path.mCorners.size(); ++i)
        Fuzz::require(path.mCorners[i - 1].mStep <= path.mCorners[i].mStep, "steps go on");
    const std::size_t corners = keepOffWalls(view, path, 0.5F).size();
    Fuzz::require(corners == path.mCorners.size(), "a corner off the wall for each corner");
    const auto step = static_cast<float>(planeLength(view, path) / 50);
    Fuzz::require(placesAlong(view, path, step).size() <= 128, "a path has places a step apart");
}

void walk(const MeshView& view, const std::vector<Position>& points) {
    PathStraightener straightener(view);
    StraightPath plain;
    StraightPath improved;
    Corridor corridor(view);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Place place = findGround(view, points[i]);
        const Position& target = points[(i * 7 + 3) % points.size()];
        distanceToWall(view, place, 10);
        const SurfaceMove straight = walkStraight(view, place, target);
        const SurfaceMove moved = moveAlongSurface(view, place, target);
        Fuzz::require(moved.mPlace.mNode == place.mNode || moved.mNodeCount > 1,
                      "who changes nodes walks through them");
        if (!place || !isFinite(target))
            continue;
        const auto chain = chainFrom(view, place.mNode, i);
        Fuzz::require(
            straightener.straightenChain(points[i], target, chain, StraightForm::PLAIN, plain) &&
                straightener.straightenChain(points[i], target, chain, StraightForm::IMPROVED,
                                             improved),
            "a chain has a straight path");
        Fuzz::require(!(improved.mLength > plain.mLength), "improving doesn't lengthen");
        checkPath(view, plain);
        checkPath(view, improved);
        corridor.place(place);
        Fuzz::require(corridor.follow(chain, target),
                      "a chain can be followed from its first node");
        for (const Position& point : {straight.mPlace.mPosition, target, moved.mPlace.mPosition}) {
            corridor.move(corridor.nextCorner(0.1F));
            corridor.shorten();
            corridor.moveGoal(point);
            corridor.move(point);
        }
    }
}

void askEverything(const MeshView& view) {
    const std::vector<Position> points = pointsFor(view);
    const RandomPlaces places(view);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Position& other = points[(i * 5 + 1) % points.size()];
        const NearestPlace nearest = findNearest(view, points[i], 100, 100);
        Fuzz::require(!nearest || view.isOnNode(nearest.mPosition, nearest.mNode),
                      "the world finds the nearest place");
        Fuzz::require(!describe(view, explain(view, points[i], other)).empty(),
                      "there is a reason");
        findNearestReachable(view, points[i], other);
        const Place any = places.pick(i);
        Fuzz::require(!any || any.mNode < view.nodeCount(), "random places lie on nodes");
    }
    walk(view, points);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    ground.put("d", data, size);
    try {
        askEverything(loadMeshView("d", ground.files()));
    } catch (const std::runtime_error&) { // no mesh
    }
    return 0;
}
