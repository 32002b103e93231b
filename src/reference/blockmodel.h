#pragma once

#include "common/memory/allocator.h"

#include <cstring>
#include <iterator>
#include <map>

namespace ZUNO::Reference {

/// What holds of an allocator's blocks whatever happens: they don't overlap, are aligned, and keep
/// what is written into them.
/// Lifetime: the allocator must outlive it.
class BlockModel {
public:
    /// `alignment` is that of all blocks, in bytes.
    BlockModel(Common::Memory::Allocator& allocator, std::size_t alignment)
        : mAllocator(allocator), mAlignment(alignment) {}

    /// Takes blocks of up to 300 bytes, gives some back and compacts now and then, as `choices` has
    /// it (`goesOn()`, `below(count)`), and gives the others back at the end. Returns what does not
    /// hold, and null when all does.
    template <typename Choices>
    const char* use(Choices& choices) {
        while (mFailure == nullptr && choices.goesOn()) {
            const std::size_t action = choices.below(256);
            if (action == 0 && mCompactions++ < 2) // each looks at all blocks there are
                mAllocator.compact();
            else if (action < 150)
                take(choices.below(301), static_cast<unsigned char>(action));
            else if (!mBlocks.empty())
                release(std::next(mBlocks.begin(),
                                  static_cast<std::ptrdiff_t>(choices.below(mBlocks.size()))));
        }
        while (!mBlocks.empty())
            release(mBlocks.begin());
        return mFailure;
    }

private:
    struct Block {
        std::size_t mSize;
        unsigned char mFill;
    };
    using Blocks = std::map<unsigned char*, Block>;

    void take(std::size_t size, unsigned char fill) {
        auto* const begin = static_cast<unsigned char*>(mAllocator.allocate(size));
        require(begin != nullptr, "there is no memory");
        if (mFailure != nullptr)
            return;
        const auto next = mBlocks.lower_bound(begin);
        require(next == mBlocks.end() || begin + size <= next->first, "blocks overlap");
        if (next != mBlocks.begin())
            require(std::prev(next)->first + std::prev(next)->second.mSize <= begin,
                    "blocks overlap");
        require(reinterpret_cast<std::uintptr_t>(begin) % mAlignment == 0, "a block is askew");
        std::memset(begin, fill, size);
        mBlocks.emplace_hint(next, begin, Block{size, fill});
    }
    void release(Blocks::iterator place) {
        const auto& [begin, block] = *place;
        require(block.mSize == 0 || (begin[0] == block.mFill &&
                                     std::memcmp(begin, begin + 1, block.mSize - 1) == 0),
                "a block lost its content");
        mAllocator.free(begin);
        mBlocks.erase(place);
    }
    void require(bool holds, const char* failure) {
        if (!holds && mFailure == nullptr)
            mFailure = failure;
    }

    Common::Memory::Allocator& mAllocator;
    std::size_t mAlignment;
    Blocks mBlocks;
    unsigned int mCompactions = 0;
    const char* mFailure = nullptr;
};

} // namespace ZUNO::Reference
