#pragma once

#include "common/exceptions/memoryexceptions.h"
#include "common/report/report.h"
#include "tests/support/exceptions.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ZUNO::Tests {

/// Takes what the process heap has, down to the smallest blocks.
inline void exhaustHeap() {
    for (std::size_t size = 1 << 20; size != 0; size = size > 2048 ? size / 2 : size - 16)
        for (void* volatile block = &size; block != nullptr;)
            block = std::malloc(size);
}

/// Lets the process take so many bytes more of addresses, as far as its hard limit lets it.
inline void limitAddresses(rlim_t more) {
    char figures[32] = "";
    const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    const bool isRead = read(file, figures, sizeof(figures) - 1) > 0;
    close(file);
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    const rlim_t held = std::strtoul(figures, nullptr, 10) * static_cast<rlim_t>(getpagesize());
    limit.rlim_cur = std::min(isRead ? held + more : 0, limit.rlim_max);
    setrlimit(RLIMIT_AS, &limit);
}

/// Expects that an action succeeds in a process of its own that may take 32 MB more; what it
/// reports is not shown.
inline void expectWithLittleMemory(const std::function<bool()>& action) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's heap can't be limited";
#endif
    const pid_t child = fork();
    if (child == 0) {
        Common::Debug::setReportHandler([](const char*, const char*, unsigned int) {});
        raisedBy(Common::Memory::throwOutOfMemory); // the unwinder loads what it needs
        std::FILE* const figures = std::fopen("/proc/self/statm", "r");
        unsigned long pages = 0;
        if (std::fscanf(figures, "%lu", &pages) != 1 ||
            std::freopen("/dev/null", "w", stderr) == nullptr)
            _exit(2);
        std::fclose(figures);
        const rlim_t bytes = pages * static_cast<rlim_t>(getpagesize()) + (32U << 20);
        const rlimit limit{bytes, bytes};
        setrlimit(RLIMIT_AS, &limit);
        _exit(action() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

/// Whether an action raises an OutOfMemoryException, with its text and name whole.
template <typename Action>
bool runsOutOfMemory(Action action) {
    try {
        action();
    } catch (Common::Exceptions::Exception* exception) {
        const auto isText = [](const Common::String& text, std::string_view expected) {
            return text.getConstCharPtr() == expected;
        };
        const bool isRight = isText(exception->getMessage(), "No Memory available") &&
                             isText(exception->getName(), "OutOfMemoryException");
        delete exception;
        return isRight;
    }
    return false;
}

} // namespace ZUNO::Tests
