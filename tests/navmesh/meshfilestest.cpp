#include "tests/support/damage.h"
#include "tests/support/navmeshlibrary.h"
#include "tests/support/recordingallocator.h"

#include <algorithm>
#include <bit>

namespace ZUNO::Tests {

using namespace Common;
using NavMesh::NavMeshContainer;

class MeshFilesTest : public NavMeshLibraryTest {
protected:
    MeshFilesTest() { mFiles->mFiles["in"] = Worlds::makeHarbour().toXML("harbour"); }
};

TEST_F(MeshFilesTest, XmlWrittenAndReadAgainGivesTheSameBytes) {
    NavMesh::saveNavMeshXML("once", NavMesh::loadNavMeshXML("in"));
    NavMesh::saveNavMeshXML("twice", NavMesh::loadNavMeshXML("once"));
    EXPECT_TRUE(mFiles->mFiles["once"] == mFiles->mFiles["twice"]);
    const std::string& text = mFiles->mFiles["once"];
    EXPECT_TRUE(text.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\" ?>\n"
                                 "<ZUNO>\n\t<navmesh version=\"2.5.0\">\n\t\t<heightmap>\n"
                                 "\t\t\t<height id=\"0\">2.5</height>\n"));
    // but for the comment and empty surfaces it is the generator's own text
    const std::string& made = mFiles->mFiles["in"];
    EXPECT_EQ(text.substr(text.find("<ZUNO>")), made.substr(made.find("<ZUNO>")));
}

TEST_F(MeshFilesTest, BinaryKeepsEveryBitOfLargeMeshes) {
    SharedPtr<NavMeshContainer> mesh = load(Worlds::makeFloor(100000, 3));
    ASSERT_GE(mesh->mNodes.size(), 100000U);
    mesh->mVertices[0].mX = std::bit_cast<float>(0x7FC12345U); // a NaN with a payload
    mesh->mVertices[1].mY = 0.1F + 1e-8F;
    mesh->mVertices[2].mZ = -0.0F;
    mesh->mSurfaceTypes.emplace_back().mName = "<\"&\xFF>";
    mesh->mCharacters.clear();
    NavMesh::saveNavMeshBinary("b", mesh);
    const SharedPtr<NavMeshContainer> read = NavMesh::loadNavMeshBinary("b");
    NavMesh::saveNavMeshBinary("again", read);
    EXPECT_TRUE(mFiles->mFiles["b"] == mFiles->mFiles["again"]);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(read->mVertices[0].mX), 0x7FC12345U);
    EXPECT_EQ(read->mVertices[1].mY, mesh->mVertices[1].mY);
    EXPECT_TRUE(read->mSurfaceTypes.back().mName == mesh->mSurfaceTypes.back().mName);
    EXPECT_TRUE(read->mCharacters.empty());
    ASSERT_EQ(read->mNodes.size(), mesh->mNodes.size());
    for (std::size_t i = 0; i < mesh->mNodes.size(); ++i) {
        EXPECT_EQ(read->mNodes[i].mPolygon, mesh->mNodes[i].mPolygon);
        EXPECT_EQ(read->mNodes[i].mNeighbours, mesh->mNodes[i].mNeighbours);
    }
}

/// Puts the binary form of a mesh together, item by item, without the storage.
class ExpectedBytes {
public:
    ExpectedBytes& item(int type, const std::string& name, const std::string& value) {
        mItems += static_cast<char>(type) + number(idOf(name), 4) + value;
        return *this;
    }
    ExpectedBytes& vector(const std::string& name, float x, float y, float z) {
        for (const auto& [suffix, value] : {std::pair("_x", x), {"_y", y}, {"_z", z}})
            item(10, name + suffix, real(value));
        return *this;
    }
    std::string bytes() const {
        std::string names = number(mNames.size(), 4);
        for (std::size_t id = 0; id < mNames.size(); ++id)
            names += number(mNames[id].size(), 2) + mNames[id] + number(id, 4);
        return "\x01" + number(1, 4) + number(13 + mItems.size() + 1, 8) + mItems + "\x0F" + names +
               number(1, 4) + number(7, 2) + "navmesh" + number(0, 4);
    }
    static std::string number(std::uint64_t value, int size) {
        std::string bytes;
        for (; size-- > 0; value >>= 8U)
            bytes += static_cast<char>(value & 0xFFU);
        return bytes;
    }
    static std::string real(float value) { return number(std::bit_cast<std::uint32_t>(value), 4); }

private:
    std::size_t idOf(const std::string& name) {
        const auto place = std::ranges::find(mNames, name);
        if (place == mNames.end())
            return mNames.push_back(name), mNames.size() - 1;
        return static_cast<std::size_t>(place - mNames.begin());
    }
    std::vector<std::string> mNames;
    std::string mItems;
};

TEST_F(MeshFilesTest, BinaryHasTheseBytes) {
    const auto n = ExpectedBytes::number;
    const auto f = ExpectedBytes::real;
    const auto expected = [&](std::uint64_t heights, std::uint64_t nodes) {
        return ExpectedBytes()
            .item(14, "navmesh", n(0, 8) + n(25, 4))
            .item(6, "heightmapcount", n(heights, 4))
            .item(10, "height", f(2))
            .vector("normal", 0, 0, 1)
            .vector("xaxis", 1, 0, 0.5F)
            .vector("yaxis", 0, 1, 0.25F)
            .item(10, "cubesize", f(0.125F))
            .item(6, "numvertices", n(1, 4))
            .vector("pos", 3, 4, 5)
            .item(6, "numnodes", n(nodes, 4))
            .item(7, "heightclass", n(0, 4))
            .item(4, "surfacetypeid", n(7, 2))
            .item(6, "numpolygon", n(1, 4))
            .item(6, "vert_id", n(0, 4))
            .item(7, "node_id", n(0xFFFFFFFF, 4))
            .item(6, "numcharacters", n(1, 4))
            .item(12, "name", n(1, 2) + "c")
            .item(9, "userid", n(9, 8))
            .item(10, "physicalheight", f(6))
            .item(10, "jumpheight", f(7))
            .item(10, "fallheight", f(8))
            .item(6, "maxheightclassid", n(1, 4))
            .item(6, "numsurfacetypes", n(1, 4))
            .item(12, "name", n(1, 2) + "s")
            .item(4, "id", n(7, 2))
            .bytes();
    };
    mFiles->mFiles["golden"] = expected(1, 1);
    SharedPtr<NavMeshContainer> mesh = NavMesh::loadNavMeshBinary("golden");
    EXPECT_EQ(mesh->mXAxis.mZ, 0.5F);
    EXPECT_EQ(mesh->mYAxis.mZ, 0.25F);
    EXPECT_EQ(mesh->mCharacters[0].mPhysicalHeight, 6);
    EXPECT_EQ(mesh->mCharacters[0].mJumpHeight, 7);
    EXPECT_EQ(mesh->mCharacters[0].mFallHeight, 8);
    EXPECT_EQ(mesh->getMemoryUsage(),
              sizeof(*mesh) + sizeof(mesh->mVertices[0]) + 4 + sizeof(mesh->mNodes[0]) + 8 +
                  sizeof(mesh->mCharacters[0]) + sizeof(mesh->mSurfaceTypes[0]));
    NavMesh::saveNavMeshBinary("b", mesh);
    EXPECT_TRUE(mFiles->mFiles["b"] == expected(1, 1));
    // the writer says what the form can't hold; missing neighbours are none
    mesh->mNodes[0].mNeighbours.assign({-1, -1});
    NavMesh::saveNavMeshBinary("b", mesh);
    mesh->mNodes[0].mNeighbours.clear();
    NavMesh::saveNavMeshBinary("b", mesh);
    EXPECT_TRUE(mFiles->mFiles["b"] == expected(1, 1));
    EXPECT_EQ(Reports::take(), Texts{});
    mesh->mNodes[0].mNeighbours.assign({-1, 0});
    NavMesh::saveNavMeshBinary("b", mesh);
    EXPECT_EQ(Reports::take(),
              Texts{"|node 0 has neighbours behind its last corner: the binary form leaves them "
                    "out, and paths over them will not be found"});
    // a count reserves no more than the stream could hold: the item that is missing fails instead;
    // and where the host's length allows any count, the table is one that there is no memory for
    constexpr std::int64_t honest = MemoryFiles::noLength;
    constexpr std::int64_t endless = std::int64_t{1} << 40;
    mMemory->mLimit = std::uint64_t{1} << 30;
    struct Case {
        std::uint64_t mHeights;
        std::uint64_t mNodes;
        std::int64_t mLength;
        const char* mRaised;
    };
    for (const Case& row :
         {Case{0xFFFFFFFF, 1, honest, "TypeMismatchException"},
          {1, 0xFFFFFFFF, honest, "TypeMismatchException"},
          {0x3FFFFFF9, 1, endless, "OutOfMemoryException"}, // 0xFFFFFFE4 bytes
          {0x3FFFFFFC, 1, endless, "OutOfMemoryException"}, // 0xFFFFFFF0
          {0x3FFFFFFF, 1, endless, "OutOfMemoryException"}, // 0xFFFFFFFC
          {0x40000000, 1, endless, "OutOfMemoryException"},
          {1, 0xFFFFFFEF / sizeof(mesh->mNodes[0]) + 1, endless, "OutOfMemoryException"}}) {
        if (sizeof(void*) == 4 && row.mLength == endless)
            continue; // no table is so large there
        mFiles->mFiles["b"] = expected(row.mHeights, row.mNodes);
        mFiles->mLength = row.mLength;
        const std::string raised = raisedBy([] { NavMesh::loadNavMeshBinary("b"); });
        EXPECT_TRUE(raised.starts_with(row.mRaised)) << row.mHeights << ": " << raised;
    }
}

TEST_F(MeshFilesTest, SavingTakesItsMemoryFromTheLibrary) {
    auto* const own = new RecordingAllocator;
    const SharedPtr<NavMeshContainer> mesh(
        Memory::createManaged<NavMeshContainer>(SharedPtr<Memory::Allocator>(own)));
    const unsigned int requests = own->mRequests;
    for (const auto save : {NavMesh::saveNavMeshBinary, NavMesh::saveNavMeshXML})
        save("b", mesh);
    EXPECT_EQ(own->mRequests, requests);
}

TEST_F(MeshFilesTest, NamesHoldEveryByteThatAFormCarries) {
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    std::string withoutMarkup = everyByte;
    withoutMarkup.erase(withoutMarkup.find('<'), 1);
    const SharedPtr<NavMeshContainer> mesh = NavMesh::loadNavMeshXML("in");
    mesh->mSurfaceTypes[0].mName = everyByte.c_str();
    NavMesh::saveNavMeshBinary("b", mesh);
    EXPECT_EQ(NavMesh::loadNavMeshBinary("b")->mSurfaceTypes[0].mName.getConstCharPtr(), everyByte);
    mesh->mSurfaceTypes[0].mName = withoutMarkup.c_str();
    NavMesh::saveNavMeshXML("x", mesh);
    EXPECT_EQ(NavMesh::loadNavMeshXML("x")->mSurfaceTypes[0].mName.getConstCharPtr(),
              withoutMarkup);
    mesh->mSurfaceTypes[0].mName = "a<b";
    NavMesh::saveNavMeshXML("x", mesh);
    EXPECT_NE(mFiles->mFiles["x"].find("<name>a<b</name>"), std::string::npos) << "as it stands";
    EXPECT_TRUE(raisedBy([] { NavMesh::loadNavMeshXML("x"); }).starts_with("XMLParserException"));
}

TEST_F(MeshFilesTest, EmptyTablesAndBrokenFiles) {
    mFiles->mFiles["e"] = "<a><navmesh><heightmap/><normal/><vertices/><nodes/><xaxis/><yaxis/>"
                          "<cubesize/></navmesh></a>";
    NavMesh::saveNavMeshBinary("b", NavMesh::loadNavMeshXML("e"));
    NavMesh::saveNavMeshXML("x", NavMesh::loadNavMeshBinary("b"));
    EXPECT_NE(mFiles->mFiles["x"].find("\t\t<characters>\n\t\t</characters>\n"), std::string::npos);
    const std::string good = mFiles->mFiles["b"];
    const auto load = [&](const std::string& content) {
        mFiles->mFiles["b"] = content;
        NavMesh::loadNavMeshBinary("b");
    };
    for (std::size_t i = 0; i < good.size(); ++i)
        EXPECT_TRUE(raisedBy([&] { load(good.substr(0, i)); }).starts_with("SerializeException"));
    EXPECT_EQ(outcomesOfDamage(good, 0x01, load),
              "V5 S8 T1 .1 S11 .4 T1 .1 S3 T5 .1 S3 .4 T1 .1 S3 .4 T1 .1 S3 .4 T1 .1 S3 .4 T1 "
              ".1 S3 .4 T1 .1 S3 .4 T1 .1 S3 .4 T1 .1 S3 .4 T1 .1 S3 .4 T1 .1 S3 .4 T1 .1 S3 T5 "
              ".1 S3 T5 .1 S3 T5 .1 S3 T5 S6 .11 S2 .18 S2 .12 S2 .12 S2 .12 S2 .11 S2 .11 S2 "
              ".11 S2 .11 S2 .11 S2 .11 S2 .12 S2 .15 S2 .12 S2 .17 S2 .19 S4 .1 S1 .11");
    EXPECT_EQ(outcomesOfDamage(good, 0xFF, load),
              "V5 S21 .4 S5 T4 S5 .4 S5 .4 S5 .4 S5 .4 S5 .4 S5 .4 S5 .4 S5 .4 S5 .4 S5 .4 S5 "
              "T4 S5 T4 S5 T4 S5 T4 S7 .11 S2 .18 S2 .12 S2 .12 S2 .12 S2 .11 S2 .11 S2 .11 S2 "
              ".11 S2 .11 S2 .11 S2 .12 S2 .15 S2 .12 S2 .17 S2 .19 S6 .11");
    Reports::take();
    NavMesh::saveNavMeshXML("n", {});
    EXPECT_EQ(Reports::take(), Texts{"mesh != NULL|There is no mesh to save"});
    mFiles->mWriteResult = -5;
    EXPECT_EQ(raisedBy([] { NavMesh::saveNavMeshXML("n", NavMesh::loadNavMeshXML("in")); }),
              "OutOfSpaceException: CallbackFileStream: Cannot write to file, disk full.");
    EXPECT_EQ(raisedBy([] { NavMesh::saveNavMeshBinary("n", NavMesh::loadNavMeshXML("in")); }),
              "OutOfSpaceException: CallbackFileStream: Cannot write to file, disk full.");
    EXPECT_EQ(mFiles->openCount(), 0U);
    Reports::take();
}

} // namespace ZUNO::Tests
