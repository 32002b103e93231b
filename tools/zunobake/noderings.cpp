#include "tools/zunobake/noderings.h"

namespace ZUNO::Tools {

NodeRings::NodeRings(std::vector<GridPoint>& vertices, std::vector<BakedNode>& nodes)
    : mVertices(vertices), mNodes(nodes) {
    for (std::size_t node = 0; node < nodes.size(); ++node)
        own(node);
}

void NodeRings::own(std::size_t node) {
    for (std::size_t i = 0; i < mNodes[node].mCorners.size(); ++i)
        mOwners.try_emplace(borderOf(cornerOf(node, i), cornerOf(node, i + 1)), node);
}

void NodeRings::disown(std::size_t node) {
    for (std::size_t i = 0; i < mNodes[node].mCorners.size(); ++i) {
        const auto place = mOwners.find(borderOf(cornerOf(node, i), cornerOf(node, i + 1)));
        if (place != mOwners.end() && place->second == node)
            mOwners.erase(place);
    }
}

Outline NodeRings::outlineOf(const std::vector<std::size_t>& corners) const {
    Outline outline;
    for (const std::size_t corner : corners)
        outline.push_back(mVertices[corner]);
    return outline;
}

std::size_t NodeRings::insert(std::size_t node, std::size_t place, const GridPoint& point) {
    const std::size_t from = cornerOf(node, place);
    const std::size_t to = cornerOf(node, place + 1);
    const std::size_t other = ownerOf(to, from);
    const std::size_t vertex = mVertices.size();
    mVertices.push_back(point);
    const auto insertIn = [&](std::size_t ring, std::size_t before) {
        disown(ring);
        std::vector<std::size_t>& corners = mNodes[ring].mCorners;
        corners.insert(std::find(corners.begin(), corners.end(), before) + 1, vertex);
        own(ring);
    };
    insertIn(node, from);
    if (other != none)
        insertIn(other, to);
    return other;
}

std::size_t NodeRings::cut(std::size_t node, std::size_t from, std::size_t to) {
    disown(node);
    const std::vector<std::size_t> corners = mNodes[node].mCorners;
    const std::size_t count = corners.size();
    BakedNode halves[2] = {mNodes[node], mNodes[node]};
    for (BakedNode& half : halves) {
        half.mCorners.clear();
        half.mGround.mCells.clear();
    }
    for (std::size_t i = to;; ++i) {
        halves[0].mCorners.push_back(corners[i % count]);
        if (i % count == from)
            break;
    }
    for (std::size_t i = from;; ++i) {
        halves[1].mCorners.push_back(corners[i % count]);
        if (i % count == to)
            break;
    }
    // the second half lies to the right of the way from `from` to `to`
    const GridPoint& a = mVertices[corners[from]];
    const GridPoint& b = mVertices[corners[to]];
    for (const GridPoint& cell : mNodes[node].mGround.mCells) {
        const double side =
            (b.mX - a.mX) * (cell.mZ + 0.5 - a.mZ) - (b.mZ - a.mZ) * (cell.mX + 0.5 - a.mX);
        halves[side < 0 ? 1 : 0].mGround.mCells.push_back(cell);
    }
    for (BakedNode& half : halves) {
        const Outline outline = outlineOf(half.mCorners);
        const auto [low, high] = rangeOf(outline, &GridPoint::mY);
        half.mGround.mLowest = low;
        half.mGround.mHighest = high;
        for (const GridPoint& cell : half.mGround.mCells) {
            half.mGround.mLowest = std::min(half.mGround.mLowest, cell.mY);
            half.mGround.mHighest = std::max(half.mGround.mHighest, cell.mY);
        }
    }
    mNodes[node] = std::move(halves[0]);
    mNodes.push_back(std::move(halves[1]));
    own(node);
    own(mNodes.size() - 1);
    return mNodes.size() - 1;
}

std::vector<std::size_t> NodeRings::cornersOfBoth(std::size_t node, std::size_t other) const {
    const std::vector<std::size_t>& corners = mNodes[node].mCorners;
    const std::size_t count = corners.size();
    const auto isShared = [&](std::size_t i) { return neighbourOf(node, i % count) == other; };
    std::size_t end = 0; // the first border after those that are shared
    std::size_t runs = 0;
    for (std::size_t i = 0; i < count; ++i)
        if (isShared(i + count - 1) && !isShared(i)) {
            end = i;
            ++runs;
        }
    if (runs != 1)
        return {};
    std::vector<std::size_t> both;
    std::size_t i = end;
    for (; !isShared(i); ++i)
        both.push_back(corners[i % count]);
    const std::size_t begin = corners[i % count];
    const std::vector<std::size_t>& others = mNodes[other].mCorners;
    const auto start =
        static_cast<std::size_t>(std::find(others.begin(), others.end(), begin) - others.begin());
    for (std::size_t k = start; others[k % others.size()] != corners[end]; ++k) {
        both.push_back(others[k % others.size()]);
        if (both.size() > count + others.size())
            return {};
    }
    return both;
}

std::vector<GridPoint> NodeRings::cellsOf(std::size_t node) const {
    const Ground& ground = mNodes[node].mGround;
    std::vector<GridPoint> cells = ground.mCells;
    if (cells.empty())
        forEachCell(outlineOf(node), [&](int x, int z) {
            cells.push_back({x, ground.mLowest, z});
        });
    return cells;
}

Ground NodeRings::groundOfBoth(std::size_t node, std::size_t other) const {
    const Ground& a = mNodes[node].mGround;
    const Ground& b = mNodes[other].mGround;
    Ground both{std::min(a.mLowest, b.mLowest),
                std::max(a.mHighest, b.mHighest),
                a.mHasFloors || b.mHasFloors,
                {}};
    if (!a.mCells.empty() || !b.mCells.empty() || a.mLowest != b.mLowest) {
        both.mCells = cellsOf(node);
        const std::vector<GridPoint> more = cellsOf(other);
        both.mCells.insert(both.mCells.end(), more.begin(), more.end());
    }
    return both;
}

void NodeRings::join(std::size_t node, std::size_t other, std::vector<std::size_t> corners) {
    Ground ground = groundOfBoth(node, other);
    disown(node);
    disown(other);
    mNodes[node].mCorners = std::move(corners);
    mNodes[node].mGround = std::move(ground);
    mNodes[other].mCorners.clear();
    mNodes[other].mGround.mCells.clear();
    own(node);
}

/// Whether a vertex lies on a straight border, evenly between its ends, of one node or of two that
/// both have it between the same two others.
bool NodeRings::isNeedless(std::size_t vertex, const std::vector<std::size_t>& nodes) const {
    std::size_t ends[2][2] = {};
    if (nodes.size() > 2)
        return false;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const std::vector<std::size_t>& corners = mNodes[nodes[i]].mCorners;
        const auto place = static_cast<std::size_t>(
            std::find(corners.begin(), corners.end(), vertex) - corners.begin());
        ends[i][0] = cornerOf(nodes[i], place + corners.size() - 1);
        ends[i][1] = cornerOf(nodes[i], place + 1);
        if (corners.size() == 3)
            return false;
    }
    const auto [from, to] = ends[0];
    if (nodes.size() == 2 ? ends[1][0] != to || ends[1][1] != from
                          : ownerOf(vertex, from) != none || ownerOf(to, vertex) != none)
        return false;
    const GridPoint& a = mVertices[from];
    const GridPoint& b = mVertices[vertex];
    const GridPoint& c = mVertices[to];
    const double whole = std::hypot(c.mX - a.mX, c.mZ - a.mZ);
    const double part = std::hypot(b.mX - a.mX, b.mZ - a.mZ) / whole;
    return turnAt(a, b, c) == 0 && std::abs(a.mY + part * (c.mY - a.mY) - b.mY) <= 0.5;
}

void NodeRings::dropNeedlessVertices() {
    std::vector<std::vector<std::size_t>> nodesAt(mVertices.size());
    for (std::size_t node = 0; node < mNodes.size(); ++node)
        for (const std::size_t corner : mNodes[node].mCorners)
            nodesAt[corner].push_back(node);
    for (std::size_t vertex = 0; vertex < mVertices.size(); ++vertex) {
        if (nodesAt[vertex].empty() || !isNeedless(vertex, nodesAt[vertex]))
            continue;
        for (const std::size_t node : nodesAt[vertex]) {
            disown(node);
            std::erase(mNodes[node].mCorners, vertex);
            own(node);
        }
    }
}

void NodeRings::finish() {
    std::vector<std::int32_t> newIds(mNodes.size(), -1);
    std::int32_t count = 0;
    for (std::size_t node = 0; node < mNodes.size(); ++node)
        if (!mNodes[node].mCorners.empty())
            newIds[node] = count++;
    for (std::size_t node = 0; node < mNodes.size(); ++node) {
        std::vector<std::int32_t>& neighbours = mNodes[node].mNeighbours;
        neighbours.assign(mNodes[node].mCorners.size(), -1);
        for (std::size_t i = 0; i < neighbours.size(); ++i)
            if (const std::size_t other = neighbourOf(node, i); other != none)
                neighbours[i] = newIds[other];
    }
    std::erase_if(mNodes, [](const BakedNode& node) { return node.mCorners.empty(); });
}

} // namespace ZUNO::Tools
