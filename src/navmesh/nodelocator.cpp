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

/// A node's corners in the plane, as the test for a point sees them.
class Outline {
public:
    Outline(const NavMeshContainer& mesh, const NavMeshContainer::NavNode& node)
        : mMesh(mesh), mPolygon(node.mPolygon) {}

    /// Returns where points may lie that the node's test accepts, although it computes areas in
    /// `float`; nothing when that is not known.
    ///
    /// Claim: a point farther than `margin` outside the corners' bounds is refused.
    /// 1. Outside a simple counter-clockwise outline of area A, larger extent S and k borders, at
    ///    the distance d from its bounds along one axis, one border has a doubled area below
    ///        -least(d) = -(d * d / (d + S) * A / S / k).
    ///    Seen from the point, the triangles with positive area cover every segment to the polygon:
    ///    its own area A, and between the point and the bounds at least d * d / (d + S) * A / S / 2
    ///    (somewhere the polygon is A / S across). All triangles together make A, so the negative
    ///    ones make up for what is more, and one of them for a share of 1 / k.
    /// 2. The float value of a doubled area is off by at most
    ///        error(d) = E * (2 * X * (d + S) + (X + d + S) * S),  E = 8 * 2^-24,
    ///    where X is the largest magnitude of the corners' first coordinates.
    /// 3. least(d) / d grows with d, and error(d) / d falls. If least > error at the margin, the
    ///    sign is right everywhere beyond it.
    std::optional<NodeLocator::Rect> measureReach() {
        if (!findBounds() || !isSimple())
            return {};
        constexpr double roundingError = 8.0 / (1 << 24);
        const double size = mBounds.largerExtent();
        const auto count = static_cast<double>(mPolygon.size());
        for (const double part : {1.0 / 16, 1.0 / 4, 1.0}) {
            const double margin = size * part;
            const double least = margin * margin / (margin + size) * mArea / size / count;
            const double error = roundingError * (2 * mLargestX * (margin + size) +
                                                  (mLargestX + margin + size) * size);
            if (least > error)
                return mBounds.widened(margin);
        }
        return {};
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
        mCentre = {0, 0};
        for (std::size_t i = 0; i < mPolygon.size(); ++i) {
            const Corner at = corner(i);
            const NodeLocator::Rect here{{at.mX, at.mY}, {at.mX, at.mY}};
            if (i == 0)
                mBounds = here;
            mBounds.grow(here);
            mCentre.mX += at.mX;
            mCentre.mY += at.mY;
        }
        const auto count = static_cast<double>(mPolygon.size());
        mCentre = {mCentre.mX / count, mCentre.mY / count};
        const auto largestOf = [&](int axis) {
            return std::max(std::abs(mBounds.mLow[axis]), std::abs(mBounds.mHigh[axis]));
        };
        mLargestX = largestOf(0);
        mLargest = std::max(mLargestX, largestOf(1));
        return mLargest < largest && mBounds.largerExtent() > smallest;
    }

    /// Whether every border runs counter-clockwise around the mean of the corners, once around
    /// altogether: then the outline does not cross itself.
    bool isSimple() {
        const double tolerance = 1e-13 * mLargest * mBounds.largerExtent();
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
    NodeLocator::Rect mBounds{};
    Corner mCentre{0, 0};
    double mLargestX = 0;
    double mLargest = 0;
    double mArea = 0;
};

} // namespace

std::optional<NodeLocator::Rect> NodeLocator::reachOf(const NavMeshContainer& mesh,
                                                      const NavMeshContainer::NavNode& node) {
    return Outline(mesh, node).measureReach();
}

NodeLocator::NodeLocator(const Common::SharedPtr<NavMeshContainer>& navMesh,
                         const Common::SharedPtr<Common::Memory::Allocator>& allocator)
    : mNavMesh(navMesh), mFirstEntries(allocator), mEntries(allocator), mEverywhere(allocator) {
    NavMeshContainer::Vector<Reach> reaches(allocator);
    reaches.reserve(navMesh->mNodes.size());
    for (const NavMeshContainer::NavNode& node : navMesh->mNodes) {
        const std::optional<Rect> reach = reachOf(*navMesh, node);
        const auto id = static_cast<std::uint32_t>(&node - navMesh->mNodes.data());
        if (reach.has_value())
            reaches.push_back({id, *reach});
        else
            mEverywhere.push_back(id);
    }
    if (reaches.empty()) {
        mFirstEntries.assign(2, 0); // one cell of nothing
        return;
    }
    mEntries.resize(layGrid(reaches));
    fill(reaches);
}

std::size_t NodeLocator::layGrid(const NavMeshContainer::Vector<Reach>& reaches) {
    Rect bounds = reaches.front().mRect;
    for (const Reach& reach : reaches)
        bounds.grow(reach.mRect);
    // a finer grid has shorter lists, until large nodes lie in too many cells
    for (std::size_t cells = reaches.size();; cells /= 4) {
        divide(bounds, cells);
        std::size_t entries = 0;
        for (const Reach& reach : reaches)
            entries += rangeOf(reach.mRect).size();
        if (entries <= entriesPerNode * reaches.size())
            return entries;
    }
}

void NodeLocator::divide(const Rect& bounds, std::size_t cells) {
    const double width = bounds.mHigh[0] - bounds.mLow[0]; // a reach has an extent in both axes
    const double height = bounds.mHigh[1] - bounds.mLow[1];
    const auto limit = static_cast<double>(std::max<std::size_t>(cells, 1));
    const double columns = std::clamp(std::floor(std::sqrt(limit * width / height)), 1.0, limit);
    const double rows = std::max(std::floor(limit / columns), 1.0);
    mColumns = {bounds.mLow[0], columns / width, static_cast<std::uint32_t>(columns)};
    mRows = {bounds.mLow[1], rows / height, static_cast<std::uint32_t>(rows)};
}

void NodeLocator::fill(const NavMeshContainer::Vector<Reach>& reaches) {
    const auto forEachCell = [&](const Reach& reach, auto action) {
        const CellRange range = rangeOf(reach.mRect);
        for (std::uint32_t row = range.mFirstRow; row <= range.mLastRow; ++row)
            for (std::uint32_t column = range.mFirstColumn; column <= range.mLastColumn; ++column)
                action(mFirstEntries[cellAt(column, row)]);
    };
    // counted, summed up to the lists' ends, and filled from the last id down to the lists' begins
    mFirstEntries.assign(cellAt(0, mRows.mCount) + 1, 0);
    for (const Reach& reach : reaches)
        forEachCell(reach, [](std::uint32_t& count) { ++count; });
    std::uint32_t sum = 0;
    for (std::uint32_t& count : mFirstEntries)
        count = sum += count;
    for (std::size_t i = reaches.size(); i-- != 0;)
        forEachCell(reaches[i], [&](std::uint32_t& first) { mEntries[--first] = reaches[i].mId; });
}

std::uint32_t NodeLocator::Axis::cellOf(double coordinate) const {
    const double cell = (coordinate - mBegin) * mScale;
    if (!(cell > 0))
        return 0;
    return cell < mCount ? static_cast<std::uint32_t>(cell) : mCount - 1;
}

NodeLocator::CellRange NodeLocator::rangeOf(const Rect& rect) const {
    return {mColumns.cellOf(rect.mLow[0]), mRows.cellOf(rect.mLow[1]),
            mColumns.cellOf(rect.mHigh[0]), mRows.cellOf(rect.mHigh[1])};
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
