// What the host's callbacks do wrong, at every place where they can.
#include "reference/digest.h"
#include "tests/host/hosttest.h"

#include <algorithm>
#include <functional>
#include <random>

namespace ZUNO::Tests {

/// Host files of which one call in many goes wrong.
class FaultyFiles : public MemoryFiles {
public:
    std::int32_t readFile(void* dstBuffer, std::uint32_t numBytes, Handle handle) override {
        const std::int32_t count = MemoryFiles::readFile(dstBuffer, numBytes, handle);
        return isNow() && mWrongCount ? mWrongCount(count) : count;
    }
    std::int64_t getFileLength(Handle handle) override {
        const std::int64_t length = MemoryFiles::getFileLength(handle);
        return isNow() && mWrongLength ? mWrongLength(length) : length;
    }
    bool isValidHandle(Handle handle) override {
        return !(isNow() && mLosesHandle) && MemoryFiles::isValidHandle(handle);
    }

    std::function<std::int32_t(std::int32_t)> mWrongCount;
    std::function<std::int64_t(std::int64_t)> mWrongLength;
    bool mLosesHandle = false;
    unsigned int mFaultyCall = 0; ///< of all calls, from 1 on; 0: none
    unsigned int mCalls = 0;

private:
    bool isNow() { return ++mCalls == mFaultyCall; }
};

namespace {

/// A digest of what a world answers.
std::uint64_t askFiftyQueries() {
    Reference::Digest digest;
    std::mt19937 random(1);
    const auto place = [&] {
        const float x = static_cast<float>(random() % 32) / 2;
        const float z = static_cast<float>(random() % 32) / 2;
        return Vec3<float>(x, 0, z);
    };
    for (int i = 0; i < 50; ++i) {
        const int search = Interface::initPathSearch(place(), place());
        digest.add(static_cast<std::uint32_t>(search));
        if (search < 0)
            continue;
        while (Interface::runPathSearch(search, 3) == Pathfinder::PATH_RUNNING) {
        }
        Vec3<float> waypoint(0, 0, 0);
        while (Interface::getNextWaypoint(search, waypoint))
            digest.add(waypoint.mX + waypoint.mZ);
        digest.add(Interface::getPathCost(search));
        if (i % 3 != 0) // some stay open
            Interface::closePathSearch(search);
        digest.add(Interface::isBlocked({waypoint.mX, waypoint.mZ}) ? 1U : 0U);
    }
    return digest.value();
}

} // namespace

class FaultsTest : public HostTest {
protected:
    FaultsTest() {
        mFaultyFiles = new FaultyFiles;
        mFaultyFiles->mFiles = mFiles->mFiles;
        mFiles = mFaultyFiles;
        mFileCallback = SharedPtr<Common::Callback::FileIOCallback>(mFaultyFiles);
        EXPECT_TRUE(start());
        mRightDigest = askFiftyQueries();
        Interface::close();
    }

    /// Start, queries and close with a fault in them, which may come out as an exception of one of
    /// the names; then the same without.
    void survive(unsigned int n, const std::vector<std::string>& names,
                 const std::function<void()>& mend) {
        const std::string raised = raisedBy([&] {
            if (start())
                askFiftyQueries();
        });
        const bool isExpected = std::ranges::any_of(
            names, [&](const std::string& name) { return raised.starts_with(name); });
        EXPECT_TRUE(raised.empty() || isExpected) << n << ": " << raised;
        mend();
        Interface::close();
        ASSERT_EQ(mMemory->outstanding(), 0U) << n;
        ASSERT_EQ(mFiles->openCount(), 0U) << n;
        std::uint64_t digest = 0;
        const std::string raisedAgain = raisedBy([&] {
            if (start())
                digest = askFiftyQueries();
        });
        ASSERT_EQ(raisedAgain, "") << "after fault " << n;
        ASSERT_EQ(digest, mRightDigest) << "after fault " << n;
        Interface::close();
        mFaults += raised.empty() ? 0 : 1;
    }

    FaultyFiles* mFaultyFiles = nullptr;
    std::uint64_t mRightDigest = 0;
    unsigned int mFaults = 0; ///< those that came out as exceptions
};

// Each request for memory of a search is refused in turn, and the call made again.
TEST_F(FaultsTest, ASearchGoesOnAfterARefusedRequestAsIfNothingWere) {
    struct Answer {
        int mState = 1;
        unsigned int mExpansions = 0;
        std::vector<Vec3<float>> mWaypoints = {};
        std::uint32_t mCost = 0;
        bool operator==(const Answer&) const = default;
    };
    const auto ask = [&](const Vec3<float>& from, const Vec3<float>& to) {
        const auto insist = [](auto step) {
            while (raisedBy(step).starts_with("OutOfMemoryException")) {
            }
        };
        Answer answer;
        int id = -1;
        insist([&] { id = Interface::initPathSearch(from, to); });
        while (answer.mState == 1) {
            insist([&] { answer.mState = Interface::runPathSearch(id, 1); });
            answer.mExpansions += answer.mState == 1 ? 1 : 0;
        }
        for (bool isMore = true; isMore;) {
            Vec3<float> waypoint(0, 0, 0);
            insist([&] { isMore = Interface::getNextWaypoint(id, waypoint); });
            if (isMore)
                answer.mWaypoints.push_back(waypoint);
        }
        answer.mCost = std::bit_cast<std::uint32_t>(Interface::getPathCost(id));
        return answer; // the search stays open, so that the next one draws memory of its own
    };
    struct Case {
        Worlds::MeshModel mMesh;
        Vec3<float> mFrom;
        Vec3<float> mTo;
    };
    for (const Case& row : {Case{Worlds::makeFloor(9, 0), {1, 0, 1}, {5, 0, 5}},
                            Case{Worlds::makeHarbour(), {3, 0, 3}, {60, 0, 44}}}) {
        mFiles->mFiles["case"] = row.mMesh.toXML("case");
        ASSERT_TRUE(start("case"));
        const Answer expected = ask(row.mFrom, row.mTo);
        EXPECT_GT(expected.mWaypoints.size(), 2U);
        for (bool isReached = true; isReached; ++mFaults) {
            Interface::close();
            ASSERT_TRUE(start("case"));
            mMemory->mRequests = 0;
            mMemory->mFailingRequest = mFaults + 1;
            ASSERT_EQ(ask(row.mFrom, row.mTo), expected) << "request " << mFaults + 1;
            isReached = mMemory->mRequests > mFaults;
            mMemory->mFailsOnwards = true; // closing a search asks for nothing
            mMemory->mFailingRequest = 1;
            EXPECT_EQ(raisedBy([] { EXPECT_TRUE(Interface::closePathSearch(0)); }), "");
            mMemory->mFailingRequest = 0;
            mMemory->mFailsOnwards = false;
        }
        EXPECT_GT(mFaults, 4U);
        mFaults = 0;
        Interface::close();
    }
}

TEST_F(FaultsTest, NoRequestForMemoryIsEssential) {
    struct Mode {
        bool mThrows;
        bool mFailsOnwards;
    };
    Stderr reports;
    for (const auto& [throws, failsOnwards] :
         {Mode{false, false}, Mode{true, false}, Mode{false, true}, Mode{true, true}}) {
        mMemory->mThrows = throws;
        mMemory->mFailsOnwards = failsOnwards;
        for (unsigned int n = 1;; ++n) {
            mMemory->mRequests = 0;
            mMemory->mFailingRequest = n;
            bool wasReached = false;
            survive(n, {"OutOfMemoryException"}, [&] {
                wasReached = mMemory->mRequests >= n;
                mMemory->mFailingRequest = 0;
            });
            if (!wasReached || HasFatalFailure())
                break;
        }
    }
    EXPECT_EQ(reports.text().find("Try to dereference a NULL pointer"), std::string::npos);
    EXPECT_GT(mFaults, 100U);
}

TEST_F(FaultsTest, NoAnswerAboutFilesIsTrusted) {
    const std::vector<std::string> names = {
        "IOException",        "FileNotFoundException", "UnAuthorizedAccessException",
        "XMLParserException", "InvalidStateException", "NotSupportedException"};
    Stderr reports;
    struct Fault {
        decltype(FaultyFiles::mWrongCount) mWrongCount;
        decltype(FaultyFiles::mWrongLength) mWrongLength = {};
        bool mLosesHandle = false;
    };
    const auto read = [](std::int32_t factor, std::int32_t more) {
        return Fault{[=](std::int32_t count) { return count * factor + more; }};
    };
    for (const Fault& fault :
         {read(1, -1), read(0, -1), read(0, 0), read(1, 1),
          Fault{{}, [](std::int64_t length) { return length + 7; }},
          Fault{{}, [](std::int64_t length) { return length / 2; }}, Fault{{}, {}, true}})
        for (unsigned int n = 1;; ++n) {
            mFaultyFiles->mWrongCount = fault.mWrongCount;
            mFaultyFiles->mWrongLength = fault.mWrongLength;
            mFaultyFiles->mLosesHandle = fault.mLosesHandle;
            mFaultyFiles->mFaultyCall = n;
            mFaultyFiles->mCalls = 0;
            bool wasReached = false;
            survive(n, names, [&] {
                wasReached = mFaultyFiles->mCalls >= n;
                mFaultyFiles->mFaultyCall = 0;
                if (fault.mLosesHandle)
                    mFaultyFiles->closeAll(); // what the host itself lost
            });
            if (!wasReached || HasFatalFailure())
                break;
        }
    for (const std::int32_t result : {-1, -2, -3, -4, -5, -2147483647}) {
        mFiles->mOpenResult = result;
        survive(0, names, [&] { mFiles->mOpenResult = 0; });
    }
    reports.text();
    EXPECT_GT(mFaults, 10U);
}

} // namespace ZUNO::Tests
