#pragma once

#include <cstdint>
#include <map>
#include <recastnavigation/Recast.h>
#include <stdexcept>
#include <tuple>
#include <vector>

namespace ZUNO::Tools {

/// The areas of one tile: each stands for what the ground is made of, which agents fit, and one of
/// two parities of levels, and none of Recast's regions spans two of them.
class AreaTable {
public:
    struct Entry {
        std::uint16_t mSurface;
        std::uint16_t mAgent;
        bool mIsOddLevel;
        auto key() const { return std::make_tuple(mSurface, mAgent, mIsOddLevel); }
        bool operator<(const Entry& other) const { return key() < other.key(); }
    };

    unsigned char areaOf(const Entry& entry) {
        const auto [place, isNew] = mAreas.try_emplace(entry, mEntries.size());
        if (isNew) {
            if (mEntries.size() == RC_WALKABLE_AREA)
                throw std::runtime_error("a tile has more kinds of ground than Recast can tell "
                                         "apart: choose a smaller --tile, or --no-materials");
            mEntries.push_back(entry);
        }
        return static_cast<unsigned char>(place->second + 1);
    }
    const Entry& operator[](unsigned char area) const { return mEntries[area - 1U]; }

private:
    std::map<Entry, std::size_t> mAreas;
    std::vector<Entry> mEntries;
};

} // namespace ZUNO::Tools
