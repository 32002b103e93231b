/// Points of the mesh's plane, in double: what comes of float coordinates along upright axes is
/// exact there, and so are the signs of most turns.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZUNO::HostKit {

struct PlanePoint {
    constexpr bool operator==(const PlanePoint&) const = default;

    double mX = 0;
    double mY = 0;
};

constexpr PlanePoint operator+(const PlanePoint& a, const PlanePoint& b) {
    return {a.mX + b.mX, a.mY + b.mY};
}
constexpr PlanePoint operator-(const PlanePoint& a, const PlanePoint& b) {
    return {a.mX - b.mX, a.mY - b.mY};
}
constexpr PlanePoint operator*(const PlanePoint& a, double factor) {
    return {a.mX * factor, a.mY * factor};
}
constexpr double dot(const PlanePoint& a, const PlanePoint& b) {
    return a.mX * b.mX + a.mY * b.mY;
}
constexpr double cross(const PlanePoint& a, const PlanePoint& b) {
    return a.mX * b.mY - a.mY * b.mX;
}

/// The cross product of a way and the way to a point beside it: above 0 when that lies to the left,
/// and exactly 0 where rounding leaves the side open.
inline double turn(const PlanePoint& way, const PlanePoint& aside) {
    const double left = way.mX * aside.mY;
    const double right = way.mY * aside.mX;
    const double area = left - right;
    constexpr double error = 4 * std::numeric_limits<double>::epsilon();
    return std::abs(area) > error * (std::abs(left) + std::abs(right)) ? area : 0;
}

/// Twice the area of the triangle: above 0 when `c` lies left of the line from `a` to `b`, and
/// exactly 0 where rounding leaves the side open.
inline double turn(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
    return turn(b - a, c - a);
}

inline double distance(const PlanePoint& a, const PlanePoint& b) {
    const PlanePoint d = b - a;
    return std::sqrt(dot(d, d));
}

/// Where on the segment from `a` to `b` the point nearest to `p` lies: 0 at `a`, 1 at `b`.
inline double partAlong(const PlanePoint& p, const PlanePoint& a, const PlanePoint& b) {
    const PlanePoint d = b - a;
    const double square = dot(d, d);
    return square > 0 ? std::clamp(dot(p - a, d) / square, 0.0, 1.0) : 0;
}

/// The point at that part of the way; both ends come out exactly.
constexpr PlanePoint between(const PlanePoint& a, const PlanePoint& b, double part) {
    return part >= 1 ? b : a + (b - a) * part;
}

inline PlanePoint nearestOnSegment(const PlanePoint& p, const PlanePoint& a, const PlanePoint& b) {
    return between(a, b, partAlong(p, a, b));
}

} // namespace ZUNO::HostKit
