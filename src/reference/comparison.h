/// Asks the plain and the fast forms the same questions. What is asked is a template's argument: a
/// fast form may be a class of the library, its world, or the exports themselves.
/// Every function returns the first difference in words, and an empty text when there is none; a
/// float counts as the same only when all its bits are.
#pragma once

#include "common/geom/ray2d.h"
#include "reference/questions.h"

#include <bit>
#include <sstream>
#include <string>

namespace ZUNO::Reference {

inline bool isSame(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

/// Compares `findNode`.
template <typename Plain, typename Fast>
std::string compareLocations(const Plain& plain, const Fast& fast,
                             const std::vector<Questions::Point3>& points) {
    for (const auto& point : points) {
        const std::int32_t expected = plain.findNode(point);
        const std::int32_t found = fast.findNode(point);
        if (found == expected)
            continue;
        std::ostringstream text;
        text.precision(9);
        text << "node " << found << " for " << expected << " under " << point.mX << ' ' << point.mY
             << ' ' << point.mZ;
        return text.str();
    }
    return {};
}

/// What was seen beside the differences, so that a comparison of nothing is noticed.
struct RayFigures {
    unsigned int mHits = 0;
    unsigned int mFree = 0; ///< starts that are not blocked
};

/// Compares `isBlocked`, `getGroundHeight` and `traceRay`.
template <typename Plain, typename Fast>
std::string compareRays(Plain& plain, Fast& fast, const std::vector<Questions::Ray>& rays,
                        RayFigures* figures = nullptr) {
    RayFigures seen;
    for (Questions::Ray ray : rays) {
        const bool isBlocked = plain.isBlocked(ray.mStart);
        const float height = plain.getGroundHeight(ray.mStart);
        plain.traceRay(ray);
        const float expected = ray.mHitDistance;
        fast.traceRay(ray);
        seen.mHits += expected > 0 ? 1 : 0;
        seen.mFree += isBlocked ? 0 : 1;
        if (fast.isBlocked(ray.mStart) == isBlocked &&
            isSame(fast.getGroundHeight(ray.mStart), height) && isSame(ray.mHitDistance, expected))
            continue;
        std::ostringstream text;
        text.precision(9);
        text << "blocked " << fast.isBlocked(ray.mStart) << " for " << isBlocked << ", ground "
             << fast.getGroundHeight(ray.mStart) << " for " << height << ", hit "
             << ray.mHitDistance << " for " << expected << ", from " << ray.mStart.mX << ' '
             << ray.mStart.mY << " to " << ray.mEnd.mX << ' ' << ray.mEnd.mY << ", length "
             << ray.mLength;
        return text.str();
    }
    if (figures != nullptr)
        *figures = seen;
    return {};
}

/// Runs searches in two worlds side by side: several open at a time, in slices of any size, some
/// abandoned half way, some asked for waypoints again.
template <typename Plain, typename Fast>
class SearchComparison {
public:
    SearchComparison(Plain& plain, Fast& fast, Questions& questions)
        : mPlain(plain), mFast(fast), mQuestions(questions) {}

    /// Compares ids, states, waypoints and costs. How many searches are open at a time is given by
    /// `width`; the longest slice by `budget`.
    std::string run(const std::vector<Journey>& journeys, std::size_t width, unsigned int budget) {
        for (const Journey& journey : journeys) {
            while (mOpen.size() >= width && mDifference.empty())
                advanceOne(budget);
            if (!mDifference.empty())
                break;
            const int id = mPlain.initPathSearch(journey.mFrom, journey.mTo);
            expect("id", mFast.initPathSearch(journey.mFrom, journey.mTo), id, id);
            if (id >= 0 && mDifference.empty())
                mOpen.push_back(id);
        }
        while (!mOpen.empty() && mDifference.empty())
            advanceOne(budget);
        return mDifference;
    }

    /// How many paths were found by both.
    unsigned int found() const { return mFound; }

private:
    void advanceOne(unsigned int budget) {
        const std::size_t place = mQuestions.below(mOpen.size());
        const int id = mOpen[place];
        const auto slice =
            static_cast<unsigned int>(mQuestions.below(4) == 0 ? 1 : 1 + mQuestions.below(budget));
        const int state = mPlain.runPathSearch(id, slice);
        expect("state", mFast.runPathSearch(id, slice), state, id);
        if (state == 1 && mQuestions.below(50) != 0)
            return;
        compareResults(id);
        mFound += state == 0 ? 1 : 0;
        mPlain.closePathSearch(id);
        mFast.closePathSearch(id);
        mOpen.erase(mOpen.begin() + static_cast<std::ptrdiff_t>(place));
    }

    void compareResults(int id) {
        for (bool goesOn = true; goesOn;) {
            Questions::Point3 expected(0, 0, 0);
            Questions::Point3 waypoint(0, 0, 0);
            goesOn = mPlain.getNextWaypoint(id, expected);
            expect("further waypoint", mFast.getNextWaypoint(id, waypoint), goesOn, id);
            for (const auto& [value, wanted] :
                 {std::pair{waypoint.mX, expected.mX}, std::pair{waypoint.mY, expected.mY},
                  std::pair{waypoint.mZ, expected.mZ}})
                expect("waypoint", value, wanted, id);
        }
        expect("cost", mFast.getPathCost(id), mPlain.getPathCost(id), id);
    }

    template <typename T>
    void expect(const char* what, T value, T expected, int id) {
        bool holds = value == expected;
        if constexpr (std::is_same_v<T, float>)
            holds = isSame(value, expected);
        if (holds || !mDifference.empty())
            return;
        std::ostringstream text;
        text.precision(9);
        text << what << ' ' << value << " for " << expected << " in search " << id;
        mDifference = text.str();
    }

    Plain& mPlain;
    Fast& mFast;
    Questions& mQuestions;
    std::vector<int> mOpen;
    std::string mDifference;
    unsigned int mFound = 0;
};

} // namespace ZUNO::Reference
