#include "pathfinder/raytracer/blockedbits.h"

#include <bit>

namespace ZUNO::Pathfinder::Raytracer {

void BlockedBits::build(const BlockingMap& map) {
    mRowBits = static_cast<unsigned int>(std::bit_width(map.columns() + 1));
    const std::size_t count = std::size_t{map.rows() + 2} << mRowBits;
    mWords.assign((count + 31) / 32, 0xFFFFFFFF);
    const BlockingCell* cell = map.cells();
    for (std::uint32_t row = 0; row < map.rows(); ++row) {
        Place place = placeOf({0, static_cast<int>(row)});
        for (std::uint32_t column = 0; column < map.columns(); ++column, ++cell, ++place)
            mWords[place / 32] &= ~(static_cast<std::uint32_t>(!cell->isBlocked()) << place % 32);
    }
}

} // namespace ZUNO::Pathfinder::Raytracer
