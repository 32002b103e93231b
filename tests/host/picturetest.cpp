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

} // namespace ZUNO::Tests
