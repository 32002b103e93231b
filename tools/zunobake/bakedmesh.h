#pragma once

#include "tools/zunobake/noderings.h"
#include "tools/zunobake/tilebaker.h"

#include "navmesh/navmeshcontainer.h"

#include <unordered_map>

namespace ZUNO::Tools {

/// A mesh in the making, in cells of the grid: the polygons of all tiles, joined.
class BakedMesh {
public:
    /// Joins polygons at their common borders, also where those of one tile meet several of the
    /// next, and makes nodes of them: small ones where the ground is uneven, large ones elsewhere.
    /// Each begins at its lowest corner. Islands of fewer cells than the settings ask for are left
    /// out.
    BakedMesh(const std::vector<TilePolygon>& polygons, const BakeSettings& settings,
              const CellSettings& cells);

    const std::vector<BakedNode>& nodes() const { return mNodes; }
    std::size_t islandsLeftOut() const { return mIslandsLeftOut; }

    /// Fills an empty mesh. Its up axis is that of the scene's files.
    void fill(NavMesh::NavMeshContainer& mesh, const TileGrid& grid, const Scene& scene,
              UpAxis up) const;

private:
    std::size_t vertexAt(const GridPoint& point);
    void addPolygon(const TilePolygon& polygon);
    void addNode(BakedNode node);
    void splitBordersOfTiles();
    void shapeNodes();
    void arrange(const std::vector<std::size_t>& order);
    void dropSmallIslands();
    std::ptrdiff_t lowestCornerOf(const BakedNode& node) const;
    void lowerCorners();
    void turnToLowestCorner(BakedNode& node) const;
    void sortFromHighToLow();
    int heightOf(std::size_t vertex) const { return mVertices[vertex].mY; }
    double cellsOf(const BakedNode& node) const;
    int classStepsOf(const BakedNode& node) const;

    const BakeSettings& mSettings;
    const CellSettings& mCells;
    std::vector<GridPoint> mVertices;
    std::unordered_map<std::uint64_t, std::vector<std::size_t>> mVerticesAt;
    std::vector<BakedNode> mNodes;
    std::size_t mIslandsLeftOut = 0;
};

} // namespace ZUNO::Tools
