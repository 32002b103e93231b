#pragma once

#include <cmath>

namespace ZUNO::Common::Math {

/// A pair of components. The default constructor leaves them unset.
template <typename T>
struct Vec2 {
    Vec2() = default;
    constexpr Vec2(T x, T y) : mX(x), mY(y) {}

    constexpr bool operator==(const Vec2&) const = default;

    T mX;
    T mY;
};

template <typename T>
constexpr Vec2<T> operator+(const Vec2<T>& a, const Vec2<T>& b) {
    return {a.mX + b.mX, a.mY + b.mY};
}

template <typename T>
constexpr Vec2<T> operator-(const Vec2<T>& a, const Vec2<T>& b) {
    return {a.mX - b.mX, a.mY - b.mY};
}

template <typename T>
constexpr Vec2<T> operator*(const Vec2<T>& a, T factor) {
    return {a.mX * factor, a.mY * factor};
}

template <typename T>
constexpr T dot(const Vec2<T>& a, const Vec2<T>& b) {
    return a.mX * b.mX + a.mY * b.mY;
}

inline float length(const Vec2<float>& a) {
    return std::sqrt(dot(a, a));
}

inline bool isFinite(const Vec2<float>& a) {
    return std::isfinite(a.mX) && std::isfinite(a.mY);
}

/// Twice the signed area of the triangle (a, b, q): positive when q lies left of the line from a
/// to b. The order of the operations is part of the result.
inline float signedArea(const Vec2<float>& a, const Vec2<float>& b, const Vec2<float>& q) {
    return a.mX * (b.mY - q.mY) + b.mX * (q.mY - a.mY) + q.mX * (a.mY - b.mY);
}

} // namespace ZUNO::Common::Math
