#include "common/callback/openstream.h"
#include "common/parser/xml/xmlparser.h"
#include "navmesh/astarnavmesh.h"
#include "navmesh/meshdefects.h"
#include "navmesh/resourceinterface.h"
#include "pathfinder/navmeshinstance.h"
#include "tests/support/navmeshlibrary.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZUNO::Tests {

using namespace Common;
using NavMesh::NavMeshContainer;
using Point = Math::Vec3<float>;

class NavMeshTest : public NavMeshLibraryTest {
protected:
    ~NavMeshTest() override { mMesh = nullptr; }

    /// z is up; the nodes are squares of 10 x 10: 0 and 1 side by side, 2 four above 0, and 3 a
    /// clockwise one beside 1.
    void makeMesh() {
        mMesh = Memory::createManaged<NavMeshContainer>(NavMesh::getAllocator());
        mMesh->mNormal = {0, 0, 1};
        mMesh->mXAxis = {1, 0, 0};
        mMesh->mYAxis = {0, 1, 0};
        mMesh->mCubeSize = 0.5F;
        for (const float height : {3.0F, 2.0F})
            mMesh->mHeights.push_back(height);
        addSquare(0, 0, {-1, 1, -1, -1});
        addSquare(10, 0, {-1, -1, -1, 0});
        addSquare(0, 4, {-1, -1, -1, -1});
        addSquare(20, 0, {-1, -1, -1, -1});
        std::ranges::reverse(mMesh->mNodes.back().mPolygon);
    }

    void addSquare(float x, float z, std::initializer_list<std::int32_t> neighbours) {
        NavMeshContainer::NavNode node(NavMesh::getAllocator());
        for (const Point& corner :
             {Point(x, 0, z), Point(x + 10, 0, z), Point(x + 10, 10, z), Point(x, 10, z)}) {
            node.mPolygon.push_back(static_cast<std::uint32_t>(mMesh->mVertices.size()));
            mMesh->mVertices.push_back(corner);
        }
        node.mNeighbours.assign(neighbours);
        node.mHeightClass = 0;
        mMesh->mNodes.push_back(node);
    }

    SharedPtr<NavMeshContainer> mMesh;
};

TEST_F(NavMeshTest, FindsTheLowestNodeWithinItsHeights) {
    makeMesh();
    struct Case {
        Point mPoint;
        std::int32_t mNode;
    };
    const float below = std::nextafter(-1.0F, -2.0F);
    const float above = std::nextafter(3.0F, 4.0F);
    for (const Case& row : {Case{{5, 5, 0}, 0},
                            {{10, 5, 0}, 0},
                            {{10.5F, 5, 0}, 1},
                            {{0, 0, 0}, 0},
                            {{-0.1F, 5, 0}, -1},
                            {{5, 5, -1}, 0},
                            {{5, 5, below}, -1},
                            {{5, 5, 3}, 0},
                            {{5, 5, above}, 2},
                            {{15, 5, above}, -1},
                            {{5, 5, 7}, 2},
                            {{25, 5, 0}, -1},
                            {{5, std::numeric_limits<float>::infinity(), 0}, -1},
                            {{std::nanf(""), 5, 0}, -1}})
        EXPECT_EQ(mMesh->findNode(row.mPoint), row.mNode)
            << row.mPoint.mX << ' ' << row.mPoint.mY << ' ' << row.mPoint.mZ;
    EXPECT_EQ(mMesh->getNodeCenter(1), Point(15, 5, 0));
    EXPECT_FLOAT_EQ(mMesh->getDistanceToBorder({2, 5, 9}, 0), 2);
    EXPECT_FLOAT_EQ(mMesh->getDistanceToBorder({13, 14, 0}, 0), 5) << "beyond a corner";
    EXPECT_FALSE(mMesh->isPointInNode({0, 0, 0}, 99));
    EXPECT_EQ(mMesh->getDistanceToBorder({0, 0, 0}, 10000000), 3.4028235e38F);
    mMesh->getNodeCenter(4);
    mMesh->isPointInNode({0, 0, 0}, -1);
    mMesh->getDistanceToBorder({0, 0, 0}, -1);
    EXPECT_EQ(Reports::take(),
              (Texts{"nodeIndex >= 0 && nodeIndex < (int32)mNodes.size()|nodeID out of range",
                     "nodeID >= 0|nodeID out of range", "nodeID >= 0|nodeID out of range"}));
    const auto before = mMesh->getMemoryUsage();
    mMesh->clearGeometry();
    EXPECT_EQ(before - mMesh->getMemoryUsage(),
              16 * 16 + 2 * 4 + 4 * (sizeof(NavMeshContainer::NavNode) + 32));
}

TEST_F(NavMeshTest, GivesEdgesForBordersWithNeighbours) {
    makeMesh();
    mMesh->mNodes[0].mNeighbours.assign({-1, 3, -7, 2});
    NavMesh::AStarMapNavMesh map(mMesh);
    Astar::EdgeList edges(gObjectAllocator);
    map.getOutEdges(edges, 0);
    ASSERT_EQ(edges.size(), 2U);
    EXPECT_EQ(edges[0], 1U << 20);
    EXPECT_EQ(edges[1], 3U << 20);
    EXPECT_EQ(map.getEdgeEndNode(edges[1]), 2U);
    EXPECT_EQ(map.getEdgeStartNode(edges[1] | 1), 1U);
    map.getEdgeEndNode(0);
    EXPECT_EQ(Reports::take(),
              Texts{"endNode >= 0|getOutEdge has delivered a wrong set of out nodes"});
    mMesh->mNodes[0].mNeighbours.assign(4096, -1);
    mMesh->mNodes[0].mNeighbours[4094] = 1;
    edges.clear();
    map.getOutEdges(edges, 0);
    EXPECT_EQ(edges.size(), 1U);
    mMesh->mNodes[0].mNeighbours[4095] = 1;
    map.getOutEdges(edges, 0);
    EXPECT_EQ(edges.size(), 2U);
    EXPECT_EQ(Reports::take(),
              Texts{"i < (ZUNO::Common::Utility::BitMask<(32-ZUNO_ASTARMAP_NAVMESH_EDGEINDEX_"
                    "NODEBITS)>::MASK)|Number of borders in a navmesh node exceeds the available "
                    "range of 4095"});
    NavMesh::NMCostFunc cost(mMesh);
    cost.mEnds = {{1, 1, 0}, {12, 1, 0}, 0, 1};
    mMesh->mNodes[0].mNeighbours.assign({1});
    EXPECT_EQ(cost.getCost(0), 11) << "from the start into the goal: point to point";
    EXPECT_EQ(cost.mEnds.distance(*mMesh, 2, 1), std::sqrt(49.0F + 16 + 16));
}

TEST_F(NavMeshTest, ReportsGraphsBeyondTheLimits) {
    NavMesh::AStarMapNavMesh nothing({});
    makeMesh();
    mMesh->clearGeometry();
    NavMesh::AStarMapNavMesh empty(mMesh);
    mMesh->mNodes.resize(1048574, NavMeshContainer::NavNode(NavMesh::getAllocator()));
    NavMesh::AStarMapNavMesh largest(mMesh);
    mMesh->mNodes.resize(1048575, NavMeshContainer::NavNode(NavMesh::getAllocator()));
    NavMesh::AStarMapNavMesh tooLarge(mMesh);
    // a world does not come so far: it refuses such a mesh
    const auto firstDefect = [&] {
        std::string defect;
        const bool isSound = findDefects(*mMesh, [&](const char* text) {
            defect = text;
            return false;
        });
        EXPECT_EQ(isSound, defect.empty());
        return defect;
    };
    EXPECT_EQ(firstDefect(), "the mesh has 1048575 nodes; at most 1048574 can be searched");
    mMesh->mNodes.pop_back();
    EXPECT_EQ(firstDefect(), "node 0 has no corners");
    makeMesh();
    mMesh->mNodes[0].mNeighbours.assign(4096, -1);
    mMesh->mNodes[0].mNeighbours[4094] = 1;
    EXPECT_EQ(firstDefect(), "");
    mMesh->mNodes[0].mNeighbours[4095] = 1;
    EXPECT_EQ(firstDefect(),
              "node 0: border 4095 has a neighbour; at most 4095 borders can be searched");
    EXPECT_EQ(Reports::take(),
              (Texts{"navMesh != NULL|Navmesh container is a null pointer",
                     "navMesh->mNodes.size() != 0|Navmesh container is empty",
                     "navMesh->mNodes.size() < STARTNODE_MASK|Number of nodes in the navmesh "
                     "exceed the available range of 1048575"}));
}

TEST_F(NavMeshTest, ReadsElementsInTheirOrder) {
    const std::string body =
        "<heightmap><height id=\"5\">2</height><height id=\"2\">1.5</height><x/></heightmap>"
        "<normal>0/0/1</normal><vertices><pos>1/2</pos><pos/></vertices>"
        "<nodes><node><heightclass>1</heightclass><polygon><vert_id>1</vert_id></polygon>"
        "<neighbour><node_id>-1</node_id></neighbour><surfacetypeid>65537</surfacetypeid></node>"
        "<node><heightclass>0</heightclass><polygon></polygon><neighbour/></node></nodes>"
        "<xaxis>1/0/0</xaxis><yaxis>0/1/0</yaxis><cubesize>0.25</cubesize>";
    const std::string tables =
        "<characters><character><name>a</name><userid>-5000000000</userid>"
        "<physicalheight>2</physicalheight><jumpheight>1</jumpheight><fallheight>3</fallheight>"
        "<maxheightclassid>1</maxheightclassid></character></characters>"
        "<surfacetypes><surfacetype><name>stone</name><id>7</id></surfacetype></surfacetypes>";
    const auto whole = [](const std::string& content) {
        return "<ANY><navmesh version=\"x\">" + content + "</navmesh></ANY>";
    };
    mMesh = load(whole(body + tables + "<ignored/>"));
    ASSERT_NE(mMesh.get(), nullptr);
    EXPECT_EQ(mMesh->mHeights.size(), 2U);
    EXPECT_EQ(mMesh->mHeights[1], 1.5F);
    EXPECT_EQ(mMesh->mVertices[0], Point(1, 2, 0));
    EXPECT_EQ(mMesh->mVertices[1], Point(0, 0, 0));
    EXPECT_EQ(mMesh->mNodes[0].mSurfaceTypeID, 1);
    EXPECT_EQ(mMesh->mNodes[1].mSurfaceTypeID, 0xFFFF);
    EXPECT_EQ(mMesh->mCubeSize, 0.25F);
    EXPECT_EQ(mMesh->findCharacterByUserID(-5000000000)->mFallHeight, 3);
    EXPECT_EQ(mMesh->findCharacterByName("b"), nullptr);
    EXPECT_EQ(mMesh->getCharactersForHeightClass(0).size(), 0U);
    EXPECT_EQ(mMesh->getCharactersForHeightClass(1).size(), 1U);
    EXPECT_EQ(mMesh->findSurfaceTypeByName("stone"), mMesh->findSurfaceTypeByID(7));
    EXPECT_EQ(mMesh->findSurfaceTypeByID(0xFFFF), nullptr);

    for (int again = 0; again < 2; ++again) { // reading replaces what was there
        const auto stream =
            Callback::openStream(gObjectAllocator, mFileCallback, "m", IO::FACCESS_READ);
        Parser::XML::XMLParser parser;
        const auto* const top = parser.parse(stream.get());
        EXPECT_TRUE(mMesh->readXML(*top->getChildElements("navmesh")));
    }
    EXPECT_EQ(mMesh->mHeights.size(), 2U);
    EXPECT_EQ(mMesh->mVertices.size(), 2U);
    EXPECT_EQ(mMesh->mNodes.size(), 2U);
    EXPECT_EQ(mMesh->mCharacters.size(), 1U);
    EXPECT_EQ(mMesh->mSurfaceTypes.size(), 1U);

    mMesh = load(whole(body + "<unknown/>" + tables));
    ASSERT_NE(mMesh.get(), nullptr);
    EXPECT_TRUE(mMesh->mCharacters.empty()) << "hidden behind an unknown element";

    struct Case {
        const char* mParent;
        const char* mPath;
        std::vector<std::string> mChildren;
    };
    const Case cases[] = {
        {"<navmesh",
         "",
         {"heightmap", "normal", "vertices", "nodes", "xaxis", "yaxis", "cubesize"}},
        {"<node>", "->'nodes'->'node'", {"heightclass", "polygon", "neighbour"}},
        {"character",
         "->'characters'->'character'",
         {"name", "userid", "physicalheight", "jumpheight", "fallheight", "maxheightclassid"}},
        {"<surfacetype>", "->'surfacetypes'->'surfacetype'", {"name", "id"}},
    };
    for (const Case& row : cases)
        for (const std::string& name : row.mChildren) {
            std::string changed = whole(body + tables);
            const std::size_t place = changed.find(row.mParent);
            for (const std::string& tag : {"<" + name + ">", "</" + name + ">"})
                changed.insert(changed.find(tag, place) + tag.size() - 1, "x");
            EXPECT_EQ(load(changed).get(), nullptr);
            EXPECT_EQ(Reports::take(), Texts{std::string("|In 'ANY'->'navmesh'") + row.mPath +
                                             " the tag '" + name + "' is required !"});
        }
    EXPECT_EQ(load(whole("<heightmap><height>2</height></heightmap>")).get(), nullptr);
    EXPECT_EQ(Reports::take(), Texts{"|In 'ANY'->'navmesh'->'heightmap'->'height' the attribute "
                                     "'id' is required !"});
    std::string empty = whole(body + tables);
    empty.erase(empty.find("0.25"), 4); // an element without children is no number
    EXPECT_EQ(load(empty).get(), nullptr);
    EXPECT_EQ(Reports::take(), Texts{"|In 'ANY'->'navmesh' the tag 'cubesize' is required !"});
    EXPECT_EQ(mFiles->openCount(), 0U);
}

TEST_F(NavMeshTest, AWorldKeepsNothingOfTheDocument) {
    mFiles->mFiles["m"] = Worlds::makeHarbour().toXML("m");
    Pathfinder::NavMeshInstance::createInstance(Common::getAllocator());
    EXPECT_TRUE(Pathfinder::NavMeshInstance::getInstance()->load("m", ""));
    EXPECT_EQ(NavMesh::getAllocator()->compact(), 0U) << "what only the document needed went back";
    Pathfinder::NavMeshInstance::destroyInstance();
}

TEST_F(NavMeshTest, LibraryChecksItsLifetimes) {
    NavMesh::initLibrary(mCallback, mFileCallback);
    EXPECT_EQ(Reports::take(), Texts{"gNavBuilder == NULL|NavMesh library is already initialised"});
    {
        const auto builder = NavMesh::getNavMeshBuilder();
        const auto optimizer = NavMesh::getNavMeshOptimizer();
        // they would outlive their allocator's owner, so only the reports are looked at here
        EXPECT_FALSE(builder.isLastReference());
        EXPECT_FALSE(optimizer.isLastReference());
        NavMesh::closeLibrary();
        EXPECT_EQ(Reports::take(),
                  (Texts{"gNavBuilder.isLastReference()|NavMeshBuilder instance is referenced from "
                         "outside the library, cannot delete the object !",
                         "gNavOptimizer.isLastReference()|NavMeshOptimizer instance is referenced "
                         "from outside the library, cannot delete the object !"}));
    }
    NavMesh::closeLibrary();
    EXPECT_EQ(NavMesh::getNavMeshBuilder().get(), nullptr);
    EXPECT_EQ(NavMesh::getNavMeshOptimizer().get(), nullptr);
    EXPECT_EQ(NavMesh::loadNavMeshXML("m").get(), nullptr);
    NavMesh::initLibrary({}, {});
    EXPECT_EQ(Reports::take(),
              (Texts{"gNavBuilder != NULL|NavMesh library is not initialised",
                     "gNavBuilder != NULL|NavMesh library is not initialised, navmesh builder will "
                     "be a NULL pointer",
                     "gNavOptimizer != NULL|NavMesh library is not initialised, navmesh optimizer "
                     "will be a NULL pointer",
                     "resources != NULL|NavMesh library is not initialised",
                     "cbMemory != NULL|Callback pointer for memory must not be a NULL pointer",
                     "cbFileIO != NULL|Callback pointer for file io must not be a NULL pointer"}));
    EXPECT_EQ(raisedBy([] { NavMesh::loadNavMeshXML("m"); }).substr(0, 21),
              "InvalidStateException");
    EXPECT_EQ(Reports::take(), Texts{"mFileIO != NULL|File callback cannot be a NULL pointer"});
}

} // namespace ZUNO::Tests
