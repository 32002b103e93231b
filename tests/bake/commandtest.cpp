// The command, from scene files to a mesh file and an exit status.
#include "pathfinder/version.h"
#include "tests/platform/process.h"
#include "tests/support/tempfolder.h"
#include "tools/picture/loadedmesh.h"
#include "tools/zunobake/levels.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace ZUNO::Tests {
namespace {

/// The corners of a square of 8 x 8, lying and upright.
const std::string square = "v 0 0 0\nv 0 0 8\nv 8 0 8\nv 8 0 0\n";
const std::string uprightSquare = "v 0 0 0\nv 8 0 0\nv 8 8 0\nv 0 8 0\n";

class BakeCommandTest : public testing::Test {
protected:
    Outcome bake(const std::string& scene, const std::string& options = {}) {
        const std::string output = options.starts_with("-o") ? "" : "-o " + mMesh + ' ';
        return runCommand(std::string(ZUNO_TOOL_FOLDER) + "/zunobake " +
                          mFolder.put("scene.obj", scene) + ' ' + output + options);
    }

    TempFolder mFolder;
    std::string mMesh = mFolder.in("mesh.bin");
};

TEST_F(BakeCommandTest, ReadsWhatObjFilesHold) {
    constexpr float eroded = 6.5F * 6.5F; // without a radius and a cell along open edges
    const struct {
        const char* mWhat;
        std::string mScene;
        const char* mOptions;
        std::size_t mSurfaces;
        float mArea; ///< of the mesh
    } cases[] = {
        {"a quadrangle", square + "f 1 2 3 4", "", 0, eroded},
        {"numbers from behind, textures and normals", square + "f -4/1/1 -3//2 -2/3 -1", "", 0,
         eroded},
        {"line ends, continued lines, comments",
         "# a\r\n" + square + "g a b\r\nf 1 2 \\\r\n3 4 # b\r\n", "", 0, eroded},
        {"a concave face", square + "v 4 0 4\nf 1 2 5 3 4", "", 0, 25.5F},
        {"materials", square + "usemtl a\nf 1 2 3\nusemtl b\nf 3 4 1", "", 2, eroded},
        {"no materials", square + "usemtl a\nf 1 2 3\nusemtl b\nf 3 4 1", "--no-materials", 0,
         eroded},
        {"a byte order mark", "\xEF\xBB\xBF" + square + "f 1 2 3 4", "", 0, eroded},
        {"faces from below", square + "f 4 3 2 1", "--both-sides", 0, eroded},
        {"z up", uprightSquare + "f 1 2 3 4", "--up z", 0, eroded},
        {"a group left out", square + "g roof\nf 1 2 3\ng floor\nf 1 2 3 4", "--without roof", 0,
         eroded},
        {"a face without area", square + "f 1 2 1\nf 1 2 3 4", "--skip-degenerate", 0, eroded},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.mWhat);
        const Outcome outcome = bake(each.mScene, each.mOptions);
        ASSERT_EQ(outcome.mStatus, 0) << outcome.mOutput;
        const Tools::LoadedMesh mesh(mMesh);
        EXPECT_EQ(mesh->mSurfaceTypes.size(), each.mSurfaces);
        float area = 0;
        for (const auto& node : mesh->mNodes) {
            const auto corner = [&](std::size_t i) {
                return mesh->projectToPlane(mesh->mVertices[node.mPolygon[i]]);
            };
            for (std::size_t i = 2; i < node.mPolygon.size(); ++i)
                area += signedArea(corner(0), corner(i - 1), corner(i)) / 2;
        }
        EXPECT_NEAR(area, each.mArea, 1.7F); // borders may leave their cells by one, all along
    }
}

TEST_F(BakeCommandTest, SaysInOneLineWhatIsWrongWithAScene) {
    const struct {
        std::string mScene;
        const char* mOptions;
        const char* mMessage;
    } cases[] = {
        {"", "", "scene.obj: no faces"},
        {square, "", "scene.obj: no faces"},
        {"v 0 0 nan\n", "", "scene.obj:1: coordinate 'nan' is no finite number"},
        {"v 0 0 1e99\n", "", "scene.obj:1: coordinate '1e99' is no finite number"},
        {"v 0 0\n", "", "scene.obj:1: a vertex needs three coordinates"},
        {square + "f 1 2 5", "", "scene.obj:5: corner 5 is out of range: 4 vertices so far"},
        {square + "f 1 2 0", "", "scene.obj:5: corner 0 is out of range: 4 vertices so far"},
        {square + "f 1 2 -5", "", "scene.obj:5: corner -5 is out of range: 4 vertices so far"},
        {square + "f 1 2 x", "", "scene.obj:5: corner 'x' is no vertex number"},
        {square + "f 1 2", "",
         "scene.obj:5: face without area; --skip-degenerate leaves such faces out"},
        {square + "f 1 2 2", "",
         "scene.obj:5: face without area; --skip-degenerate leaves such faces out"},
        {square + "f 4 3 2 1", "", "nothing is walkable: "},
        {square + "f 1 2 3 4", "--min-region 100000",
         "no island is as large as --min-region asks for"},
        {"v 0 0 0\nv 0 0 800\nv 800 0 800\nf 1 2 3", "",
         "the scene is 3200 x 3200 cells, and at most 8000000 altogether are taken: "},
        {"v 0 0 0\nv 0 0 1e38\nv 1e38 0 0\nf 1 2 3", "",
         "the scene is over 1e15 x over 1e15 cells"},
        {"v 0 0 0\nv 0 9000 8\nv 8 0 8\nf 1 2 3", "",
         "the scene is 72000 cells high, and at most 8191 are taken: "},
        {square + "f 1 2 3 4", "--agent tall:100", "agent tall is more than 254 cells high: "},
        {square + "f 1 2 3 4", "--agent low:0.5", "the climb must be lower than every agent"},
        {square + "usemtl a<b\nf 1 2 3 4", "-o x.xml",
         "the name 'a<b' can't stand in an XML file: "},
        {square + "f 1 2 3 4", "--from 9,0,9", "--from 9,0,9: there is no ground to walk on"},
        {square + "f 1 2 3 4", "--agent a:b", "zunobake: --agent: expected NAME:HEIGHT"},
        {square + "g roof\nf 1 2 3 4", "--without rof",
         "--without rof: no group, object or material has"},
        {"v 0 0 " + std::string(200, 'x'), "", "xxx...' is no finite number"},
        {square + "f 1 2 3 4", "-o y.xml --picture ./y.xml", "./y.xml: would be written twice"},
        {square + "f 1 2 3 4", "--up x", "zunobake: --up: expected y or z instead of 'x'\n"},
        {square + "f 1 2 3 4", "--slope 90", "--slope: expected a number from 0 to 89 instead of"},
    };
    for (const auto& each : cases) {
        const Outcome outcome = bake(each.mScene, each.mOptions);
        EXPECT_EQ(outcome.mStatus, 2);
        EXPECT_EQ(std::ranges::count(outcome.mOutput, '\n'), 1) << outcome.mOutput;
        EXPECT_NE(outcome.mOutput.find(each.mMessage), std::string::npos) << outcome.mOutput;
    }
}

/// A square of 8 x 8 in two nodes, one above the other, in a third that lies at x = 100.
const std::string gltf =
    R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}], "nodes": [
{"translation": [100, 0, 0], "children": [1, 2]}, {"name": "floor", "mesh": 0},
{"name": "roof", "mesh": 0, "translation": [0, 3, 0]}], "materials": [{"name": "stone"}],
"meshes": [{"name": "square", "primitives": [
{"attributes": {"POSITION": 0}, "indices": 1, "material": 0}]}], "accessors": [
{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3"},
{"bufferView": 1, "componentType": 5123, "count": 6, "type": "SCALAR"}], "bufferViews": [
{"buffer": 0, "byteLength": 48}, {"buffer": 0, "byteOffset": 48, "byteLength": 12}],
"buffers": [{"byteLength": 60, "uri": "data:application/octet-stream;base64,)"
    "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAABBAAAAQQAAAAAAAABBAAAAQQAAAAAAAAAAAAABAAIAAAACAAMA\"}]}";

TEST_F(BakeCommandTest, BakesAgainWhenTheSceneChanges) {
    const auto bufferOf = [](float side) {
        const float positions[] = {0, 0, 0, 0, 0, side, side, 0, side, side, 0, 0};
        return std::string(reinterpret_cast<const char*>(positions), sizeof(positions)) +
               std::string("\0\0\1\0\2\0\0\0\2\0\3", 12);
    };
    std::string separate = gltf;
    const std::size_t data = separate.find("data:");
    separate.replace(data, separate.find('"', data) - data, "a%20b.bin");
    const struct {
        const char* mScene;
        std::string mContent;
        const char* mChanged; ///< the file that is wrong or missing first
        std::string mFirst;
        std::string mOther;
        std::string mBroken;
    } rows[] = {{"scene.obj", "v 0 0 x", "scene.obj", square + "f 1 2 3 4",
                 "v 9 0 9\n" + square + "f 1 2 3 4", "v 0 0 x"},
                {"scene.gltf", separate, "a b.bin", bufferOf(8), bufferOf(9), "short"}};
    for (const auto& row : rows) {
        std::FILE* const tool =
            openPipe("timeout 60 " + std::string(ZUNO_TOOL_FOLDER) + "/zunobake --watch -o " +
                     mMesh + ' ' + mFolder.put(row.mScene, row.mContent) + " 2>&1");
        const auto waitFor = [&](const char* word) {
            char line[500];
            while (std::fgets(line, sizeof(line), tool) != nullptr)
                if (std::string_view(line).find(word) != std::string_view::npos)
                    return true;
            return false;
        };
        EXPECT_TRUE(waitFor(row.mScene)) << "what is wrong with it";
        mFolder.put(row.mChanged, row.mFirst);
        EXPECT_TRUE(waitFor("seconds"));
        const std::string first = mFolder.get("mesh.bin");
        mFolder.put(row.mChanged, row.mBroken);
        EXPECT_TRUE(waitFor(row.mScene)) << "what is wrong with it";
        EXPECT_EQ(mFolder.get("mesh.bin"), first);
        mFolder.put(row.mChanged, row.mOther);
        EXPECT_TRUE(waitFor("seconds"));
        EXPECT_NE(mFolder.get("mesh.bin"), first);
        mFolder.put(row.mChanged, ""); // nobody hears what is wrong with it: it ends
        closePipe(tool);
    }
}

TEST_F(BakeCommandTest, ReadsGltf) {
    const struct {
        const char* mWhat;
        const char* mOld; ///< what is replaced in the file
        const char* mNew;
        const char* mOptions;
        int mStatus;
        const char* mOutput;
    } cases[] = {
        {"nodes and a material", "", "", "", 0, "2 nodes, 8 vertices\nscene          4 tri"},
        {"a node left out", "", "", "--without roof", 0, "2 triangles, 1 faces left out"},
        {"a marked node", "", "", "--mark floor", 0, "surface types  floor stone"},
        {"a mesh left out", "", "", "--without square", 2, "the scene has no faces"},
        {"a material left out", "", "", "--without stone", 2, "the scene has no faces"},
        {"a name that nothing has", "", "", "--mark flor", 2, "--mark flor: no group or object"},
        {"a mirror", "100, 0, 0]", "0, 0, 0], \"scale\": [-1, 1, 1]", "", 0, "2 nodes"},
        {"half a turn", "100, 0, 0]", "0, 0, 0], \"rotation\": [0, 1, 0, 0]", "", 0, "2 nodes"},
        {"upside down", "100, 0, 0]", "0, 0, 0], \"rotation\": [1, 0, 0, 0]", "", 2, "nothing is"},
        {"a node in itself", "[1, 2]", "[0]", "", 2, "node 0 lies in two others, or in itself"},
        {"no such node", "[1, 2]", "[7]", "", 2, "node 7 is named and not there"},
        {"indices beyond", "\"count\": 6", "\"count\": 7", "", 2, "indices reach beyond their"},
        {"too few vertices", "\"count\": 4", "\"count\": 3", "", 2, "index 3 is out of range"},
        {"floats as indices", "5123", "5126", "", 2, "indices reach beyond their"},
        {"an extension", "\"scene\"", "\"extensionsRequired\": [\"X\"], \"scene\"", "", 2,
         "needs the extension X"},
        {"no JSON", "{\"asset\"", "[", "", 2, "cannot be read as glTF 2.0: "},
    };
    for (const auto& each : cases) {
        std::string text = gltf;
        const std::string old = each.mOld;
        text.replace(text.find(old), old.size(), each.mNew);
        const Outcome outcome =
            runCommand(std::string(ZUNO_TOOL_FOLDER) + "/zunobake " + mFolder.put("s.GLTF", text) +
                       " -o " + mMesh + ' ' + each.mOptions);
        EXPECT_EQ(outcome.mStatus, each.mStatus) << each.mWhat;
        EXPECT_NE(outcome.mOutput.find(each.mOutput), std::string::npos)
            << each.mWhat << ": " << outcome.mOutput;
    }
}

TEST_F(BakeCommandTest, OutputThatIsLostFails) {
    const Outcome lost = runCommand("sh -c '" + std::string(ZUNO_TOOL_FOLDER) + "/zunobake " +
                                    mFolder.put("scene.obj", square + "f 1 2 3 4") + " -o " +
                                    mMesh + " >/dev/full'");
    EXPECT_EQ(lost.mStatus, 2);
    EXPECT_EQ(lost.mOutput, "zunobake: standard output cannot be written\n");
    EXPECT_TRUE(bake(square + "f 1 2 3 4", "--json").mOutput.starts_with("{\"mesh\":\""));
    EXPECT_EQ(runCommand(std::string(ZUNO_TOOL_FOLDER) + "/zunobake --version").mOutput,
              "zunobake " ZUNO_VERSION_TEXT "\n");
}

TEST_F(BakeCommandTest, LeavesTheOldMeshWhenInterrupted) {
    const std::string field = "v 0 0 0\nv 0 0 650\nv 650 0 650\nv 650 0 0\nf 1 2 3 4";
    ASSERT_EQ(bake(square + "f 1 2 3 4").mStatus, 0);
    const std::string mesh = contentOf(mMesh);
    const Outcome outcome =
        runCommand("timeout -s INT 0.05 " + std::string(ZUNO_TOOL_FOLDER) + "/zunobake " +
                   mFolder.put("field.obj", field) + " --progress -o " + mMesh);
    EXPECT_EQ(outcome.mStatus, 124) << outcome.mOutput;
    EXPECT_EQ(contentOf(mMesh), mesh);
    EXPECT_EQ(mFolder.count(), 3); // two scenes, a mesh
}

TEST(LevelsTest, CutsWhereTheFewestPlacesArePartedAndNeverTooLate) {
    EXPECT_EQ(Tools::chooseLevels({0, 9, 9, 9}, 1, 4), std::vector<int>{});
    EXPECT_EQ(Tools::chooseLevels({0, 9, 1, 9, 9, 9, 9}, 1, 4), (std::vector<int>{2, 6}));
    EXPECT_EQ(Tools::chooseLevels({0, 1, 9, 9, 9, 9, 9}, 2, 3), (std::vector<int>{3, 6}));
}

} // namespace
} // namespace ZUNO::Tests
