// Straight paths against slower ways to find them.
#include "hostkit/memoryfilecallback.h"
#include "hostkit/pathpoints.h"
#include "tests/hostkit/walkingworld.h"
#include "tests/platform/process.h"
#include "worlds/scenes.h"

#include <algorithm>
#include <numeric>

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

/// A world, and the straight paths that were found there last.
class StraightPaths {
public:
    explicit StraightPaths(const std::string& document) : mWorld(document) {}

    /// Searches a path and straightens it in both forms. Returns whether there is one.
    bool find(const Position& start, const Position& goal) {
        const PathAnswer found = WalkingWorld::search(start, goal);
        if (found.mResult != PathResult::FOUND)
            return false;
        const std::vector<Position>& waypoints = found.mWaypoints;
        EXPECT_TRUE(mStraightener.straighten(start, goal, waypoints, StraightForm::PLAIN, mPlain));
        EXPECT_TRUE(
            mStraightener.straighten(start, goal, waypoints, StraightForm::IMPROVED, mImproved));
        EXPECT_EQ(mPlain.mChain.size(), waypoints.size() + 1);
        EXPECT_LE(mImproved.mLength, mPlain.mLength);
        return true;
    }
    /// The same between two places by chance.
    bool findAny(std::uint64_t seed) {
        return find(mPlaces.pick(2 * seed).mPosition, mPlaces.pick(2 * seed + 1).mPosition);
    }

    const WalkingWorld mWorld;
    const MeshView& mView = mWorld.view();
    const RandomPlaces mPlaces{mView, 0};
    PathStraightener mStraightener{mView};
    StraightPath mPlain;
    StraightPath mImproved;
};

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
    StraightPaths paths(document);
    const MeshView& view = paths.mView;
    for (std::uint64_t i = 0; i < GetParam().mPaths; ++i) {
        // every third between vertices, where all is collinear, and some to themselves
        const auto place = [&](std::uint64_t seed) {
            const Place any = paths.mPlaces.pick(seed);
            return i % 3 != 0 ? any.mPosition
                              : view.positionOf(
                                    view.cornersOf(any.mNode)[static_cast<std::size_t>(seed % 3)]);
        };
        const Position start = place(2 * i);
        const Position goal = place(i % 10 == 0 ? 2 * i : 2 * i + 1);
        if (!paths.find(start, goal))
            continue;
        for (const StraightPath& path : {paths.mPlain, paths.mImproved}) {
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

/// A flat floor with square holes, which don't touch each other, and the shortest ways on it: over
/// the holes' corners that see each other.
class FloorWithHoles {
public:
    FloorWithHoles() {
        mModel.mHeights = {2};
        for (int z = 0; z < 29; ++z) // squares of 2 x 2; a hole takes 3 x 3 of them
            for (int x = 0; x < 29; ++x)
                if (x % 4 == 0 || z % 4 == 0 || !isHole(x / 4, z / 4))
                    mModel.addPolygon({{x * 8, 0, z * 8},
                                       {x * 8 + 8, 0, z * 8},
                                       {x * 8 + 8, 0, z * 8 + 8},
                                       {x * 8, 0, z * 8 + 8}},
                                      0, 0xFFFF);
        mModel.connect();
        for (int i = 0; i < 49; ++i)
            if (isHole(i % 7, i / 7)) {
                const PlanePoint low{8.0 * (i % 7) + 2, 8.0 * (i / 7) + 2};
                mHoles.push_back(
                    {low, low + PlanePoint{6, 0}, low + PlanePoint{6, 6}, low + PlanePoint{0, 6}});
                mCorners.insert(mCorners.end(), mHoles.back().begin(), mHoles.back().end());
            }
        for (const PlanePoint& corner : mCorners)
            mLengths.push_back(legsFrom(corner));
        for (std::size_t by = 0; by < mCorners.size(); ++by)
            for (auto& lengths : mLengths)
                for (std::size_t to = 0; to < mCorners.size(); ++to)
                    lengths[to] = std::min(lengths[to], lengths[by] + mLengths[by][to]);
    }

    double shortest(const PlanePoint& from, const PlanePoint& to) const {
        double best = leg(from, to);
        const std::vector<double> first = legsFrom(from);
        const std::vector<double> last = legsFrom(to);
        for (std::size_t i = 0; i < first.size(); ++i)
            for (std::size_t j = 0; j < last.size(); ++j)
                best = std::min(best, first[i] + mLengths[i][j] + last[j]);
        return best;
    }

    Worlds::MeshModel mModel;

private:
    using Hole = std::array<PlanePoint, 4>; ///< its corners, the lowest first, the highest third

    static bool isHole(int x, int z) { return (x * 5 + z * 3) % 4 != 0; }

    /// The length of the segment; infinite when it runs through a hole. It may touch them.
    double leg(const PlanePoint& a, const PlanePoint& b) const {
        const auto isCrossed = [&](const Hole& hole) {
            const auto [right, left] = std::minmax({turn(a, b, hole[0]), turn(a, b, hole[1]),
                                                    turn(a, b, hole[2]), turn(a, b, hole[3])});
            return right < 0 && left > 0 && std::max(a.mX, b.mX) > hole[0].mX &&
                   std::max(a.mY, b.mY) > hole[0].mY && std::min(a.mX, b.mX) < hole[2].mX &&
                   std::min(a.mY, b.mY) < hole[2].mY;
        };
        return std::ranges::any_of(mHoles, isCrossed) ? std::numeric_limits<double>::infinity()
                                                      : distance(a, b);
    }
    std::vector<double> legsFrom(const PlanePoint& point) const {
        std::vector<double> legs;
        for (const PlanePoint& corner : mCorners)
            legs.push_back(leg(point, corner));
        return legs;
    }

    std::vector<Hole> mHoles;
    std::vector<PlanePoint> mCorners;
    std::vector<std::vector<double>> mLengths; ///< from corner to corner
};

TEST(StraightPath, IsNearlyTheShortestThereIs) {
    const FloorWithHoles floor;
    StraightPaths paths(floor.mModel.toXML(""));
    std::vector<double> ratios;
    for (std::uint64_t i = 0; i < 500; ++i) {
        ASSERT_TRUE(paths.findAny(i));
        const auto& corners = paths.mImproved.mCorners;
        ratios.push_back(paths.mImproved.mLength /
                         floor.shortest(paths.mView.planeOf(corners.front().mPosition),
                                        paths.mView.planeOf(corners.back().mPosition)));
    }
    std::ranges::sort(ratios);
    const double mean = std::accumulate(ratios.begin(), ratios.end(), 0.0) / 500;
    std::cout << "of the shortest: mean " << mean << ", 99 % " << ratios[494] << '\n';
    EXPECT_GE(ratios[0], 1 - 1e-6);
    EXPECT_NEAR(mean, 1.00071, 1e-5) << "wrong estimates give longer ways, or slower searches";
    EXPECT_LE(ratios[494], 1.03);
}

TEST(StraightPath, KeepsOffWallsAndComesInEqualSteps) {
    StraightPaths paths(Worlds::makeHarbour().toXML(""));
    const MeshView& view = paths.mView;
    const StraightPath& path = paths.mImproved;
    unsigned int corners = 0;
    unsigned int apart = 0;
    for (std::uint64_t i = 0; i < 200; ++i) {
        ASSERT_TRUE(paths.findAny(i));
        constexpr float margin = 0.5F;
        const auto kept = keepOffWalls(view, path, margin);
        ASSERT_EQ(kept.size(), path.mCorners.size());
        for (std::size_t k = 1; k + 1 < kept.size(); ++k) {
            ++corners;
            apart += distanceToWall(view, kept[k], 1) > margin * 0.7F ? 1 : 0;
        }
        const auto steps = placesAlong(view, path, 0.7F);
        ASSERT_LE(std::abs(static_cast<double>(steps.size()) - planeLength(view, path) / 0.7), 2);
        for (std::size_t k = 1; k < steps.size(); ++k) {
            const PlanePoint point = view.planeOf(steps[k].mPosition);
            ASSERT_LT(distance(point, nearestInNode(view, steps[k].mNode, point)), 1e-4);
            ASSERT_LE(distance(point, view.planeOf(steps[k - 1].mPosition)), 0.7001);
        }
    }
    EXPECT_GT(apart, corners * 9 / 10) << corners;
}

TEST(StraightPath, CrossesABorderInPiecesAnywhere) {
    // where the pieces lead round a corner, the longest one counts
    for (const int middle : {8, 9})
        for (std::ptrdiff_t first = 0; first < 12; ++first) {
            std::vector<std::pair<int, int>> left{{0, 0},      {8, 0}, {middle, 2},
                                                  {middle, 3}, {8, 8}, {0, 8}};
            std::vector<std::pair<int, int>> right{{16, 0},     {16, 8},     {8, 8},
                                                   {middle, 3}, {middle, 2}, {8, 0}};
            for (auto* const ring : {&left, &right}) {
                std::rotate(ring->begin(), ring->begin() + first % 6, ring->end());
                if (first >= 6)
                    std::reverse(ring->begin(), ring->end()); // clockwise
            }
            const MeshFiles files(
                new MemoryFileCallback("m", flatMesh({{left, {1}}, {right, {0}}}).toXML("")));
            const MeshView view = loadMeshView("m", files);
            for (const float z : {0.25F, 1.5F}) {
                StraightPath path;
                ASSERT_TRUE(PathStraightener(view).straightenChain({1, 0, z}, {3, 0, z}, {0, 1},
                                                                   StraightForm::PLAIN, path));
                const bool isStraight = middle == 8 || z > 1;
                ASSERT_EQ(path.mCorners.size(), isStraight ? 2U : 3U) << first;
                EXPECT_TRUE(isStraight || path.mCorners[1].mPosition == Position(2.25F, 0, 0.75F));
            }
        }
}

TEST(StraightPath, CopesWithOddMeshes) {
    // two nodes in one place; of two ways on from there, the one that the waypoints go
    const std::vector<std::pair<int, int>> middle{{8, 0}, {16, 0}, {16, 8}, {8, 8}};
    StraightPaths paths(flatMesh({{{{0, 0}, {8, 0}, {8, 8}, {0, 8}}, {1, 2, -1, -1}},
                                  {middle, {0, -1, -1, -1}},
                                  {middle, {0, 3, -1, -1}},
                                  {{{16, 0}, {24, 0}, {24, 8}, {16, 8}}, {2, 4, -1, -1}},
                                  {{{32, 0}, {40, 0}, {40, 8}, {32, 8}}, {3, -1, -1, -1}}})
                            .toXML(""));
    StraightPath& path = paths.mImproved;
    ASSERT_TRUE(paths.find({1, 0, 1}, {9, 0, 1})); // and over a gap of 2
    EXPECT_EQ(path.mChain, (std::vector<std::uint32_t>{0, 2, 3, 4}));
    ASSERT_EQ(path.mCorners.size(), 4U);
    EXPECT_EQ(path.mCorners[1].mPosition.mX, 6);
    EXPECT_EQ(path.mCorners[2].mPosition.mX, 8);
    ASSERT_TRUE(paths.find({1, 0, 1}, {1, 0, 1}));
    EXPECT_EQ(path.mCorners.size(), 1U);
    EXPECT_EQ(path.mLength, 0);
    PathStraightener& straightener = paths.mStraightener;
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
