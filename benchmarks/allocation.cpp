// The free-list allocator against malloc: the sizes of path records, in the order of real use.
#include "common/memory/defaultallocator.h"
#include "common/memory/freelistallocator.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <vector>

namespace {

using namespace ZUNO::Common;

constexpr int blocks = 1000;

void freeListAllocation(benchmark::State& state) {
    const SharedPtr<Memory::Allocator> heap(new Memory::DefaultAllocator);
    Memory::FreeListAllocator allocator(heap);
    const auto size = static_cast<std::uint64_t>(state.range(0));
    std::vector<void*> held(blocks);
    for (auto _ : state) {
        for (void*& block : held)
            block = allocator.allocate(size);
        for (void* const block : held)
            allocator.free(block);
    }
    state.SetItemsProcessed(state.iterations() * blocks);
}
BENCHMARK(freeListAllocation)->Arg(16)->Arg(64)->Arg(240);

void mallocAllocation(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    std::vector<void*> held(blocks);
    for (auto _ : state) {
        for (void*& block : held)
            benchmark::DoNotOptimize(block = std::malloc(size));
        for (void* const block : held)
            std::free(block);
    }
    state.SetItemsProcessed(state.iterations() * blocks);
}
BENCHMARK(mallocAllocation)->Arg(16)->Arg(64)->Arg(240);

} // namespace
