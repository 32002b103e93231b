// A host in C that calls in any order with any arguments but wild pointers: each call gives a
// status, each failure a text, and everything comes back.
#include "capi/zuno.h"

#include "worlds/meshmodel.h"

#include <array>
#include <cmath>
#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace {

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

const std::string theMesh = ZUNO::Worlds::makeFloor(12, 3).toXML("floor");
const std::string theRecording = "/tmp/zunofuzz" + std::to_string(getpid());
std::uint32_t theMemory = 0; ///< how many more requests are granted

const zuno_memory_functions theMemoryFunctions{nullptr,
                                               [](void*, std::uint32_t size) -> void* {
                                                   return theMemory == 0 || --theMemory == 0
                                                              ? nullptr
                                                              : std::malloc(size);
                                               },
                                               [](void*, void* block) { std::free(block); }};
const zuno_file_functions theFiles{
    nullptr,
    [](void*, const char* name) -> std::int64_t {
        return *name == 'm' ? static_cast<std::int64_t>(theMesh.size()) : -*name;
    },
    [](void*, const char*, std::uint64_t offset, void* bytes, std::uint32_t count) {
        std::memcpy(bytes, theMesh.data() + offset, count);
        return static_cast<std::int32_t>(count);
    }};

template <typename T>
concept Handle = std::same_as<T, zuno_session> || std::same_as<T, zuno_search> ||
    std::same_as<T, zuno_scheduler> || std::same_as<T, zuno_mesh> || std::same_as<T, zuno_path> ||
    std::same_as<T, zuno_corridor>;
template <template <typename> typename Of>
using PerKind = std::tuple<Of<zuno_session>, Of<zuno_search>, Of<zuno_scheduler>, Of<zuno_mesh>,
                           Of<zuno_path>, Of<zuno_corridor>>;
template <typename T>
using ListOf = std::vector<T*>;
template <typename T>
concept Sized = requires(T made) {
    made.size;
};

/// Reads its calls and their arguments from bytes.
class Host {
public:
    Host(const std::uint8_t* data, std::size_t size) : mNext(data), mEnd(data + size) {}
    void play();

private:
    template <auto... functions>
    static constexpr auto callsOf() {
        return std::array{&Host::start, &Host::straighten, &Host::call<functions>...};
    }
    template <auto function>
    zuno_status call() {
        return callWith(function);
    }
    template <typename... Arguments>
    zuno_status callWith(zuno_status (*function)(Arguments...)) {
        mMade = {};
        // braces: in their order
        const zuno_status status =
            std::apply(function, std::tuple<Arguments...>{argument(Tag<Arguments>())...});
        if (status == ZUNO_OK)
            std::apply([this](auto*... made) { (this->keep(made), ...); }, mMade);
        return status;
    }
    template <typename T>
    void keep(T* made) {
        if (made == nullptr)
            return;
        std::get<ListOf<T>>(mHandles).push_back(made);
        mAll.push_back(made);
    }
    zuno_status start();
    zuno_status straighten();
    static void check(zuno_status status);

    std::uint8_t byte() { return mNext < mEnd ? *mNext++ : 0; }
    bool rarely() { return byte() > 247; }
    template <typename T>
    T* orNull(T& value) {
        return rarely() ? nullptr : &value;
    }

    /// An argument of each type. Whatever a count belongs to has room for 255.
    template <typename T>
    struct Tag {};
    float argument(Tag<float>) {
        constexpr float odd[] = {0,      -1,   1e-30F, 3e38F, -3e38F, INFINITY, -INFINITY, NAN,
                                 0.125F, 1e9F, 2,      4,     6,      8,        10,        5};
        const std::uint8_t choice = byte();
        return choice < 64 ? odd[choice % std::size(odd)] : static_cast<float>(choice - 64) / 10;
    }
    std::uint32_t argument(Tag<std::uint32_t>) { return byte(); }
    std::int32_t argument(Tag<std::int32_t>) { return byte() % 4 - byte() % 2; }
    std::uint64_t argument(Tag<std::uint64_t>) { return rarely() ? UINT64_MAX : mIds[byte() % 4U]; }
    const char* argument(Tag<const char*>) {
        const char* const names[] = {"m", "m", "m", theRecording.c_str(), "n", nullptr};
        return names[byte() % std::size(names)];
    }
    const char* const* argument(Tag<const char* const*>) { return nullptr; }
    char* argument(Tag<char*>) { return orNull(mText[0]); }
    float* argument(Tag<float*>) { return orNull(mFloat); }
    double* argument(Tag<double*>) { return orNull(mLength); }
    std::int32_t* argument(Tag<std::int32_t*>) { return orNull(mNumber); }
    std::uint64_t* argument(Tag<std::uint64_t*>) { return orNull(mIds[byte() % 4U]); }
    std::uint32_t* argument(Tag<std::uint32_t*>) {
        mCount = byte();
        return orNull(mCount);
    }
    zuno_point point() {
        return {argument(Tag<float>()), argument(Tag<float>()), argument(Tag<float>())};
    }
    const zuno_point* argument(Tag<const zuno_point*>) {
        zuno_point& p = mPoints[byte() % 4U];
        p = point();
        return orNull(p);
    }
    zuno_point* argument(Tag<zuno_point*>) { return orNull(mPoints[0]); }
    zuno_point2* argument(Tag<zuno_point2*>) { return orNull(mCorners[byte() % 2U]); }
    const zuno_place* argument(Tag<const zuno_place*>) { return argument(Tag<zuno_place*>()); }
    zuno_place* argument(Tag<zuno_place*>) {
        if (byte() < 64)
            mPlaces[0].node = byte();
        return orNull(mPlaces[0]);
    }
    const zuno_request* argument(Tag<const zuno_request*>) {
        mRequest = {0, argument(Tag<std::int32_t>()), point(), point(), byte()};
        return sized(mRequest);
    }
    const zuno_scheduler_settings* argument(Tag<const zuno_scheduler_settings*>) {
        mSettings = {0, byte(), byte(), {byte(), 1, 2}};
        return sized(mSettings);
    }
    template <Sized T>
    T* argument(Tag<T*>) {
        static T filled; // a struct that the library fills in
        return sized(filled);
    }
    template <Sized T>
    T* sized(T& made) {
        made.size = rarely() ? byte() : static_cast<std::uint32_t>(sizeof made);
        return orNull(made);
    }
    template <Handle T>
    T* argument(Tag<T*>) {
        const ListOf<T>& right = std::get<ListOf<T>>(mHandles);
        const std::uint8_t choice = byte();
        if (choice < 246)
            return right.empty() ? nullptr : right[right.size() - 1 - choice % 4U % right.size()];
        return static_cast<T*>(argument(Tag<void*>()));
    }
    void* argument(Tag<void*>) {
        const std::uint8_t choice = byte();
        return choice > 250 || mAll.empty() ? reinterpret_cast<void*>(std::uintptr_t{choice})
                                            : mAll[choice % mAll.size()];
    }
    template <Handle T>
    T** argument(Tag<T**>) {
        return orNull(std::get<T*>(mMade));
    }

    const std::uint8_t* mNext;
    const std::uint8_t* mEnd;
    PerKind<std::add_pointer_t> mMade; ///< by the call that runs
    PerKind<ListOf> mHandles;
    std::vector<void*> mAll;
    zuno_point mPoints[260] = {};
    zuno_place mPlaces[260] = {};
    zuno_point2 mCorners[2] = {};
    char mText[256] = "";
    zuno_request mRequest = {};
    zuno_scheduler_settings mSettings = {};
    std::uint64_t mIds[4] = {1'000'000, 1, 2, 3};
    std::uint32_t mCount = 0;
    std::int32_t mNumber = 0;
    float mFloat = 0;
    double mLength = 0;
};

zuno_status Host::start() {
    theMemory = byte() < 32 ? byte() * 16U : 1U << 30U;
    zuno_settings settings{};
    settings.recording = byte() < 16 ? theRecording.c_str() : nullptr;
    settings.memory = rarely() ? nullptr : &theMemoryFunctions;
    settings.files = rarely() ? nullptr : &theFiles;
    zuno_session* made = nullptr;
    const zuno_status status =
        zuno_start(sized(settings), rarely() ? argument(Tag<const char*>()) : "m", &made);
    keep(made);
    return status;
}

/// What was taken last, between the last request's points: often a path.
zuno_status Host::straighten() {
    return zuno_path_straighten(argument(Tag<zuno_path*>()), &mRequest.start, &mRequest.goal,
                                orNull(mPoints[0]), byte(), byte() % 3);
}

void Host::check(zuno_status status) {
    zuno_error error{};
    error.size = sizeof error;
    require(zuno_last_error(&error) >= 0, "an error can be asked for");
    require(status <= ZUNO_NONE && status >= ZUNO_FAILED, "every call gives a status");
    require(status >= 0 || (error.status == status && std::strlen(error.text) > 5),
            "every failure has a text");
}

void Host::play() {
    constexpr std::array calls =
        callsOf<zuno_close, zuno_memory_figures, zuno_destroy, zuno_bounds, zuno_is_blocked,
                zuno_ground_height, zuno_trace_ray, zuno_trace_ray_in_space, zuno_search_open,
                zuno_search_run, zuno_search_waypoints, zuno_search_cost, zuno_scheduler_create,
                zuno_scheduler_add, zuno_scheduler_change, zuno_scheduler_cancel,
                zuno_scheduler_advance, zuno_scheduler_take, zuno_scheduler_look, zuno_mesh_load,
                zuno_mesh_look, zuno_mesh_outline, zuno_mesh_island, zuno_mesh_find_node,
                zuno_mesh_ground, zuno_mesh_nearest, zuno_mesh_nearest_reachable, zuno_mesh_random,
                zuno_mesh_move, zuno_mesh_walk, zuno_mesh_wall_distance, zuno_mesh_explain,
                zuno_path_create, zuno_path_straighten, zuno_path_corners, zuno_path_places,
                zuno_path_off_walls, zuno_corridor_create, zuno_corridor_place,
                zuno_corridor_follow, zuno_corridor_next, zuno_corridor_move,
                zuno_corridor_move_goal, zuno_corridor_look, zuno_replay, zuno_check_version>();
    while (mNext < mEnd)
        check((this->*calls[byte() % calls.size()])());
    for (auto handle = mAll.rbegin(); handle != mAll.rend(); ++handle)
        zuno_destroy(*handle); // a session is closed instead
    zuno_memory left{sizeof left, 0, 0, 0, 0, 0, 0};
    for (zuno_session* const session : std::get<ListOf<zuno_session>>(mHandles))
        if (zuno_close(session, &left) == ZUNO_OK)
            require(left.blocks == 0 && left.bytes == 0, "all memory comes back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zuno_set_log([](void*, std::int32_t, const char*, const char*, std::uint32_t) {}, nullptr);
    Host(data, size).play();
    return 0;
}
