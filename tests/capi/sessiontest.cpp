// What a session is given, and what a host makes of it.
#include "tests/capi/capitest.h"
#include "tests/support/tempfolder.h"

#include <cmath>

namespace ZUNO::Tests {

namespace {

/// A host's memory, of which some requests are refused.
struct Memory {
    const zuno_memory_functions mFunctions{this,
                                           [](void* user, std::uint32_t size) -> void* {
                                               auto& memory = *static_cast<Memory*>(user);
                                               if (memory.mLeft == 0)
                                                   return nullptr;
                                               --memory.mLeft;
                                               ++memory.mOutstanding;
                                               return std::malloc(size);
                                           },
                                           [](void* user, void* block) {
                                               --static_cast<Memory*>(user)->mOutstanding;
                                               std::free(block);
                                           }};
    int mLeft = 1 << 30;
    int mOutstanding = 0;
};

std::string utf8(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

} // namespace

TEST_F(CApiTest, SurvivesTheEndOfMemoryAtEveryRequest) {
    Memory memory;
    mSettings.memory = &memory.mFunctions;
    const zuno_point from{1, 0, 1};
    int requests = 0;
    for (bool isThrough = false; !isThrough; ++requests) {
        ASSERT_LT(requests, 2000);
        memory.mLeft = requests;
        zuno_search* search = nullptr;
        std::int32_t state = 0;
        zuno_status status = start();
        if (status == ZUNO_OK) {
            status = zuno_search_open(mSession, &from, &from, &search);
            if (status == ZUNO_OK)
                status = zuno_search_run(search, 100, &state);
            isThrough = status == ZUNO_OK;
            EXPECT_OK(zuno_close(mSession, nullptr));
        }
        EXPECT_EQ(status, isThrough ? ZUNO_OK : ZUNO_NO_MEMORY) << lastError().text;
        EXPECT_EQ(memory.mOutstanding, 0);
    }
    mSession = nullptr;
    EXPECT_GT(requests, 10);
}

/// A host's files, of which one call goes wrong.
struct FailingFiles {
    const std::string& mMesh;
    const zuno_file_functions mFunctions{
        this,
        [](void* user, const char*) -> std::int64_t {
            auto& files = *static_cast<FailingFiles*>(user);
            const auto size = static_cast<std::int64_t>(files.mMesh.size());
            return files.isNow() ? (files.mFault > 0 ? size + 7 : files.mFault) : size;
        },
        [](void* user, const char*, std::uint64_t offset, void* bytes, std::uint32_t count) {
            auto& files = *static_cast<FailingFiles*>(user);
            const auto given = static_cast<std::int32_t>(files.mMesh.copy(
                static_cast<char*>(bytes), count, static_cast<std::size_t>(offset)));
            return files.isNow() ? (files.mFault > 0 ? given - 1 : files.mFault) : given;
        }};
    int mFault = 0; ///< what the call gives; above 0: a wrong size, or a byte too few
    int mFailing = 0;
    int mCalls = 0;

    bool isNow() { return ++mCalls == mFailing; }
};

TEST_F(CApiTest, SurvivesEveryCallOfFilesThatFails) {
    FailingFiles files{mFiles["floor"]};
    mSettings.files = &files.mFunctions;
    int refused = 0;
    for (const int fault : {-1, -2, -2147483647 - 1, 0, 1})
        for (bool isReached = true; isReached;) {
            zuno_mesh* mesh = nullptr;
            files.mFault = fault;
            files.mCalls = 0;
            zuno_status status = start();
            if (status == ZUNO_OK)
                status = zuno_mesh_load(mSession, "floor", &mesh);
            isReached = files.mCalls >= files.mFailing;
            EXPECT_TRUE(isReached || status == ZUNO_OK) << lastError().text;
            refused += status < 0 ? 1 : 0;
            const int next = isReached ? files.mFailing + 1 : 1;
            files.mFailing = 0;
            EXPECT_TRUE(mSession != nullptr || start() == ZUNO_OK) << lastError().text;
            EXPECT_OK(zuno_mesh_load(mSession, "floor", &mesh)) << " after " << fault;
            EXPECT_OK(zuno_close(mSession, nullptr));
            mSession = nullptr;
            files.mFailing = next;
        }
    EXPECT_GT(refused, 15);
}

TEST_F(CApiTest, SaysWhatIsWrongWithAMesh) {
    mFiles["text"] = "<a>\n<b></a>";
    mFiles["empty"] = "<a><navmesh></navmesh></a>";
    const struct {
        const char* mMesh;
        zuno_status mStatus;
        const char* mType;
        const char* mText; ///< a part
    } rows[] = {
        {"none", ZUNO_BAD_FILE, "FileNotFoundException", "zuno_start: "},
        {"text", ZUNO_BAD_MESH, "XMLParserException", "not equal"},
        {"empty", ZUNO_BAD_MESH, "", "empty: no usable navigation mesh: "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(start(row.mMesh), row.mStatus);
        const zuno_error error = lastError();
        EXPECT_STREQ(error.type, row.mType);
        EXPECT_NE(std::string(error.text).find(row.mText), std::string::npos) << error.text;
    }
    EXPECT_FALSE(mMessages.empty()) << "the reports of the empty mesh";
    EXPECT_EQ(start("none"), ZUNO_BAD_FILE);
    const zuno_error error = lastError();
    ASSERT_GE(error.parameter_count, 1U);
    EXPECT_STREQ(error.parameters[0].name, "Filename");
    EXPECT_STREQ(error.parameters[0].value, "none");
}

TEST_F(CApiTest, RefusesCallsFromWithinACallback) {
    static zuno_status inside = ZUNO_OK;
    const zuno_file_functions calling{nullptr,
                                      [](void*, const char*) -> std::int64_t {
                                          zuno_session* second = nullptr;
                                          inside = zuno_start(nullptr, "floor", &second);
                                          return -1;
                                      },
                                      mFileFunctions.read};
    mSettings.files = &calling;
    EXPECT_EQ(start(), ZUNO_BAD_FILE);
    EXPECT_EQ(inside, ZUNO_BUSY);
}

TEST_F(CApiTest, WalksACharacterToItsGoal) {
    ASSERT_OK(start());
    zuno_mesh* mesh = nullptr;
    zuno_path* path = nullptr;
    zuno_corridor* walker = nullptr;
    zuno_scheduler* scheduler = nullptr;
    ASSERT_OK(zuno_mesh_load(mSession, "floor", &mesh));
    ASSERT_OK(zuno_path_create(mesh, &path));
    ASSERT_OK(zuno_scheduler_create(mSession, nullptr, &scheduler));
    zuno_place from;
    const zuno_point corner{-1, 0, -1};
    float distance = 0;
    ASSERT_OK(zuno_mesh_nearest(mesh, &corner, 5, 5, &from, &distance));
    EXPECT_FLOAT_EQ(distance, std::sqrt(2.0F));
    ASSERT_OK(zuno_corridor_create(mesh, &from, &walker));
    auto request = sized<zuno_request>();
    request.start = from.position;
    request.goal = {13, 0, 11};
    std::uint64_t id = 0;
    ASSERT_OK(zuno_scheduler_add(scheduler, &request, &id));
    auto answer = sized<zuno_answer>();
    std::uint32_t count = 0;
    EXPECT_EQ(zuno_scheduler_take(scheduler, id, &answer, nullptr, &count), ZUNO_NONE);
    ASSERT_OK(zuno_scheduler_advance(scheduler, UINT64_MAX, UINT64_MAX));
    ASSERT_OK(zuno_scheduler_take(scheduler, id, &answer, nullptr, &count));
    ASSERT_EQ(answer.result, ZUNO_FOUND);
    EXPECT_EQ(answer.waypoint_count, count);
    std::vector<zuno_point> points(count);
    EXPECT_EQ(zuno_scheduler_take(scheduler, id, &answer, points.data(), &--count), ZUNO_TOO_SMALL);
    EXPECT_OK(zuno_scheduler_take(scheduler, id, &answer, points.data(), &count));
    EXPECT_EQ(zuno_scheduler_cancel(scheduler, id), ZUNO_BAD_ARGUMENT);
    EXPECT_OK(zuno_path_straighten(path, &request.start, &request.goal, points.data(), count,
                                   ZUNO_IMPROVED));
    double length = 0;
    EXPECT_OK(zuno_path_corners(path, nullptr, &count, &length));
    EXPECT_GE(length, std::hypot(13, 11));
    EXPECT_OK(zuno_corridor_follow(walker, path));
    auto state = sized<zuno_corridor_state>();
    for (int i = 0; i < 40; ++i) {
        zuno_point next;
        EXPECT_OK(zuno_corridor_next(walker, 0.2F, &next));
        EXPECT_OK(zuno_corridor_move(walker, &next));
    }
    EXPECT_OK(zuno_corridor_look(walker, &state));
    EXPECT_EQ(state.has_path, 1);
    EXPECT_NEAR(state.position.position.x, 13, 0.01);
    EXPECT_NEAR(state.position.position.z, 11, 0.01);
    EXPECT_OK(zuno_destroy(mesh)); // the others keep it
    EXPECT_OK(zuno_corridor_place(walker, &from));
    EXPECT_EQ(zuno_path_create(mesh, &path), ZUNO_BAD_HANDLE);
    EXPECT_OK(zuno_destroy(walker));
    EXPECT_OK(zuno_destroy(path));
    EXPECT_TRUE(mMessages.empty()) << mMessages.front();
}

TEST_F(CApiTest, RecordsAndReplays) {
    const TempFolder folder;
    const std::filesystem::path file = folder.path() / u8"Größe 世界.xml"; // in no code page
    const std::string mesh = utf8(file);
    const std::string recording = utf8(folder.path() / u8"Größe 世界");
    std::ofstream(file) << mFiles["floor"];
    mSettings.files = nullptr;
    mSettings.recording = recording.c_str();
    ASSERT_OK(start(mesh.c_str()));
    float height = 0;
    EXPECT_OK(zuno_ground_height(mSession, 1, 1, &height));
    auto figures = sized<zuno_memory>();
    EXPECT_OK(zuno_memory_figures(mSession, &figures));
    EXPECT_EQ(figures.is_recording, 1);
    EXPECT_GT(figures.bytes, 10'000U);
    EXPECT_OK(zuno_close(mSession, nullptr));
    mSession = nullptr;
    auto result = sized<zuno_replay_result>();
    char text[500];
    std::uint32_t size = sizeof text;
    EXPECT_OK(zuno_replay(recording.c_str(), nullptr, 0, &result, text, &size));
    EXPECT_EQ(result.calls, 3U);
    EXPECT_EQ(result.is_whole, 1);
    EXPECT_EQ(result.difference, 0U);
    {
        std::fstream damaged(folder.path() / u8"Größe 世界",
                             std::ios::in | std::ios::out | std::ios::binary);
        damaged.seekp(-7,
                      std::ios::end); // in the height, before the closing call and the end
        damaged.put(77);
    }
    EXPECT_OK(zuno_replay(recording.c_str(), nullptr, 0, &result, text, &(size = sizeof text)));
    EXPECT_EQ(result.difference, 2U);
    EXPECT_NE(std::string(text).find("getGroundHeight"), std::string::npos) << text;
    const char* const others[] = {recording.c_str()};
    EXPECT_EQ(zuno_replay(recording.c_str(), others, 1, &result, nullptr, nullptr),
              ZUNO_BAD_RECORDING);
    EXPECT_EQ(zuno_replay(mesh.c_str(), nullptr, 0, &result, nullptr, nullptr), ZUNO_BAD_RECORDING);
    mSettings.recording = "/nowhere/recording";
    EXPECT_EQ(start(mesh.c_str()), ZUNO_BAD_FILE);
    EXPECT_TRUE(mMessages.empty()) << mMessages.front();
}

} // namespace ZUNO::Tests
