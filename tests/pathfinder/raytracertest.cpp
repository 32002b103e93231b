// The grid and its rays against the plain forms: each cell looked at, each step taken.
#include "common/memory/objectcreation.h"
#include "pathfinder/raytracer/blockingmapraytracer.h"
#include "reference/comparison.h"
#include "reference/plainraytracer.h"
#include "tests/support/foundation.h"

namespace ZUNO::Tests {

using namespace Common;
using namespace Pathfinder::Raytracer;
using NavMesh::NavMeshContainer;
using Reference::Questions;

class RayTracerTest : public FoundationTest {};

TEST_F(RayTracerTest, MarksAndTracesAsThePlainFormsDo) {
    for (const Questions::Disorder& disorder : {
             Questions::Disorder{1, 0, 0.5F},
             {1, 0, 0.07F},
             {0.3F, 1000, 0.11F},
             {1, 1e6F, 0.25F},
             {1, 1e7F, 0.25F}, // the first centres lie on the border
             {1e15F, 0, 1},
             {1e18F, 0, 1},  // products of coordinates overflow
             {1e36F, 0, 1},  // and so do squares of distances
             {1e-20F, 0, 1}, // squares of distances vanish
             {1, 0, 200},    // a grid of one cell
         }) {
        SCOPED_TRACE(std::to_string(disorder.mScale) + " " + std::to_string(disorder.mAway) + " " +
                     std::to_string(disorder.mCubeSize));
        Questions questions(21);
        const SharedPtr<NavMeshContainer> mesh(
            Memory::createManaged<NavMeshContainer>(gObjectAllocator));
        questions.fill(*mesh, disorder);
        BlockingMapRayTracer tracer(mesh, gObjectAllocator, "", false);
        Reference::PlainRayTracer plain(*mesh);
        Math::Vec2<float> bounds[4];
        tracer.getBoundingRectangle(bounds[0], bounds[1]);
        plain.getBoundingRectangle(bounds[2], bounds[3]);
        EXPECT_EQ(bounds[0], bounds[2]);
        EXPECT_EQ(bounds[1], bounds[3]);
        Reference::RayFigures seen;
        EXPECT_EQ(
            compareRays(plain, tracer, questions.raysOver(bounds[0], bounds[1], 20000), &seen), "");
        EXPECT_GE(seen.mHits, disorder.mCubeSize < 100 ? 1000U : 0U);
    }
}

TEST_F(RayTracerTest, KeepsTheUpperBorderOfAVeryFineGridInside) {
    // (0x900000 - 1) / extent, rounded, times the extent is 0x900000: one column too many
    constexpr std::uint32_t columns = 0x900000;
    float extent = 1;
    while (static_cast<std::uint32_t>(static_cast<float>(columns - 1) / extent * extent) < columns)
        extent = std::nextafter(extent, 2.0F);
    BlockingMap map(gObjectAllocator);
    map.init({0, 0}, {extent, 0}, columns, 1, {Pathfinder::noGround, BlockingCell::blocked});
    ASSERT_EQ(map.worldToCell({extent, 0}).mX, int{columns});
    EXPECT_TRUE(map.setCellAtWorld({extent, 0}, {7, BlockingCell::walkable}));
    BlockingCell last{};
    EXPECT_TRUE(map.getCell(columns - 1, 0, last));
    EXPECT_EQ(last.mHeight, 7);
    EXPECT_FALSE(map.getCell(columns, 0, last) || map.getCell(-1, 0, last));
    EXPECT_FALSE(map.getCellAtWorld({-1, 0}, last) || map.setCellAtWorld({0, 1}, last));
}

} // namespace ZUNO::Tests
