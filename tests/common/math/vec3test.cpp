#include "common/math/vec3.h"
#include "common/utility/saturate.h"
#include "tests/support/foundation.h"

#include <cmath>

namespace ZUNO::Tests {

using namespace Common;

using Vec3Test = FoundationTest;

TEST_F(Vec3Test, ComponentsAreCheckedAndDropped) {
    Math::Vec3<float> vector(1, 2, 3);
    EXPECT_TRUE(vector[0] == 1 && vector[1] == 2 && vector[2] == 3);
    EXPECT_FALSE(raisedBy([&] { vector[3] = 1; }).empty());
    EXPECT_EQ(Reports::take(), Texts{"comp < 3|component id out of range [0..2]"});
    vector.killComponent(3);
    EXPECT_EQ(Reports::take(), Texts{"killCompID < 3|component id out of range [0..2]"});
    EXPECT_EQ(vector.killComponent(0), (Math::Vec2<float>(2, 3)));
    EXPECT_EQ(vector.killComponent(1), (Math::Vec2<float>(1, 3)));
    EXPECT_EQ(vector.killComponent(2), (Math::Vec2<float>(1, 2)));
    struct Case {
        Math::Vec3<float> mVector;
        unsigned int mAxis;
    };
    for (const Case& row :
         {Case{{-2, 1, 1}, 0}, {{1, 1, 0}, 1}, {{2, 1, 2}, 2}, {{0, -1, 1}, 2}, {{1, 1, 1}, 2}})
        EXPECT_EQ(row.mVector.getDominantAxis(), row.mAxis);
    EXPECT_EQ(Utility::truncateToInt(-1.9F), -1);
    EXPECT_EQ(Utility::truncateToInt(1e20F), 2147483647);
    EXPECT_EQ(Utility::truncateToInt(-1e20F), -2147483647 - 1);
    EXPECT_EQ(Utility::truncateToInt(std::nanf("")), 0);
}

} // namespace ZUNO::Tests
