#include "common/platform/stackwalker.h"

#include "common/platform/win32/windows.h"

#include <cstdint>
#include <cstring>
#include <unwind.h>

namespace ZUNO::Common::Platform {

namespace {

/// The return addresses, innermost first.
struct Addresses {
    static constexpr unsigned int maxCount = 64;

    static _Unwind_Reason_Code add(_Unwind_Context* frame, void* self) {
        auto& addresses = *static_cast<Addresses*>(self);
        if (addresses.mCount == maxCount)
            return _URC_END_OF_STACK;
        addresses.mAddresses[addresses.mCount++] = _Unwind_GetIP(frame);
        return _URC_NO_REASON;
    }

    std::uintptr_t mAddresses[maxCount];
    unsigned int mCount = 0;
};

void visitAddress(StackVisitor& visitor, std::uintptr_t address) {
    StackFrame frame;
    char path[MAX_PATH];
    HMODULE module = nullptr;
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExA(flags, reinterpret_cast<const char*>(address), &module) != 0) {
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
    // by the unwinder's tables: the system's own walk needs frame pointers in 32 bits
    Addresses addresses;
    _Unwind_Backtrace(Addresses::add, &addresses);
    for (unsigned int i = 0; i < addresses.mCount; ++i)
        visitAddress(visitor, addresses.mAddresses[i]);
}

} // namespace ZUNO::Common::Platform
