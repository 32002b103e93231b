#pragma once

#include "common/math/vec2.h"

namespace ZUNO::Common::Geom {

/// A ray from one point towards another, with room for the result of a trace.
/// T is the type of the coordinates, R that of the distances.
template <typename T, typename R>
struct Ray2D {
    /// Sets both ends and the length; the result fields stay unset.
    Ray2D(const Math::Vec2<T>& start, const Math::Vec2<T>& end)
        : mStart(start), mEnd(end), mLength(Math::length(end - start)) {}

    /// The point at distance `t` along the ray. The length must not be 0.
    Math::Vec2<T> pointAt(R t) const { return mStart + (mEnd - mStart) * (t / mLength); }

    Math::Vec2<T> mStart; ///< where the ray begins
    Math::Vec2<T> mEnd;   ///< what it is aimed at
    R mHitDistance;       ///< result: the distance from the start to the hit, or -1 for no hit
    R mReserved;          ///< not used by tracing
    R mLength;            ///< the length of the ray, 0 or more
};

} // namespace ZUNO::Common::Geom
