#pragma once

#include "tools/zunobake/areatable.h"
#include "tools/zunobake/bakesettings.h"
#include "tools/zunobake/recastfield.h"
#include "tools/zunobake/scene.h"
#include "tools/zunobake/tilegrid.h"

namespace ZUNO::Tools {

/// One tile on its way through Recast, stage by stage in this order.
class TileWork {
public:
    TileWork(const Scene& scene, const BakeSettings& settings, const CellSettings& cells)
        : mScene(scene), mSettings(settings), mCells(cells) {}

    /// Makes solid spans of the faces; what can't be walked on for its slope is told apart.
    void rasterise(const std::vector<int>& faces, const Box& bounds, int columns, int rows);

    /// Leaves of the spans those on which the lowest agent can stand, away from what is in its way.
    void findWalkable();

    /// Tells ground apart by what it is made of, who fits, and its level.
    void divide();

    /// Null when nothing is walkable. `border` cells lie around the tile.
    PolyMesh makePolygons(int border);

    /// The polygons with what their ground is, in cells from the tile's corner.
    std::vector<TilePolygon> listPolygons(const rcPolyMesh& mesh) const;

private:
    void require(bool holds, const char* stage) const { mContext.require(holds, stage); }
    /// For each span the tallest agent that fits there, the radius around it included.
    void findAgents();

    const Scene& mScene;
    const BakeSettings& mSettings;
    const CellSettings& mCells;
    Context mContext;
    AreaTable mMaterials; ///< areas as the faces have them
    AreaTable mKinds;     ///< areas of the divided ground
    Heightfield mSolid;
    CompactHeightfield mField;
    std::vector<std::uint16_t> mAgents; ///< of each span
};

} // namespace ZUNO::Tools
