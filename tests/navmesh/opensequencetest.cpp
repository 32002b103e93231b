// The sorted part of an open list against a plain row of entries.
#include "navmesh/opensequence.h"
#include "tests/support/navmeshlibrary.h"

#include <algorithm>
#include <random>

namespace ZUNO::Tests {

using namespace NavMesh;

class OpenSequenceTest : public NavMeshLibraryTest {
protected:
    static constexpr std::uint32_t nodes = 3000;

    OpenSequenceTest() {
        for (std::uint32_t node = 0; node < nodes; ++node)
            mRecords.makeRoom(node).mState = SearchRecord::OPEN;
    }
    std::uint32_t below(std::size_t count) { return static_cast<std::uint32_t>(mRandom() % count); }
    OpenEntry entry(unsigned int costs) {
        while (isIn(mNode = below(nodes))) {
        }
        return {static_cast<float>(below(costs)), mNode};
    }
    bool isIn(std::uint32_t node) const {
        return std::ranges::find(mPlain, node, &OpenEntry::mNode) != mPlain.end();
    }
    void fill(unsigned int costs) {
        for (auto left = 1 + below(50); left != 0; --left)
            mPlain.push_back(entry(costs));
        if (below(4) == 0)
            mPlain.front().mF = std::numeric_limits<float>::infinity();
        std::ranges::sort(mPlain, std::greater<>(), &OpenEntry::mF);
        mSequence.makeRoom(mPlain.size());
        mSequence.beginFilling();
        for (const OpenEntry& one : mPlain)
            mSequence.append(one);
    }
    void insert(const OpenEntry& added) {
        if (!(added.mF < mPlain.front().mF))
            return;
        auto place = mPlain.end();
        while (!(added.mF < place[-1].mF))
            --place;
        mPlain.insert(place, added);
        mSequence.insert(added);
    }
    /// Removes an entry, or lowers or raises it in its place.
    void change(std::uint32_t node, bool isRemoved, float cost) {
        const auto place = std::ranges::find(mPlain, node, &OpenEntry::mNode);
        OpenEntry* const found = mSequence.find(node);
        ASSERT_EQ(found != nullptr, place != mPlain.end());
        if (found == nullptr)
            return;
        place->mF = cost;
        mSequence.setCost(found, cost);
        if (isRemoved) {
            mPlain.erase(place);
            mSequence.erase(found);
        }
    }
    void changeOne(unsigned int costs) {
        const OpenEntry& one = mPlain[below(2) == 0 ? 0 : below(mPlain.size())];
        const float near = one.mF + static_cast<float>(below(301)) - 150;
        change(below(8) == 0 ? below(nodes) : one.mNode, below(3) == 0,
               below(40) == 0 ? static_cast<float>(below(costs)) : near);
    }
    void expectSameRow() {
        ASSERT_EQ(mSequence.isEmpty(), mPlain.empty());
        if (mPlain.empty())
            return;
        ASSERT_EQ(mSequence.best().mNode, mPlain.back().mNode);
        ASSERT_EQ(mSequence.worst().mNode, mPlain.front().mNode);
    }

    BlockPool mPool{Common::Memory::processHeap()};
    SearchRecords mRecords{nodes, mPool};
    OpenSequence mSequence{mPool, mRecords};
    std::vector<OpenEntry> mPlain; ///< the best last
    std::mt19937 mRandom{11};
    std::uint32_t mNode = 0;
};

TEST_F(OpenSequenceTest, KeepsAnyRow) {
    std::size_t longest = 0;
    for (int round = 0; round < 100; ++round) {
        const unsigned int costs = round % 3 == 0 ? 8 : 4096; // with ties, and mostly without
        const unsigned int changes = round % 4 < 2 ? 0 : 4;
        fill(costs);
        for (auto left = below(1500); left != 0 && !mPlain.empty(); --left) {
            mSequence.makeRoom(1);
            insert(entry(costs));
            for (auto i = changes == 0 ? 0 : below(changes); i != 0 && !mPlain.empty(); --i)
                changeOne(costs);
            if (below(200) == 0 && round % 2 == 0)
                mSequence.tellPlaces();
            expectSameRow();
        }
        longest = std::max(longest, mPlain.size());
        for (; !mPlain.empty() && round % 5 != 0; mPlain.pop_back()) {
            expectSameRow();
            mSequence.removeBest();
        }
        mPlain.clear();
        if (round % 5 == 0)
            mSequence.clear();
        expectSameRow();
    }
    EXPECT_GT(longest, 500U);
}

} // namespace ZUNO::Tests
