#pragma once

#include "common/math/vec2.h"

#include <limits>

namespace ZUNO::Common::Math {

/// An upright rectangle. It starts empty and grows to hold points.
struct Rect {
    void grow(const Vec2<float>& point) {
        mMin = {point.mX < mMin.mX ? point.mX : mMin.mX, point.mY < mMin.mY ? point.mY : mMin.mY};
        mMax = {point.mX > mMax.mX ? point.mX : mMax.mX, point.mY > mMax.mY ? point.mY : mMax.mY};
    }

    /// Whether the point lies inside or on the border; a NaN coordinate never does.
    bool contains(const Vec2<float>& point) const {
        return mMin.mX <= point.mX && point.mX <= mMax.mX && mMin.mY <= point.mY &&
               point.mY <= mMax.mY;
    }

    Vec2<float> mMin{std::numeric_limits<float>::max(), std::numeric_limits<float>::max()};
    Vec2<float> mMax{std::numeric_limits<float>::lowest(), std::numeric_limits<float>::lowest()};
};

} // namespace ZUNO::Common::Math
