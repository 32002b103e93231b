#include "navmesh/nodelocator.h"

#include "common/math/floatrange.h"

#include <algorithm>
#include <cmath>

namespace ZUNO::NavMesh {

using Common::Math::largestCoordinate;
using Common::Math::smallestLength;
using Common::Math::Vec2;
using Common::Math::Vec3;

namespace {

constexpr std::uint32_t noNode = 0xFFFFFFFF;

constexpr std::size_t entriesPerNode = 2;

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
        for (const double part : {1.0 / 64, 1.0 / 16, 1.0 / 4, 1.0, 8.0, 64.0}) {
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
        return mLargest < largestCoordinate && mBounds.largerExtent() > smallestLength;
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
    for (std::size_t cells = reaches.size();; cells /= 2) {
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
                action(mFirstEntries[cellAt(column, row)], column, row);
    };
    // counted, summed up to the lists' ends, and filled from the last id down to the lists' begins
    mFirstEntries.assign(cellAt(0, mRows.mCount) + 1, 0);
    for (const Reach& reach : reaches)
        forEachCell(reach, [](std::uint32_t& count, auto...) { ++count; });
    std::uint32_t sum = 0;
    for (std::uint32_t& count : mFirstEntries)
        count = sum += count;
    for (std::size_t i = reaches.size(); i-- != 0;)
        forEachCell(reaches[i], [&](std::uint32_t& first, std::uint32_t column, std::uint32_t row) {
            mEntries[--first] = {reaches[i].mId, partOf(reaches[i].mRect, column, row)};
        });
}

NodeLocator::CellRange NodeLocator::rangeOf(const Rect& rect) const {
    return {mColumns.cellAt(rect.mLow[0]), mRows.cellAt(rect.mLow[1]),
            mColumns.cellAt(rect.mHigh[0]), mRows.cellAt(rect.mHigh[1])};
}

NodeLocator::Part NodeLocator::partOf(const Rect& rect, std::uint32_t column,
                                      std::uint32_t row) const {
    return {Part::within(mColumns.position(rect.mLow[0]), column),
            Part::within(mRows.position(rect.mLow[1]), row),
            Part::within(mColumns.position(rect.mHigh[0]), column),
            Part::within(mRows.position(rect.mHigh[1]), row)};
}

std::int32_t NodeLocator::findNode(const Vec3<float>& point) const {
    const Vec2<float> projected = mNavMesh->projectToPlane(point);
    if (!(std::abs(projected.mX) < largestCoordinate && std::abs(projected.mY) < largestCoordinate))
        return mNavMesh->findNode(point); // where rounding knows no bounds
    // A point in a node's reach is in the node's part of the cell, too: positions and parts grow
    // with coordinates. A point outside the grid is looked for in its outermost cells, in vain.
    const std::uint32_t column = mColumns.cellAt(projected.mX);
    const std::uint32_t row = mRows.cellAt(projected.mY);
    const Part here =
        partOf({{projected.mX, projected.mY}, {projected.mX, projected.mY}}, column, row);
    const std::size_t cell = cellAt(column, row);
    const Entry* const end = mEntries.data() + mFirstEntries[cell + 1];
    std::uint32_t found = noNode;
    for (const Entry* entry = mEntries.data() + mFirstEntries[cell];
         entry != end && found == noNode; ++entry)
        if (entry->mPart.holds(here) && isPointIn(entry->mId, point))
            found = entry->mId;
    for (const std::uint32_t id : mEverywhere) {
        if (id >= found)
            break;
        if (isPointIn(id, point))
            found = id;
    }
    return static_cast<std::int32_t>(found);
}

std::size_t NodeLocator::getMemoryUsage() const {
    return (mFirstEntries.capacity() + mEverywhere.capacity()) * sizeof(std::uint32_t) +
           mEntries.capacity() * sizeof(Entry);
}

} // namespace ZUNO::NavMesh
