#include "hostkit/turnqueue.h"

#include <algorithm>

namespace ZUNO::HostKit {

void TurnQueue::makeRoom(std::size_t count) {
    if (count <= mPositions.size())
        return;
    // the positions say that there is room: they grow last
    if (mHeap.capacity() < count)
        mHeap.reserve(std::max(count, mHeap.capacity() * 2));
    mPositions.resize(count, nowhere);
}

void TurnQueue::place(const Entry& entry, std::size_t position) {
    mHeap[position] = entry;
    mPositions[entry.mSlot] = position;
}

/// Lets an entry rise or sink from a position, whose own entry is given up, to where it belongs.
void TurnQueue::settle(const Entry& entry, std::size_t position) {
    while (position > 0 && entry.isBefore(mHeap[(position - 1) / 2])) {
        place(mHeap[(position - 1) / 2], position);
        position = (position - 1) / 2;
    }
    for (;;) {
        std::size_t child = position * 2 + 1;
        if (child + 1 < mHeap.size() && mHeap[child + 1].isBefore(mHeap[child]))
            ++child;
        if (child >= mHeap.size() || !mHeap[child].isBefore(entry))
            break;
        place(mHeap[child], position);
        position = child;
    }
    place(entry, position);
}

void TurnQueue::put(std::uint32_t slot, std::uint64_t turn, std::uint64_t order) {
    const Entry entry{turn, order, slot};
    if (mPositions[slot] == nowhere) {
        mHeap.push_back(entry);
        mPositions[slot] = mHeap.size() - 1;
    }
    settle(entry, mPositions[slot]);
}

void TurnQueue::remove(std::uint32_t slot) {
    const std::size_t position = mPositions[slot];
    if (position == nowhere)
        return;
    mPositions[slot] = nowhere;
    const Entry last = mHeap.back();
    mHeap.pop_back();
    if (position < mHeap.size())
        settle(last, position);
}

void TurnQueue::clear() {
    for (const Entry& entry : mHeap)
        mPositions[entry.mSlot] = nowhere;
    mHeap.clear();
}

} // namespace ZUNO::HostKit
