// What the host's callbacks do wrong, at every place where they can.
#include "hostkit/exports.h"
#include "reference/fixedqueries.h"
#include "tests/host/hosttest.h"

#include <algorithm>
#include <functional>

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

/// Digests of what a world answers.
std::string askFiftyQueries() {
    HostKit::Exports exports;
    const std::string answers = Reference::FixedQueries(exports, "").ask(50);
    const int open = exports.initPathSearch({1, 0, 1}, {13, 0, 13}); // and stays so
    exports.runPathSearch(open, 5);
    return answers;
}

/// Makes each call again until it is refused no memory; expansions one at a time, for each happens
/// as a whole or not at all. Searches stay open, so that each draws memory of its own.
class PatientExports : public HostKit::Exports {
    template <typename Call>
    static auto insist(Call call) {
        decltype(call()) answer{};
        while (raisedBy([&] { answer = call(); }).starts_with("OutOfMemoryException")) {
        }
        return answer;
    }

public:
    int initPathSearch(const Vec3& start, const Vec3& goal) override {
        return insist([&] { return Exports::initPathSearch(start, goal); });
    }
    int runPathSearch(int id, unsigned int budget) override {
        int state = Pathfinder::PATH_RUNNING;
        for (; budget != 0 && state == Pathfinder::PATH_RUNNING; --budget)
            state = insist([&] { return Exports::runPathSearch(id, 1); });
        return state;
    }
    bool getNextWaypoint(int id, Vec3& waypoint) override {
        return insist([&] { return Exports::getNextWaypoint(id, waypoint); });
    }
    bool closePathSearch(int) override { return true; }
};

} // namespace

class FaultsTest : public HostTest {
protected:
    FaultsTest() {
        mFaultyFiles = new FaultyFiles;
        mFaultyFiles->mFiles = mFiles->mFiles;
        mFiles = mFaultyFiles;
        mFileCallback = SharedPtr<Common::Callback::FileIOCallback>(mFaultyFiles);
        EXPECT_TRUE(start());
        mRightAnswers = askFiftyQueries();
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
        std::string answers;
        const std::string raisedAgain = raisedBy([&] {
            if (start())
                answers = askFiftyQueries();
        });
        ASSERT_EQ(raisedAgain, "") << "after fault " << n;
        ASSERT_EQ(answers, mRightAnswers) << "after fault " << n;
        Interface::close();
        mFaults += raised.empty() ? 0 : 1;
    }

    FaultyFiles* mFaultyFiles = nullptr;
    std::string mRightAnswers;
    unsigned int mFaults = 0; ///< those that came out as exceptions
};

TEST_F(FaultsTest, ASearchGoesOnAfterARefusedRequestAsIfNothingWere) {
    PatientExports exports;
    for (const Worlds::MeshModel& mesh : {Worlds::makeFloor(9, 0), Worlds::makeHarbour()}) {
        mFiles->mFiles["case"] = mesh.toXML("case");
        std::string expected;
        unsigned int request = 0; // 0: none is refused
        for (bool isReached = true; isReached; ++request) {
            ASSERT_TRUE(start("case"));
            mMemory->mRequests = 0;
            mMemory->mFailingRequest = request;
            const std::string answers = Reference::FixedQueries(exports, "").ask(150);
            isReached = mMemory->mRequests >= request;
            expected = request == 0 ? answers : expected;
            EXPECT_EQ(answers, expected) << "request " << request;
            const int open = exports.initPathSearch({1, 0, 1}, {1, 0, 1});
            mMemory->mFailsOnwards = true; // closing a search asks for nothing
            mMemory->mFailingRequest = 1;
            EXPECT_EQ(raisedBy([&] { EXPECT_TRUE(Interface::closePathSearch(open)); }), "");
            mMemory->mFailsOnwards = false;
            mMemory->mFailingRequest = 0;
            Interface::close();
        }
        EXPECT_GT(request, 30U);
        EXPECT_EQ(expected.find("paths 0 "), std::string::npos) << expected;
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
