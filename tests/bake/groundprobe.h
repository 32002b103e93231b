#pragma once

#include "worlds/scenes.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <vector>

namespace ZUNO::Tests {

/// Who has to fit, in units of the scene.
struct Walker {
    double mRadius;
    double mHeight;
    double mClimb;
};

/// Tells from a scene's faces alone where someone can stand: by upright lines through the faces,
/// at a place and in a circle around it.
class GroundProbe {
public:
    using Point = Worlds::SceneModel::Point;

    explicit GroundProbe(const Worlds::SceneModel& scene) {
        for (const auto& face : scene.mFaces)
            for (std::size_t i = 2; i < face.mCorners.size(); ++i)
                addTriangle({face.mCorners[0], face.mCorners[i - 1], face.mCorners[i]});
    }

    /// Places on upward faces, spread evenly by area, where the walker fits.
    std::vector<Point> sample(std::size_t count, const Walker& walker, unsigned int seed) const {
        std::vector<double> areas;
        for (const Triangle& triangle : mTriangles)
            areas.push_back(
                triangle.mSlopeCosine > std::cos(std::numbers::pi / 4) ? triangle.mPlaneArea : 0);
        std::discrete_distribution<std::size_t> pick(areas.begin(), areas.end());
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> part(0, 1);
        std::vector<Point> places;
        while (places.size() < count) {
            const Triangle& triangle = mTriangles[pick(random)];
            double u = part(random);
            double v = part(random);
            if (u + v > 1) {
                u = 1 - u;
                v = 1 - v;
            }
            Point place;
            for (std::size_t axis = 0; axis < 3; ++axis)
                place[axis] = triangle.mCorners[0][axis] +
                              u * (triangle.mCorners[1][axis] - triangle.mCorners[0][axis]) +
                              v * (triangle.mCorners[2][axis] - triangle.mCorners[0][axis]);
            if (fits(place, walker))
                places.push_back(place);
        }
        return places;
    }

private:
    struct Triangle {
        std::array<Point, 3> mCorners;
        double mPlaneArea;
        double mSlopeCosine; ///< below 0: it faces down
    };
    struct Hit {
        double mHeight;
        bool mFacesUp;
    };
    static constexpr double binSize = 2;

    static int binOf(double coordinate) {
        return static_cast<int>(std::floor(coordinate / binSize));
    }

    void addTriangle(const std::array<Point, 3>& corners) {
        const auto& [a, b, c] = corners;
        const Point u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
        const Point v{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        const Point normal{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                           u[0] * v[1] - u[1] * v[0]};
        const double length = std::hypot(normal[0], normal[1], normal[2]);
        if (std::abs(normal[1]) < 1e-9)
            return; // upright: no upright line crosses it
        for (int x = binOf(std::min({a[0], b[0], c[0]})); x <= binOf(std::max({a[0], b[0], c[0]}));
             ++x)
            for (int z = binOf(std::min({a[2], b[2], c[2]}));
                 z <= binOf(std::max({a[2], b[2], c[2]})); ++z)
                mBins[{x, z}].push_back(mTriangles.size());
        mTriangles.push_back({corners, std::abs(normal[1]) / 2, normal[1] / length});
    }

    std::vector<Hit> hitsAt(double x, double z) const {
        std::vector<Hit> hits;
        const auto bin = mBins.find({binOf(x), binOf(z)});
        if (bin == mBins.end())
            return hits;
        for (const std::size_t index : bin->second) {
            const auto& [a, b, c] = mTriangles[index].mCorners;
            const double det = (b[0] - a[0]) * (c[2] - a[2]) - (c[0] - a[0]) * (b[2] - a[2]);
            const double u = ((x - a[0]) * (c[2] - a[2]) - (c[0] - a[0]) * (z - a[2])) / det;
            const double v = ((b[0] - a[0]) * (z - a[2]) - (x - a[0]) * (b[2] - a[2])) / det;
            if (u >= 0 && v >= 0 && u + v <= 1)
                hits.push_back({a[1] + u * (b[1] - a[1]) + v * (c[1] - a[1]),
                                mTriangles[index].mSlopeCosine > 0});
        }
        return hits;
    }

    /// Whether there is ground within a step of a height, with room for the walker over it.
    bool isFree(double x, double z, double height, const Walker& walker) const {
        constexpr double touch = 0.01;
        const std::vector<Hit> hits = hitsAt(x, z);
        return std::ranges::any_of(hits, [&](const Hit& ground) {
            return ground.mFacesUp && std::abs(ground.mHeight - height) <= walker.mClimb &&
                   std::ranges::none_of(hits, [&](const Hit& hit) {
                       const double above = hit.mHeight - ground.mHeight;
                       return above < walker.mHeight && above > (hit.mFacesUp ? touch : -touch);
                   });
        });
    }

    bool fits(const Point& place, const Walker& walker) const {
        constexpr int directions = 48;
        if (!isFree(place[0], place[2], place[1], walker))
            return false;
        for (int i = 0; i < directions; ++i)
            for (const double part : {0.5, 1.0}) {
                const double angle = 2 * std::numbers::pi * i / directions;
                if (!isFree(place[0] + part * walker.mRadius * std::cos(angle),
                            place[2] + part * walker.mRadius * std::sin(angle), place[1], walker))
                    return false;
            }
        return true;
    }

    std::vector<Triangle> mTriangles;
    std::map<std::pair<int, int>, std::vector<std::size_t>> mBins;
};

} // namespace ZUNO::Tests
