#include "capi/session.h"
#include "hostkit/scheduler.h"

namespace ZUNO::CInterface {

namespace {

/// A scheduler. Its session destroys all of them before it ends.
class Requests : public Object {
public:
    Requests(Exports& exports, const HostKit::SchedulerSettings& settings)
        : mScheduler(exports, settings) {}
    bool isOfSession() const override { return true; }

    HostKit::Scheduler mScheduler;
    HostKit::PathAnswer mTaken; ///< whose storage is used again
};

std::shared_ptr<Requests> get(zuno_scheduler* handle) {
    return CInterface::get<Requests>(handle, "the scheduler");
}

HostKit::SchedulerSettings settingsOf(const zuno_scheduler_settings& given) {
    HostKit::SchedulerSettings settings;
    settings.mSlice = given.slice;
    settings.mTurn = given.turn;
    std::copy(std::begin(given.patience), std::end(given.patience), settings.mPatience.begin());
    return settings;
}

HostKit::PathRequest requestOf(const zuno_request* request) {
    checkStruct(request, "the request");
    if (request->priority < ZUNO_URGENT || request->priority > ZUNO_BACKGROUND)
        refuse("there is no priority " + std::to_string(request->priority));
    return {.mStart = pointOf(&request->start, "the start"),
            .mGoal = pointOf(&request->goal, "the goal"),
            .mPriority = static_cast<HostKit::Priority>(request->priority),
            .mDeadline = request->deadline};
}

std::int32_t toC(HostKit::PathResult result) {
    return result == HostKit::PathResult::FOUND     ? ZUNO_FOUND
           : result == HostKit::PathResult::NO_PATH ? ZUNO_NO_PATH
                                                    : ZUNO_OFF_MESH;
}

void put(const HostKit::PathAnswer& from, zuno_answer& answer) {
    answer.result = toC(from.mResult);
    answer.start = CInterface::toC(from.mStart);
    answer.goal = CInterface::toC(from.mGoal);
    answer.cost = from.mCost;
    answer.frames_waited = from.mFramesWaited;
    answer.expansions = from.mExpansions;
    answer.is_late = from.mIsLate ? 1 : 0;
    answer.waypoint_count = static_cast<std::uint32_t>(from.mWaypoints.size());
}

[[noreturn]] void refuseRequest(std::uint64_t id) {
    refuse("there is no request " + std::to_string(id));
}

} // namespace

} // namespace ZUNO::CInterface

using namespace ZUNO;
using namespace ZUNO::CInterface;

extern "C" zuno_status zuno_scheduler_create(zuno_session* session,
                                             const zuno_scheduler_settings* settings,
                                             zuno_scheduler** scheduler) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Session> running = get(session);
        if (settings != nullptr)
            checkStruct(settings, "settings");
        return make<Requests>(scheduler, running->exports(),
                              settings != nullptr ? settingsOf(*settings)
                                                  : HostKit::SchedulerSettings{});
    });
}

extern "C" zuno_status zuno_scheduler_add(zuno_scheduler* scheduler, const zuno_request* request,
                                          std::uint64_t* id) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Requests> requests = get(scheduler);
        need(id, "the place for the id");
        *id = requests->mScheduler.add(requestOf(request));
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_scheduler_change(zuno_scheduler* scheduler, std::uint64_t id,
                                             const zuno_request* request) {
    return inWorld(__func__, [&] {
        if (!get(scheduler)->mScheduler.change(id, requestOf(request)))
            refuseRequest(id);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_scheduler_cancel(zuno_scheduler* scheduler, std::uint64_t id) {
    return inWorld(__func__, [&] {
        if (!get(scheduler)->mScheduler.cancel(id))
            refuseRequest(id);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_scheduler_advance(zuno_scheduler* scheduler, std::uint64_t expansions,
                                              std::uint64_t nanoseconds) {
    return inWorld(__func__, [&] {
        using Time = std::chrono::nanoseconds;
        constexpr auto longest = static_cast<std::uint64_t>(Time::max().count());
        const Time most(static_cast<Time::rep>(std::min(nanoseconds, longest)));
        get(scheduler)->mScheduler.advance({expansions, most});
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_scheduler_take(zuno_scheduler* scheduler, std::uint64_t id,
                                           zuno_answer* answer, zuno_point* waypoints,
                                           std::uint32_t* count) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Requests> requests = get(scheduler);
        checkStruct(answer, "the answer");
        need(count, "the count");
        const HostKit::PathAnswer* const found = requests->mScheduler.find(id);
        if (found == nullptr && !requests->mScheduler.isOpen(id))
            refuseRequest(id);
        if (found == nullptr)
            return ZUNO_NONE;
        put(*found, *answer);
        fill(found->mWaypoints.size(), waypoints, count,
             [&](std::size_t i) { return CInterface::toC(found->mWaypoints[i]); });
        if (waypoints != nullptr)
            requests->mScheduler.take(id, requests->mTaken);
        return ZUNO_OK;
    });
}

extern "C" zuno_status zuno_scheduler_look(zuno_scheduler* scheduler,
                                           zuno_scheduler_figures* figures) {
    return inWorld(__func__, [&] {
        const std::shared_ptr<Requests> requests = get(scheduler);
        checkStruct(figures, "the figures");
        const HostKit::SchedulerFigures& now = requests->mScheduler.figures();
        *figures = {.size = sizeof *figures,
                    .open = static_cast<std::uint32_t>(requests->mScheduler.queueLength()),
                    .frames = now.mFrames,
                    .added = now.mAdded,
                    .found = now.mFound,
                    .no_path = now.mNoPath,
                    .off_mesh = now.mOffMesh,
                    .cancelled = now.mCancelled,
                    .late = now.mLate,
                    .expansions = now.mExpansions,
                    .frame_expansions = now.mFrameExpansions,
                    .frame_nanoseconds = static_cast<std::uint64_t>(now.mFrameTime.count()),
                    .frames_waited = now.mFramesWaited,
                    .most_frames_waited = now.mMostFramesWaited,
                    .longest_queue = now.mLongestQueue};
        return ZUNO_OK;
    });
}
