#include "common/astar/astaropenlist.h"
#include "reference/naiveastar.h"
#include "tests/support/foundation.h"

#include <random>

namespace ZUNO::Tests {

using Reference::NaiveOpenList;

using namespace Common::Astar;

class AStarOpenListTest : public FoundationTest {};

// Pushes, pops and lowered costs in any order, with so few costs that most are equal; some lowered
// without a new place, as a saving passed on does it.
TEST_F(AStarOpenListTest, GivesRecordsInTheModelsOrder) {
    std::mt19937 random(5);
    for (const unsigned int costs : {3U, 40U, 100000U}) {
        std::vector<AStarNode> records(20000);
        AStarOpenList list(Common::gObjectAllocator);
        NaiveOpenList model([&](int i) { return records[static_cast<std::size_t>(i)].mF; });
        std::vector<int> open;
        std::size_t pushed = 0;
        const auto indexOf = [&](const AStarNode* r) { return static_cast<int>(r - &records[0]); };
        while (pushed < records.size() || !open.empty()) {
            const auto action = random() % 16;
            const std::size_t place = open.empty() ? 0 : random() % open.size();
            if (action < (pushed % 5000 < 2500 ? 9 : 5) && pushed < records.size()) {
                records[pushed].mF = static_cast<float>(random() % costs);
                list.push(&records[pushed]);
                model.push(static_cast<int>(pushed));
                open.push_back(static_cast<int>(pushed++));
            } else if (action < 14 && !open.empty()) {
                const int best = model.popBest();
                ASSERT_EQ(indexOf(list.top()), best);
                list.pop();
                if (random() % 8 == 0) { // it comes back as the best, whatever costs as much
                    list.putBack();
                    ASSERT_EQ(indexOf(list.top()), best);
                    list.pop();
                }
                std::erase(open, best);
            } else if (!open.empty()) {
                AStarNode& record = records[static_cast<std::size_t>(open[place])];
                record.mF -= static_cast<float>(random() % 3);
                if (action == 15)
                    continue;
                list.reposition(&record);
                model.reposition(open[place]);
            }
            ASSERT_EQ(list.empty(), model.isEmpty());
        }
    }
}

} // namespace ZUNO::Tests
