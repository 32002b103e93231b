#pragma once

#include "navmesh/navmeshcontainer.h"
#include "tools/picture/trail.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace ZUNO::Tools {

/// A path to be drawn: where it was asked from and to, and its waypoints (none: not found).
struct DrawnPath {
    Common::Math::Vec3<float> mStart;
    Common::Math::Vec3<float> mGoal;
    std::vector<Common::Math::Vec3<float>> mWaypoints;
    std::vector<Common::Math::Vec3<float>> mCorners; ///< of the straight path; none: not asked for
    std::vector<HostKit::Place> mPlaces = {}; ///< along the straight path; none: by its corners
    bool mIsFound = false;
};

/// Where somebody was, at equal steps of time.
struct DrawnWalk {
    std::vector<Common::Math::Vec3<float>> mPositions;
};

/// A mesh seen from above, as an SVG picture: nodes by height and island, borders with and without
/// neighbour, and whatever is added: blocked cells, paths. Where a path goes under another floor
/// it is dotted. A legend explains what is there, and a bar how long a length is.
class MeshPicture {
public:
    /// Shows the nodes within the heights, of a mesh without defects.
    /// Throws a std::runtime_error when there are none.
    MeshPicture(const NavMesh::NavMeshContainer& mesh, const std::string& title,
                const HeightRange& heights = {});

    /// The step of `mPlaces` at which a path's line looks smooth.
    float step() const;

    /// Marks every cell of the mesh's cube size for which `isBlocked` holds at its centre (in
    /// coordinates of the mesh's plane). Coarser squares are taken where there would be too many.
    void addBlockedCells(const std::function<bool(const Common::Math::Vec2<float>&)>& isBlocked);
    void addPath(const DrawnPath& path) { mPaths.push_back(path); }

    /// Shows characters that walk, again and again, in so many seconds.
    void addWalks(const std::vector<DrawnWalk>& walks, float seconds) {
        mWalks = walks;
        mWalkSeconds = seconds;
    }

    /// Returns the picture as an SVG document.
    std::string text() const;

private:
    using Point = Common::Math::Vec2<float>;
    struct Square {
        Point mCorner;
        float mWidth;
        float mHeight;
    };

    Point onPaper(const Common::Math::Vec3<float>& point) const;
    Point onPaper(const Point& point) const;
    float heightOf(std::size_t node) const;
    std::string fillOf(std::size_t node) const;
    void writeNodes(std::ostream& out) const;
    void writeNode(std::ostream& out, std::size_t id) const;
    void writeBlocked(std::ostream& out) const;
    void writePaths(std::ostream& out) const;
    void writePath(std::ostream& out, const DrawnPath& path, const char* colour) const;
    void writeLine(std::ostream& out, const char* kind, const char* colour,
                   const std::vector<Common::Math::Vec3<float>>& points) const;
    void writeWalks(std::ostream& out) const;
    void writeLegend(std::ostream& out) const;
    void writeScale(std::ostream& out) const;

    const NavMesh::NavMeshContainer& mMesh;
    HostKit::MeshView mView;
    std::string mTitle;
    HeightRange mHeights;
    std::vector<std::size_t> mNodes; ///< those that are shown, the lowest first
    std::vector<Square> mBlocked;    ///< runs of blocked squares, on paper
    std::vector<DrawnPath> mPaths;
    std::vector<DrawnWalk> mWalks;
    float mWalkSeconds = 0;
    Point mMin{0, 0};
    float mScale = 1; ///< paper units per unit of the plane
    float mWidth = 0;
    float mHeight = 0;
    float mLowest = 0;
    float mHighest = 0;
};

} // namespace ZUNO::Tools
