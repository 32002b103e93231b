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

} // namespace ZUNO::NavMesh
