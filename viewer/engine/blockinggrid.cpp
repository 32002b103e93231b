// The blocking grid as a picture.
#include "capi/session.h"
#include "navmesh/planegrid.h"
#include "pathfinder/navmeshinstance.h"
#include "tools/picture/meshfigures.h"
#include "viewer/engine/answers.h"

#include <cmath>

using namespace ZUNO;
using namespace ZUNO::CInterface;

namespace {

/// What the page reads, in this order.
struct GridPicture {
    std::uint32_t mColumns, mRows;
    float mSide, mX, mY; ///< of a cell, and of the grid's lowest corner in the plane
};

/// The grid with every so manieth cell of it, so that there are at most so many.
GridPicture measure(const NavMesh::NavMeshContainer& mesh, std::uint32_t mostCells) {
    const NavMesh::PlaneGrid grid = NavMesh::measurePlane(mesh);
    const auto columns = static_cast<double>(grid.mColumns);
    const auto rows = static_cast<double>(grid.mRows);
    const double step = std::max(std::ceil(std::sqrt(columns * rows / mostCells)), 1.0);
    return {static_cast<std::uint32_t>(std::ceil(columns / step)),
            static_cast<std::uint32_t>(std::ceil(rows / step)),
            mesh.mCubeSize * static_cast<float>(step), grid.mBounds.mMin.mX, grid.mBounds.mMin.mY};
}

} // namespace

/// Leaves "heights", row by row: of the ground as queries see it, NaN where it is blocked.
extern "C" zuno_status ZUNO_PAGE_EXPORT(zuno_tool_blocking_grid)(zuno_session* session,
                                                                 std::uint32_t most_cells,
                                                                 GridPicture* picture) {
    return inWorld(__func__, [&] {
        Exports& exports = get(session)->exports();
        const auto& mesh = *Pathfinder::NavMeshInstance::getInstance()->getNavMesh();
        const GridPicture grid = measure(mesh, most_cells);
        std::vector<float> heights;
        for (std::uint32_t row = 0; row < grid.mRows; ++row)
            for (std::uint32_t column = 0; column < grid.mColumns; ++column) {
                const float x = grid.mX + (static_cast<float>(column) + 0.5F) * grid.mSide;
                const float y = grid.mY + (static_cast<float>(row) + 0.5F) * grid.mSide;
                const auto position = Tools::positionAt(mesh, {x, y});
                heights.push_back(exports.isBlocked(position) ? NAN
                                                              : exports.getGroundHeight(position));
            }
        *picture = grid;
        Viewer::leave("heights", heights);
        return ZUNO_OK;
    });
}
