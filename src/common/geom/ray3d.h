#pragma once

#include "common/math/vec3.h"

namespace ZUNO::Common::Geom {

/// A ray in space, with room for the result of a trace. The library reads both ends and writes
/// the hit distance, nothing else.
template <typename T, typename R>
struct Ray3D {
    /// Sets both ends and the length; the result fields stay unset.
    Ray3D(const Math::Vec3<T>& start, const Math::Vec3<T>& end)
        : mStart(start), mEnd(end), mLength(Math::length(end - start)) {}

    Math::Vec3<T> mStart; ///< where the ray begins
    Math::Vec3<T> mEnd;   ///< what it is aimed at
    R mHitDistance;       ///< result, in the plane of the mesh; -1 for no hit
    R mReserved;          ///< not used by tracing
    R mLength;            ///< the distance of the ends; the library does not read it
};

} // namespace ZUNO::Common::Geom
