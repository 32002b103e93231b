#include "reference/questions.h"

#include <cmath>
#include <limits>

namespace ZUNO::Reference {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float fullTurn = 6.2831853F;

} // namespace

float Questions::nudged(float coordinate) {
    const std::size_t way = below(3);
    return way == 0 ? coordinate : std::nextafter(coordinate, way == 1 ? infinity : -infinity);
}

std::vector<Questions::Point3> Questions::pointsAround(const Mesh& mesh, unsigned int rounds) {
    std::vector<Point3> points;
    const auto mix = [](const Point3& b, const Point3& c, float t) {
        return Point3(b.mX + (c.mX - b.mX) * t, b.mY + (c.mY - b.mY) * t, b.mZ + (c.mZ - b.mZ) * t);
    };
    for (unsigned int i = 0; i < rounds; ++i) {
        const Point3& a = mesh.mVertices[below(mesh.mVertices.size())];
        const auto& polygon = mesh.mNodes[below(mesh.mNodes.size())].mPolygon;
        const std::size_t border = below(polygon.size());
        const Point3& b = mesh.mVertices[polygon[border]];
        const Point3& c = mesh.mVertices[polygon[(border + 1) % polygon.size()]];
        points.push_back(a);
        points.emplace_back(nudged(a.mX), nudged(a.mY), nudged(a.mZ));
        points.push_back(mix(b, c, between(0, 1)));
        points.push_back(mix(b, c, between(-4, 5))); // where rounding alone lets a sliver hold it
        points.push_back(mix(a, b, between(0, 1)));
        points.push_back(mix(a, b, 20));
    }
    for (const float far : {1e6F, 1e14F, 1e16F, 1e30F, 3e38F, infinity, std::nanf("")})
        for (const float x : {far, -far, 0.0F})
            for (const float z : {far, -far, 0.0F})
                points.emplace_back(x, x == z ? far : 0, z);
    return points;
}

std::vector<Questions::Ray> Questions::raysOver(const Point2& low, const Point2& high,
                                                unsigned int count) {
    const auto place = [&](float beyond) {
        return Point2(low.mX + (high.mX - low.mX) * between(-beyond, 1 + beyond),
                      low.mY + (high.mY - low.mY) * between(-beyond, 1 + beyond));
    };
    std::vector<Ray> rays;
    for (unsigned int i = 0; i < count; ++i) {
        const Point2 from = place(0.01F);
        const Point2 nearby = from + (place(0) - low) * 0.01F;
        Ray ray(from, i % 4 == 0 ? nearby : place(i % 3 == 0 ? 2 : 0));
        if (i % 64 == 5)
            ray = Ray(from, from);
        if (i % 32 == 7) // along an axis
            ray = Ray(from,
                      i % 64 == 7 ? Point2(ray.mEnd.mX, from.mY) : Point2(from.mX, ray.mEnd.mY));
        if (i % 16 == 1)
            ray.mLength *= between(0, 1.2F);
        if (i % 512 == 2)
            ray.mEnd.mX = i % 1024 == 2 ? 3e38F : infinity;
        rays.push_back(ray);
    }
    return rays;
}

std::vector<Journey> Questions::journeysOver(const Mesh& mesh, unsigned int count) {
    const auto place = [&] {
        const std::size_t node = below(mesh.mNodes.size());
        switch (below(8)) {
        case 0:
            return mesh.mVertices[mesh.mNodes[node].mPolygon[0]];
        case 1:
            return mesh.mVertices[below(mesh.mVertices.size())] + Point3(0, between(-1, 4), 0);
        default:
            return mesh.getNodeCenter(static_cast<std::int32_t>(node));
        }
    };
    std::vector<Journey> journeys;
    while (journeys.size() < count) {
        const Point3 from = place();
        journeys.push_back({from, below(20) == 0 ? from : place()});
    }
    return journeys;
}

std::vector<Questions::Point2> Questions::outlineOf(unsigned int number) {
    const float x = between(0, 100);
    const float z = between(0, 100);
    const float width = number % 10 == 0 ? 25.0F : between(0, 9);
    const float depth = number % 7 == 0   ? 1e-4F
                        : number % 7 == 1 ? 1e-5F
                                          : width * between(0.2F, 1);
    const auto count = static_cast<unsigned int>(3 + below(5));
    const float turn = number % 9 == 8 ? -fullTurn : (number % 23 == 22 ? 2 : 1) * fullTurn;
    std::vector<Point2> outline;
    for (unsigned int k = 0; k < count; ++k) {
        const float angle = turn * static_cast<float>(k) / static_cast<float>(count);
        const float reach = number % 11 == 6 ? between(0.2F, 1) : 1.0F;
        outline.emplace_back(x + reach * width * std::cos(angle),
                             z + reach * depth * std::sin(angle));
    }
    if (number % 13 == 3)
        std::swap(outline[0], outline[1]);
    if (number % 17 == 3)
        outline[1] = outline[0];
    if (number % 19 == 3)
        outline.assign(count, outline[0]);
    return outline;
}

void Questions::fill(Mesh& mesh, const Disorder& disorder) {
    mesh.mNormal = {0, 1, 0};
    mesh.mXAxis = {1, 0, 0};
    mesh.mYAxis = {0, 0, 1};
    mesh.mCubeSize = disorder.mCubeSize * disorder.mScale;
    mesh.mHeights.assign({2.5F, 0});
    for (unsigned int number = 0; number < disorder.mPolygons; ++number) {
        auto& node = mesh.mNodes.emplace_back(mesh.getAllocator());
        node.mHeightClass = number % 5 == 4 ? 1 : 0;
        const float height = static_cast<float>(below(4));
        for (const Point2& corner : outlineOf(number)) {
            node.mPolygon.push_back(static_cast<std::uint32_t>(mesh.mVertices.size()));
            mesh.mVertices.push_back({(disorder.mAway + corner.mX) * disorder.mScale, height,
                                      corner.mY * disorder.mScale});
            node.mNeighbours.push_back(
                below(4) == 0 ? -1 : static_cast<std::int32_t>(below(disorder.mPolygons)));
        }
        if (number % 6 == 5) // a border without an entry
            node.mNeighbours.pop_back();
    }
}

} // namespace ZUNO::Reference
