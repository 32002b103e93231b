#pragma once

#include "pathfinder/raytracer/raytracer.h"
#include "reference/plaingrid.h"

namespace ZUNO::Reference {

/// Answers from the plain grid. A ray is walked cell by cell, and its length looked at after each.
/// Cost: a trace takes a step for each cell that the ray crosses, without an allocation.
class PlainRayTracer : public Pathfinder::Raytracer::RayTracer {
public:
    using Position = PlainGrid::Position;
    using Ray = Common::Geom::Ray2D<float, float>;

    explicit PlainRayTracer(const NavMesh::NavMeshContainer& mesh) : mGrid(mesh) {}

    void traceRay(Ray& ray) override { ray.mHitDistance = trace(ray); }
    bool isBlocked(const Position& position) override;
    float getGroundHeight(const Position& position) override;
    void getBoundingRectangle(Position& min, Position& max) override;

private:
    float trace(const Ray& ray) const;

    PlainGrid mGrid;
};

} // namespace ZUNO::Reference
