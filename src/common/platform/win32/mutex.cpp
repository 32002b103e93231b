#include "common/platform/mutex.h"

#include "common/platform/win32/windows.h"

#include <new>

namespace ZUNO::Common::Platform {

namespace {

CRITICAL_SECTION* native(std::byte* storage) {
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(storage));
}

} // namespace

Mutex::Mutex() {
    static_assert(sizeof(CRITICAL_SECTION) <= nativeSize);
    static_assert(alignof(CRITICAL_SECTION) <= alignof(void*));
    InitializeCriticalSectionAndSpinCount(::new (mNative) CRITICAL_SECTION, spinCount);
}

Mutex::~Mutex() {
    DeleteCriticalSection(native(mNative));
}

void Mutex::lock() {
    EnterCriticalSection(native(mNative));
}

bool Mutex::tryLock() {
    return TryEnterCriticalSection(native(mNative)) != 0;
}

void Mutex::unlock() {
    LeaveCriticalSection(native(mNative));
}

} // namespace ZUNO::Common::Platform
