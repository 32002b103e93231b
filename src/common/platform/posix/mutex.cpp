#include "common/platform/mutex.h"

#include <new>
#include <pthread.h>

namespace ZUNO::Common::Platform {

namespace {

pthread_mutex_t* native(std::byte* storage) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(storage));
}

} // namespace

Mutex::Mutex() {
    static_assert(sizeof(pthread_mutex_t) <= nativeSize);
    static_assert(alignof(pthread_mutex_t) <= alignof(void*));
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(::new (mNative) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

Mutex::~Mutex() {
    pthread_mutex_destroy(native(mNative));
}

void Mutex::lock() {
    pthread_mutex_lock(native(mNative));
}

bool Mutex::tryLock() {
    return pthread_mutex_trylock(native(mNative)) == 0;
}

void Mutex::unlock() {
    pthread_mutex_unlock(native(mNative));
}

} // namespace ZUNO::Common::Platform
