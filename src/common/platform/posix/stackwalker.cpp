#include "common/platform/stackwalker.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <memory>

namespace ZUNO::Common::Platform {

namespace {

constexpr int maxFrames = 64;

const char* fileNameOf(const char* path) {
    const char* slash = std::strrchr(path, '/');
    return slash != nullptr ? slash + 1 : path;
}

struct Free {
    void operator()(char* text) const { std::free(text); }
};

void visitAddress(StackVisitor& visitor, void* address) {
    StackFrame frame;
    std::unique_ptr<char, Free> readable;
    char place[32];
    Dl_info info;
    if (dladdr(address, &info) != 0) {
        if (info.dli_fname != nullptr)
            frame.mModule = fileNameOf(info.dli_fname);
        if (info.dli_sname != nullptr) {
            readable.reset(abi::__cxa_demangle(info.dli_sname, nullptr, nullptr, nullptr));
            frame.mFunction = readable ? readable.get() : info.dli_sname;
        } else { // a hidden function: its place in the module, for a debugger
            std::snprintf(place, sizeof(place), "+0x%zx",
                          static_cast<std::size_t>(static_cast<const char*>(address) -
                                                   static_cast<const char*>(info.dli_fbase)));
            frame.mFunction = place;
        }
    }
    visitor.visit(frame);
}

} // namespace

__attribute__((noinline)) void walkStack(StackVisitor& visitor) {
    void* addresses[maxFrames];
    const int count = backtrace(addresses, maxFrames);
    for (int i = 0; i < count; ++i)
        visitAddress(visitor, addresses[i]);
}

} // namespace ZUNO::Common::Platform
