#include "tests/platform/process.h"
#include "tests/support/tempfolder.h"
#include "worlds/meshmodel.h"

#include <algorithm>

namespace ZUNO::Tests {

TEST(Picture, DrawsWallsOnlyForBordersThatHaveAnEntry) {
    Worlds::MeshModel floor = Worlds::makeFloor(9, 1);
    std::ptrdiff_t walls = 0;
    for (std::size_t id = 0; id < floor.mNodes.size(); ++id) {
        auto& neighbours = floor.mNodes[id].mNeighbours;
        neighbours.resize(id % neighbours.size()); // fewer than corners
        walls += std::count(neighbours.begin(), neighbours.end(), -1);
    }
    const TempFolder folder;
    const std::string mesh = folder.put("m.xml", floor.toXML("m"));
    const Outcome run =
        runCommand(std::string(ZUNO_TOOL_FOLDER) + "/zunopath draw " + mesh + " " + mesh + ".svg");
    EXPECT_EQ(run.mStatus, 0) << run.mOutput;
    std::ifstream picture(mesh + ".svg");
    std::ptrdiff_t drawn = -1; // the legend's
    for (std::string line; std::getline(picture, line);)
        drawn += line.find("class=\"wall\" d=") != std::string::npos ? 1 : 0;
    EXPECT_EQ(drawn, walls);
}

TEST(Picture, DotsPathsUnderOtherFloorsAndShowsFloorsAlone) {
    const TempFolder folder;
    const std::string picture = folder.in("p.svg");
    const auto draw = [&](const std::string& options) {
        const Outcome run = runCommand(ZUNO_TOOL_FOLDER "/zunopath draw " ZUNO_SOURCE_FOLDER
                                                        "/worlds/harbour.xml " +
                                       picture + " --path 20,0,20 90,0,40" + options);
        EXPECT_EQ(run.mStatus, 0) << run.mOutput;
        return folder.get("p.svg");
    };
    const auto count = [](const std::string& text, const std::string& word) {
        std::size_t times = 0;
        for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1))
            ++times;
        return times;
    };
    const std::string all = draw("");
    EXPECT_EQ(count(all, "<title>node "), 873U);
    EXPECT_EQ(count(all, "<polyline class=\"path hidden\""), 1U);
    EXPECT_EQ(count(all, ">island 1, 9 nodes<"), 1U);
    EXPECT_EQ(count(all, ">20 units<"), 1U);
    const std::string low = draw(" --floor ..1");
    EXPECT_LT(count(low, "<title>node "), 873U);
    EXPECT_EQ(count(low, "<polyline class=\"path hidden\""), 0U) << "nothing lies above it";
    const std::string high = draw(" --floor 4..");
    EXPECT_EQ(count(high, "<polyline class=\"path hidden\""), 1U) << "all of it lies below";
    EXPECT_EQ(count(high, "<polyline class=\"path\""), 0U);
}

} // namespace ZUNO::Tests
