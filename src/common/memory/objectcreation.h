/// Creation and destruction of objects in an allocator's storage.
#pragma once

#include "common/memory/allocator.h"

#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace ZUNO::Common::Memory {

/// One object of a type that does not keep its allocator. Raises an OutOfMemoryException.
template <typename T, typename... Arguments>
T* createObject(const SharedPtr<Allocator>& allocator, Arguments&&... arguments) {
    void* const storage = allocateBytes(allocator, 1, sizeof(T));
    try {
        return ::new (storage) T(std::forward<Arguments>(arguments)...);
    } catch (...) {
        releaseBytes(allocator, storage);
        throw;
    }
}

/// Destroys an object made by `createObject`, through a pointer to it or to its first base.
/// Null is ignored.
template <typename T>
void destroyObject(const SharedPtr<Allocator>& allocator, T* object) {
    if (object == nullptr)
        return;
    object->~T();
    releaseBytes(allocator, object);
}

/// Ends an object made by `createObject`.
template <typename T>
struct ObjectDeleter {
    SharedPtr<Allocator> mAllocator;
    void operator()(T* object) const { destroyObject(mAllocator, object); }
};

/// Owns an object made by `createObject`.
template <typename T>
using OwnedPtr = std::unique_ptr<T, ObjectDeleter<T>>;

template <typename T, typename... Arguments>
OwnedPtr<T> createOwned(const SharedPtr<Allocator>& allocator, Arguments&&... arguments) {
    return {createObject<T>(allocator, std::forward<Arguments>(arguments)...),
            ObjectDeleter<T>{allocator}};
}

/// An array of `count` value-initialised objects of a trivial type; `releaseBytes` gives it back.
template <typename T>
T* createArray(const SharedPtr<Allocator>& allocator, std::size_t count) {
    static_assert(std::is_trivially_destructible_v<T>);
    T* const array = static_cast<T*>(allocateBytes(allocator, count, sizeof(T)));
    for (std::size_t i = 0; i < count; ++i)
        ::new (array + i) T();
    return array;
}

/// One object of a class that keeps its allocator (`MemoryManaged`, `Allocator`); `delete` ends
/// it. Raises an OutOfMemoryException.
template <typename T, typename... Arguments>
T* createManaged(const SharedPtr<Allocator>& allocator, Arguments&&... arguments) {
    T* const object = new (allocator) T(std::forward<Arguments>(arguments)...);
    if (object == nullptr)
        throwOutOfMemory();
    return object;
}

} // namespace ZUNO::Common::Memory
