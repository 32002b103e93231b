#pragma once

#include "hostkit/planegeometry.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ZUNO::HostKit {

/// An upright rectangle of the plane in float, rounded outwards.
struct PlaneBox {
    /// Grows to hold the point.
    void grow(const PlanePoint& point);
    void grow(const PlaneBox& other);
    bool contains(const PlanePoint& p) const {
        return p.mX >= double{mLow[0]} && p.mX <= double{mHigh[0]} && p.mY >= double{mLow[1]} &&
               p.mY <= double{mHigh[1]};
    }
    /// The square of the distance to the point; 0 inside.
    double squareDistance(const PlanePoint& p) const;

    float mLow[2] = {std::numeric_limits<float>::infinity(),
                     std::numeric_limits<float>::infinity()};
    float mHigh[2] = {-std::numeric_limits<float>::infinity(),
                      -std::numeric_limits<float>::infinity()};
};

/// Numbered boxes of the plane in a binary tree, in flat arrays: some 14 bytes a box.
class BoxTree {
public:
    BoxTree() = default;
    explicit BoxTree(const std::vector<PlaneBox>& boxes);

    /// Calls `visitor(number)` for the boxes that may hold the point, and perhaps some near it.
    template <typename Visitor>
    void visitAt(const PlanePoint& point, Visitor visitor) const {
        walk([&](const PlaneBox& box) { return box.contains(point); },
             [](const PlaneBox&, const PlaneBox&) { return true; }, visitor);
    }

    /// Calls `visitor(number)` for the boxes whose square distance may be below what
    /// `limit()` says at that moment, nearer halves of the tree first.
    template <typename Limit, typename Visitor>
    void visitNear(const PlanePoint& point, Limit limit, Visitor visitor) const {
        walk([&](const PlaneBox& box) { return box.squareDistance(point) <= limit(); },
             [&](const PlaneBox& first, const PlaneBox& second) {
                 return first.squareDistance(point) <= second.squareDistance(point);
             },
             visitor);
    }

    /// The bytes that it holds beside the object itself.
    std::size_t memoryUsage() const {
        return mBranches.capacity() * sizeof(Branch) + mItems.capacity() * sizeof(mItems[0]);
    }

private:
    static constexpr std::size_t maxDepth = 64; ///< twice what halving of 32-bit counts needs
    static constexpr std::size_t leafSize = 4;
    static constexpr std::uint32_t leafMark = 1U << 31U;
    static constexpr unsigned int countShift = 28;

    /// Its first half follows it at once; a leaf names its items instead.
    struct Branch {
        bool isLeaf() const { return (mContent & leafMark) != 0; }

        PlaneBox mBox;
        std::uint32_t mContent; ///< the second half, or a leaf's mark, count and first item
    };

    /// Visits the leaves below all branches that `enters(box)` lets in; of two halves the first one
    /// first where `isFirstNext(first, second)`.
    template <typename Enters, typename IsFirstNext, typename Visitor>
    void walk(Enters enters, IsFirstNext isFirstNext, Visitor& visitor) const {
        if (mBranches.empty())
            return;
        std::uint32_t waiting[maxDepth];
        std::size_t count = 0;
        waiting[count++] = 0;
        while (count > 0) {
            const std::uint32_t at = waiting[--count];
            const Branch& branch = mBranches[at];
            if (!enters(branch.mBox))
                continue;
            if (branch.isLeaf()) {
                visitLeaf(branch, visitor);
                continue;
            }
            const std::uint32_t first = at + 1;
            const std::uint32_t second = branch.mContent;
            const bool isInOrder = isFirstNext(mBranches[first].mBox, mBranches[second].mBox);
            waiting[count++] = isInOrder ? second : first;
            waiting[count++] = isInOrder ? first : second;
        }
    }
    template <typename Visitor>
    void visitLeaf(const Branch& leaf, Visitor& visitor) const {
        const std::uint32_t first = leaf.mContent & ((1U << countShift) - 1);
        const std::uint32_t size = (leaf.mContent & ~leafMark) >> countShift;
        for (std::uint32_t i = first; i < first + size; ++i)
            visitor(mItems[i]);
    }
    void build(const std::vector<PlaneBox>& boxes, std::uint32_t first, std::uint32_t last);

    std::vector<Branch> mBranches;
    std::vector<std::uint32_t> mItems;
};

} // namespace ZUNO::HostKit
