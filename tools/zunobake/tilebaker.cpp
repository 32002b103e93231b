#include "tools/zunobake/tilebaker.h"

#include "tools/zunobake/levels.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <recastnavigation/Recast.h>
#include <stdexcept>
#include <tuple>

namespace ZUNO::Tools {

namespace {

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};
using Heightfield = std::unique_ptr<rcHeightfield, Release<rcFreeHeightField>>;
using CompactHeightfield = std::unique_ptr<rcCompactHeightfield, Release<rcFreeCompactHeightfield>>;
using PolyMesh = std::unique_ptr<rcPolyMesh, TileBaker::Tile::Free>;
using ContourSet = std::unique_ptr<rcContourSet, Release<rcFreeContourSet>>;

/// What Recast says goes into the message of the failure.
class Context : public rcContext {
public:
    Context() : rcContext(false) { enableLog(true); }

    void require(bool holds, const char* stage) const {
        if (!holds)
            throw std::runtime_error(std::string("Recast failed at its ") + stage +
                                     (mText.empty() ? "" : ": " + mText));
    }

private:
    void doLog(const rcLogCategory category, const char* text, const int length) override {
        if (category == RC_LOG_ERROR)
            mText.assign(text, static_cast<std::size_t>(length));
    }

    std::string mText;
};

constexpr std::size_t unsignedOf(int number) {
    return static_cast<std::size_t>(number);
}

/// The areas of one tile: each stands for what the ground is made of, which agents fit, and one of
/// two parities of levels, and none of Recast's regions spans two of them.
class AreaTable {
public:
    struct Entry {
        std::uint16_t mSurface;
        std::uint16_t mAgent;
        bool mIsOddLevel;
        auto key() const { return std::make_tuple(mSurface, mAgent, mIsOddLevel); }
        bool operator<(const Entry& other) const { return key() < other.key(); }
    };

    unsigned char areaOf(const Entry& entry) {
        const auto [place, isNew] = mAreas.try_emplace(entry, mEntries.size());
        if (isNew) {
            if (mEntries.size() == RC_WALKABLE_AREA)
                throw std::runtime_error("a tile has more kinds of ground than Recast can tell "
                                         "apart: choose a smaller --tile, or --no-materials");
            mEntries.push_back(entry);
        }
        return static_cast<unsigned char>(place->second + 1);
    }
    const Entry& operator[](unsigned char area) const { return mEntries[area - 1U]; }

private:
    std::map<Entry, std::size_t> mAreas;
    std::vector<Entry> mEntries;
};

/// The spans of a cell, from the lowest to the highest.
struct SpanRange {
    unsigned int mFirst;
    unsigned int mEnd;
};
SpanRange spansOf(const rcCompactHeightfield& field, int x, int z) {
    const rcCompactCell cell = field.cells[x + z * field.width];
    const unsigned int first = cell.index;
    return {first, first + cell.count};
}

/// Calls `visit(x, z, index)` for every walkable span of a field.
template <typename Visitor>
void forEachSpan(const rcCompactHeightfield& field, Visitor visit) {
    for (int z = 0; z < field.height; ++z)
        for (int x = 0; x < field.width; ++x) {
            const auto [first, end] = spansOf(field, x, z);
            for (unsigned int i = first; i < end; ++i)
                if (field.areas[i] != RC_NULL_AREA)
                    visit(x, z, i);
        }
}

/// For each height whether its level is an odd one.
std::vector<bool> findLevels(const rcCompactHeightfield& field, const CellSettings& cells) {
    int lowest = std::numeric_limits<int>::max();
    int highest = 0;
    forEachSpan(field, [&](int, int, unsigned int i) {
        lowest = std::min<int>(lowest, field.spans[i].y);
        highest = std::max<int>(highest, field.spans[i].y);
    });
    if (lowest > highest)
        return {};
    std::vector<int> crossings(unsignedOf(highest - lowest) + 1);
    forEachSpan(field, [&](int x, int z, unsigned int i) {
        for (int side = 0; side < 4; ++side) {
            const int connection = rcGetCon(field.spans[i], side);
            if (connection == RC_NOT_CONNECTED)
                continue;
            const int other = x + rcGetDirOffsetX(side) + (z + rcGetDirOffsetY(side)) * field.width;
            const unsigned int neighbour =
                field.cells[other].index + static_cast<unsigned int>(connection);
            if (field.areas[neighbour] == RC_NULL_AREA)
                continue;
            for (int y = field.spans[i].y + 1; y <= field.spans[neighbour].y; ++y)
                ++crossings[unsignedOf(y - lowest)];
        }
    });
    const std::vector<int> levels = chooseLevels(crossings, cells.mClimb + 1, cells.mLevel);
    std::vector<bool> isOdd(unsignedOf(highest) + 1);
    std::size_t level = 0;
    for (int y = lowest; y <= highest; ++y) {
        while (level < levels.size() && y - lowest >= levels[level])
            ++level;
        isOdd[unsignedOf(y)] = level % 2 != 0;
    }
    return isOdd;
}

/// Whether the centre of a cell lies in a polygon of the mesh. Both are in cells.
bool holdsCentre(const std::vector<GridPoint>& polygon, int x, int z) {
    bool isInside = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const GridPoint& a = polygon[i];
        const GridPoint& b = polygon[j];
        const double centre = z + 0.5;
        if ((a.mZ > centre) != (b.mZ > centre) &&
            x + 0.5 < (b.mX - a.mX) * (centre - a.mZ) / (b.mZ - a.mZ) + a.mX)
            isInside = !isInside;
    }
    return isInside;
}

/// Looks at the ground in a polygon: the walkable spans that its corners' heights are nearest to.
void measureGround(const rcCompactHeightfield& field, int border, TilePolygon& polygon) {
    GridPoint low = polygon.mCorners[0];
    GridPoint high = low;
    int sum = 0;
    for (const GridPoint& corner : polygon.mCorners) {
        low = {std::min(low.mX, corner.mX), std::min(low.mY, corner.mY),
               std::min(low.mZ, corner.mZ)};
        high = {std::max(high.mX, corner.mX), std::max(high.mY, corner.mY),
                std::max(high.mZ, corner.mZ)};
        sum += corner.mY;
    }
    const int mean = sum / static_cast<int>(polygon.mCorners.size());
    polygon.mLowestGround = low.mY;
    polygon.mHighestGround = high.mY;
    for (int z = low.mZ; z < high.mZ; ++z)
        for (int x = low.mX; x < high.mX; ++x) {
            if (!holdsCentre(polygon.mCorners, x, z))
                continue;
            int nearest = std::numeric_limits<int>::max();
            const auto [first, end] = spansOf(field, x + border, z + border);
            for (unsigned int i = first; i < end; ++i)
                if (field.areas[i] != RC_NULL_AREA &&
                    std::abs(field.spans[i].y - mean) < std::abs(nearest - mean))
                    nearest = field.spans[i].y;
            if (nearest - high.mY > field.walkableHeight || low.mY - nearest > field.walkableHeight)
                continue;
            polygon.mLowestGround = std::min(polygon.mLowestGround, nearest);
            polygon.mHighestGround = std::max(polygon.mHighestGround, nearest);
        }
}

struct Bounds {
    float mLow[3];
    float mHigh[3];
};

/// One tile on its way through Recast, stage by stage.
class TileWork {
public:
    TileWork(const Scene& scene, const BakeSettings& settings, const CellSettings& cells)
        : mScene(scene), mSettings(settings), mCells(cells) {}

    /// Makes solid spans of the faces; what can't be walked on for its slope is told apart.
    void rasterise(const std::vector<int>& faces, const Bounds& bounds, int columns, int rows) {
        mSolid.reset(rcAllocHeightfield());
        require(rcCreateHeightfield(&mContext, *mSolid, columns, rows, bounds.mLow, bounds.mHigh,
                                    static_cast<float>(mSettings.mCellSize),
                                    static_cast<float>(mSettings.mCellHeight)),
                "height field");
        std::vector<int> triangles;
        for (const int face : faces) {
            const auto first = mScene.mTriangles.begin() + std::ptrdiff_t{face} * 3;
            triangles.insert(triangles.end(), first, first + 3);
        }
        const float* const vertices = mScene.mVertices.data();
        const int vertexCount = static_cast<int>(mScene.mVertices.size() / 3);
        const int count = static_cast<int>(faces.size());
        std::vector<unsigned char> areas(faces.size());
        rcMarkWalkableTriangles(&mContext, mSettings.mSlope, vertices, vertexCount,
                                triangles.data(), count, areas.data());
        for (std::size_t i = 0; i < areas.size(); ++i)
            if (areas[i] != RC_NULL_AREA)
                areas[i] = mMaterials.areaOf({mScene.mSurfaces[unsignedOf(faces[i])], 0, false});
        require(rcRasterizeTriangles(&mContext, vertices, vertexCount, triangles.data(),
                                     areas.data(), count, *mSolid, mCells.mClimb),
                "rasterising");
    }

    /// Leaves of the spans those on which the lowest agent can stand, away from what is in its way.
    void findWalkable() {
        const int height = mCells.mAgentHeights.front();
        rcFilterLowHangingWalkableObstacles(&mContext, mCells.mClimb, *mSolid);
        rcFilterLedgeSpans(&mContext, height, mCells.mClimb, *mSolid);
        rcFilterWalkableLowHeightSpans(&mContext, height, *mSolid);
        mField.reset(rcAllocCompactHeightfield());
        require(rcBuildCompactHeightfield(&mContext, height, mCells.mClimb, *mSolid, *mField),
                "compact height field");
        mSolid.reset();
        findAgents();
        require(rcErodeWalkableArea(&mContext, mCells.mRadius, *mField), "erosion");
    }

    /// Tells ground apart by what it is made of, who fits, and its level.
    void divide() {
        const std::vector<bool> isOddLevel = findLevels(*mField, mCells);
        forEachSpan(*mField, [&](int, int, unsigned int i) {
            mField->areas[i] = mKinds.areaOf({mMaterials[mField->areas[i]].mSurface, mAgents[i],
                                              isOddLevel[mField->spans[i].y]});
        });
    }

    /// Null when nothing is walkable.
    PolyMesh makePolygons(int border) {
        require(rcBuildDistanceField(&mContext, *mField) &&
                    rcBuildRegions(&mContext, *mField, border, mSettings.mMinRegion,
                                   mSettings.mMergeRegion),
                "regions");
        const ContourSet contours(rcAllocContourSet());
        require(rcBuildContours(&mContext, *mField, mSettings.mMaxError, 0, *contours), "contours");
        if (contours->nconts == 0)
            return nullptr;
        PolyMesh mesh(rcAllocPolyMesh());
        require(rcBuildPolyMesh(&mContext, *contours, mSettings.mCorners, *mesh), "polygons");
        return mesh;
    }

    /// The polygons with what their ground is, in cells from the tile's corner.
    std::vector<TilePolygon> listPolygons(const rcPolyMesh& mesh) const {
        std::vector<TilePolygon> polygons;
        for (int id = 0; id < mesh.npolys; ++id) {
            const AreaTable::Entry& kind = mKinds[mesh.areas[id]];
            TilePolygon polygon{{}, 0, 0, kind.mSurface, kind.mAgent};
            const unsigned short* const corners = mesh.polys + std::ptrdiff_t{id} * mesh.nvp * 2;
            for (int i = 0; i < mesh.nvp && corners[i] != RC_MESH_NULL_IDX; ++i) {
                const unsigned short* const vertex = mesh.verts + std::ptrdiff_t{corners[i]} * 3;
                polygon.mCorners.push_back({vertex[0], vertex[1], vertex[2]});
            }
            measureGround(*mField, mesh.borderSize, polygon);
            polygons.push_back(std::move(polygon));
        }
        return polygons;
    }

private:
    void require(bool holds, const char* stage) const { mContext.require(holds, stage); }

    /// For each span the tallest agent that fits there, the radius around it included.
    void findAgents() {
        const auto count = unsignedOf(mField->spanCount);
        mAgents.assign(count, 0);
        const std::vector<unsigned char> areas(mField->areas, mField->areas + count);
        for (std::size_t agent = 1; agent < mCells.mAgentHeights.size(); ++agent) {
            for (std::size_t i = 0; i < count; ++i)
                if (static_cast<int>(mField->spans[i].h) < mCells.mAgentHeights[agent])
                    mField->areas[i] = RC_NULL_AREA;
            require(rcErodeWalkableArea(&mContext, mCells.mRadius, *mField), "erosion");
            for (std::size_t i = 0; i < count; ++i)
                if (mField->areas[i] != RC_NULL_AREA)
                    mAgents[i] = static_cast<std::uint16_t>(agent);
            std::ranges::copy(areas, mField->areas);
        }
    }

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

} // namespace

TileBaker::Tile::Tile() = default;
TileBaker::Tile::~Tile() = default;
TileBaker::Tile::Tile(Tile&&) noexcept = default;

void TileBaker::Tile::Free::operator()(rcPolyMesh* mesh) const {
    rcFreePolyMesh(mesh);
}

TileGrid::TileGrid(const Scene& scene, const BakeSettings& settings)
    : mSides{settings.mCellSize, settings.mCellHeight, settings.mCellSize} {
    if (scene.triangleCount() == 0)
        throw std::runtime_error("the scene has no faces");
    Bounds bounds{};
    const auto vertex = [&](int index) { return &scene.mVertices[unsignedOf(index) * 3]; };
    std::copy_n(vertex(scene.mTriangles[0]), 3, bounds.mLow);
    std::copy_n(vertex(scene.mTriangles[0]), 3, bounds.mHigh);
    for (const int index : scene.mTriangles) {
        rcVmin(bounds.mLow, vertex(index));
        rcVmax(bounds.mHigh, vertex(index));
    }
    std::array<double, 3> counts{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double first = std::floor(bounds.mLow[axis] / mSides[axis]);
        counts[axis] = std::max(std::ceil(bounds.mHigh[axis] / mSides[axis]) - first, 1.0);
        constexpr double farthest = 1e15;
        if (!(std::abs(first) < farthest))
            throw std::runtime_error("the scene lies too far from its zero for such small cells");
        mOrigin[axis] = static_cast<std::int64_t>(first);
    }
    const auto number = [](double value) {
        return value < 1e15 ? std::to_string(static_cast<std::int64_t>(value)) : "over 1e15";
    };
    if (counts[0] * counts[2] > static_cast<double>(settings.mMaxCells))
        throw std::runtime_error("the scene is " + number(counts[0]) + " x " + number(counts[2]) +
                                 " cells, and at most " + std::to_string(settings.mMaxCells) +
                                 " altogether are taken: choose a larger --cell-size, or raise "
                                 "--max-cells");
    if (counts[1] > RC_SPAN_MAX_HEIGHT)
        throw std::runtime_error("the scene is " + number(counts[1]) + " cells high, and at most " +
                                 std::to_string(RC_SPAN_MAX_HEIGHT) +
                                 " are taken: choose a larger --cell-height");
    mColumns = static_cast<int>(counts[0]);
    mRows = static_cast<int>(counts[2]);
    mTileColumns = (mColumns - 1) / settings.mTileSize + 1;
    mTileRows = (mRows - 1) / settings.mTileSize + 1;
}

TileBaker::TileBaker(const Scene& scene, const BakeSettings& settings)
    : mScene(scene), mSettings(settings), mCells(settings), mGrid(scene, settings),
      mBorder(mCells.mRadius + 3), mTrianglesOfTiles(mGrid.tileCount()) {
    const double side = mSettings.mCellSize;
    const auto tileOf = [&](double coordinate, std::size_t axis, int count) {
        const double cell =
            std::floor(coordinate / side) - static_cast<double>(mGrid.mOrigin[axis]);
        return std::clamp(static_cast<int>(cell / mSettings.mTileSize), 0, count - 1);
    };
    const double margin = (mBorder + 1) * side;
    for (int triangle = 0; triangle < static_cast<int>(scene.triangleCount()); ++triangle) {
        Bounds bounds{};
        for (std::size_t i = 0; i < 3; ++i) {
            const float* const corner =
                &scene.mVertices[unsignedOf(scene.mTriangles[unsignedOf(triangle) * 3 + i]) * 3];
            if (i == 0) {
                std::copy_n(corner, 3, bounds.mLow);
                std::copy_n(corner, 3, bounds.mHigh);
            }
            rcVmin(bounds.mLow, corner);
            rcVmax(bounds.mHigh, corner);
        }
        const int lastColumn = tileOf(bounds.mHigh[0] + margin, 0, mGrid.mTileColumns);
        const int lastRow = tileOf(bounds.mHigh[2] + margin, 2, mGrid.mTileRows);
        for (int row = tileOf(bounds.mLow[2] - margin, 2, mGrid.mTileRows); row <= lastRow; ++row)
            for (int column = tileOf(bounds.mLow[0] - margin, 0, mGrid.mTileColumns);
                 column <= lastColumn; ++column)
                mTrianglesOfTiles[unsignedOf(column + row * mGrid.mTileColumns)].push_back(
                    triangle);
    }
}

TileBaker::~TileBaker() = default;

TileBaker::Tile TileBaker::bake(std::size_t tile) const {
    Tile result;
    if (mTrianglesOfTiles[tile].empty())
        return result;
    const int column = static_cast<int>(tile) % mGrid.mTileColumns * mSettings.mTileSize;
    const int row = static_cast<int>(tile) / mGrid.mTileColumns * mSettings.mTileSize;
    const int columns = std::min(mSettings.mTileSize, mGrid.mColumns - column);
    const int rows = std::min(mSettings.mTileSize, mGrid.mRows - row);
    // Recast counts heights up to the next cell: from half a cell lower, so that they are rounded,
    // and lie one cell too high when they are counted from the grid's own
    constexpr int countedHigher = 1;
    const float bottom = mGrid.positionOf(0, 1) - static_cast<float>(mSettings.mCellHeight) / 2;
    const Bounds bounds = {
        {mGrid.positionOf(column - mBorder, 0), bottom, mGrid.positionOf(row - mBorder, 2)},
        {mGrid.positionOf(column + columns + mBorder, 0), mGrid.positionOf(RC_SPAN_MAX_HEIGHT, 1),
         mGrid.positionOf(row + rows + mBorder, 2)}};

    TileWork work(mScene, mSettings, mCells);
    work.rasterise(mTrianglesOfTiles[tile], bounds, columns + 2 * mBorder, rows + 2 * mBorder);
    work.findWalkable();
    work.divide();
    result.mMesh = work.makePolygons(mBorder);
    if (result.mMesh == nullptr)
        return result;
    result.mPolygons = work.listPolygons(*result.mMesh);
    for (TilePolygon& polygon : result.mPolygons) {
        for (GridPoint& corner : polygon.mCorners)
            corner = {corner.mX + column, corner.mY - countedHigher, corner.mZ + row};
        polygon.mLowestGround -= countedHigher;
        polygon.mHighestGround -= countedHigher;
    }
    return result;
}

} // namespace ZUNO::Tools
