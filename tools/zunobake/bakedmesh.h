#pragma once

#include "tools/zunobake/tilebaker.h"

#include "navmesh/navmeshcontainer.h"

#include <unordered_map>

namespace ZUNO::Tools {

/// A mesh in the making, in cells of the grid: the polygons of all tiles, joined.
class BakedMesh {
public:
    struct Node {
        std::vector<std::size_t> mCorners;     ///< counter-clockwise along x and z, lowest first
        std::vector<std::int32_t> mNeighbours; ///< beyond the border from corner i to i + 1, or -1
        int mLowestGround;
        int mHighestGround;
        std::uint16_t mSurface;
        std::uint16_t mAgent;
    };

    /// Joins polygons at their common borders, also where those of one tile meet several of the
    /// next. Islands of fewer cells than the settings ask for are left out.
    BakedMesh(const std::vector<TilePolygon>& polygons, const BakeSettings& settings,
              const CellSettings& cells);

    const std::vector<Node>& nodes() const { return mNodes; }
    std::size_t islandsLeftOut() const { return mIslandsLeftOut; }

    /// Fills an empty mesh. Its up axis is that of the scene's files.
    void fill(NavMesh::NavMeshContainer& mesh, const TileGrid& grid, const Scene& scene,
              UpAxis up) const;

private:
    std::size_t vertexAt(const GridPoint& point);
    void addPolygon(const TilePolygon& polygon);
    void splitBordersOfTiles();
    void connect();
    void arrange(const std::vector<std::size_t>& order);
    void dropSmallIslands();
    std::ptrdiff_t lowestCornerOf(const Node& node) const;
    void lowerCorners();
    void turnToLowestCorner(Node& node) const;
    void sortFromHighToLow();
    int heightOf(std::size_t vertex) const { return mVertices[vertex].mY; }
    double cellsOf(const Node& node) const;
    int classStepsOf(const Node& node) const;

    const BakeSettings& mSettings;
    const CellSettings& mCells;
    std::vector<GridPoint> mVertices;
    std::unordered_map<std::uint64_t, std::vector<std::size_t>> mVerticesAt;
    std::vector<Node> mNodes;
    std::size_t mIslandsLeftOut = 0;
};

} // namespace ZUNO::Tools
