// Each call of the system's that a tool makes goes wrong in turn, or is its last one.
#include "tests/platform/process.h"
#include "tests/support/tempfolder.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <sstream>

namespace ZUNO::Tests {
namespace {

const std::string toolFolder = ZUNO_TOOL_FOLDER "/";
const std::string sweptMesh = ZUNO_SOURCE_FOLDER "/worlds/harbour.xml";

class SweepTest : public testing::Test {
protected:
    struct Command {
        std::string mText;              ///< writes `out`, or prints
        std::string mOutput;            ///< a file's name in the folder
        std::string mFirst = sweptMesh; ///< the first file that is not the loader's
    };

    /// Runs a command under strace, which does something to one of its calls. (Leaks can't be
    /// looked for meanwhile.)
    Outcome run(const Command& command, const std::string& options) const {
        return runCommand("ASAN_OPTIONS=detect_leaks=0 strace -f -qq -o " + in("trace") + ' ' +
                          options + ' ' + toolFolder + command.mText);
    }
    std::string in(const std::string& name) const { return mFolder.in(name); }

    /// How often a command makes one of the calls, and how often before it opens its first file.
    std::pair<std::size_t, std::size_t> countCalls(const Command& command,
                                                   const std::string& calls) const {
        run(command, "-e trace=openat," + calls);
        std::istringstream trace(mFolder.get("trace"));
        std::size_t before = 0;
        std::size_t all = 0;
        for (std::string line; std::getline(trace, line);) {
            const std::string call = line.substr(line.find_first_not_of(" 0123456789"));
            const std::string name = call.substr(0, call.find('('));
            if (line.find(command.mFirst) != std::string::npos && before == 0)
                before = all; // what the loader did is not the tool's
            all += (',' + calls + ',').find(',' + name + ',') != std::string::npos ? 1 : 0;
        }
        return {all, before};
    }

    /// Every call of these kinds goes wrong in turn.
    void sweep(const Command& command, const std::string& calls, const std::string& fault) {
        const auto [all, before] = countCalls(command, calls);
        const bool makesAll = command.mFirst == in(""); // and reads nothing
        ASSERT_TRUE(before < all || makesAll) << command.mText << ": " << calls;
        const std::string file = command.mOutput;
        const std::string tool = command.mText.substr(0, command.mText.find(' ')) + ": ";
        run(command, "-e trace=none");
        const std::string right = mFolder.get(file);
        const bool isKilled = fault.starts_with("signal");
        for (std::size_t n = before + 1; n <= all; ++n) {
            mFolder.put(file, "old");
            const Outcome outcome =
                run(command, "-e inject=" + calls + ':' + fault + ":when=" + std::to_string(n));
            const std::string what = command.mText + ", " + fault + " at " + calls + ' ' +
                                     std::to_string(n) + ": " + outcome.mOutput;
            const std::string left = mFolder.get(file);
            EXPECT_TRUE(left == right || left == "old") << "a part: " << what;
            EXPECT_TRUE(isKilled || outcome.mStatus != 0 || left == right)
                << "nobody learns of it: " << what;
            EXPECT_TRUE(isKilled || outcome.mStatus == 0 || outcome.mStatus == 2) << what;
            EXPECT_TRUE(isKilled || outcome.mStatus == 0 ||
                        outcome.mOutput.find(tool) != std::string::npos)
                << "no reason: " << what;
            ++mFaults;
        }
        mFolder.put(file, "old");
        EXPECT_EQ(run(command, "-e trace=none").mStatus, 0) << "afterwards";
        EXPECT_EQ(mFolder.get(file), right);
    }

    TempFolder mFolder;
    unsigned int mFaults = 0;
};

TEST_F(SweepTest, LeavesTheOldFileOrTheNewOne) {
    if (runCommand("strace -o /dev/null true").mStatus != 0)
        GTEST_SKIP() << "no strace here";
    ASSERT_EQ(runCommand(toolFolder + "makescene courtyard " + in("c.obj")).mStatus, 0);
    const Command commands[] = {
        {"makescene courtyard " + in("a.obj"), "a.obj", in("")},
        {"makeworld floor " + in("a.xml") + " --nodes 60", "a.xml", in("")},
        {"zunobake " + in("c.obj") + " -o " + in("a.xml"), "a.xml", in("c.obj")},
        {"zunodemo " + sweptMesh + " --seconds 1 --characters 3 --picture " + in("a.svg"), "a.svg"},
        {"zunopath convert " + sweptMesh + ' ' + in("a.xml"), "a.xml"},
        {"zunopath convert " + sweptMesh + ' ' + in("a.bin"), "a.bin"},
        {"zunopath draw " + sweptMesh + ' ' + in("a.svg"), "a.svg"},
    };
    const struct {
        const char* mCalls;
        std::vector<const char*> mFaults;
    } rows[] = {
        {"write,pwrite64,writev", {"error=ENOSPC", "error=EIO", "signal=KILL"}},
        {"fsync,fdatasync", {"error=EIO", "signal=KILL"}},
        {"close", {"error=EIO", "signal=KILL"}},
        {"rename,renameat,renameat2", {"error=EACCES", "signal=KILL"}},
        {"read,pread64", {"error=EIO", "retval=0", "signal=KILL"}},
        {"openat", {"error=EMFILE", "error=EACCES", "signal=KILL"}},
        {"lseek,_llseek", {"error=EIO"}},
    };
    for (const Command& command : commands) {
        const std::string tool = command.mText.substr(0, command.mText.find(' '));
        if (!std::filesystem::exists(toolFolder + tool))
            continue; // the baker is not there for every system
        for (const auto& row : rows)
            for (const char* const fault : row.mFaults)
                sweep(command, row.mCalls, fault);
    }
    EXPECT_GT(mFaults, 100U);
}

} // namespace
} // namespace ZUNO::Tests
