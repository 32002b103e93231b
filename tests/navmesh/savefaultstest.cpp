// Loading and saving a mesh while the host fails at each request and each call in turn.
#include "tests/support/navmeshlibrary.h"

#include <algorithm>
#include <functional>

namespace ZUNO::Tests {

using namespace Common;
using NavMesh::NavMeshContainer;

namespace {

/// Host files of which one call, of whatever kind, gives a wrong answer.
class FailingFiles : public MemoryFiles {
public:
    std::int32_t openFile(Handle* handle, const String& name, std::int32_t mode) override {
        return failsNow() ? static_cast<std::int32_t>(mAnswer)
                          : MemoryFiles::openFile(handle, name, mode);
    }
    std::int64_t getFileLength(Handle handle) override {
        return failsNow() ? mAnswer : MemoryFiles::getFileLength(handle);
    }
    std::int32_t readFile(void* buffer, std::uint32_t size, Handle handle) override {
        return isNow() ? static_cast<std::int32_t>(mAnswer)
                       : MemoryFiles::readFile(buffer, size, handle);
    }
    std::int32_t writeFile(const void* buffer, std::uint32_t size, Handle handle) override {
        if (!isNow())
            return MemoryFiles::writeFile(buffer, size, handle);
        if (mAnswer > 0 && size > 1)
            return MemoryFiles::writeFile(buffer, size - 1, handle); // it falls short
        return static_cast<std::int32_t>(std::min(mAnswer, std::int64_t{0}));
    }
    std::int64_t getFilePosition(Handle handle) override {
        return failsNow() ? mAnswer : MemoryFiles::getFilePosition(handle);
    }
    std::int64_t seekFile(std::int64_t offset, std::int32_t origin, Handle handle) override {
        return failsNow() ? mAnswer : MemoryFiles::seekFile(offset, origin, handle);
    }

    unsigned int mCalls = 0;
    unsigned int mFailing = 0; ///< from 1 on; 0: none
    std::int64_t mAnswer = 0;

private:
    bool isNow() { return ++mCalls == mFailing; }
    bool failsNow() { return isNow() && mAnswer < 0; }
};

} // namespace

class SaveFaultsTest : public FoundationTest {
protected:
    SaveFaultsTest() {
        mFiles = new FailingFiles;
        mFileCallback = mFiles;
        NavMesh::initLibrary(mCallback, mFileCallback);
        mFiles->mFiles["x"] = Worlds::makeFloor(3, 3).toXML("floor");
        mMesh = NavMesh::loadNavMeshXML("x");
        NavMesh::saveNavMeshXML("x", mMesh);
        NavMesh::saveNavMeshBinary("b", mMesh);
    }
    ~SaveFaultsTest() override {
        mMesh = nullptr;
        NavMesh::closeLibrary();
        Common::closeLibrary();
        Reports::take(); // the count of blocks has the refused requests in it
        EXPECT_EQ(mMemory->outstanding(), 0U);
        Common::initLibrary(mCallback);
    }

    /// What an operation comes to: a file's content.
    using Operation = std::function<std::string()>;

    /// Fails it once by `arm(n)`; returns whether it came to that. Nothing may be wrong unsaid.
    bool failOnce(unsigned int n, const Operation& operation, const std::string& right,
                  const std::function<bool(unsigned int)>& arm) {
        arm(n);
        std::string content;
        const std::string raised = raisedBy([&] { content = operation(); });
        const bool isReached = arm(0);
        const Texts reports = Reports::take();
        EXPECT_TRUE(!raised.empty() || !reports.empty() || content == right) << n;
        EXPECT_EQ(mFiles->openCount(), 0U) << n << ' ' << raised;
        EXPECT_EQ(raisedBy([&] { content = operation(); }), "") << "after " << n << ' ' << raised;
        EXPECT_TRUE(content == right) << "after " << n << ' ' << raised;
        EXPECT_EQ(Reports::take(), Texts{});
        return isReached;
    }

    FailingFiles* mFiles = nullptr;
    SharedPtr<Callback::FileIOCallback> mFileCallback;
    SharedPtr<NavMeshContainer> mMesh;
};

TEST_F(SaveFaultsTest, NothingGoesWrongUnsaidOrLasts) {
    const Operation operations[] = {
        [&] {
            NavMesh::saveNavMeshXML("out", mMesh);
            return mFiles->mFiles["out"];
        },
        [&] {
            NavMesh::saveNavMeshBinary("out", mMesh);
            return mFiles->mFiles["out"];
        },
        [&] {
            const auto mesh = NavMesh::loadNavMeshXML("x");
            return std::to_string(mesh != nullptr ? mesh->mNodes.size() : 0);
        },
        [&] {
            const auto mesh = NavMesh::loadNavMeshBinary("b");
            return std::to_string(mesh != nullptr ? mesh->mNodes.size() : 0);
        },
    };
    const auto armMemory = [&](unsigned int n) {
        const bool isReached =
            mMemory->mFailingRequest != 0 && mMemory->mRequests >= mMemory->mFailingRequest;
        mMemory->mRequests = 0;
        mMemory->mFailingRequest = n;
        return isReached;
    };
    const auto armFiles = [&](unsigned int n) {
        const bool isReached = mFiles->mFailing != 0 && mFiles->mCalls >= mFiles->mFailing;
        mFiles->mCalls = 0;
        mFiles->mFailing = n;
        return isReached;
    };
    unsigned int faults = 0;
    for (const Operation& operation : operations) {
        const std::string right = operation();
        NavMesh::getAllocator()->compact();
        for (unsigned int n = 1; failOnce(n, operation, right, armMemory); ++n, ++faults)
            NavMesh::getAllocator()->compact(); // so that the next one asks again
        for (const std::int64_t answer : {-1, -5, 0, 1}) {
            mFiles->mAnswer = answer;
            for (unsigned int n = 1; failOnce(n, operation, right, armFiles); ++n, ++faults)
                if (HasFailure())
                    return;
        }
    }
    EXPECT_GT(faults, 200U);
}

} // namespace ZUNO::Tests
