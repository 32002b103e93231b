// Included before Google Test: its own Notification needs std::mutex, which the compiler's variant
// without a thread library lacks.
#pragma once

#include <atomic>

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

/// One thread lets another go on.
class Notification {
public:
    void Notify() { mIsNotified = true; }
    void WaitForNotification() const {
        while (!mIsNotified) {
        }
    }

private:
    std::atomic<bool> mIsNotified = false;
};

} // namespace testing::internal
