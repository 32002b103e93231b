#include "common/container/idvector.h"
#include "common/container/array.h"
#include "reference/idvectormodel.h"
#include "reference/randomchoices.h"
#include "tests/support/foundation.h"
#include "tests/support/recordingallocator.h"

#include <string>

namespace ZUNO::Tests {

using namespace Common;

using IDVectorTest = FoundationTest;

TEST_F(IDVectorTest, ReportsIdsThatNameNothing) {
    Container::IDVector<String> items(gObjectAllocator);
    for (const char* const text : {"a", "b", "c"})
        items.insert(text);
    EXPECT_EQ(items.capacity(), 4U);
    EXPECT_FALSE(items.isValidID(items.capacity()));
    items.remove(1);
    items.remove(1);
    EXPECT_EQ(Reports::take(),
              Texts{"isValidID(id)|Element with id '1' cannot be removed since it is invalid"});
    EXPECT_EQ(raisedBy([&] { (void)items[1]; }).substr(0, 27), "ArgumentOutOfRangeException");
    EXPECT_EQ(Reports::take(), Texts{"isValidID(id)|ID '1' points to an invalid item"});
    Container::IDVector<String>::Iterator unbound;
    ++unbound;
    EXPECT_EQ(Reports::take(), Texts{"mOwner|Iterator is not bound to an IDVector"});
}

TEST_F(IDVectorTest, BehavesAsItsModelUnderRandomUse) {
    Reference::RandomChoices choices(9, 5000);
    EXPECT_STREQ(Reference::IDVectorModel(gObjectAllocator).compare(choices), nullptr);
    Reports::take(); // of ids that name nothing
}

TEST_F(IDVectorTest, AnElementOfItsOwnIsInsertedWhileItGrows) {
    Container::IDVector<std::string> items(
        SharedPtr<Memory::Allocator>(new RecordingAllocator)); // overwrites what it is given back
    const std::string text(100, 'x');
    items.insert(text);
    for (std::uint32_t id = 1; id < 20; ++id)
        EXPECT_EQ(items[items.insert(items[0])], text) << id;
}

TEST_F(IDVectorTest, ArraysCheckTheirIndices) {
    Container::Array<int, 5> array{};
    const volatile unsigned int behind = 5; // compilers warn of what they can see
    EXPECT_FALSE(raisedBy([&] { array[behind] = 1; }).empty());
    EXPECT_EQ(Reports::take(), Texts{"index < N_NUM_ELEM|index out of range"});
}

} // namespace ZUNO::Tests
