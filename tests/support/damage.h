#pragma once

#include "tests/support/exceptions.h"

#include <algorithm>
#include <string>

namespace ZUNO::Tests {

/// Flips bits of one byte after the other and tells what reading then comes to, with as many
/// letters as bytes in a row do the same: "V4 .2" is four version mismatches and two reads that
/// succeed. V: VersionMismatchException, T: TypeMismatchException, S: SerializeException, .: none,
/// ?: another.
template <typename Read>
std::string outcomesOfDamage(const std::string& good, int flipped, Read read) {
    std::string outcomes;
    for (std::size_t i = 0; i < good.size(); ++i) {
        std::string bad = good;
        bad[i] = static_cast<char>(bad[i] ^ flipped);
        const std::string raised = raisedBy([&] { read(bad); });
        const std::size_t known = raised.empty() ? 0 : std::string("VTS").find(raised[0]);
        outcomes += raised.empty() ? '.' : known != std::string::npos ? raised[0] : '?';
    }
    std::string runs;
    for (std::size_t begin = 0, end = 0; begin < outcomes.size(); begin = end) {
        end = std::min(outcomes.find_first_not_of(outcomes[begin], begin), outcomes.size());
        runs += (runs.empty() ? "" : " ") + std::string(1, outcomes[begin]) +
                std::to_string(end - begin);
    }
    return runs;
}

} // namespace ZUNO::Tests
