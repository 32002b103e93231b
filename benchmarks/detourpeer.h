/// The same polygons in Detour, a library that a user might pick instead.
#pragma once

#include "navmesh/navmeshcontainer.h"

#include <memory>
#include <recastnavigation/DetourNavMesh.h>
#include <recastnavigation/DetourNavMeshQuery.h>
#include <recastnavigation/DetourNode.h>
#include <span>
#include <stdexcept>
#include <utility>

namespace ZUNO::Benchmarks {

class DetourPeer {
public:
    /// A mesh that Detour has no form for.
    struct Refusal : std::runtime_error {
        using std::runtime_error::runtime_error;
    };

    /// Takes a mesh with y up, polygons with an entry for each border, and
    /// at most 65,534 of them and of corners. Throws a Refusal for another. Corners are
    /// rounded to a lattice of 65,000 steps over the larger extent, which is the form that Detour
    /// keeps.
    explicit DetourPeer(const NavMesh::NavMeshContainer& mesh);

    /// The mesh as Detour keeps it, for builds of Detour elsewhere to load.
    std::span<const unsigned char> tile() const {
        const dtMeshTile& tile = *std::as_const(*mMesh).getTile(0);
        return {tile.data, static_cast<std::size_t>(tile.dataSize)};
    }

    struct Place {
        dtPolyRef mPolygon = 0;
        float mPosition[3] = {0, 0, 0};
    };
    Place locate(float x, float y, float z) const;
    /// The number of polygons of the path; 0 for none.
    int findPath(const Place& from, const Place& to) const;
    /// How many polygons the last search looked at.
    int visitedPolygons() const { return mQuery->getNodePool()->getNodeCount(); }
    /// How much of the way to `to` a ray gets: 1 or more for all of it.
    float castRay(const Place& from, const float (&to)[3]) const;
    /// How many polygons the last ray passed.
    int passedPolygons() const { return mPassed; }

private:
    struct Free {
        void operator()(dtNavMesh* mesh) const { dtFreeNavMesh(mesh); }
        void operator()(dtNavMeshQuery* query) const { dtFreeNavMeshQuery(query); }
    };

    static constexpr int maxPath = 8192;

    std::unique_ptr<dtNavMesh, Free> mMesh;
    std::unique_ptr<dtNavMeshQuery, Free> mQuery;
    dtQueryFilter mFilter;
    mutable dtPolyRef mPath[maxPath];
    mutable int mPassed = 0;
};

} // namespace ZUNO::Benchmarks
