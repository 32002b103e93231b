#include "navmesh/meshdefects.h"
#include "navmesh/meshexamination.h"

#include <algorithm>
#include <cmath>

namespace ZUNO::NavMesh {

namespace {

class OddityExamination : Examination {
public:
    OddityExamination(const NavMeshContainer& mesh, const DefectListener& listener)
        : Examination(mesh, listener) {}

    bool run() {
        checkFrame();
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
    /// Documents keep six digits.
    static constexpr float frameTolerance = 1e-4F;

    using Polygon = NavMeshContainer::Vector<std::uint32_t>;

    /// Heights are measured along the normal and places along the axes: what these are not like
    /// scales or shears them.
    void checkFrame() {
        struct Axis {
            const char* mName;
            const NavMeshContainer::Point3& mDirection;
        };
        const Axis axes[] = {
            {"normal", mMesh.mNormal}, {"xaxis", mMesh.mXAxis}, {"yaxis", mMesh.mYAxis}};
        for (const Axis& axis : axes)
            if (const float size = length(axis.mDirection); !(std::abs(size - 1) <= frameTolerance))
                found(axis.mName, " has the length ", size, " and not 1");
        for (int i = 0; i < 3; ++i) {
            const Axis& other = axes[(i + 1) % 3];
            if (!(std::abs(dot(axes[i].mDirection, other.mDirection)) <= frameTolerance))
                found(axes[i].mName, " and ", other.mName, " are not at right angles");
        }
    }

    /// Above 0 when one turns left at b. In doubles three corners on a line along an axis make no
    /// turn, whatever their coordinates; in floats rounding may make one.
    static double turnOf(const Common::Math::Vec2<float>& a, const Common::Math::Vec2<float>& b,
                         const Common::Math::Vec2<float>& c) {
        return (double{b.mX} - double{a.mX}) * (double{c.mY} - double{b.mY}) -
               (double{b.mY} - double{a.mY}) * (double{c.mX} - double{b.mX});
    }

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
            const double turn = turnOf(corner(i), corner(i + 1), corner(i + 2));
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

bool findOddities(const NavMeshContainer& mesh, const DefectListener& listener) {
    return OddityExamination(mesh, listener).run();
}

} // namespace ZUNO::NavMesh
