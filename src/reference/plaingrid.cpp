#include "reference/plaingrid.h"

#include <algorithm>
#include <cmath>

namespace ZUNO::Reference {

using NavMesh::NavMeshContainer;
using Position = PlainGrid::Position;

namespace {

float component(const NavMeshContainer::Point3& point, int axis) {
    return axis == 0 ? point.mX : (axis == 1 ? point.mY : point.mZ);
}

/// Returns the axis along which the vector is longest; the later one of equals.
int longestAxis(const NavMeshContainer::Point3& vector) {
    int longest = 0;
    for (int axis = 1; axis < 3; ++axis)
        if (std::abs(component(vector, axis)) >= std::abs(component(vector, longest)))
            longest = axis;
    return longest;
}

float along(const NavMeshContainer::Point3& axis, const NavMeshContainer::Point3& point) {
    return point.mX * axis.mX + point.mY * axis.mY + point.mZ * axis.mZ;
}

/// Returns the value without its fraction; the nearest int where it is none, 0 for NaN.
int truncated(float value) {
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::clamp(std::trunc(double{value}), -2147483648.0, 2147483647.0));
}

/// Returns cells per unit, and 0 where that is no number.
float scaleOf(std::int64_t cells, float extent) {
    const float scale = static_cast<float>(static_cast<std::uint32_t>(cells - 1)) / extent;
    return std::isfinite(scale) ? scale : 0.0F;
}

/// Whether the point lies on the right side of none of the borders, the closing one first.
bool holds(const std::vector<Position>& outline, const Position& q) {
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const Position& a = outline[i == 0 ? outline.size() - 1 : i - 1];
        const Position& b = outline[i];
        const float area = (b.mY - q.mY) * a.mX + (q.mY - a.mY) * b.mX + (a.mY - b.mY) * q.mX;
        if (-area > 0)
            return false;
    }
    return true;
}

} // namespace

PlainGrid::PlainGrid(const NavMeshContainer& mesh) {
    std::vector<Position> points;
    for (const auto& vertex : mesh.mVertices)
        points.emplace_back(along(mesh.mXAxis, vertex), along(mesh.mYAxis, vertex));
    measure(points, mesh.mCubeSize);
    const int up = longestAxis(mesh.mNormal);
    for (const NavMeshContainer::NavNode& node : mesh.mNodes) {
        Outline outline;
        for (const std::uint32_t corner : node.mPolygon)
            outline.push_back(points[corner]);
        mark(outline, component(mesh.mVertices[node.mPolygon[0]], up), mesh.mCubeSize * 0.5F);
    }
}

void PlainGrid::measure(const std::vector<Position>& points, float cellSize) {
    for (const Position& point : points) {
        mMin = {std::min(mMin.mX, point.mX), std::min(mMin.mY, point.mY)};
        mMax = {std::max(mMax.mX, point.mX), std::max(mMax.mY, point.mY)};
    }
    mColumns = std::int64_t{truncated((mMax.mX - mMin.mX) / cellSize)} + 1;
    mRows = std::int64_t{truncated((mMax.mY - mMin.mY) / cellSize)} + 1;
    mScaleX = scaleOf(mColumns, mMax.mX - mMin.mX);
    mScaleY = scaleOf(mRows, mMax.mY - mMin.mY);
    mCells.resize(static_cast<std::size_t>(mColumns * mRows));
}

void PlainGrid::mark(const Outline& outline, float height, float half) {
    Position low = outline.front();
    Position high = outline.front();
    for (const Position& corner : outline) {
        low = {std::min(low.mX, corner.mX), std::min(low.mY, corner.mY)};
        high = {std::max(high.mX, corner.mX), std::max(high.mY, corner.mY)};
    }
    const Index first = indexOf(low);
    const Index last = indexOf(high);
    for (int row = first.mY; row <= last.mY; ++row)
        for (int column = first.mX; column <= last.mX; ++column) {
            const Position corner = lowerCornerOf({column, row});
            const Position centre(corner.mX + half, corner.mY + half);
            if (!holds(outline, centre))
                continue;
            if (Cell* const cell = findUnder(centre); cell != nullptr)
                *cell = {height, false};
        }
}

PlainGrid::Index PlainGrid::indexOf(const Position& position) const {
    return {truncated((position.mX - mMin.mX) * mScaleX),
            truncated((position.mY - mMin.mY) * mScaleY)};
}

PlainGrid::Position PlainGrid::lowerCornerOf(const Index& index) const {
    Position corner = mMin;
    if (mScaleX != 0)
        corner.mX = static_cast<float>(index.mX) / mScaleX + mMin.mX;
    if (mScaleY != 0)
        corner.mY = static_cast<float>(index.mY) / mScaleY + mMin.mY;
    return corner;
}

const PlainGrid::Cell* PlainGrid::cellAt(const Index& index) const {
    const bool isInside = index.mX >= 0 && index.mX < mColumns && index.mY >= 0 && index.mY < mRows;
    return isInside ? &mCells[static_cast<std::size_t>(index.mY * mColumns + index.mX)] : nullptr;
}

const PlainGrid::Cell* PlainGrid::cellUnder(const Position& position) const {
    const bool isInside = mMin.mX <= position.mX && position.mX <= mMax.mX &&
                          mMin.mY <= position.mY && position.mY <= mMax.mY;
    if (!isInside)
        return nullptr;
    // rounding may carry a position on the upper border one cell too far
    const Index index = indexOf(position);
    return cellAt({static_cast<int>(std::min<std::int64_t>(index.mX, mColumns - 1)),
                   static_cast<int>(std::min<std::int64_t>(index.mY, mRows - 1))});
}

PlainGrid::Cell* PlainGrid::findUnder(const Position& position) {
    return const_cast<Cell*>(cellUnder(position));
}

} // namespace ZUNO::Reference
