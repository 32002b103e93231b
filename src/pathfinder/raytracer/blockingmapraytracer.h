#pragma once

#include "common/basicstring.h"
#include "navmesh/navmeshcontainer.h"
#include "pathfinder/answers.h"
#include "pathfinder/raytracer/bitwalk.h"
#include "pathfinder/raytracer/distancefield.h"
#include "pathfinder/raytracer/raytracer.h"

namespace ZUNO::Pathfinder::Raytracer {

/// A ray tracer over a grid that is rasterised from a mesh: a cell whose centre lies on a node is
/// walkable at the height of the first corner of the last such node. Every other cell is blocked,
/// and so are the last column and row.
/// Cost: a query looks one cell up; a trace takes at most a step for each cell that it crosses, and
/// neither allocates. Thread: any number of them may ask.
class BlockingMapRayTracer : public RayTracer {
public:
    /// Builds the grid from the mesh, which must have no defects (`NavMesh::findDefects`) and is
    /// not kept. With `loadFromFile` the grid is to be read from `fileName` instead. Throws an
    /// OutOfMemoryException, and a NotSupportedException with `loadFromFile`: there is no format
    /// for such files.
    BlockingMapRayTracer(const Common::SharedPtr<NavMesh::NavMeshContainer>& navMesh,
                         const Common::SharedPtr<Common::Memory::Allocator>& allocator,
                         const Common::String& fileName, bool loadFromFile);

    void traceRay(Common::Geom::Ray2D<float, float>& ray) override;
    /// Returns true outside the grid, too.
    bool isBlocked(const Common::Math::Vec2<float>& position) override;
    float getGroundHeight(const Common::Math::Vec2<float>& position) override;
    /// Gives the rectangle of all vertices in the plane.
    void getBoundingRectangle(Common::Math::Vec2<float>& min,
                              Common::Math::Vec2<float>& max) override;

    /// Both throw a NotSupportedException: there is no format for such files.
    [[noreturn]] static bool saveBlockingMap(const Common::String& filename);
    [[noreturn]] static void loadBlockingMap(const Common::String& filename);

private:
    void build(const NavMesh::NavMeshContainer& mesh);
    /// Returns the hit distance of a ray that begins its walk at the distance `clearance`.
    float walk(const Common::Geom::Ray2D<float, float>& ray, float clearance) const;
    /// Takes so many steps, or fewer when a cell stops the walk; returns whether one did.
    bool advance(BitWalk& walk, std::uint32_t steps) const;
    /// Returns how many steps a walk may take to a ray's end while no cell can be as far from the
    /// start as the ray is long; 0 where that is not known.
    std::uint32_t stepsWithinLength(const Common::Geom::Ray2D<float, float>& ray,
                                    const BlockingMap::Cell& end, std::uint32_t stepCount) const;
    /// Returns how many of a walk's last steps come that near the ray's length in this grid.
    std::uint32_t countLastSteps() const;

    static constexpr std::uint32_t allSteps = 0xFFFFFFFF;

    BlockingMap mBlockingMap;
    BlockedBits mBits;
    DistanceField mDistances;
    std::uint32_t mLastSteps = allSteps;
    Common::Math::Vec2<float> mBoundsMin{0, 0};
    Common::Math::Vec2<float> mBoundsMax{0, 0};
    Common::SharedPtr<Common::Memory::Allocator> mAllocator; ///< for what the build needs meanwhile
};

} // namespace ZUNO::Pathfinder::Raytracer
