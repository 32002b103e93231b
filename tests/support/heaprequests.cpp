#include "tests/support/heaprequests.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> theRequests{0};

} // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++theRequests;
    return std::malloc(size != 0 ? size : 1);
}
void* operator new(std::size_t size) {
    if (void* const block = operator new(size, std::nothrow); block != nullptr)
        return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

std::size_t ZUNO::Tests::heapRequests() {
    return theRequests;
}
