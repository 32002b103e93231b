#pragma once

#include "common/report/report.h"
#include "common/simplereferencecount.h"

#include <utility>

namespace ZUNO::Common {

/// The disposal policy of `SharedPtr`: the virtual destructor, and the class's own operator
/// delete, which takes the storage back to the allocator that it came from.
template <typename T>
struct StandartObjectPolicy {
    static void destroy(T* object) { delete object; }
};

namespace Exceptions {
/// Throws an InvalidStateException: there is no object to go on with.
[[noreturn]] void throwNullDereference();
} // namespace Exceptions

/// Shared ownership of an object: the last pointer that goes destroys it.
/// Objects derived from `ReferenceCounted` or `LockedReferenceCounted` carry their count; for all
/// others a counter from the process heap is shared by the copies. A raw pointer must be handed
/// to a SharedPtr once only; every further owner copies a SharedPtr. One SharedPtr variable must
/// not be written by two threads.
template <typename T, template <typename> class CP = SimpleReferenceCount,
          template <typename> class ObjectPolicy = StandartObjectPolicy>
class SharedPtr : private CP<T> {
public:
    constexpr SharedPtr() noexcept : mPtr(nullptr) {}

    /// Takes ownership of `ptr` (may be null): the count is set to 1, not raised. Destroys the
    /// object when there is no memory for a counter, and throws a std::bad_alloc.
    explicit SharedPtr(T* ptr) : mPtr(nullptr) { own(ptr); }

    SharedPtr(const SharedPtr& other) : mPtr(nullptr) { share(other); }
    SharedPtr(SharedPtr&& other) noexcept : CP<T>(other), mPtr(other.mPtr) { other.mPtr = nullptr; }

    /// Shares the object of a pointer to a derived class.
    template <typename Derived>
    requires std::is_convertible_v<Derived*, T*>
    SharedPtr(const SharedPtr<Derived, CP, ObjectPolicy>& other) : mPtr(nullptr) {
        share(other);
    }

    ~SharedPtr() { release(); }

    SharedPtr& operator=(const SharedPtr& other) {
        if (mPtr != other.mPtr) {
            release();
            share(other);
        }
        return *this;
    }

    SharedPtr& operator=(SharedPtr&& other) noexcept {
        if (this != &other) {
            SharedPtr former(std::move(*this));
            this->counting() = other.counting();
            mPtr = other.mPtr;
            other.mPtr = nullptr;
        }
        return *this;
    }

    /// Takes ownership of a raw pointer, or of nothing.
    SharedPtr& operator=(T* ptr) {
        ZUNO_CHECK_AS(ptr != mPtr || mPtr == nullptr, "ptr != this->mPtr || this->mPtr == NULL",
                      "No shared pointer should pointer to ptr yet");
        release();
        own(ptr);
        return *this;
    }

    /// The object. A null pointer is reported and returned.
    T* operator->() const {
        reportNull();
        return mPtr;
    }

    /// The object. A null pointer is reported and then raises an InvalidStateException.
    T& operator*() const {
        reportNull();
        if (mPtr == nullptr)
            Exceptions::throwNullDereference();
        return *mPtr;
    }

    bool operator==(const T* ptr) const { return mPtr == ptr; }

    /// The object without a check; null when there is none.
    T* get() const { return mPtr; }

    /// True when nothing else holds the object, or when there is none. Read without the lock.
    bool isLastReference() const { return mPtr == nullptr || this->counting().count(mPtr) == 1; }

    /// For shut-down: deletes the object even if other SharedPtrs hold it (reported). Those may
    /// only be assigned or destroyed afterwards, not dereferenced. The storage of an object that
    /// carries its count is then not given back; an allocator lives on until the last of them goes.
    void destroy() {
        if (mPtr == nullptr || isLastReference()) {
            release();
            return;
        }
        T* const object = mPtr;
        mPtr = nullptr;
        this->counting().decrement(object);
        ZUNO_REPORT("", "there are other references to the object, delete it anyways");
        this->counting().template destroyHeld<ObjectPolicy<T>>(object);
    }

private:
    template <typename, template <typename> class, template <typename> class>
    friend class SharedPtr;

    void own(T* ptr) {
        try {
            if (ptr != nullptr)
                this->counting().init(ptr);
        } catch (...) { // there is no memory for a counter
            ObjectPolicy<T>::destroy(ptr);
            throw;
        }
        mPtr = ptr;
    }

    template <typename Other>
    void share(const SharedPtr<Other, CP, ObjectPolicy>& other) {
        this->counting() = other.counting();
        mPtr = other.mPtr;
        if (mPtr != nullptr)
            ZUNO_CHECK_AS(!this->counting().increment(mPtr), "!(CP::isZero(this->mPtr))",
                          "reference count was < 0");
    }

    void release() {
        if (mPtr == nullptr)
            return;
        T* const object = mPtr;
        mPtr = nullptr;
        if (this->counting().decrement(object)) {
            this->counting().dropCounter();
            ObjectPolicy<T>::destroy(object);
        }
    }

    void reportNull() const {
        ZUNO_CHECK_AS(mPtr != nullptr, "mPtr", "Try to dereference a NULL pointer");
    }

    T* mPtr;
};

} // namespace ZUNO::Common
