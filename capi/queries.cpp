// What the blocking map knows.
#include "capi/session.h"

using namespace ZUNO::CInterface;

namespace {

template <typename Ray>
zuno_status trace(zuno_session* session, Ray ray, float* distance) {
    const std::shared_ptr<Session> running = get(session);
    need(distance, "the distance");
    running->exports().traceRay(ray);
    *distance = ray.mHitDistance;
    return *distance == -1 ? ZUNO_NONE : ZUNO_OK;
}

} // namespace

extern "C" zuno_status zuno_bounds(zuno_session* session, zuno_point2* low, zuno_point2* high) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Session> running = get(session);
        need(low, "low");
        need(high, "high");
        Exports::Vec2 min(0, 0);
        Exports::Vec2 max(0, 0);
        running->exports().getBoundingRectangle(min, max);
        *low = toC(min);
        *high = toC(max);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_is_blocked(zuno_session* session, float x, float y,
                                       std::int32_t* blocked) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Session> running = get(session);
        need(blocked, "blocked");
        *blocked = running->exports().isBlocked({x, y}) ? 1 : 0;
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_ground_height(zuno_session* session, float x, float y, float* height) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Session> running = get(session);
        need(height, "the height");
        *height = running->exports().getGroundHeight({x, y});
        return *height == ZUNO::Pathfinder::noGround ? ZUNO_NONE : ZUNO_OK;
    });
}

extern "C" zuno_status zuno_trace_ray(zuno_session* session, float from_x, float from_y, float to_x,
                                      float to_y, float* distance) {
    return inWorld(__func__, [&] {
        return trace(session, Exports::Ray2D({from_x, from_y}, {to_x, to_y}), distance);
    });
}

extern "C" zuno_status zuno_trace_ray_in_space(zuno_session* session, const zuno_point* from,
                                               const zuno_point* to, float* distance) {
    return inWorld(__func__, [&] {
        return trace(session, Exports::Ray3D(pointOf(from, "from"), pointOf(to, "to")), distance);
    });
}
