#include "tools/zunobake/baker.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <stdexcept>
#include <thread>

namespace ZUNO::Tools {

std::vector<TilePolygon> bakeTiles(const TileBaker& baker, const TileListener& listener) {
    const std::size_t count = baker.grid().tileCount();
    std::vector<std::vector<TilePolygon>> tiles(count);
    std::atomic<std::size_t> next = 0;
    std::vector<std::exception_ptr> failures(std::max(std::thread::hardware_concurrency(), 1U));
    const auto work = [&](std::size_t worker) {
        try {
            for (std::size_t tile = next++; tile < count; tile = next++) {
                tiles[tile] = baker.bake(tile).mPolygons;
                if (worker == 0)
                    listener(std::min<std::size_t>(next, count), count);
            }
        } catch (...) {
            failures[worker] = std::current_exception();
            next = count;
        }
    };
    {
        std::vector<std::jthread> helpers;
        for (std::size_t worker = 1; worker < failures.size(); ++worker)
            helpers.emplace_back(work, worker);
        work(0);
    }
    for (const std::exception_ptr& failure : failures)
        if (failure != nullptr)
            std::rethrow_exception(failure);
    std::vector<TilePolygon> polygons;
    for (std::vector<TilePolygon>& tile : tiles)
        std::ranges::move(tile, std::back_inserter(polygons));
    if (polygons.empty())
        throw std::runtime_error("nothing is walkable: is the up axis the right one, are faces "
                                 "wound counter-clockwise seen from above (--both-sides takes "
                                 "either), and is there room for the agent?");
    return polygons;
}

} // namespace ZUNO::Tools
