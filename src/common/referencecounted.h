#pragma once

#include "common/platform/mutex.h"

#include <cstdint>

namespace ZUNO::Common {

/// Base of objects that carry the count of the `SharedPtr`s that hold them.
/// The count is not protected: such objects are shared within one thread.
class ReferenceCounted {
public:
    ReferenceCounted(const ReferenceCounted&) = delete;
    ReferenceCounted& operator=(const ReferenceCounted&) = delete;
    virtual ~ReferenceCounted() = default;

protected:
    ReferenceCounted() = default;

private:
    friend class IntrusiveCount;
    template <typename Base, typename T>
    friend void destroyAroundCount(T* object, std::int32_t holders);

    std::int32_t mReferenceCount = 0;
};

/// As `ReferenceCounted`, with the count guarded by a lock of the object's own: `SharedPtr`s to
/// such an object may be copied and dropped on several threads.
class LockedReferenceCounted {
public:
    LockedReferenceCounted(const LockedReferenceCounted&) = delete;
    LockedReferenceCounted& operator=(const LockedReferenceCounted&) = delete;
    virtual ~LockedReferenceCounted() = default;

protected:
    LockedReferenceCounted() = default;

private:
    friend class LockedCount;
    template <typename Base, typename T>
    friend void destroyAroundCount(T* object, std::int32_t holders);

    std::int32_t mReferenceCount = 0;
    Platform::Mutex mMutex;
};

} // namespace ZUNO::Common
