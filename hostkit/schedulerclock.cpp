// The clock of a system, apart: a page has another one.
#include "hostkit/scheduler.h"

namespace ZUNO::HostKit {

std::chrono::nanoseconds Scheduler::steadyTime() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

} // namespace ZUNO::HostKit
