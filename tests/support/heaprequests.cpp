#include "tests/support/heaprequests.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> theRequests{0};
std::atomic<std::size_t> theBlocks{0};
std::atomic<std::size_t> theRefused{0}; ///< by its number; 0: none

} // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (++theRequests == theRefused)
        return nullptr;
    void* const block = std::malloc(size != 0 ? size : 1);
    theBlocks += block != nullptr ? 1 : 0;
    return block;
}
void* operator new(std::size_t size) {
    if (void* const block = operator new(size, std::nothrow); block != nullptr)
        return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
    theBlocks -= block != nullptr ? 1 : 0;
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    operator delete(block);
}

// The sanitizers' forms for arrays would not call these.
void* operator new[](std::size_t size, const std::nothrow_t& noThrow) noexcept {
    return operator new(size, noThrow);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete[](void* block) noexcept {
    operator delete(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    operator delete(block);
}

std::size_t ZUNO::Tests::heapRequests() {
    return theRequests;
}
std::size_t ZUNO::Tests::heapBlocks() {
    return theBlocks;
}
bool ZUNO::Tests::refuseHeapRequest(std::size_t number) {
    const bool isDone = theRefused != 0 && theRequests >= theRefused;
    theRefused = number != 0 ? theRequests + number : 0;
    return isDone;
}
