#include "tools/zunobake/nodeshapes.h"

#include <array>
#include <deque>
#include <limits>
#include <queue>
#include <tuple>

namespace ZUNO::Tools {

namespace {

constexpr double smallestArea = 1.5; // of a node that is cut off, in cells
constexpr double unlimited = std::numeric_limits<double>::infinity();
constexpr int shortestCut = 4; // of borders that are cut in two, in cells

/// Where a node may be cut: a corner, or a place on the border that follows it.
struct CutPlace {
    std::size_t mCorner;
    bool mIsOnBorder;
    GridPoint mPoint;
};

/// Cuts one node after the other.
class NodeCutter {
public:
    NodeCutter(NodeRings& rings, const CellSettings& cells) : mRings(rings), mCells(cells) {}

    void run() {
        for (std::size_t node = 0; node < mRings.nodes().size(); ++node)
            mOpen.push_back(node);
        while (!mOpen.empty()) {
            const std::size_t node = mOpen.front();
            mOpen.pop_front();
            cutIfUneven(node);
        }
    }

private:
    static constexpr std::size_t samples = 300;

    void cutIfUneven(std::size_t node) {
        const Outline outline = mRings.outlineOf(node);
        const Ground& ground = mRings.nodes()[node].mGround;
        const double error = heightErrorOf(outline, ground);
        if (ground.mCells.empty() || error <= mCells.mHeightError ||
            areaOf(outline) < 2 * smallestArea)
            return;
        const std::vector<CutPlace> places = listPlaces(node, outline);
        const CutPlace* best[2] = {};
        double least = std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < places.size(); ++i)
            for (std::size_t j = i + 1; j < places.size(); ++j)
                if (const double cost = costOf(outline, ground, places[i], places[j]);
                    cost < least) {
                    least = cost;
                    best[0] = &places[i];
                    best[1] = &places[j];
                }
        if (best[0] != nullptr)
            cut(node, *best[0], *best[1]);
    }

    std::vector<CutPlace> listPlaces(std::size_t node, const Outline& outline) const {
        std::vector<CutPlace> places;
        for (std::size_t i = 0; i < outline.size(); ++i) {
            places.push_back({i, false, outline[i]});
            GridPoint middle{};
            if (findMiddle(node, outline, i, middle))
                places.push_back({i, true, middle});
        }
        return places;
    }

    /// A place on the grid near the middle of a border. On a border that is on a slant it lies a
    /// little inside the node, so that the neighbour stays convex.
    bool findMiddle(std::size_t node, const Outline& outline, std::size_t i,
                    GridPoint& middle) const {
        const GridPoint& a = outline[i];
        const GridPoint& b = outline[(i + 1) % outline.size()];
        if (std::max(std::abs(b.mX - a.mX), std::abs(b.mZ - a.mZ)) < 2 * shortestCut)
            return false;
        const std::size_t other = mRings.neighbourOf(node, i);
        const bool isAlongAxis = a.mX == b.mX || a.mZ == b.mZ;
        std::int64_t nearest = std::numeric_limits<std::int64_t>::max();
        for (int dx = -1; dx <= 1; ++dx)
            for (int dz = -1; dz <= 1; ++dz) {
                const GridPoint point{(a.mX + b.mX) / 2 + dx, 0, (a.mZ + b.mZ) / 2 + dz};
                const std::int64_t inside = turnAt(a, b, point);
                const bool fits =
                    isAlongAxis || other == NodeRings::none ? inside == 0 : inside > 0;
                if (fits && inside < nearest) {
                    nearest = inside;
                    middle = point;
                }
            }
        if (nearest == std::numeric_limits<std::int64_t>::max())
            return false;
        middle.mY = heightAt(mRings.nodes()[node].mGround, a, b, middle);
        return other == NodeRings::none || staysConvex(other, mRings.cornerOf(node, i + 1), middle);
    }

    bool staysConvex(std::size_t node, std::size_t before, const GridPoint& point) const {
        const std::vector<std::size_t>& corners = mRings.nodes()[node].mCorners;
        Outline outline = mRings.outlineOf(corners);
        const auto place = std::find(corners.begin(), corners.end(), before) - corners.begin();
        outline.insert(outline.begin() + place + 1, point);
        return isConvex(outline);
    }

    /// The height of the ground around a point of the grid; that of the border where there is none.
    static int heightAt(const Ground& ground, const GridPoint& a, const GridPoint& b,
                        const GridPoint& point) {
        int sum = 0;
        int count = 0;
        for (const GridPoint& cell : ground.mCells)
            if ((cell.mX == point.mX || cell.mX == point.mX - 1) &&
                (cell.mZ == point.mZ || cell.mZ == point.mZ - 1)) {
                sum += cell.mY;
                ++count;
            }
        return count != 0 ? static_cast<int>(std::lround(double(sum) / count)) : (a.mY + b.mY) / 2;
    }

    /// How many nodes a cut may be thought to lead to: the error of a surface goes with its area,
    /// and what is long and thin has to be cut more often. Cuts through the middle are preferred.
    double costOf(const Outline& outline, const Ground& ground, const CutPlace& from,
                  const CutPlace& to) const {
        const auto half = [&](const CutPlace& begin, const CutPlace& end) {
            Outline corners{begin.mPoint};
            const std::size_t last = (end.mCorner + (end.mIsOnBorder ? 1 : 0)) % outline.size();
            for (std::size_t i = (begin.mCorner + 1) % outline.size(); i != last;
                 i = (i + 1) % outline.size())
                corners.push_back(outline[i]);
            corners.push_back(end.mPoint);
            return corners;
        };
        double cost = 0;
        double areas[2];
        const std::array<Outline, 2> halves = {half(from, to), half(to, from)};
        for (std::size_t i = 0; i < 2; ++i) {
            areas[i] = areaOf(halves[i]);
            if (halves[i].size() < 3 || areas[i] < smallestArea || !isConvex(halves[i]))
                return std::numeric_limits<double>::infinity();
            const double error = heightErrorOf(halves[i], ground, samples) / mCells.mHeightError;
            cost += std::max(error, 1.0) * elongationOf(halves[i]);
        }
        return cost * (1 + std::abs(areas[0] - areas[1]) / (areas[0] + areas[1]));
    }

    /// 1 for a square, and above for what is longer than wide.
    static double elongationOf(const Outline& outline) {
        double length = 0;
        for (std::size_t i = 0; i < outline.size(); ++i) {
            const GridPoint& a = outline[i];
            const GridPoint& b = outline[(i + 1) % outline.size()];
            length += std::hypot(b.mX - a.mX, b.mZ - a.mZ);
        }
        return length * length / (16 * areaOf(outline));
    }

    void cut(std::size_t node, const CutPlace& from, const CutPlace& to) {
        // the later one first, so that the corners before it keep their places
        const auto placeOf = [&](const CutPlace& place) {
            if (!place.mIsOnBorder)
                return place.mCorner;
            if (const std::size_t other = mRings.insert(node, place.mCorner, place.mPoint);
                other != NodeRings::none)
                mOpen.push_back(other);
            return place.mCorner + 1;
        };
        std::size_t last = placeOf(to);
        const std::size_t first = placeOf(from);
        last += from.mIsOnBorder ? 1 : 0;
        mOpen.push_back(mRings.cut(node, first, last));
        mOpen.push_back(node);
    }

    NodeRings& mRings;
    const CellSettings& mCells;
    std::deque<std::size_t> mOpen;
};

/// Joins pairs of neighbours, the longest borders first.
class NodeJoiner {
public:
    NodeJoiner(NodeRings& rings, const CellSettings& cells, double heightError)
        : mRings(rings), mCells(cells), mHeightError(heightError), mVersions(rings.nodes().size()) {
    }

    void run() {
        for (std::size_t node = 0; node < mRings.nodes().size(); ++node)
            open(node);
        while (!mOpen.empty()) {
            const Pair pair = mOpen.top();
            mOpen.pop();
            if (mVersions[pair.mNode] != pair.mVersion || mVersions[pair.mOther] != pair.mVersion2)
                continue;
            const std::vector<std::size_t> corners = mRings.cornersOfBoth(pair.mNode, pair.mOther);
            if (corners.empty() || !mayJoin(pair.mNode, pair.mOther, corners))
                continue;
            mRings.join(pair.mNode, pair.mOther, corners);
            ++mVersions[pair.mNode];
            ++mVersions[pair.mOther];
            open(pair.mNode);
        }
    }

private:
    struct Pair {
        double mLength;
        std::size_t mNode;
        std::size_t mOther;
        unsigned int mVersion;
        unsigned int mVersion2;
        auto key() const { return std::tuple(mLength, mOther, mNode); }
        bool operator<(const Pair& other) const { return key() < other.key(); }
    };

    void open(std::size_t node) {
        const std::size_t count = mRings.nodes()[node].mCorners.size();
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t other = mRings.neighbourOf(node, i);
            if (other == NodeRings::none || other == node)
                continue;
            const GridPoint& a = mRings.vertex(mRings.cornerOf(node, i));
            const GridPoint& b = mRings.vertex(mRings.cornerOf(node, i + 1));
            mOpen.push({std::hypot(b.mX - a.mX, b.mZ - a.mZ), node, other, mVersions[node],
                        mVersions[other]});
        }
    }

    bool mayJoin(std::size_t node, std::size_t other,
                 const std::vector<std::size_t>& corners) const {
        const BakedNode& a = mRings.nodes()[node];
        const BakedNode& b = mRings.nodes()[other];
        if (a.mSurface != b.mSurface || a.mAgent != b.mAgent)
            return false;
        const Outline outline = mRings.outlineOf(corners);
        if (!isConvex(outline))
            return false;
        const Ground ground = mRings.groundOfBoth(node, other);
        const auto [low, high] = rangeOf(outline, &GridPoint::mY);
        if (ground.mHasFloors &&
            std::max(high, ground.mHighest) - std::min(low, ground.mLowest) > mCells.mLevel)
            return false;
        return mHeightError == unlimited || heightErrorOf(outline, ground) <= mHeightError;
    }

    NodeRings& mRings;
    const CellSettings& mCells;
    double mHeightError;
    std::vector<unsigned int> mVersions; ///< of each node: pairs of former ones are stale
    std::priority_queue<Pair> mOpen;
};

} // namespace

void shapeNodes(NodeRings& rings, const CellSettings& cells) {
    NodeJoiner(rings, cells, unlimited).run();
    NodeCutter(rings, cells).run();
    NodeJoiner(rings, cells, cells.mHeightError).run();
}

} // namespace ZUNO::Tools
