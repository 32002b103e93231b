#pragma once

#include <cstddef>
#include <random>

namespace ZUNO::Reference {

/// Decides what a comparison does next, so many times; the same for the same seed, in every build.
class RandomChoices {
public:
    RandomChoices(unsigned int seed, unsigned int count) : mRandom(seed), mLeft(count) {}

    /// Returns false when it is enough.
    bool goesOn() { return mLeft-- != 0; }
    /// Returns a number below `count`.
    std::size_t below(std::size_t count) { return mRandom() % count; }

private:
    std::mt19937 mRandom;
    unsigned int mLeft;
};

} // namespace ZUNO::Reference
