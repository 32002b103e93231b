#include "common/exceptions/lastresort.h"

#include "common/utility/immortal.h"

#include <atomic>
#include <cstdlib>
#include <functional>
#include <limits>

namespace ZUNO::Common::Exceptions {

namespace {

struct Cell {
    alignas(std::max_align_t) std::byte mBytes[256];
};

constexpr std::size_t cellCount = 64;
constinit Cell theCells[cellCount] = {};
constinit std::atomic<bool> theTaken[cellCount] = {};

void* takeCell(std::uint64_t size) {
    for (std::size_t i = 0; i < cellCount && size <= sizeof(Cell); ++i)
        if (!theTaken[i].exchange(true))
            return theCells[i].mBytes;
    return nullptr;
}

/// Whether the block was a cell, which is free then.
bool giveCellBack(const void* block) {
    const std::less<const void*> before;
    if (before(block, theCells) || !before(block, theCells + cellCount))
        return false;
    const auto offset = static_cast<const std::byte*>(block) - theCells[0].mBytes;
    theTaken[static_cast<std::size_t>(offset) / sizeof(Cell)] = false;
    return true;
}

class LastResort final : public Memory::Allocator {
public:
    LastResort() : Allocator("LastResort") {}

    void* allocate(std::uint64_t size) override {
        if (size > std::numeric_limits<std::uint32_t>::max())
            return nullptr;
        void* const block = std::malloc(size != 0 ? static_cast<std::size_t>(size) : 1);
        return block != nullptr ? block : takeCell(size);
    }
    void free(void* ptr) override {
        if (!giveCellBack(ptr))
            std::free(ptr);
    }
    bool isClean() override { return true; }
    bool isThreadSafe() override { return true; }
};

} // namespace

const SharedPtr<Memory::Allocator>& lastResort() {
    static Utility::Immortal<LastResort> allocator;
    static Utility::Immortal<SharedPtr<Memory::Allocator>> handle(&allocator.mValue);
    return handle.mValue;
}

} // namespace ZUNO::Common::Exceptions
