#pragma once

#include "common/geom/ray2d.h"
#include "common/math/vec3.h"
#include "reference/digest.h"

#include <charconv>
#include <iterator>
#include <random>
#include <sstream>
#include <string>

namespace ZUNO::Reference {

/// Answers of one kind: their digest, and their texts in a log of all queries. The shortest text
/// of a float tells its bits.
class Answers {
public:
    Answers(const char* name, std::string& log) : mName(name), mLog(log) {}

    template <typename Number>
    void add(Number number) {
        char digits[32];
        mDigest.add(number);
        mLog.append(1, ' ').append(digits, std::to_chars(digits, std::end(digits), number).ptr);
    }
    std::string line(unsigned int count) const {
        std::ostringstream text;
        text << mName << ' ' << count << ' ' << std::hex << mDigest.value() << '\n';
        return text.str();
    }

private:
    const char* mName;
    std::string& mLog;
    Digest mDigest;
};

/// Queries whose answers have the same bits on every system and through every interface. A world
/// is whatever has the exports' functions.
template <typename World>
class FixedQueries {
public:
    /// `name` begins each line of the log.
    FixedQueries(World& world, std::string name) : mWorld(world), mName(std::move(name)) {}

    /// Asks so many times at places within the world's bounds. Returns the digests, a line each.
    std::string ask(unsigned int count) {
        Vec2 low(0, 0);
        Vec2 high(0, 0);
        mWorld.getBoundingRectangle(low, high);
        const auto place = [&] {
            const float x = between(low.mX, high.mX);
            return Vec2(x, between(low.mY, high.mY));
        };
        for (unsigned int i = 0; i < count; ++i) {
            const Vec2 from = place();
            const Vec2 to = place();
            mLog += mName + " " + std::to_string(i) + " from";
            for (const float coordinate : {from.mX, from.mY, to.mX, to.mY})
                mPlaces.add(coordinate);
            askBetween(from, to);
            mLog += '\n';
        }
        return mGrounds.line(count) + mRays.line(count) + mPaths.line(mFound);
    }

    /// A line for each query: where, the ground's height, whether the goal is blocked, the ray's
    /// hit, and the search: what each slice gave, the waypoints, the cost.
    const std::string& log() const { return mLog; }

private:
    using Vec2 = Common::Math::Vec2<float>;
    using Vec3 = Common::Math::Vec3<float>;

    /// The same everywhere, unlike the standard distributions.
    float between(float low, float high) {
        return low + (high - low) * (static_cast<float>(mRandom() >> 8U) / 16777216.0F);
    }

    void askBetween(const Vec2& from, const Vec2& to) {
        const float startHeight = mWorld.getGroundHeight(from);
        const float goalHeight = mWorld.getGroundHeight(to);
        mLog += " ground";
        mGrounds.add(startHeight);
        mGrounds.add(mWorld.isBlocked(to) ? 1U : 0U);
        Common::Geom::Ray2D<float, float> ray(from, to);
        mWorld.traceRay(ray);
        mLog += " ray";
        mRays.add(ray.mHitDistance);
        mLog += " path";
        search({from.mX, startHeight, from.mY}, {to.mX, goalHeight, to.mY});
    }

    void search(const Vec3& from, const Vec3& to) {
        const int id = mWorld.initPathSearch(from, to);
        if (id < 0)
            return;
        int state = 0;
        do {
            state = mWorld.runPathSearch(id, 7);
            mPaths.add(static_cast<std::uint32_t>(state));
        } while (state == 1);
        mFound += state == 0 ? 1U : 0U;
        for (Vec3 waypoint(0, 0, 0); mWorld.getNextWaypoint(id, waypoint);)
            for (const float coordinate : {waypoint.mX, waypoint.mY, waypoint.mZ})
                mPaths.add(coordinate);
        mPaths.add(mWorld.getPathCost(id));
        mWorld.closePathSearch(id);
    }

    World& mWorld;
    std::string mName;
    std::string mLog;
    Answers mPlaces{"places", mLog};
    Answers mGrounds{"grounds", mLog};
    Answers mRays{"rays", mLog};
    Answers mPaths{"paths", mLog};
    std::mt19937 mRandom{11};
    unsigned int mFound = 0;
};

} // namespace ZUNO::Reference
