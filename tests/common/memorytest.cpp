#include "common/memory/defaultallocator.h"
#include "common/memory/freelistallocator.h"
#include "common/memory/memorymanaged.h"
#include "common/memory/objectcreation.h"
#include "common/memory/threadsafeallocator.h"
#include "tests/support/foundation.h"

#include <map>
#include <random>

namespace ZUNO::Tests {

using namespace Common;
using namespace Common::Memory;

namespace {

/// The heap, with a memory of what was asked.
class Parent : public Allocator {
public:
    Parent() : Allocator("a name of 20 letters") {}
    void* allocate(std::uint64_t size) override {
        if (mIsEmpty)
            return nullptr;
        void* const block = std::malloc(static_cast<std::size_t>(size));
        mSizes[block] = size;
        return block;
    }
    void free(void* ptr) override {
        EXPECT_EQ(mSizes.erase(ptr), 1U);
        std::free(ptr);
    }
    bool isClean() override { return mSizes.empty(); }

    std::map<void*, std::uint64_t> mSizes;
    bool mIsEmpty = false;
};

struct Managed : MemoryManaged {
    explicit Managed(bool fails = false) {
        if (fails)
            throw 1;
    }
    const SharedPtr<Allocator>& allocator() const { return mAllocator; }
};

struct Holder : Managed {
    explicit Holder(const SharedPtr<Allocator>& inner) : mInner(createManaged<Managed>(inner)) {}
    ~Holder() override { delete mInner; }
    Managed mMember; ///< does not come from an allocator of its own
    Managed* mInner;
};

} // namespace

class MemoryTest : public FoundationTest {
protected:
    MemoryTest() : mParent(new Parent), mHandle(mParent) {}
    Parent* mParent;
    SharedPtr<Allocator> mHandle;
};

TEST_F(MemoryTest, FreeListServesEachSizeFromItsClass) {
    struct Case {
        std::uint64_t mRequest;
        unsigned int mClass; ///< 0: a block of its own from the parent
    };
    for (const Case& row : {Case{0, 1}, {3, 1}, {4, 2}, {7, 2}, {8, 3}, {251, 63}, {252, 0}}) {
        FreeListAllocator allocator(mHandle);
        void* const block = allocator.allocate(row.mRequest);
        ASSERT_EQ(mParent->mSizes.size(), 1U);
        const auto [address, size] = *mParent->mSizes.begin();
        if (row.mClass == 0) {
            EXPECT_EQ(size, row.mRequest + FreeListLayout::largePrefix);
            EXPECT_EQ(static_cast<char*>(block),
                      static_cast<char*>(address) + FreeListLayout::largePrefix);
            EXPECT_EQ(static_cast<void**>(block)[-1], nullptr);
            allocator.free(block);
            EXPECT_TRUE(mParent->isClean());
        } else {
            EXPECT_EQ(size, FreeListLayout::chunkSize(row.mClass));
            EXPECT_EQ(static_cast<void**>(block)[-1], address) << "the header names the chunk";
            void* const second = allocator.allocate(row.mRequest);
            EXPECT_EQ(static_cast<char*>(block) - static_cast<char*>(second),
                      static_cast<std::ptrdiff_t>(FreeListLayout::stride(row.mClass)));
            allocator.free(block);
            EXPECT_EQ(allocator.allocate(row.mRequest), block);
        }
    }
    EXPECT_TRUE(mParent->isClean()) << "chunks go with their allocator";
}

TEST_F(MemoryTest, FreeListBehavesLikeMallocUnderRandomUse) {
    FreeListAllocator allocator(mHandle);
    std::mt19937 random(4);
    std::map<unsigned char*, std::pair<std::size_t, unsigned char>> blocks;
    const auto check = [](const auto& entry) {
        for (std::size_t i = 0; i < entry.second.first; ++i)
            if (entry.first[i] != entry.second.second)
                return false;
        return true;
    };
    for (int step = 0; step < 20000; ++step) {
        if (random() % 5 < 3) {
            const std::size_t size = random() % 300;
            auto* const block = static_cast<unsigned char*>(allocator.allocate(size));
            const auto fill = static_cast<unsigned char>(random());
            std::fill_n(block, size, fill);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % FreeListLayout::alignment, 0U);
            ASSERT_TRUE(blocks.emplace(block, std::pair(size, fill)).second);
        } else if (!blocks.empty()) {
            auto place = blocks.lower_bound(reinterpret_cast<unsigned char*>(random() * random()));
            if (place == blocks.end())
                place = blocks.begin();
            ASSERT_TRUE(check(*place));
            allocator.free(place->first);
            blocks.erase(place);
        }
        if (step % 4000 == 0)
            allocator.compact();
    }
    for (const auto& entry : blocks) {
        ASSERT_TRUE(check(entry));
        allocator.free(entry.first);
    }
    std::uint64_t chunks = 0;
    for (const auto& [block, size] : mParent->mSizes)
        chunks += size;
    EXPECT_EQ(allocator.compact(), chunks) << "the bytes given back";
    EXPECT_TRUE(mParent->isClean());
}

TEST_F(MemoryTest, CompactKeepsChunksInUse) {
    FreeListAllocator allocator(mHandle);
    void* const used = allocator.allocate(1);
    EXPECT_EQ(allocator.compact(), 0U);
    EXPECT_TRUE(allocator.isClean()) << "it does not count its blocks";
    EXPECT_EQ(mParent->mSizes.size(), 1U);
    allocator.free(used);
    EXPECT_EQ(allocator.compact(), FreeListLayout::chunkSize(1));
    EXPECT_NE(allocator.allocate(1), nullptr) << "a new chunk comes";
}

TEST_F(MemoryTest, FreeListPassesOnThatThereIsNoMemory) {
    FreeListAllocator allocator(mHandle);
    mParent->mIsEmpty = true;
    EXPECT_EQ(allocator.allocate(8), nullptr);
    EXPECT_EQ(allocator.allocate(252), nullptr);
    EXPECT_EQ(allocator.allocate(~std::uint64_t{0}), nullptr);
    EXPECT_EQ(Reports::take(), Texts{"header|Cannot allocate memory block of size: " +
                                     std::to_string(FreeListLayout::chunkSize(3))});
    allocator.free(nullptr);
}

TEST_F(MemoryTest, AllocatorsReportWhatIsOutstanding) {
    {
        DefaultAllocator allocator;
        void* const blocks[] = {allocator.allocate(1), allocator.allocate(0),
                                allocator.allocate(9)};
        EXPECT_FALSE(allocator.isClean());
        allocator.free(nullptr);
        for (void* const block : blocks)
            std::free(block);
    }
    EXPECT_EQ(Reports::take(),
              Texts{"isClean()|Allocator has '3' blocks allocated, memory leak or wrong order of "
                    "Allocator object -> allocated object deletion"});
    EXPECT_STREQ(mParent->getName(), "a name of 20 l");
}

TEST_F(MemoryTest, ObjectsRememberTheirAllocator) {
    auto* const object = createManaged<Holder>(mHandle, gObjectAllocator);
    EXPECT_EQ(object->allocator().get(), mParent);
    EXPECT_EQ(object->mMember.allocator().get(), nullptr);
    EXPECT_EQ(object->mInner->allocator().get(), gObjectAllocator.get());
    const MemoryManaged* const base = object;
    delete base;
    EXPECT_TRUE(mParent->isClean());
    EXPECT_THROW(createManaged<Managed>(mHandle, true), int);
    EXPECT_TRUE(mParent->isClean()) << "a failing constructor gives the storage back";
    mParent->mIsEmpty = true;
    EXPECT_EQ(new (mHandle) Managed, nullptr);
    EXPECT_EQ(raisedBy([&] { createManaged<Managed>(mHandle); }),
              "OutOfMemoryException: No Memory available");
    EXPECT_EQ(raisedBy([&] { allocateBytes(processHeap(), 0x10000, 0x10000); }),
              "OutOfMemoryException: No Memory available")
        << "a size beyond 32 bits";
}

TEST_F(MemoryTest, FoundationStartsAndClosesItsGlobals) {
    EXPECT_TRUE(gObjectAllocator->isThreadSafe());
    EXPECT_EQ(gObjectAllocator.get(), gStringAllocator.get());
    initLibrary(mCallback);
    EXPECT_EQ(Reports::take(), Texts{"gMemCallback == NULL|Common is already initialized !"});
    closeLibrary();
    EXPECT_TRUE(mMemory->mBlocks.empty());
    for (const auto* global : {&gAllocator, &gDebugAllocator, &gObjectAllocator, &gStringAllocator})
        EXPECT_EQ(global->get(), nullptr);
    { const String early("made while it is closed"); }
    EXPECT_EQ(Reports::take(), Texts{"mPtr|Try to dereference a NULL pointer"});
    initLibrary({});
    EXPECT_STREQ(getAllocator()->getName(), "Default");
    closeLibrary();
    EXPECT_EQ(getAllocator().get(), nullptr);
    initLibrary(mCallback);
    EXPECT_STREQ(getAllocator()->getName(), "Callback");
}

} // namespace ZUNO::Tests
