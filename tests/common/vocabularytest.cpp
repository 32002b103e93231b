// Strings, shared pointers, singletons, containers.
#include "common/container/array.h"
#include "common/container/idvector.h"
#include "common/math/vec3.h"
#include "common/singleton.h"
#include "common/utility/saturate.h"
#include "tests/support/foundation.h"

#include <cmath>
#include <map>
#include <random>
#include <sstream>

namespace ZUNO::Tests {

using namespace Common;

class VocabularyTest : public FoundationTest {};

TEST_F(VocabularyTest, StringsCompareBySignedBytes) {
    const char* const ascending[] = {"", "\xE4", "a", "ab", "abc", "abd"};
    for (std::size_t i = 0; i + 1 < std::size(ascending); ++i) {
        EXPECT_TRUE(String(ascending[i]) < String(ascending[i + 1])) << i;
        EXPECT_FALSE(String(ascending[i + 1]) < String(ascending[i])) << i;
        EXPECT_FALSE(String(ascending[i]) == String(ascending[i + 1]));
    }
    EXPECT_FALSE(String("a") < String("a"));
}

TEST_F(VocabularyTest, StringsAreMadeAndJoined) {
    EXPECT_TRUE(String(static_cast<const char*>(nullptr)).isEmpty());
    EXPECT_STREQ(String(-12).getConstCharPtr(), "-12");
    EXPECT_STREQ(String(4000000000U).getConstCharPtr(), "4000000000");
    String text = "ab" + String("cd");
    text += "";
    text += text;
    EXPECT_STREQ(text.getConstCharPtr(), "abcdabcd");
    EXPECT_EQ(text.getLength(), 8U);
    EXPECT_EQ(text[8], '\0');
    text = text; // NOLINT: that is the test
    EXPECT_EQ(text.getLength(), 8U);
    EXPECT_STREQ(String("ABC-xyz").toLower().getConstCharPtr(), "abc-xyz");
    std::ostringstream stream;
    stream << text;
    EXPECT_EQ(stream.str(), "abcdabcd");
}

namespace {

template <typename Base>
struct Counted : Base {
    explicit Counted(int& destroyed) : mDestroyed(destroyed) {}
    ~Counted() override { ++mDestroyed; }
    int& mDestroyed;
};
struct Plain {
    virtual ~Plain() = default;
};

struct One : Singleton<One> {};

} // namespace

TEST_F(VocabularyTest, SharedPointersDestroyOnce) {
    int destroyed = 0;
    const auto share = [&](auto* object) {
        using T = std::remove_pointer_t<decltype(object)>;
        destroyed = 0;
        {
            SharedPtr<T> first(object);
            SharedPtr<T> second(first);
            SharedPtr<T> third;
            third = second;
            first = nullptr;
            second = nullptr;
            EXPECT_TRUE(third.isLastReference());
            EXPECT_EQ(destroyed, 0);
        }
        EXPECT_EQ(destroyed, 1);
    };
    share(new Counted<ReferenceCounted>(destroyed));
    share(new Counted<LockedReferenceCounted>(destroyed));
    share(new Counted<Plain>(destroyed));
}

TEST_F(VocabularyTest, SharedPointersReportMisuse) {
    int destroyed = 0;
    SharedPtr<Plain> null;
    EXPECT_TRUE(null.isLastReference());
    EXPECT_EQ(null.operator->(), nullptr);
    EXPECT_EQ(raisedBy([&] { (void)*null; }),
              "InvalidStateException: Try to dereference a NULL pointer");
    EXPECT_EQ(Reports::take(), (Texts{"mPtr|Try to dereference a NULL pointer",
                                      "mPtr|Try to dereference a NULL pointer"}));
    SharedPtr<Plain> alone(new Counted<Plain>(destroyed));
    alone.destroy();
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(Reports::take(), Texts{});
    auto* const shared =
        new SharedPtr<LockedReferenceCounted>(new Counted<LockedReferenceCounted>(destroyed));
    alignas(SharedPtr<LockedReferenceCounted>) unsigned char
        rest[sizeof(SharedPtr<LockedReferenceCounted>)];
    new (rest) SharedPtr<LockedReferenceCounted>(*shared); // a holder that is never heard of again
    shared->destroy();
    delete shared;
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(Reports::take(),
              Texts{"|there are other references to the object, delete it anyways"});
}

TEST_F(VocabularyTest, SingletonsKeepTheFirst) {
    One::createInstance(gObjectAllocator);
    One* const first = One::getInstance();
    One::createInstance(gObjectAllocator);
    auto* const second = new (gObjectAllocator) One;
    One::createInstance(second);
    EXPECT_EQ(One::getInstance(), first);
    delete second;
    EXPECT_EQ(Reports::take(), Texts(2, "|there is already an instance of this singleton object"));
    One::destroyInstance();
    EXPECT_EQ(One::getInstance(), nullptr);
}

TEST_F(VocabularyTest, IdsAreReusedTheLatestFirst) {
    Container::IDVector<String> items(gObjectAllocator);
    EXPECT_EQ(items.insert("a"), 0U);
    EXPECT_EQ(items.insert("b"), 1U);
    EXPECT_EQ(items.insert("c"), 2U);
    EXPECT_EQ(items.capacity(), 4U);
    items.remove(1);
    items.remove(2);
    items.remove(1);
    EXPECT_EQ(Reports::take(),
              Texts{"isValidID(id)|Element with id '1' cannot be removed since it is invalid"});
    EXPECT_EQ(items.insert("d"), 2U);
    EXPECT_EQ(items.insert("e"), 1U);
    items.remove(0);
    EXPECT_EQ(items.begin().getID(), 1U);
    EXPECT_FALSE(items.isValidID(items.capacity()));
    EXPECT_EQ(raisedBy([&] { (void)items[0]; }).substr(0, 27), "ArgumentOutOfRangeException");
    EXPECT_EQ(Reports::take(), Texts{"isValidID(id)|ID '0' points to an invalid item"});
    Container::IDVector<String>::Iterator unbound;
    ++unbound;
    EXPECT_EQ(Reports::take(), Texts{"mOwner|Iterator is not bound to an IDVector"});
    items.clear();
    EXPECT_EQ(items.begin(), items.end());
    EXPECT_EQ(items.insert("f"), 0U);
}

TEST_F(VocabularyTest, IdsBehaveAsTheModelUnderRandomUse) {
    Container::IDVector<int> items(gObjectAllocator);
    std::map<std::uint32_t, int> model;
    std::vector<std::uint32_t> freed;
    std::mt19937 random(9);
    std::uint32_t used = 0;
    for (int step = 0; step < 5000; ++step) {
        if (random() % 5 < 3) {
            const std::uint32_t id = items.insert(step);
            if (!freed.empty()) {
                EXPECT_EQ(id, freed.back());
                freed.pop_back();
            } else {
                EXPECT_EQ(id, used++);
            }
            model[id] = step;
        } else if (!model.empty()) {
            const auto place =
                std::next(model.begin(), static_cast<std::ptrdiff_t>(random() % model.size()));
            items.remove(place->first);
            freed.push_back(place->first);
            model.erase(place);
        }
        ASSERT_EQ(items.size(), model.size());
        if (step % 500 == 0) {
            std::map<std::uint32_t, int> seen;
            for (auto place = items.begin(); place != items.end(); ++place)
                seen[place.getID()] = *place;
            ASSERT_EQ(seen, model);
        }
    }
}

TEST_F(VocabularyTest, ArraysAndVectorsCheckTheirIndices) {
    Container::Array<int, 5> array{};
    EXPECT_FALSE(raisedBy([&] { array[5] = 1; }).empty());
    EXPECT_EQ(Reports::take(), Texts{"index < N_NUM_ELEM|index out of range"});
    Math::Vec3<float> vector(1, 2, 3);
    EXPECT_EQ(vector[2], 3);
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
    for (const Case& row : {Case{{-2, 1, 1}, 0}, {{1, 1, 0}, 1}, {{0, -1, 1}, 2}, {{1, 1, 1}, 2}})
        EXPECT_EQ(row.mVector.getDominantAxis(), row.mAxis);
    EXPECT_EQ(Utility::truncateToInt(-1.9F), -1);
    EXPECT_EQ(Utility::truncateToInt(1e20F), 2147483647);
    EXPECT_EQ(Utility::truncateToInt(-1e20F), -2147483647 - 1);
    EXPECT_EQ(Utility::truncateToInt(std::nanf("")), 0);
}

} // namespace ZUNO::Tests
