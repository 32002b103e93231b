// Message boxes where there are no windows.
#include "common/platform/messagebox.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace ZUNO::Tests {

using namespace Common::Platform;

TEST(MessageBoxTest, WithoutATerminalABoxIsClosedAtOnce) {
    const int former = dup(STDIN_FILENO);
    const int nobody = open("/dev/null", O_RDONLY | O_CLOEXEC);
    dup2(nobody, STDIN_FILENO);
    for (const auto& [style, button] : {std::pair(unsigned{BOX_OK}, int{BUTTON_OK}),
                                        {BOX_OK_CANCEL, BUTTON_CANCEL},
                                        {BOX_YES_NO, BUTTON_CANCEL},
                                        {BOX_YES_NO_CANCEL, BUTTON_CANCEL}}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(showMessageBox("text", "caption", style), button) << style;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "caption: text\n");
    }
    dup2(former, STDIN_FILENO);
    close(former);
    close(nobody);
}

} // namespace ZUNO::Tests
