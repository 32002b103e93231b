#include "common/sharedptr.h"
#include "common/singleton.h"
#include "tests/support/foundation.h"

#include <cstddef>

namespace ZUNO::Tests {

using namespace Common;

using SharedPtrTest = FoundationTest;

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

/// One whose storage is a test's own.
template <typename Base>
struct Stored : Counted<Base> {
    using Counted<Base>::Counted;
    static void operator delete(void*) noexcept {}
};

struct One : Singleton<One> {};

} // namespace

TEST_F(SharedPtrTest, SharedPointersDestroyOnce) {
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

TEST_F(SharedPtrTest, SharedPointersReportMisuse) {
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
}

// The others may go, be copied over, or be copied; none of them touches the object.
TEST_F(SharedPtrTest, ADestroyedObjectsOtherHoldersCanGo) {
    int destroyed = 0;
    alignas(std::max_align_t) static std::byte storage[256]; // a counted object's is not given back
    const auto destroy = [&](auto* object) {
        using T = std::remove_pointer_t<decltype(object)>;
        destroyed = 0;
        T* volatile unfollowed = object; // g++ warns of a count that it does not follow
        SharedPtr<T> first(unfollowed);
        SharedPtr<T> second(first);
        {
            const SharedPtr<T> third(first);
            first.destroy();
            EXPECT_EQ(first.get(), nullptr);
            EXPECT_EQ(destroyed, 1);
        }
        second = SharedPtr<T>();
        EXPECT_EQ(destroyed, 1);
        EXPECT_EQ(Reports::take(),
                  Texts{"|there are other references to the object, delete it anyways"});
    };
    destroy(::new (storage) Stored<Plain>(destroyed));
    destroy(::new (storage) Stored<ReferenceCounted>(destroyed));
    destroy(::new (storage) Stored<LockedReferenceCounted>(destroyed));
}

TEST_F(SharedPtrTest, SingletonsKeepTheFirst) {
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

} // namespace ZUNO::Tests
