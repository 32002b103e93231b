// Doors, gaps and steps around what an agent just fits through or climbs.
#include "tests/bake/bakedscene.h"
#include "tools/zunobake/unreachable.h"

#include <gtest/gtest.h>

namespace ZUNO::Tests {
namespace {

/// Two rooms at some height, and a way in the wall between them.
struct Passage {
    double mFloor;
    double mHeight = 4;
    double mWidth = 3;
    double mStep = 0; ///< how much higher the second room lies
};

Worlds::SceneModel makeRooms(const Passage& passage) {
    Worlds::SceneModel scene;
    scene.begin("rooms", "");
    const double floor = passage.mFloor;
    scene.addBox({0, floor - 1, 0}, {5, floor, 6});
    scene.addBox({5, floor - 1, 0}, {10, floor + passage.mStep, 6});
    constexpr double front = 0.99; // right before a cell
    scene.addBox({4.8, floor - 1, 0}, {5.3, floor + 5, front});
    scene.addBox({4.8, floor - 1, front + passage.mWidth}, {5.3, floor + 5, 6});
    scene.addBox({4.8, floor + passage.mHeight, front}, {5.3, floor + 5, front + passage.mWidth});
    return scene;
}

TEST(BakeLimitsTest, HeightAndRadiusAreRoundedUpAndClimbDown) {
    struct Who {
        double mCellSize;
        double mCellHeight;
        float mHeight;
        float mRadius;
        float mClimb;
    };
    constexpr Who adult{0.25, 0.125, 2, 0.5F, 0.5F};
    constexpr Who shorter{0.25, 0.125, 1.9F, 0.5F, 0.5F};
    constexpr Who decimal{0.2, 0.1, 1.9F, 0.6F, 0.7F};
    const struct {
        const char* mWhat;
        Who mWho;
        Passage mPassage;
        bool mPasses;
    } cases[] = {
        {"a door with a cell to spare", shorter, {0, 2.1}, true},
        {"the same off the cells", shorter, {0.07, 2.1}, true},
        {"the same right below the next cell", shorter, {0.12, 2.1}, true},
        {"a door just as high", adult, {0, 2}, true},
        {"the same off the cells", adult, {0.05, 2}, true},
        {"a door just as high in decimals", decimal, {0, 1.9}, true},
        {"a door more than a cell too low", adult, {0, 1.87}, false},
        {"the same off the cells", adult, {0.07, 1.87}, false},
        {"a gap a cell wider than the agent", adult, {0, 4, 1.27}, true},
        {"a gap as wide as the agent", adult, {0, 4, 1}, false},
        {"a gap a cell wider in decimals", decimal, {0, 4, 1.42}, true},
        {"a step as high as the climb", adult, {0, 4, 3, 0.5}, true},
        {"the same off the cells", adult, {0.07, 4, 3, 0.5}, true},
        {"a step a cell higher", adult, {0, 4, 3, 0.625}, false},
        {"a step as high as the climb in decimals", decimal, {0, 4, 3, 0.7}, true},
        {"a step a cell higher in decimals", decimal, {0, 4, 3, 0.8}, false},
    };
    for (const auto& [what, who, passage, passes] : cases) {
        Tools::BakeSettings settings;
        settings.mCellSize = who.mCellSize;
        settings.mCellHeight = who.mCellHeight;
        settings.mRadius = who.mRadius;
        settings.mClimb = who.mClimb;
        settings.mAgents = {{"agent", who.mHeight}};
        const BakedScene baked(makeRooms(passage), settings);
        EXPECT_EQ(Tools::countMesh(*baked.mMesh).mIslandSizes.size(), passes ? 1U : 2U)
            << what << ", floor at " << passage.mFloor;
    }
}

TEST(BakeLimitsTest, SaysWhichPassageNearlyConnectsWhatCannotBeReached) {
    using Flaw = Tools::Passage::Flaw;
    const struct {
        Passage mPassage;
        std::optional<Flaw> mFlaw;
        double mMeasure;
        double mNeeded;
    } cases[] = {
        {{0, 1.8}, Flaw::LOW, 1.8, 2},
        {{0.07, 1.6}, Flaw::LOW, 1.6, 2},
        {{0, 4, 1.02}, Flaw::NARROW, 1, 1.25},
        {{0, 1}, {}, 0, 0},       // far too low
        {{0, 4, 3, 2}, {}, 0, 0}, // a step
    };
    for (const auto& [rooms, flaw, measure, needed] : cases) {
        Tools::BakeSettings settings;
        settings.mAgents = {{"agent"}};
        const BakedScene baked(makeRooms(rooms), settings);
        const HostKit::MeshView view(*baked.mMesh);
        Tools::PassageFinder finder(baked.mScene, baked.mSettings, view);
        for (const float start : {2.0F, 8.0F}) {
            const auto parts = Tools::listUnreachable(
                *baked.mMesh,
                {start, static_cast<float>(rooms.mFloor + rooms.mStep * (start > 5)), 3}, &finder);
            ASSERT_EQ(parts.size(), 1U);
            EXPECT_EQ(parts[0].mPart.mPlace.mX > 5, start < 5);
            const auto& passage = parts[0].mPassage;
            ASSERT_EQ(passage.has_value(), flaw.has_value());
            if (!passage.has_value())
                continue;
            EXPECT_EQ(passage->mFlaw, flaw);
            EXPECT_NEAR(passage->mMeasure, measure, 0.01);
            EXPECT_EQ(passage->mNeeded, needed);
            EXPECT_NEAR(passage->mPlace.mX, 5, 0.5F);
            EXPECT_NEAR(passage->mPlace.mY, rooms.mFloor, 0.01);
        }
    }
}

} // namespace
} // namespace ZUNO::Tests
