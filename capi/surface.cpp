// The ground that a mesh's nodes are.
#include "capi/mesh.h"
#include "hostkit/explain.h"

using namespace ZUNO;
using namespace ZUNO::CInterface;

namespace {

zuno_status give(const HostKit::NearestPlace& nearest, zuno_place* place, float* distance) {
    if (distance != nullptr)
        *distance = nearest.mDistance;
    return CInterface::give(nearest, place);
}

} // namespace

extern "C" zuno_status zuno_mesh_find_node(zuno_mesh* mesh, const zuno_point* at,
                                           std::uint32_t* node) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(node, "the node");
        *node = loaded->view().findNode(pointOf(at, "at"));
        return *node == HostKit::NO_NODE ? ZUNO_NONE : ZUNO_OK;
    });
}

extern "C" zuno_status zuno_mesh_ground(zuno_mesh* mesh, const zuno_point* at, float height,
                                        zuno_place* place) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(place, "the place");
        return CInterface::give(HostKit::findGround(loaded->view(), pointOf(at, "at"), height),
                                place);
    });
}

extern "C" zuno_status zuno_mesh_nearest(zuno_mesh* mesh, const zuno_point* at, float radius,
                                         float height, zuno_place* place, float* distance) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(place, "the place");
        return give(HostKit::findNearest(loaded->view(), pointOf(at, "at"), radius, height), place,
                    distance);
    });
}

extern "C" zuno_status zuno_mesh_nearest_reachable(zuno_mesh* mesh, const zuno_point* start,
                                                   const zuno_point* goal, zuno_place* place,
                                                   float* distance) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(place, "the place");
        return give(HostKit::findNearestReachable(loaded->view(), pointOf(start, "the start"),
                                                  pointOf(goal, "the goal")),
                    place, distance);
    });
}

extern "C" zuno_status zuno_mesh_random(zuno_mesh* mesh, std::uint64_t seed, zuno_place* place) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(place, "the place");
        return CInterface::give(loaded->places().pick(seed), place);
    });
}

extern "C" zuno_status zuno_mesh_move(zuno_mesh* mesh, const zuno_place* from,
                                      const zuno_point* target, zuno_place* end) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(end, "the end");
        return CInterface::give(HostKit::moveAlongSurface(loaded->view(),
                                                          loaded->placeOf(from, "from"),
                                                          pointOf(target, "the target"))
                                    .mPlace,
                                end);
    });
}

extern "C" zuno_status zuno_mesh_walk(zuno_mesh* mesh, const zuno_place* from,
                                      const zuno_point* target, zuno_place* end,
                                      std::int32_t* reached) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(end, "the end");
        need(reached, "reached");
        const HostKit::SurfaceMove walked = HostKit::walkStraight(
            loaded->view(), loaded->placeOf(from, "from"), pointOf(target, "the target"));
        *reached = walked.mIsReached ? 1 : 0;
        return CInterface::give(walked.mPlace, end);
    });
}

extern "C" zuno_status zuno_mesh_wall_distance(zuno_mesh* mesh, const zuno_place* from, float limit,
                                               float* distance) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(distance, "the distance");
        *distance = HostKit::distanceToWall(loaded->view(), loaded->placeOf(from, "from"), limit);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_mesh_explain(zuno_mesh* mesh, const zuno_point* start,
                                         const zuno_point* goal, std::int32_t* answer, char* text,
                                         std::uint32_t* size) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Mesh> loaded = get(mesh);
        need(answer, "the answer");
        const HostKit::Explanation explanation = HostKit::explain(
            loaded->view(), pointOf(start, "the start"), pointOf(goal, "the goal"));
        *answer = static_cast<std::int32_t>(explanation.mAnswer);
        return fillText(HostKit::describe(loaded->view(), explanation), text, size);
    });
}
