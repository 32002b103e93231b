/// What the parts of a mesh's picture look like.
#pragma once

#include <algorithm>
#include <array>
#include <string>

namespace ZUNO::Tools::Style {

constexpr float paper = 1200; // the longer side of the drawing
constexpr float margin = 30;
constexpr float header = 56;
constexpr float footer = 56;
constexpr float legendWidth = 270;

constexpr const char* pathColours[] = {"#c2185b", "#1565c0", "#2e7d32", "#6a1b9a",
                                       "#00838f", "#d84315", "#283593", "#827717"};

using Colour = std::array<int, 3>;
/// An island's ground, from the lowest to the highest.
struct Tint {
    Colour mLow;
    Colour mHigh;
};
/// The largest island's first; the others take turns.
constexpr Tint tints[] = {{{232, 224, 204}, {240, 150, 60}},  {{205, 222, 242}, {92, 140, 205}},
                          {{208, 236, 208}, {88, 168, 104}},  {{232, 212, 240}, {160, 104, 190}},
                          {{246, 212, 220}, {214, 100, 130}}, {{202, 234, 236}, {60, 160, 170}},
                          {{240, 236, 180}, {190, 176, 50}}};

inline const Tint& tintOf(std::size_t island) {
    constexpr std::size_t others = std::size(tints) - 1;
    return tints[island == 0 ? 0 : 1 + (island - 1) % others];
}

/// The colour at a share of the way from the tint's lowest to its highest.
inline std::string hex(const Tint& tint, float share) {
    std::string text = "#";
    constexpr char digits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < 3; ++i) {
        const auto low = static_cast<float>(tint.mLow[i]);
        const float mixed = low + share * (static_cast<float>(tint.mHigh[i]) - low);
        const auto value = static_cast<unsigned int>(std::clamp(mixed, 0.0F, 255.0F));
        text += digits[value / 16];
        text += digits[value % 16];
    }
    return text;
}

} // namespace ZUNO::Tools::Style
