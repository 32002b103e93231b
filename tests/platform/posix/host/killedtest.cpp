// A recording whose program is killed.
#include "hostkit/recorder.h"
#include "hostkit/replay.h"
#include "tests/host/hosttest.h"
#include "tests/support/tempfolder.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace ZUNO::Tests {

using KilledTest = HostTest;

TEST_F(KilledTest, ARecordingHoldsEveryCallThatCameBack) {
    constexpr unsigned int callsPerReport = 1000;
    constexpr unsigned int reports = 200;
    const TempFolder folder;
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t program = fork();
    if (program == 0) {
        HostKit::Recorder recorder(folder.in("recording"));
        recorder.initWorldRepresentation("floor", mMemoryCallback, mFileCallback, "");
        for (unsigned int i = 1;; ++i) {
            recorder.getGroundHeight({static_cast<float>(i % 16), 1});
            if (i % callsPerReport == 0 && write(pipe[1], ".", 1) != 1)
                _exit(1);
        }
    }
    ASSERT_GT(program, 0);
    char byte = 0;
    for (unsigned int i = 0; i < reports; ++i)
        ASSERT_EQ(read(pipe[0], &byte, 1), 1);
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
    close(pipe[0]);
    close(pipe[1]);
    HostKit::Exports exports;
    const auto outcome =
        HostKit::replay(folder.get("recording"), exports, {.mFiles = mFileCallback});
    EXPECT_FALSE(outcome.mDifference || outcome.mIsWhole);
    EXPECT_GE(outcome.mCalls, 1 + reports * callsPerReport);
}

} // namespace ZUNO::Tests
