#include "tools/zunobake/levels.h"

#include <algorithm>

namespace ZUNO::Tools {

std::vector<int> chooseLevels(const std::vector<int>& crossings, int lowest, int highest) {
    std::vector<int> levels;
    const auto end = static_cast<int>(crossings.size());
    for (int begin = 0; begin + highest < end;) {
        int cut = begin + highest;
        for (int height = cut - 1; height >= begin + lowest; --height)
            if (crossings[static_cast<std::size_t>(height)] <
                crossings[static_cast<std::size_t>(cut)])
                cut = height;
        levels.push_back(cut);
        begin = cut;
    }
    return levels;
}

} // namespace ZUNO::Tools
