/// What makes Recast's objects safe and short to work with.
#pragma once

#include <memory>
#include <recastnavigation/Recast.h>
#include <stdexcept>
#include <string>

namespace ZUNO::Tools {

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};
using Heightfield = std::unique_ptr<rcHeightfield, Release<rcFreeHeightField>>;
using CompactHeightfield = std::unique_ptr<rcCompactHeightfield, Release<rcFreeCompactHeightfield>>;
using PolyMesh = std::unique_ptr<rcPolyMesh, Release<rcFreePolyMesh>>;
using ContourSet = std::unique_ptr<rcContourSet, Release<rcFreeContourSet>>;

/// What Recast says goes into the message of the failure.
class Context : public rcContext {
public:
    Context() : rcContext(false) { enableLog(true); }

    void require(bool holds, const char* stage) const {
        if (!holds)
            throw std::runtime_error(std::string("Recast failed at its ") + stage +
                                     (mText.empty() ? "" : ": " + mText));
    }

private:
    void doLog(const rcLogCategory category, const char* text, const int length) override {
        if (category == RC_LOG_ERROR)
            mText.assign(text, static_cast<std::size_t>(length));
    }

    std::string mText;
};

constexpr std::size_t unsignedOf(int number) {
    return static_cast<std::size_t>(number);
}

/// The spans of a cell, from the lowest to the highest.
struct SpanRange {
    unsigned int mFirst;
    unsigned int mEnd;
};
inline SpanRange spansOf(const rcCompactHeightfield& field, int x, int z) {
    const rcCompactCell cell = field.cells[x + z * field.width];
    const unsigned int first = cell.index;
    return {first, first + cell.count};
}

/// Calls `visit(x, z, index)` for every walkable span of a field.
template <typename Visitor>
void forEachSpan(const rcCompactHeightfield& field, Visitor visit) {
    for (int z = 0; z < field.height; ++z)
        for (int x = 0; x < field.width; ++x) {
            const auto [first, end] = spansOf(field, x, z);
            for (unsigned int i = first; i < end; ++i)
                if (field.areas[i] != RC_NULL_AREA)
                    visit(x, z, i);
        }
}

} // namespace ZUNO::Tools
