#include "benchmarks/endurance.h"
#include "benchmarks/game.h"
#include "tests/support/tempfolder.h"

#include <algorithm>

namespace ZUNO::Tests {

TEST(Endurance, HoldsNoMoreAfterManySearchesAndStarts) {
    using Benchmarks::Endurance;
    const TempFolder folder;
    Endurance endurance(folder.in("floor.xml"), Worlds::makeFloor(400, 1));
    const auto table = endurance.churn(20000, 50, 10);
    ASSERT_EQ(table.size(), 10U);
    for (std::size_t i = 5; i < table.size(); ++i) // warm by then
        EXPECT_LE(table[i].mBytes, table[4].mBytes + table[4].mBytes / 20) << table[i].mDone;
    for (const auto& row : endurance.restart(20, 20))
        EXPECT_EQ(row.mBlocks + row.mBytes, 0U) << row.mDone;
    EXPECT_EQ(endurance.mistakes(), 0U);
}

TEST(Endurance, AnswersAsAFreshWorldDoesInTheMiddleOfAGame) {
    const TempFolder folder;
    Benchmarks::GameSettings settings;
    settings.mCharacters = 40;
    settings.mBudget = 500;
    settings.mReloadsPerMesh = 2;
    for (const unsigned int seed : {1U, 2U}) {
        settings.mMeshes.push_back(folder.in(std::to_string(seed) + ".xml"));
        std::ofstream(settings.mMeshes.back(), std::ios::binary)
            << Worlds::makeFloor(400, seed).toXML("game");
    }
    Benchmarks::Game game(settings);
    game.play(40);
    const std::uint64_t bytes = game.play(40).mMostBytes;
    const Benchmarks::GamePart later = game.play(80);
    EXPECT_LE(later.mMostBytes, bytes + bytes / 10);
    EXPECT_EQ(later.mLeftBehind, 0U);
    EXPECT_EQ(later.mDifferent, 0U);
    EXPECT_GT(later.mCompared, 2000U);
    EXPECT_GT(later.mFailures, 5U) << "frames and starts that memory ended";
}

} // namespace ZUNO::Tests
