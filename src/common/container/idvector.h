#pragma once

#include "common/memory/allocator.h"
#include "common/report/indexerror.h"
#include "common/report/report.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

namespace ZUNO::Common::Container {

/// A slot array that hands out stable ids and hands freed ones out again, the latest first.
/// Ids keep naming their element until `remove` or `clear`; addresses change when the vector
/// grows. Elements are moved by copying their bytes, so T must bear that. `insert` and `remove`
/// take constant time but for growth.
template <typename T>
class IDVector {
    struct Slot {
        static constexpr std::uint32_t valid = 0;
        static constexpr std::uint32_t free = 1;

        std::uint32_t mState;
        union Room {
            std::uint32_t mNextFree;
            alignas(T) std::byte mElement[sizeof(T)];
        } mRoom;

        T& element() { return *std::launder(reinterpret_cast<T*>(mRoom.mElement)); }
        void setFree(std::uint32_t next) {
            mState = free;
            mRoom.mNextFree = next;
        }
    };

public:
    /// Walks over the valid elements in the order of their ids.
    class Iterator {
    public:
        Iterator() = default;
        Iterator(std::uint32_t id, IDVector* owner) : mID(id), mOwner(owner) {}

        /// On to the next valid element. An iterator without a vector reports and stays.
        Iterator& operator++() {
            if (checkOwner())
                mID = mOwner->nextValid(mID + 1);
            return *this;
        }
        /// The element; an iterator without a vector reports and raises an
        /// ArgumentOutOfRangeException, and so does one without an element.
        T& operator*() const {
            if (!checkOwner())
                Exceptions::throwIndexError("iterator");
            return (*mOwner)[mID];
        }
        std::uint32_t getID() const {
            checkOwner();
            return mID;
        }
        bool operator==(const Iterator& other) const = default;

    private:
        bool checkOwner() const {
            return ZUNO_CHECK(mOwner, "Iterator is not bound to an IDVector");
        }

        std::uint32_t mID = 0;
        IDVector* mOwner = nullptr;
    };

    /// An empty vector: storage for one slot, which stands for "no free slot".
    explicit IDVector(const SharedPtr<Memory::Allocator>& allocator)
        : mSlots(allocateSlots(allocator, 1)), mCapacity(0), mAllocator(allocator) {
        mSlots[0].setFree(0);
    }
    ~IDVector() {
        destroyElements();
        Memory::releaseBytes(mAllocator, mSlots);
    }
    IDVector(const IDVector&) = delete;
    IDVector& operator=(const IDVector&) = delete;

    /// Stores a copy and returns its id. On an exception nothing has changed.
    std::uint32_t insert(const T& value) {
        FormerSlots former{mAllocator}; // `value` may lie in there
        if (mFreeHead == mCapacity)
            former.mSlots = grow(static_cast<std::uint32_t>(mCapacity * 1.5) + 1);
        const std::uint32_t id = mFreeHead;
        Slot& slot = mSlots[id];
        const std::uint32_t nextFree = slot.mRoom.mNextFree;
        try {
            ::new (static_cast<void*>(slot.mRoom.mElement)) T(value);
        } catch (...) {
            slot.setFree(nextFree);
            throw;
        }
        slot.mState = Slot::valid;
        mFreeHead = nextFree;
        ++mCount;
        if (id < mBegin)
            mBegin = id;
        return id;
    }

    /// Destroys the element and frees its id. An invalid id is reported and changes nothing.
    void remove(std::uint32_t id) {
        if (!ZUNO_CHECK(isValidID(id),
                        "Element with id '" << id << "' cannot be removed since it is invalid"))
            return;
        mSlots[id].element().~T();
        mSlots[id].setFree(mFreeHead);
        mFreeHead = id;
        --mCount;
        if (id == mBegin)
            mBegin = nextValid(id + 1);
    }

    /// The element, or null after a report.
    T* find(std::uint32_t id) {
        if (!ZUNO_CHECK(isValidID(id), "ID '" << id << "' points to an invalid item"))
            return nullptr;
        return &mSlots[id].element();
    }

    /// The element. An invalid id is reported and then raises an ArgumentOutOfRangeException.
    T& operator[](std::uint32_t id) {
        T* const element = find(id);
        if (element == nullptr)
            Exceptions::throwIndexError("id");
        return *element;
    }

    bool isValidID(std::uint32_t id) const {
        return id < mCapacity && mSlots[id].mState == Slot::valid;
    }

    std::uint32_t size() const { return mCount; }
    std::uint32_t capacity() const { return mCapacity; }

    /// Destroys every element and returns to the empty state; ids start again at 0. Never fails.
    void clear() {
        destroyElements();
        mCapacity = mCount = mFreeHead = mBegin = 0;
        Slot* slots = static_cast<Slot*>(Memory::tryAllocateBytes(mAllocator, sizeof(Slot)));
        if (slots != nullptr)
            Memory::releaseBytes(mAllocator, mSlots);
        else
            slots = mSlots; // there is no memory for a smaller one
        mSlots = slots;
        mSlots[0].setFree(0);
    }

    Iterator begin() { return {mBegin, this}; }
    Iterator end() { return {mCapacity, this}; }

private:
    static Slot* allocateSlots(const SharedPtr<Memory::Allocator>& allocator, std::size_t count) {
        return static_cast<Slot*>(Memory::allocateBytes(allocator, count, sizeof(Slot)));
    }

    void destroyElements() {
        for (std::uint32_t id = mBegin; id < mCapacity; id = nextValid(id + 1)) {
            mSlots[id].element().~T();
            mSlots[id].mState = Slot::free;
        }
    }

    /// Storage that was outgrown, given back at the end of a block.
    struct FormerSlots {
        const SharedPtr<Memory::Allocator>& mAllocator;
        Slot* mSlots = nullptr;
        ~FormerSlots() {
            if (mSlots != nullptr)
                Memory::releaseBytes(mAllocator, mSlots);
        }
    };

    /// Returns the former slots, whose bytes were copied.
    Slot* grow(std::uint32_t capacity) {
        Slot* const slots = allocateSlots(mAllocator, std::size_t{capacity} + 1);
        std::memcpy(static_cast<void*>(slots), static_cast<const void*>(mSlots),
                    (std::size_t{mCapacity} + 1) * sizeof(Slot));
        Slot* const former = std::exchange(mSlots, slots);
        for (std::uint32_t id = mCapacity; id < capacity; ++id)
            mSlots[id].setFree(id + 1);
        mSlots[capacity].setFree(capacity);
        if (mBegin == mCapacity)
            mBegin = capacity;
        mCapacity = capacity;
        return former;
    }

    std::uint32_t nextValid(std::uint32_t id) const {
        while (id < mCapacity && mSlots[id].mState != Slot::valid)
            ++id;
        return id < mCapacity ? id : mCapacity;
    }

    Slot* mSlots;
    std::uint32_t mCapacity;
    SharedPtr<Memory::Allocator> mAllocator;
    std::uint32_t mCount = 0;
    std::uint32_t mFreeHead = 0;
    std::uint32_t mBegin = 0; ///< the lowest valid id, or the capacity
};

} // namespace ZUNO::Common::Container
