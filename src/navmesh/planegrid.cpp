#include "navmesh/planegrid.h"

#include "common/utility/saturate.h"

#include <algorithm>

namespace ZUNO::NavMesh {

namespace {

constexpr double stepsPerBorder = 8; ///< measured: its row is bisected

} // namespace

PlaneGrid measurePlane(const NavMeshContainer& mesh) {
    PlaneGrid grid{};
    grid.mBounds = {};
    for (const auto& vertex : mesh.mVertices)
        grid.mBounds.grow(mesh.projectToPlane(vertex));
    const Common::Math::Vec2<float> size = grid.mBounds.mMax - grid.mBounds.mMin;
    const auto cells = [&](float extent) {
        return std::int64_t{Common::Utility::truncateToInt(extent / mesh.mCubeSize)} + 1;
    };
    grid.mColumns = cells(size.mX);
    grid.mRows = cells(size.mY);
    return grid;
}

double countMarkingSteps(const NavMeshContainer& mesh) {
    const auto cells = [&](float extent) { return double{extent} / mesh.mCubeSize + 1; };
    double steps = 0;
    for (const NavMeshContainer::NavNode& node : mesh.mNodes) {
        Common::Math::Rect rect;
        for (const std::uint32_t corner : node.mPolygon)
            rect.grow(mesh.projectToPlane(mesh.mVertices[corner]));
        const Common::Math::Vec2<float> size = rect.mMax - rect.mMin;
        const auto borders = static_cast<double>(node.mPolygon.size());
        steps += cells(size.mY) * (cells(size.mX) + stepsPerBorder * borders);
    }
    return steps;
}

GridLimits gridLimitsOf(const NavMeshContainer& mesh) {
    constexpr double cornersOfAMegabyte = 131'072;
    constexpr double cornersForAsMuchAgain = 32'768;
    constexpr double cells = 24.0 * (1U << 20U);
    constexpr double steps = 1U << 29U;
    GridLimits limits{0, 0, 0};
    for (const NavMeshContainer::NavNode& node : mesh.mNodes)
        limits.mCorners += node.mPolygon.size();
    const double more = static_cast<double>(limits.mCorners) - cornersOfAMegabyte;
    const double share = 1 + std::max(more, 0.0) / cornersForAsMuchAgain;
    constexpr double addressable = double{0xFFFFFFFF} / PlaneGrid::bytesPerCell;
    limits.mCells = static_cast<std::int64_t>(std::min(share * cells, addressable));
    limits.mMarkingSteps = std::min(share, 8.0) * steps;
    return limits;
}

} // namespace ZUNO::NavMesh
