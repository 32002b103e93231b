#include "pathfinder/raytracer/distancefield.h"

#include <algorithm>

namespace ZUNO::Pathfinder::Raytracer {

namespace {

constexpr unsigned int farthest = 255;

std::uint8_t stepFrom(unsigned int distance) {
    return static_cast<std::uint8_t>(std::min(distance + 1, farthest));
}

/// Lowers a row's distances by way of the row beside it (null outside the grid), then from one
/// neighbour in the row to the next. The last column needs no look at what lies outside: it is
/// blocked everywhere.
void lower(std::uint8_t* row, const std::uint8_t* beside, std::size_t count) {
    if (beside == nullptr) {
        for (std::size_t x = 0; x < count; ++x)
            row[x] = std::min<std::uint8_t>(row[x], 1);
    } else {
        row[0] = std::min<std::uint8_t>(row[0], 1);
        for (std::size_t x = 1; x + 1 < count; ++x) {
            const unsigned int nearest = std::min({beside[x - 1], beside[x], beside[x + 1]});
            row[x] = std::min(row[x], stepFrom(nearest));
        }
    }
    for (std::size_t x = 1; x < count; ++x)
        row[x] = std::min(row[x], stepFrom(row[x - 1]));
    for (std::size_t x = count - 1; x-- > 0;)
        row[x] = std::min(row[x], stepFrom(row[x + 1]));
}

} // namespace

void DistanceField::build(const BlockingMap& map) {
    const auto blocksOf = [](std::uint32_t cells) {
        return (std::size_t{cells} + blockSize - 1) / blockSize;
    };
    mColumns = blocksOf(map.columns());
    const std::size_t rows = blocksOf(map.rows());
    mDistances.assign(mColumns * rows, farthest);
    const BlockingCell* cell = map.cells();
    for (std::size_t y = 0; y < map.rows(); ++y) {
        std::uint8_t* const blocks = mDistances.data() + y / blockSize * mColumns;
        for (std::size_t x = 0; x < map.columns(); ++x, ++cell)
            if (cell->isBlocked())
                blocks[x / blockSize] = 0;
    }
    std::uint8_t* const distances = mDistances.data();
    for (std::size_t y = 0; y < rows; ++y)
        lower(distances + y * mColumns, y != 0 ? distances + (y - 1) * mColumns : nullptr,
              mColumns);
    for (std::size_t y = rows; y-- > 0;)
        lower(distances + y * mColumns, y + 1 != rows ? distances + (y + 1) * mColumns : nullptr,
              mColumns);
}

} // namespace ZUNO::Pathfinder::Raytracer
