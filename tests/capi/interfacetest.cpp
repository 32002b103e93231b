// The C interface as a whole: what it exports, its bits, and the mistakes of hosts.
#include "reference/fixedqueries.h"
#include "tests/capi/capitest.h"
#include "tests/platform/process.h"
#include "tests/support/tempfolder.h"
#include "tests/support/turnedmesh.h"

#include <functional>
#include <sstream>

namespace ZUNO::Tests {

TEST(CInterface, ExportsWhatTheHeaderDeclares) {
    const std::string header = contentOf(ZUNO_SOURCE_FOLDER "/capi/zuno.h");
    EXPECT_LE(std::count(header.begin(), header.end(), '\n'), 400);
    std::multiset<std::string> declared;
    const std::string mark = "ZUNO_API zuno_status ";
    for (std::size_t at = header.find(mark); at != header.npos; at = header.find(mark, at)) {
        at += mark.size();
        declared.insert(header.substr(at, header.find('(', at) - at));
    }
    EXPECT_GE(declared.size(), 48U);
    EXPECT_EQ(exportsOf(ZUNO_C_LIBRARY), declared);
}

TEST(CInterface, GivesAHostInCWhatTheExportsGiveAHostInCpp) {
    const std::string mesh = " " ZUNO_SOURCE_FOLDER "/worlds/harbour.xml";
    const Outcome inC = runCommand(ZUNO_TOOL_FOLDER "/host_c" + mesh);
    EXPECT_EQ(inC.mStatus, 0);
    EXPECT_NE(inC.mOutput.find("digest d4a99755f585e59a"), std::string::npos) << inC.mOutput;
    EXPECT_EQ(inC.mOutput, runCommand(ZUNO_TOOL_FOLDER "/host_cpp" + mesh).mOutput);
    EXPECT_NE(runCommand(ZUNO_TOOL_FOLDER "/host_c none.xml").mOutput.find("zuno_start: "),
              std::string::npos);
}

namespace {

using Vec2 = Common::Math::Vec2<float>;
using Vec3 = Common::Math::Vec3<float>;

/// A session with the exports' functions, one search at a time.
class CWorld {
public:
    explicit CWorld(zuno_session* session) : mSession(session) {}

    void getBoundingRectangle(Vec2& min, Vec2& max) {
        zuno_point2 corners[2];
        EXPECT_OK(zuno_bounds(mSession, &corners[0], &corners[1]));
        min = {corners[0].x, corners[0].y};
        max = {corners[1].x, corners[1].y};
    }
    float getGroundHeight(const Vec2& at) {
        EXPECT_GE(zuno_ground_height(mSession, at.mX, at.mY, &mNumber), 0);
        return mNumber;
    }
    bool isBlocked(const Vec2& at) {
        EXPECT_OK(zuno_is_blocked(mSession, at.mX, at.mY, &mState));
        return mState != 0;
    }
    void traceRay(Common::Geom::Ray2D<float, float>& ray) {
        EXPECT_GE(zuno_trace_ray(mSession, ray.mStart.mX, ray.mStart.mY, ray.mEnd.mX, ray.mEnd.mY,
                                 &ray.mHitDistance),
                  0);
    }
    int initPathSearch(const Vec3& from, const Vec3& to) {
        const zuno_point ends[] = {{from.mX, from.mY, from.mZ}, {to.mX, to.mY, to.mZ}};
        mWaypoints.clear();
        mNext = 0;
        return zuno_search_open(mSession, &ends[0], &ends[1], &mSearch) == ZUNO_NONE ? -1 : 0;
    }
    int runPathSearch(int, std::uint32_t budget) {
        EXPECT_OK(zuno_search_run(mSearch, budget, &mState));
        return mState;
    }
    bool getNextWaypoint(int, Vec3& waypoint) {
        if (mNext == 0) {
            mWaypoints.resize(2000);
            auto count = static_cast<std::uint32_t>(mWaypoints.size());
            EXPECT_OK(zuno_search_waypoints(mSearch, mWaypoints.data(), &count));
            mWaypoints.resize(count);
        }
        if (mNext == mWaypoints.size())
            return false;
        const zuno_point& next = mWaypoints[mNext++];
        waypoint = {next.x, next.y, next.z};
        return true;
    }
    float getPathCost(int) {
        EXPECT_OK(zuno_search_cost(mSearch, &mNumber));
        return mNumber;
    }
    void closePathSearch(int) { EXPECT_OK(zuno_destroy(mSearch)); }

private:
    zuno_session* mSession;
    zuno_search* mSearch = nullptr;
    std::vector<zuno_point> mWaypoints;
    std::size_t mNext = 0;
    std::int32_t mState = 0;
    float mNumber = 0;
};

} // namespace

TEST_F(CApiTest, GivesTheBitsOfTheExports) {
    mFiles["turned"] = turned(Worlds::makeFloor(1500, 5));
    mFiles["harbour"] = Worlds::makeHarbour().toXML("harbour");
    std::string made;
    for (const char* const mesh : {"harbour", "turned"}) {
        ASSERT_OK(start(mesh));
        CWorld world(mSession);
        made += mesh + std::string("\n") + Reference::FixedQueries(world, mesh).ask(3000);
        EXPECT_OK(zuno_close(mSession, nullptr));
    }
    mSession = nullptr;
    EXPECT_EQ(made, contentOf(ZUNO_SOURCE_FOLDER "/tests/host/digests.txt"));
}

TEST_F(CApiTest, AnswersMisuseWithAStatusAndAText) {
    ASSERT_OK(start());
    zuno_mesh* mesh = nullptr;
    ASSERT_OK(zuno_mesh_load(mSession, "floor", &mesh));
    zuno_place place;
    ASSERT_OK(zuno_mesh_random(mesh, 1, &place));
    zuno_scheduler* scheduler = nullptr;
    ASSERT_OK(zuno_scheduler_create(mSession, nullptr, &scheduler));
    zuno_path* path = nullptr;
    ASSERT_OK(zuno_path_create(mesh, &path));
    zuno_search* closed = nullptr;
    ASSERT_OK(zuno_search_open(mSession, &place.position, &place.position, &closed));
    ASSERT_OK(zuno_destroy(closed));
    auto request = sized<zuno_request>();
    request.priority = 3;
    auto answer = sized<zuno_answer>();
    auto small = sized<zuno_memory>();
    small.size = 4;
    zuno_settings unset{};
    const zuno_place nowhere{60000, {}};
    zuno_point points[2];
    std::uint32_t count = 2;
    std::uint64_t id = 0;
    std::int32_t number = 0;
    zuno_session* second = nullptr;
    const auto at = &place.position;
    const struct {
        std::function<zuno_status()> mCall;
        zuno_status mStatus;
        const char* mText; ///< a part of it
    } rows[] = {
        {[&] { return zuno_search_run(nullptr, 1, &number); }, ZUNO_BAD_HANDLE,
         "zuno_search_run: the search is null"},
        {[&] { return zuno_search_run(closed, 1, &number); }, ZUNO_BAD_HANDLE,
         "the search was destroyed, or never made"},
        {[&] { return zuno_destroy(closed); }, ZUNO_BAD_HANDLE, "was destroyed"},
        {[&] { return zuno_destroy(mSession); }, ZUNO_BAD_HANDLE, "is closed by zuno_close"},
        {[&] { return zuno_close(reinterpret_cast<zuno_session*>(mesh), nullptr); },
         ZUNO_BAD_HANDLE, "the session is the handle of something else"},
        {[&] { return zuno_start(&mSettings, "floor", &second); }, ZUNO_BUSY, "session is running"},
        {[&] { return zuno_start(&unset, "floor", &second); }, ZUNO_BAD_SIZE,
         "settings has the size 0 instead of "},
        {[&] { return zuno_start(nullptr, nullptr, &second); }, ZUNO_BAD_ARGUMENT, "name is null"},
        {[&] { return zuno_replay("r", nullptr, 0, nullptr, nullptr, nullptr); }, ZUNO_BUSY,
         "close it"},
        {[&] { return zuno_memory_figures(mSession, &small); }, ZUNO_BAD_SIZE, "size 4 instead of"},
        {[&] { return zuno_ground_height(mSession, 0, 0, nullptr); }, ZUNO_BAD_ARGUMENT,
         "zuno_ground_height: the height is null"},
        {[&] { return zuno_search_open(mSession, at, nullptr, &closed); }, ZUNO_BAD_ARGUMENT,
         "the goal is null"},
        {[&] { return zuno_mesh_load(mSession, "none", &mesh); }, ZUNO_BAD_FILE, "none: "},
        {[&] { return zuno_mesh_island(mesh, 60000, &count); }, ZUNO_BAD_ARGUMENT, "no node 60000"},
        {[&] { return zuno_mesh_move(mesh, &nowhere, at, &place); }, ZUNO_BAD_ARGUMENT, "no node"},
        {[&] { return zuno_mesh_outline(mesh, 0, points, &(count = 2)); }, ZUNO_TOO_SMALL,
         "room for 2 of 4"},
        {[&] { return zuno_path_straighten(path, at, at, nullptr, 1, 0); }, ZUNO_BAD_ARGUMENT,
         "the waypoints is null"},
        {[&] { return zuno_path_straighten(path, at, at, nullptr, 0, 2); }, ZUNO_BAD_ARGUMENT,
         "no form 2"},
        {[&] { return zuno_scheduler_add(scheduler, &request, &id); }, ZUNO_BAD_ARGUMENT,
         "no priority 3"},
        {[&] { return zuno_scheduler_cancel(scheduler, 7); }, ZUNO_BAD_ARGUMENT, "no request 7"},
        {[&] { return zuno_scheduler_take(scheduler, 7, &answer, points, &(count = 2)); },
         ZUNO_BAD_ARGUMENT, "no request 7"},
        {[&] { return zuno_check_version(20000, nullptr); }, ZUNO_BAD_VERSION, "version 20000"},
        {[&] { return zuno_check_version(10100, nullptr); }, ZUNO_BAD_VERSION, "of 10000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.mCall(), row.mStatus) << row.mText;
        const zuno_error error = lastError();
        EXPECT_EQ(error.status, row.mStatus);
        EXPECT_NE(std::string(error.text).find(row.mText), std::string::npos) << error.text;
    }
    EXPECT_OK(zuno_check_version(ZUNO_HEADER_VERSION, &count));
    EXPECT_EQ(count, ZUNO_HEADER_VERSION);
    for (void* const handle : {static_cast<void*>(path), static_cast<void*>(mesh)})
        EXPECT_OK(zuno_destroy(handle));
    EXPECT_TRUE(mMessages.empty()) << mMessages.front();
}

} // namespace ZUNO::Tests
