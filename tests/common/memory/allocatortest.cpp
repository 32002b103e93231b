#include "common/callback/callbackallocator.h"
#include "common/callback/callbackfilestream.h"
#include "common/exceptions/argumentexceptions.h"
#include "common/memory/arena.h"
#include "common/memory/defaultallocator.h"
#include "common/memory/freelistallocator.h"
#include "common/memory/memorymanaged.h"
#include "common/memory/objectcreation.h"
#include "common/memory/pendinghandle.h"
#include "common/memory/threadsafeallocator.h"
#include "common/parser/xml/xmlparser.h"
#include "reference/blockmodel.h"
#include "reference/randomchoices.h"
#include "tests/support/foundation.h"
#include "tests/support/memoryfiles.h"
#include "tests/support/recordingallocator.h"

namespace ZUNO::Tests {

using namespace Common;
using namespace Common::Memory;

namespace {

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

class AllocatorTest : public FoundationTest {
protected:
    AllocatorTest() : mParent(new RecordingAllocator), mHandle(mParent) {}
    RecordingAllocator* mParent;
    SharedPtr<Allocator> mHandle;
};

TEST_F(AllocatorTest, FreeListServesEachSizeFromItsClass) {
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

TEST_F(AllocatorTest, FreeListKeepsBlocksApartUnderRandomUse) {
    FreeListAllocator allocator(mHandle);
    Reference::RandomChoices choices(4, 20000);
    EXPECT_STREQ(Reference::BlockModel(allocator, FreeListLayout::alignment).use(choices), nullptr);
    std::uint64_t chunks = 0;
    for (const auto& [block, size] : mParent->mSizes)
        chunks += size;
    EXPECT_EQ(allocator.compact(), chunks) << "the bytes given back";
    EXPECT_TRUE(mParent->isClean());
}

TEST_F(AllocatorTest, FreeListPassesOnThatThereIsNoMemory) {
    FreeListAllocator allocator(mHandle);
    mParent->mIsEmpty = true;
    Reference::RandomChoices choices(4, 20);
    EXPECT_STREQ(Reference::BlockModel(*mParent, 1).use(choices), "there is no memory");
    EXPECT_EQ(allocator.allocate(8), nullptr);
    EXPECT_EQ(allocator.allocate(252), nullptr);
    EXPECT_EQ(Reports::take(), Texts{"header|Cannot allocate memory block of size: " +
                                     std::to_string(FreeListLayout::chunkSize(3))});
    allocator.free(nullptr);
}

TEST_F(AllocatorTest, ANullHandleMeansTheProcessHeap) {
    FreeListAllocator list(processHeap());
    ThreadSafeAllocator locked(processHeap());
    for (Allocator* const allocator : std::initializer_list<Allocator*>{&list, &locked})
        for (const std::uint64_t size : {8U, 300U})
            allocator->free(allocator->allocate(size));
    EXPECT_EQ(list.compact(), FreeListLayout::chunkSize(3));
    EXPECT_TRUE(locked.isClean());
}

// What an allocator adds to a size must not carry it over 32 bits, of which no more reach the host.
TEST_F(AllocatorTest, SizesJustBelow4GiBAreRefusedAtEveryDoor) {
    FreeListAllocator list(mHandle);
    const std::unique_ptr<Arena> arena(createManaged<Arena>(mHandle));
    auto* const files = new MemoryFiles;
    files->mFiles["document"] = "<a><b/></a>";
    Callback::CallbackFileStream document{SharedPtr<Callback::FileIOCallback>(files)};
    const std::unique_ptr<Parser::XML::XMLParser> parser(
        createManaged<Parser::XML::XMLParser>(gObjectAllocator));
    document.open("document", IO::FACCESS_READ);
    const std::string none = "OutOfMemoryException: No Memory available";
    for (std::uint64_t size = 0xFFFFFFE1; size <= 0x100000010; ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(list.allocate(size), nullptr);
        files->mLength = static_cast<std::int64_t>(size);
        EXPECT_EQ(raisedBy([&] { parser->parse(&document); }),
                  "IOException: XMLParser: Cannot read complete file from stream");
        if (size > 0xFFFFFFFF)
            continue; // no longer a size on systems with 32 bits
        const auto count = static_cast<std::size_t>(size);
        EXPECT_EQ(tryAllocateBytes(gObjectAllocator, count), nullptr);
        EXPECT_EQ(raisedBy([&] { allocateBytes(gObjectAllocator, count, 1); }), none);
        EXPECT_EQ(raisedBy([&] { arena->allocate(count); }), none);
        EXPECT_EQ(raisedBy([&] { ArenaAllocator<char>(*arena).allocate(count); }), none);
        EXPECT_EQ(raisedBy([&] { STLAllocator<char>(gObjectAllocator).allocate(count); }), none);
    }
    EXPECT_TRUE(mParent->mRequests == 1 && mParent->mSizes.size() == 1) << "the arena itself";
    document.close();
}

TEST_F(AllocatorTest, AllocatorsReportWhatIsOutstanding) {
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
    SharedPtr<Allocator> host(new (mCallback) Callback::CallbackAllocator);
    void* const block = host->allocate(8);
    host = nullptr;
    mCallback->freeMemory(block);
    EXPECT_EQ(Reports::take(),
              Texts{"isClean()|callbackallocator has still an allocationcount of: 1"});
    EXPECT_STREQ(mParent->getName(), "a name of 20 l");
}

TEST_F(AllocatorTest, ObjectsRememberTheirAllocator) {
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
    const int handle = 0;
    std::byte storages[33]; // one more than objects may be nested
    for (std::byte& storage : storages)
        EXPECT_EQ(PendingHandles<int>::push(&storage, 1, handle), &storage != &storages[32]);
}

TEST_F(AllocatorTest, FoundationStartsAndClosesItsGlobals) {
    EXPECT_TRUE(gObjectAllocator->isThreadSafe());
    EXPECT_EQ(gObjectAllocator.get(), gStringAllocator.get());
    initLibrary(mCallback);
    EXPECT_EQ(Reports::take(), Texts{"gMemCallback == NULL|Common is already initialized !"});
    closeLibrary();
    EXPECT_EQ(mMemory->outstanding(), 0U);
    for (const auto* global : {&gAllocator, &gDebugAllocator, &gObjectAllocator, &gStringAllocator})
        EXPECT_EQ(global->get(), nullptr);
    { const String early("made while it is closed"); }
    EXPECT_EQ(Reports::take(), Texts{"mPtr|Try to dereference a NULL pointer"});
    initLibrary({});
    EXPECT_STREQ(getAllocator()->getName(), "Default");
    initLibrary({});
    initLibrary(mCallback); // which would go unused
    EXPECT_EQ(Reports::take(), Texts{"gMemCallback == NULL|Common is already initialized !"});
    closeLibrary();
    EXPECT_EQ(getAllocator().get(), nullptr);
    initLibrary(mCallback);
    EXPECT_STREQ(getAllocator()->getName(), "Callback");
}

TEST_F(AllocatorTest, AStartWithoutMemoryLeavesTheFoundationClosed) {
    closeLibrary();
    for (unsigned int refused = 1; !isLibraryRunning(); ++refused) {
        mMemory->mRequests = 0;
        mMemory->mFailingRequest = refused;
        const std::string raised = raisedBy([&] { initLibrary(mCallback); });
        EXPECT_EQ(raised, isLibraryRunning() ? "" : "OutOfMemoryException: No Memory available");
        EXPECT_EQ(isLibraryRunning(), mMemory->mRequests < refused);
        for (const std::string& report : Reports::take())
            EXPECT_TRUE(report.starts_with("header|") || report.starts_with("isClean()|"))
                << report;
    }
    mMemory->mFailingRequest = 0;
}

TEST_F(AllocatorTest, WhatIsKeptOverAShutDownKeepsItsMemory) {
    Exceptions::Exception* kept = nullptr;
    try {
        throw new Exceptions::ArgumentException("id", "a text that is too long for any string");
    } catch (Exceptions::Exception* exception) {
        kept = exception;
    }
    const Texts reported = {"|there are other references to the object, delete it anyways"};
    closeLibrary();
    EXPECT_EQ(Reports::take(), reported);
    EXPECT_STREQ(kept->getMessage().getConstCharPtr(), "a text that is too long for any string");
    delete kept;
    EXPECT_EQ(mMemory->outstanding(), 0U);
    EXPECT_EQ(mMemory->mWrongFrees, 0U);
    initLibrary(mCallback);
}

} // namespace ZUNO::Tests
