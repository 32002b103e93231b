// What zuno.h promises of threads; run it under the thread sanitizer with `./run test threads`.
#include "tests/capi/capitest.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <random>
#include <thread>

namespace ZUNO::Tests {

class CApiThreadsTest : public CApiTest {
protected:
    CApiThreadsTest() { EXPECT_OK(start()); }

    static void runInThreads(const std::function<void(unsigned int)>& action) {
        std::vector<std::thread> threads;
        for (unsigned int i = 0; i < 4; ++i)
            threads.emplace_back(action, i);
        for (std::thread& thread : threads)
            thread.join();
    }
    /// The path between two corners of the floor, from the world.
    std::vector<zuno_point> search() {
        zuno_search* search = nullptr;
        std::vector<zuno_point> points(100);
        auto count = static_cast<std::uint32_t>(points.size());
        std::int32_t state = 0;
        EXPECT_OK(zuno_search_open(mSession, &mFrom, &mTo, &search));
        EXPECT_OK(zuno_search_run(search, 10000, &state));
        EXPECT_OK(zuno_search_waypoints(search, points.data(), &count));
        EXPECT_OK(zuno_destroy(search));
        points.resize(count);
        return points;
    }
    /// Asks a mesh all that any thread may, by objects of its own; the sum of the answers.
    double ask(zuno_mesh* mesh, const std::vector<zuno_point>& waypoints, unsigned int seed) const {
        double sum = 0;
        zuno_path* path = nullptr;
        zuno_corridor* walker = nullptr;
        zuno_place place;
        zuno_place end;
        float distance = 0;
        std::int32_t word = 0;
        std::uint32_t number = 0;
        zuno_point corner;
        EXPECT_OK(zuno_path_create(mesh, &path));
        EXPECT_OK(zuno_path_straighten(path, &mFrom, &mTo, waypoints.data(),
                                       static_cast<std::uint32_t>(waypoints.size()),
                                       static_cast<std::int32_t>(seed % 2)));
        for (unsigned int i = 0; i < 30; ++i) {
            EXPECT_OK(zuno_mesh_random(mesh, std::uint64_t{seed} << 60U | i, &place));
            EXPECT_OK(zuno_mesh_find_node(mesh, &place.position, &number));
            EXPECT_OK(zuno_mesh_ground(mesh, &place.position, 1, &end));
            EXPECT_OK(zuno_mesh_nearest(mesh, &mTo, 5, 5, &end, &distance));
            EXPECT_OK(zuno_mesh_walk(mesh, &place, &mTo, &end, &word));
            EXPECT_OK(zuno_mesh_move(mesh, &place, &mTo, &end));
            EXPECT_OK(zuno_mesh_wall_distance(mesh, &place, 9, &distance));
            EXPECT_OK(zuno_mesh_explain(mesh, &place.position, &mTo, &word, nullptr, nullptr));
            EXPECT_EQ(zuno_mesh_island(mesh, 1000 + seed, &number), ZUNO_BAD_ARGUMENT);
            EXPECT_NE(std::string(lastError().text).find(std::to_string(1000 + seed)),
                      std::string::npos)
                << "each thread has its own last error: " << lastError().text;
            EXPECT_OK(zuno_mesh_nearest(mesh, &mFrom, 5, 5, &end, nullptr));
            EXPECT_OK(zuno_corridor_create(mesh, &end, &walker));
            EXPECT_OK(zuno_corridor_follow(walker, path));
            EXPECT_OK(zuno_corridor_next(walker, 0.1F, &corner));
            EXPECT_OK(zuno_destroy(walker));
            sum += double{end.position.x} + double{distance} + double{corner.z} + number + word;
        }
        EXPECT_OK(zuno_destroy(path));
        return sum;
    }

    const zuno_point mFrom{1, 0, 1};
    const zuno_point mTo{13, 0, 13};
};

TEST_F(CApiThreadsTest, OneMeshIsAskedByAny) {
    zuno_mesh* mesh = nullptr;
    ASSERT_OK(zuno_mesh_load(mSession, "floor", &mesh));
    const std::vector<zuno_point> waypoints = search();
    double alone[4];
    double together[4];
    for (unsigned int i = 0; i < 4; ++i)
        alone[i] = ask(mesh, waypoints, i);
    runInThreads([&](unsigned int i) { together[i] = ask(mesh, waypoints, i); });
    for (unsigned int i = 0; i < 4; ++i)
        EXPECT_EQ(together[i], alone[i]);
    EXPECT_OK(zuno_destroy(mesh));
}

// Whoever comes while another thread is in the world is told so, even while that one closes it.
TEST_F(CApiThreadsTest, TheWorldIsOneThreadsAtATime) {
    std::atomic<unsigned int> found = 0;
    std::atomic<zuno_search*> last = nullptr;
    const auto expectAny = [](zuno_status status, std::initializer_list<zuno_status> expected) {
        EXPECT_NE(std::ranges::find(expected, status), expected.end()) << status;
        return status == ZUNO_OK;
    };
    const auto useWorld = [&](zuno_session* session) {
        zuno_search* search = nullptr;
        std::int32_t state = ZUNO_RUNNING;
        if (expectAny(zuno_search_open(session, &mFrom, &mTo, &search),
                      {ZUNO_OK, ZUNO_BUSY, ZUNO_BAD_HANDLE}))
            last = search;
        while (search != nullptr && state == ZUNO_RUNNING)
            if (zuno_search_run(search, 5, &state) == ZUNO_BAD_HANDLE)
                return;
        found += state == ZUNO_FOUND ? 1 : 0;
    };
    zuno_session* const session = mSession;
    runInThreads([&](unsigned int thread) {
        for (int i = 0; i < 300; ++i)
            if (thread != 3)
                useWorld(session);
            else // destroys what others use
                expectAny(zuno_destroy(last), {ZUNO_OK, ZUNO_BUSY, ZUNO_BAD_HANDLE});
    });
    EXPECT_GT(found, 0U);
    for (int round = 0; round < 300; ++round) {
        std::atomic<bool> isClosed = false;
        for (int i = 0; i < 20; ++i)
            useWorld(mSession);
        runInThreads([&](unsigned int thread) {
            while (thread == 0 && !isClosed)
                isClosed = zuno_close(mSession, nullptr) == ZUNO_OK;
            while (!isClosed)
                expectAny(zuno_destroy(last), {ZUNO_OK, ZUNO_BUSY, ZUNO_BAD_HANDLE});
        });
        ASSERT_OK(start());
    }
}

} // namespace ZUNO::Tests
