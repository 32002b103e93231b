// Floating point is a promise: every system gives the same bits.
#include "tests/support/digest.h"
#include "tests/host/hosttest.h"
#include "tests/support/turnedmesh.h"

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

namespace ZUNO::Tests {

namespace {

/// Answers of one kind: their digest, and their texts in a log of all queries.
/// The shortest text of a float tells its bits.
class Answers {
public:
    Answers(const char* name, std::string& log) : mName(name), mLog(log) {}

    void add(std::uint32_t number) {
        mDigest.add(number);
        write(number);
    }
    void add(float number) {
        mDigest.add(number);
        write(number);
    }
    void add(const Vec3<float>& point) {
        add(point.mX);
        add(point.mY);
        add(point.mZ);
    }
    std::string line(unsigned int count) const {
        std::ostringstream text;
        text << mName << ' ' << count << ' ' << std::hex << mDigest.value() << '\n';
        return text.str();
    }

private:
    template <typename Number>
    void write(Number number) {
        char digits[32];
        mLog.append(1, ' ').append(digits, std::to_chars(digits, std::end(digits), number).ptr);
    }

    const char* mName;
    std::string& mLog;
    Digest mDigest;
};

/// Random numbers that are the same everywhere, unlike the standard distributions'.
class Random {
public:
    explicit Random(unsigned int seed) : mEngine(seed) {}
    float between(float low, float high) {
        return low + (high - low) * (static_cast<float>(mEngine() >> 8U) / 16777216.0F);
    }

private:
    std::mt19937 mEngine;
};

/// Asks the world that runs for everything, at places within its bounds. Lists the digests, and
/// appends a line for each query to the log: where, the ground's heights, whether the goal is
/// blocked, the ray's hit, and the search: what each slice gave, the waypoints, the cost.
std::string askEverything(const char* mesh, unsigned int queries, std::string& log) {
    Vec2<float> low(0, 0);
    Vec2<float> high(0, 0);
    Interface::getBoundingRectangle(low, high);
    Random random(11);
    const auto place = [&] {
        const float x = random.between(low.mX, high.mX);
        const float y = random.between(low.mY, high.mY);
        return Vec2<float>(x, y);
    };
    Answers places("places", log);
    Answers grounds("grounds", log);
    Answers rays("rays", log);
    Answers paths("paths", log);
    unsigned int found = 0;
    for (unsigned int i = 0; i < queries; ++i) {
        const Vec2<float> from = place();
        const Vec2<float> to = place();
        log += mesh + std::string(" ") + std::to_string(i) + " from";
        for (const float coordinate : {from.mX, from.mY, to.mX, to.mY})
            places.add(coordinate);
        const float startHeight = Interface::getGroundHeight(from);
        const float goalHeight = Interface::getGroundHeight(to);
        log += " ground";
        grounds.add(startHeight);
        grounds.add(Interface::isBlocked(to) ? 1U : 0U);
        Common::Geom::Ray2D<float, float> ray(from, to);
        Interface::traceRay(ray);
        log += " ray";
        rays.add(ray.mHitDistance);
        log += " path";
        const int search =
            Interface::initPathSearch({from.mX, startHeight, from.mY}, {to.mX, goalHeight, to.mY});
        if (search >= 0) {
            int state = 0;
            do {
                state = Interface::runPathSearch(search, 7);
                paths.add(static_cast<std::uint32_t>(state));
            } while (state == 1);
            found += state == 0 ? 1U : 0U;
            for (Vec3<float> waypoint(0, 0, 0); Interface::getNextWaypoint(search, waypoint);)
                paths.add(waypoint);
            paths.add(Interface::getPathCost(search));
            Interface::closePathSearch(search);
        }
        log += '\n';
    }
    return grounds.line(queries) + rays.line(queries) + paths.line(found);
}

/// Keeps the log in the file that ZUNO_QUERY_LOG names, or else, when something differs, here.
std::string keepLog(const std::string& log, bool isAsExpected) {
    const char* const wanted = std::getenv("ZUNO_QUERY_LOG");
    if (wanted == nullptr && isAsExpected)
        return "";
    const std::string name = wanted != nullptr ? wanted : "queries.log";
    std::ofstream(name, std::ios::binary) << log;
    return "every query is in " + name + "; `./run queries` compares two systems' logs";
}

} // namespace

TEST_F(HostTest, GivesTheSameBitsOnEverySystem) {
    mFiles->mFiles["turned"] = turned(Worlds::makeFloor(1500, 5));
    mFiles->mFiles["harbour"] = Worlds::makeHarbour().toXML("harbour");
    std::string made;
    std::string log;
    for (const char* const mesh : {"harbour", "turned"}) {
        ASSERT_TRUE(start(mesh));
        made += mesh + std::string("\n") + askEverything(mesh, 3000, log);
        Interface::close();
    }
    std::ifstream committed(ZUNO_SOURCE_FOLDER "/tests/host/digests.txt");
    std::ostringstream expected;
    expected << committed.rdbuf();
    const std::string note = keepLog(log, made == expected.str());
    EXPECT_EQ(made, expected.str()) << note;
}

} // namespace ZUNO::Tests
