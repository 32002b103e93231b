#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ZUNO::HostKit {

/// Numbers ("slots") in the order of their turns; of equal turns the one with the lower order comes
/// first. A binary heap that knows where each slot lies. Allocates in `makeRoom` alone.
class TurnQueue {
public:
    /// Room for the slots below `count`. Cost: amortised constant.
    void makeRoom(std::size_t count);

    bool isEmpty() const { return mHeap.empty(); }
    std::size_t size() const { return mHeap.size(); }
    /// The slot whose turn it is, of a queue that is not empty.
    std::uint32_t front() const { return mHeap.front().mSlot; }

    /// Inserts a slot, or moves it to another turn. Cost: logarithmic.
    void put(std::uint32_t slot, std::uint64_t turn, std::uint64_t order);
    /// Removes a slot; one that is not there is ignored. Cost: logarithmic.
    void remove(std::uint32_t slot);
    void clear();

private:
    struct Entry {
        std::uint64_t mTurn;
        std::uint64_t mOrder;
        std::uint32_t mSlot;
        bool isBefore(const Entry& other) const {
            return mTurn != other.mTurn ? mTurn < other.mTurn : mOrder < other.mOrder;
        }
    };
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

    void place(const Entry& entry, std::size_t position);
    void settle(const Entry& entry, std::size_t position);

    std::vector<Entry> mHeap;
    std::vector<std::size_t> mPositions; ///< of each slot in the heap, or `nowhere`
};

} // namespace ZUNO::HostKit
