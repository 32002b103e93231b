/// Outlines in cells of the grid, seen from above: counter-clockwise along x and z.
#pragma once

#include "tools/zunobake/tilegrid.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ZUNO::Tools {

using Outline = std::vector<GridPoint>;

/// Above 0 when one who comes from a turns left at b to go to c: twice the triangle's area.
inline std::int64_t turnAt(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
    return std::int64_t{b.mX - a.mX} * (c.mZ - b.mZ) - std::int64_t{b.mZ - a.mZ} * (c.mX - b.mX);
}

/// In cells; below 0 for an outline that runs clockwise.
double areaOf(const Outline& outline);

/// Whether all corners turn left. A corner may lie on a straight border that runs along an axis:
/// elsewhere positions are rounded to float, and it might turn right.
bool isConvex(const Outline& outline);

/// Whether a corner turns right, or the outline goes back at it.
bool hasDent(const Outline& outline);

/// The least and the greatest coordinate along one axis; there must be a corner.
std::pair<int, int> rangeOf(const Outline& outline, int GridPoint::*axis);

/// Whether a corner lies lower than another; at the same height, whether it has the lesser x and z.
bool isLower(const GridPoint& a, const GridPoint& b);

/// The corner of the lowest height; of several the one with the least x and z, wherever the outline
/// begins.
std::size_t lowestCornerOf(const Outline& outline);

/// Calls `visit(x, z)` for each cell whose centre lies in an outline.
template <typename Visitor>
void forEachCell(const Outline& outline, Visitor visit) {
    const auto [front, back] = rangeOf(outline, &GridPoint::mZ);
    for (int z = front; z < back; ++z) {
        std::vector<double> crossings;
        for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
            const GridPoint& a = outline[i];
            const GridPoint& b = outline[j];
            const double centre = z + 0.5;
            if ((a.mZ > centre) != (b.mZ > centre))
                crossings.push_back((b.mX - a.mX) * (centre - a.mZ) / (b.mZ - a.mZ) + a.mX);
        }
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t i = 1; i < crossings.size(); i += 2)
            for (int x = static_cast<int>(std::ceil(crossings[i - 1] - 0.5));
                 x + 0.5 < crossings[i]; ++x)
                visit(x, z);
    }
}

/// How far the surface of a node is off its ground at most, in cell heights. The surface is the fan
/// of triangles from its lowest corner, as the host kit has it. No more than `samples` cells are
/// looked at.
double heightErrorOf(const Outline& outline, const Ground& ground,
                     std::size_t samples = static_cast<std::size_t>(-1));

} // namespace ZUNO::Tools
