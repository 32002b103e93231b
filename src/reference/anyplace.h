#pragma once

#include "common/geom/ray2d.h"
#include "common/geom/ray3d.h"

#include <cmath>
#include <limits>
#include <vector>

namespace ZUNO::Reference {

/// Asks a world for everything at places of every size, and looks at what holds of the answers
/// whatever the mesh.
template <typename World>
class AnyPlace {
public:
    using Vec2 = Common::Math::Vec2<float>;
    using Vec3 = Common::Math::Vec3<float>;

    explicit AnyPlace(World& world) : mWorld(world) {}

    /// Asks at 225 places, or at every so many-th of them. Returns what does not hold, and null
    /// when all does.
    const char* ask(std::size_t every = 1) {
        const std::vector<float> values = coordinates();
        const std::size_t count = values.size();
        for (std::size_t place = 0; place < count * count; place += every) {
            const std::size_t i = place / count;
            const std::size_t j = place % count;
            askBetween({values[i], values[j]}, {values[(i + 3) % count], values[(j + 5) % count]});
        }
        return mFailure;
    }

private:
    /// Those of the world's bounds, and some that no world has.
    std::vector<float> coordinates() {
        using Limits = std::numeric_limits<float>;
        Vec2 low(0, 0);
        Vec2 high(0, 0);
        mWorld.getBoundingRectangle(low, high);
        return {low.mX,
                high.mX,
                low.mY,
                high.mY,
                low.mX + (high.mX - low.mX) * 0.3F,
                low.mY + (high.mY - low.mY) * 0.7F,
                0.5F,
                1,
                -1,
                1e20F,
                Limits::max(),
                -Limits::max(),
                Limits::infinity(),
                Limits::quiet_NaN(),
                Limits::denorm_min()};
    }

    void askBetween(const Vec2& here, const Vec2& there) {
        const Vec3 from(here.mX, mWorld.getGroundHeight(here), here.mY);
        const Vec3 to(there.mX, mWorld.getGroundHeight(there), there.mY);
        mWorld.isBlocked(here);
        Common::Geom::Ray2D<float, float> flat(here, there);
        mWorld.traceRay(flat);
        require(flat.mHitDistance >= 0 || flat.mHitDistance == -1 || std::isnan(flat.mHitDistance),
                "a hit lies behind");
        Common::Geom::Ray3D<float, float> deep(from, to);
        mWorld.traceRay(deep);
        search(from, to);
        search({here.mX, 0, here.mY}, {there.mX, 0, there.mY});
    }

    void search(const Vec3& from, const Vec3& to) {
        const int id = mWorld.initPathSearch(from, to);
        if (id < 0)
            return;
        for (int i = 0; i < 50 && mWorld.runPathSearch(id, 5) == 1; ++i) {
        }
        Vec3 waypoint(0, 0, 0);
        for (int i = 0; i < 100 && mWorld.getNextWaypoint(id, waypoint); ++i) {
        }
        require(!(mWorld.getPathCost(id) < 0), "a cost is negative");
        require(mWorld.closePathSearch(id), "an open search can't be closed");
    }

    void require(bool holds, const char* failure) {
        if (!holds && mFailure == nullptr)
            mFailure = failure;
    }

    World& mWorld;
    const char* mFailure = nullptr;
};

} // namespace ZUNO::Reference
