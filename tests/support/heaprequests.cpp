#include "tests/support/heaprequests.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> theRequests{0};

} // namespace

void* operator new(std::size_t size) {
    ++theRequests;
    if (void* const block = std::malloc(size != 0 ? size : 1); block != nullptr)
        return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

std::size_t ZUNO::Tests::heapRequests() {
    return theRequests;
}
