// Floating point is a promise: every system gives the same bits.
#include "tests/host/hosttest.h"

#include <bit>
#include <fstream>
#include <random>
#include <sstream>

namespace ZUNO::Tests {

namespace {

/// FNV-1a over 32-bit words.
class Digest {
public:
    void add(std::uint32_t word) { mHash = (mHash ^ word) * 0x100000001B3U; }
    void add(float number) { add(std::bit_cast<std::uint32_t>(number)); }
    void add(const Vec3<float>& point) {
        add(point.mX);
        add(point.mY);
        add(point.mZ);
    }
    std::uint64_t value() const { return mHash; }

private:
    std::uint64_t mHash = 0xCBF29CE484222325U;
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

/// Asks the world that runs for everything, at places within its bounds, and lists the digests.
std::string askEverything(unsigned int queries) {
    Vec2<float> low(0, 0);
    Vec2<float> high(0, 0);
    Interface::getBoundingRectangle(low, high);
    Random random(11);
    const auto place = [&] {
        const float x = random.between(low.mX, high.mX);
        const float y = random.between(low.mY, high.mY);
        return Vec2<float>(x, y);
    };
    Digest paths;
    Digest rays;
    Digest grounds;
    unsigned int found = 0;
    for (unsigned int i = 0; i < queries; ++i) {
        const Vec2<float> from = place();
        const Vec2<float> to = place();
        const float startHeight = Interface::getGroundHeight(from);
        const float goalHeight = Interface::getGroundHeight(to);
        grounds.add(startHeight);
        grounds.add(Interface::isBlocked(to) ? 1U : 0U);
        Common::Geom::Ray2D<float, float> ray(from, to);
        Interface::traceRay(ray);
        rays.add(ray.mHitDistance);
        const int search =
            Interface::initPathSearch({from.mX, startHeight, from.mY}, {to.mX, goalHeight, to.mY});
        if (search < 0)
            continue;
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
    std::ostringstream text;
    text << "grounds " << queries << ' ' << std::hex << grounds.value() << '\n';
    text << "rays " << std::dec << queries << ' ' << std::hex << rays.value() << '\n';
    text << "paths " << std::dec << found << ' ' << std::hex << paths.value() << '\n';
    return text.str();
}

} // namespace

TEST_F(HostTest, GivesTheSameBitsOnEverySystem) {
    std::string turned = Worlds::makeFloor(1500, 5).toXML("axes that no number holds exactly");
    const auto replace = [&](const std::string& what, const std::string& by) {
        ASSERT_NE(turned.find(what), std::string::npos);
        turned.replace(turned.find(what), what.size(), by);
    };
    replace("<xaxis>1/0/0<", "<xaxis>0.8/0/0.6<");
    replace("<yaxis>0/0/1<", "<yaxis>-0.6/0/0.8<");
    mFiles->mFiles["turned"] = turned;
    mFiles->mFiles["harbour"] = Worlds::makeHarbour().toXML("harbour");
    std::string made;
    for (const char* const mesh : {"harbour", "turned"}) {
        ASSERT_TRUE(start(mesh));
        made += mesh + std::string("\n") + askEverything(3000);
        Interface::close();
    }
    std::ifstream committed(ZUNO_SOURCE_FOLDER "/tests/host/digests.txt");
    std::ostringstream expected;
    expected << committed.rdbuf();
    EXPECT_EQ(made, expected.str());
}

} // namespace ZUNO::Tests
