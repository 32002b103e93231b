// The free-list allocator as sequences of operations.
#include "common/memory/freelistallocator.h"
#include "fuzz/ground.h"
#include "reference/blockmodel.h"

using namespace ZUNO;
using Common::Memory::FreeListAllocator;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Fuzz::Ground ground; // looks at the end whether all of the parent's memory came back
    Fuzz::Choices choices(data, size);
    FreeListAllocator allocator(Common::getAllocator());
    Reference::BlockModel blocks(allocator, Common::Memory::FreeListLayout::alignment);
    const char* const failure = blocks.use(choices);
    Fuzz::require(failure == nullptr, failure);
    return 0;
}
