#include "hostkit/boxtree.h"

#include <numeric>

namespace ZUNO::HostKit {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

float roundedUp(double value) {
    if (!(value <= double{std::numeric_limits<float>::max()}))
        return infinity;
    const auto rounded =
        static_cast<float>(std::max(value, double{std::numeric_limits<float>::lowest()}));
    return double{rounded} < value ? std::nextafter(rounded, infinity) : rounded;
}
float roundedDown(double value) {
    return -roundedUp(-value);
}

} // namespace

void PlaneBox::grow(const PlanePoint& point) {
    mLow[0] = std::min(mLow[0], roundedDown(point.mX));
    mLow[1] = std::min(mLow[1], roundedDown(point.mY));
    mHigh[0] = std::max(mHigh[0], roundedUp(point.mX));
    mHigh[1] = std::max(mHigh[1], roundedUp(point.mY));
}

void PlaneBox::grow(const PlaneBox& other) {
    for (int axis = 0; axis < 2; ++axis) {
        mLow[axis] = std::min(mLow[axis], other.mLow[axis]);
        mHigh[axis] = std::max(mHigh[axis], other.mHigh[axis]);
    }
}

double PlaneBox::squareDistance(const PlanePoint& p) const {
    const double x = std::max({double{mLow[0]} - p.mX, 0.0, p.mX - double{mHigh[0]}});
    const double y = std::max({double{mLow[1]} - p.mY, 0.0, p.mY - double{mHigh[1]}});
    return x * x + y * y;
}

BoxTree::BoxTree(const std::vector<PlaneBox>& boxes) : mItems(boxes.size()) {
    std::iota(mItems.begin(), mItems.end(), 0U);
    if (!boxes.empty())
        build(boxes, 0, static_cast<std::uint32_t>(boxes.size()));
    mBranches.shrink_to_fit();
}

void BoxTree::build(const std::vector<PlaneBox>& boxes, std::uint32_t first, std::uint32_t last) {
    const std::size_t here = mBranches.size();
    mBranches.push_back({{}, leafMark | (last - first) << countShift | first});
    PlaneBox centres;
    const auto centreOf = [&](std::uint32_t item) {
        const PlaneBox& box = boxes[item];
        return PlanePoint{(double{box.mLow[0]} + double{box.mHigh[0]}) / 2,
                          (double{box.mLow[1]} + double{box.mHigh[1]}) / 2};
    };
    for (std::uint32_t i = first; i < last; ++i) {
        mBranches[here].mBox.grow(boxes[mItems[i]]);
        centres.grow(centreOf(mItems[i]));
    }
    if (last - first <= leafSize)
        return;
    const bool isWide = centres.mHigh[0] - centres.mLow[0] > centres.mHigh[1] - centres.mLow[1];
    std::uint32_t* const items = mItems.data();
    const std::uint32_t middle = first + (last - first) / 2;
    std::nth_element(
        items + first, items + middle, items + last, [&](std::uint32_t a, std::uint32_t b) {
            return isWide ? centreOf(a).mX < centreOf(b).mX : centreOf(a).mY < centreOf(b).mY;
        });
    build(boxes, first, middle);
    mBranches[here].mContent = static_cast<std::uint32_t>(mBranches.size());
    build(boxes, middle, last);
}

} // namespace ZUNO::HostKit
