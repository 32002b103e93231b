#pragma once

#include "common/geom/ray2d.h"
#include "navmesh/navmeshcontainer.h"

#include <random>
#include <vector>

namespace ZUNO::Reference {

/// A way that is asked for.
struct Journey {
    NavMesh::NavMeshContainer::Point3 mFrom;
    NavMesh::NavMeshContainer::Point3 mTo;
};

/// Draws questions about a mesh, and meshes to ask about; the same ones for the same seed, in every
/// build.
class Questions {
public:
    using Mesh = NavMesh::NavMeshContainer;
    using Point2 = Mesh::Point2;
    using Point3 = Mesh::Point3;
    using Ray = Common::Geom::Ray2D<float, float>;

    explicit Questions(unsigned int seed) : mRandom(seed) {}

    /// Returns a number below `count`.
    std::size_t below(std::size_t count) { return mRandom() % count; }
    /// Returns one of 65,536 numbers from `low` on and below `high`.
    float between(float low, float high) {
        return low + (high - low) * static_cast<float>(mRandom() % 65536) / 65536;
    }

    /// Returns points on the mesh's corners and borders, beside them by one unit of rounding,
    /// between corners, on borders drawn out, and far away up to NaN.
    std::vector<Point3> pointsAround(const Mesh& mesh, unsigned int rounds);

    /// Returns rays over a rectangle of the plane: long, short and of no length, out of it, of a
    /// length that is not the distance of their ends, up to infinity. Some start outside.
    std::vector<Ray> raysOver(const Point2& low, const Point2& high, unsigned int count);

    /// Returns journeys between corners and centres of nodes, a few from places outside.
    std::vector<Journey> journeysOver(const Mesh& mesh, unsigned int count);

    /// What a mesh of polygons without order is made by. Its plane is that of x and z.
    struct Disorder {
        float mScale = 1; ///< of all coordinates
        float mAway = 0;  ///< where x begins, before it is scaled
        float mCubeSize = 0.25F;
        unsigned int mPolygons = 120;
    };
    /// Fills an empty mesh with polygons over a square of 100 x 100: of unequal size, overlapping
    /// and above each other, with slivers, clockwise, crossed, star-shaped and collapsed ones.
    /// They are each other's neighbours at random, one way or both.
    void fill(Mesh& mesh, const Disorder& disorder);

private:
    float nudged(float coordinate);
    std::vector<Point2> outlineOf(unsigned int number);

    std::mt19937 mRandom;
};

} // namespace ZUNO::Reference
