#pragma once

#include <vector>

namespace ZUNO::Tools {

/// Where ground is cut by height, so that no piece spans more than so much of it.
/// `crossings[h]` tells how many neighbouring places a cut right below the height h would part;
/// index 0 is the lowest height. Each cut is the one of the fewest crossings that lies at most
/// `highest` above the last, and at least `lowest`. Returns the heights at which levels begin,
/// after the first.
std::vector<int> chooseLevels(const std::vector<int>& crossings, int lowest, int highest);

} // namespace ZUNO::Tools
