#pragma once

#include "pathfinder/answers.h"
#include "pathfinder/planetransform.h"
#include "reference/plainraytracer.h"
#include "reference/plainsearch.h"

#include <memory>
#include <vector>

namespace ZUNO::Reference {

/// A world made of the plain parts alone: nodes are found by a scan of all, paths by `AStar` over
/// `AStarStorageFast` and `AStarMapNavMesh`, rays cell by cell. Its functions have the exports'
/// names and meanings, so that both can be asked the same questions.
/// Lifetime: the mesh library must run. Thread: one at a time.
class PlainWorld {
public:
    using Point2 = NavMesh::NavMeshContainer::Point2;
    using Point3 = NavMesh::NavMeshContainer::Point3;

    PlainWorld(const Common::SharedPtr<NavMesh::NavMeshContainer>& mesh,
               const Common::SharedPtr<Common::Memory::Allocator>& allocator);

    std::int32_t findNode(const Point3& point) const { return mMesh->findNode(point); }

    std::int32_t initPathSearch(const Point3& start, const Point3& goal);
    std::int32_t runPathSearch(std::int32_t id, std::uint32_t budget);
    bool getNextWaypoint(std::int32_t id, Point3& waypoint);
    float getPathCost(std::int32_t id) const;
    bool closePathSearch(std::int32_t id);

    bool isBlocked(const Point2& position) { return mRayTracer.isBlocked(mTransform * position); }
    float getGroundHeight(const Point2& position) {
        return mRayTracer.getGroundHeight(mTransform * position);
    }
    void traceRay(PlainRayTracer::Ray& ray);

private:
    /// An open search, and how far the host has come with it.
    struct Search {
        PlainSearch mSearch;
        std::int32_t mState = Common::Astar::SEARCH_RUNNING;
        std::vector<std::uint32_t> mPath = {}; ///< the nodes that it enters
        std::size_t mNextWaypoint = 0;
        bool mHasPath = false;
        float mCost = 0;
    };

    Search& searchOf(std::int32_t id) const { return *mSearches[static_cast<std::size_t>(id)]; }

    Common::SharedPtr<NavMesh::NavMeshContainer> mMesh;
    Common::SharedPtr<Common::Memory::Allocator> mAllocator;
    NavMesh::AStarMapNavMesh mMap;
    PlainRayTracer mRayTracer;
    Pathfinder::Matrix2 mTransform; ///< from the host's positions into the mesh's plane
    std::vector<std::unique_ptr<Search>> mSearches; ///< by id; null for one that is free
    std::vector<std::int32_t> mFreeIds;             ///< the last one freed is given first
};

} // namespace ZUNO::Reference
