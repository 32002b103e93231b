/// What the words of a command line may be, each with a message that says what was expected.
#pragma once

#include <CLI/CLI.hpp>
#include <concepts>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace ZUNO::Tools {

/// Takes whole numbers from `least` to `most`; where `most` is the largest there is, the texts name
/// `least` alone.
CLI::Validator wholeNumber(std::int64_t least, std::int64_t most, bool isMostNamed = true);

/// The same for an option that is kept in a Number: `wholeNumberOf<unsigned int>(1)`.
template <std::unsigned_integral Number>
CLI::Validator wholeNumberOf(std::int64_t least) {
    constexpr std::uint64_t most = std::numeric_limits<Number>::max();
    constexpr std::uint64_t most64 = std::numeric_limits<std::int64_t>::max();
    return wholeNumber(least, static_cast<std::int64_t>(most < most64 ? most : most64), false);
}

/// Takes numbers from `least` to `most`, which are finite.
CLI::Validator numberBetween(double least, double most);

/// Takes one of the words; a misspelt one is answered with the nearest.
CLI::Validator oneOf(const std::vector<std::string>& words);

} // namespace ZUNO::Tools
