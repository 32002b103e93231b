#include "benchmarks/endurance.h"
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

} // namespace ZUNO::Tests
