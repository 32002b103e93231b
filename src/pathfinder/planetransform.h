#pragma once

#include "common/math/vec3.h"

namespace ZUNO::Pathfinder {

/// A 2x2 matrix by its rows.
struct Matrix2 {
    Common::Math::Vec2<float> operator*(const Common::Math::Vec2<float>& p) const {
        return {dot(mRows[0], p), dot(mRows[1], p)};
    }
    float determinant() const { return mRows[0].mX * mRows[1].mY - mRows[0].mY * mRows[1].mX; }

    Common::Math::Vec2<float> mRows[2] = {{0, 0}, {0, 0}};
};

/// The matrix that maps a host's 2D position, a position without its up component, into the plane
/// of the two axes.
inline Matrix2 makePlaneTransform(const Common::Math::Vec3<float>& xAxis,
                                  const Common::Math::Vec3<float>& yAxis, unsigned int up) {
    return {{xAxis.killComponent(up), yAxis.killComponent(up)}};
}

/// The inverse; all zero when there is none.
inline Matrix2 invert(const Matrix2& m) {
    const float determinant = m.determinant();
    if (determinant == 0)
        return {};
    const float r = 1 / determinant;
    return {{{m.mRows[1].mY * r, -m.mRows[0].mY * r}, {-m.mRows[1].mX * r, m.mRows[0].mX * r}}};
}

} // namespace ZUNO::Pathfinder
