#include "navmesh/meshdefects.h"

#include "navmesh/astarnavmesh.h"
#include "navmesh/meshexamination.h"
#include "navmesh/planegrid.h"

#include <algorithm>
#include <cmath>

namespace ZUNO::NavMesh {

namespace {

class DefectExamination : Examination {
public:
    DefectExamination(const NavMeshContainer& mesh, const DefectListener& listener)
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
        const PlaneGrid grid = measurePlane(mMesh);
        if (!isFinite(grid.mBounds.mMin) || !isFinite(grid.mBounds.mMax) ||
            !isFinite(grid.mBounds.mMax - grid.mBounds.mMin)) {
            found("the mesh's extent in its plane is not finite");
            return;
        }
        const GridLimits limits = gridLimitsOf(mMesh);
        if (std::max(grid.mColumns, grid.mRows) > GridLimits::mostInARow ||
            grid.mColumns > limits.mCells / grid.mRows)
            found("the blocking grid would have ", grid.mColumns, " x ", grid.mRows,
                  " cells, and for ", limits.mCorners, " corners at most ", limits.mCells,
                  " are made, ", GridLimits::mostInARow,
                  " in a row; the cube size is too small for the mesh's extent");
        else if (const double steps = countMarkingSteps(mMesh); steps > limits.mMarkingSteps)
            found("the nodes cover the blocking grid too often: rasterising them takes ", steps,
                  " steps, and for ", limits.mCorners, " corners at most ", limits.mMarkingSteps,
                  " are taken");
    }
};

} // namespace

bool findDefects(const NavMeshContainer& mesh, const DefectListener& listener) {
    return DefectExamination(mesh, listener).run();
}

} // namespace ZUNO::NavMesh
