#include "tools/zunobake/bakedmesh.h"

#include "tools/zunobake/nodeshapes.h"
#include "tools/zunobake/outline.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace ZUNO::Tools {

namespace {

std::uint64_t placeOf(int x, int z) {
    return std::uint64_t{static_cast<std::uint32_t>(x)} << 32U | static_cast<std::uint32_t>(z);
}

/// The vertices on the lines between tiles, in their order along each.
class TileLines {
public:
    /// A vertex lies on a border when it is at most `tolerance` above or below it.
    TileLines(const std::vector<GridPoint>& vertices, int tileSize, double tolerance)
        : mVertices(vertices), mTileSize(tileSize), mTolerance(tolerance) {
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            if (vertices[i].mX % tileSize == 0)
                mAlongZ[vertices[i].mX].emplace_back(vertices[i].mZ, i);
            if (vertices[i].mZ % tileSize == 0)
                mAlongX[vertices[i].mZ].emplace_back(vertices[i].mX, i);
        }
        for (Lines* const lines : {&mAlongX, &mAlongZ})
            for (auto& [place, line] : *lines)
                std::sort(line.begin(), line.end());
    }

    /// Appends the vertices that lie on the border from one to another, if it runs along a line.
    void appendBetween(std::size_t from, std::size_t to, std::vector<std::size_t>& out) const {
        const GridPoint& a = mVertices[from];
        const GridPoint& b = mVertices[to];
        if (a.mZ == b.mZ && a.mZ % mTileSize == 0)
            append(mAlongX.at(a.mZ), {a.mX, a.mY}, {b.mX, b.mY}, out);
        else if (a.mX == b.mX && a.mX % mTileSize == 0)
            append(mAlongZ.at(a.mX), {a.mZ, a.mY}, {b.mZ, b.mY}, out);
    }

private:
    using Line = std::vector<std::pair<int, std::size_t>>; ///< places along it, and the vertices
    using Lines = std::map<int, Line>;
    struct End {
        int mPlace;
        int mHeight;
    };

    void append(const Line& line, const End& begin, const End& end,
                std::vector<std::size_t>& out) const {
        std::map<int, std::pair<double, std::size_t>> nearest; // of each place on the line
        const auto first =
            std::lower_bound(line.begin(), line.end(),
                             std::pair(std::min(begin.mPlace, end.mPlace) + 1, std::size_t{0}));
        const int last = std::max(begin.mPlace, end.mPlace);
        for (auto stop = first; stop != line.end() && stop->first < last; ++stop) {
            const double part = double(stop->first - begin.mPlace) / (end.mPlace - begin.mPlace);
            const double height = begin.mHeight + part * (end.mHeight - begin.mHeight);
            const std::pair candidate(std::abs(mVertices[stop->second].mY - height), stop->second);
            const auto [known, isNew] = nearest.try_emplace(stop->first, candidate);
            if (!isNew)
                known->second = std::min(known->second, candidate);
        }
        const auto oldSize = static_cast<std::ptrdiff_t>(out.size());
        for (const auto& [place, candidate] : nearest)
            if (candidate.first <= mTolerance)
                out.push_back(candidate.second);
        if (begin.mPlace > end.mPlace)
            std::reverse(out.begin() + oldSize, out.end());
    }

    const std::vector<GridPoint>& mVertices;
    int mTileSize;
    double mTolerance;
    Lines mAlongX; ///< by z
    Lines mAlongZ; ///< by x
};

} // namespace

BakedMesh::BakedMesh(const std::vector<TilePolygon>& polygons, const BakeSettings& settings,
                     const CellSettings& cells)
    : mSettings(settings), mCells(cells) {
    for (const TilePolygon& polygon : polygons)
        addPolygon(polygon);
    splitBordersOfTiles();
    shapeNodes();
    dropSmallIslands();
    lowerCorners();
    for (BakedNode& node : mNodes)
        turnToLowestCorner(node);
    sortFromHighToLow();
}

/// Corners at the same place are one, when they are no more than a step apart.
std::size_t BakedMesh::vertexAt(const GridPoint& point) {
    std::vector<std::size_t>& here = mVerticesAt[placeOf(point.mX, point.mZ)];
    for (const std::size_t vertex : here)
        if (std::abs(heightOf(vertex) - point.mY) <= std::max(mCells.mClimb, 1)) {
            mVertices[vertex].mY = std::min(mVertices[vertex].mY, point.mY);
            return vertex;
        }
    here.push_back(mVertices.size());
    mVertices.push_back(point);
    return here.back();
}

/// Where contours cross each other, Recast makes polygons with a dent: these come in triangles.
void BakedMesh::addPolygon(const TilePolygon& polygon) {
    BakedNode node{{}, {}, polygon.mGround, polygon.mSurface, polygon.mAgent};
    for (const GridPoint& corner : polygon.mCorners)
        node.mCorners.push_back(vertexAt(corner));
    Outline outline = polygon.mCorners;
    if (areaOf(outline) < 0) {
        std::reverse(outline.begin(), outline.end());
        std::reverse(node.mCorners.begin(), node.mCorners.end());
    }
    if (!hasDent(outline)) {
        addNode(std::move(node));
        return;
    }
    std::vector<float> positions;
    for (const GridPoint& corner : outline)
        for (const int coordinate : {corner.mX, 0, corner.mZ})
            positions.push_back(static_cast<float>(coordinate));
    const std::vector<std::size_t> corners = std::move(node.mCorners);
    const std::vector<int> triangles = triangulate(positions);
    for (std::size_t i = 0; i < triangles.size(); i += 3) {
        node.mCorners.clear();
        for (std::size_t k = 0; k < 3; ++k)
            node.mCorners.push_back(corners[static_cast<std::size_t>(triangles[i + k])]);
        addNode(node);
    }
}

/// Adds a node that runs counter-clockwise; what has no area is none.
void BakedMesh::addNode(BakedNode node) {
    if (cellsOf(node) > 0)
        mNodes.push_back(std::move(node));
}

/// Along the lines between tiles each side has its own corners: each border there gets those of
/// the other side that lie on it, so that the pieces match.
void BakedMesh::splitBordersOfTiles() {
    const TileLines lines(mVertices, mSettings.mTileSize, mCells.mAgentHeights.front() / 2.0);
    for (BakedNode& node : mNodes) {
        std::vector<std::size_t> corners;
        for (std::size_t i = 0; i < node.mCorners.size(); ++i) {
            corners.push_back(node.mCorners[i]);
            lines.appendBetween(node.mCorners[i], node.mCorners[(i + 1) % node.mCorners.size()],
                                corners);
        }
        node.mCorners = std::move(corners);
    }
}

void BakedMesh::shapeNodes() {
    NodeRings rings(mVertices, mNodes);
    Tools::shapeNodes(rings, mCells);
    rings.dropNeedlessVertices();
    rings.finish();
}

double BakedMesh::cellsOf(const BakedNode& node) const {
    double area = 0;
    for (std::size_t i = 0; i < node.mCorners.size(); ++i) {
        const GridPoint& a = mVertices[node.mCorners[i]];
        const GridPoint& b = mVertices[node.mCorners[(i + 1) % node.mCorners.size()]];
        area += static_cast<double>(std::int64_t{a.mX} * b.mZ - std::int64_t{b.mX} * a.mZ);
    }
    return area / 2;
}

/// Keeps the nodes of these ids, in this order, and gives them new ids. What is left out must be
/// nobody's neighbour that stays.
void BakedMesh::arrange(const std::vector<std::size_t>& order) {
    std::vector<std::int32_t> newIds(mNodes.size());
    std::vector<BakedNode> arranged;
    for (const std::size_t id : order) {
        newIds[id] = static_cast<std::int32_t>(arranged.size());
        arranged.push_back(std::move(mNodes[id]));
    }
    for (BakedNode& node : arranged)
        for (std::int32_t& neighbour : node.mNeighbours)
            if (neighbour >= 0)
                neighbour = newIds[static_cast<std::size_t>(neighbour)];
    mNodes = std::move(arranged);
}

/// Recast does the same inside a tile, but keeps what reaches its border.
void BakedMesh::dropSmallIslands() {
    std::vector<bool> isSeen(mNodes.size());
    std::vector<std::size_t> kept;
    for (std::size_t first = 0; first < mNodes.size(); ++first) {
        if (isSeen[first])
            continue;
        std::vector<std::size_t> island{first};
        isSeen[first] = true;
        double area = 0;
        for (std::size_t i = 0; i < island.size(); ++i) {
            area += cellsOf(mNodes[island[i]]);
            for (const std::int32_t neighbour : mNodes[island[i]].mNeighbours) {
                const auto id = static_cast<std::size_t>(neighbour);
                if (neighbour >= 0 && !isSeen[id]) {
                    isSeen[id] = true;
                    island.push_back(id);
                }
            }
        }
        if (area < mSettings.mMinRegion) {
            ++mIslandsLeftOut;
            continue;
        }
        std::sort(island.begin(), island.end());
        kept.insert(kept.end(), island.begin(), island.end());
    }
    arrange(kept);
}

std::ptrdiff_t BakedMesh::lowestCornerOf(const BakedNode& node) const {
    const auto isLower = [&](std::size_t a, std::size_t b) {
        return Tools::isLower(mVertices[a], mVertices[b]);
    };
    return std::min_element(node.mCorners.begin(), node.mCorners.end(), isLower) -
           node.mCorners.begin();
}

/// Ground that dips below a node's corners is still on the node when its lowest corner lies near
/// enough above.
void BakedMesh::lowerCorners() {
    for (const BakedNode& node : mNodes) {
        int& height = mVertices[node.mCorners[static_cast<std::size_t>(lowestCornerOf(node))]].mY;
        height = std::min(height, node.mGround.mLowest + mCells.mReachBelow);
    }
}

void BakedMesh::turnToLowestCorner(BakedNode& node) const {
    const std::ptrdiff_t turn = lowestCornerOf(node);
    std::rotate(node.mNeighbours.begin(), node.mNeighbours.begin() + turn, node.mNeighbours.end());
    std::rotate(node.mCorners.begin(), node.mCorners.begin() + turn, node.mCorners.end());
}

/// Of two nodes that hold a point the one with the lower id is found, and a node's class admits an
/// agent above its highest point: where floors lie above each other the upper one must come first.
void BakedMesh::sortFromHighToLow() {
    std::vector<std::size_t> order(mNodes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return heightOf(mNodes[a].mCorners[0]) > heightOf(mNodes[b].mCorners[0]);
    });
    arrange(order);
}

/// How many steps of the cube size the ground of a node, or a corner, rises above its first corner.
int BakedMesh::classStepsOf(const BakedNode& node) const {
    int highest = node.mGround.mHighest;
    for (const std::size_t vertex : node.mCorners)
        highest = std::max(highest, heightOf(vertex));
    return static_cast<int>(std::ceil((highest - heightOf(node.mCorners[0])) *
                                      mSettings.mCellHeight / mSettings.mCellSize));
}

void BakedMesh::fill(NavMesh::NavMeshContainer& mesh, const TileGrid& grid, const Scene& scene,
                     UpAxis up) const {
    using Point = NavMesh::NavMeshContainer::Point3;
    const bool isZUp = up == UpAxis::Z;
    mesh.mNormal = isZUp ? Point(0, 0, 1) : Point(0, 1, 0);
    mesh.mXAxis = {1, 0, 0};
    mesh.mYAxis = isZUp ? Point(0, 1, 0) : Point(0, 0, 1);
    mesh.mCubeSize = static_cast<float>(mSettings.mCellSize);

    // a class for each agent and each rise that occurs, in this order
    std::map<std::pair<std::size_t, int>, std::int32_t> classes;
    for (std::size_t agent = 0; agent < mSettings.mAgents.size(); ++agent)
        classes[{agent, 0}];
    for (const BakedNode& node : mNodes)
        classes[{node.mAgent, classStepsOf(node)}];
    for (auto& [kind, number] : classes) {
        number = static_cast<std::int32_t>(mesh.mHeights.size());
        // a cell height more: the ground lies up to half of one above what it was rounded to
        mesh.mHeights.push_back(
            static_cast<float>(static_cast<double>(mSettings.mAgents[kind.first].mHeight) +
                               mSettings.mCellHeight + kind.second * mSettings.mCellSize));
    }
    for (std::size_t agent = 0; agent < mSettings.mAgents.size(); ++agent) {
        const Agent& from = mSettings.mAgents[agent];
        auto& record = mesh.mCharacters.emplace_back();
        record.mName = from.mName.c_str();
        record.mUserID = static_cast<std::int64_t>(agent);
        record.mPhysicalHeight = from.mHeight;
        record.mJumpHeight = from.mJump;
        record.mFallHeight = from.mFall;
        record.mMaxHeightClassID = static_cast<std::uint32_t>(classes[{agent, 0}]);
    }
    for (std::size_t i = 0; i < scene.mSurfaceNames.size(); ++i) {
        auto& surface = mesh.mSurfaceTypes.emplace_back();
        surface.mName = scene.mSurfaceNames[i].c_str();
        surface.mID = static_cast<std::uint16_t>(i);
    }

    std::vector<std::int32_t> vertexIds(mVertices.size(), -1);
    for (const BakedNode& node : mNodes) {
        auto& filled = mesh.mNodes.emplace_back(mesh.getAllocator());
        filled.mHeightClass = classes[{node.mAgent, classStepsOf(node)}];
        filled.mSurfaceTypeID = node.mSurface;
        for (const std::size_t vertex : node.mCorners) {
            if (vertexIds[vertex] < 0) {
                vertexIds[vertex] = static_cast<std::int32_t>(mesh.mVertices.size());
                const GridPoint& point = mVertices[vertex];
                const float x = grid.positionOf(point.mX, 0);
                const float y = grid.positionOf(point.mY, 1);
                const float z = grid.positionOf(point.mZ, 2);
                mesh.mVertices.push_back(isZUp ? Point(x, 0.0F - z, y) : Point(x, y, z));
            }
            filled.mPolygon.push_back(static_cast<std::uint32_t>(vertexIds[vertex]));
        }
        filled.mNeighbours.assign(node.mNeighbours.begin(), node.mNeighbours.end());
        if (isZUp) { // the plane is seen from its other side
            std::reverse(filled.mPolygon.begin() + 1, filled.mPolygon.end());
            std::reverse(filled.mNeighbours.begin(), filled.mNeighbours.end());
        }
    }
}

} // namespace ZUNO::Tools
