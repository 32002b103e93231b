/// The counting policy of `SharedPtr`: where the count of an object lives and how it changes.
#pragma once

#include "common/referencecounted.h"

#include <cstdint>
#include <new>
#include <type_traits>

namespace ZUNO::Common {

/// Added to the count of an object that was destroyed while others held it: they may still go, and
/// none of them finds the count at 0.
inline constexpr std::int32_t destroyedMark = std::int32_t{1} << 30;

/// Destroys an object that carries its count while others hold it. The base with the count is made
/// anew in its place, so that they can go; the storage is not given back.
template <typename Base, typename T>
void destroyAroundCount(T* object, std::int32_t holders) {
    struct Remains : Base {
        explicit Remains(std::int32_t count) { this->mReferenceCount = count; }
    };
    Base* const base = object;
    object->~T();
    ::new (static_cast<void*>(base)) Remains(holders + destroyedMark);
}

/// Counts in the object itself.
class IntrusiveCount {
public:
    void init(ReferenceCounted* object) { object->mReferenceCount = 1; }
    bool increment(ReferenceCounted* object) { return ++object->mReferenceCount == 0; }
    bool decrement(ReferenceCounted* object) { return --object->mReferenceCount == 0; }
    std::int32_t count(const ReferenceCounted* object) const { return object->mReferenceCount; }
    void dropCounter() {}
    template <typename Policy, typename T>
    void destroyHeld(T* object) {
        destroyAroundCount<ReferenceCounted>(object, count(object));
    }
};

/// Counts in the object itself, under its lock.
class LockedCount {
public:
    void init(LockedReferenceCounted* object) {
        const Platform::MutexLock lock(object->mMutex);
        object->mReferenceCount = 1;
    }
    bool increment(LockedReferenceCounted* object) {
        const Platform::MutexLock lock(object->mMutex);
        return ++object->mReferenceCount == 0;
    }
    bool decrement(LockedReferenceCounted* object) {
        const Platform::MutexLock lock(object->mMutex);
        return --object->mReferenceCount == 0;
    }
    std::int32_t count(const LockedReferenceCounted* object) const {
        return object->mReferenceCount;
    }
    void dropCounter() {}
    template <typename Policy, typename T>
    void destroyHeld(T* object) {
        destroyAroundCount<LockedReferenceCounted>(object, count(object));
    }
};

/// Counts beside the object, in a counter from the process heap that all copies share.
class SeparateCount {
public:
    void init(const void*) { mCounter = new std::int32_t(1); }
    bool increment(const void*) { return ++*mCounter == 0; }
    bool decrement(const void*) {
        const std::int32_t count = --*mCounter;
        if (count == destroyedMark) // the last holder of an object that is gone
            dropCounter();
        return count == 0;
    }
    std::int32_t count(const void*) const { return *mCounter; }
    void dropCounter() { delete mCounter; }
    template <typename Policy, typename T>
    void destroyHeld(T* object) {
        *mCounter += destroyedMark;
        Policy::destroy(object);
    }

private:
    std::int32_t* mCounter = nullptr;
};

/// How objects of type T are counted. Found from T's bases; a type that must be named in a
/// `SharedPtr` before it is complete gets a specialisation instead.
template <typename T>
struct CountOf {
    using Type = std::conditional_t<
        std::is_base_of_v<LockedReferenceCounted, T>, LockedCount,
        std::conditional_t<std::is_base_of_v<ReferenceCounted, T>, IntrusiveCount, SeparateCount>>;
};

/// `init` sets the count to 1; `increment` and `decrement` change it and return whether it is now
/// zero; each holds the object's lock meanwhile where it has one. `destroyHeld` destroys an object
/// that others hold, so that they can still go.
template <typename T>
class SimpleReferenceCount : public CountOf<T>::Type {
protected:
    using Count = typename CountOf<T>::Type;

    Count& counting() { return *this; }
    const Count& counting() const { return *this; }
};

} // namespace ZUNO::Common
