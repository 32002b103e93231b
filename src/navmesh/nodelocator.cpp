#include "navmesh/nodelocator.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZUNO::NavMesh {

using Common::Math::Vec2;
using Common::Math::Vec3;

namespace {

/// Beyond these, products of coordinates leave the range in which rounding is relative.
constexpr double largest = 1e15;
constexpr double smallest = 1e-15;

constexpr std::size_t entriesPerNode = 9;

/// Where a node may hold points: the bounds of its corners and a margin. None when that is not
/// known.
struct Reach {
    bool mIsKnown = false;
    double mRect[4] = {0, 0, 0, 0}; ///< lowest x and y, highest x and y
};

/// A node's corners in the plane, as the test for a point sees them.
class Outline {
public:
    Outline(const NavMeshContainer& mesh, const NavMeshContainer::NavNode& node)
        : mMesh(mesh), mPolygon(node.mPolygon) {}

    /// The node's test computes in `float`, for each border, twice the area of the triangle of the
    /// border and the point, and refuses the point when one comes out negative. How far outside the
    /// corners' bounds can a point be and yet pass, for rounding?
    ///
    /// Seen from a point p at the distance d outside the bounds, along one axis, of a simple
    /// counter-clockwise outline, the positive triangles cover every segment from p to a point of
    /// the polygon: its area A, and outside the bounds at least d * d / (d + S) * A / S / 2, where
    /// S is the larger extent (a cross-section of A / S, seen through the bounds' side). All
    /// triangles together make A, so of k borders one is more negative, in twice the area, than
    ///     d * d / (d + S) * A / S / k.
    /// The rounding of one such area, with X the largest magnitude of the corners' first
    /// coordinates, is at most
    ///     E * (2 * X * (d + S) + (X + d + S) * S),  E = 8 * 2^-24.
    /// Divided by d the former grows with d and the latter falls: when the former is larger at a
    /// margin, no point beyond that margin passes.
    Reach measure() {
        Reach reach;
        if (!findBounds() || !isSimple())
            return reach;
        constexpr double roundingError = 8.0 / (1 << 24);
        const double size = std::max(mHigh[0] - mLow[0], mHigh[1] - mLow[1]);
        const auto count = static_cast<double>(mPolygon.size());
        for (const double part : {1.0 / 16, 1.0 / 4, 1.0}) {
            const double margin = size * part;
            const double least = margin * margin / (margin + size) * mArea / size / count;
            const double error = roundingError * (2 * mLargestX * (margin + size) +
                                                  (mLargestX + margin + size) * size);
            if (!(least > error))
                continue;
            reach.mIsKnown = true;
            for (int axis = 0; axis < 2; ++axis) {
                reach.mRect[axis] = mLow[axis] - margin;
                reach.mRect[axis + 2] = mHigh[axis] + margin;
            }
            break;
        }
        return reach;
    }

private:
    struct Corner {
        double mX;
        double mY;
    };

    Corner corner(std::size_t i) const {
        const Vec2<float> projected = mMesh.projectToPlane(mMesh.mVertices[mPolygon[i]]);
        return {projected.mX, projected.mY};
    }

    bool findBounds() {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        mLow[0] = mLow[1] = infinity;
        mHigh[0] = mHigh[1] = -infinity;
        mCentre = {0, 0};
        for (std::size_t i = 0; i < mPolygon.size(); ++i) {
            const Corner at = corner(i);
            mLow[0] = std::min(mLow[0], at.mX);
            mLow[1] = std::min(mLow[1], at.mY);
            mHigh[0] = std::max(mHigh[0], at.mX);
            mHigh[1] = std::max(mHigh[1], at.mY);
            mCentre.mX += at.mX;
            mCentre.mY += at.mY;
        }
        const auto count = static_cast<double>(mPolygon.size());
        mCentre = {mCentre.mX / count, mCentre.mY / count};
        mLargestX = std::max(std::abs(mLow[0]), std::abs(mHigh[0]));
        const double largestY = std::max(std::abs(mLow[1]), std::abs(mHigh[1]));
        mLargest = std::max(mLargestX, largestY);
        const double size = std::max(mHigh[0] - mLow[0], mHigh[1] - mLow[1]);
        return mLargest < largest && size > smallest;
    }

    /// Whether every border runs counter-clockwise around the mean of the corners, once around
    /// altogether: then the outline does not cross itself.
    bool isSimple() {
        const double size = std::max(mHigh[0] - mLow[0], mHigh[1] - mLow[1]);
        const double tolerance = 1e-13 * mLargest * size;
        double doubleArea = 0;
        int turns = 0;
        Corner a = corner(mPolygon.size() - 1);
        for (std::size_t i = 0; i < mPolygon.size(); ++i) {
            const Corner b = corner(i);
            const double area =
                (b.mX - a.mX) * (mCentre.mY - a.mY) - (b.mY - a.mY) * (mCentre.mX - a.mX);
            const bool isPoint = a.mX == b.mX && a.mY == b.mY; // refuses nothing
            if (!isPoint && !(area > tolerance))
                return false;
            doubleArea += area;
            turns += a.mY < mCentre.mY && b.mY >= mCentre.mY ? 1 : 0;
            a = b;
        }
        mArea = doubleArea / 2;
        return turns == 1;
    }

    const NavMeshContainer& mMesh;
    const NavMeshContainer::Vector<std::uint32_t>& mPolygon;
    double mLow[2] = {0, 0};
    double mHigh[2] = {0, 0};
    Corner mCentre{0, 0};
    double mLargestX = 0;
    double mLargest = 0;
    double mArea = 0;
};

} // namespace

NodeLocator::NodeLocator(const Common::SharedPtr<NavMeshContainer>& navMesh,
                         const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mNavMesh(navMesh), mFirstEntries(allocator), mEntries(allocator), mEverywhere(allocator) {
    const NavMeshContainer& mesh = *navMesh;
    NavMeshContainer::Vector<Reach> reaches(allocator);
    reaches.reserve(mesh.mNodes.size());
    constexpr double infinity = std::numeric_limits<double>::infinity();
    double bounds[4] = {infinity, infinity, -infinity, -infinity};
    for (const NavMeshContainer::NavNode& node : mesh.mNodes) {
        const Reach& reach = reaches.emplace_back(Outline(mesh, node).measure());
        if (!reach.mIsKnown) {
            mEverywhere.push_back(static_cast<std::uint32_t>(reaches.size() - 1));
            continue;
        }
        for (int axis = 0; axis < 2; ++axis) {
            bounds[axis] = std::min(bounds[axis], reach.mRect[axis]);
            bounds[axis + 2] = std::max(bounds[axis + 2], reach.mRect[axis + 2]);
        }
    }
    if (mEverywhere.size() == mesh.mNodes.size())
        bounds[0] = bounds[1] = bounds[2] = bounds[3] = 0;
    mColumns.mBegin = bounds[0];
    mRows.mBegin = bounds[1];
    const std::size_t limit = entriesPerNode * mesh.mNodes.size();
    // a finer grid has shorter lists, until large nodes lie in too many cells
    for (std::size_t cells = mesh.mNodes.size();; cells /= 4) {
        layGrid(bounds[2] - bounds[0], bounds[3] - bounds[1], cells);
        mFirstEntries.assign(std::size_t{mColumns.mCount} * mRows.mCount + 1, 0);
        std::size_t entries = 0;
        for (const Reach& reach : reaches) {
            if (!reach.mIsKnown)
                continue;
            const CellRange range = rangeOf(reach.mRect);
            entries += std::size_t{range.mLastColumn - range.mFirstColumn + 1} *
                       (range.mLastRow - range.mFirstRow + 1);
        }
        if (entries > limit && cells > 1)
            continue;
        mEntries.resize(entries);
        break;
    }
    const auto forEachCell = [&](const Reach& reach, auto action) {
        const CellRange range = rangeOf(reach.mRect);
        for (std::uint32_t row = range.mFirstRow; row <= range.mLastRow; ++row)
            for (std::uint32_t column = range.mFirstColumn; column <= range.mLastColumn; ++column)
                action(mFirstEntries[std::size_t{row} * mColumns.mCount + column]);
    };
    // counted, summed up to the lists' ends, and filled from the last id down to the lists' begins
    for (const Reach& reach : reaches)
        if (reach.mIsKnown)
            forEachCell(reach, [](std::uint32_t& count) { ++count; });
    std::uint32_t sum = 0;
    for (std::uint32_t& count : mFirstEntries)
        count = sum += count;
    for (std::size_t id = reaches.size(); id-- != 0;)
        if (reaches[id].mIsKnown)
            forEachCell(reaches[id], [&](std::uint32_t& first) {
                mEntries[--first] = static_cast<std::uint32_t>(id);
            });
}

void NodeLocator::layGrid(double width, double height, std::size_t cells) {
    const auto limit = static_cast<double>(std::max<std::size_t>(cells, 1));
    const double ideal = height > 0 ? std::sqrt(limit * width / height) : limit;
    const double columns = std::clamp(std::floor(ideal), 1.0, limit);
    const double rows = std::max(std::floor(limit / columns), 1.0);
    mColumns.mCount = static_cast<std::uint32_t>(columns);
    mRows.mCount = static_cast<std::uint32_t>(rows);
    mColumns.mScale = width > 0 ? columns / width : 0;
    mRows.mScale = height > 0 ? rows / height : 0;
}

std::uint32_t NodeLocator::Axis::cellOf(double coordinate) const {
    const double cell = (coordinate - mBegin) * mScale;
    if (!(cell > 0))
        return 0;
    return cell < mCount ? static_cast<std::uint32_t>(cell) : mCount - 1;
}

NodeLocator::CellRange NodeLocator::rangeOf(const double (&rect)[4]) const {
    return {mColumns.cellOf(rect[0]), mRows.cellOf(rect[1]), mColumns.cellOf(rect[2]),
            mRows.cellOf(rect[3])};
}

std::int32_t NodeLocator::findNode(const Vec3<float>& point) const {
    const Vec2<float> projected = mNavMesh->projectToPlane(point);
    if (!(std::abs(projected.mX) < largest && std::abs(projected.mY) < largest))
        return mNavMesh->findNode(point); // where rounding knows no bounds
    // a point outside the grid is looked for in its outermost cells, in vain
    const std::size_t cell =
        std::size_t{mRows.cellOf(projected.mY)} * mColumns.mCount + mColumns.cellOf(projected.mX);
    constexpr std::int32_t none = std::numeric_limits<std::int32_t>::max();
    const std::uint32_t* const entries = mEntries.data();
    std::int32_t id =
        findIn(entries + mFirstEntries[cell], entries + mFirstEntries[cell + 1], point, none);
    id = findIn(mEverywhere.data(), mEverywhere.data() + mEverywhere.size(), point, id);
    return id != none ? id : -1;
}

std::int32_t NodeLocator::findIn(const std::uint32_t* first, const std::uint32_t* last,
                                 const Vec3<float>& point, std::int32_t limit) const {
    for (; first != last; ++first) {
        const auto id = static_cast<std::int32_t>(*first);
        if (id >= limit)
            break;
        if (mNavMesh->isPointInNode(point, id))
            return id;
    }
    return limit;
}

std::size_t NodeLocator::getMemoryUsage() const {
    return (mFirstEntries.capacity() + mEntries.capacity() + mEverywhere.capacity()) *
           sizeof(std::uint32_t);
}

} // namespace ZUNO::NavMesh
