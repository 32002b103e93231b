#pragma once

#include <cstddef>

namespace ZUNO::Common::Platform {

/// A recursive lock of this process.
/// On Windows it is a critical section; elsewhere the nearest equivalent. The native lock lives
/// inside the object, so creating one allocates nothing.
class Mutex {
public:
    /// How often a contended lock is tried before the thread sleeps, where the platform offers it.
    static constexpr unsigned int spinCount = 10'000'000;

    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    /// Waits until the calling thread holds the lock. Each call needs an `unlock` of its own.
    void lock();
    /// Takes the lock if no other thread holds it; returns whether it did.
    bool tryLock();
    /// Gives the lock back; the calling thread must hold it.
    void unlock();

private:
    /// The size of the native lock on the supported systems; each side checks that it fits.
    static constexpr std::size_t nativeSize = sizeof(void*) == 8 ? 40 : 24;

    alignas(void*) std::byte mNative[nativeSize];
};

/// Holds a mutex for the length of a block.
class MutexLock {
public:
    explicit MutexLock(Mutex& mutex) : mMutex(mutex) { mMutex.lock(); }
    ~MutexLock() { mMutex.unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

private:
    Mutex& mMutex;
};

} // namespace ZUNO::Common::Platform
