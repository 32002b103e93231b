#pragma once

#include "tools/zunobake/tilebaker.h"

#include <memory>
#include <recastnavigation/DetourNavMesh.h>
#include <recastnavigation/DetourNavMeshBuilder.h>
#include <recastnavigation/DetourNavMeshQuery.h>
#include <recastnavigation/Recast.h>
#include <stdexcept>

namespace ZUNO::Tests {

/// The same tiles in Detour, for the length of its straightened paths.
class DetourRoutes {
public:
    DetourRoutes(const Tools::TileBaker& baker, const Tools::BakeSettings& settings)
        : mMesh(dtAllocNavMesh()), mQuery(dtAllocNavMeshQuery()) {
        const Tools::TileGrid& grid = baker.grid();
        dtNavMeshParams parameters{};
        for (std::size_t axis = 0; axis < 3; ++axis)
            parameters.orig[axis] = grid.positionOf(0, axis);
        parameters.tileWidth = parameters.tileHeight =
            static_cast<float>(settings.mTileSize * settings.mCellSize);
        parameters.maxTiles = 1 << 8; // with the polygons of a tile, as many bits as it has
        parameters.maxPolys = 1 << 14;
        require(mMesh->init(&parameters));
        for (std::size_t tile = 0; tile < grid.tileCount(); ++tile)
            if (const auto baked = baker.bake(tile); baked.mMesh != nullptr)
                addTile(*baked.mMesh, static_cast<int>(tile) % grid.mTileColumns,
                        static_cast<int>(tile) / grid.mTileColumns);
        require(mQuery->init(mMesh.get(), 65535));
    }

    static constexpr double tooFar = -2; ///< Detour's list of nodes is full

    /// The length of the straightened path; -1 when there is none.
    double lengthOf(const float (&from)[3], const float (&to)[3]) const {
        const float reach[3] = {0.5F, 1, 0.5F};
        dtPolyRef ends[2];
        float places[2][3];
        mQuery->findNearestPoly(from, reach, &mFilter, &ends[0], places[0]);
        mQuery->findNearestPoly(to, reach, &mFilter, &ends[1], places[1]);
        std::vector<dtPolyRef> corridor(1 << 14);
        int count = 0;
        const dtStatus status =
            mQuery->findPath(ends[0], ends[1], places[0], places[1], &mFilter, corridor.data(),
                             &count, static_cast<int>(corridor.size()));
        if (count == 0 || corridor[static_cast<std::size_t>(count) - 1] != ends[1])
            return dtStatusDetail(status, DT_OUT_OF_NODES | DT_BUFFER_TOO_SMALL) ? tooFar : -1;
        std::vector<float> points(corridor.size() * 3);
        int pointCount = 0;
        mQuery->findStraightPath(places[0], places[1], corridor.data(), count, points.data(),
                                 nullptr, nullptr, &pointCount, static_cast<int>(corridor.size()));
        double length = 0;
        for (int i = 1; i < pointCount; ++i)
            length += double{rcSqrt(rcVdistSqr(&points[static_cast<std::size_t>(i) * 3],
                                               &points[static_cast<std::size_t>(i) * 3 - 3]))};
        return length;
    }

private:
    static void require(dtStatus status) {
        if (dtStatusFailed(status))
            throw std::runtime_error("Detour can't be set up");
    }

    void addTile(rcPolyMesh& tile, int column, int row) {
        std::fill_n(tile.flags, tile.npolys, static_cast<unsigned short>(1));
        dtNavMeshCreateParams parameters{};
        parameters.verts = tile.verts;
        parameters.vertCount = tile.nverts;
        parameters.polys = tile.polys;
        parameters.polyAreas = tile.areas;
        parameters.polyFlags = tile.flags;
        parameters.polyCount = tile.npolys;
        parameters.nvp = tile.nvp;
        parameters.walkableHeight = 2;
        parameters.walkableClimb = 0.5F;
        parameters.tileX = column;
        parameters.tileY = row;
        rcVcopy(parameters.bmin, tile.bmin);
        rcVcopy(parameters.bmax, tile.bmax);
        parameters.cs = tile.cs;
        parameters.ch = tile.ch;
        parameters.buildBvTree = true;
        unsigned char* data = nullptr;
        int size = 0;
        if (!dtCreateNavMeshData(&parameters, &data, &size))
            throw std::runtime_error("Detour can't make a tile");
        require(mMesh->addTile(data, size, DT_TILE_FREE_DATA, 0, nullptr));
    }

    struct Free {
        void operator()(dtNavMesh* mesh) const { dtFreeNavMesh(mesh); }
        void operator()(dtNavMeshQuery* query) const { dtFreeNavMeshQuery(query); }
    };
    std::unique_ptr<dtNavMesh, Free> mMesh;
    std::unique_ptr<dtNavMeshQuery, Free> mQuery;
    dtQueryFilter mFilter;
};

} // namespace ZUNO::Tests
