#pragma once

#include "common/container/idvector.h"
#include "common/geom/ray3d.h"
#include "common/memory/objectcreation.h"
#include "common/singleton.h"
#include "navmesh/meshsearch.h"
#include "navmesh/nodelocator.h"
#include "pathfinder/answers.h"
#include "pathfinder/pathsearch.h"
#include "pathfinder/planetransform.h"
#include "pathfinder/raytracer/raytracer.h"

#include <memory>
#include <vector>

namespace ZUNO::Pathfinder {

/// The world: one loaded mesh with its graph, its blocking grid and the searches over it. It owns
/// all of them and takes their memory from its own allocator. For one thread.
/// Positions in two dimensions are world positions without their up component.
class NavMeshInstance : public Common::Singleton<NavMeshInstance> {
public:
    using Vec2 = Common::Math::Vec2<float>;
    using Vec3 = Common::Math::Vec3<float>;
    using Ray2D = Common::Geom::Ray2D<float, float>;
    using Ray3D = Common::Geom::Ray3D<float, float>;

    NavMeshInstance();
    ~NavMeshInstance() override;

    /// Loads a mesh, builds the graph over it, and then the blocking grid. A world that is loaded
    /// already is replaced when all that has succeeded, and its searches go with it; an earlier
    /// grid is reported.
    /// Returns false, after a report, when the file holds no mesh that a world can run with.
    /// Throws what the file and the parser raise, OutOfMemoryException, and, for a
    /// `blockingMapFile` that is not empty, NotSupportedException. After false or an exception the
    /// world is as it was; only the first load keeps a mesh whose grid could not be had.
    bool load(const Common::String& navMeshFile, const Common::String& blockingMapFile);

    /// Opens a search and returns its id, or `noSearch` when one of the points stands on no node.
    std::int32_t initPathSearch(const Vec3& start, const Vec3& goal);
    /// Expands at most `budget` nodes and returns the search's SearchResult.
    /// Raises an ArgumentException for an id that names no search.
    std::int32_t runPathSearch(std::int32_t id, std::uint32_t budget);
    /// Gives the centre of the next node that the found path enters; false after the last one, and
    /// while there is no path. An invalid id is reported and gives false.
    bool getNextWaypoint(std::int32_t id, Vec3& waypoint);
    /// The found path's cost, once a waypoint was asked for; else 0. An invalid id is reported.
    float getPathCost(std::int32_t id);
    /// Closes a search and returns whether there was one.
    bool closePathSearch(std::int32_t id);

    /// For tools that show what goes on inside: the loaded mesh, or null, and what runs a search,
    /// or null for an id that names none. Valid until the search, or the world, is closed.
    const NavMesh::NavMeshContainer* getNavMesh() const { return mNavMesh.get(); }
    NavMesh::MeshSearch* inspectSearch(std::int32_t id);

    /// True outside the grid, and, after a report, without one.
    bool isBlocked(const Vec2& position);
    /// These set the hit distance alone, in units of the mesh's plane; `noHit` without a grid.
    void traceRay(Ray2D& ray);
    void traceRay(Ray3D& ray);
    /// `noGround` where there is none, and, after a report, without a grid.
    float getGroundHeight(const Vec2& position);
    /// The rectangle of the mesh's vertices; empty, after a report, without a grid.
    void getBoundingRectangle(Vec2& min, Vec2& max);
    /// Raises a NotSupportedException.
    bool saveBlockingMap(const Common::String& filename);

private:
    /// Ends a search that did not come to be. It knows the world instead of holding an allocator,
    /// whose handles are counted under a lock: that would take longer than all the rest.
    struct AStarDeleter {
        NavMeshInstance* mWorld;
        void operator()(NavMesh::MeshSearch* aStar) const {
            Common::Memory::destroyObject(mWorld->mAllocator, aStar);
        }
    };
    using OwnedAStar = std::unique_ptr<NavMesh::MeshSearch, AStarDeleter>;

    /// What a load makes of a mesh file.
    struct Ground {
        Common::SharedPtr<NavMesh::NavMeshContainer> mNavMesh;
        Common::Memory::OwnedPtr<NavMesh::MeshGraph> mAStarMap;
        Common::Memory::OwnedPtr<NavMesh::NodeLocator> mLocator;
        Matrix2 mPlaneTransform;
    };

    /// Returns one without a mesh, after a report, when there is none that a world can run with.
    Ground loadNavMesh(const Common::String& fileName);
    Raytracer::RayTracer* makeRayTracer(const Common::SharedPtr<NavMesh::NavMeshContainer>& navMesh,
                                        const Common::String& blockingMapFile);
    /// Puts the new ground and its ray tracer, which may be null, in the place of the former ones.
    void replace(Ground& ground, Raytracer::RayTracer* rayTracer);
    void destroySearches();
    bool isOpen(std::int32_t id) const;
    /// Returns the open search, or null after a report.
    PathSearch* findSearch(std::int32_t id);
    OwnedAStar takeAStar();
    /// Room in the pool for every search that is open or about to be, so that closing one needs
    /// no memory.
    void reservePool();

    /// Returns the ray tracer; null, after a report, when there is none.
    Raytracer::RayTracer* requireRayTracer() const;
    float trace(const Vec2& start, const Vec2& end) const;

    Common::SharedPtr<NavMesh::NavMeshContainer> mNavMesh;
    Raytracer::RayTracer* mRayTracer = nullptr;
    NavMesh::MeshGraph* mAStarMap = nullptr;
    NavMesh::NodeLocator* mLocator = nullptr;
    NavMesh::SearchMemory mSearchMemory; ///< what all searches draw from
    Common::Container::IDVector<PathSearch> mSearches;
    NavMesh::NavMeshContainer::Vector<NavMesh::MeshSearch*> mAStarPool; ///< last in, first out
    Matrix2 mPlaneTransform;
    Matrix2 mInversePlaneTransform;
};

} // namespace ZUNO::Pathfinder
