// The free-list allocator as sequences of operations: blocks never overlap, keep what is written
// into them, and all of the parent's memory comes back.
#include "common/memory/freelistallocator.h"
#include "fuzz/ground.h"

#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <map>

using namespace ZUNO;

namespace {

struct Block {
    std::size_t mSize;
    unsigned char mFill;
};

bool isIntact(const unsigned char* begin, const Block& block) {
    for (std::size_t i = 0; i < block.mSize; ++i)
        if (begin[i] != block.mFill)
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground;
    FuzzedDataProvider input(data, size);
    const Common::SharedPtr<Common::Memory::Allocator> allocator(
        new Common::Memory::FreeListAllocator(Common::getAllocator()));
    std::map<unsigned char*, Block> blocks;
    while (input.remaining_bytes() != 0) {
        const auto which = input.ConsumeIntegral<std::uint8_t>();
        switch (which % 4) {
        case 0:
        case 1: {
            const auto wanted = input.ConsumeIntegralInRange<std::size_t>(0, 300);
            auto* const begin = static_cast<unsigned char*>(allocator->allocate(wanted));
            Fuzz::require(begin != nullptr, "there is memory");
            const auto next = blocks.lower_bound(begin);
            Fuzz::require(next == blocks.end() || begin + wanted <= next->first, "no overlap");
            if (next != blocks.begin()) {
                const auto former = std::prev(next);
                Fuzz::require(former->first + former->second.mSize <= begin, "no overlap");
            }
            std::memset(begin, which, wanted);
            blocks[begin] = {wanted, which};
            break;
        }
        case 2:
            if (!blocks.empty()) {
                auto place = blocks.begin();
                std::advance(place, which / 4 % blocks.size());
                Fuzz::require(isIntact(place->first, place->second), "content is kept");
                allocator->free(place->first);
                blocks.erase(place);
            }
            break;
        default:
            if (which > 200)
                allocator->compact();
        }
    }
    for (const auto& [begin, block] : blocks) {
        Fuzz::require(isIntact(begin, block), "content is kept");
        allocator->free(begin);
    }
    return 0;
}
