#include "navmesh/meshdefects.h"

#include "navmesh/astarnavmesh.h"
#include "navmesh/planegrid.h"

#include <algorithm>
#include <limits>

namespace ZUNO::NavMesh {

using Common::Debug::ReportText;

namespace {

/// What takes some ten seconds: eight times over the largest grid.
constexpr double maxRasterSteps = 8.0 * (1U << 29U);

/// One look over a mesh. Each check streams what it finds; once the listener has had enough,
/// nothing is found any more.
class Examination {
protected:
    Examination(const NavMeshContainer& mesh, DefectListener& listener)
        : mMesh(mesh), mListener(listener) {}

    template <typename... Pieces>
    void found(const Pieces&... pieces) {
        mIsClean = false;
        if (!mGoesOn)
            return;
        ReportText text;
        (text << ... << pieces);
        mGoesOn = mListener.onDefect(text.text());
    }

    const NavMeshContainer& mMesh;
    DefectListener& mListener;
    bool mIsClean = true;
    bool mGoesOn = true;
};

class DefectExamination : Examination {
public:
    DefectExamination(const NavMeshContainer& mesh, DefectListener& listener)
        : Examination(mesh, listener) {}

    bool run() {
        checkFrame();
        checkVertices();
        for (std::size_t id = 0; id < mMesh.mNodes.size() && mGoesOn; ++id)
            checkNode(id);
        if (mIsClean)
            checkGrid();
        return mIsClean;
    }

private:
    void checkFinite(const Common::Math::Vec3<float>& vector, const char* name) {
        if (!isFinite(vector))
            found(name, " is not finite");
    }

    void checkFrame() {
        if (mMesh.mNodes.empty())
            found("the mesh has no nodes");
        if (mMesh.mNodes.size() >= NavMeshEdge::STARTNODE_MASK)
            found("the mesh has ", mMesh.mNodes.size(), " nodes; at most ",
                  NavMeshEdge::STARTNODE_MASK - 1, " can be searched");
        checkFinite(mMesh.mNormal, "normal");
        checkFinite(mMesh.mXAxis, "xaxis");
        checkFinite(mMesh.mYAxis, "yaxis");
        if (!std::isfinite(mMesh.mCubeSize) || !(mMesh.mCubeSize > 0))
            found("cubesize is ", mMesh.mCubeSize, "; it must be above 0");
        for (std::size_t i = 0; i < mMesh.mHeights.size(); ++i)
            if (!std::isfinite(mMesh.mHeights[i]))
                found("height class ", i, " is not finite");
    }

    void checkVertices() {
        for (std::size_t i = 0; i < mMesh.mVertices.size() && mGoesOn; ++i)
            if (!isFinite(mMesh.mVertices[i]))
                found("vertex ", i, " is not finite");
    }

    void checkNode(std::size_t id) {
        const NavMeshContainer::NavNode& node = mMesh.mNodes[id];
        if (node.mPolygon.empty())
            found("node ", id, " has no corners");
        for (std::size_t i = 0; i < node.mPolygon.size(); ++i)
            if (node.mPolygon[i] >= mMesh.mVertices.size())
                found("node ", id, ": corner ", i, " refers to vertex ", node.mPolygon[i], " of ",
                      mMesh.mVertices.size());
        for (std::size_t i = 0; i < node.mNeighbours.size(); ++i)
            checkNeighbour(id, i, node.mNeighbours[i]);
        if (node.mHeightClass < 0 ||
            static_cast<std::size_t>(node.mHeightClass) >= mMesh.mHeights.size())
            found("node ", id, " has height class ", node.mHeightClass, " of ",
                  mMesh.mHeights.size());
    }

    void checkNeighbour(std::size_t id, std::size_t border, std::int32_t neighbour) {
        if (!NavMeshEdge::isNeighbour(neighbour))
            return;
        if (static_cast<std::size_t>(neighbour) >= mMesh.mNodes.size())
            found("node ", id, ": border ", border, " leads to node ", neighbour, " of ",
                  mMesh.mNodes.size());
        if (!NavMeshEdge::isBorder(border))
            found("node ", id, ": border ", border, " has a neighbour; at most ",
                  NavMeshEdge::maxBorders, " borders can be searched");
    }

    void checkGrid() {
        constexpr std::int64_t limit = std::numeric_limits<std::uint32_t>::max();
        const PlaneGrid grid = measurePlane(mMesh);
        if (!isFinite(grid.mBounds.mMin) || !isFinite(grid.mBounds.mMax) ||
            !isFinite(grid.mBounds.mMax - grid.mBounds.mMin))
            found("the mesh's extent in its plane is not finite");
        else if (grid.mColumns > limit / PlaneGrid::bytesPerCell / grid.mRows)
            found("the blocking grid would have ", grid.mColumns, " x ", grid.mRows,
                  " cells; the cube size is too small for the mesh's extent");
        else if (const double steps = countMarkingSteps(mMesh); steps > maxRasterSteps)
            found("the nodes cover the blocking grid too often: rasterising them takes ", steps,
                  " steps, and at most ", maxRasterSteps, " are taken");
    }
};

class OddityExamination : Examination {
public:
    OddityExamination(const NavMeshContainer& mesh, DefectListener& listener)
        : Examination(mesh, listener) {}

    bool run() {
        for (std::size_t id = 0; id < mMesh.mNodes.size() && mGoesOn; ++id) {
            checkPolygon(id, mMesh.mNodes[id].mPolygon);
            checkNeighbours(id, mMesh.mNodes[id]);
            const std::uint16_t surface = mMesh.mNodes[id].mSurfaceTypeID;
            if (surface != noSurfaceType && mMesh.findSurfaceTypeByID(surface) == nullptr)
                found("node ", id, " has surface type ", surface, ", which does not exist");
        }
        for (std::size_t i = 0; i < mMesh.mCharacters.size() && mGoesOn; ++i)
            if (mMesh.mCharacters[i].mMaxHeightClassID >= mMesh.mHeights.size())
                found("character ", i, " may use height class ",
                      mMesh.mCharacters[i].mMaxHeightClassID, " of ", mMesh.mHeights.size());
        return mIsClean;
    }

private:
    using Polygon = NavMeshContainer::Vector<std::uint32_t>;

    void checkPolygon(std::size_t id, const Polygon& polygon) {
        if (polygon.size() < 3) {
            found("node ", id, " has ", polygon.size(), " corners");
            return;
        }
        const auto corner = [&](std::size_t i) {
            return mMesh.projectToPlane(mMesh.mVertices[polygon[i % polygon.size()]]);
        };
        float area = 0;
        std::size_t leftTurns = 0;
        std::size_t rightTurns = 0;
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            area += signedArea(corner(0), corner(i), corner(i + 1));
            const float turn = signedArea(corner(i), corner(i + 1), corner(i + 2));
            leftTurns += turn > 0 ? 1 : 0;
            rightTurns += turn < 0 ? 1 : 0;
        }
        if (area == 0)
            found("node ", id, " has no area in the plane");
        else if (area < 0)
            found("node ", id, " runs clockwise: it holds no points");
        else if (rightTurns != 0 && leftTurns != 0)
            found("node ", id, " is not convex");
    }

    void checkNeighbours(std::size_t id, const NavMeshContainer::NavNode& node) {
        if (node.mNeighbours.size() != node.mPolygon.size())
            found("node ", id, " has ", node.mNeighbours.size(), " neighbours for ",
                  node.mPolygon.size(), " corners");
        for (std::size_t i = 0; i < node.mNeighbours.size(); ++i) {
            const std::int32_t other = node.mNeighbours[i];
            if (other < 0)
                continue;
            if (static_cast<std::size_t>(other) == id)
                found("node ", id, ": border ", i, " leads to the node itself");
            else if (!leadsTo(other, id))
                found("node ", id, ": border ", i, " leads to node ", other,
                      ", which does not lead back");
            else if (i < node.mPolygon.size() && !sharesBorder(node.mPolygon, i, other))
                found("node ", id, ": border ", i, " leads to node ", other,
                      ", which does not have that border");
        }
    }

    bool leadsTo(std::int32_t from, std::size_t to) const {
        const auto& neighbours = mMesh.mNodes[static_cast<std::size_t>(from)].mNeighbours;
        return std::find(neighbours.begin(), neighbours.end(), static_cast<std::int32_t>(to)) !=
               neighbours.end();
    }

    /// Whether the other node holds both corners of the border.
    bool sharesBorder(const Polygon& polygon, std::size_t border, std::int32_t other) const {
        const Polygon& corners = mMesh.mNodes[static_cast<std::size_t>(other)].mPolygon;
        const auto holds = [&](std::uint32_t corner) {
            return std::any_of(corners.begin(), corners.end(), [&](std::uint32_t each) {
                return mMesh.mVertices[each] == mMesh.mVertices[corner];
            });
        };
        return holds(polygon[border]) && holds(polygon[(border + 1) % polygon.size()]);
    }
};

} // namespace

bool findDefects(const NavMeshContainer& mesh, DefectListener& listener) {
    return DefectExamination(mesh, listener).run();
}

bool findOddities(const NavMeshContainer& mesh, DefectListener& listener) {
    return OddityExamination(mesh, listener).run();
}

} // namespace ZUNO::NavMesh
