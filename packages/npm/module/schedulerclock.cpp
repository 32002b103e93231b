// The clock of a host in a page, without the text of every failure of a system's.
#include "hostkit/scheduler.h"

#include <ctime>

namespace ZUNO::HostKit {

std::chrono::nanoseconds Scheduler::steadyTime() {
    std::timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace ZUNO::HostKit
