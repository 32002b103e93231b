#pragma once

#include "common/geom/ray2d.h"
#include "common/math/vec2.h"

namespace ZUNO::Pathfinder::Raytracer {

/// Answers questions about what is blocked, in coordinates of the mesh's plane. Immutable.
class RayTracer {
public:
    virtual ~RayTracer() = default;
    /// Sets `mHitDistance`: how far the ray runs before it meets a blocked place; -1 for no hit.
    virtual void traceRay(Common::Geom::Ray2D<float, float>& ray) = 0;
    virtual bool isBlocked(const Common::Math::Vec2<float>& position) = 0;
    /// 3.4028235e38 where there is no ground.
    virtual float getGroundHeight(const Common::Math::Vec2<float>& position) = 0;
    virtual void getBoundingRectangle(Common::Math::Vec2<float>& min,
                                      Common::Math::Vec2<float>& max) = 0;
};

} // namespace ZUNO::Pathfinder::Raytracer
