#include "capi/search.h"

using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_search_open(zuno_session* session, const zuno_point* start,
                                        const zuno_point* goal, zuno_search** search) {
    return inWorld(__func__, [&]() -> zuno_status {
        const std::shared_ptr<Session> running = get(session);
        need(search, "the place for the handle");
        Exports& exports = running->exports();
        const int id =
            exports.initPathSearch(pointOf(start, "the start"), pointOf(goal, "the goal"));
        if (id < 0) {
            *search = nullptr;
            return ZUNO_NONE;
        }
        try {
            return make<Search>(search, exports, id);
        } catch (const std::bad_alloc&) {
            exports.closePathSearch(id);
            throw;
        }
    });
}

extern "C" zuno_status zuno_search_run(zuno_search* search, std::uint32_t budget,
                                       std::int32_t* state) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Search> open = get(search);
        need(state, "the state");
        *state = open->mExports.runPathSearch(open->mId, budget);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_search_waypoints(zuno_search* search, zuno_point* points,
                                             std::uint32_t* count) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Search> open = get(search);
        const std::uint32_t room = need(count, "the count");
        if (room != 0)
            need(points, "the array");
        *count = 0; // counts on, so that a failure in the middle loses no waypoint
        for (Exports::Vec3 waypoint(0, 0, 0);
             *count < room && open->mExports.getNextWaypoint(open->mId, waypoint);)
            points[(*count)++] = toC(waypoint);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_search_cost(zuno_search* search, float* cost) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Search> open = get(search);
        need(cost, "the cost");
        *cost = open->mExports.getPathCost(open->mId);
        return ZUNO_OK;
    });
}
