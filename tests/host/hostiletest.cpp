// Meshes that no tool should make: refused with a clear report, or run with, in bounded time.
#include "tests/host/hosttest.h"

#include <cmath>
#include <limits>

namespace ZUNO::Tests {

namespace {

/// A mesh as text, corner by corner.
class MeshText {
public:
    explicit MeshText(const char* cubeSize) : mCubeSize(cubeSize) {}

    MeshText& corner(const std::string& position) {
        mVertices += "<pos>" + position + "</pos>";
        return *this;
    }
    /// A node over the given corners, all of its borders leading to `neighbour`.
    MeshText& node(const std::vector<unsigned int>& corners, int neighbour = -1) {
        std::string ring;
        std::string neighbours;
        for (const unsigned int id : corners) {
            ring += "<vert_id>" + std::to_string(id) + "</vert_id>";
            neighbours += "<node_id>" + std::to_string(neighbour) + "</node_id>";
        }
        mNodes += "<node><heightclass>0</heightclass><polygon>" + ring + "</polygon><neighbour>" +
                  neighbours + "</neighbour></node>";
        return *this;
    }
    std::string text() const {
        return "<a><navmesh><heightmap><height "
               "id=\"0\">2</height></heightmap><normal>0/1/0</normal>"
               "<vertices>" +
               mVertices + "</vertices><nodes>" + mNodes +
               "</nodes><xaxis>1/0/0</xaxis><yaxis>0/0/1</yaxis><cubesize>" + mCubeSize +
               "</cubesize></navmesh></a>";
    }

private:
    std::string mCubeSize;
    std::string mVertices;
    std::string mNodes;
};

/// A square from the origin with that side.
MeshText square(const std::string& side, const char* cubeSize) {
    return MeshText(cubeSize)
        .corner("0/0/0")
        .corner(side + "/0/0")
        .corner(side + "/0/" + side)
        .corner("0/0/" + side);
}

/// Asks at places of every size; nothing that comes out is looked at but for its kind.
void askEverywhere() {
    constexpr float huge = std::numeric_limits<float>::max();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float values[] = {0,
                            0.5F,
                            1,
                            1e-30F,
                            std::numeric_limits<float>::denorm_min(),
                            -1,
                            1e9F,
                            1e20F,
                            huge,
                            -huge,
                            infinity,
                            -infinity,
                            std::nanf("")};
    for (const float x : values)
        for (const float y : values) {
            Common::Geom::Ray2D<float, float> ray({x, y}, {y, x});
            Interface::traceRay(ray);
            EXPECT_FALSE(ray.mHitDistance < 0 && ray.mHitDistance != -1);
            Interface::isBlocked({x, y});
            Interface::getGroundHeight({x, y});
            const int search = Interface::initPathSearch({x, 0, y}, {y, 0, x});
            if (search < 0)
                continue;
            for (int i = 0; i < 20 && Interface::runPathSearch(search, 5) == 1; ++i) {
            }
            Vec3<float> waypoint(0, 0, 0);
            while (Interface::getNextWaypoint(search, waypoint)) {
            }
            EXPECT_TRUE(Interface::closePathSearch(search));
        }
}

} // namespace

TEST_F(HostTest, RefusesOrSurvivesHostileGeometry) {
    MeshText oneSpot = square("1", "0.5");
    for (int i = 0; i < 100000; ++i)
        oneSpot.node({0, 1, 2, 3}, i == 0 ? 99999 : i - 1);
    MeshText covered = square("10", "0.0005");
    for (int i = 0; i < 20; ++i)
        covered.node({0, 1, 2, 3});
    struct Case {
        const char* mName;
        std::string mMesh;
        const char* mReport; ///< why it is refused; "" when it is not
    };
    const Case cases[] = {
        {"largest numbers", square("3e38", "1e38").node({0, 1, 2, 3}).text(), ""},
        {"beyond them", square("3.5e38", "1").node({0, 1, 2, 3}).text(), "is not finite"},
        {"both signs of them",
         MeshText("1e37")
             .corner("-3e38/0/0")
             .corner("3e38/0/0")
             .corner("0/0/1")
             .node({0, 1, 2})
             .text(),
         "extent in its plane is not finite"},
        {"denormals", square("1e-40", "1e-41").node({0, 1, 2, 3}).text(), ""},
        {"not a number", square("nan", "1").node({0, 1, 2, 3}).text(), "is not finite"},
        {"infinite", square("inf", "1").node({0, 1, 2, 3}).text(), "is not finite"},
        {"no area", square("1", "0.5").node({0, 0, 0}).node({1, 3, 1}).node({2}).text(), ""},
        {"collinear",
         MeshText("0.5").corner("0/0/0").corner("1/0/0").corner("2/0/0").node({0, 1, 2}).text(),
         ""},
        {"its own neighbour", square("1", "0.5").node({0, 1, 2, 3}, 0).text(), ""},
        {"a corner many times", square("1", "0.5").node(std::vector<unsigned int>(5000, 2)).text(),
         ""},
        {"100,000 nodes on one spot", oneSpot.text(), ""},
        {"tiny cubes", square("1", "1e-30").node({0, 1, 2, 3}).text(),
         "the cube size is too small"},
        {"tiny cubes on tiny ground", square("1e-30", "1e-30").node({0, 1, 2, 3}).text(), ""},
        {"huge cubes", square("1", "1e30").node({0, 1, 2, 3}).text(), ""},
        {"a grid of 4 GB", square("1", "0.00004").node({0, 1, 2, 3}).text(), "25001 x 25001"},
        {"covered again and again", covered.text(), "cover the blocking grid too often"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.mName);
        mFiles->mFiles["hostile"] = row.mMesh;
        Stderr reports;
        bool isLoaded = false;
        const std::string raised = raisedBy([&] {
            isLoaded = start("hostile");
            if (isLoaded)
                askEverywhere();
        });
        Interface::close();
        const std::string text = reports.text();
        EXPECT_EQ(raised, "");
        EXPECT_EQ(isLoaded, *row.mReport == '\0') << text;
        EXPECT_NE(text.find(row.mReport), std::string::npos) << text;
        EXPECT_TRUE(mMemory->mBlocks.empty());
    }
}

} // namespace ZUNO::Tests
