/// Meshes and places in them, as the input's bytes have it.
#pragma once

#include "common/math/vec2.h"
#include "fuzz/ground.h"
#include "navmesh/navmeshcontainer.h"
#include "navmesh/planegrid.h"

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace ZUNO::Fuzz {

/// Tiles on a lattice, which often touch, overlap or lie above each other; regular polygons; and
/// corners without order: crossed, collapsed, clockwise. Coordinates may be huge, tiny, far from
/// the origin or off by a unit of rounding, the plane turned, tilted, sheared or none. Most meshes
/// can be searched; some have a defect.
class AnyMesh {
    template <typename List>
    auto& pick(List& list) {
        return list[mChoices.below(std::size(list))];
    }

public:
    using Mesh = NavMesh::NavMeshContainer;
    using Point2 = Mesh::Point2;
    using Point3 = Mesh::Point3;

    explicit AnyMesh(Choices& choices) : mChoices(choices) {}

    /// Fills an empty mesh.
    void fill(Mesh& mesh) {
        setFrame(mesh);
        if (below(16) == 15) {
            addFloor(mesh);
            setCubeSize(mesh);
            return;
        }
        const std::size_t count = 1 + below(9);
        for (std::size_t i = 0; i < count; ++i)
            addNode(mesh);
        const std::size_t manner = below(4);
        for (std::size_t i = 0; i < count; ++i)
            connect(mesh, mesh.mNodes[i], manner);
        setCubeSize(mesh);
        if (below(16) == 15)
            damage(mesh);
    }

    /// Returns a place on a node, a corner, a border or its prolongation, above or below it, or far
    /// off.
    Point3 place(const Mesh& mesh) {
        const auto& polygon = pick(mesh.mNodes).mPolygon;
        const std::size_t border = below(polygon.size());
        const Point3& a = mesh.mVertices[polygon[border]];
        const Point3& b = mesh.mVertices[polygon[(border + 1) % polygon.size()]];
        switch (below(8)) {
        case 0:
            return {nudged(a.mX), nudged(a.mY), nudged(a.mZ)};
        case 1:
            return mix(a, b, static_cast<float>(below(16)) / 15);
        case 2:
            return mix(a, b, static_cast<float>(below(64)) - 32);
        case 3:
            return {oddNumber(), oddNumber(), oddNumber()};
        case 4:
            return mix(a, a + mesh.mNormal, (static_cast<float>(below(13)) - 6) * mScale);
        default:
            return mix(centreOf(mesh, polygon), a, static_cast<float>(below(8)) / 8);
        }
    }

private:
    struct Frame {
        Point3 mNormal;
        Point3 mXAxis;
        Point3 mYAxis;
    };

    std::size_t below(std::size_t count) { return mChoices.below(count); }
    float nudged(float value) {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        const std::size_t way = below(3);
        return way == 0 ? value : std::nextafter(value, way == 1 ? infinity : -infinity);
    }
    float oddNumber() {
        constexpr float odd[] = {0,     1,     -1,    1e-42F,   7.5F,     1e7F,
                                 -1e9F, 1e19F, 3e38F, -3.4e38F, INFINITY, NAN};
        return pick(odd);
    }
    static Point3 mix(const Point3& a, const Point3& b, float t) {
        return {a.mX + (b.mX - a.mX) * t, a.mY + (b.mY - a.mY) * t, a.mZ + (b.mZ - a.mZ) * t};
    }
    static Point3 centreOf(const Mesh& mesh, const Mesh::Vector<std::uint32_t>& polygon) {
        const Point3 origin(0, 0, 0);
        Point3 sum = origin;
        for (const std::uint32_t corner : polygon)
            sum = sum + mix(origin, mesh.mVertices[corner], 1 / static_cast<float>(polygon.size()));
        return sum;
    }

    void setFrame(Mesh& mesh) {
        static constexpr Frame upright{{0, 1, 0}, {1, 0, 0}, {0, 0, 1}};
        static constexpr Frame frames[] = {upright,
                                           upright,
                                           upright,
                                           {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
                                           {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                           {{0, 1, 0}, {0.8F, 0, 0.6F}, {-0.6F, 0, 0.8F}},
                                           {{0, 0.8F, 0.6F}, {1, 0, 0}, {0, -0.6F, 0.8F}},
                                           {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}}, // left-handed
                                           {{0, 2, 0}, {2, 0, 0}, {1, 0, 1}},  // sheared
                                           {{0, 1, 0}, {1, 0, 0}, {1, 0, 0}},  // no plane
                                           {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}};
        static constexpr float scales[] = {
            1, 1, 1, 1, 1, 0.0625F, 1e-3F, 1e5F, 1e14F, 1e18F, 1e-20F, 1e-40F, 3e36F, 0.3F, 1, 1};
        static constexpr float fractions[] = {1, 1, 0.25F, 0.1F};
        static constexpr float distances[] = {0, 0, 0, 0, -6, 1000, 1e6F, 1e7F};
        const Frame& frame = pick(frames);
        mesh.mNormal = frame.mNormal;
        mesh.mXAxis = frame.mXAxis;
        mesh.mYAxis = frame.mYAxis;
        mUp = mesh.mNormal.getDominantAxis();
        mScale = pick(scales);
        mAway = pick(distances);
        mFraction = pick(fractions);
        mesh.mHeights.assign({2.5F * mScale, 0});
    }

    /// Adds a corner of the plane at a height.
    void addCorner(Mesh& mesh, Mesh::NavNode& node, float x, float y, float height) {
        const float u = (mAway + x) * mScale;
        const float v = y * mScale;
        const float up = height * mScale;
        node.mPolygon.push_back(static_cast<std::uint32_t>(mesh.mVertices.size()));
        mesh.mVertices.push_back(mUp == 0   ? Point3(up, u, v)
                                 : mUp == 1 ? Point3(u, up, v)
                                            : Point3(u, v, up));
    }

    void addNode(Mesh& mesh) {
        auto& node = mesh.mNodes.emplace_back(mesh.getAllocator());
        node.mHeightClass = static_cast<std::int32_t>(below(8) == 7 ? 1 : 0);
        const auto height = static_cast<float>(below(3));
        const auto coordinate = [&] { return static_cast<float>(below(12)) * mFraction; };
        const float x = coordinate();
        const float y = coordinate();
        switch (below(8)) {
        case 0: { // corners without order
            const std::size_t corners = 1 + below(7);
            for (std::size_t i = 0; i < corners; ++i) {
                const float across = coordinate();
                addCorner(mesh, node, across, coordinate(), height + static_cast<float>(below(2)));
            }
            break;
        }
        case 1: { // regular, a star, or once around and again
            const std::size_t corners = 3 + below(10);
            const std::size_t turns = 1 + below(2);
            const float reach = 1 + coordinate();
            for (std::size_t i = 0; i < corners; ++i) {
                const float angle =
                    6.2831853F * static_cast<float>(turns * i) / static_cast<float>(corners);
                addCorner(mesh, node, x + reach * std::cos(angle), y + reach * std::sin(angle),
                          height);
            }
            break;
        }
        case 2: { // a sliver
            const float width = 1 + coordinate();
            addCorner(mesh, node, x, y, height);
            addCorner(mesh, node, x + width, y, height);
            addCorner(mesh, node, x + width, y + 1e-4F, height);
            break;
        }
        default: { // a tile
            const float width = static_cast<float>(1 + below(4)) * mFraction;
            const float depth = static_cast<float>(1 + below(4)) * mFraction;
            addTile(mesh, node, x, y, {width, depth}, height);
        }
        }
    }

    /// Adds up to a hundred tiles side by side, with holes: so many that open lists are refilled,
    /// and full of ties.
    void addFloor(Mesh& mesh) {
        const auto side = static_cast<std::int32_t>(3 + below(8));
        const std::size_t holes = below(64);
        std::vector<std::int32_t> ids;
        std::int32_t count = 0;
        for (std::int32_t i = 0; i < side * side; ++i)
            ids.push_back(static_cast<std::size_t>(i) * 7 % (holes + 5) == 2 ? -1 : count++);
        const auto idAt = [&](std::int32_t x, std::int32_t y) {
            const bool isInside = x >= 0 && y >= 0 && x < side && y < side;
            return isInside ? ids[static_cast<std::size_t>(y * side + x)] : -1;
        };
        for (std::int32_t y = 0; y < side; ++y)
            for (std::int32_t x = 0; x < side; ++x) {
                if (idAt(x, y) < 0)
                    continue;
                auto& node = mesh.mNodes.emplace_back(mesh.getAllocator());
                node.mHeightClass = 0;
                addTile(mesh, node, static_cast<float>(x), static_cast<float>(y), {1, 1}, 0);
                node.mNeighbours.assign(
                    {idAt(x, y - 1), idAt(x + 1, y), idAt(x, y + 1), idAt(x - 1, y)});
            }
    }
    void addTile(Mesh& mesh, Mesh::NavNode& node, float x, float y, const Point2& size,
                 float height) {
        addCorner(mesh, node, x, y, height);
        addCorner(mesh, node, x + size.mX, y, height);
        addCorner(mesh, node, x + size.mX, y + size.mY, height);
        addCorner(mesh, node, x, y + size.mY, height);
    }

    /// Gives a node neighbours: those that it touches or overlaps, whether or not these lead back;
    /// any; or the next ones by number.
    void connect(Mesh& mesh, Mesh::NavNode& node, std::size_t manner) {
        const auto count = static_cast<std::int32_t>(mesh.mNodes.size());
        const auto self = static_cast<std::int32_t>(&node - mesh.mNodes.data());
        if (manner == 0) {
            for (std::int32_t other = 0; other < count; ++other)
                if (other != self &&
                    touches(mesh, node, mesh.mNodes[static_cast<std::size_t>(other)]))
                    node.mNeighbours.push_back(other);
            return;
        }
        const std::size_t borders = below(2) == 0 ? node.mPolygon.size() : below(8);
        for (std::size_t i = 0; i < borders; ++i) {
            const auto any = static_cast<std::int32_t>(below(mesh.mNodes.size() + 1));
            node.mNeighbours.push_back(manner == 1 ? any - 1 : (self + any) % count);
        }
    }
    static bool touches(const Mesh& mesh, const Mesh::NavNode& a, const Mesh::NavNode& b) {
        const auto boundsOf = [&](const Mesh::NavNode& node) {
            Common::Math::Rect bounds;
            for (const std::uint32_t corner : node.mPolygon)
                bounds.grow(mesh.projectToPlane(mesh.mVertices[corner]));
            return bounds;
        };
        const Common::Math::Rect first = boundsOf(a);
        const Common::Math::Rect second = boundsOf(b);
        return first.mMin.mX <= second.mMax.mX && second.mMin.mX <= first.mMax.mX &&
               first.mMin.mY <= second.mMax.mY && second.mMin.mY <= first.mMax.mY;
    }

    /// Never so small that the plain grid would take long.
    void setCubeSize(Mesh& mesh) {
        static constexpr float sizes[] = {1, 0.25F, 0.5F, 0.1F, 3, 40, 0.3F};
        mesh.mCubeSize = pick(sizes) * mScale;
        for (;;) {
            const NavMesh::PlaneGrid grid = NavMesh::measurePlane(mesh);
            if (grid.mColumns * grid.mRows <= 4096 || !std::isfinite(mesh.mCubeSize))
                return;
            mesh.mCubeSize *= 4;
        }
    }

    void damage(Mesh& mesh) {
        auto& node = pick(mesh.mNodes);
        switch (below(6)) {
        case 0:
            node.mPolygon[0] = static_cast<std::uint32_t>(mesh.mVertices.size());
            break;
        case 1:
            node.mNeighbours.push_back(static_cast<std::int32_t>(mesh.mNodes.size()));
            break;
        case 2:
            node.mHeightClass = 2;
            break;
        case 3:
            mesh.mCubeSize = 0;
            break;
        case 4:
            node.mPolygon.clear();
            break;
        default:
            pick(mesh.mVertices).mX = INFINITY;
        }
    }

    Choices& mChoices;
    unsigned int mUp = 1;
    float mScale = 1;
    float mAway = 0;
    float mFraction = 1;
};

} // namespace ZUNO::Fuzz
