#pragma once

#include "common/geom/ray2d.h"
#include "common/math/vec2.h"

namespace ZUNO::Pathfinder::Raytracer {

/// Answers questions about what is blocked. Units: coordinates of the mesh's plane. Immutable.
class RayTracer {
public:
    virtual ~RayTracer() = default;
    /// Sets `mHitDistance`: the distance from the start to where the ray meets a blocked place; -1
    /// for no hit. Reports a negative length, and traces nevertheless.
    virtual void traceRay(Common::Geom::Ray2D<float, float>& ray) = 0;
    virtual bool isBlocked(const Common::Math::Vec2<float>& position) = 0;
    /// Returns `noGround` where there is none.
    virtual float getGroundHeight(const Common::Math::Vec2<float>& position) = 0;
    virtual void getBoundingRectangle(Common::Math::Vec2<float>& min,
                                      Common::Math::Vec2<float>& max) = 0;
};

} // namespace ZUNO::Pathfinder::Raytracer
