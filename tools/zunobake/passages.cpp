#include "tools/zunobake/passages.h"

#include "hostkit/surface.h"
#include "tools/picture/loadedmesh.h"
#include "tools/zunobake/baker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <queue>

namespace ZUNO::Tools {

using HostKit::MeshView;
using HostKit::NO_NODE;
using HostKit::PlanePoint;
using HostKit::Position;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

Position between(const Position& a, const Position& b, float part) {
    return {a.mX + part * (b.mX - a.mX), a.mY + part * (b.mY - a.mY), a.mZ + part * (b.mZ - a.mZ)};
}

double distance(const Position& a, const Position& b) {
    return std::hypot(double{b.mX} - double{a.mX}, double{b.mY} - double{a.mY},
                      double{b.mZ} - double{a.mZ});
}

/// How wide the ground is at a place, in the direction in which it is narrowest.
double widthAt(const MeshView& view, const HostKit::Place& place, double limit) {
    constexpr int directions = 16;
    const PlanePoint centre = view.planeOf(place.mPosition);
    double width = limit;
    for (int i = 0; i < directions; ++i) {
        const double angle = std::numbers::pi * i / directions;
        double reach = 0;
        for (const double side : {limit, -limit}) {
            const PlanePoint target{centre.mX + side * std::cos(angle),
                                    centre.mY + side * std::sin(angle)};
            const HostKit::SurfaceMove move = HostKit::walkStraight(view, place, target);
            reach += HostKit::distance(centre, view.planeOf(move.mPlace.mPosition));
        }
        width = std::min(width, reach);
    }
    return width;
}

} // namespace

PassageFinder::PassageFinder(const Scene& scene, const BakeSettings& settings, const MeshView& mesh)
    : mScene(scene), mSettings(settings), mCells(settings), mMesh(mesh) {}

std::optional<Passage> PassageFinder::find(std::uint32_t from, std::uint32_t to) {
    for (const Passage::Flaw flaw : {Passage::Flaw::LOW, Passage::Flaw::NARROW})
        if (const Lenient& easier = lenient(flaw); easier.mView.has_value())
            if (const auto passage = findIn(easier, flaw, from, to); passage.has_value())
                return passage;
    return std::nullopt;
}

PassageFinder::Lenient& PassageFinder::lenient(Passage::Flaw flaw) {
    Lenient& easier = mLenient[static_cast<std::size_t>(flaw)];
    if (easier.mIsMade)
        return easier;
    easier.mIsMade = true;
    easier.mSettings = mSettings;
    easier.mSettings.mAgents = {mSettings.mAgents.front()};
    const int height = mCells.mAgentHeights.front();
    const int narrower = (mCells.mRadius - 1) / 2;
    const int lower = std::max({height * 2 / 3, mCells.mClimb + 1, 3});
    if (flaw == Passage::Flaw::LOW)
        easier.mSettings.mAgents.front().mHeight =
            static_cast<float>(lower * mSettings.mCellHeight);
    else
        easier.mSettings.mRadius = static_cast<float>(narrower * mSettings.mCellSize);
    if (flaw == Passage::Flaw::LOW ? lower < height : mCells.mRadius > 0)
        easier.mView = bakeLeniently(easier.mSettings);
    return easier;
}

PassageFinder::View PassageFinder::bakeLeniently(const BakeSettings& settings) const {
    const TileBaker baker(mScene, settings);
    const BakedMesh baked(bakeTiles(baker, [](std::size_t, std::size_t) {}), settings,
                          baker.cells());
    LoadedMesh mesh;
    baked.fill(*mesh.shared(), baker.grid(), mScene, UpAxis::Y);
    return View(std::in_place, *mesh);
}

std::optional<Passage> PassageFinder::findIn(const Lenient& lenient, Passage::Flaw flaw,
                                             std::uint32_t from, std::uint32_t to) const {
    const MeshView& view = *lenient.mView;
    const float reach = mSettings.mAgents.front().mHeight;
    const HostKit::Place start = findGround(view, mMesh.centreOf(from), reach);
    const HostKit::Place goal = findGround(view, mMesh.centreOf(to), reach);
    if (!start || !goal || view.islandOf(start.mNode) != view.islandOf(goal.mNode))
        return std::nullopt;
    const std::vector<Position> gap = findGap(findWay(view, start.mNode, goal.mNode), from);
    const CellSettings cells(lenient.mSettings);
    const bool isLow = flaw == Passage::Flaw::LOW;
    Passage passage{flaw};
    passage.mNeeded = isLow ? mCells.mAgentHeights.front() * mSettings.mCellHeight
                            : (2 * mCells.mRadius + 1) * mSettings.mCellSize;
    passage.mMeasure = passage.mNeeded;
    for (Position place : gap) {
        double measure = 0;
        if (isLow)
            measure = heightAt(place, cells.mAgentHeights.front() * mSettings.mCellHeight / 2);
        else if (const HostKit::Place ground = findGround(view, place, reach))
            measure =
                widthAt(view, ground, passage.mNeeded) + 2 * cells.mRadius * mSettings.mCellSize;
        if (measure > 0 && measure < passage.mMeasure) {
            passage.mMeasure = measure;
            passage.mPlace = place;
        }
    }
    return passage.mMeasure < passage.mNeeded ? std::optional(passage) : std::nullopt;
}

/// The places along the way that leaves the mesh for the shortest time.
std::vector<Position> PassageFinder::findWay(const MeshView& view, std::uint32_t from,
                                             std::uint32_t to) const {
    using Entry = std::pair<double, std::uint32_t>;
    struct Known {
        double mCost = infinity;
        std::uint32_t mFormer = NO_NODE;
        Position mBorder{0, 0, 0};
    };
    std::vector<Known> known(view.nodeCount());
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
    known[from].mCost = 0;
    open.emplace(0, from);
    while (!open.empty() && open.top().second != to) {
        const auto [cost, node] = open.top();
        open.pop();
        if (cost > known[node].mCost)
            continue;
        for (const MeshView::Link& link : view.linksOf(node)) {
            if (link.mBorder == HostKit::NO_BORDER)
                continue;
            const MeshView::Border border = view.borderOf(node, link);
            const Position middle =
                between(view.positionOf(border.mLeft), view.positionOf(border.mRight), 0.5F);
            const double next = cost + costOf(view.centreOf(node), middle) +
                                costOf(middle, view.centreOf(link.mTarget));
            if (next < known[link.mTarget].mCost) {
                known[link.mTarget] = {next, node, middle};
                open.emplace(next, link.mTarget);
            }
        }
    }
    std::vector<Position> way;
    for (std::uint32_t node = to; node != NO_NODE; node = known[node].mFormer) {
        way.push_back(view.centreOf(node));
        if (known[node].mFormer != NO_NODE)
            way.push_back(known[node].mBorder);
    }
    return {way.rbegin(), way.rend()};
}

void PassageFinder::appendSamples(const Position& from, const Position& to,
                                  std::vector<Sample>& out) const {
    const auto count =
        static_cast<unsigned int>(std::ceil(distance(from, to) / mSettings.mCellSize * 2));
    for (unsigned int i = 0; i <= count; ++i) {
        Sample sample;
        sample.mPosition =
            between(from, to, static_cast<float>(i) / static_cast<float>(std::max(count, 1U)));
        const HostKit::Place ground =
            findGround(mMesh, sample.mPosition, mSettings.mAgents.front().mHeight / 2);
        sample.mIsland = ground ? mMesh.islandOf(ground.mNode) : NO_NODE;
        out.push_back(sample);
    }
}

double PassageFinder::costOf(const Position& from, const Position& to) const {
    std::vector<Sample> samples;
    appendSamples(from, to, samples);
    const auto off = std::count_if(samples.begin(), samples.end(),
                                   [](const Sample& sample) { return sample.mIsland == NO_NODE; });
    constexpr double onMesh = 0.01; // beside a way that leaves it
    return distance(from, to) *
           (onMesh + static_cast<double>(off) / static_cast<double>(samples.size()));
}

/// The places between the last on the island of a node and the first on another.
std::vector<Position> PassageFinder::findGap(const std::vector<Position>& way,
                                             std::uint32_t from) const {
    std::vector<Sample> samples;
    for (std::size_t i = 1; i < way.size(); ++i)
        appendSamples(way[i - 1], way[i], samples);
    std::vector<Position> gap;
    for (const Sample& sample : samples) {
        if (sample.mIsland == NO_NODE)
            gap.push_back(sample.mPosition);
        else if (sample.mIsland == mMesh.islandOf(from))
            gap.clear();
        else
            return gap;
    }
    return {};
}

/// The height of the room over a place, which is put on the floor; infinite below the sky. What is
/// nearer to the floor than `least` is no ceiling.
double PassageFinder::heightAt(Position& place, double least) const {
    std::vector<double> hits;
    const auto vertex = [&](std::size_t corner) {
        const float* const at =
            &mScene.mVertices[static_cast<std::size_t>(mScene.mTriangles[corner]) * 3];
        return std::array<double, 3>{double{at[0]}, double{at[1]}, double{at[2]}};
    };
    for (std::size_t i = 0; i < mScene.mTriangles.size(); i += 3) {
        const auto a = vertex(i);
        const auto b = vertex(i + 1);
        const auto c = vertex(i + 2);
        const double area = (b[0] - a[0]) * (c[2] - a[2]) - (c[0] - a[0]) * (b[2] - a[2]);
        const double x = double{place.mX} - a[0];
        const double z = double{place.mZ} - a[2];
        const double u = (x * (c[2] - a[2]) - (c[0] - a[0]) * z) / area;
        const double v = ((b[0] - a[0]) * z - x * (b[2] - a[2])) / area;
        if (u >= 0 && v >= 0 && u + v <= 1) // never when the triangle is upright
            hits.push_back(a[1] + u * (b[1] - a[1]) + v * (c[1] - a[1]));
    }
    double floor = -infinity;
    for (const double hit : hits)
        if (hit <= double{place.mY} + double{mSettings.mClimb})
            floor = std::max(floor, hit);
    double ceiling = infinity;
    for (const double hit : hits)
        if (hit > floor + least)
            ceiling = std::min(ceiling, hit);
    if (floor > -infinity)
        place.mY = static_cast<float>(floor);
    return ceiling - floor;
}

} // namespace ZUNO::Tools
