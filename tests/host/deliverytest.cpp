// What is delivered, seen from outside: exports, programs, the README's listing.
#include "pathfinder/version.h"
#include "tests/platform/process.h"
#include "tests/support/tempfolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>

namespace ZUNO::Tests {
namespace {

const std::string tools = ZUNO_TOOL_FOLDER;
const std::string sources = ZUNO_SOURCE_FOLDER;

} // namespace

TEST(Delivery, ExportsTheInterfaceAndNothingElse) {
    if (std::string(ZUNO_LIBRARY).ends_with(".a"))
        GTEST_SKIP() << "a static library exports nothing";
    std::multiset<std::string> names;
    const std::string scope = "ZUNO::Pathfinder::Interface::";
    for (const std::string& name : exportsOf(ZUNO_LIBRARY)) {
        ASSERT_TRUE(name.starts_with(scope)) << name;
        names.insert(name.substr(scope.size(), name.find('(') - scope.size()));
    }
    EXPECT_EQ(names, (std::multiset<std::string>{
                         "operator=", "initWorldRepresentation", "close", "initPathSearch",
                         "runPathSearch", "getNextWaypoint", "getPathCost", "closePathSearch",
                         "isBlocked", "traceRay", "traceRay", "getGroundHeight",
                         "getBoundingRectangle", "saveBlockingMap"}));
}

TEST(Delivery, ShowsTheSmallestHostInTheReadme) {
    const std::string listing = contentOf(sources + "/examples/smallesthost.cpp");
    EXPECT_NE(contentOf(sources + "/README.md").find(listing), std::string::npos);
    EXPECT_LT(std::count(listing.begin(), listing.end(), '\n'), 41);
}

/// Whether all code of a page stands in the example that it explains.
void expectListings(const char* document, const char* example, std::size_t least) {
    const std::string listing = contentOf(sources + "/examples/" + example);
    const std::string page = contentOf(sources + "/docs/" + document);
    const std::string begin = "```cpp\n";
    std::size_t blocks = 0;
    for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at)) {
        at += begin.size();
        const std::string block = page.substr(at, page.find("```", at) - at);
        EXPECT_NE(listing.find(block), std::string::npos) << block;
        ++blocks;
    }
    EXPECT_GE(blocks, least);
}

TEST(Delivery, WalksAsTheDocumentSays) {
    const Outcome run = runCommand(tools + "/walkingcrowd " + sources + "/worlds/harbour.xml");
    EXPECT_EQ(run.mStatus, 0);
    EXPECT_GT(std::atoi(run.mOutput.c_str()), 30)
        << run.mOutput << "goals of 50 walkers in a minute";
    expectListings("walking.md", "walkingcrowd.cpp", 8);
}

TEST(Delivery, StraightensPathsAsTheDocumentSays) {
    const Outcome run = runCommand(tools + "/walkingcharacter " + sources + "/worlds/harbour.xml");
    EXPECT_EQ(run.mStatus, 0);
    for (const char* line : {"snapped by 0.5\n", "arrived: yes\n", "10 apart.\n", "near as 15\n"})
        EXPECT_NE(run.mOutput.find(line), std::string::npos) << run.mOutput;
    expectListings("straight-paths.md", "walkingcharacter.cpp", 5);
}

TEST(Delivery, CommitsTheHarbourThatItsGeneratorMakes) {
    const TempFolder temporary;
    const std::string made = temporary.path().string() + "/harbour.xml";
    ASSERT_EQ(runCommand(tools + "/makeworld harbour " + made).mStatus, 0);
    EXPECT_TRUE(contentOf(made) == contentOf(sources + "/worlds/harbour.xml"));
}

TEST(Delivery, RunsProgramsAsTheySay) {
    const TempFolder temporary;
    const std::string file = ' ' + temporary.path().string() + "/x ";
    const std::string harbour = ' ' + sources + "/worlds/harbour.xml";
    const struct {
        std::string mCommand;
        int mStatus;
        const char* mOutput;
    } cases[] = {
        {"smallesthost" + harbour, 0, "\nleft behind: 0 blocks\n"},
        {"smallesthost", 2, "usage: smallesthost MESH\n"},
        {"owncallbacks" + harbour, 0,
         ": isValidID(id)\nError Message: ID '7' points to an invalid item\nleft behind: 0 blocks"},
        {"owncallbacks /nowhere/mesh.xml", 1,
         "FileNotFoundException: CallbackFileStream: File or path not found\nleft behind: 0"},
        {"makeworld floor" + file + "--nodes 9 --seed 2", 0, "x: 9 nodes"},
        {"makeworld harbour" + file + "--nodes 9", 2, "are for floors; a harbour has neither"},
        {"makeworld harbour", 2, "file is required"},
        {"makescene maze" + file + "--size 4 --seed 3", 0, "faces"},
        {"makescene bridge" + file + "--seed 3", 2, "for mazes and towns; a bridge has"},
        {"makescene toun" + file, 2, "maze or town instead of 'toun'; did you mean 'town'?\n"},
        {"makescene maze" + file + "--size 1", 2,
         "--size: expected a whole number from 2 to 1000 instead of"},
        {"makescene maze" + file + "--sise 9", 2, "no option '--sise'; did you mean '--size'?\n"},
        {"zunodemo" + harbour + " --budget 0", 2,
         "--budget: expected a whole number of 1 or more instead"},
        {"makescene --complete t", 0, "town\t\n"},
        {"zunopath --complete dr", 0, "draw\tDraw a mesh as"},
        {"zunopath --complete path x.xml --b", 0, "--budget\texpansions per call"},
        {"zunopath --manual-page", 0, ".SS draw\nDraw a mesh as"},
        {"makescene --version", 0, "makescene " ZUNO_VERSION_TEXT "\n"},
        {"makeworld --version", 0, "makeworld " ZUNO_VERSION_TEXT "\n"},
        {"zunodemo --version", 0, "zunodemo " ZUNO_VERSION_TEXT "\n"},
        {"zunopath --version", 0, "zunopath " ZUNO_VERSION_TEXT "\n"},
        {"zunotrace --version", 0, "zunotrace " ZUNO_VERSION_TEXT "\n"},
    };
    for (const auto& row : cases) {
        const Outcome run = runCommand(tools + '/' + row.mCommand);
        EXPECT_EQ(run.mStatus, row.mStatus) << row.mCommand;
        EXPECT_NE(run.mOutput.find(row.mOutput), std::string::npos) << run.mOutput;
    }
}

TEST(Delivery, DemonstratesWithoutLeaks) {
    const TempFolder temporary;
    const std::string picture = temporary.path().string() + "/demo.svg";
    const std::string recording = temporary.path().string() + "/recording";
    const Outcome run =
        runCommand(tools + "/zunodemo " + sources + "/worlds/harbour.xml --picture " + picture +
                   " --animation " + picture + "2.svg --record " + recording);
    EXPECT_EQ(run.mStatus, 0) << run.mOutput;
    const Outcome replay = runCommand(tools + "/zunopath replay " + recording);
    EXPECT_NE(replay.mOutput.find("every answer as recorded\n"), std::string::npos)
        << replay.mOutput;
    EXPECT_NE(contentOf(picture + "2.svg").find("<animateMotion"), std::string::npos);
    EXPECT_NE(run.mOutput.find("memory left behind     0 blocks, 0 bytes"), std::string::npos);
    EXPECT_TRUE(contentOf(picture).ends_with("</svg>\n"));
}

TEST(Delivery, AnswersPeopleAtTheCommandLine) {
    const std::string mesh = sources + "/worlds/harbour.xml";
    const TempFolder temporary;
    const std::string folder = temporary.path().string();
    const std::string broken = folder + "/broken.xml";
    std::ofstream(broken) << "<a>\n<navmesh>\n<b></c></navmesh></a>";
    const std::string binary = folder + "/harbour.bin";
    const std::string defective = folder + "/defective.xml";
    std::string defects = contentOf(mesh);
    defects.replace(defects.find("<node_id>2</node_id>"), 20, "<node_id>9999</node_id>");
    defects.replace(defects.find("<pos>2.5/0/0</pos>"), 18, "<pos>2.5/inf/0</pos>");
    std::ofstream(defective) << defects;
    const std::string crowded = folder + "/crowded.xml";
    std::string neighbours = contentOf(mesh);
    neighbours.insert(neighbours.find("</neighbour>"), "<node_id>5</node_id>");
    std::ofstream(crowded) << neighbours;
    const std::string marked = folder + "/marked";
    std::ofstream(marked) << "\xEF\xBB\xBF"
                             "bounds\n";
    const std::string scene = folder + "/scene.obj";
    std::ofstream(scene) << "# a square\nv 0 0 0\n";
    const std::string empty = folder + "/empty.xml";
    std::ofstream{empty};
    const std::string copy = folder + "/copy.XML";
    struct Case {
        std::string mArguments;
        int mStatus;
        std::string mOutput; ///< part of it
    };
    const Case cases[] = {
        {"--help", 0, "Exit status"},
        {"path --help", 0, "--budget"},
        {"info " + mesh, 0, "nodes          873"},
        {"info --json " + mesh, 0, "\"islands\":[864,9]"},
        {"path " + mesh + " --from 2,0,2 --to 50,5,25 --budget 10", 0, "found: cost 109.594, "},
        {"path " + mesh + " --from -2,0,2 --to 50,5,25", 1,
         "The nearest place is (0, 0, 2) on node 0, 2 away."},
        {"path " + mesh + " --to -2,0,2 --from 50,5,25 --json", 1,
         "\"goal\":{\"node\":null,\"nearest\""},
        {"path " + mesh + " --from 2,0,2 --to 100,1,75", 1, "no path\nThe start"},
        {"path " + mesh + " --from 2,0 --to 1,1,1", 2, "zunopath: expected x,y,z instead of '2,0'"},
        {"path " + mesh + " --from 2,0,2 --to 1,1,nope", 2, "instead of '1,1,nope'"},
        {"path " + mesh + " --from 2,0,2 --to 50,5,25 --straight", 0, "straight: length 93."},
        {"path " + mesh + " --from 2,0,2 --to 50,5,25 --straight=plain --json", 0,
         "\"straight\":[[2.0,0.0,2.0],["},
        {"nearest " + mesh + " --at -2,0,2", 0, "0 0 2 on node 0, 2 units away"},
        {"nearest " + mesh + " --at -2,0,2 --within 1 --json", 1, "\"nearest\":null"},
        {"explain " + mesh + " --from -2,0,2 --to 50,5,25", 1, "The nearest place is (0, 0, 2)"},
        {"explain " + mesh + " --from 2,0,2 --to 100,1,75 --json", 1,
         "\"answer\":\"other island\""},
        {"height " + mesh + " --at 20,5,20", 0, "5 units on node "},
        {"height " + mesh + " --at 20,1,20 --json", 0, "\"height\":0.0,\"node\":"},
        {"ray " + mesh + " --from 2,2 --to 90,2 --json", 0, "{\"query\":\"ray\",\"hit\":false}"},
        {"ray " + mesh + " --from 2,0,2 --to 2,0,90", 0, "hit at 45.5 units"},
        {"blocked " + mesh + " --at 2,2", 0, "free"},
        {"height " + mesh + " --at 20,20 --json", 0, "\"height\":5.0"},
        {"height " + mesh + " --at -9,20", 1, "no ground"},
        {"bounds " + mesh, 0, "0 0 to 105 80 units"},
        {"draw " + mesh + " " + folder + "/d.svg --path 2,0,2 50,5,25 --blocked", 0, ""},
        {"draw " + mesh + " " + folder + "/d.svg --path 2,0,2 100,1,75", 1,
         "zunopath: path 1 of 1: no path\nThe start (2, 0, 2) stands on node 0"},
        {"draw " + mesh + " " + folder + "/d.svg --path 1,0,1", 2, "expected a start and a goal"},
        {"draw " + mesh + " d.svg --floor 3..1", 2, "expected LOW..HIGH, LOW.. or ..HIGH instead"},
        {"draw " + mesh + " d.svg --floor 90..", 2, "no node lies within these heights"},
        {"draw " + mesh + " d.jpg", 2, "d.jpg: expected a name that ends in .svg or .png"},
        {"draw " + mesh + " /nowhere/d.svg", 2, "zunopath: /nowhere/d.svg: cannot be written"},
        {"convert " + mesh + " " + binary, 0, "harbour.bin: 873 nodes, 1096 vertices"},
        {"path " + binary + " --from 2,0,2 --to 50,5,25", 0, "found: cost 109.594, "},
        {"convert " + binary + " " + folder + "/back.xml", 0, "873 nodes"},
        {"convert " + crowded + " " + folder + "/c.bin", 0,
         "/c.bin: node 0 has more neighbours than corners"},
        {"convert " + mesh + " /tmp/x.txt", 2, "expected a name that ends in .xml or .bin"},
        {"convert " + mesh + " /nowhere/x.bin", 2, "/nowhere/x.bin: cannot be written: no such"},
        {"check " + mesh, 1,
         ": odd: the nodes around node 864, at 100, 1, 75, can't be reached from the largest "
         "island (9 nodes, 82 square units)\n"},
        {"check " + mesh, 1, "873 nodes, 0 defects, 1 oddities"},
        {"check " + binary, 1, "0 defects"},
        {"check " + defective, 1, ": defect: vertex 1 is not finite\n"},
        {"check " + defective, 1, "leads to node 9999 of 873\n"},
        {"check " + defective, 1, "2 defects"},
        {"check --json " + defective, 1, "\"defects\":[\"vertex 1 is not finite\",\"node 1: "},
        {"check " + broken, 2, "are not equal (Line: 3, Row: "},
        {"info /nowhere/mesh.xml", 2, "zunopath: /nowhere/mesh.xml: there is no such file\n"},
        {"info " + sources, 2, ": is a folder; expected a mesh\n"},
        {"info " + broken, 2, "are not equal (Line: 3, Row: "},
        {"info " + scene, 2, "is a scene (Wavefront OBJ); 'zunobake SCENE -o MESH' makes a mesh"},
        {"check " + empty, 2, ": is empty; expected a mesh\n"},
        {"check " + marked, 2, ": is no mesh: neither XML nor the binary form\n"},
        {"info", 2, "zunopath: mesh is required; --help tells more\n"},
        {"info --to", 2, "there is no option '--to'; --help lists them\n"},
        {"path --to", 2, "zunopath: --to: a value is missing\n"},
        {"run " + mesh + " /nowhere/script", 2, "/nowhere/script: cannot be opened"},
        {"run " + mesh + ' ' + folder, 2, folder + ": cannot be opened; expected a script"},
        {"run " + mesh + ' ' + marked, 0, "0 0 to 105 80 units\n"},
        {"inof " + mesh, 2, "zunopath: there is no command 'inof'; did you mean 'info'?\n"},
        {"path " + mesh + " --to 1,1,1 --from " + std::string(5000, '7'), 2,
         "instead of '" + std::string(60, '7') + "...'\n"},
        {"convert " + mesh + ' ' + copy, 0, "copy.XML: 873 nodes"},
        {"convert " + copy + ' ' + copy, 0, "copy.XML: 873 nodes"},
        {"draw " + copy + ' ' + copy, 2, "copy.XML: would be written over what is read\n"},
        {"draw " + copy + ' ' + folder + "/./copy.XML", 2, "would be written over what is read\n"},
    };
    for (const Case& row : cases) {
        const Outcome run = runCommand(tools + "/zunopath " + row.mArguments);
        EXPECT_EQ(run.mStatus, row.mStatus) << row.mArguments << '\n' << run.mOutput;
        EXPECT_NE(run.mOutput.find(row.mOutput), std::string::npos) << row.mArguments << '\n'
                                                                    << run.mOutput;
    }
    for (const auto& [written, warning] : {std::pair("/c.xml", false), {"/c.bin", true}}) {
        const std::string errors = folder + "/errors";
        runCommand(tools + "/zunopath convert " + crowded + ' ' + folder + written, errors);
        EXPECT_EQ(contentOf(errors).starts_with("zunopath: "), warning) << contentOf(errors);
        EXPECT_EQ(contentOf(errors).empty(), !warning) << contentOf(errors);
    }
    const std::string scriptFile = folder + "/script";
    std::ofstream(scriptFile) << "bounds # all\n\nblocked 2,2\nstraight plain\nray 1,1 2\n";
    const Outcome script = runCommand(tools + "/zunopath run " + mesh + " <" + scriptFile);
    EXPECT_EQ(script.mStatus, 2);
    EXPECT_NE(script.mOutput.find("0 0 to 105 80 units\nfree\n"), std::string::npos)
        << script.mOutput;
    EXPECT_NE(script.mOutput.find("standard input:5: expected x,y or x,y,z instead of '2'"),
              std::string::npos);
}

} // namespace ZUNO::Tests
