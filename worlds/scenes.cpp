#include "worlds/scenes.h"

#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <sstream>

namespace ZUNO::Worlds {

void SceneModel::begin(const std::string& group, const std::string& material) {
    mGroup = group;
    mMaterial = material;
}

void SceneModel::addFace(std::vector<Point> corners) {
    mFaces.push_back({std::move(corners), mMaterial, mGroup});
}

void SceneModel::addBox(const Point& low, const Point& high) {
    const auto [x, y, z] = low;
    const auto [X, Y, Z] = high;
    addFace({{x, Y, z}, {x, Y, Z}, {X, Y, Z}, {X, Y, z}});
    addFace({{x, y, z}, {X, y, z}, {X, y, Z}, {x, y, Z}});
    addFace({{x, y, Z}, {X, y, Z}, {X, Y, Z}, {x, Y, Z}});
    addFace({{x, y, z}, {x, Y, z}, {X, Y, z}, {X, y, z}});
    addFace({{X, y, z}, {X, Y, z}, {X, Y, Z}, {X, y, Z}});
    addFace({{x, y, z}, {x, y, Z}, {x, Y, Z}, {x, Y, z}});
}

void SceneModel::addSlab(const std::array<Point, 4>& top, double thickness) {
    std::array<Point, 4> bottom = top;
    for (Point& corner : bottom)
        corner[1] -= thickness;
    addFace({top.begin(), top.end()});
    addFace({bottom.rbegin(), bottom.rend()});
    for (std::size_t i = 0; i < 4; ++i) {
        const std::size_t j = (i + 1) % 4;
        addFace({top[i], bottom[i], bottom[j], top[j]});
    }
}

std::string SceneModel::toObj(const std::string& comment) const {
    std::ostringstream text;
    text << "# " << comment << '\n';
    std::map<Point, std::size_t> numbers;
    for (const Face& face : mFaces)
        for (const Point& corner : face.mCorners)
            if (numbers.try_emplace(corner, numbers.size() + 1).second)
                text << "v " << corner[0] << ' ' << corner[1] << ' ' << corner[2] << '\n';
    std::string group;
    std::string material;
    for (const Face& face : mFaces) {
        if (face.mGroup != group)
            text << "g " << (group = face.mGroup) << '\n';
        if (face.mMaterial != material)
            text << "usemtl " << (material = face.mMaterial) << '\n';
        text << 'f';
        for (const Point& corner : face.mCorners)
            text << ' ' << numbers[corner];
        text << '\n';
    }
    return text.str();
}

namespace {

using Point = SceneModel::Point;

void addFloor(SceneModel& scene, double x, double z, double X, double Z, double height) {
    scene.addFace({{x, height, z}, {x, height, Z}, {X, height, Z}, {X, height, z}});
}

} // namespace

SceneModel makeCourtyard() {
    SceneModel scene;
    scene.begin("ground", "paving");
    addFloor(scene, 0, 0, 40, 40, 0);
    scene.begin("walls", "brick");
    scene.addBox({-0.5, 0, -0.5}, {40.5, 5, 0});
    scene.addBox({-0.5, 0, 40}, {40.5, 5, 40.5});
    scene.addBox({-0.5, 0, 0}, {0, 5, 40});
    scene.addBox({40, 0, 0}, {40.5, 5, 40});
    scene.begin("lawn", "grass");
    scene.addBox({3, -0.2, 24}, {15, 0.1, 37});

    scene.begin("fountain", "marble");
    std::vector<Point> rim;
    constexpr int sides = 12;
    for (int i = 0; i < sides; ++i) {
        const double angle = -2 * std::numbers::pi * i / sides;
        rim.push_back({20 + 3 * std::cos(angle), 1, 20 + 3 * std::sin(angle)});
    }
    scene.addFace(rim);
    for (std::size_t i = 0; i < rim.size(); ++i) {
        const Point& a = rim[i];
        const Point& b = rim[(i + 1) % rim.size()];
        scene.addFace({a, {a[0], 0, a[2]}, {b[0], 0, b[2]}, b});
    }

    scene.begin("gallery", "planks");
    scene.addBox({0, 2.95, 0}, {40, 3.2, 6});
    scene.begin("columns", "marble");
    for (int x = 4; x < 40; x += 8)
        scene.addBox({x - 0.25, 0, 5.25}, {x + 0.25, 2.95, 5.75});
    scene.begin("stairs", "marble");
    constexpr int steps = 16;
    for (int i = 0; i < steps; ++i)
        scene.addBox({34, 0, 6 + 0.4 * i}, {38, 0.2 * (steps - i), 6.4 + 0.4 * i});

    scene.begin("shed", "planks");
    scene.addBox({28, 0, 30}, {36, 3, 30.3});
    scene.addBox({28, 0, 35.7}, {36, 3, 36});
    scene.addBox({28, 0, 30.3}, {28.3, 3, 35.7});
    scene.addBox({35.7, 0, 30.3}, {36, 3, 35.7});

    const Point yard{10, 0, 12};
    const Point gallery{5, 3.2, 3};
    scene.mJourneys = {
        {"across the yard", yard, {30, 0, 25}, true},
        {"up the stairs", yard, gallery, true},
        {"down the stairs", gallery, {20, 0, 30}, true},
        {"below the gallery", yard, {20, 0, 3}, true},
        {"from below the gallery onto it", {20, 0, 3}, {20, 3.2, 3}, true},
        {"over the lawn", {9, 0.1, 30}, {22, 0, 10}, true},
        {"into the shed", yard, {32, 0, 33}, false},
    };
    return scene;
}

SceneModel makeBridge() {
    SceneModel scene;
    scene.begin("ground", "earth");
    addFloor(scene, 0, 0, 60, 40, 0);
    scene.begin("bridge", "stone");
    constexpr double height = 4;
    constexpr double thickness = 0.5;
    scene.addSlab({{{25, height, 17}, {25, height, 23}, {35, height, 23}, {35, height, 17}}},
                  thickness);
    scene.addSlab({{{15, 0, 17}, {15, 0, 23}, {25, height, 23}, {25, height, 17}}}, thickness);
    scene.addSlab({{{35, height, 17}, {35, height, 23}, {45, 0, 23}, {45, 0, 17}}}, thickness);
    scene.begin("plateau", "rock");
    scene.addBox({48, 0, 3}, {57, 2, 12});
    const Point over{30, height, 20};
    const Point under{30, 0, 20};
    scene.mJourneys = {
        {"over the bridge", {10, 0, 20}, {50, 0, 20}, true},
        {"onto the bridge", {10, 0, 20}, over, true},
        {"under the bridge", {30, 0, 5}, {30, 0, 35}, true},
        {"from under the bridge onto it", under, over, true},
        {"up the ramp", {16, 0.4, 20}, {24, 3.6, 20}, true},
        {"onto the plateau", {10, 0, 20}, {52, 2, 7}, false},
    };
    return scene;
}

SceneModel makeSpiral() {
    SceneModel scene;
    scene.begin("ground", "earth");
    addFloor(scene, -16, -16, 16, 16, 0);
    scene.begin("tower", "brick");
    constexpr int segments = 32; // of a turn
    constexpr int storeys = 3;
    constexpr double storey = 4;
    constexpr double top = storeys * storey + 3;
    constexpr double inside = 4.5;
    constexpr double inner = 5;
    constexpr double outer = 9;
    const auto at = [&](int segment, double radius, double height) {
        const double angle = 2 * std::numbers::pi * segment / segments;
        return Point{radius * std::cos(angle), height, radius * std::sin(angle)};
    };
    for (int i = 0; i < segments; ++i)
        scene.addSlab({{at(i, inside, top), at(i + 1, inside, top), at(i + 1, inner, top),
                        at(i, inner, top)}},
                      top);
    scene.begin("ramp", "planks");
    for (int i = 0; i < segments * storeys; ++i) {
        const double low = storey * i / segments;
        const double high = storey * (i + 1) / segments;
        scene.addSlab({{at(i, inner, low), at(i + 1, inner, high), at(i + 1, outer, high),
                        at(i, outer, low)}},
                      0.3);
    }
    scene.begin("landing", "planks");
    scene.addSlab({{{inner, storeys * storey, 0},
                    {inner, storeys * storey, 5},
                    {outer + 3, storeys * storey, 5},
                    {outer + 3, storeys * storey, 0}}},
                  0.3);
    const auto onRamp = [&](double turns) {
        const double angle = 2 * std::numbers::pi * turns;
        return Point{7 * std::cos(angle), storey * turns, 7 * std::sin(angle)};
    };
    const Point ground{14, 0, -10};
    scene.mJourneys = {
        {"to the first storey", ground, onRamp(0.75), true},
        {"to the second storey", ground, onRamp(1.75), true},
        {"to the third storey", ground, onRamp(2.75), true},
        {"to the landing", ground, {11, storeys * storey, 3}, true},
        {"down two storeys", onRamp(2.5), onRamp(0.5), true},
        {"into the tower", ground, {0, 0, 0}, false},
    };
    return scene;
}

SceneModel makeMaze(int size, unsigned int seed) {
    constexpr double pitch = 2.5;
    constexpr double half = 0.125; // of a wall's thickness
    constexpr double height = 2.5;
    // carved by a walk that turns back where it finds no unseen cell
    const auto cellAt = [&](int x, int z) { return static_cast<std::size_t>(x + z * size); };
    const auto count = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
    std::vector<bool> isSeen(count);
    std::vector<bool> opensRight(count);
    std::vector<bool> opensDown(count);
    std::mt19937 random(seed);
    std::vector<std::pair<int, int>> way{{0, 0}};
    const std::pair<int, int> closed{size / 2, size / 2};
    isSeen[0] = true;
    isSeen[cellAt(closed.first, closed.second)] = true;
    while (!way.empty()) {
        const auto [x, z] = way.back();
        constexpr std::pair<int, int> steps[] = {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
        std::vector<std::pair<int, int>> choices;
        for (const auto& [dx, dz] : steps)
            if (x + dx >= 0 && x + dx < size && z + dz >= 0 && z + dz < size &&
                !isSeen[cellAt(x + dx, z + dz)])
                choices.emplace_back(dx, dz);
        if (choices.empty()) {
            way.pop_back();
            continue;
        }
        const auto [dx, dz] = choices[random() % choices.size()];
        if (dx != 0)
            opensRight[cellAt(std::min(x, x + dx), z)] = true;
        else
            opensDown[cellAt(x, std::min(z, z + dz))] = true;
        isSeen[cellAt(x + dx, z + dz)] = true;
        way.emplace_back(x + dx, z + dz);
    }

    SceneModel scene;
    scene.begin("ground", "gravel");
    addFloor(scene, 0, 0, size * pitch, size * pitch, 0);
    scene.begin("walls", "hedge");
    // one box for each straight run of wall
    const auto addRuns = [&](const auto& isWall, const auto& addRun) {
        for (int line = 0; line <= size; ++line)
            for (int i = 0, begin = 0; i < size; begin = ++i) {
                while (i < size && isWall(line, i))
                    ++i;
                if (i > begin)
                    addRun(line * pitch, begin * pitch - half, i * pitch + half);
            }
    };
    addRuns([&](int x, int z) { return x == 0 || x == size || !opensRight[cellAt(x - 1, z)]; },
            [&](double x, double begin, double end) {
                scene.addBox({x - half, 0, begin}, {x + half, height, end});
            });
    addRuns([&](int z, int x) { return z == 0 || z == size || !opensDown[cellAt(x, z - 1)]; },
            [&](double z, double begin, double end) {
                scene.addBox({begin, 0, z - half}, {end, height, z + half});
            });

    const auto centre = [&](int x, int z) {
        return Point{(x + 0.5) * pitch, 0, (z + 0.5) * pitch};
    };
    scene.mJourneys = {
        {"from corner to corner", centre(0, 0), centre(size - 1, size - 1), true},
        {"along a side", centre(0, 0), centre(size - 1, 0), true},
        {"to the middle", centre(size - 1, 0), centre(closed.first + 1, closed.second), true},
        {"into the closed cell", centre(0, 0), centre(closed.first, closed.second), false},
    };
    return scene;
}

SceneModel makeTown(int size, unsigned int seed) {
    constexpr double pitch = 12;
    std::mt19937 random(seed);
    const auto between = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(random() % 1024) / 1024;
    };
    SceneModel scene;
    scene.begin("ground", "paving");
    addFloor(scene, 0, 0, size * pitch, size * pitch, 0);
    for (int z = 0; z < size; ++z)
        for (int x = 0; x < size; ++x) {
            const auto addBox = [&](double low, double high) {
                const double width = between(low, high);
                const double depth = between(low, high);
                const double left = x * pitch + between(0.5, pitch - width - 0.5);
                const double front = z * pitch + between(0.5, pitch - depth - 0.5);
                scene.addBox({left, 0, front}, {left + width, 3, front + depth});
            };
            const auto kind = random() % 10; // below 2: open ground
            const auto stalls = kind >= 2 && kind < 6 ? random() % 24 : 0;
            scene.begin("stalls", "timber");
            for (auto i = stalls; i != 0; --i)
                addBox(0.2, 0.8);
            scene.begin("houses", "brick");
            if (kind >= 6)
                addBox(3, 10);
        }
    scene.mJourneys = {
        {"from end to end", {0.25, 0, 0.25}, {size * pitch - 0.25, 0, size * pitch - 0.25}, true}};
    return scene;
}

} // namespace ZUNO::Worlds
