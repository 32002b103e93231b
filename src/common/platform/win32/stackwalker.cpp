#include "common/platform/stackwalker.h"

#include "common/platform/win32/windows.h"

#include <cstring>

namespace ZUNO::Common::Platform {

namespace {

constexpr DWORD maxFrames = 62; // what older systems capture at once

void visitAddress(StackVisitor& visitor, void* address) {
    StackFrame frame;
    char path[MAX_PATH];
    HMODULE module = nullptr;
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExA(flags, static_cast<const char*>(address), &module) != 0) {
        const DWORD length = GetModuleFileNameA(module, path, sizeof(path));
        if (length != 0 && length < sizeof(path)) {
            const char* const separator = std::strrchr(path, '\\');
            frame.mModule = separator != nullptr ? separator + 1 : path;
        }
    }
    visitor.visit(frame);
}

} // namespace

__attribute__((noinline)) void walkStack(StackVisitor& visitor) {
    void* addresses[maxFrames];
    const unsigned int count = CaptureStackBackTrace(0, maxFrames, addresses, nullptr);
    for (unsigned int i = 0; i < count; ++i)
        visitAddress(visitor, addresses[i]);
}

} // namespace ZUNO::Common::Platform
