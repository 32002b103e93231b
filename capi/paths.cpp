#include "capi/path.h"
#include "hostkit/pathpoints.h"

using namespace ZUNO;
using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_path_create(zuno_mesh* mesh, zuno_path** path) {
    return guarded(__func__, [&] { return make<Path>(path, get(mesh)); });
}

extern "C" zuno_status zuno_path_straighten(zuno_path* path, const zuno_point* start,
                                            const zuno_point* goal, const zuno_point* waypoints,
                                            std::uint32_t waypoint_count, std::int32_t form) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Path> empty = get(path);
        if (waypoint_count != 0)
            need(waypoints, "the waypoints");
        if (form != ZUNO_PLAIN && form != ZUNO_IMPROVED)
            refuse("there is no form " + std::to_string(form));
        const HostKit::Position from = pointOf(start, "the start");
        const HostKit::Position to = pointOf(goal, "the goal");
        empty->mWaypoints.clear();
        empty->mWaypoints.reserve(waypoint_count);
        for (std::uint32_t i = 0; i < waypoint_count; ++i)
            empty->mWaypoints.push_back(pointOf(&waypoints[i], "a waypoint"));
        return empty->mStraightener.straighten(from, to, empty->mWaypoints,
                                               static_cast<HostKit::StraightForm>(form),
                                               empty->mPath)
                   ? ZUNO_OK
                   : ZUNO_NONE;
    });
}

extern "C" zuno_status zuno_path_corners(zuno_path* path, zuno_point* corners, std::uint32_t* count,
                                         double* length) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Path> made = get(path);
        const auto& all = made->mPath.mCorners;
        if (length != nullptr)
            *length = made->mPath.mLength;
        return fill(all.size(), corners, count,
                    [&](std::size_t i) { return toC(all[i].mPosition); });
    });
}

extern "C" zuno_status zuno_path_places(zuno_path* path, float step, zuno_place* places,
                                        std::uint32_t* count) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Path> made = get(path);
        const auto all = HostKit::placesAlong(made->mMesh->view(), made->mPath, step);
        return fill(all.size(), places, count, [&](std::size_t i) { return toC(all[i]); });
    });
}

extern "C" zuno_status zuno_path_off_walls(zuno_path* path, float margin, zuno_place* places,
                                           std::uint32_t* count) {
    return guarded(__func__, [&] {
        const std::shared_ptr<Path> made = get(path);
        const auto all = HostKit::keepOffWalls(made->mMesh->view(), made->mPath, margin);
        return fill(all.size(), places, count, [&](std::size_t i) { return toC(all[i]); });
    });
}
