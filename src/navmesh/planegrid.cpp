#include "navmesh/planegrid.h"

#include "common/utility/saturate.h"

namespace ZUNO::NavMesh {

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
        steps += cells(size.mY) * (cells(size.mX) + static_cast<double>(node.mPolygon.size()));
    }
    return steps;
}

} // namespace ZUNO::NavMesh
