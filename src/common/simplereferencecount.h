/// The counting policy of `SharedPtr`: where the count of an object lives and how it changes.
#pragma once

#include "common/referencecounted.h"

#include <cstdint>
#include <type_traits>

namespace ZUNO::Common {

/// Counts in the object itself.
class IntrusiveCount {
public:
    void init(ReferenceCounted* object) { object->mReferenceCount = 1; }
    bool increment(ReferenceCounted* object) { return ++object->mReferenceCount == 0; }
    bool decrement(ReferenceCounted* object) { return --object->mReferenceCount == 0; }
    std::int32_t count(const ReferenceCounted* object) const { return object->mReferenceCount; }
    void dropCounter() {}
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
};

/// Counts beside the object, in a counter from the process heap that all copies share.
class SeparateCount {
public:
    void init(const void*) { mCounter = new std::int32_t(1); }
    bool increment(const void*) { return ++*mCounter == 0; }
    bool decrement(const void*) { return --*mCounter == 0; }
    std::int32_t count(const void*) const { return *mCounter; }
    void dropCounter() { delete mCounter; }

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
/// zero; each holds the object's lock meanwhile where it has one.
template <typename T>
class SimpleReferenceCount : public CountOf<T>::Type {
protected:
    using Count = typename CountOf<T>::Type;

    Count& counting() { return *this; }
    const Count& counting() const { return *this; }
};

} // namespace ZUNO::Common
