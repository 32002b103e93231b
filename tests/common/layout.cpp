// What hosts and the memory's layout rely on, checked by the compiler of each system.
#include "common/geom/ray2d.h"
#include "common/geom/ray3d.h"
#include "common/memory/freelistallocator.h"
#include "common/platform/mutex.h"

#include <cstddef>

namespace ZUNO::Tests {

namespace {

using Ray2 = Common::Geom::Ray2D<float, float>;
using Ray3 = Common::Geom::Ray3D<float, float>;

static_assert(sizeof(Common::Math::Vec2<float>) == 8);
static_assert(sizeof(Common::Math::Vec3<float>) == 16);
static_assert(sizeof(Ray2) == 28 && offsetof(Ray2, mStart) == 0 && offsetof(Ray2, mEnd) == 8 &&
              offsetof(Ray2, mHitDistance) == 16 && offsetof(Ray2, mLength) == 24);
static_assert(sizeof(Ray3) == 44 && offsetof(Ray3, mStart) == 0 && offsetof(Ray3, mEnd) == 16 &&
              offsetof(Ray3, mHitDistance) == 32 && offsetof(Ray3, mLength) == 40);

using Layout = Common::Memory::FreeListLayout;

struct SizeClass {
    unsigned int mClass;
    std::size_t mLargestRequest;
    std::size_t mStride;
    std::size_t mBlocks;
    std::size_t mChunk;
};

constexpr SizeClass sizeClasses[] = {{1, 3, 8, 2048, 16392},     {2, 7, 12, 1365, 16388},
                                     {3, 11, 16, 1024, 16392},   {16, 63, 68, 240, 16328},
                                     {32, 127, 132, 124, 16376}, {63, 251, 256, 64, 16392}};

constexpr bool isTight() {
    for (const SizeClass& row : sizeClasses)
        if (Layout::classOf(row.mLargestRequest) != row.mClass ||
            Layout::classOf(row.mLargestRequest + 1) != row.mClass + 1 ||
            Layout::stride(row.mClass) != row.mStride ||
            Layout::blocksPerChunk(row.mClass) != row.mBlocks ||
            Layout::chunkSize(row.mClass) != row.mChunk)
            return false;
    return Layout::chunkHeader == 8 && Layout::wordSize == 4 && Layout::largePrefix == 4;
}

static_assert(sizeof(void*) != 4 || isTight());
static_assert(sizeof(void*) != 4 || sizeof(Common::Platform::Mutex) == 24);

} // namespace

} // namespace ZUNO::Tests
