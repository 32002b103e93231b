// Meshes that no tool should make: refused with a clear report, or run with, in bounded time.
#include "reference/anyplace.h"
#include "tests/host/hosttest.h"
#include "tests/platform/process.h"
#include "tests/support/tempfolder.h"

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

} // namespace

TEST_F(HostTest, RefusesOrSurvivesHostileGeometry) {
    MeshText oneSpot = square("1", "0.5");
    for (int i = 0; i < 100000; ++i)
        oneSpot.node({0, 1, 2, 3}, i == 0 ? 99999 : i - 1);
    MeshText covered = square("10", "0.01");
    for (int i = 0; i < 600; ++i)
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
        {"a grid of 200 MB", square("5129", "1").node({0, 1, 2, 3}).text(),
         "for 4 corners at most 25165824"},
        {"a row of two million cells",
         MeshText("1").corner("0/0/0").corner("2e6/0/0").corner("0/0/1").node({0, 1, 2}).text(),
         "1048576 in a row"},
        {"covered again and again", covered.text(), "cover the blocking grid too often"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.mName);
        mFiles->mFiles["hostile"] = row.mMesh;
        Stderr reports;
        bool isLoaded = false;
        Interface world;
        const std::string raised = raisedBy([&] {
            isLoaded = start("hostile");
            if (isLoaded) {
                EXPECT_STREQ(Reference::AnyPlace(world).ask(), nullptr);
            }
        });
        Interface::close();
        const std::string text = reports.text();
        EXPECT_EQ(raised, "");
        EXPECT_EQ(isLoaded, *row.mReport == '\0') << text;
        EXPECT_NE(text.find(row.mReport), std::string::npos) << text;
        EXPECT_EQ(mMemory->outstanding(), 0U);
    }
}

/// Two squares side by side, with one of everything that a mesh can hold.
constexpr const char* twoSquares =
    "<a><navmesh><heightmap><height id=\"0\">2</height></heightmap><normal>0/1/0</normal>"
    "<vertices><pos>0/0/0</pos><pos>4/0/0</pos><pos>4/0/4</pos><pos>0/0/4</pos><pos>8/0/0</pos>"
    "<pos>8/0/4</pos></vertices><nodes>"
    "<node><heightclass>0</heightclass><polygon><vert_id>0</vert_id><vert_id>1</vert_id>"
    "<vert_id>2</vert_id><vert_id>3</vert_id></polygon><neighbour><node_id>-1</node_id>"
    "<node_id>1</node_id><node_id>-1</node_id><node_id>-1</node_id></neighbour>"
    "<surfacetypeid>3</surfacetypeid></node>"
    "<node><heightclass>0</heightclass><polygon><vert_id>1</vert_id><vert_id>4</vert_id>"
    "<vert_id>5</vert_id><vert_id>2</vert_id></polygon><neighbour><node_id>-1</node_id>"
    "<node_id>-1</node_id><node_id>-1</node_id><node_id>0</node_id></neighbour>"
    "<surfacetypeid>3</surfacetypeid></node></nodes><xaxis>1/0/0</xaxis><yaxis>0/0/1</yaxis>"
    "<cubesize>0.5</cubesize><characters><character><name>c</name><userid>1</userid>"
    "<physicalheight>2</physicalheight><jumpheight>1</jumpheight><fallheight>1</fallheight>"
    "<maxheightclassid>0</maxheightclassid></character></characters>"
    "<surfacetypes><surfacetype><name>s</name><id>3</id></surfacetype></surfacetypes>"
    "</navmesh></a>";

TEST(MeshCheck, NamesWhatIsWrongOrOdd) {
    const std::string one = "<node_id>1</node_id>";
    const std::string none = "<node_id>-1</node_id>";
    const std::string ids = "<vert_id>0</vert_id><vert_id>1</vert_id>";
    const std::string ring = ids + "<vert_id>2</vert_id><vert_id>3</vert_id>";
    struct Case {
        std::string mWhat; ///< where it first stands in the mesh
        std::string mBy;
        const char* mFindings; ///< all of them, without "mesh: "
    };
    const Case cases[] = {
        {"<a>", "<a>", "2 nodes, 0 defects, 0 oddities"},
        {">2</height>", ">inf</height>", "defect: height class 0 is not finite"},
        {"0/1/0", "0/nan/0", "defect: normal is not finite"},
        {"<xaxis>1/0", "<xaxis>1/inf", "defect: xaxis is not finite"},
        {"<yaxis>0/0", "<yaxis>0/inf", "defect: yaxis is not finite"},
        {"0.5</cubesize>", "0</cubesize>", "defect: cubesize is 0; it must be above 0"},
        {"0.5</cubesize>", "inf</cubesize>", "defect: cubesize is inf; it must be above 0"},
        {"<pos>8/0/4<", "<pos>8/0/inf<", "defect: vertex 5 is not finite"},
        {"<vert_id>5<", "<vert_id>6<", "defect: node 1: corner 2 refers to vertex 6 of 6"},
        {one, "<node_id>2</node_id>", "defect: node 0: border 1 leads to node 2 of 2"},
        {"<heightclass>0", "<heightclass>1", "defect: node 0 has height class 1 of 1"},
        {"<heightclass>0", "<heightclass>-1", "defect: node 0 has height class -1 of 1"},
        {"0/1/0", "0/0/0", "odd: normal has the length 0 and not 1"},
        {"0/1/0", "0/2/0", "odd: normal has the length 2 and not 1"},
        {"<xaxis>1/0/0", "<xaxis>0.8/0/0.6", "odd: xaxis and yaxis are not at right angles"},
        {"<yaxis>0/0", "<yaxis>0/1",
         "odd: yaxis has the length 1.41421 and not 1\n"
         "odd: yaxis and normal are not at right angles"},
        {ids, "<vert_id>0</vert_id><vert_id>1</vert_id></polygon><neighbour/><polygon>",
         "odd: node 0 has 2 corners\nodd: node 0 has 0 neighbours for 2 corners\n"
         "odd: node 1: border 3 leads to node 0, which does not lead back"},
        {"<pos>0/0/0<", "<pos>3/0/3<", "odd: node 0 is not convex"},
        {ring, "<vert_id>1</vert_id><vert_id>1</vert_id><vert_id>2</vert_id><vert_id>2</vert_id>",
         "odd: node 0 has no area in the plane"},
        {ring, "<vert_id>3</vert_id><vert_id>2</vert_id><vert_id>1</vert_id><vert_id>0</vert_id>",
         "odd: node 0 runs clockwise: it holds no points"},
        {one, one + none, "odd: node 0 has 5 neighbours for 4 corners"},
        {one, "<node_id>0</node_id>",
         "odd: node 0: border 1 leads to the node itself\n"
         "odd: node 1: border 3 leads to node 0, which does not lead back"},
        {one, none, "odd: node 1: border 3 leads to node 0, which does not lead back"},
        {none + one, one + none,
         "odd: node 0: border 0 leads to node 1, which does not have that border"},
        {"<surfacetypeid>3", "<surfacetypeid>9",
         "odd: node 0 has surface type 9, which does not exist"},
        {"<maxheightclassid>0", "<maxheightclassid>1",
         "odd: character 0 may use height class 1 of 1"},
    };
    const TempFolder folder;
    for (const Case& row : cases) {
        std::string mesh = twoSquares;
        mesh.replace(mesh.find(row.mWhat), row.mWhat.size(), row.mBy);
        const std::string file = folder.put("mesh.xml", mesh);
        std::string findings = runCommand(ZUNO_TOOL_FOLDER "/zunopath check " + file).mOutput;
        for (std::size_t at = 0; (at = findings.find(file)) != std::string::npos;)
            findings.erase(at, file.size() + 2);
        EXPECT_TRUE(findings.starts_with(row.mFindings + std::string("\n"))) << row.mBy << '\n'
                                                                             << findings;
    }
}

} // namespace ZUNO::Tests
