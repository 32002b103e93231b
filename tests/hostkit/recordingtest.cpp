#include "hostkit/bytedigest.h"
#include "hostkit/recorder.h"
#include "hostkit/replay.h"
#include "reference/fixedqueries.h"
#include "tests/host/hosttest.h"
#include "tests/platform/process.h"
#include "tests/support/quiet.h"
#include "tests/support/tempfolder.h"

#include <cmath>
#include <cstring>

namespace ZUNO::Tests {

using namespace HostKit;

namespace {

/// Exports whose n-th answer of a kind has another bit in it.
class FaultyExports : public Exports {
public:
    FaultyExports(CallKind kind, unsigned int countdown) : mKind(kind), mCountdown(countdown) {}
    int runPathSearch(int id, unsigned int budget) override {
        const int result = Exports::runPathSearch(id, budget);
        return isNow(CallKind::RUN_SEARCH) ? result ^ 1 : result;
    }
    bool getNextWaypoint(int id, Vec3& waypoint) override {
        const bool isThere = Exports::getNextWaypoint(id, waypoint);
        if (isThere && isNow(CallKind::NEXT_WAYPOINT))
            waypoint.mY = std::nextafter(waypoint.mY, 99.0F);
        return isThere;
    }
    float getPathCost(int id) override {
        const float cost = Exports::getPathCost(id);
        return isNow(CallKind::PATH_COST) ? std::nextafter(cost, 0.0F) : cost;
    }

private:
    bool isNow(CallKind kind) { return kind == mKind && --mCountdown == 0; }

    CallKind mKind;
    unsigned int mCountdown;
};

} // namespace

class RecordingTest : public HostTest {
protected:
    RecordingTest() { mFiles->mFiles["harbour"] = Worlds::makeHarbour().toXML("harbour"); }

    bool start(Exports& exports, const char* mesh = "harbour") {
        return exports.initWorldRepresentation(mesh, mMemoryCallback, mFileCallback, "");
    }

    /// Asks everything there is to ask, what fails included; more than ten calls a query.
    void ask(Exports& exports, unsigned int queries) {
        ASSERT_TRUE(start(exports));
        Reference::FixedQueries(exports, "").ask(queries);
        Exports::Ray3D ray({2, 0, 2}, {50, 5, 25});
        exports.traceRay(ray);
        const int open = exports.initPathSearch(ray.mStart, ray.mEnd); // and stays so
        for (const unsigned int budget : {0U, 1U, 20U})
            exports.runPathSearch(open, budget);
        const Quiet quiet;
        EXPECT_NE(raisedBy([&] { exports.runPathSearch(-1, 1); }), "");
        EXPECT_NE(raisedBy([&] { exports.saveBlockingMap("x"); }), "");
        exports.close();
        EXPECT_NE(raisedBy([&] { start(exports, "missing"); }), "");
        exports.close();
    }

    /// Records what `ask` asks, and gives the file's content.
    std::string record(unsigned int queries) {
        {
            Recorder recorder(mFile);
            ask(recorder, queries);
        }
        return contentOf(mFile);
    }

    ReplayOutcome replayed(std::string_view recording, Exports&& exports = Exports()) {
        const Quiet quiet;
        return replay(recording, exports, {.mFiles = mFileCallback});
    }

    TempFolder mFolder;
    const std::string mFile = mFolder.in("recording");
};

TEST_F(RecordingTest, ReplaysToTheBit) {
    const std::string recording = record(10000);
    const ReplayOutcome outcome = replayed(recording);
    EXPECT_FALSE(outcome.mDifference) << describe(*outcome.mDifference);
    EXPECT_TRUE(outcome.mIsWhole);
    EXPECT_GE(outcome.mCalls, 100000U);
    EXPECT_LT(recording.size(), outcome.mCalls * 40);
    // a system that replays what another recorded would have recorded the same bytes
    ByteDigest digest;
    for (const char c : recording)
        digest.add(static_cast<std::uint8_t>(c));
    EXPECT_EQ(digest.value(), 4127957006526039193U) << recording.size() << " bytes";
}

TEST_F(RecordingTest, NamesTheFirstCallThatDiffers) {
    const std::string recording = record(300);
    const struct {
        CallKind mKind;
        unsigned int mCount; ///< of such a call that has the fault
        std::vector<std::string> mSays;
    } cases[] = {
        {CallKind::RUN_SEARCH, 100, {": runPathSearch(", "recorded: ", "now:      ", " runs of "}},
        {CallKind::NEXT_WAYPOINT, 77, {": getNextWaypoint(", "recorded: 1, ", " found after "}},
        {CallKind::PATH_COST,
         9,
         {": getPathCost(", " (0x",
          "  search 0: from 77.69491,0,43.918797 to 43.959656,5,31.655464, found after 37 runs of "
          "259 expansions in all, 25 waypoints read"}},
    };
    for (const auto& row : cases) {
        RecordingReader reader(recording);
        RecordedCall call;
        std::uint64_t number = 0;
        for (unsigned int left = row.mCount; left != 0 && reader.next(call); ++number) {
            const bool isLastOfAPath =
                call.mKind == CallKind::NEXT_WAYPOINT && call.mAnswer.mNumber == 0;
            left -= call.mKind == row.mKind && !isLastOfAPath ? 1 : 0;
        }
        const ReplayOutcome outcome = replayed(recording, FaultyExports(row.mKind, row.mCount));
        ASSERT_TRUE(outcome.mDifference) << row.mSays[0];
        EXPECT_EQ(outcome.mDifference->mNumber, number) << row.mSays[0];
        const std::string text = describe(*outcome.mDifference);
        for (const std::string& part : row.mSays)
            EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
    }
    EXPECT_EQ(describe(ReplayDifference{}).find("\n  search"), std::string::npos);
}

TEST_F(RecordingTest, IsWholeWhateverMomentTheHostEndsIn) {
    /// Looks at the recording while the library is in the middle of a start.
    struct Witness : MemoryFiles {
        std::int32_t openFile(Handle* handle, const Common::String& name,
                              std::int32_t mode) override {
            mSeen = contentOf(mRecording);
            return MemoryFiles::openFile(handle, name, mode);
        }
        std::string mRecording;
        std::string mSeen;
    };
    auto* const witness = new Witness;
    witness->mRecording = mFile;
    witness->mFiles = mFiles->mFiles;
    mFileCallback = SharedPtr<Common::Callback::FileIOCallback>(mFiles = witness);
    Recorder recorder(mFile);
    ASSERT_TRUE(start(recorder, "floor"));
    for (int i = 0; i < 50000; ++i) // more than a window
        recorder.isBlocked({static_cast<float>(i), 0});
    const std::string now = contentOf(mFile);
    recorder.close();

    std::uint64_t unanswered = 0;
    Exports exports;
    const auto outcomeOf = [&](std::string_view recording) {
        return replay(recording, exports,
                      {.mFiles = mFileCallback,
                       .mOnUnanswered = [&](std::uint64_t number, const RecordedCall& call) {
                           unanswered = number;
                           EXPECT_EQ(describe(call), "initWorldRepresentation(\"floor\", \"\")");
                           EXPECT_EQ(describe(call, call.mAnswer), "no answer");
                       }});
    };
    const std::string inTheStart = witness->mSeen; // before the replay opens files
    EXPECT_EQ(outcomeOf(now).mCalls, 50001U);
    EXPECT_EQ(unanswered, 0U);
    const ReplayOutcome outcome = outcomeOf(inTheStart);
    EXPECT_EQ(outcome.mCalls, 1U);
    EXPECT_EQ(unanswered, 1U);
    EXPECT_FALSE(outcome.mDifference || outcome.mIsWhole);
}

TEST_F(RecordingTest, SaysWhatIsWrongWithAFile) {
    const std::string head(recordingMagic);
    const struct {
        std::string mBytes;
        const char* mError;
    } cases[] = {
        {"", "recording, byte 0: this is no recording"},
        {"ZUNOREX\1", "recording, byte 0: this is no recording"},
        {"ZUNOREC\7", "recording, byte 7: expected version 1 instead of 7"},
        {head + '\x0E', "recording, byte 8: no call has the kind 14"},
        {head + "\x04\xFF\xFF\xFF\xFF\xFF", "recording, byte 9: a number of more than 32 bits"},
        {head + "\x04\x80\x80\x80\x80\x10", "recording, byte 9: a number of more than 32 bits"},
        {head + "\x0D\xFF\xFF\1", "recording, byte 9: a text of 32767 bytes"},
        {head + "\x02\x03", "recording, byte 9: no answer has the kind 3"},
        {head + "\xFF\1", "recording, byte 9: something follows the recording's end"},
        {head + "\x01\5floor" + std::string(12, '\1'),
         "the recording was made with the mesh floor, digest 0101010101010101; floor has "},
        {head + "\x01\4none" + std::string(12, '\1'),
         "the recording was made with the mesh none, digest 0101010101010101; none can't be read"},
    };
    for (const auto& row : cases) {
        Exports exports;
        const std::string error =
            errorOf([&] { replay(row.mBytes, exports, {.mFiles = mFileCallback}); });
        EXPECT_EQ(error.substr(0, std::strlen(row.mError)), row.mError);
    }
    // cut off anywhere, what is there is read
    const std::string recording = record(6);
    std::size_t calls = 0;
    for (std::size_t length = head.size(); length < recording.size(); ++length) {
        RecordingReader reader(std::string_view(recording).substr(0, length));
        std::size_t read = 0;
        for (RecordedCall call; reader.next(call);)
            ++read;
        ASSERT_TRUE(!reader.isWhole() && read >= calls && read <= calls + 1) << length << " bytes";
        calls = read;
    }
    const ReplayOutcome outcome = replayed(recording.substr(0, recording.size() / 2));
    EXPECT_FALSE(outcome.mIsWhole || outcome.mDifference);
}

TEST_F(RecordingTest, IsReplayedByTheCommand) {
    const std::string command = std::string(ZUNO_TOOL_FOLDER) + "/zunopath replay " +
                                ZUNO_SOURCE_FOLDER "/fuzz/corpus/replay/harbour";
    const std::string mesh = " --mesh " ZUNO_SOURCE_FOLDER "/worlds/harbour.xml";
    const Outcome whole = runCommand(command + mesh);
    EXPECT_EQ(whole.mStatus, 0) << whole.mOutput;
    EXPECT_NE(whole.mOutput.find(" calls, "), std::string::npos) << whole.mOutput;
    const Outcome script = runCommand(command + " --script");
    EXPECT_EQ(script.mStatus, 0);
    EXPECT_NE(script.mOutput.find("\npath "), std::string::npos) << script.mOutput;
    EXPECT_EQ(runCommand(command).mStatus, 2) << "the mesh is not where it was";
}

} // namespace ZUNO::Tests
