#pragma once

#include "common/math/vec2.h"
#include "common/report/indexerror.h"
#include "common/report/report.h"

#include <cmath>

namespace ZUNO::Common::Math {

namespace Detail {

/// What follows the three components in memory: a `Vec3<float>` fills 16 bytes.
template <typename T>
struct Vec3Padding {};
template <>
struct Vec3Padding<float> {
    float mUnused = 0;
};

} // namespace Detail

/// Three components. The default constructor leaves them unset. Hosts pass `Vec3<float>` by
/// reference in its layout of 16 bytes.
template <typename T>
struct Vec3 {
    Vec3() {} // NOLINT: unset on purpose
    constexpr Vec3(T x, T y, T z) : mX(x), mY(y), mZ(z) {}

    /// The component x, y or z. Another index is reported and raises an
    /// ArgumentOutOfRangeException.
    T& operator[](unsigned int comp) { return *component(*this, comp); }
    const T& operator[](unsigned int comp) const { return *component(*this, comp); }

    /// The index of the component with the largest magnitude; of equal ones the later.
    unsigned int getDominantAxis() const {
        const T x = std::abs(mX);
        const T y = std::abs(mY);
        const T z = std::abs(mZ);
        if (y < x && z < x)
            return 0;
        return x <= y && z < y ? 1 : 2;
    }

    /// The other two components in their order. An id above 2 is reported and counts as 2.
    Vec2<T> killComponent(unsigned int killCompID) const {
        ZUNO_CHECK(killCompID < 3, "component id out of range [0..2]");
        switch (killCompID) {
        case 0:
            return {mY, mZ};
        case 1:
            return {mX, mZ};
        default:
            return {mX, mY};
        }
    }

    constexpr bool operator==(const Vec3& other) const {
        return mX == other.mX && mY == other.mY && mZ == other.mZ;
    }

    T mX;
    T mY;
    T mZ;
    [[no_unique_address]] Detail::Vec3Padding<T> mPadding; ///< nothing reads it

private:
    template <typename Self>
    static auto* component(Self& self, unsigned int comp) {
        ZUNO_CHECK(comp < 3, "component id out of range [0..2]");
        switch (comp) {
        case 0:
            return &self.mX;
        case 1:
            return &self.mY;
        case 2:
            return &self.mZ;
        default:
            Exceptions::throwIndexError("comp");
        }
    }
};

static_assert(sizeof(Vec3<float>) == 16);

template <typename T>
constexpr Vec3<T> operator+(const Vec3<T>& a, const Vec3<T>& b) {
    return {a.mX + b.mX, a.mY + b.mY, a.mZ + b.mZ};
}

template <typename T>
constexpr Vec3<T> operator-(const Vec3<T>& a, const Vec3<T>& b) {
    return {a.mX - b.mX, a.mY - b.mY, a.mZ - b.mZ};
}

template <typename T>
constexpr T dot(const Vec3<T>& a, const Vec3<T>& b) {
    return a.mX * b.mX + a.mY * b.mY + a.mZ * b.mZ;
}

inline float length(const Vec3<float>& a) {
    return std::sqrt(dot(a, a));
}

inline bool isFinite(const Vec3<float>& a) {
    return std::isfinite(a.mX) && std::isfinite(a.mY) && std::isfinite(a.mZ);
}

} // namespace ZUNO::Common::Math
