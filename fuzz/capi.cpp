// A host in C that calls in any order with any arguments but wild pointers: each call gives a
// status, each failure a text, and everything comes back.
#include "capi/zuno.h"

#include "worlds/meshmodel.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <unistd.h>
#include <vector>

namespace {

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

const std::string theMesh = ZUNO::Worlds::makeFloor(40, 3).toXML("floor");
const std::string theRecording = "/tmp/zunofuzz" + std::to_string(getpid());
std::uint32_t theMemory = 0; ///< how many more requests are granted

struct Handle {
    int mKind;
    void* mValue;
};

class Host {
public:
    Host(const std::uint8_t* data, std::size_t size) : mNext(data), mEnd(data + size) {}

    void play() {
        while (mNext < mEnd)
            check(call(byte() % 50));
        for (auto handle = mHandles.rbegin(); handle != mHandles.rend(); ++handle)
            if (handle->mKind != 0)
                zuno_destroy(handle->mValue);
        zuno_memory left{sizeof left, 0, 0, 0, 0, 0, 0};
        for (const Handle& handle : mHandles)
            if (zuno_close(static_cast<zuno_session*>(handle.mValue), &left) == ZUNO_OK)
                require(left.blocks == 0 && left.bytes == 0, "all memory comes back");
    }

private:
    enum Kind { SESSION, SEARCH, SCHEDULER, MESH, PATH, CORRIDOR };

    std::uint8_t byte() { return mNext < mEnd ? *mNext++ : 0; }
    bool rarely() { return byte() > 247; }

    float number() {
        constexpr float odd[] = {0,      -1,   1e-30F, 3e38F, -3e38F, INFINITY, -INFINITY, NAN,
                                 0.125F, 1e9F, 2,      4,     6,      8,        10,        5};
        const std::uint8_t choice = byte();
        return choice < 64 ? odd[choice % std::size(odd)] : static_cast<float>(choice - 64) / 10;
    }

    /// A handle of the kind, or, rarely, any.
    template <typename T>
    T* any(Kind kind) {
        const std::uint8_t choice = byte();
        if (choice > 245)
            return static_cast<T*>(choice > 250 || mHandles.empty()
                                       ? reinterpret_cast<void*>(std::uintptr_t{choice})
                                       : mHandles[choice % mHandles.size()].mValue);
        for (std::size_t i = mHandles.size(), skip = choice % 4U; i-- > 0;)
            if (mHandles[i].mKind == kind && skip-- == 0)
                return static_cast<T*>(mHandles[i].mValue);
        return nullptr;
    }
    zuno_session* session() { return any<zuno_session>(SESSION); }
    zuno_search* search() { return any<zuno_search>(SEARCH); }
    zuno_scheduler* scheduler() { return any<zuno_scheduler>(SCHEDULER); }
    zuno_mesh* mesh() { return any<zuno_mesh>(MESH); }
    zuno_path* path() { return any<zuno_path>(PATH); }
    zuno_corridor* corridor() { return any<zuno_corridor>(CORRIDOR); }

    template <typename T>
    T* orNull(T& value) {
        return rarely() ? nullptr : &value;
    }
    const zuno_point* point() {
        zuno_point& p = mPoints[byte() % 4U];
        p = {number(), number(), number()};
        return orNull(p);
    }
    template <typename Struct>
    Struct* sized(Struct& made) {
        made.size = rarely() ? byte() : static_cast<std::uint32_t>(sizeof made);
        return orNull(made);
    }
    zuno_place* place() {
        if (byte() < 64)
            mPlace.node = byte();
        return orNull(mPlace);
    }
    template <typename T>
    zuno_status keep(Kind kind, zuno_status status, T* handle) {
        if (status == ZUNO_OK)
            mHandles.push_back({kind, handle});
        return status;
    }
    std::uint32_t* room(std::size_t most) {
        mCount = static_cast<std::uint32_t>(std::min<std::size_t>(byte(), most));
        return orNull(mCount);
    }
    std::uint64_t* id() { return orNull(mIds[byte() % 4U]); }
    const zuno_request* request() {
        mRequest = {0,
                    byte() % 4 - byte() % 2,
                    {number(), number(), number()},
                    {number(), 0, number()},
                    byte()};
        return sized(mRequest);
    }

    void check(zuno_status status) {
        zuno_error error{};
        error.size = sizeof error;
        require(zuno_last_error(&error) >= 0, "an error can be asked for");
        require(status <= ZUNO_NONE && status >= ZUNO_FAILED, "every call gives a status");
        require(status >= 0 || (error.status == status && std::strlen(error.text) > 5),
                "every failure has a text");
    }

    zuno_status start();
    zuno_status call(int function);
    zuno_status callOfMesh(int function);

    const std::uint8_t* mNext;
    const std::uint8_t* mEnd;
    std::vector<Handle> mHandles;
    zuno_point mPoints[256] = {};
    zuno_place mPlaces[256] = {};
    char mText[256] = "";
    zuno_place mPlace = {};
    zuno_request mRequest = {};
    std::uint64_t mIds[4] = {};
    std::uint32_t mCount = 0;
    std::int32_t mNumber = 0;
    float mFloat = 0;
    double mLength = 0;
};

zuno_status Host::start() {
    static const zuno_memory_functions memory{nullptr,
                                              [](void*, std::uint32_t size) -> void* {
                                                  return theMemory == 0 || --theMemory == 0
                                                             ? nullptr
                                                             : std::malloc(size);
                                              },
                                              [](void*, void* block) { std::free(block); }};
    static const zuno_file_functions files{
        nullptr,
        [](void*, const char* name) -> std::int64_t {
            return *name == 'm' ? static_cast<std::int64_t>(theMesh.size()) : -*name;
        },
        [](void*, const char*, std::uint64_t offset, void* bytes, std::uint32_t count) {
            std::memcpy(bytes, theMesh.data() + offset, count);
            return static_cast<std::int32_t>(count);
        }};
    theMemory = byte() < 32 ? byte() * 16U : 1U << 30U;
    zuno_settings settings{};
    settings.recording = byte() < 16 ? theRecording.c_str() : nullptr;
    settings.memory = rarely() ? nullptr : &memory;
    settings.files = rarely() ? nullptr : &files;
    zuno_session* made = nullptr;
    return keep(SESSION,
                zuno_start(sized(settings),
                           rarely()   ? nullptr
                           : rarely() ? "n"
                                      : "m",
                           &made),
                made);
}

zuno_status Host::call(int function) {
    zuno_point2 corners[2];
    zuno_memory memory{};
    zuno_answer answer{};
    zuno_scheduler_figures figures{};
    zuno_scheduler_settings settings{0, byte(), byte(), {byte(), 1, 2}};
    zuno_replay_result result{};
    switch (function) {
    case 0:
        return byte() < 128 ? start() : zuno_close(session(), nullptr);
    case 1:
        return zuno_memory_figures(session(), sized(memory));
    case 2:
        return zuno_destroy(byte() < 128 ? search() : any<void>(static_cast<Kind>(byte() % 6)));
    case 3:
        return zuno_bounds(session(), orNull(corners[0]), orNull(corners[1]));
    case 4:
        return zuno_is_blocked(session(), number(), number(), orNull(mNumber));
    case 5:
        return zuno_ground_height(session(), number(), number(), orNull(mFloat));
    case 6:
        return zuno_trace_ray(session(), number(), number(), number(), number(), orNull(mFloat));
    case 7:
        return zuno_trace_ray_in_space(session(), point(), point(), orNull(mFloat));
    case 8:
    case 9: {
        zuno_search* made = nullptr;
        return keep(SEARCH, zuno_search_open(session(), point(), point(), orNull(made)), made);
    }
    case 10:
        return zuno_search_run(search(), byte() * 4U, orNull(mNumber));
    case 11:
        return zuno_search_waypoints(search(), orNull(mPoints[0]), room(std::size(mPoints)));
    case 12:
        return zuno_search_cost(search(), orNull(mFloat));
    case 13: {
        zuno_scheduler* made = nullptr;
        return keep(SCHEDULER,
                    zuno_scheduler_create(session(), rarely() ? nullptr : sized(settings), &made),
                    made);
    }
    case 14:
    case 15:
        return zuno_scheduler_add(scheduler(), request(), id());
    case 16:
        return zuno_scheduler_change(scheduler(), mIds[byte() % 4U], request());
    case 17:
        return zuno_scheduler_cancel(scheduler(), mIds[byte() % 4U]);
    case 18:
        return zuno_scheduler_advance(scheduler(), byte() * 8U, rarely() ? UINT64_MAX : 1'000'000);
    case 19:
        return zuno_scheduler_take(scheduler(), mIds[byte() % 4U], sized(answer),
                                   orNull(mPoints[0]), room(std::size(mPoints)));
    case 20:
        return zuno_scheduler_look(scheduler(), sized(figures));
    case 21:
        return zuno_replay(rarely() ? nullptr : theRecording.c_str(), nullptr, rarely() ? 1 : 0,
                           sized(result), mText, room(std::size(mText)));
    default:
        return callOfMesh(function);
    }
}

zuno_status Host::callOfMesh(int function) {
    zuno_mesh_figures figures{};
    zuno_corridor_state state{};
    switch (function) {
    case 22: {
        zuno_mesh* made = nullptr;
        return keep(MESH, zuno_mesh_load(session(), rarely() ? "n" : "m", orNull(made)), made);
    }
    case 23:
        return zuno_mesh_look(mesh(), sized(figures));
    case 24:
        return zuno_mesh_outline(mesh(), byte(), orNull(mPoints[0]), room(std::size(mPoints)));
    case 25:
        return zuno_mesh_island(mesh(), byte(), orNull(mCount));
    case 26:
        return zuno_mesh_find_node(mesh(), point(), orNull(mCount));
    case 27:
        return zuno_mesh_ground(mesh(), point(), number(), orNull(mPlace));
    case 28:
        return zuno_mesh_nearest(mesh(), point(), number(), number(), orNull(mPlace),
                                 orNull(mFloat));
    case 29:
        return zuno_mesh_nearest_reachable(mesh(), point(), point(), orNull(mPlace),
                                           orNull(mFloat));
    case 30:
        return zuno_mesh_random(mesh(), byte(), orNull(mPlace));
    case 31:
    case 32:
        return zuno_mesh_move(mesh(), place(), point(), place());
    case 33:
        return zuno_mesh_walk(mesh(), place(), point(), place(), orNull(mNumber));
    case 34:
        return zuno_mesh_wall_distance(mesh(), place(), number(), orNull(mFloat));
    case 35:
        return zuno_mesh_explain(mesh(), point(), point(), orNull(mNumber),
                                 rarely() ? nullptr : mText, room(std::size(mText)));
    case 36: {
        zuno_path* made = nullptr;
        return keep(PATH, zuno_path_create(mesh(), orNull(made)), made);
    }
    case 37:
    case 38: // what was taken last: often a path's points
        return zuno_path_straighten(path(), &mRequest.start, rarely() ? point() : &mRequest.goal,
                                    orNull(mPoints[0]), byte(), byte() % 3);
    case 39:
        return zuno_path_corners(path(), orNull(mPoints[0]), room(std::size(mPoints)),
                                 orNull(mLength));
    case 40:
        return zuno_path_places(path(), number(), orNull(mPlaces[0]), room(std::size(mPlaces)));
    case 41: {
        zuno_corridor* made = nullptr;
        return keep(CORRIDOR, zuno_corridor_create(mesh(), place(), orNull(made)), made);
    }
    case 42:
        return zuno_corridor_place(corridor(), place());
    case 43:
        return zuno_corridor_follow(corridor(), path());
    case 44:
        return zuno_corridor_next(corridor(), number(), orNull(mPoints[0]));
    case 45:
    case 46:
        return zuno_corridor_move(corridor(), point());
    case 47:
        return zuno_corridor_move_goal(corridor(), point());
    case 48:
        return zuno_corridor_look(corridor(), sized(state));
    default:
        return zuno_check_version(byte() * 100U, orNull(mCount));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zuno_set_log([](void*, std::int32_t, const char*, const char*, std::uint32_t) {}, nullptr);
    Host(data, size).play();
    return 0;
}
