#include "tools/zunobake/tilework.h"

#include "tools/zunobake/ground.h"

#include <algorithm>

namespace ZUNO::Tools {

void TileWork::rasterise(const std::vector<int>& faces, const Box& bounds, int columns, int rows) {
    mSolid.reset(rcAllocHeightfield());
    require(rcCreateHeightfield(&mContext, *mSolid, columns, rows, bounds.mLow, bounds.mHigh,
                                static_cast<float>(mSettings.mCellSize),
                                static_cast<float>(mSettings.mCellHeight)),
            "height field");
    std::vector<int> triangles;
    for (const int face : faces) {
        const auto first = mScene.mTriangles.begin() + std::ptrdiff_t{face} * 3;
        triangles.insert(triangles.end(), first, first + 3);
    }
    const float* const vertices = mScene.mVertices.data();
    const int vertexCount = static_cast<int>(mScene.mVertices.size() / 3);
    const int count = static_cast<int>(faces.size());
    std::vector<unsigned char> areas(faces.size());
    rcMarkWalkableTriangles(&mContext, mSettings.mSlope, vertices, vertexCount, triangles.data(),
                            count, areas.data());
    for (std::size_t i = 0; i < areas.size(); ++i)
        if (areas[i] != RC_NULL_AREA)
            areas[i] = mMaterials.areaOf({mScene.mSurfaces[unsignedOf(faces[i])], 0, false});
    require(rcRasterizeTriangles(&mContext, vertices, vertexCount, triangles.data(), areas.data(),
                                 count, *mSolid, mCells.mClimb),
            "rasterising");
}

void TileWork::findWalkable() {
    const int clearance = mCells.clearanceOf(0);
    rcFilterLowHangingWalkableObstacles(&mContext, mCells.mClimb, *mSolid);
    // this filter goes by what is higher than it is told
    rcFilterLedgeSpans(&mContext, clearance - 1, mCells.mClimb, *mSolid);
    mField.reset(rcAllocCompactHeightfield());
    require(rcBuildCompactHeightfield(&mContext, clearance, mCells.mClimb, *mSolid, *mField),
            "compact height field");
    mSolid.reset();
    // Recast's own filter also takes away what is just high enough
    forEachSpan(*mField, [&](int, int, unsigned int i) {
        if (static_cast<int>(mField->spans[i].h) < clearance)
            mField->areas[i] = RC_NULL_AREA;
    });
    findAgents();
    require(rcErodeWalkableArea(&mContext, mCells.mRadius, *mField), "erosion");
}

void TileWork::divide() {
    const std::vector<bool> isOddLevel = findOddLevels(*mField, mCells);
    forEachSpan(*mField, [&](int, int, unsigned int i) {
        mField->areas[i] =
            mKinds.areaOf({mMaterials[mField->areas[i]].mSurface, mAgents[i], isOddLevel[i]});
    });
}

PolyMesh TileWork::makePolygons(int border) {
    // what is left out is decided when all tiles are joined; here it is the dust alone
    constexpr int dust = 8;
    require(rcBuildDistanceField(&mContext, *mField) &&
                rcBuildRegions(&mContext, *mField, border, std::min(mSettings.mMinRegion, dust),
                               mSettings.mMergeRegion),
            "regions");
    const ContourSet contours(rcAllocContourSet());
    require(rcBuildContours(&mContext, *mField, mSettings.mMaxError, 0, *contours), "contours");
    if (contours->nconts == 0)
        return nullptr;
    PolyMesh mesh(rcAllocPolyMesh());
    require(rcBuildPolyMesh(&mContext, *contours, mSettings.mCorners, *mesh), "polygons");
    return mesh;
}

std::vector<TilePolygon> TileWork::listPolygons(const rcPolyMesh& mesh) const {
    std::vector<TilePolygon> polygons;
    for (int id = 0; id < mesh.npolys; ++id) {
        const AreaTable::Entry& kind = mKinds[mesh.areas[id]];
        TilePolygon polygon{{}, {}, kind.mSurface, kind.mAgent};
        const unsigned short* const corners = mesh.polys + std::ptrdiff_t{id} * mesh.nvp * 2;
        for (int i = 0; i < mesh.nvp && corners[i] != RC_MESH_NULL_IDX; ++i) {
            const unsigned short* const vertex = mesh.verts + std::ptrdiff_t{corners[i]} * 3;
            polygon.mCorners.push_back({vertex[0], vertex[1], vertex[2]});
        }
        polygon.mGround = measureGround(*mField, mesh.borderSize, mesh.regs[id], polygon.mCorners);
        polygons.push_back(std::move(polygon));
    }
    return polygons;
}

void TileWork::findAgents() {
    const auto count = unsignedOf(mField->spanCount);
    mAgents.assign(count, 0);
    const std::vector<unsigned char> areas(mField->areas, mField->areas + count);
    for (std::size_t agent = 1; agent < mCells.mAgentHeights.size(); ++agent) {
        for (std::size_t i = 0; i < count; ++i)
            if (static_cast<int>(mField->spans[i].h) < mCells.clearanceOf(agent))
                mField->areas[i] = RC_NULL_AREA;
        require(rcErodeWalkableArea(&mContext, mCells.mRadius, *mField), "erosion");
        for (std::size_t i = 0; i < count; ++i)
            if (mField->areas[i] != RC_NULL_AREA)
                mAgents[i] = static_cast<std::uint16_t>(agent);
        std::copy(areas.begin(), areas.end(), mField->areas);
    }
}

} // namespace ZUNO::Tools
