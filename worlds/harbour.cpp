#include "worlds/meshmodel.h"

#include <functional>

namespace ZUNO::Worlds {

namespace {

// One character is a square of 2.5 x 2.5.
//   .  quay    g  park    w  pier    m  market, under the gallery    #  building
//   ^  foot of a ramp (the ramp itself is added)    blank  water
constexpr const char* ground[] = {
    "..............................gggggggggggg", "..............................gggggggggggg",
    "..####..####..####..####......gggg##gggggg", "..####..####..####..####......gggg##gggggg",
    "..####..####..####..####......gggggggggggg", "..............................gggggggggggg",
    "..............................gggggg##gggg", "..mmmmmmmmmmmmmmmmmmmmmm^^^^..gggggg##gggg",
    "..mmmmmmmmmmmmmmmmmmmmmm^^^^..gggggggggggg", "..mmmmmmmmmmmmmmmmmmmmmm..................",
    "..mm##mm##mm##mm##mm##mm......####........", "..mmmmmmmmmmmmmmmmmmmmmm......####....##..",
    "..mmmmmmmmmmmmmmmmmmmmmm......####....##..", "..^^..................................##..",
    "..^^......................................", "..^^...####...####...####.................",
    "..^^...####...####...####.................", "..........................................",
    "..........................................", "   ww        ww        ww        ww       ",
    "   ww        ww        ww        ww       ", "   ww        ww        ww        ww       ",
    "   ww        wwwwwww   ww        wwwwwww  ", "   ww        wwwwwww   ww        wwwwwww  ",
    "   ww                  ww                 ", "   ww                  ww                 ",
};
constexpr int columns = 42;
constexpr int rows = 26;
constexpr int side = 10;       // quarters
constexpr int deckHeight = 20; // quarters

// Height classes: under the gallery, in the open, on slopes.
enum Class { LOW_ROOF = 0, OPEN_SKY = 1, SLOPE = 2 };
enum Surface { STONE = 0, GRASS = 1, WOOD = 2 };

char at(int x, int z) {
    return x >= 0 && x < columns && z >= 0 && z < rows ? ground[z][x] : ' ';
}

/// Spreads small decisions over the map, the same ones every time.
int pick(int x, int z, int among) {
    return (x * 7 + z * 13 + x * z) % among;
}

int surfaceOf(char kind) {
    return kind == 'g' ? GRASS : (kind == 'w' ? WOOD : STONE);
}

void addGroundSquare(MeshModel& mesh, int x, int z) {
    const char kind = at(x, z);
    const int surface = surfaceOf(kind);
    const int heightClass = kind == 'm' ? LOW_ROOF : OPEN_SKY;
    const int left = x * side;
    const int low = z * side;
    const MeshModel::Corner a{left, 0, low};
    const MeshModel::Corner b{left + side, 0, low};
    const MeshModel::Corner c{left + side, 0, low + side};
    const MeshModel::Corner d{left, 0, low + side};
    if (kind == 'g' && pick(x, z, 4) == 0) {
        mesh.addPolygon({a, b, c}, heightClass, surface);
        mesh.addPolygon({a, c, d}, heightClass, surface);
    } else if (kind == 'g' && pick(x, z, 9) == 5) {
        const MeshModel::Corner right{left + side, 0, low + side / 2};
        const MeshModel::Corner top{left + side / 2, 0, low + side};
        mesh.addPolygon({a, b, right, top, d}, heightClass, surface);
        mesh.addPolygon({right, c, top}, heightClass, surface);
    } else {
        mesh.addPolygon({a, b, c, d}, heightClass, surface);
    }
}

/// Four squares of one kind make one large square, whose borders are then split where small ones
/// touch it: polygons of four to eight corners.
bool isLargeSquare(int x, int z) {
    const char kind = at(x, z);
    return x % 2 == 0 && z % 2 == 0 && (kind == '.' || kind == 'g') && pick(x, z, 5) == 1 &&
           at(x + 1, z) == kind && at(x, z + 1) == kind && at(x + 1, z + 1) == kind;
}

void addGround(MeshModel& mesh) {
    for (int z = 0; z < rows; ++z)
        for (int x = 0; x < columns; ++x) {
            const bool isCovered = isLargeSquare(x - x % 2, z - z % 2);
            if (isCovered && x % 2 == 0 && z % 2 == 0) {
                const int left = x * side;
                const int low = z * side;
                mesh.addPolygon({{left, 0, low},
                                 {left + 2 * side, 0, low},
                                 {left + 2 * side, 0, low + 2 * side},
                                 {left, 0, low + 2 * side}},
                                OPEN_SKY, surfaceOf(at(x, z)));
            } else if (!isCovered && at(x, z) != ' ' && at(x, z) != '#' && at(x, z) != '^') {
                addGroundSquare(mesh, x, z);
            }
        }
}

/// A floor of squares whose corners lie as high as `heightAt` says (column and row of a corner).
void addSquares(MeshModel& mesh, int left, int low, int right, int high, int heightClass,
                const std::function<int(int, int)>& heightAt) {
    const auto corner = [&](int x, int z) {
        return MeshModel::Corner{x * side, heightAt(x, z), z * side};
    };
    for (int z = low; z < high; ++z)
        for (int x = left; x < right; ++x)
            mesh.addPolygon(
                {corner(x, z), corner(x + 1, z), corner(x + 1, z + 1), corner(x, z + 1)},
                heightClass, WOOD);
}

/// The gallery over the market, and its two ramps.
void addGallery(MeshModel& mesh) {
    addSquares(mesh, 2, 7, 24, 13, OPEN_SKY, [](int, int) { return deckHeight; });
    addSquares(mesh, 24, 7, 28, 9, SLOPE, [](int x, int) { return deckHeight * (28 - x) / 4; });
    addSquares(mesh, 2, 13, 4, 17, SLOPE, [](int, int z) { return deckHeight * (17 - z) / 4; });
}

/// An island with a lighthouse: a ring of triangles and squares around an octagon.
void addIsland(MeshModel& mesh) {
    constexpr int x = 400;
    constexpr int z = 300;
    constexpr int ring[][2] = {{-4, -10}, {4, -10}, {10, -4}, {10, 4},
                               {4, 10},   {-4, 10}, {-10, 4}, {-10, -4}};
    std::vector<MeshModel::Corner> octagon;
    for (const auto& [dx, dz] : ring)
        octagon.push_back({x + dx, 4, z + dz});
    mesh.addPolygon(octagon, OPEN_SKY, STONE);
    for (std::size_t i = 0; i < 8; ++i) {
        const auto& [ax, az] = ring[i];
        const auto& [bx, bz] = ring[(i + 1) % 8];
        // outwards from the octagon, down to the shore
        mesh.addPolygon({{x + 2 * ax, 0, z + 2 * az},
                         {x + 2 * bx, 0, z + 2 * bz},
                         {x + bx, 4, z + bz},
                         {x + ax, 4, z + az}},
                        SLOPE, GRASS);
    }
}

} // namespace

MeshModel makeHarbour() {
    MeshModel mesh;
    mesh.mHeights = {2.5F, 4, 6};
    mesh.mCubeSize = 0.5F;
    mesh.mSurfaceNames = {"stone", "grass", "wood"};
    mesh.mCharacters = {{"docker", 1.8F, 0.5F, 2, 2}, {"porter with a crate", 2.4F, 0, 1, 2}};
    addGround(mesh);
    addGallery(mesh);
    addIsland(mesh);
    mesh.connect();
    return mesh;
}

} // namespace ZUNO::Worlds
