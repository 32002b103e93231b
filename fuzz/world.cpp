// The whole library over any mesh file: what loads is searched, traced and asked.
#include "fuzz/ground.h"
#include "pathfinder/interface.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

using namespace ZUNO;
using Common::Math::Vec2;
using Common::Math::Vec3;
using Pathfinder::Interface;

namespace {

/// Coordinates to ask with: those of the world's bounds, and some that no world has.
std::vector<float> coordinates() {
    Vec2<float> low(0, 0);
    Vec2<float> high(0, 0);
    Interface::getBoundingRectangle(low, high);
    constexpr float huge = std::numeric_limits<float>::max();
    return {low.mX,
            high.mX,
            low.mY,
            high.mY,
            low.mX + (high.mX - low.mX) * 0.3F,
            low.mY + (high.mY - low.mY) * 0.7F,
            0.5F,
            1.25F,
            -1,
            huge,
            -huge,
            std::numeric_limits<float>::infinity(),
            std::numeric_limits<float>::quiet_NaN(),
            std::numeric_limits<float>::denorm_min()};
}

void search(const Vec3<float>& from, const Vec3<float>& to) {
    const int id = Interface::initPathSearch(from, to);
    if (id < 0)
        return;
    for (int i = 0; i < 50 && Interface::runPathSearch(id, 5) == 1; ++i) {
    }
    Vec3<float> waypoint(0, 0, 0);
    for (int i = 0; i < 100 && Interface::getNextWaypoint(id, waypoint); ++i) {
    }
    const float cost = Interface::getPathCost(id);
    Fuzz::require(!(cost < 0), "no cost is negative");
    Fuzz::require(Interface::closePathSearch(id), "an open search can be closed");
}

void askEverything() {
    const std::vector<float> values = coordinates();
    for (std::size_t i = 0; i < values.size(); ++i)
        for (std::size_t j = 0; j < values.size(); ++j) {
            const Vec2<float> here(values[i], values[j]);
            const Vec2<float> there(values[(i + 3) % values.size()],
                                    values[(j + 5) % values.size()]);
            const float height = Interface::getGroundHeight(here);
            Interface::isBlocked(here);
            Common::Geom::Ray2D<float, float> flat(here, there);
            Interface::traceRay(flat);
            Fuzz::require(flat.mHitDistance >= 0 || flat.mHitDistance == -1 ||
                              std::isnan(flat.mHitDistance),
                          "a hit lies ahead");
            Common::Geom::Ray3D<float, float> ray({here.mX, height, here.mY},
                                                  {there.mX, height, there.mY});
            Interface::traceRay(ray);
            search({here.mX, height, here.mY},
                   {there.mX, Interface::getGroundHeight(there), there.mY});
        }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::silenceReports();
    auto* const memory = Fuzz::makeBoundedMemory();
    const Common::SharedPtr<Common::Callback::MemoryCallback> memoryCallback(memory);
    auto* const files = new Tests::MemoryFiles;
    const Common::SharedPtr<Common::Callback::FileIOCallback> fileCallback(files);
    files->mFiles["d"].assign(reinterpret_cast<const char*>(data), size);
    for (int i = 0; i < 2; ++i) { // what failed can be started again
        Fuzz::succeeds([&] {
            if (Interface::initWorldRepresentation("d", memoryCallback, fileCallback, ""))
                askEverything();
        });
        Interface::close();
        Fuzz::requireAllBack(*memory, *files);
    }
    return 0;
}
