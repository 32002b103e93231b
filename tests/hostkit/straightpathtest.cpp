// Straight paths against slower ways to find them.
#include "hostkit/pathpoints.h"
#include "tests/hostkit/walkingworld.h"
#include "tests/platform/process.h"
#include "worlds/scenes.h"

#include <queue>
#include <set>

namespace ZUNO::Tests {
namespace {

using HostKit::MeshView;
using HostKit::PathStraightener;
using HostKit::PlanePoint;
using HostKit::Position;
using HostKit::StraightForm;
using HostKit::StraightPath;

/// The borders between the nodes of a chain, in one piece each.
std::vector<std::pair<PlanePoint, PlanePoint>> bordersOf(const MeshView& view,
                                                         const StraightPath& path) {
    std::vector<std::pair<PlanePoint, PlanePoint>> borders;
    for (std::size_t i = 1; i < path.mChain.size(); ++i) {
        std::vector<PlanePoint> ends;
        for (const auto& link : view.linksOf(path.mChain[i - 1]))
            if (link.mTarget == path.mChain[i])
                for (const auto vertex : {view.borderOf(path.mChain[i - 1], link).mLeft,
                                          view.borderOf(path.mChain[i - 1], link).mRight})
                    ends.push_back(view.planeOf(vertex));
        std::pair<PlanePoint, PlanePoint> widest;
        for (const PlanePoint& a : ends)
            for (const PlanePoint& b : ends)
                if (distance(a, b) > distance(widest.first, widest.second))
                    widest = {a, b};
        borders.push_back(widest);
    }
    return borders;
}

/// The distance between two segments of the plane that don't cross, or 0.
double gapBetween(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c,
                  const PlanePoint& d) {
    if (turn(a, b, c) * turn(a, b, d) <= 0 && turn(c, d, a) * turn(c, d, b) <= 0)
        return 0;
    return std::min({distance(a, nearestOnSegment(a, c, d)), distance(b, nearestOnSegment(b, c, d)),
                     distance(c, nearestOnSegment(c, a, b)),
                     distance(d, nearestOnSegment(d, a, b))});
}

/// Every leg crosses the borders between its ends; corners differ; start and goal are the ends.
void checkLegs(const MeshView& view, const StraightPath& path, const Position& start,
               const Position& goal) {
    constexpr double rounding = 1e-4;
    const auto borders = bordersOf(view, path);
    const auto& corners = path.mCorners;
    ASSERT_LT(distance(view.planeOf(corners.front().mPosition), view.planeOf(start)), rounding);
    ASSERT_LT(distance(view.planeOf(corners.back().mPosition), view.planeOf(goal)), rounding);
    ASSERT_EQ(corners.back().mStep + 1, path.mChain.size());
    for (std::size_t i = 1; i < corners.size(); ++i) {
        const PlanePoint a = view.planeOf(corners[i - 1].mPosition);
        const PlanePoint b = view.planeOf(corners[i].mPosition);
        ASSERT_GT(distance(a, b), 0);
        for (std::uint32_t step = corners[i - 1].mStep; step < corners[i].mStep; ++step)
            ASSERT_LT(gapBetween(a, b, borders[step].first, borders[step].second), rounding)
                << i << ' ' << step;
    }
}

/// The length of the shortest way through a chain, from what each end of a border sees: slow, and
/// without a funnel.
double slowLength(const MeshView& view, const StraightPath& path, const PlanePoint& start,
                  const PlanePoint& goal) {
    const auto borders = bordersOf(view, path);
    std::vector<std::pair<PlanePoint, std::size_t>> points{{start, 0}}; // with the next border
    for (std::size_t i = 0; i < borders.size(); ++i)
        for (const PlanePoint& end : {borders[i].first, borders[i].second})
            points.emplace_back(end, i + 1);
    points.emplace_back(goal, borders.size() + 1);
    std::vector<double> best(points.size(), std::numeric_limits<double>::infinity());
    best[0] = 0;
    for (std::size_t i = 0; i < points.size(); ++i)
        for (std::size_t j = i + 1; j < points.size(); ++j) {
            const auto& [from, first] = points[i];
            const auto& [to, last] = points[j];
            bool isSeen = true;
            for (std::size_t k = first; k + 1 < last && isSeen; ++k)
                isSeen = gapBetween(from, to, borders[k].first, borders[k].second) < 1e-9;
            if (isSeen)
                best[j] = std::min(best[j], best[i] + distance(from, to));
        }
    return best.back();
}

struct Sample {
    const char* mName;
    std::string (*mMake)();
    unsigned int mPaths;
    friend void PrintTo(const Sample& sample, std::ostream* out) { *out << sample.mName; }
};

class StraightPathTest : public testing::TestWithParam<Sample> {};

TEST_P(StraightPathTest, GoesThroughItsChainAndIsAsShortAsThatAllows) {
    const std::string document = GetParam().mMake();
    if (document.empty())
        GTEST_SKIP() << "there is no zunobake";
    const WalkingWorld world(document);
    const MeshView& view = world.view();
    const HostKit::RandomPlaces places(view, 0);
    PathStraightener straightener(view);
    StraightPath plain;
    StraightPath improved;
    for (std::uint64_t i = 0; i < GetParam().mPaths; ++i) {
        // every third between vertices, where all is collinear, and some to themselves
        const auto place = [&](std::uint64_t seed) {
            const HostKit::Place any = places.pick(seed);
            return i % 3 != 0 ? any.mPosition
                              : view.positionOf(
                                    view.cornersOf(any.mNode)[static_cast<std::size_t>(seed % 3)]);
        };
        const Position start = place(2 * i);
        const Position goal = place(i % 10 == 0 ? 2 * i : 2 * i + 1);
        const auto waypoints = WalkingWorld::search(start, goal);
        if (!waypoints.has_value())
            continue;
        ASSERT_TRUE(straightener.straighten(start, goal, *waypoints, StraightForm::PLAIN, plain));
        ASSERT_TRUE(
            straightener.straighten(start, goal, *waypoints, StraightForm::IMPROVED, improved));
        ASSERT_EQ(plain.mChain.size(), waypoints->size() + 1);
        ASSERT_LE(improved.mLength, plain.mLength);
        for (const StraightPath& path : {plain, improved}) {
            checkLegs(view, path, start, goal);
            const double slow = slowLength(view, path, view.planeOf(start), view.planeOf(goal));
            ASSERT_LE(planeLength(view, path), slow * (1 + 1e-5)) << i;
            ASSERT_GE(planeLength(view, path), slow * (1 - 1e-5)) << i;
        }
    }
}

/// The mesh that zunobake makes of a scene; empty where there is none.
std::string bake(const Worlds::SceneModel& scene) {
    const TempFolder folder;
    const std::string tool = std::string(ZUNO_TOOL_FOLDER) + "/zunobake";
    const Outcome outcome = runCommand(tool + ' ' + folder.put("scene.obj", scene.toObj("scene")) +
                                       " -o " + folder.in("mesh.xml"));
    return outcome.mStatus == 0 ? folder.get("mesh.xml") : "";
}

INSTANTIATE_TEST_SUITE_P(
    All, StraightPathTest,
    testing::Values(Sample{"harbour", [] { return Worlds::makeHarbour().toXML(""); }, 2500},
                    Sample{"floor", [] { return Worlds::makeFloor(1000, 4).toXML(""); }, 2500},
                    Sample{"courtyard", [] { return bake(Worlds::makeCourtyard()); }, 1500},
                    Sample{"bridge", [] { return bake(Worlds::makeBridge()); }, 1500},
                    Sample{"spiral", [] { return bake(Worlds::makeSpiral()); }, 1500},
                    Sample{"maze", [] { return bake(Worlds::makeMaze(9, 1)); }, 500}),
    [](const auto& parameter) { return parameter.param.mName; });

/// A flat floor of squares of 2 x 2 with holes of 3 x 3 squares, which don't touch each other.
Worlds::MeshModel makeBlocks() {
    Worlds::MeshModel model;
    model.mHeights = {2};
    for (int z = 0; z < 29; ++z)
        for (int x = 0; x < 29; ++x)
            if (x % 4 == 0 || z % 4 == 0 || (x / 4 * 5 + z / 4 * 3) % 4 == 0)
                model.addPolygon({{x * 8, 0, z * 8},
                                  {x * 8 + 8, 0, z * 8},
                                  {x * 8 + 8, 0, z * 8 + 8},
                                  {x * 8, 0, z * 8 + 8}},
                                 0, 0xFFFF);
    model.connect();
    return model;
}

/// The shortest way between places on such a floor: over the holes' corners that see each other.
class FloorRoutes {
public:
    explicit FloorRoutes(const MeshView& view) {
        for (std::uint32_t node = 0; node < view.nodeCount(); ++node) {
            const PlanePoint centre = view.planeOf(view.centreOf(node));
            mSquares.emplace(static_cast<int>(centre.mX), static_cast<int>(centre.mY));
        }
        for (std::uint32_t vertex = 0; vertex < view.vertexCount(); ++vertex) {
            const PlanePoint point = view.planeOf(vertex);
            int around = 0;
            for (const auto& [x, y] : {std::pair(-1, -1), {-1, 1}, {1, -1}, {1, 1}})
                around += mSquares.contains(
                    {static_cast<int>(point.mX) + x, static_cast<int>(point.mY) + y});
            if (around == 3)
                mPoints.push_back(point);
        }
        mSight.resize(mPoints.size());
        for (std::size_t i = 0; i < mPoints.size(); ++i)
            mSight[i] = seenFrom(mPoints[i]);
    }

    double lengthOf(const PlanePoint& from, const PlanePoint& to) const {
        if (sees(from, to))
            return distance(from, to);
        std::vector<double> best(mPoints.size(), std::numeric_limits<double>::infinity());
        using Entry = std::pair<double, std::size_t>;
        std::priority_queue<Entry, std::vector<Entry>, std::greater<>> open;
        const auto reach = [&](std::size_t i, double length) {
            if (length < best[i])
                open.emplace(best[i] = length, i);
        };
        for (const std::size_t i : seenFrom(from))
            reach(i, distance(from, mPoints[i]));
        while (!open.empty()) {
            const auto [length, at] = open.top();
            open.pop();
            for (const std::size_t next : mSight[at])
                if (length == best[at])
                    reach(next, length + distance(mPoints[at], mPoints[next]));
        }
        double shortest = std::numeric_limits<double>::infinity();
        for (const std::size_t i : seenFrom(to))
            shortest = std::min(shortest, best[i] + distance(mPoints[i], to));
        return shortest;
    }

private:
    /// Whether the segment runs through no hole; it may touch them.
    bool sees(const PlanePoint& from, const PlanePoint& to) const {
        const int steps[2] = {1 + static_cast<int>(std::min(from.mX, to.mX)) / 2 * 2,
                              1 + static_cast<int>(std::min(from.mY, to.mY)) / 2 * 2};
        for (int x = steps[0]; x - 1 < std::max(from.mX, to.mX); x += 2)
            for (int y = steps[1]; y - 1 < std::max(from.mY, to.mY); y += 2)
                if (!mSquares.contains({x, y}) && runsThrough(from, to, x, y))
                    return false;
        return true;
    }
    static bool runsThrough(const PlanePoint& from, const PlanePoint& to, int x, int y) {
        double first = 0;
        double last = 1;
        const auto clip = [&](double start, double way, double centre) {
            constexpr double inside = 1 - 1e-9;
            if (way == 0)
                last = std::abs(start - centre) < inside ? last : -1;
            else {
                const double a = (centre - inside - start) / way;
                const double b = (centre + inside - start) / way;
                first = std::max(first, std::min(a, b));
                last = std::min(last, std::max(a, b));
            }
        };
        clip(from.mX, to.mX - from.mX, x);
        clip(from.mY, to.mY - from.mY, y);
        return first < last;
    }
    std::vector<std::size_t> seenFrom(const PlanePoint& point) const {
        std::vector<std::size_t> seen;
        for (std::size_t i = 0; i < mPoints.size(); ++i)
            if (sees(point, mPoints[i]))
                seen.push_back(i);
        return seen;
    }

    std::set<std::pair<int, int>> mSquares; ///< centres
    std::vector<PlanePoint> mPoints;
    std::vector<std::vector<std::size_t>> mSight;
};

TEST(StraightPath, IsNearlyTheShortestThereIs) {
    const WalkingWorld world(makeBlocks());
    const MeshView& view = world.view();
    const FloorRoutes routes(view);
    const HostKit::RandomPlaces places(view, 0);
    PathStraightener straightener(view);
    StraightPath path;
    std::vector<double> ratios;
    double sum = 0;
    for (std::uint64_t i = 0; i < 500; ++i) {
        const Position start = places.pick(2 * i).mPosition;
        const Position goal = places.pick(2 * i + 1).mPosition;
        const auto waypoints = WalkingWorld::search(start, goal);
        ASSERT_TRUE(straightener.straighten(start, goal, *waypoints, StraightForm::IMPROVED, path));
        const double shortest = routes.lengthOf(view.planeOf(start), view.planeOf(goal));
        ASSERT_GE(path.mLength, shortest * (1 - 1e-6)) << i;
        ratios.push_back(path.mLength / shortest);
        sum += ratios.back();
    }
    std::ranges::sort(ratios);
    std::cout << "of the shortest: mean " << sum / 500 << ", 99 % " << ratios[494] << '\n';
    EXPECT_LE(sum / 500, 1.015);
    EXPECT_LE(ratios[494], 1.08);
}

TEST(StraightPath, KeepsOffWallsAndComesInEqualSteps) {
    const WalkingWorld world(Worlds::makeHarbour());
    const MeshView& view = world.view();
    const HostKit::RandomPlaces places(view, 0);
    PathStraightener straightener(view);
    StraightPath path;
    unsigned int corners = 0;
    unsigned int apart = 0;
    for (std::uint64_t i = 0; i < 200; ++i) {
        const Position start = places.pick(2 * i).mPosition;
        const Position goal = places.pick(2 * i + 1).mPosition;
        const auto waypoints = WalkingWorld::search(start, goal);
        ASSERT_TRUE(straightener.straighten(start, goal, *waypoints, StraightForm::IMPROVED, path));
        constexpr float margin = 0.5F;
        const auto kept = HostKit::keepOffWalls(view, path, margin);
        ASSERT_EQ(kept.size(), path.mCorners.size());
        for (std::size_t k = 1; k + 1 < kept.size(); ++k) {
            ++corners;
            apart += HostKit::distanceToWall(view, kept[k], 1) > margin * 0.7F ? 1 : 0;
        }
        const auto steps = HostKit::placesAlong(view, path, 0.7F);
        ASSERT_LE(std::abs(static_cast<double>(steps.size()) - planeLength(view, path) / 0.7), 2);
        for (std::size_t k = 1; k < steps.size(); ++k) {
            const PlanePoint point = view.planeOf(steps[k].mPosition);
            ASSERT_LT(distance(point, HostKit::nearestInNode(view, steps[k].mNode, point)), 1e-4);
            ASSERT_LE(distance(point, view.planeOf(steps[k - 1].mPosition)), 0.7001);
        }
    }
    EXPECT_GT(apart, corners * 9 / 10) << corners;
}

TEST(StraightPath, CopesWithOddMeshes) {
    // two nodes in one place; of two ways on from there, the one that the waypoints go
    const std::vector<std::pair<int, int>> middle{{8, 0}, {16, 0}, {16, 8}, {8, 8}};
    const WalkingWorld world(flatMesh({{{{0, 0}, {8, 0}, {8, 8}, {0, 8}}, {1, 2, -1, -1}},
                                       {middle, {0, -1, -1, -1}},
                                       {middle, {0, 3, -1, -1}},
                                       {{{16, 0}, {24, 0}, {24, 8}, {16, 8}}, {2, 4, -1, -1}},
                                       {{{32, 0}, {40, 0}, {40, 8}, {32, 8}}, {3, -1, -1, -1}}}));
    const MeshView& view = world.view();
    PathStraightener straightener(view);
    StraightPath path;
    const auto straighten = [&](const Position& start, const Position& goal) {
        const auto waypoints = WalkingWorld::search(start, goal);
        return waypoints.has_value() &&
               straightener.straighten(start, goal, *waypoints, StraightForm::IMPROVED, path);
    };
    ASSERT_TRUE(straighten({1, 0, 1}, {9, 0, 1})); // and over a gap of 2
    EXPECT_EQ(path.mChain, (std::vector<std::uint32_t>{0, 2, 3, 4}));
    ASSERT_EQ(path.mCorners.size(), 4U);
    EXPECT_EQ(path.mCorners[1].mPosition.mX, 6);
    EXPECT_EQ(path.mCorners[2].mPosition.mX, 8);
    ASSERT_TRUE(straighten({1, 0, 1}, {1, 0, 1}));
    EXPECT_EQ(path.mCorners.size(), 1U);
    EXPECT_EQ(path.mLength, 0);
    // what is no path on this mesh
    EXPECT_FALSE(straightener.straighten({1, 0, 1}, {9, 0, 1}, {}, StraightForm::PLAIN, path));
    EXPECT_FALSE(straightener.straighten({1, 9, 1}, {1, 0, 1}, {}, StraightForm::PLAIN, path));
    for (const std::vector<std::uint32_t>& chain :
         std::initializer_list<std::vector<std::uint32_t>>{{}, {0, 3}, {0, 99}})
        EXPECT_FALSE(
            straightener.straightenChain({1, 0, 1}, {9, 0, 1}, chain, StraightForm::PLAIN, path));
    EXPECT_TRUE(path.mChain.empty() && path.mCorners.empty());
}

} // namespace
} // namespace ZUNO::Tests
